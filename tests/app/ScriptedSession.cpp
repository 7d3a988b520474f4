#include "tests/app/ScriptedSession.h"

#include "core/async/Task.h"
#include "core/platform/linux/WindowManagerEngine.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace lumnara::testing {

async::Task<std::optional<SpaceID>> ScriptedActivator::activate(const Space& target,
                                                                const DisplayID& display) {
    asked.push_back(target.id);
    if (const auto kept = focusKept_.lock()) focused.push_back(kept->uuid);
    co_await async::sleepFor(0.001);
    if (failure) std::rethrow_exception(failure);
    if (display.uuid == stubborn)
        throw WindowManagerError(WindowManagerError::Case::refused, "i3", stubborn + " is stuck");
    if (!obeys) co_return std::nullopt;
    provider_.show(target.id);
    if (onShown) onShown();
    co_return std::nullopt;
}

std::shared_ptr<const DisplayID> ScriptedActivator::keepFocusOn(const DisplayID& display) {
    auto kept = std::make_shared<const DisplayID>(display);
    focusKept_ = kept;
    return kept;
}

async::Task<ReorderOutcome> AddingArranger::reorder(DisplayID, std::vector<SpaceID>) {
    co_return ReorderOutcome();
}

async::Task<RemoveOutcome> AddingArranger::remove(std::vector<SpaceID>, DisplayID) {
    co_return RemoveOutcome();
}

async::Task<std::vector<SpaceID>> AddingArranger::create(DisplayID display) {
    co_await async::sleepFor(0.05);
    if (failure) std::rethrow_exception(failure);
    std::vector<SpaceID> made;
    for (int n = 0; n < adds; ++n) {
        Space& space = std::ranges::find(provider_.current.displays, display, &DisplaySpaces::display)
                           ->spaces.emplace_back();
        space.id = {nextID_++};
        space.uuid = "added-" + space.id.text();
        space.kind = SpaceKind::user;
        made.push_back(space.id);
    }
    if (onAdded) onAdded();
    co_return made;
}

std::vector<std::string> RecordingPublisher::lastNames() const {
    std::vector<std::string> names;
    if (!published.empty())
        for (const PublishedDesktop& desktop : published.back()) names.push_back(desktop.name);
    return names;
}

DisplaySpaces displayOf(const std::string& uuid, int count, std::uint64_t firstId) {
    DisplaySpaces display{DisplayID{uuid}, {}, SpaceID{firstId}};
    for (int i = 0; i < count; ++i) {
        Space space;
        space.id = SpaceID{firstId + static_cast<std::uint64_t>(i)};
        space.uuid = uuid + "-" + std::to_string(i + 1);
        space.kind = SpaceKind::user;
        space.indexOnDisplay = i;
        display.spaces.push_back(space);
    }
    return display;
}

std::vector<DisplaySpaces> twoDisplays() { return {displayOf("A", 3, 1), displayOf("B", 2, 11)}; }

ScriptedSession::ScriptedSession(std::vector<DisplaySpaces> displays) {
    previousSink_ = setLogSink([this](std::string_view line) { logged.emplace_back(line); });
    std::map<std::string, std::string> names;
    auto ownScreens = std::make_unique<ScriptedScreens>();
    double left = 0;
    for (const DisplaySpaces& display : displays) {
        const std::string& uuid = display.display.uuid;
        names[uuid] = "Monitor " + uuid;
        ownScreens->list.push_back({uuid, "DP-" + uuid, "Monitor " + uuid, Rect{left, 0, 1280, 800}, 1});
        left += 1280;
    }
    if (!displays.empty()) ownScreens->under = displays.front().display.uuid;

    SpaceSnapshot snapshot{std::move(displays), loop.date()};
    auto ownProvider =
        std::make_unique<ScriptedProvider>(std::move(snapshot), std::nullopt, std::nullopt, names);
    provider = ownProvider.get();
    provider->clock = &loop;
    provider->probe = [this](const DisplayID& display) {
        ++probes;
        const DisplaySpaces* shown = provider->current.spacesOnDisplay(display.uuid);
        return shown ? std::optional(shown->currentID) : std::nullopt;
    };
    auto ownWorkspace = std::make_unique<ScriptedWorkspace>();
    auto ownActivator = std::make_unique<ScriptedActivator>(*provider);
    auto ownPublisher = std::make_unique<RecordingPublisher>();
    screens = ownScreens.get();
    workspace = ownWorkspace.get();
    activator = ownActivator.get();
    publisher = ownPublisher.get();
    platform.name = "scripted";
    platform.screens = std::move(ownScreens);
    platform.workspace = std::move(ownWorkspace);
    platform.spaceProvider = std::move(ownProvider);
    platform.spaceActivator = std::move(ownActivator);
    platform.windowManagerEngine = std::make_unique<WindowManagerEngine>(*activator, *provider);
    platform.namePublisher = std::move(ownPublisher);
}

ScriptedSession::~ScriptedSession() {
    state_.reset();
    setLogSink(previousSink_);
}

AppState& ScriptedSession::start() {
    state_ = std::make_unique<AppState>(loop, settings, platform, executor, folder.path());
    listening_ = state_->notices().subscribe([this](const Notice& notice) { notices.push_back(notice); });
    return *state_;
}

Desktop ScriptedSession::desktop(const std::string& spaceKey) {
    for (const Desktop& desktop : catalog().desktops())
        if (desktop.spaceKey == spaceKey) return desktop;
    ADD_FAILURE() << "no desktop " << spaceKey;
    return {};
}

void ScriptedSession::userShows(std::uint64_t space) {
    provider->show(SpaceID{space});
    tell();
}

void ScriptedSession::tell(WorkspaceEvent event) {
    workspace->events.emit(event);
    loop.runUntilIdle();
}

} // namespace lumnara::testing
