#include "core/arranging/DesktopRemoveError.h"
#include "tests/session/ArrangerSession.h"

#include <random>

namespace lumnara::testing {
namespace {

class ArrangerTest : public ::testing::TestWithParam<WindowManager> {
protected:
    std::string refusal(DesktopRemoveError::Case which) { return DesktopRemoveError(which).sentence(); }
    /// What is read and what the window manager tells are this order.
    ::testing::AssertionResult inOrder(const std::string& expected) {
        if (!at.waitFor([&] { return at.ownOrder() == expected; }))
            return ::testing::AssertionFailure() << "the window manager has " << at.ownOrder();
        if (at.order() != expected) return ::testing::AssertionFailure() << "read as " << at.order();
        return ::testing::AssertionSuccess();
    }

    ArrangerSession at{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(WindowManagers, ArrangerTest,
                         ::testing::Values(WindowManager::i3, WindowManager::openbox, WindowManager::xfwm4),
                         [](const auto& info) {
                             switch (info.param) {
                             case WindowManager::i3: return "i3";
                             case WindowManager::openbox: return "openbox";
                             default: return "xfwm4";
                             }
                         });

TEST_P(ArrangerTest, AddsADesktopAndLeavesTheScreenAsItIs) {
    const std::vector<SpaceID> made = at.create();
    ASSERT_EQ(made.size(), 1U) << at.failure;
    EXPECT_EQ(at.order(), "a* b c d e ? ");
    EXPECT_EQ(at.shown().spaces.back().id, made.front());
    EXPECT_EQ(at.activeWindow(), at.windows.at("a"));
    at.publish();
    at.settle();
    EXPECT_EQ(at.order(), "a* b c d e ? ") << "it stays, although it is empty and has no name";

    at.titles[at.shown().spaces.back().uuid] = "new";
    at.publish();
    const std::vector<SpaceID> another = at.create();
    EXPECT_EQ(at.order(), "a* b c d e new ? ");
    EXPECT_EQ(at.remove({another}), (RemoveOutcome{.removedIDs = another, .stoppedBecause = {}}));
    EXPECT_EQ(at.order(), "a* b c d e new ");
    EXPECT_EQ(at.homes(), "a b c d e ");
}

TEST_P(ArrangerTest, GivesTheWindowsOfARemovedDesktopToItsNeighbour) {
    const std::vector<SpaceID> c = at.ids({"c"});
    EXPECT_EQ(at.remove(c), (RemoveOutcome{.removedIDs = c, .stoppedBecause = {}})) << at.failure;
    EXPECT_TRUE(inOrder("a* b d e "));
    EXPECT_EQ(at.homes(), "a b b d e ");
    EXPECT_EQ(at.activeWindow(), at.windows.at("a"));
}

TEST_P(ArrangerTest, ShowsTheNeighbourOfARemovedDesktop) {
    const std::vector<SpaceID> a = at.ids({"a"});
    EXPECT_EQ(at.remove(a), (RemoveOutcome{.removedIDs = a, .stoppedBecause = {}})) << at.failure;
    EXPECT_TRUE(inOrder("b* c d e "));
    EXPECT_EQ(at.homes(), "b b c d e ");
}

TEST_P(ArrangerTest, RemovesAllButOne) {
    const std::vector<SpaceID> ids = at.ids({"e", "a", "e", "c", "b"});
    std::vector<std::string> told;
    at.arranger().onProgress = [&](const std::string& sentence) { told.push_back(sentence); };
    EXPECT_EQ(at.remove(ids),
              (RemoveOutcome{.removedIDs = {ids[0], ids[1], ids[3], ids[4]}, .stoppedBecause = {}}));
    EXPECT_TRUE(inOrder("d* "));
    EXPECT_EQ(at.homes(), "d d d d d ");
    ASSERT_EQ(told.size(), 4U);
    EXPECT_TRUE(told[1].starts_with("Removing desktops in ") && told[1].ends_with(" (2/4)")) << told[1];
    at.remove(at.ids({"d"}));
    EXPECT_EQ(at.failure, refusal(DesktopRemoveError::Case::lastOnDisplay));
}

TEST_P(ArrangerTest, RemovesNothingThatItShouldNot) {
    at.remove({at.id("b"), SpaceID{7}});
    EXPECT_EQ(at.failure, refusal(DesktopRemoveError::Case::notOnDisplay));
    at.remove(at.ids({"a", "b", "c", "d", "e"}));
    EXPECT_EQ(at.failure, refusal(DesktopRemoveError::Case::lastOnDisplay));
    at.display = {"elsewhere"};
    at.remove({SpaceID{7}});
    EXPECT_TRUE(at.failure.ends_with(" did not report any desktops on that display.")) << at.failure;
    at.create();
    EXPECT_TRUE(at.failure.ends_with(" did not report any desktops on that display.")) << at.failure;
    at.display = {GetParam() == WindowManager::i3 ? "L" : "Main"};
    EXPECT_EQ(at.remove({}), RemoveOutcome{});
    EXPECT_TRUE(inOrder("a* b c d e "));
    EXPECT_EQ(at.homes(), "a b c d e ");
}

TEST_P(ArrangerTest, BringsDesktopsIntoAnyOrder) {
    std::mt19937 random(5);
    std::vector<std::string> wish{"e", "d", "c", "b", "a"};
    for (int round = 0; round < 8; ++round) {
        const ReorderOutcome outcome = at.reorder(at.ids(wish));
        EXPECT_EQ(at.failure, "");
        EXPECT_TRUE(outcome.matchesDesired);
        EXPECT_EQ(outcome.stoppedBecause, std::nullopt);
        EXPECT_EQ(outcome.performed, static_cast<int>(outcome.planned.size()));
        EXPECT_EQ(outcome.finalOrder, at.ids(wish));
        std::string expected;
        for (const std::string& title : wish) expected += title + (title == "a" ? "* " : " ");
        ASSERT_TRUE(inOrder(expected)) << round;
        at.settle(); // a window manager may take the keyboard away late
        EXPECT_EQ(at.homes(), "a b c d e ") << round;
        EXPECT_EQ(at.activeWindow(), at.windows.at("a")) << round;
        std::ranges::shuffle(wish, random);
    }
}

TEST_P(ArrangerTest, DoesNothingForTheOrderThatThereIs) {
    const ReorderOutcome outcome = at.reorder({SpaceID{7}, at.id("a"), at.id("a")});
    EXPECT_TRUE(outcome.matchesDesired);
    EXPECT_TRUE(outcome.planned.empty());
    EXPECT_EQ(outcome.finalOrder, at.ids({"a", "b", "c", "d", "e"}));
}

TEST_P(ArrangerTest, SaysSoWhenTheWindowManagerHangs) {
    const std::vector<SpaceID> before = at.ids({"a", "b", "c", "d", "e"});
    at.x().stopWindowManager();
    const ReorderOutcome outcome = at.reorder({before[4], before[0], before[1], before[2], before[3]});
    EXPECT_TRUE(!at.failure.empty() || (outcome.stoppedBecause && !outcome.matchesDesired));
    const RemoveOutcome removal = at.remove({before[2]});
    EXPECT_TRUE(!at.failure.empty() || removal.stoppedBecause);
    EXPECT_TRUE(removal.removedIDs.empty());
    at.x().continueWindowManager();
    // Whatever it does late, every window is on the desktop that it was on.
    EXPECT_TRUE(at.waitFor([&] { return at.answers() && at.order() == at.ownOrder(); }));
    at.settle();
    EXPECT_EQ(at.order(), at.ownOrder());
    EXPECT_EQ(at.homes(), "a b c d e ");
    EXPECT_EQ(at.activeWindow(), at.windows.at("a"));
    EXPECT_EQ(at.shown().spaces.size(), 5U);
}

} // namespace
} // namespace lumnara::testing
