#pragma once

#include "core/async/Loop.h"
#include "core/model/SpaceProvider.h"
#include "core/platform/mac/server/WindowServer.h"
#include "core/seams/Screens.h"
#include "core/seams/Workspace.h"

namespace lumnara {

/// Reads the real window server. The arguments have to outlive it; without a workspace the owners of
/// full-screen Spaces have only the names that their windows tell. Main thread.
class LiveSpaceProvider : public SpaceProvider {
public:
    LiveSpaceProvider(const async::Loop& loop, WindowServer& windowServer, Screens& screens,
                      Workspace* workspace = nullptr)
        : loop_(loop),
          windowServer_(windowServer),
          screens_(screens),
          workspace_(workspace) {}

    bool resolvesFullscreenOwners = true;

    SpaceSnapshot snapshot() override;
    std::optional<DisplayID> menuBarDisplay() override;
    std::optional<DisplayID> cursorDisplay() override;
    /// "All Displays" for the shared arrangement, else the screen's name; nothing for an unknown screen.
    std::optional<std::string> displayName(const std::string& uuid) override;
    std::optional<SpaceID> currentSpace(const DisplayID& display) override {
        return windowServer_.currentSpace(display);
    }
    bool isAnimating(const DisplayID& display) override {
        return windowServer_.isAnimating(display).value_or(false);
    }

private:
    void nameDisplays(SpaceSnapshot& snapshot);

    const async::Loop& loop_;
    WindowServer& windowServer_;
    Screens& screens_;
    Workspace* workspace_;
    /// The last reading was of one shared arrangement, which every screen belongs to.
    bool sharedMain_ = false;
};

} // namespace lumnara
