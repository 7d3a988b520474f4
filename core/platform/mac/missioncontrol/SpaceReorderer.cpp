#include "core/platform/mac/missioncontrol/SpaceReorderer.h"

#include "core/arranging/DesktopReadings.h"
#include "core/arranging/ReorderPlan.h"
#include "core/async/Task.h"
#include "core/platform/mac/missioncontrol/MissionControlScript.h"
#include "core/platform/mac/missioncontrol/MissionControlTiming.h"
#include "core/platform/mac/missioncontrol/SpaceReorderError.h"
#include "core/platform/mac/missioncontrol/ThumbnailDrag.h"

#include <fmt/core.h>
#include <utility>

namespace lumnara {

namespace {

/// The display's order as it is now; nothing when it can't be read or the display is gone.
std::optional<std::vector<SpaceID>> orderOn(SpaceProvider& provider, const DisplayID& display) {
    const auto snapshot = MissionControlScript::look(provider);
    const DisplaySpaces* shown = snapshot ? snapshot->spacesOnDisplay(display.uuid) : nullptr;
    if (shown == nullptr) return std::nullopt;
    return DesktopReadings::idsOf(*shown);
}

} // namespace

async::Task<ReorderOutcome> SpaceReorderer::reorder(DisplayID display, std::vector<SpaceID> desired,
                                                    SpaceProvider& provider) {
    const Rect frame = MissionControlScript::requireReady(driver_, display);
    std::vector<SpaceID> working =
        DesktopReadings::idsOf(MissionControlScript::requireDisplay(provider, display));
    if (working.empty()) throw SpaceReorderError(SpaceReorderError::Case::displayNotInSnapshot);
    const std::vector<SpaceID> target = ReorderPlan::reconciled(desired, working);
    ReorderOutcome outcome;
    outcome.planned = ReorderPlan::moves(working, target);

    if (!outcome.planned.empty()) {
        const Point pointer = driver_.pointerLocation();
        session_.onProgress = onProgress;
        co_await MissionControlScript::enter(driver_, session_, frame, static_cast<int>(working.size()),
                                             pointer);
        co_await performMoves(display, frame, working, outcome, provider);
        co_await MissionControlScript::leave(driver_, session_, pointer);
        working = orderOn(provider, display).value_or(std::move(working));
    }
    outcome.matchesDesired = working == target;
    outcome.finalOrder = std::move(working);
    co_return outcome;
}

async::Task<> SpaceReorderer::performMoves(DisplayID display, Rect displayFrame,
                                           std::vector<SpaceID>& working, ReorderOutcome& outcome,
                                           SpaceProvider& provider) {
    const std::size_t total = outcome.planned.size();
    ThumbnailDrag thumbnails(driver_, session_, displayFrame, static_cast<int>(working.size()));
    for (const ReorderMove& move : outcome.planned) {
        if (onProgress)
            onProgress(
                fmt::format("Moving desktops in Mission Control ({} of {})", outcome.performed + 1, total));
        std::vector<SpaceID> expected = ReorderPlan::applying(move, working);
        outcome.stoppedBecause = co_await thumbnails.perform(move);
        if (outcome.stoppedBecause) co_return;
        co_await driver_.pause(MissionControlTiming::afterDrop);
        if (orderOn(provider, display) != expected) {
            outcome.stoppedBecause = fmt::format("Mission Control did not move desktop {} to position {}.",
                                                 move.from + 1, move.to + 1);
            co_return;
        }
        ++outcome.performed;
        working = std::move(expected);
    }
}

} // namespace lumnara
