#include "core/platform/sim/SimulatedFault.h"
#include "tests/simruns/ArrangeRun.h"
#include "tests/support/LogLines.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <utility>

namespace lumnara {
namespace {

using testing::ArrangeWork;

constexpr std::uint64_t runs = 3000;

class ArrangeRuns : public ::testing::TestWithParam<std::pair<const char*, ArrangeWork>> {};

TEST_P(ArrangeRuns, LeaveTheMacAsTheyTell) {
    const testing::LogLines lines;
    testing::ArrangeTally tally;
    for (std::uint64_t seed = 1; seed <= runs && !HasFailure(); ++seed) {
        const auto end = testing::playArrangeRun(GetParam().second, seed);
        tally.add(end);
        for (const std::string& what : end.broken)
            ADD_FAILURE() << "seed " << seed << ": " << what << "; ended in: " << end.ending
                          << "; behind: " << fmt::format("{}", fmt::join(end.befallen, ", "));
    }
    EXPECT_GT(tally.endings["nothing"]["done"], 300);
    for (const SimulatedFault fault : everySimulatedFault)
        EXPECT_GE(tally.endings[std::string(nameOf(fault))].size(), 2u)
            << nameOf(fault) << " changed nothing";
}

INSTANTIATE_TEST_SUITE_P(OfA, ArrangeRuns,
                         ::testing::Values(std::pair("Reorder", ArrangeWork::reorder),
                                           std::pair("Remove", ArrangeWork::remove),
                                           std::pair("Create", ArrangeWork::create)),
                         [](const auto& info) { return std::string(info.param.first); });

} // namespace
} // namespace lumnara
