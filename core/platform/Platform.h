#pragma once

#include "core/model/PlatformKind.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace lumnara {

class DesktopArranger;
class DesktopNamePublisher;
class GestureSwitching;
class GlobalShortcuts;
class HelperWindowSwitching;
class IdleSource;
class Screens;
class SessionProbe;
class SpaceActivator;
class SpaceProvider;
class SpaceSwitching;
class SwitchError;
class Workspace;

/// Everything that the session underneath offers. But for the provider, a member that is absent is not
/// available here. A member may use those above it, and `keepAlive` what they share.
struct Platform {
    Platform();
    Platform(Platform&&) noexcept;
    Platform& operator=(Platform&&) noexcept;
    ~Platform();

    PlatformKind kind = PlatformKind::windowManager;
    /// "i3", "sway", the name that an EWMH window manager gives itself, or "simulated".
    std::string name;
    std::shared_ptr<void> keepAlive;
    std::unique_ptr<Screens> screens;
    std::unique_ptr<Workspace> workspace;
    std::unique_ptr<SessionProbe> sessionProbe;
    std::unique_ptr<SpaceProvider> spaceProvider;
    std::unique_ptr<SpaceActivator> spaceActivator;
    std::unique_ptr<DesktopNamePublisher> namePublisher;
    std::unique_ptr<GlobalShortcuts> globalShortcuts;
    std::unique_ptr<IdleSource> idleSource;
    std::unique_ptr<DesktopArranger> arranger;

    /// A window manager that shows a desktop when asked; takes the place of the other engines.
    std::unique_ptr<SpaceSwitching> windowManagerEngine;
    std::unique_ptr<GestureSwitching> dockSwipe;
    std::unique_ptr<HelperWindowSwitching> helperWindow;
    /// What forbids every switch right now, or nothing. Empty where nothing can.
    std::function<std::optional<SwitchError>()> blockingReason;
};

} // namespace lumnara
