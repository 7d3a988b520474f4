#include "app/AppState.h"

#include "core/base/Failure.h"
#include "core/names/DisplayLink.h"
#include "core/switching/SwitchError.h"
#include "core/text/Text.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>
#include <vector>

namespace lumnara {

namespace {

/// How long the failure of an automation is shown, in seconds.
constexpr double automationNoticeSeconds = 2.2;
/// Stands for the displays of a link group among those that automations are triggered on.
constexpr const char* linkedDisplays = "linked";

} // namespace

// The order of the members is that of their making, and each may use those before it.
AppState::AppState(async::Loop& loop, AppSettings& settings, Platform& platform,
                   std::unique_ptr<SpaceProvider> provider, ActionExecutor& actionExecutor,
                   const std::filesystem::path& dataFolder)
    : loop_(loop),
      settings_(settings),
      platform_(platform),
      store_(loop, dataFolder / "desktops.json"),
      provider_(std::move(provider)),
      catalog_(loop, *provider_, store_, *settings.displayLinkMode),
      notes_(loop, NotesStore::defaultDirectory(dataFolder)),
      automations_(loop, AutomationStore::defaultURL(dataFolder)),
      automationRunner_(automations_, actionExecutor),
      automationWatcher_(loop, automationRunner_),
      tracking_(loop, settings, platform, dataFolder),
      switcher_(*provider_, {.instantSwitching = *settings.instantSwitching}),
      engines_(platform, *provider_, switcher_, settings),
      linkedSwitching_(loop, platform, *provider_, catalog_, switcher_, notices_) {
    automations_.load();
    connectAutomations(actionExecutor);
    tracking_.onSampleWanted = [this] { sampleNow(); };
    reportStart();
    displaysChanged_ = catalog_.displays.subscribe([this](const auto&) { publishNames(); });
    catalog_.onRefresh = [this](const SpaceSnapshot& snapshot) { handleRefresh(snapshot); };
    if (const auto& first = catalog_.snapshot.get()) handleRefresh(*first);
    if (Workspace* workspace = platform_.workspace.get())
        catalog_.startObserving([workspace](auto onEvent) { return workspace->observe(std::move(onEvent)); });
    tracking_.start();
    followSettings();
}

void AppState::connectAutomations(ActionExecutor& actionExecutor) {
    automationRunner_.onReport = [this](const AutomationRunReport& report) {
        if (report.failures.empty()) return;
        const std::string& failure = report.failures.front();
        notices_.show(fmt::format("{}: {}", report.automation, failure.empty() ? "failed" : failure),
                      automationNoticeSeconds);
    };
    actionExecutor.onSession = [this](SessionOp op, const std::optional<std::string>& name) {
        tracking_.carryOut(op, name);
    };
}

void AppState::followSettings() {
    settingsChanged_.push_back(
        settings_.displayLinkMode.subscribe([this](DisplayLinkMode mode) { catalog_.setLinkMode(mode); }));
}

void AppState::sampleNow() {
    const Desktop* focused = catalog_.focusedDesktop();
    tracking_.sample(focused ? std::optional(*focused) : std::nullopt);
}

void AppState::stop() {
    tracking_.stop();
    try {
        store_.saveNow();
    } catch (const std::exception&) {
        // Nobody is left to be told, and the file on disk stands as it was.
    }
}

void AppState::reportStart() {
    if (const auto& kept = store_.recoveredFromCorruptFile())
        notices_.show(
            fmt::format("Your desktop names could not be read. The file was damaged. It was kept at {} "
                        "and Lumnara started with an empty list.",
                        kept->string()),
            startNoticeSeconds);
    if (const auto& error = store_.loadError()) notices_.show(error->sentence(), startNoticeSeconds);
    if (const auto& kept = automations_.recoveredFromCorruptFile())
        notices_.show(fmt::format("Your automations could not be read. The file was damaged. It was kept at "
                                  "{} and Lumnara started without any.",
                                  kept->string()),
                      startNoticeSeconds);
    if (const auto& error = automations_.loadError()) notices_.show(error->sentence(), startNoticeSeconds);
    if (const auto& failure = tracking_.failure())
        notices_.show("Time is not recorded. " + *failure, startNoticeSeconds);
}

/// The order is a promise: each step may rely on what the ones before it have learnt of the reading.
void AppState::handleRefresh(const SpaceSnapshot& snapshot) {
    switcher_.observe(snapshot);
    publishNames();
    watchForTriggers();
    announceChanges();
    sampleNow();
    const Desktop* focused = catalog_.focusedDesktop();
    onCurrentDesktopChanged.emit(focused ? std::optional(*focused) : std::nullopt);
}

/// A link group stands for all displays that show it.
void AppState::watchForTriggers() {
    AutomationTriggerWatcher::Keys keys;
    for (const DisplayDesktops& shown : catalog_.displays.get())
        if (const Desktop* current = shown.current())
            keys[current->isLinked() ? linkedDisplays : shown.display.uuid] = current->key;
    automationWatcher_.update(std::move(keys));
}

/// Tells of each display that now shows another desktop. A display that has just appeared is not told of,
/// and neither is the second display of a link group that follows the first.
void AppState::announceChanges() {
    std::vector<Desktop> switched; // copies: a listener may edit, and the displays are then laid out anew
    for (const DisplayDesktops& shown : catalog_.displays.get()) {
        const Desktop* current = shown.current();
        if (!current) continue;
        const auto [previous, isNew] = lastCurrentKeys_.try_emplace(shown.display.uuid, current->key);
        if (isNew || previous->second == current->key) continue;
        previous->second = current->key;
        if (current->isLinked() && lastAnnouncedKey_ == current->key) continue;
        lastAnnouncedKey_ = current->key;
        switched.push_back(*current);
    }
    for (const Desktop& desktop : switched) onDesktopSwitched.emit(desktop);
}

/// The whole list each time; the publisher knows what is already so. After each reading too, since a window
/// manager that was away may have come back without the names.
void AppState::publishNames() {
    if (!platform_.namePublisher) return;
    const auto file = store_.file();
    std::vector<PublishedDesktop> kept;
    for (const DisplayDesktops& shown : catalog_.displays.get())
        for (const Desktop& desktop : shown.desktops)
            // A member of a group has the group's record, which it must find again while links don't hold.
            if (desktop.record || DisplayLink::groupOf(*file, desktop.spaceKey))
                kept.push_back({desktop.spaceKey, desktop.space.id, desktop.display,
                                desktop.record ? desktop.record->name : std::string()});
    platform_.namePublisher->publish(kept);
}

void AppState::switchTo(const Desktop& desktop) {
    std::vector<DisplayID> displays{desktop.display};
    for (const Desktop& member : catalog_.linkedMembers(desktop.key)) displays.push_back(member.display);
    startSwitch(std::move(displays), runSwitch(desktop));
}

void AppState::switchBack(std::optional<DisplayID> display) {
    const std::optional<DisplayID> meant = display ? display : provider_->cursorDisplay();
    startSwitch(meant ? std::vector{*meant} : std::vector<DisplayID>(), runSwitchBack(std::move(display)));
}

/// What moved one of the displays before is given up: found not to have come where it wanted, it would go
/// there once more.
void AppState::startSwitch(std::vector<DisplayID> displays, async::Task<> task) {
    const auto isMeant = [&](const DisplayID& moved) {
        return std::ranges::any_of(displays, [&](const DisplayID& display) {
            return text::equalsIgnoringCase(display.uuid, moved.uuid);
        });
    };
    std::erase_if(switching_, [&](const Switching& earlier) {
        return displays.empty() || earlier.displays.empty() || std::ranges::any_of(earlier.displays, isMeant);
    });
    switching_.push_back({std::move(displays), async::spawn(loop_, std::move(task))});
}

async::Task<SwitchResult> AppState::switchToDesktop(std::string key) {
    const std::vector<Desktop> members = catalog_.linkedMembers(key);
    if (members.size() > 1) co_return co_await linkedSwitching_.run(members);
    const std::string spaceKey = members.empty() ? key : members.front().spaceKey;
    co_return co_await switcher_.switchToDesktop(spaceKey);
}

async::Task<> AppState::runSwitch(Desktop desktop) {
    const auto context = co_await async::currentContext();
    const bool isGroup = catalog_.linkedMembers(desktop.key).size() > 1;
    // Not where a group that is still under way would have the keyboard.
    const auto focus = platform_.spaceActivator && !isGroup
                           ? platform_.spaceActivator->keepFocusOn(desktop.display)
                           : nullptr;
    std::exception_ptr failure;
    try {
        co_await switchToDesktop(desktop.key);
    } catch (...) {
        failure = std::current_exception();
    }
    // A group tells of its failures itself. What became of a switch that another took over from is no longer
    // of interest.
    if (failure && !isGroup && !context.stop.stop_requested()) reportSwitch(failure);
}

async::Task<> AppState::runSwitchBack(std::optional<DisplayID> display) {
    const auto context = co_await async::currentContext();
    std::exception_ptr failure;
    try {
        co_await switcher_.switchBack(display);
    } catch (...) {
        failure = std::current_exception();
    }
    if (failure && !context.stop.stop_requested()) reportSwitch(failure);
}

void AppState::reportSwitch(std::exception_ptr failure) {
    try {
        std::rethrow_exception(failure);
    } catch (const SwitchError& error) {
        if (error.which() != SwitchError::Case::alreadyThere) notices_.show(error.sentence());
    } catch (const std::exception&) {
        notices_.show(sentenceOf(failure));
    }
}

} // namespace lumnara
