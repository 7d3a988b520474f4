#pragma once

#include "core/platform/i3sway/IpcSession.h"
#include "core/seams/WindowServer.h"

namespace lumnara {

/// The desktops of i3 or sway. A desktop whose workspace is gone stands in the list all the same; a display
/// that shows no workspace, as in the midst of being plugged or unplugged, does not.
class IpcWindowServer : public WindowServer {
public:
    explicit IpcWindowServer(IpcSession& session) : session_(session) {}

    PropertyList managedDisplaySpaces() override;
    std::optional<SpaceID> currentSpace(const DisplayID& display) override;
    /// Neither window manager animates.
    std::optional<bool> isAnimating(const DisplayID&) override { return std::nullopt; }
    std::optional<std::string> activeMenuBarDisplay() override;

private:
    IpcSession& session_;
};

} // namespace lumnara
