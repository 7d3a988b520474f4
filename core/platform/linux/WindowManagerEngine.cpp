#include "core/platform/linux/WindowManagerEngine.h"

#include "core/async/Task.h"
#include "core/switching/SwitchError.h"
#include "core/switching/SwitchTarget.h"
#include "core/switching/SwitchVerifier.h"

#include <exception>

namespace lumnara {

namespace {

constexpr int windowManagerAttempts = 2;

// The activator returns once a change was announced, so the first read comes at once and nearly always
// finds the target. With the activator's own patience the attempts end after about a second.
constexpr SwitchVerifier::Config windowManagerLanding{0, 0.02, 10};

/// Seconds for which a snapshot tells which desktops exist. A surface may hand in one that it has shown for
/// a while.
constexpr double listFreshness = 1;

bool isYounger(const SpaceSnapshot& snapshot, double seconds, Date now) {
    const double age = now.secondsSince(snapshot.takenAt);
    return age >= 0 && age <= seconds; // a negative age: the clock was set back
}

} // namespace

async::Task<SwitchResult> WindowManagerEngine::switchTo(const Space& target, const DisplayID& display,
                                                        const SpaceSnapshot& snapshot) {
    const auto context = co_await async::currentContext();
    const async::Nanos start = context.loop->now();
    requireElsewhere(target.id, display, snapshot, context.loop->date());

    for (int number = 1; number <= windowManagerAttempts; ++number) {
        if (co_await attempt(target, display, number == windowManagerAttempts))
            co_return SwitchResult{true, kind(), number, async::secondsOf(context.loop->now() - start)};
        // Whoever cancelled may have asked for another desktop by now; asking again would undo that.
        if (context.stop.stop_requested()) throw async::Cancelled();
    }
    throw SwitchError::notLanded(windowManagerAttempts);
}

void WindowManagerEngine::requireElsewhere(SpaceID target, const DisplayID& display,
                                           const SpaceSnapshot& given, Date now) const {
    std::optional<SpaceSnapshot> readAgain;
    if (!isYounger(given, listFreshness, now)) readAgain = provider_.snapshot();
    if (requireOnDisplay(target, display, readAgain ? *readAgain : given).currentID != target) return;
    // To ask for what is shown does no harm; not to ask for what was shown does.
    if (readAgain || SwitchVerifier::currentSpace(display, provider_) == target)
        throw SwitchError(SwitchError::Case::alreadyThere);
}

async::Task<bool> WindowManagerEngine::attempt(const Space& target, const DisplayID& display, bool isLast) {
    std::exception_ptr refusal;
    try {
        if (co_await activator_.activate(target, display) == target.id) co_return true;
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
