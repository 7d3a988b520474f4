#include "core/platform/mac/MacPlatform.h"

#include "core/platform/mac/engines/DockSwipeEngine.h"
#include "core/platform/mac/engines/HelperWindowEngine.h"
#include "core/platform/mac/engines/SessionState.h"
#include "core/platform/mac/missioncontrol/DockMissionControlDriver.h"
#include "core/platform/mac/missioncontrol/MissionControlArranger.h"
#include "core/platform/mac/server/LiveSpaceProvider.h"

#include <utility>

namespace lumnara {

namespace {

struct OwnedDriver {
    DockMissionControlDriver driver;
};

class DockArranger : private OwnedDriver, public MissionControlArranger {
public:
    DockArranger(const MissionControlSeams& seams, SpaceProvider& provider)
        : OwnedDriver{DockMissionControlDriver(seams)},
          MissionControlArranger(driver, driver, provider) {}
};

} // namespace

Platform macPlatform(const async::Loop& loop, MacSeams given) {
    const auto kept = std::make_shared<MacSeams>(std::move(given));
    WindowServer& server = *kept->windowServer;
    Screens& screens = *kept->screens;
    Workspace& workspace = *kept->workspace;
    MacSession& session = *kept->session;

    Platform platform;
    platform.kind = PlatformKind::mac;
    platform.keepAlive = kept;
    platform.screens = std::move(kept->screens);
    platform.workspace = std::move(kept->workspace);
    platform.sessionProbe = std::move(kept->session);
    platform.spaceProvider = std::make_unique<LiveSpaceProvider>(loop, server, screens, &workspace);
    SpaceProvider& provider = *platform.spaceProvider;
    platform.arranger = std::make_unique<DockArranger>(
        MissionControlSeams{*kept->accessibility, *kept->eventServices, *kept->preferences, screens, session,
                            server, workspace},
        provider);
    platform.dockSwipe =
        std::make_unique<DockSwipeEngine>(provider, *kept->accessibility, *kept->eventServices, screens);
    platform.helperWindow =
        std::make_unique<HelperWindowEngine>(provider, server, *kept->ownApplication, workspace, screens);
    platform.blockingReason = [&session, &server] { return SessionState::blockingReason(session, server); };
    return platform;
}

} // namespace lumnara
