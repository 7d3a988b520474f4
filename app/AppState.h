#pragma once

#include "app/links/LinkedSwitching.h"
#include "app/names/NamePublication.h"
#include "app/overlay/Notices.h"
#include "app/settings/AppSettings.h"
#include "app/switching/EngineSettings.h"
#include "app/switching/SwitchAnnouncer.h"
#include "app/switching/SwitchRequests.h"
#include "app/tracking/TimeTracking.h"
#include "core/async/Loop.h"
#include "core/async/Signal.h"
#include "core/async/TaskFwd.h"
#include "core/automation/AutomationRunner.h"
#include "core/automation/AutomationStore.h"
#include "core/automation/AutomationTriggerWatcher.h"
#include "core/catalog/DesktopCatalog.h"
#include "core/names/NameStore.h"
#include "core/notes/NotesStore.h"
#include "core/platform/Platform.h"
#include "core/switching/SpaceSwitcher.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace lumnara {

/// The composition root: builds every long-lived object in a fixed order, connects them, and is the one
/// object that every surface holds. Built once, on the main thread, and lives as long as the program.
class AppState {
public:
    /// `dataFolder` holds all that the program keeps, and is created when something is. The loop, the
    /// platform, the executor and the settings outlive this object, and the loop turns no more once it is
    /// gone.
    AppState(async::Loop& loop, AppSettings& settings, Platform& platform, ActionExecutor& actionExecutor,
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

    // What every surface calls that wants a desktop shown; see SwitchRequests.
    void switchTo(const Desktop& desktop) { switchRequests_.switchTo(desktop); }
    void switchBack(std::optional<DisplayID> display = std::nullopt) {
        switchRequests_.switchBack(std::move(display));
    }
    async::Task<SwitchResult> switchToDesktop(std::string key);
    /// The outcome of the last switch of a link group, a second later.
    LinkedSwitching& linkedSwitching() { return linkedSwitching_; }

    /// What every surface listens to that shows which desktop a display has come to.
    SwitchAnnouncer& announcer() { return announcer_; }
    /// After every good refresh, with the focused desktop, changed or not.
    async::Signal<const std::optional<Desktop>&> currentDesktopChanged;

    /// Hands the focused desktop and the front application to the record of times.
    void sampleNow();

    /// Writes what has not reached the disk. The surfaces are down by then.
    void stop();

private:
    void handleRefresh(const SpaceSnapshot& snapshot);
    std::optional<Desktop> focused() const;

    async::Loop& loop_;
    AppSettings& settings_;
    Platform& platform_;
    Notices notices_;
    NameStore store_;
    SpaceProvider& provider_;
    DesktopCatalog catalog_;
    NotesStore notes_;
    AutomationStore automations_;
    AutomationRunner automationRunner_;
    AutomationTriggerWatcher automationWatcher_;
    TimeTracking tracking_;
    SpaceSwitcher switcher_;
    EngineSettings engineSettings_;
    NamePublication names_;
    SwitchAnnouncer announcer_;
    LinkedSwitching linkedSwitching_;
    SwitchRequests switchRequests_;
    async::Subscription linkModeChanged_;
};

} // namespace lumnara
