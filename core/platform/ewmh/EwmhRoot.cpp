#include "core/platform/ewmh/EwmhRoot.h"

#include "core/platform/ewmh/RememberedDesktop.h"
#include "core/platform/linux/WindowManagerError.h"
#include "core/text/Utf8.h"

#include <algorithm>

namespace lumnara {

namespace {

/// No one has as many; a count beyond it is a fault of another program and must not cost our memory.
constexpr std::size_t mostDesktops = 1000;

} // namespace

EwmhRoot::EwmhRoot(std::shared_ptr<X11Connection> connection)
    : connection_(std::move(connection)),
      arrived_(connection_->arrived.subscribe([this](const auto& event) { noteArrival(event); })) {}

EwmhState EwmhRoot::read() {
    auto& x = *connection_;
    const auto& atoms = x.atoms();
    const auto changes = changes_;
    changesRead_.reset();
    const auto checkCookie = x.requestProperty(x.root(), atoms.netSupportingWmCheck);
    const auto countCookie = x.requestProperty(x.root(), atoms.netNumberOfDesktops);
    const auto currentCookie = x.requestProperty(x.root(), atoms.netCurrentDesktop);
    const auto namesCookie = x.requestProperty(x.root(), atoms.netDesktopNames);
    const auto uuidsCookie = x.requestProperty(x.root(), atoms.lumnaraDesktopUuids);
    auto windowManagerCookies = askWindowManager();

    const auto check = x.items(checkCookie);
    const auto count = x.items(countCookie);
    const auto current = x.items(currentCookie);
    const auto names = x.text(namesCookie);
    const auto uuids = x.text(uuidsCookie);
    bool answers = windowManagerAnswers(windowManagerCookies);
    if (!check.empty() && check[0] != checkWindow_) {
        checkWindow_ = check[0];
        const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        xcb_change_window_attributes(x.xcb(), checkWindow_, XCB_CW_EVENT_MASK, &mask);
        answers = windowManagerAnswers(askWindowManager());
    }
    if (check.empty() || !answers || count.empty() || count[0] == 0) reportAway();

    EwmhState state;
    state.count = std::min<std::size_t>(count[0], mostDesktops);
    state.current = current.empty() ? 0 : std::min<std::size_t>(current[0], state.count - 1);
    if (names) state.names = splitNulList(*names);
    if (uuids) state.uuids = splitNulList(*uuids);
    changesRead_ = changes;
    return state;
}

std::optional<std::size_t> EwmhRoot::readCurrentAlone() {
    if (changesRead_ != changes_) return std::nullopt;
    const auto& x = *connection_;
    const auto current = connection_->items(x.requestProperty(x.root(), x.atoms().netCurrentDesktop));
    // A change before the reply has arrived before it.
    if (changesRead_ != changes_ || current.empty()) return std::nullopt;
    return current[0];
}

void EwmhRoot::noteArrival(const xcb_generic_event_t& event) {
    const auto type = event.response_type & 0x7FU;
    if (type == XCB_DESTROY_NOTIFY &&
        reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window == checkWindow_) {
        // The next window manager's may have the same id and is another window all the same.
        checkWindow_ = XCB_WINDOW_NONE;
        ++changes_;
    }
    if (type != XCB_PROPERTY_NOTIFY) return;
    const auto& atoms = connection_->atoms();
    const auto atom = reinterpret_cast<const xcb_property_notify_event_t&>(event).atom;
    if (atom == atoms.netSupportingWmCheck || atom == atoms.netNumberOfDesktops ||
        atom == atoms.netDesktopNames || atom == atoms.lumnaraDesktopUuids)
        ++changes_;
}

EwmhRoot::WindowManagerCookies EwmhRoot::askWindowManager() const {
    const auto& x = *connection_;
    return {x.requestProperty(checkWindow_, x.atoms().netSupportingWmCheck),
            x.requestProperty(checkWindow_, x.atoms().netWmName)};
}

bool EwmhRoot::windowManagerAnswers(WindowManagerCookies cookies) {
    // The root's property outlives a window manager that was killed; its window doesn't.
    const auto check = connection_->items(cookies.check);
    const auto name = connection_->text(cookies.name);
    if (check.empty() || check[0] != checkWindow_) return false;
    windowManager_ = name && !name->empty() ? text::sanitizedUtf8(*name) : "The window manager";
    return true;
}

void EwmhRoot::reportAway() {
    checkWindow_ = XCB_WINDOW_NONE;
    using Case = WindowManagerError::Case;
    throw WindowManagerError(windowManager_.empty() ? Case::noWindowManager : Case::connectionLost,
                             windowManager_);
}

void EwmhRoot::requestDesktop(std::size_t index) const {
    const auto& x = *connection_;
    x.askWindowManager(x.root(), x.atoms().netCurrentDesktop,
                       {static_cast<std::uint32_t>(index), XCB_CURRENT_TIME});
}

void EwmhRoot::requestCount(std::size_t count) const {
    const auto& x = *connection_;
    x.askWindowManager(x.root(), x.atoms().netNumberOfDesktops, {static_cast<std::uint32_t>(count), 0});
}

void EwmhRoot::setNames(const std::vector<std::string>& names) const {
    const auto& x = *connection_;
    if (names.empty())
        xcb_delete_property(x.xcb(), x.root(), x.atoms().netDesktopNames);
    else
        x.setText(x.root(), x.atoms().netDesktopNames, joinNulList(names));
    xcb_flush(x.xcb());
}

void EwmhRoot::setUuids(const std::vector<std::string>& uuids) const {
    connection_->setText(connection_->root(), connection_->atoms().lumnaraDesktopUuids, joinNulList(uuids));
}

} // namespace lumnara
