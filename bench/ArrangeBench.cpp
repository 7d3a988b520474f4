// What planning a new order of desktops costs, by the number of desktops, and what carrying one out costs on
// real window managers.

#include "bench/Bench.h"
#include "core/missioncontrol/ReorderPlan.h"
#include "core/model/SpaceSnapshot.h"
#include "tests/session/ArrangerSession.h"

#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>

namespace lumnara::bench {
namespace {

/// Milliseconds to plan a random order of so many desktops; the plan is carried out once and held to its aim.
double planning(int count, int rounds) {
    std::mt19937_64 random(11);
    std::vector<SpaceID> current;
    for (int i = 0; i < count; ++i) current.push_back({random()});
    std::vector<SpaceID> desired = current;
    std::ranges::shuffle(desired, random);

    std::vector<ReorderMove> moves;
    const double time = medianMicroseconds(rounds, [&] { moves = ReorderPlan::moves(current, desired); });
    for (const ReorderMove& move : moves) current = ReorderPlan::applying(move, std::move(current));
    if (current != desired) {
        std::fprintf(stderr, "the plan for %d desktops misses its aim\n", count);
        std::exit(EXIT_FAILURE);
    }
    return time / 1000;
}

/// Milliseconds to turn the order of ten desktops around, a window on each, from the call to the order read
/// again.
double turningAround(testing::WindowManager windowManager, int rounds) {
    testing::ArrangerSession at(windowManager, 10);
    std::vector<SpaceID> wish;
    for (const Space& space : at.shown().spaces) wish.push_back(space.id);
    std::vector<double> times;
    for (int round = 0; round < rounds; ++round) {
        std::ranges::reverse(wish);
        ReorderOutcome outcome;
        times.push_back(medianMicroseconds(1, [&] { outcome = at.reorder(wish); }) / 1000);
        if (!outcome.matchesDesired || outcome.performed != 9)
            throw std::runtime_error("the order was not turned around");
        at.settle();
    }
    if (at.homes() != "a b c d e f g h i j ") throw std::runtime_error("a window has lost its desktop");
    return medianOf(std::move(times));
}

} // namespace
} // namespace lumnara::bench

int main() {
    using namespace lumnara::bench;
    Report report("arrange");
    report.line("moves_16_ms", planning(16, 1001));
    report.line("moves_1000_ms", planning(1000, 101));
    report.add("moves_100000_ms", planning(100'000, 15), "a random order");
    report.add("reorder10_i3_ms", turningAround(lumnara::testing::WindowManager::i3, 21));
    report.add("reorder10_openbox_ms", turningAround(lumnara::testing::WindowManager::openbox, 21));
    report.line("reorder10_xfwm4_ms", turningAround(lumnara::testing::WindowManager::xfwm4, 21));
}
