#include "core/switching/WindowManagerEngine.h"

#include "core/switching/SwitchError.h"
#include "core/switching/SwitchVerifier.h"

#include <algorithm>
#include <exception>

namespace lumnara {

namespace {

constexpr int windowManagerAttempts = 2;

// The activator returns once a change was announced, so the first read comes at once and nearly always
// finds the target. With the activator's own patience the attempts end after about a second.
constexpr SwitchVerifier::Config windowManagerLanding{0, 0.02, 10};

/// Seconds for which a snapshot tells which desktops exist. A surface may hand in one that it has shown for
/// a while.
constexpr double freshness = 1;

bool holdsSpace(const SpaceSnapshot& snapshot, SpaceID target, const DisplayID& display) {
    const DisplaySpaces* shown = snapshot.spacesOnDisplay(display.uuid);
    return shown != nullptr &&
           std::ranges::any_of(shown->spaces, [&](const Space& space) { return space.id == target; });
}

bool isFresh(const SpaceSnapshot& snapshot, Date now) {
    const double age = now.secondsSince(snapshot.takenAt);
    return age >= 0 && age <= freshness; // a negative age: the clock was set back
}

} // namespace

async::Task<SwitchResult> WindowManagerEngine::switchTo(const Space& target, const DisplayID& display,
                                                        const SpaceSnapshot& snapshot) {
    const auto context = co_await async::currentContext();
    const async::Nanos start = context.loop->now();
    requireOnDisplay(target.id, display, snapshot, context.loop->date());
    if (SwitchVerifier::currentSpace(display, provider_) == target.id)
        throw SwitchError(SwitchError::Case::alreadyThere);

    for (int number = 1; number <= windowManagerAttempts; ++number) {
        const bool landed = co_await attempt(target, display, number == windowManagerAttempts);
        if (landed)
            co_return SwitchResult{true, kind(), number, async::secondsOf(context.loop->now() - start)};
        // Whoever cancelled may have asked for another desktop by now; asking again would undo that.
        if (context.stop.stop_requested()) throw async::Cancelled();
    }
    throw SwitchError::notLanded(windowManagerAttempts);
}

void WindowManagerEngine::requireOnDisplay(SpaceID target, const DisplayID& display,
                                           const SpaceSnapshot& snapshot, Date now) const {
    const bool holds = isFresh(snapshot, now) ? holdsSpace(snapshot, target, display)
                                              : holdsSpace(provider_.snapshot(), target, display);
    if (!holds) throw SwitchError(SwitchError::Case::targetNotInSnapshot);
}

async::Task<bool> WindowManagerEngine::attempt(const Space& target, const DisplayID& display, bool isLast) {
    std::exception_ptr refusal;
    try {
        co_await activator_.activate(target, display);
    } catch (const Failure&) {
        refusal = std::current_exception();
    }
    // A refused request changes nothing later: one look says all.
    if (refusal) {
        if (SwitchVerifier::currentSpace(display, provider_) == target.id) co_return true;
        if (isLast) std::rethrow_exception(refusal);
        co_return false;
    }
    co_return co_await SwitchVerifier::awaitLanding(target.id, display, provider_, windowManagerLanding);
}

} // namespace lumnara
