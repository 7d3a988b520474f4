#pragma once

#include "core/platform/i3sway/IpcSession.h"
#include "core/seams/DesktopNamePublisher.h"

namespace lumnara {

/// Shows the user's names as the names of workspaces; see titledWorkspace for their form.
class IpcNamePublisher : public DesktopNamePublisher {
public:
    explicit IpcNamePublisher(IpcSession& session) : session_(session) {}

    void publish(const std::vector<PublishedDesktop>& desktops) override { session_.publish(desktops); }

private:
    IpcSession& session_;
};

} // namespace lumnara
