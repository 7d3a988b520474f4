#include "core/model/SpaceKitError.h"
#include "tests/simruns/SimulatedSession.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <set>

namespace lumnara {
namespace {

class SimulatedFaultsTest : public ::testing::Test, protected testing::SimulatedSession {
protected:
    void swipe() {
        SimulatedSession::swipe(2000);
        loop.advance(0.02);
    }
};

TEST_F(SimulatedFaultsTest, HaveANameEach) {
    std::set<std::string_view> names;
    for (const SimulatedFault fault : everySimulatedFault) names.insert(nameOf(fault));
    EXPECT_EQ(names.size(), everySimulatedFault.size());
    EXPECT_FALSE(names.contains(""));
}

TEST_F(SimulatedFaultsTest, ALostGestureIsOneGesture) {
    mac.inject(SimulatedFault::gestureLost);
    swipe();
    EXPECT_EQ(shownAt("LEFT"), 0u);
    swipe();
    EXPECT_EQ(shownAt("LEFT"), 1u);
}

TEST_F(SimulatedFaultsTest, AnAnimationThatNeverEndsHangsUntilTheFaultIsOver) {
    mac.inject(SimulatedFault::animationNeverEnds);
    swipe();
    loop.advance(100);
    mac.stage().move(space("LEFT", 2), 0.1);
    loop.advance(1);
    EXPECT_EQ(seams.windowServer->isAnimating({"LEFT"}), true);
    EXPECT_EQ(shownAt("LEFT"), 0u);
    mac.heal();
    EXPECT_EQ(seams.windowServer->isAnimating({"LEFT"}), false);
    EXPECT_EQ(shownAt("LEFT"), 1u);
}

TEST_F(SimulatedFaultsTest, ADisplaySnapsBackAWhileAfterItLanded) {
    mac.inject(SimulatedFault::snapBack);
    swipe();
    EXPECT_EQ(shownAt("LEFT"), 1u);
    loop.advance(1);
    EXPECT_EQ(shownAt("LEFT"), 0u);

    mac.inject(SimulatedFault::snapBack);
    swipe();
    swipe(); // what has moved on has no way back
    loop.advance(1);
    EXPECT_EQ(shownAt("LEFT"), 2u);
}

TEST_F(SimulatedFaultsTest, AStaleReadingTellsTheLayoutOfBefore) {
    mac.inject(SimulatedFault::staleReading);
    auto reader = provider();
    swipe();
    mac.addDesktop("LEFT");
    EXPECT_EQ(seams.windowServer->currentSpace({"LEFT"}), space("LEFT", 0));
    EXPECT_EQ(reader.snapshot().displays[0].spaces.size(), 3u);
    loop.advance(1);
    EXPECT_EQ(seams.windowServer->currentSpace({"LEFT"}), space("LEFT", 1));
    EXPECT_EQ(reader.snapshot().displays[0].spaces.size(), 4u);
}

TEST_F(SimulatedFaultsTest, AMissingSymbolIsMissedByWhoLooksItUpLater) {
    mac.removeSymbol("CGSCopyManagedDisplaySpaces");
    EXPECT_NO_THROW(seams.windowServer->managedDisplaySpaces());
    const auto without = mac.seams();
    EXPECT_THROW(without.windowServer->managedDisplaySpaces(), SpaceKitError);
    EXPECT_EQ(without.windowServer->isAnimating({"LEFT"}), false) << "the others are there";
}

TEST_F(SimulatedFaultsTest, AUserWhoGrabsThePointerLetsGoInTheEnd) {
    mac.inject(SimulatedFault::pointerGrabbed);
    std::set<double> places;
    for (int look = 0; look < 40; ++look) {
        loop.advance(0.02);
        places.insert(mac.pointer().position().x);
    }
    EXPECT_GT(places.size(), 2u);
    EXPECT_FALSE(mac.pointer().isGrabbed());
    seams.eventServices->warpPointer({5, 5});
    loop.runUntilDone();
    EXPECT_EQ(seams.eventServices->pointer(), (Point{5, 5}));
}

TEST(SimulatedFaults, AreTheSameForTheSameSeed) {
    const auto course = [](std::uint64_t seed) {
        testing::SimulatedSession session({.seed = seed});
        for (const SimulatedFault fault : everySimulatedFault) session.mac.inject(fault);
        std::vector<double> seen{static_cast<double>(session.space("RIGHT", 2).raw)};
        session.mac.stage().move(session.space("LEFT", 1), 0.2);
        for (int look = 0; look < 60; ++look) {
            session.loop.advance(0.013);
            seen.push_back(session.mac.pointer().position().x);
        }
        return seen;
    };
    EXPECT_EQ(course(7), course(7));
    EXPECT_NE(course(7), course(8));
}

} // namespace
} // namespace lumnara
