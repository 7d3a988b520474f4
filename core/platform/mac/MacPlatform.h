#pragma once

#include "core/async/Loop.h"
#include "core/platform/Platform.h"
#include "core/platform/mac/server/MacSession.h"
#include "core/platform/mac/server/OwnApplication.h"
#include "core/platform/mac/server/Preferences.h"
#include "core/platform/mac/server/WindowServer.h"
#include "core/seams/Accessibility.h"
#include "core/seams/EventServices.h"
#include "core/seams/Screens.h"
#include "core/seams/Workspace.h"

#include <memory>

namespace lumnara {

/// What of a Mac the program meets, real or simulated.
struct MacSeams {
    std::unique_ptr<WindowServer> windowServer;
    std::unique_ptr<Screens> screens;
    std::unique_ptr<Workspace> workspace;
    std::unique_ptr<EventServices> eventServices;
    std::unique_ptr<Accessibility> accessibility;
    std::unique_ptr<OwnApplication> ownApplication;
    std::unique_ptr<MacSession> session;
    std::unique_ptr<Preferences> preferences;
};

/// The platform on them, with the gesture and the helper windows as engines and Mission Control as arranger.
/// It has neither name, shortcuts nor idle time.
Platform macPlatform(const async::Loop& loop, MacSeams seams);

} // namespace lumnara
