#include "core/platform/mac/engines/DockSwipeEngine.h"

#include "core/async/Task.h"
#include "core/platform/mac/engines/GestureFields.h"
#include "core/platform/mac/server/DisplayHelpers.h"
#include "core/switching/SwitchError.h"
#include "core/switching/SwitchTarget.h"
#include "core/text/Text.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <utility>

namespace lumnara {

namespace {

/// Seconds between two looks at a running animation.
constexpr double animationPoll = 0.05;
/// Seconds that the window server takes to notice where the pointer has gone.
constexpr double warpSettle = 0.02;

SwipePlan requiredPlan(const SpaceSnapshot& snapshot, const DisplayID& display, SpaceID target) {
    requireOnDisplay(target, display, snapshot);
    const auto plan = DockSwipeEngine::plan(snapshot, display, target);
    if (!plan) throw SwitchError(SwitchError::Case::targetNotInSnapshot);
    return *plan;
}

} // namespace

async::Task<SwitchResult> DockSwipeEngine::switchTo(const Space& target, const DisplayID& display,
                                                    const SpaceSnapshot& snapshot) {
    const auto context = co_await async::currentContext();
    const async::Nanos start = context.loop->now();
    requireElsewhere(target.id, display, snapshot);
    if (!accessibility_.isTrusted()) throw SwitchError(SwitchError::Case::accessibilityDenied);
    co_await waitForAnimation(display);

    const std::optional<Point> saved = events_.pointer();
    const std::optional<Point> warp = warpTarget(display);
    int attempts = 0;
    std::exception_ptr failure;
    try {
        const int spent = co_await warpAndSwipe(target.id, display, snapshot, warp);
        attempts = spent;
    } catch (...) {
        failure = std::current_exception();
    }
    if (warp && saved && config.restoreCursor) events_.warpPointer(*saved);
    if (failure) std::rethrow_exception(failure);
    co_return SwitchResult{true, kind(), attempts, async::secondsOf(context.loop->now() - start)};
}

std::optional<SwipePlan> DockSwipeEngine::plan(const SpaceSnapshot& snapshot, const DisplayID& display,
                                               SpaceID target) {
    const DisplaySpaces* shown = snapshot.spacesOnDisplay(display.uuid);
    if (!shown) return std::nullopt;
    const auto current = std::ranges::find(shown->spaces, shown->currentID, &Space::id);
    if (current == shown->spaces.end()) return std::nullopt;
    const auto wanted = std::ranges::find(shown->spaces, target, &Space::id);
    if (wanted == shown->spaces.end()) return SwipePlan{};
    const auto delta = static_cast<int>(wanted - current);
    return SwipePlan{std::abs(delta), delta > 0};
}

void DockSwipeEngine::swipe(bool towardsHigherIndex, bool positiveIsHigherIndex, double speed) {
    const double sign = towardsHigherIndex == positiveIsHigherIndex ? 1.0 : -1.0;
    for (const GesturePhase phase : {GesturePhase::began, GesturePhase::changed, GesturePhase::ended})
        events_.post(GestureFields::dockSwipe(phase, sign, speed), EventTap::session);
}

async::Task<> DockSwipeEngine::waitForAnimation(DisplayID display) {
    const auto context = co_await async::currentContext();
    const async::Nanos deadline = context.loop->now() + async::wholeNanos(config.waitForAnimationUpTo);
    while (SwitchVerifier::isAnimating(display, provider_) && context.loop->now() < deadline) {
        co_await async::sleepFor(animationPoll);
    }
}

async::Task<int> DockSwipeEngine::warpAndSwipe(SpaceID target, DisplayID display, SpaceSnapshot snapshot,
                                               std::optional<Point> warp) {
    if (warp) {
        events_.warpPointer(*warp);
        co_await async::sleepFor(warpSettle);
    }
    co_return co_await swipeUntilLanded(target, std::move(display), std::move(snapshot));
}

async::Task<int> DockSwipeEngine::swipeUntilLanded(SpaceID target, DisplayID display,
                                                   SpaceSnapshot snapshot) {
    const auto context = co_await async::currentContext();
    for (int attempt = 1; attempt <= config.maxAttempts; ++attempt) {
        const SwipePlan plan = requiredPlan(snapshot, display, target);
        if (plan.swipes == 0) co_return attempt; // an earlier round landed after its last look
        co_await swipeAll(plan);
        if (co_await SwitchVerifier::awaitLanding(target, display, provider_, config.verify))
            co_return attempt;
        // Whoever cancelled may have asked for another desktop by now; swiping again would undo that.
        if (context.stop.stop_requested()) throw async::Cancelled();
        snapshot = readAgain(display, attempt);
    }
    throw SwitchError::notLanded(std::max(config.maxAttempts, 0));
}

async::Task<> DockSwipeEngine::swipeAll(SwipePlan plan) {
    for (int step = 0; step < plan.swipes; ++step) {
        if (step > 0 && config.stepDelay > 0) co_await async::sleepFor(config.stepDelay);
        swipe(plan.towardsHigherIndex, config.positiveIsHigherIndex, plan.swipes * config.velocity);
    }
}

std::optional<Point> DockSwipeEngine::warpTarget(const DisplayID& display) {
    if (display.isMain()) return std::nullopt;
    const auto cursor = provider_.cursorDisplay();
    if (!cursor || text::equalsIgnoringCase(cursor->uuid, display.uuid)) return std::nullopt;
    const auto screen = DisplayHelpers::screen(screens_, display.uuid);
    if (!screen) return std::nullopt;
    return screen->frame.middle();
}

SpaceSnapshot DockSwipeEngine::readAgain(const DisplayID& display, int afterAttempts) {
    try {
        SpaceSnapshot snapshot = provider_.snapshot();
        if (snapshot.spacesOnDisplay(display.uuid)) return snapshot;
    } catch (const std::exception&) {
        // A reading that fails tells as little as a display that is gone.
    }
    throw SwitchError::notLanded(afterAttempts);
}

} // namespace lumnara
