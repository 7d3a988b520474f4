#include "core/platform/mac/missioncontrol/DesktopRemover.h"

#include "core/arranging/DesktopReadings.h"
#include "core/arranging/MissionControlSentences.h"
#include "core/async/Task.h"
#include "core/platform/mac/missioncontrol/MissionControlScript.h"
#include "core/platform/mac/missioncontrol/MissionControlTiming.h"

#include <algorithm>
#include <charconv>
#include <fmt/core.h>
#include <utility>

namespace lumnara {

namespace {

bool isUserDesktop(const Space& space) { return space.kind == SpaceKind::user; }

/// Where the desktop stands on its display.
struct DesktopPlace {
    std::size_t index;
    std::size_t among; ///< Spaces of the display
    int userNumber;    ///< from 1, among the display's user desktops

    bool operator==(const DesktopPlace&) const = default;
};

/// Nothing when it isn't a user desktop of the display any more, or can't be read.
std::optional<DesktopPlace> lookFor(SpaceID id, const DisplayID& display, SpaceProvider& provider) {
    const auto snapshot = MissionControlScript::look(provider);
    const DisplaySpaces* shown = snapshot ? snapshot->spacesOnDisplay(display.uuid) : nullptr;
    if (shown == nullptr) return std::nullopt;
    const auto space = std::ranges::find(shown->spaces, id, &Space::id);
    if (space == shown->spaces.end() || !isUserDesktop(*space)) return std::nullopt;
    const auto before = std::count_if(shown->spaces.begin(), space, isUserDesktop);
    return DesktopPlace{static_cast<std::size_t>(space - shown->spaces.begin()), shown->spaces.size(),
                        static_cast<int>(before) + 1};
}

/// The number in "Desktop <number>", or nothing for any other title.
std::optional<int> numberInTitle(std::string_view title) {
    constexpr std::string_view prefix = "Desktop ";
    if (!title.starts_with(prefix)) return std::nullopt;
    const std::string_view digits = title.substr(prefix.size());
    int number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
    return number;
}

} // namespace

async::Task<RemoveOutcome> DesktopRemover::remove(std::vector<SpaceID> ids, DisplayID display,
                                                  SpaceProvider& provider) {
    const Rect frame = MissionControlScript::requireReady(driver_, display);
    const DisplaySpaces shown = MissionControlScript::requireDisplay(provider, display);
    ids = DesktopReadings::removable(ids, shown);
    RemoveOutcome outcome;
    if (ids.empty()) co_return outcome;

    const Point pointer = driver_.pointerLocation();
    const int count = static_cast<int>(shown.spaces.size());
    session_.onProgress = onProgress;
    co_await MissionControlScript::enter(driver_, session_, frame, count, pointer);
    co_await removeAll(std::move(ids), std::move(display), frame, count, outcome, provider);
    co_await MissionControlScript::leave(driver_, session_, pointer);
    co_return outcome;
}

async::Task<> DesktopRemover::removeAll(std::vector<SpaceID> ids, DisplayID display, Rect displayFrame,
                                        int count, RemoveOutcome& outcome, SpaceProvider& provider) {
    for (const SpaceID id : ids) {
        if (onProgress)
            onProgress(ids.size() == 1 ? "Removing the desktop in Mission Control"
                                       : fmt::format("Removing desktops in Mission Control ({}/{})",
                                                     outcome.removedIDs.size() + 1, ids.size()));
        outcome.stoppedBecause = requestRemoval(id, display, displayFrame, count, provider);
        if (outcome.stoppedBecause) co_return;
        co_await driver_.pause(MissionControlTiming::afterDrop);
        const auto now = MissionControlScript::look(provider);
        if (!now || !DesktopReadings::isRemoved(id, display, *now)) {
            outcome.stoppedBecause = "Mission Control did not remove the desktop.";
            co_return;
        }
        outcome.removedIDs.push_back(id);
        --count;
    }
}

/// The sentence of what kept it from being asked for, or nothing.
std::optional<std::string> DesktopRemover::requestRemoval(SpaceID id, const DisplayID& display,
                                                          const Rect& displayFrame, int count,
                                                          SpaceProvider& provider) {
    const auto place = lookFor(id, display, provider);
    if (!place) return MissionControlSentences::desktopGone;
    const auto buttons = session_.expandedBar(displayFrame, count);
    if (!buttons || place->index >= buttons->size()) return MissionControlSentences::barGone;
    const std::string& title = (*buttons)[place->index].title;
    // A window server that lags behind tells another count. Reading the bar can take the Dock long, and
    // another order changes no title: so it is looked at again behind it.
    if (numberInTitle(title) != place->userNumber || place->among != buttons->size() ||
        lookFor(id, display, provider) != place)
        return "Mission Control's thumbnails did not line up with the desktops. Nothing was changed.";
    if (!driver_.removeDesktop(static_cast<int>(place->index), title))
        return "Mission Control did not accept the request to remove that desktop.";
    return std::nullopt;
}

} // namespace lumnara
