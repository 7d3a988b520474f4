// What planning a new order of desktops costs, by the number of desktops, what carrying one out costs on real
// window managers and on the simulated Mac, and how many runs with faults on that Mac end as they must not.
// With the argument "transcripts" it prints instead what is done there step by step, and what each fault led
// to.

#include "bench/ArrangeTranscripts.h"
#include "bench/Bench.h"
#include "core/arranging/ReorderPlan.h"
#include "core/model/SpaceSnapshot.h"
#include "tests/session/ArrangerSession.h"
#include "tests/simruns/ArrangeRun.h"
#include "tests/support/LogLines.h"

#include <cstdio>
#include <cstdlib>
#include <fmt/format.h>
#include <random>
#include <string>
#include <string_view>

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

/// Seconds of a Mac's clock that pass in one of ours while ten desktops are turned around there.
double simulatedSeconds(int rounds) {
    double seconds = 0;
    const double time = medianMicroseconds(rounds, [&] { seconds = reorderTranscript(10).seconds; });
    return seconds / (time / 1e6);
}

constexpr std::uint64_t runsOfEach = 3000;

testing::ArrangeTally faultRuns(testing::ArrangeWork work) {
    const testing::LogLines lines; // the creator's lines are of no interest here
    testing::ArrangeTally tally;
    for (std::uint64_t seed = 1; seed <= runsOfEach; ++seed) tally.add(testing::playArrangeRun(work, seed));
    return tally;
}

/// A line a mishap, with its endings from the most frequent on.
std::string tableOf(const testing::ArrangeTally& tally) {
    std::string text;
    for (const auto& [mishap, counts] : tally.endings) {
        std::vector<std::pair<std::string, int>> sorted(counts.begin(), counts.end());
        std::ranges::sort(sorted,
                          [](const auto& one, const auto& other) { return one.second > other.second; });
        text += fmt::format("  {}\n", mishap);
        for (const auto& [ending, count] : sorted) text += fmt::format("{:10}  {}\n", count, ending);
    }
    return text;
}

void printTranscripts() {
    using testing::ArrangeWork;
    std::printf("a reorder of four desktops\n%s\n", reorderTranscript(4).text.c_str());
    std::printf("a removal that the user stops\n%s\n", stoppedRemovalTranscript().text.c_str());
    std::printf("runs to reorder\n%s", tableOf(faultRuns(ArrangeWork::reorder)).c_str());
    std::printf("runs to remove\n%s", tableOf(faultRuns(ArrangeWork::remove)).c_str());
    std::printf("runs to create\n%s", tableOf(faultRuns(ArrangeWork::create)).c_str());
}

void reportFaultRuns(Report& report) {
    using testing::ArrangeWork;
    int runs = 0;
    int broken = 0;
    for (const ArrangeWork work : {ArrangeWork::reorder, ArrangeWork::remove, ArrangeWork::create}) {
        const testing::ArrangeTally tally = faultRuns(work);
        runs += tally.runs;
        broken += tally.broken;
    }
    report.add("fault_runs", runs, "seeded, on the simulated Mac");
    report.add("fault_runs_broken", broken, "left something behind, or told what was not so");
}

} // namespace
} // namespace lumnara::bench

int main(int count, char** arguments) {
    using namespace lumnara::bench;
    if (count > 1 && std::string_view(arguments[1]) == "transcripts") {
        printTranscripts();
        return EXIT_SUCCESS;
    }
    Report report("arrange");
    report.add("moves_16", planning(16, 1001), "ms");
    report.add("moves_1000", planning(1000, 101), "ms");
    report.add("sim_seconds_per_second", simulatedSeconds(21), "ten desktops turned around");
    reportFaultRuns(report);
    report.add("reorder10_i3_ms", turningAround(lumnara::testing::WindowManager::i3, 21));
    report.add("reorder10_openbox_ms", turningAround(lumnara::testing::WindowManager::openbox, 21));
    report.line("reorder10_xfwm4_ms", turningAround(lumnara::testing::WindowManager::xfwm4, 21));
}
