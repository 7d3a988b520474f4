#include "tests/simruns/SimulatedSession.h"

#include <gtest/gtest.h>

namespace lumnara {
namespace {

using testing::swipeEvent;

class SimulatedDockTest : public ::testing::Test, protected testing::SimulatedSession {
protected:
    void post(const SyntheticEvent& event) { seams.eventServices->post(event, EventTap::session); }
    /// Where "LEFT" stands after a swipe whose events all carry this field, from its middle desktop.
    template <class T> std::size_t shownAfterSwipeWith(int field, T value) {
        mac.stage().move(space("LEFT", 1), 0);
        for (const std::int64_t phase : {1, 2, 4}) {
            SyntheticEvent event = swipeEvent(phase, 2000);
            event.set(field, value);
            post(event);
        }
        loop.runUntilDone();
        return shownAt("LEFT");
    }
};

TEST_F(SimulatedDockTest, AQuickSwipeMovesOneSpaceByItsSignWithoutAnimation) {
    swipe(2000);
    EXPECT_EQ(shownAt("LEFT"), 0u) << "the Dock takes a moment";
    loop.advance(0.02);
    EXPECT_EQ(shownAt("LEFT"), 1u);
    EXPECT_EQ(seams.windowServer->isAnimating({"LEFT"}), false);
    swipe(6000);
    loop.advance(0.02);
    EXPECT_EQ(shownAt("LEFT"), 2u) << "one Space a swipe, however quick";
    swipe(2000);
    loop.advance(0.02);
    EXPECT_EQ(shownAt("LEFT"), 2u) << "nothing lies behind the last";
    swipe(-2000);
    swipe(-2000);
    swipe(-2000);
    loop.runUntilDone();
    EXPECT_EQ(shownAt("LEFT"), 0u);
    EXPECT_EQ(shownAt("RIGHT"), 0u);
}

TEST_F(SimulatedDockTest, ASwipeThatMakesItsWayAnimatesHoweverQuick) {
    for (const std::int64_t phase : {1, 2, 4}) {
        SyntheticEvent event = swipeEvent(phase, 2000);
        event.set(124, 0.1);
        post(event);
    }
    loop.advance(0.05);
    EXPECT_EQ(seams.windowServer->isAnimating({"LEFT"}), true);
}

TEST_F(SimulatedDockTest, ASlowSwipeAnimatesAndAVerySlowOneSpringsBack) {
    swipe(500);
    loop.advance(0.05);
    EXPECT_EQ(seams.windowServer->isAnimating({"left"}), true);
    EXPECT_EQ(shownAt("LEFT"), 0u);
    swipe(2000); // not heard while it animates
    loop.runUntilDone();
    EXPECT_EQ(shownAt("LEFT"), 1u);
    EXPECT_EQ(seams.windowServer->isAnimating({"LEFT"}), false);
    swipe(50);
    loop.runUntilDone();
    EXPECT_EQ(shownAt("LEFT"), 1u);
}

TEST_F(SimulatedDockTest, TheDisplayUnderThePointerMovesThatItWasUnderAsTheSwipeBegan) {
    mac.pointer().moveTo({2000, 500});
    post(swipeEvent(1, 2000));
    post(swipeEvent(2, 2000));
    loop.advance(0.01);
    mac.pointer().moveTo({10, 10});
    post(swipeEvent(4, 2000));
    loop.runUntilDone();
    EXPECT_EQ(shownAt("LEFT"), 0u);
    EXPECT_EQ(shownAt("RIGHT"), 1u);
}

TEST_F(SimulatedDockTest, ReadsEventsByTheNumbersOfTheirFields) {
    EXPECT_EQ(shownAfterSwipeWith(200, 5.0), 2u) << "a field that it doesn't know";
    EXPECT_EQ(shownAfterSwipeWith(55, std::int64_t{29}), 1u);
    EXPECT_EQ(shownAfterSwipeWith(110, std::int64_t{6}), 1u);
    EXPECT_EQ(shownAfterSwipeWith(123, std::int64_t{2}), 1u) << "vertical";
    EXPECT_EQ(shownAfterSwipeWith(124, 0.0), 1u);
    EXPECT_EQ(shownAfterSwipeWith(124, -0.1), 1u) << "against the velocity";
    EXPECT_EQ(shownAfterSwipeWith(129, -2000.0), 1u);
    EXPECT_EQ(shownAfterSwipeWith(130, 0.0), 1u);
    EXPECT_EQ(shownAfterSwipeWith(55, 30.0), 1u) << "a number of the other kind";
    EXPECT_EQ(shownAfterSwipeWith(132, std::int64_t{4}), 1u) << "it never began";
}

TEST_F(SimulatedDockTest, ASwipeHasABeginningAMiddleAndAnEnd) {
    for (const std::vector<std::int64_t>& phases :
         std::vector<std::vector<std::int64_t>>{{1, 4}, {2, 4}, {1, 2}, {1, 1, 4}}) {
        for (const std::int64_t phase : phases) post(swipeEvent(phase, 2000));
        loop.runUntilDone();
        EXPECT_EQ(shownAt("LEFT"), 0u);
    }
}

TEST_F(SimulatedDockTest, EventsWithoutTrustOrUserAreIgnored) {
    for (const std::int64_t phase : {1, 2, 4})
        seams.eventServices->post(swipeEvent(phase, 2000), EventTap::hid);
    loop.runUntilDone();
    EXPECT_EQ(shownAt("LEFT"), 0u) << "the wrong way in";
    for (bool* state : {&mac.isTrusted, &mac.isOnConsole}) {
        *state = false;
        swipe(2000);
        loop.runUntilDone();
        EXPECT_EQ(shownAt("LEFT"), 0u);
        *state = true;
    }
    mac.isLocked = true;
    swipe(2000);
    loop.runUntilDone();
    EXPECT_EQ(shownAt("LEFT"), 0u);
    mac.isLocked = false;
    swipe(2000);
    loop.runUntilDone();
    EXPECT_EQ(shownAt("LEFT"), 1u);
}

TEST_F(SimulatedDockTest, TheScrollDirectionTurnsTheSignAround) {
    mac.dock().positiveIsHigherIndex = false;
    swipe(-2000);
    loop.runUntilDone();
    EXPECT_EQ(shownAt("LEFT"), 1u);
}

TEST(SimulatedDock, MovesTheSharedArrangementFromAnyScreen) {
    testing::SimulatedSession session({.separateSpaces = false});
    session.mac.pointer().moveTo({2000, 500});
    session.swipe(2000);
    session.loop.runUntilDone();
    EXPECT_EQ(session.shownAt("Main"), 1u);
}

} // namespace
} // namespace lumnara
