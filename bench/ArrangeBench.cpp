// What planning a new order of desktops costs, by the number of desktops.

#include "bench/Bench.h"
#include "core/missioncontrol/ReorderPlan.h"
#include "core/model/SpaceSnapshot.h"

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

} // namespace
} // namespace lumnara::bench

int main() {
    using namespace lumnara::bench;
    Report report("arrange");
    report.line("moves_16_ms", planning(16, 1001));
    report.line("moves_1000_ms", planning(1000, 101));
    report.add("moves_100000_ms", planning(100'000, 15), "a random order");
}
