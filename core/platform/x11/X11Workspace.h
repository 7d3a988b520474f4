#pragma once

#include "core/platform/x11/X11Connection.h"
#include "core/seams/Workspace.h"

#include <memory>

namespace lumnara {

/// Tells when desktops or monitors have changed under an EWMH window manager, and when it came or went.
class X11Workspace : public Workspace {
public:
    explicit X11Workspace(std::shared_ptr<X11Connection> connection);

    async::Subscription observe(std::function<void(WorkspaceEvent)> onEvent) override;
    /// By the class of the active window, with pid 0 where it tells none. Asked for once each time that
    /// another window becomes active.
    std::optional<RunningApp> frontmostApplication() override;

private:
    void noteChange(xcb_atom_t property);
    void tell();
    bool readFrontmost();

    std::shared_ptr<X11Connection> connection_;
    bool spacesChanged_ = false;
    bool screensChanged_ = false;
    std::optional<RunningApp> frontmost_;
    /// No other window has become active since `frontmost_` was asked for.
    bool frontmostIsFresh_ = false;
    async::Signal<WorkspaceEvent> events_;
    std::vector<async::Subscription> subscriptions_;
};

} // namespace lumnara
