#include "app/switching/EngineSettings.h"

#include "core/platform/Platform.h"
#include "core/switching/GestureSwitching.h"

namespace lumnara {

EngineSettings::EngineSettings(Platform& platform, SpaceSwitcher& switcher, AppSettings& settings) {
    if (platform.windowManagerEngine) switcher.engineOverride = {platform.windowManagerEngine.get()};
    switcher.dockSwipe = platform.dockSwipe.get();
    switcher.helperWindow = platform.helperWindow.get();
    switcher.blockingReason = platform.blockingReason;
    settingsChanged_.push_back(settings.instantSwitching.subscribe(
        [&switcher](bool instant) { switcher.settings.instantSwitching = instant; }));
    GestureSwitching* gesture = platform.dockSwipe.get();
    if (gesture == nullptr) return;
    gesture->setVelocity(*settings.gestureVelocity);
    gesture->setRestoresCursor(*settings.restoreCursorAfterSwitch);
    settingsChanged_.push_back(
        settings.gestureVelocity.subscribe([gesture](double velocity) { gesture->setVelocity(velocity); }));
    settingsChanged_.push_back(settings.restoreCursorAfterSwitch.subscribe(
        [gesture](bool restores) { gesture->setRestoresCursor(restores); }));
}

} // namespace lumnara
