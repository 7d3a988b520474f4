#pragma once

#include "bench/Bench.h"
#include "core/async/PollLoop.h"
#include "core/async/Task.h"
#include "tests/session/WholeShell.h"

#include <stdexcept>
#include <string>

namespace lumnara::bench {

/// Pairs of a switch of ours and a bare one.
inline constexpr int switchPairs = 301;

inline async::Task<> awaitSwitch(AppState& state, std::string key, bool& done) {
    co_await state.switchToDesktop(std::move(key));
    done = true;
}

/// Microseconds of one switch as every surface asks for it, from the request to verified. Returns when the
/// program has shown it and is at rest.
inline double microsecondsOfSwitch(async::PollLoop& loop, testing::WholeShell& shell,
                                   const std::string& key) {
    const int cards = shell.cards;
    const double time = medianMicroseconds(1, [&] {
        bool done = false;
        const auto handle = async::spawn(loop, awaitSwitch(shell.state, key, done));
        loop.runUntil([&done] { return done; }, 5);
    });
    if (!loop.runUntil([&] { return shell.cards > cards; }, 5))
        throw std::runtime_error("the program did not tell of the switch");
    loop.runUntil([] { return false; }, 0.003);
    return time;
}

/// Verified switches of the whole program beside bare ones on a window manager of their own, and beside a
/// spawned message program.
inline void reportSwitches(Report& report, const std::string& windowManager, const PairedTimes& pairs,
                           const std::vector<double>& spawned) {
    report.times(windowManager + " verified, us", pairs.ours);
    report.times(windowManager + " bare, us", pairs.bare);
    report.times(windowManager + " spawned, us", spawned);
    report.add(windowManager + "_verified_vs_bare", pairs.ratio());
    report.add(windowManager + "_vs_spawned", medianOf(pairs.ours) / medianOf(spawned));
}

} // namespace lumnara::bench
