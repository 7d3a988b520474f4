#pragma once

#include "app/SwitchEngines.h"
#include "app/links/LinkedSwitching.h"
#include "app/overlay/Notices.h"
#include "app/settings/AppSettings.h"
#include "app/tracking/TimeTracking.h"
#include "core/async/Loop.h"
#include "core/async/Signal.h"
#include "core/async/Task.h"
#include "core/automation/AutomationRunner.h"
#include "core/automation/AutomationStore.h"
#include "core/automation/AutomationTriggerWatcher.h"
#include "core/catalog/DesktopCatalog.h"
#include "core/names/NameStore.h"
#include "core/notes/NotesStore.h"
#include "core/platform/Platform.h"
#include "core/switching/SpaceSwitcher.h"

#include <exception>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lumnara {

/// The composition root: builds every long-lived object in a fixed order, connects them, and is the one
/// object that every surface holds. Built once, on the main thread, and lives as long as the program.
class AppState {
public:
    /// `dataFolder` holds all that the program keeps, and is created when something is. The loop, the
    /// platform, the executor and the settings outlive this object, and the loop turns no more once it is
    /// gone. `provider` reads the platform's session.
    AppState(async::Loop& loop, AppSettings& settings, Platform& platform,
             std::unique_ptr<SpaceProvider> provider, ActionExecutor& actionExecutor,
             const std::filesystem::path& dataFolder);
    AppState(const AppState&) = delete;
    AppState& operator=(const AppState&) = delete;

    async::Loop& loop() { return loop_; }
    AppSettings& settings() { return settings_; }
    Platform& platform() { return platform_; }
    NameStore& store() { return store_; }
    DesktopCatalog& catalog() { return catalog_; }
    NotesStore& notes() { return notes_; }
    AutomationStore& automations() { return automations_; }
    AutomationRunner& automationRunner() { return automationRunner_; }
    TimeTracking& tracking() { return tracking_; }
    SpaceSwitcher& switcher() { return switcher_; }
    Notices& notices() { return notices_; }

    /// What every surface calls that wants a desktop shown: switchToDesktop as a task of its own. A later
    /// request for a display takes over from one that is still under way there. Being there already is
    /// silent; any other failure is shown as a notice.
    void switchTo(const Desktop& desktop);
    /// Back to the desktop that the display, or else the one under the pointer, showed before; the rest as in
    /// switchTo. Linked displays stay where they are.
    void switchBack(std::optional<DisplayID> display = std::nullopt);

    /// Shows the desktop of a key, and with it every desktop that is linked with it on its own display.
    /// Throws SwitchError, or what the provider or the last engine failed with.
    async::Task<SwitchResult> switchToDesktop(std::string key);
    /// The outcome of the last switch of a link group, a second later.
    LinkedSwitching& linkedSwitching() { return linkedSwitching_; }

    /// The current desktop of a display changed, to this one.
    async::Signal<const Desktop&> onDesktopSwitched;
    /// After every good refresh, with the focused desktop, changed or not.
    async::Signal<const std::optional<Desktop>&> onCurrentDesktopChanged;

    /// Hands the focused desktop and the front application to the record of times.
    void sampleNow();

    /// Writes what has not reached the disk. The surfaces are down by then.
    void stop();

private:
    void connectAutomations(ActionExecutor& actionExecutor);
    void followSettings();
    void reportStart();
    void handleRefresh(const SpaceSnapshot& snapshot);
    void watchForTriggers();
    void announceChanges();
    void publishNames();
    /// A switch under way or done, with the displays that it moves; none where that isn't known.
    struct Switching {
        std::vector<DisplayID> displays;
        async::TaskHandle task;
    };
    void startSwitch(std::vector<DisplayID> displays, async::Task<> task);
    async::Task<> runSwitch(Desktop desktop);
    async::Task<> runSwitchBack(std::optional<DisplayID> display);
    void reportSwitch(std::exception_ptr failure);

    async::Loop& loop_;
    AppSettings& settings_;
    Platform& platform_;
    Notices notices_;
    NameStore store_;
    std::unique_ptr<SpaceProvider> provider_;
    DesktopCatalog catalog_;
    NotesStore notes_;
    AutomationStore automations_;
    AutomationRunner automationRunner_;
    AutomationTriggerWatcher automationWatcher_;
    TimeTracking tracking_;
    SpaceSwitcher switcher_;
    SwitchEngines engines_;
    LinkedSwitching linkedSwitching_;
    std::map<std::string, std::string> lastCurrentKeys_;
    std::optional<std::string> lastAnnouncedKey_;
    async::Subscription displaysChanged_;
    std::vector<async::Subscription> settingsChanged_;
    std::vector<Switching> switching_;
};

} // namespace lumnara
