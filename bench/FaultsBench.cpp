// What a crash and a bad disk cost the system's files: 300 kills of a process that changes all of them at
// once, and every file call of a start and of a save failing in turn.

#include "bench/Bench.h"
#include "tests/faults/IoFaults.h"
#include "tests/faults/Kills.h"

#include <cstdio>
#include <fmt/format.h>
#include <string>
#include <vector>

namespace lumnara::bench {
namespace {

void printLosses(const std::vector<std::string>& losses) {
    for (const std::string& loss : losses) std::printf("  LOST %s\n", loss.c_str());
}

void killAtCalls(Report& report) {
    const testing::KillReport killed = testing::runKillsAtCalls(1);
    std::printf("  %-12s %8s %12s %6s\n", "store", "at calls", "interrupted", "lost");
    for (const testing::KillTally& tally : killed.stores)
        std::printf("  %-12s %8d %12d %6d\n", tally.store.c_str(), tally.kills, tally.interrupted,
                    tally.lost);
    printLosses(killed.losses);
    report.add("kills_at_calls", killed.kills);
    report.add("kills_at_calls_lost", killed.killsLost);
}

void kill(Report& report) {
    constexpr int kills = 300;
    constexpr unsigned seed = 2026;
    const testing::KillReport killed = testing::runKills(kills, seed);
    std::printf("  %-12s %8s %10s %12s %6s\n", "store", "kills", "promises", "interrupted", "lost");
    for (const testing::KillTally& tally : killed.stores)
        std::printf("  %-12s %8d %10d %12d %6d\n", tally.store.c_str(), tally.kills, tally.promises,
                    tally.interrupted, tally.lost);
    printLosses(killed.losses);
    report.add("kills", killed.kills);
    report.add("kills_lost", killed.killsLost);
}

void fail(Report& report) {
    const testing::FaultReport failed = testing::runIoFaults(true);
    std::printf("  %-12s %-10s %8s %8s %6s\n", "store", "call", "faults", "told", "lost");
    for (const auto& [place, tally] : failed.tallies)
        std::printf("  %-12s %-10s %8d %8d %6d\n", place.first.c_str(), testing::nameOf(place.second),
                    tally.faults, tally.told, tally.lost);
    printLosses(failed.losses);
    report.add("io_faults", failed.faults);
    report.add("io_faults_lost", failed.lost);
}

} // namespace
} // namespace lumnara::bench

int main() {
    lumnara::bench::Report report("faults");
    lumnara::bench::kill(report);
    lumnara::bench::killAtCalls(report);
    lumnara::bench::fail(report);
    return 0;
}
