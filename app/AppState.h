#pragma once

#include "app/Notices.h"
#include "core/async/Loop.h"
#include "core/async/Signal.h"
#include "core/async/Task.h"
#include "core/catalog/DesktopCatalog.h"
#include "core/names/NameStore.h"
#include "core/platform/Platform.h"
#include "core/switching/SpaceSwitcher.h"
#include "core/switching/WindowManagerEngine.h"

#include <exception>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace lumnara {

/// The composition root: builds every long-lived object in a fixed order, connects them, and is the one
/// object that every surface holds. Built once, on the main thread, and lives as long as the program.
class AppState {
public:
    /// `dataFolder` holds desktops.json and is created at the first save. The loop and the platform outlive
    /// this object, and the loop turns no more once it is gone. `provider` reads the platform's session.
    AppState(async::Loop& loop, Platform& platform, std::unique_ptr<SpaceProvider> provider,
             const std::filesystem::path& dataFolder);
    ~AppState();
    AppState(const AppState&) = delete;
    AppState& operator=(const AppState&) = delete;

    async::Loop& loop() { return loop_; }
    Platform& platform() { return platform_; }
    NameStore& store() { return store_; }
    DesktopCatalog& catalog() { return catalog_; }
    SpaceSwitcher& switcher() { return switcher_; }
    Notices& notices() { return notices_; }

    /// The one entry for a surface that wants a desktop shown. Returns at once; the switch runs as a task.
    /// A later request takes over from one that is still under way. Being there already is silent; any other
    /// failure is shown as a notice.
    void switchTo(const Desktop& desktop);
    /// Back to the desktop that the display under the pointer showed before; the rest as in switchTo.
    void switchBack();

    /// The current desktop of a display changed, to this one.
    async::Signal<const Desktop&> onDesktopSwitched;
    /// After every good refresh, with the focused desktop, changed or not.
    async::Signal<const std::optional<Desktop>&> onCurrentDesktopChanged;

    /// Writes what has not reached the disk. The surfaces are down by then.
    void stop();

private:
    void connectSwitcher();
    void reportStart();
    void handleRefresh(const SpaceSnapshot& snapshot);
    void announceChanges();
    void publishNames();
    /// To the desktop of that Space key, or back without one.
    async::Task<> runSwitch(std::optional<std::string> spaceKey);
    void reportSwitch(std::exception_ptr failure);

    async::Loop& loop_;
    Platform& platform_;
    Notices notices_;
    NameStore store_;
    std::unique_ptr<SpaceProvider> provider_;
    DesktopCatalog catalog_;
    std::unique_ptr<WindowManagerEngine> engine_;
    SpaceSwitcher switcher_;
    std::map<std::string, std::string> lastCurrentKeys_;
    std::optional<std::string> lastAnnouncedKey_;
    async::Subscription displaysChanged_;
    async::TaskHandle switching_;
};

} // namespace lumnara
