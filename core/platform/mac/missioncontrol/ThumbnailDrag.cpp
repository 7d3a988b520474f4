#include "core/platform/mac/missioncontrol/ThumbnailDrag.h"

#include "core/arranging/MissionControlSentences.h"
#include "core/async/Task.h"
#include "core/platform/mac/missioncontrol/MissionControlTiming.h"

#include <cmath>

namespace lumnara {

namespace {

using namespace MissionControlTiming;

/// Points by which the target may have moved without being aimed at again.
constexpr double aimTolerance = 4;
constexpr int aimSteps = 10;

} // namespace

async::Task<std::optional<std::string>> ThumbnailDrag::perform(ReorderMove move) {
    const auto buttons = session_.expandedBar(displayFrame_, count_);
    if (!buttons || !isPlace(move.from) || !isPlace(move.to)) co_return MissionControlSentences::barGone;
    direction_ = move.from < move.to ? 1 : -1;
    const Point start = (*buttons)[static_cast<std::size_t>(move.from)].middle();
    co_await lift(start);
    const Point lifted{start.x + liftSteps * liftStepDistance * direction_, start.y};

    const auto shifted = session_.bar(displayFrame_, count_);
    if (!shifted) {
        driver_.releasePointer(lifted);
        co_return "Mission Control closed while a desktop was being moved.";
    }
    Point drop = dropPointOn(*shifted, move.to);
    co_await drag(lifted, drop, dragSteps);
    co_await driver_.pause(dropSettle);

    // The thumbnails make room during a drag.
    if (const auto now = session_.bar(displayFrame_, count_)) {
        const Point again = dropPointOn(*now, move.to);
        if (std::abs(again.x - drop.x) > aimTolerance) {
            const Point beside{drop.x, again.y};
            co_await drag(beside, again, aimSteps);
            co_await driver_.pause(dropSettle);
            drop = again;
        }
    }
    driver_.releasePointer(drop);
    co_return std::nullopt;
}

/// Behind the middle of the thumbnail there, so that the dragged one goes in on its far side.
Point ThumbnailDrag::dropPointOn(const SpacesBarButtons& buttons, int to) const {
    const Point middle = buttons[static_cast<std::size_t>(to)].middle();
    return {middle.x + dropOvershoot * direction_, middle.y};
}

async::Task<> ThumbnailDrag::lift(Point from) {
    driver_.movePointer(from);
    co_await driver_.pause(pointerSettle);
    driver_.pressPointer(from);
    co_await driver_.pause(pressHold);
    for (int step = 1; step <= liftSteps; ++step) {
        driver_.dragPointer({from.x + step * liftStepDistance * direction_, from.y});
        co_await driver_.pause(dragStepPause);
    }
}

async::Task<> ThumbnailDrag::drag(Point from, Point to, int steps) {
    for (int step = 1; step <= steps; ++step) {
        const double part = static_cast<double>(step) / steps;
        driver_.dragPointer({from.x + (to.x - from.x) * part, from.y + (to.y - from.y) * part});
        co_await driver_.pause(dragStepPause);
    }
}

} // namespace lumnara
