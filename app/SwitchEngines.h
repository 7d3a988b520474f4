#pragma once

#include "app/settings/AppSettings.h"
#include "core/async/Signal.h"
#include "core/platform/Platform.h"
#include "core/platform/mac/engines/DockSwipeEngine.h"
#include "core/platform/mac/engines/HelperWindowEngine.h"
#include "core/switching/SpaceSwitcher.h"
#include "core/switching/WindowManagerEngine.h"

#include <memory>
#include <vector>

namespace lumnara {

/// The engines that the platform has what they need for, given to the switcher and kept in step with the
/// settings. A window manager that shows a desktop when asked takes the place of all others.
class SwitchEngines {
public:
    /// All outlive this object, but for the switcher, which goes no later.
    SwitchEngines(Platform& platform, SpaceProvider& provider, SpaceSwitcher& switcher,
                  AppSettings& settings);
    SwitchEngines(const SwitchEngines&) = delete;
    SwitchEngines& operator=(const SwitchEngines&) = delete;

private:
    void useWindowManager(SpaceActivator& activator, SpaceProvider& provider, SpaceSwitcher& switcher);
    void useGestures(Platform& platform, SpaceProvider& provider, SpaceSwitcher& switcher,
                     AppSettings& settings);
    void useHelperWindows(Platform& platform, SpaceProvider& provider, SpaceSwitcher& switcher);

    std::unique_ptr<WindowManagerEngine> windowManager_;
    std::unique_ptr<DockSwipeEngine> dockSwipe_;
    std::unique_ptr<HelperWindowEngine> helperWindow_;
    std::vector<async::Subscription> settingsChanged_;
};

} // namespace lumnara
