#include "tests/faults/Kills.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <gtest/gtest.h>

namespace lumnara::testing {
namespace {

TEST(Kills, ACrashCostsNothingThatWasPromised) {
    constexpr int kills = 20;
    const KillReport report = runKills(kills, 1);
    EXPECT_EQ(report.kills, kills);
    EXPECT_EQ(report.killsLost, 0) << fmt::format("{}", fmt::join(report.losses, "\n"));
    int interrupted = 0;
    for (const KillTally& tally : report.stores) {
        EXPECT_GT(tally.promises, 0) << tally.store;
        interrupted += tally.interrupted;
    }
    EXPECT_GT(interrupted, kills / 4);
}

TEST(Kills, ACrashAtASystemCallLeavesTheOldOrTheNewState) {
    const KillReport report = runKillsAtCalls(9);
    EXPECT_EQ(report.killsLost, 0) << fmt::format("{}", fmt::join(report.losses, "\n"));
    for (const KillTally& tally : report.stores) EXPECT_GT(tally.interrupted, 0) << tally.store;
}

} // namespace
} // namespace lumnara::testing
