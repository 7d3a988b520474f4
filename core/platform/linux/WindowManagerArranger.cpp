#include "core/platform/linux/WindowManagerArranger.h"

#include "core/arranging/DesktopReadings.h"
#include "core/arranging/DesktopRemoveError.h"
#include "core/arranging/ReorderPlan.h"
#include "core/async/Task.h"
#include "core/platform/linux/WindowManagerError.h"

#include <algorithm>
#include <fmt/core.h>

namespace lumnara {

namespace {

/// The one whose windows and place on the screen a removed desktop gets: the one before it, or the one after
/// the first. Nothing when it isn't there or is the last one.
std::optional<SpaceID> heirOf(SpaceID id, const std::vector<Space>& desktops) {
    const auto place = std::ranges::find(desktops, id, &Space::id);
    if (place == desktops.end() || desktops.size() < 2) return std::nullopt;
    return place == desktops.begin() ? std::next(place)->id : std::prev(place)->id;
}

/// After how many of the moves the order is this one; none when it is none of those in between either.
int movesThatHold(const std::vector<ReorderMove>& moves, std::vector<SpaceID> before,
                  const std::vector<SpaceID>& now) {
    int performed = 0;
    for (int n = 1; const ReorderMove& move : moves) {
        before = ReorderPlan::applying(move, std::move(before));
        if (before == now) performed = n;
        ++n;
    }
    return performed;
}

} // namespace

DisplaySpaces WindowManagerArranger::requireDisplay(const SpaceSnapshot& snapshot,
                                                    const DisplayID& display) const {
    const DisplaySpaces* shown = snapshot.spacesOnDisplay(display.uuid);
    if (shown == nullptr || shown->spaces.empty())
        throw WindowManagerError(WindowManagerError::Case::noDesktops, windowManager_->windowManager());
    return *shown;
}

async::Task<ReorderOutcome> WindowManagerArranger::reorder(DisplayID display, std::vector<SpaceID> desired) {
    const DisplaySpaces shown = requireDisplay(provider_.snapshot(), display);
    const std::vector<SpaceID> before = DesktopReadings::idsOf(shown);
    const std::vector<SpaceID> wished = ReorderPlan::reconciled(desired, before);
    const std::vector<SpaceID> target = windowManager_->keepable(wished);
    ReorderOutcome outcome;
    outcome.planned = ReorderPlan::moves(before, target);
    outcome.finalOrder = before;
    if (!outcome.planned.empty()) {
        if (onProgress) onProgress(fmt::format("Moving desktops in {}", windowManager_->windowManager()));
        outcome.stoppedBecause = co_await arrange(shown.display, target);
        try {
            outcome.finalOrder = DesktopReadings::idsOf(requireDisplay(provider_.snapshot(), display));
        } catch (const Failure& failure) {
            if (!outcome.stoppedBecause) outcome.stoppedBecause = failure.sentence();
        }
        outcome.performed = movesThatHold(outcome.planned, before, outcome.finalOrder);
    }
    outcome.matchesDesired = outcome.finalOrder == wished;
    if (outcome.matchesDesired) outcome.stoppedBecause.reset();
    if (outcome.matchesDesired || outcome.stoppedBecause) co_return outcome;
    if (outcome.finalOrder == target) {
        outcome.stoppedBecause = windowManager_->keptOrderRule();
    } else {
        const ReorderMove& failed = outcome.planned[static_cast<std::size_t>(outcome.performed)];
        outcome.stoppedBecause = fmt::format("{} did not move desktop {} to position {}.",
                                             windowManager_->windowManager(), failed.from + 1, failed.to + 1);
    }
    co_return outcome;
}

/// The sentence of what went wrong on the way, or nothing.
async::Task<std::optional<std::string>> WindowManagerArranger::arrange(DisplayID display,
                                                                       std::vector<SpaceID> order) {
    try {
        co_await windowManager_->arrange(display, order);
    } catch (const WindowManagerError& failure) {
        co_return failure.sentence();
    }
    co_return std::nullopt;
}

async::Task<RemoveOutcome> WindowManagerArranger::remove(std::vector<SpaceID> ids, DisplayID display) {
    ids = DesktopReadings::removable(ids, requireDisplay(provider_.snapshot(), display));
    RemoveOutcome outcome;
    for (const SpaceID id : ids) {
        const std::string name = windowManager_->windowManager();
        if (onProgress)
            onProgress(ids.size() == 1 ? fmt::format("Removing the desktop in {}", name)
                                       : fmt::format("Removing desktops in {} ({}/{})", name,
                                                     outcome.removedIDs.size() + 1, ids.size()));
        outcome.stoppedBecause = co_await removeOne(id, display);
        if (outcome.stoppedBecause) break;
        outcome.removedIDs.push_back(id);
    }
    co_return outcome;
}

/// The sentence of why it has not gone, or nothing.
async::Task<std::optional<std::string>> WindowManagerArranger::removeOne(SpaceID id, DisplayID display) {
    try {
        const auto heir = heirOf(id, provider_.snapshot().userSpaces(display.uuid));
        if (!heir) co_return DesktopRemoveError(DesktopRemoveError::Case::notOnDisplay).sentence();
        co_await windowManager_->remove(id, *heir);
        if (DesktopReadings::isRemoved(id, display, provider_.snapshot())) co_return std::nullopt;
    } catch (const Failure& failure) {
        co_return failure.sentence();
    }
    co_return fmt::format("{} did not remove the desktop.", windowManager_->windowManager());
}

async::Task<std::vector<SpaceID>> WindowManagerArranger::create(DisplayID display) {
    const SpaceSnapshot before = provider_.snapshot();
    const DisplaySpaces shown = requireDisplay(before, display);
    co_await windowManager_->add(shown.display);
    co_return DesktopReadings::added(before, provider_.snapshot(), display);
}

} // namespace lumnara
