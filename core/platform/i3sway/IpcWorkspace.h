#pragma once

#include "core/platform/i3sway/IpcSession.h"
#include "core/seams/Workspace.h"

namespace lumnara {

/// The notifications of i3 or sway. They don't tell of sleep and wake. sway 1.7 has no event for outputs:
/// a monitor is noticed by the workspace that comes or moves with it.
class IpcWorkspace : public Workspace {
public:
    explicit IpcWorkspace(IpcSession& session) : session_(session) {}

    async::Subscription observe(std::function<void(WorkspaceEvent)> onEvent) override {
        return session_.changed().subscribe(std::move(onEvent));
    }
    std::optional<RunningApp> frontmostApplication() override;

private:
    IpcSession& session_;
};

} // namespace lumnara
