#include "tests/faults/IoFaults.h"

#include "tests/faults/Subjects.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <gtest/gtest.h>

namespace lumnara::testing {
namespace {

TEST(IoFaults, AFailedCallIsToldAndCostsNothing) {
    const FaultReport report = runIoFaults(false);
    EXPECT_EQ(report.lost, 0) << fmt::format("{}", fmt::join(report.losses, "\n"));
    for (const SubjectKind& kind : subjectKinds())
        for (const CallKind call : {CallKind::open, CallKind::write, CallKind::sync})
            EXPECT_GT(report.tallies.at({kind.name, call}).told, 0) << kind.name << " " << nameOf(call);
}

} // namespace
} // namespace lumnara::testing
