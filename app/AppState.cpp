#include "app/AppState.h"

#include "app/automation/AutomationDesktops.h"
#include "app/automation/AutomationTexts.h"
#include "app/start/StartNotices.h"
#include "core/async/Task.h"
#include "core/seams/Workspace.h"

#include <exception>
#include <utility>

namespace lumnara {

// The order of the members is that of their making, and each may use those before it.
AppState::AppState(async::Loop& loop, AppSettings& settings, Platform& platform,
                   ActionExecutor& actionExecutor, const std::filesystem::path& dataFolder)
    : loop_(loop),
      settings_(settings),
      platform_(platform),
      store_(loop, dataFolder / "desktops.json"),
      provider_(*platform.spaceProvider),
      catalog_(loop, provider_, store_, *settings.displayLinkMode),
      notes_(loop, NotesStore::defaultDirectory(dataFolder)),
      automations_(loop, AutomationStore::defaultURL(dataFolder)),
      automationRunner_(automations_, actionExecutor),
      automationWatcher_(loop, automationRunner_),
      tracking_(loop, settings, platform, dataFolder),
      switcher_(provider_, {.instantSwitching = *settings.instantSwitching}),
      engineSettings_(platform, switcher_, settings),
      names_(catalog_, platform.namePublisher.get()),
      linkedSwitching_(loop, platform, provider_, catalog_, switcher_, notices_),
      switchRequests_(loop, catalog_, switcher_, linkedSwitching_, platform.spaceActivator.get(), notices_) {
    automations_.load();
    tellOfFiles(notices_, store_, automations_, tracking_);
    automationRunner_.onReport = [this](const AutomationRunReport& report) {
        if (const auto failure = failureNotice(report)) notices_.show(*failure);
    };
    actionExecutor.onSession = [this](SessionOp op, const std::optional<std::string>& name) {
        tracking_.carryOut(op, name);
    };
    tracking_.onSampleWanted = [this] { sampleNow(); };
    linkModeChanged_ =
        settings.displayLinkMode.subscribe([this](DisplayLinkMode mode) { catalog_.setLinkMode(mode); });
    catalog_.onRefresh = [this](const SpaceSnapshot& snapshot) { handleRefresh(snapshot); };
    if (const auto& first = catalog_.snapshot.get()) handleRefresh(*first);
    if (Workspace* workspace = platform_.workspace.get())
        catalog_.startObserving([workspace](auto onEvent) { return workspace->observe(std::move(onEvent)); });
    tracking_.start();
}

async::Task<SwitchResult> AppState::switchToDesktop(std::string key) {
    return switchRequests_.switchToDesktop(std::move(key));
}

void AppState::sampleNow() { tracking_.sample(focused()); }

void AppState::stop() {
    tracking_.stop();
    try {
        store_.saveNow();
    } catch (const std::exception&) {
        // Nobody is left to be told, and the file on disk stands as it was.
    }
}

/// The order is a promise: each step may rely on what the ones before it have learnt of the reading.
void AppState::handleRefresh(const SpaceSnapshot& snapshot) {
    switcher_.observe(snapshot);
    names_.endReading();
    automationWatcher_.update(triggerKeys(*catalog_.displays));
    announcer_.announce(*catalog_.displays);
    sampleNow();
    currentDesktopChanged.emit(focused());
}

std::optional<Desktop> AppState::focused() const {
    const Desktop* desktop = catalog_.focusedDesktop();
    return desktop ? std::optional(*desktop) : std::nullopt;
}

} // namespace lumnara
