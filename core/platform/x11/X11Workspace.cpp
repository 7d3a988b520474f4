#include "core/platform/x11/X11Workspace.h"

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
