#include "tests/session/I3Shell.h"

#include <gtest/gtest.h>

namespace lumnara::testing {

void PrintTo(const I3Shell::Costs& costs, std::ostream* out) {
    *out << costs.requests << " requests, " << costs.roundTrips << " round trips";
}

namespace {

using Costs = I3Shell::Costs;

TEST(EventCosts, OneReadingForASwitchBySomebodyElseAndNoneForAKey) {
    I3Shell at(I3Shell::Counting::on);
    for (const char* workspace : {"web", "mail", "web", "chat", "mail", "web"})
        EXPECT_EQ(at.costsOf([&] { at.otherShows(workspace); }), (Costs{1, 0})) << workspace;
    EXPECT_EQ(at.shell().cards, 6) << "each of them is shown";

    at.shell().settings.boardOnEveryDisplay.set(false);
    at.shell().board.open();
    EXPECT_EQ(at.costsOf([&] {
        for (const char* letter : {"d", "e", "s"}) at.shell().type(letter);
    }),
              (Costs{0, 0}));

    at.session.unplug("R");
    ASSERT_TRUE(at.loop.runUntil([&] { return at.state().catalog().displays->size() == 1; }, 5));
    EXPECT_EQ(at.state().platform().screens->screens().size(), 1U);
}

} // namespace
} // namespace lumnara::testing
