#include "app/SwitchEngines.h"

#include "core/platform/mac/engines/SessionState.h"

namespace lumnara {

SwitchEngines::SwitchEngines(Platform& platform, SpaceProvider& provider, SpaceSwitcher& switcher,
                             AppSettings& settings) {
    settingsChanged_.push_back(settings.instantSwitching.subscribe(
        [&switcher](bool instant) { switcher.settings.instantSwitching = instant; }));
    if (platform.spaceActivator) useWindowManager(*platform.spaceActivator, provider, switcher);
    useGestures(platform, provider, switcher, settings);
    useHelperWindows(platform, provider, switcher);

    WindowServer* server = platform.windowServer.get();
    if (!server) return;
    if (SessionProbe* session = platform.sessionProbe.get())
        switcher.blockingReason = [session, server] {
            return SessionState::blockingReason(*session, *server);
        };
}

void SwitchEngines::useWindowManager(SpaceActivator& activator, SpaceProvider& provider,
                                     SpaceSwitcher& switcher) {
    windowManager_ = std::make_unique<WindowManagerEngine>(activator, provider);
    switcher.engineOverride = {windowManager_.get()};
}

void SwitchEngines::useGestures(Platform& platform, SpaceProvider& provider, SpaceSwitcher& switcher,
                                AppSettings& settings) {
    if (!platform.accessibility || !platform.eventServices || !platform.screens) return;
    dockSwipe_ = std::make_unique<DockSwipeEngine>(provider, *platform.accessibility, *platform.eventServices,
                                                   *platform.screens);
    dockSwipe_->config.velocity = *settings.gestureVelocity;
    dockSwipe_->config.restoreCursor = *settings.restoreCursorAfterSwitch;
    settingsChanged_.push_back(settings.gestureVelocity.subscribe(
        [this](double velocity) { dockSwipe_->config.velocity = velocity; }));
    settingsChanged_.push_back(settings.restoreCursorAfterSwitch.subscribe(
        [this](bool restore) { dockSwipe_->config.restoreCursor = restore; }));
    switcher.dockSwipe = dockSwipe_.get();
}

void SwitchEngines::useHelperWindows(Platform& platform, SpaceProvider& provider, SpaceSwitcher& switcher) {
    if (!platform.windowServer || !platform.ownApplication || !platform.workspace || !platform.screens)
        return;
    helperWindow_ = std::make_unique<HelperWindowEngine>(
        provider, *platform.windowServer, *platform.ownApplication, *platform.workspace, *platform.screens);
    switcher.helperWindow = helperWindow_.get();
}

} // namespace lumnara
