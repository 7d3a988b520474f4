#include "core/platform/x11/X11Workspace.h"

#include "core/platform/linux/WindowManagerError.h"

#include <string>
#include <utility>

namespace lumnara {

X11Workspace::X11Workspace(std::shared_ptr<X11Connection> connection) : connection_(std::move(connection)) {
    auto& x = *connection_;
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
    auto& x = *connection_;
    const auto active = x.items(x.requestProperty(x.root(), x.atoms().netActiveWindow));
    if (active.empty() || active.front() == XCB_WINDOW_NONE) return std::nullopt;
    const auto classRequest = x.requestProperty(active.front(), XCB_ATOM_WM_CLASS);
    const auto pidRequest = x.requestProperty(active.front(), x.atoms().netWmPid);
    // Instance and class, each with a null behind it.
    const std::string names = x.text(classRequest).value_or("");
    const auto pid = x.items(pidRequest);
    const auto split = names.find('\0');
    if (split == std::string::npos) return std::nullopt;
    const std::string name = names.c_str() + split + 1;
    if (name.empty()) return std::nullopt;
    return RunningApp{pid.empty() ? 0 : static_cast<std::int32_t>(pid.front()), name, name};
} catch (const WindowManagerError&) {
    return std::nullopt;
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
