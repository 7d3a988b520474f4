#include "core/platform/x11/X11Workspace.h"

#include "core/platform/linux/WindowManagerError.h"

#include <string>
#include <utility>

namespace lumnara {

X11Workspace::X11Workspace(std::shared_ptr<X11Connection> connection) : connection_(std::move(connection)) {
    auto& x = *connection_;
    subscriptions_.push_back(x.arrived.subscribe([this](const xcb_generic_event_t& event) {
        if ((event.response_type & 0x7FU) == XCB_PROPERTY_NOTIFY &&
            reinterpret_cast<const xcb_property_notify_event_t&>(event).atom ==
                connection_->atoms().netActiveWindow)
            frontmostIsFresh_ = false;
    }));
    subscriptions_.push_back(
        x.propertyChanged.subscribe([this](const auto& event) { noteChange(event.atom); }));
    subscriptions_.push_back(x.windowDestroyed.subscribe([this](xcb_window_t) { spacesChanged_ = true; }));
    subscriptions_.push_back(x.lost.subscribe([this] { spacesChanged_ = true; }));
    subscriptions_.push_back(x.monitorsChanged.subscribe([this] { screensChanged_ = true; }));
    subscriptions_.push_back(x.batchEnded.subscribe([this] { tell(); }));
}

async::Subscription X11Workspace::observe(std::function<void(WorkspaceEvent)> onEvent) {
    return events_.subscribe(std::move(onEvent));
}

std::optional<RunningApp> X11Workspace::frontmostApplication() try {
    connection_->takeArrived();
    if (!std::exchange(frontmostIsFresh_, true) && !readFrontmost()) frontmostIsFresh_ = false;
    return frontmost_;
} catch (const WindowManagerError&) {
    frontmostIsFresh_ = false;
    return std::nullopt;
}

/// Whether the active window, if there is one, tells what it is; it may do so later.
bool X11Workspace::readFrontmost() {
    auto& x = *connection_;
    frontmost_.reset();
    const auto active = x.items(x.requestProperty(x.root(), x.atoms().netActiveWindow));
    if (active.empty()) return false;
    if (active.front() == XCB_WINDOW_NONE) return true;
    const auto classRequest = x.requestProperty(active.front(), XCB_ATOM_WM_CLASS);
    const auto pidRequest = x.requestProperty(active.front(), x.atoms().netWmPid);
    // Instance and class, each with a null behind it.
    const std::string names = x.text(classRequest).value_or("");
    const auto pid = x.items(pidRequest);
    const auto split = names.find('\0');
    if (split == std::string::npos) return false;
    const std::string name = names.c_str() + split + 1;
    if (name.empty()) return false;
    frontmost_ = RunningApp{pid.empty() ? 0 : static_cast<std::int32_t>(pid.front()), name, name};
    return true;
}

void X11Workspace::noteChange(xcb_atom_t property) {
    const auto& atoms = connection_->atoms();
    for (const auto watched : {atoms.netCurrentDesktop, atoms.netNumberOfDesktops, atoms.netDesktopNames,
                               atoms.netSupportingWmCheck, atoms.lumnaraDesktopUuids})
        spacesChanged_ |= property == watched;
}

void X11Workspace::tell() {
    const bool spaces = std::exchange(spacesChanged_, false);
    const bool screens = std::exchange(screensChanged_, false);
    if (screens) events_.emit(WorkspaceEvent::screenParametersDidChange);
    if (spaces) events_.emit(WorkspaceEvent::activeSpaceDidChange);
}

} // namespace lumnara
