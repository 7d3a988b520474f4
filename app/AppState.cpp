#include "app/AppState.h"

#include "core/base/Failure.h"
#include "core/switching/SwitchError.h"
#include "core/switching/SwitchVerifier.h"

#include <fmt/format.h>
#include <utility>
#include <vector>

namespace lumnara {

namespace {

/// Long enough to read a path.
constexpr double startReportSeconds = 15;

} // namespace

AppState::AppState(async::Loop& loop, AppSettings& settings, Platform& platform,
                   std::unique_ptr<SpaceProvider> provider, const std::filesystem::path& dataFolder)
    : loop_(loop),
      settings_(settings),
      platform_(platform),
      store_(loop, dataFolder / "desktops.json"),
      provider_(std::move(provider)),
      catalog_(loop, *provider_, store_, *settings.displayLinkMode),
      switcher_(*provider_, {.instantSwitching = *settings.instantSwitching}),
      linkedSwitching_(loop, platform, *provider_, catalog_, switcher_, notices_) {
    connectSwitcher();
    reportStart();
    displaysChanged_ = catalog_.displays.subscribe([this](const auto&) { publishNames(); });
    catalog_.onRefresh = [this](const SpaceSnapshot& snapshot) { handleRefresh(snapshot); };
    if (const auto& first = catalog_.snapshot.get()) handleRefresh(*first);
    if (Workspace* workspace = platform_.workspace.get())
        catalog_.startObserving([workspace](auto onEvent) { return workspace->observe(std::move(onEvent)); });
    followSettings();
}

AppState::~AppState() {
    SwitchVerifier::currentSpaceReader = {};
    SwitchVerifier::animationReader = {};
}

void AppState::connectSwitcher() {
    std::vector<SpaceSwitching*> engines;
    if (platform_.spaceActivator) {
        engine_ = std::make_unique<WindowManagerEngine>(*platform_.spaceActivator, *provider_);
        engines.push_back(engine_.get());
    }
    switcher_.engineOverride = std::move(engines);
    WindowServer* server = platform_.windowServer.get();
    if (!server) return;
    SwitchVerifier::currentSpaceReader = [server](const DisplayID& display) {
        return server->currentSpace(display);
    };
    SwitchVerifier::animationReader = [server](const DisplayID& display) {
        return server->isAnimating(display);
    };
}

void AppState::followSettings() {
    settingsChanged_.push_back(settings_.instantSwitching.subscribe(
        [this](bool instant) { switcher_.settings.instantSwitching = instant; }));
    settingsChanged_.push_back(
        settings_.displayLinkMode.subscribe([this](DisplayLinkMode mode) { catalog_.setLinkMode(mode); }));
}

void AppState::stop() {
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
            startReportSeconds);
    if (const auto& error = store_.loadError()) notices_.show(error->sentence(), startReportSeconds);
}

/// The order is a promise: each step may rely on what the ones before it have learnt of the reading.
void AppState::handleRefresh(const SpaceSnapshot& snapshot) {
    switcher_.observe(snapshot);
    publishNames();
    announceChanges();
    const Desktop* focused = catalog_.focusedDesktop();
    onCurrentDesktopChanged.emit(focused ? std::optional(*focused) : std::nullopt);
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
    std::vector<PublishedDesktop> recorded;
    for (const DisplayDesktops& shown : catalog_.displays.get())
        for (const Desktop& desktop : shown.desktops)
            if (desktop.record)
                recorded.push_back(
                    {desktop.spaceKey, desktop.space.id, desktop.display, desktop.record->name});
    platform_.namePublisher->publish(recorded);
}

void AppState::switchTo(const Desktop& desktop) { switching_ = async::spawn(loop_, runSwitch(desktop.key)); }

void AppState::switchBack() { switching_ = async::spawn(loop_, runSwitch(std::nullopt)); }

async::Task<SwitchResult> AppState::switchToDesktop(std::string key) {
    const std::vector<Desktop> members = catalog_.linkedMembers(key);
    if (members.size() > 1) co_return co_await linkedSwitching_.run(members);
    const std::string spaceKey = members.empty() ? key : members.front().spaceKey;
    co_return co_await switcher_.switchToDesktop(spaceKey);
}

async::Task<> AppState::runSwitch(std::optional<std::string> key) {
    const auto context = co_await async::currentContext();
    std::exception_ptr failure;
    try {
        if (key)
            co_await switchToDesktop(*key);
        else
            co_await switcher_.switchBack();
    } catch (...) {
        failure = std::current_exception();
    }
    // What became of a switch that another took over from is no longer of interest.
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
