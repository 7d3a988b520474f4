#pragma once

#include "core/platform/i3sway/IpcSession.h"
#include "core/platform/linux/DesktopArranging.h"

namespace lumnara {

/// Arranges the desktops of i3 or sway. A desktop that is added is only registered, so nothing on the screen
/// changes; its workspace is made when one goes there.
class IpcDesktopArranging : public DesktopArranging {
public:
    explicit IpcDesktopArranging(IpcSession& session) : session_(session) {}

    std::string windowManager() const override { return session_.ipc().windowManager(); }
    async::Task<> add(DisplayID display) override;
    async::Task<> remove(SpaceID id, SpaceID heir) override;
    /// By renaming workspaces, all in one command; see WorkspaceOrder.
    async::Task<> arrange(DisplayID display, std::vector<SpaceID> order) override;
    std::vector<SpaceID> keepable(std::vector<SpaceID> desired) const override;
    std::string keptOrderRule() const override;

private:
    std::string emptying(SpaceID id, SpaceID heir);

    IpcSession& session_;
};

} // namespace lumnara
