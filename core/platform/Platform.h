#pragma once

#include "core/arranging/DesktopArranger.h"
#include "core/seams/Accessibility.h"
#include "core/seams/DesktopNamePublisher.h"
#include "core/seams/EventServices.h"
#include "core/seams/GlobalShortcuts.h"
#include "core/seams/IdleSource.h"
#include "core/seams/OwnApplication.h"
#include "core/seams/Preferences.h"
#include "core/seams/Screens.h"
#include "core/seams/SessionProbe.h"
#include "core/seams/SpaceActivator.h"
#include "core/seams/WindowServer.h"
#include "core/seams/Workspace.h"

#include <memory>
#include <string>

namespace lumnara {

/// Everything that the session underneath offers. A member that is absent is not available here. The
/// members may share one connection, which `keepAlive` holds and which goes last.
struct Platform {
    /// "i3", "sway", or the name that an EWMH window manager gives itself.
    std::string name;
    std::shared_ptr<void> keepAlive;
    std::unique_ptr<WindowServer> windowServer;
    std::unique_ptr<Screens> screens;
    std::unique_ptr<Workspace> workspace;
    std::unique_ptr<SpaceActivator> spaceActivator;
    std::unique_ptr<DesktopNamePublisher> namePublisher;
    std::unique_ptr<GlobalShortcuts> globalShortcuts;
    std::unique_ptr<EventServices> eventServices;
    std::unique_ptr<Accessibility> accessibility;
    std::unique_ptr<OwnApplication> ownApplication;
    std::unique_ptr<SessionProbe> sessionProbe;
    std::unique_ptr<IdleSource> idleSource;
    std::unique_ptr<Preferences> preferences;
    /// Uses the other members.
    std::unique_ptr<DesktopArranger> arranger;
};

} // namespace lumnara
