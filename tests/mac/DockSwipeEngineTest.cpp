#include "core/platform/mac/engines/DockSwipeEngine.h"
#include "core/async/Task.h"

#include "core/platform/mac/engines/GestureFields.h"
#include "tests/simruns/SwitchingSession.h"

namespace lumnara {
namespace {

using testing::Outcome;
using Case = SwitchError::Case;
using Points = std::vector<Point>;

/// "LEFT" and "RIGHT" show the first of their three desktops, and the pointer is on "LEFT".
class DockSwipeEngineTest : public ::testing::Test, protected testing::SwitchingSession {
protected:
    Outcome swipeTo(const char* display, std::size_t index) {
        return switchBy(dockSwipe, desktopAt(display, index), display);
    }
    /// From now on.
    void loseEachSwipe() {
        events.onPost = [this] { mac.inject(SimulatedFault::gestureLost); };
    }
    Points warpsOf(const char* display, Point pointer = {10, 10}) {
        mac.pointer().moveTo(pointer);
        events.forget();
        EXPECT_EQ(swipeTo(display, 1).switchError(), SwitchError::notLanded(3));
        EXPECT_EQ(events.posted.size(), 9u);
        return events.warps;
    }
};

TEST_F(DockSwipeEngineTest, PostsThreeEventsAStepWithTheSpeedOfTheWholeJump) {
    EXPECT_EQ(swipeTo("LEFT", 2).result, (SwitchResult{true, EngineKind::dockSwipe, 1, 0.12}));
    std::vector<SyntheticEvent> expected;
    for (int step = 0; step < 2; ++step)
        for (const GesturePhase phase : {GesturePhase::began, GesturePhase::changed, GesturePhase::ended})
            expected.push_back(GestureFields::dockSwipe(phase, 1, 4000));
    EXPECT_EQ(events.posted, expected);
    EXPECT_EQ(GestureFields::of(events.posted[5]), (GestureFields{30, 23, 4, 1, 0x1p-149, 4000, 4000}));

    events.forget();
    EXPECT_TRUE(swipeTo("LEFT", 1).result);
    using Field = SyntheticEvent::Field;
    EXPECT_EQ(events.posted.at(1).fields, (std::vector<Field>{{55, std::int64_t{30}},
                                                              {110, std::int64_t{23}},
                                                              {132, std::int64_t{2}},
                                                              {124, -0x1p-149},
                                                              {123, std::int64_t{1}},
                                                              {129, -2000.0},
                                                              {130, -2000.0}}));
    EXPECT_TRUE(events.warps.empty());

    events.forget();
    dockSwipe.config.positiveIsHigherIndex = mac.dock().positiveIsHigherIndex = false;
    EXPECT_EQ(swipeTo("LEFT", 2).result->attempts, 1);
    EXPECT_EQ(events.posted.at(0), GestureFields::dockSwipe(GesturePhase::began, -1, 2000));
    EXPECT_EQ(events.posted.size(), 3u);
}

TEST_F(DockSwipeEngineTest, PlansByTheOrderOfTheDisplay) {
    SpaceSnapshot snapshot = testing::twoDisplays();
    const auto plan = [&](const char* display, std::uint64_t target) {
        return DockSwipeEngine::plan(snapshot, {display}, {target});
    };
    EXPECT_EQ(plan("d1", 3), (SwipePlan{2, true}));
    EXPECT_EQ(plan("D1", 1), (SwipePlan{0, false}));
    EXPECT_EQ(plan("D1", 5), (SwipePlan{0, false})) << "it is on the other display";
    EXPECT_EQ(plan("gone", 1), std::nullopt);
    snapshot.displays[0].currentID = {3};
    EXPECT_EQ(plan("D1", 1), (SwipePlan{2, false}));
    snapshot.displays[0].currentID = {99};
    EXPECT_EQ(plan("D1", 1), std::nullopt);
}

TEST_F(DockSwipeEngineTest, RefusesWhatNoSwipeCanDoBeforeAnyEvent) {
    const Space onRight = desktopAt("RIGHT", 1);
    EXPECT_TRUE(switchBy(dockSwipe, onRight, "LEFT").failedWith(Case::targetNotInSnapshot));
    EXPECT_TRUE(switchBy(dockSwipe, onRight, "gone").failedWith(Case::targetNotInSnapshot));
    mac.isTrusted = false;
    EXPECT_TRUE(swipeTo("LEFT", 0).failedWith(Case::alreadyThere));
    EXPECT_TRUE(swipeTo("LEFT", 1).failedWith(Case::accessibilityDenied));
    mac.isTrusted = true;
    dockSwipe.config.maxAttempts = 0;
    EXPECT_EQ(swipeTo("LEFT", 1).switchError(), SwitchError::notLanded(0));
    EXPECT_TRUE(events.posted.empty());
    EXPECT_EQ(loop.now(), async::Nanos::zero());
}

TEST_F(DockSwipeEngineTest, ASecondRoundSwipesOnlyWhatRemains) {
    mac.inject(SimulatedFault::gestureLost);
    EXPECT_EQ(swipeTo("LEFT", 2).result->attempts, 2);
    ASSERT_EQ(events.posted.size(), 9u);
    EXPECT_EQ(GestureFields::of(events.posted[8]).velocityX, 2000) << "one step is left";
}

TEST_F(DockSwipeEngineTest, ALandingAfterTheLastLookNeedsNoFurtherEvents) {
    mac.stage().freezeReadings(0.7);
    EXPECT_EQ(swipeTo("LEFT", 1).result, (SwitchResult{true, EngineKind::dockSwipe, 2, 0.72}));
    EXPECT_EQ(events.posted.size(), 3u);
}

TEST_F(DockSwipeEngineTest, GivesUpAfterItsAttemptsOrWhenNothingCanBeRead) {
    loseEachSwipe();
    EXPECT_EQ(swipeTo("LEFT", 1).switchError(), SwitchError::notLanded(3));
    EXPECT_EQ(events.posted.size(), 9u);
    EXPECT_EQ(loop.now(), 3 * async::wholeNanos(0.72));
    reader.failures = 1;
    EXPECT_EQ(swipeTo("LEFT", 1).switchError(), SwitchError::notLanded(1));
    reader.bend = [](SpaceSnapshot& told) { told.displays.erase(told.displays.begin()); };
    EXPECT_EQ(swipeTo("LEFT", 1).switchError(), SwitchError::notLanded(1)) << "the display is gone";
    reader.bend = [](SpaceSnapshot& told) { told.displays[0].spaces.resize(1); };
    EXPECT_TRUE(swipeTo("LEFT", 1).failedWith(Case::targetNotInSnapshot));
}

TEST_F(DockSwipeEngineTest, TakesThePointerToTheOtherDisplayAndBack) {
    const Point there{2792, 720};
    loseEachSwipe();
    EXPECT_EQ(warpsOf("RIGHT"), (Points{there, {10, 10}})) << "back after a failure too";
    EXPECT_EQ(loop.now(), async::wholeNanos(0.02) + 3 * async::wholeNanos(0.72));
    dockSwipe.config.restoreCursor = false;
    EXPECT_EQ(warpsOf("RIGHT"), Points{there});
    dockSwipe.config.restoreCursor = true;
    events.isBlind = true;
    EXPECT_EQ(warpsOf("RIGHT"), Points{there}) << "there is no place to go back to";

    EXPECT_EQ(warpsOf("right", {2000, 500}), Points()) << "it is there";
    EXPECT_EQ(warpsOf("RIGHT", {-50, -50}), Points()) << "nobody knows where it is";
    mac.stage().freezeReadings(9);
    mac.removeScreen("RIGHT");
    EXPECT_EQ(warpsOf("RIGHT"), Points()) << "there is no place to go to";
}

TEST_F(DockSwipeEngineTest, WaitsForAnAnimationAndThenSwipesRegardless) {
    mac.stage().move(space("LEFT", 1), 0.17);
    EXPECT_EQ(swipeTo("LEFT", 2).result, (SwitchResult{true, EngineKind::dockSwipe, 1, 0.2 + 0.12}));

    for (const bool isShared : {false, true}) {
        testing::SwitchingSession session({.separateSpaces = !isShared});
        const char* display = isShared ? "Main" : "LEFT";
        session.mac.inject(SimulatedFault::animationNeverEnds);
        session.mac.stage().move(session.space(display, 1), 1);
        std::optional<async::Nanos> first;
        session.events.onPost = [&] { first = first.value_or(session.loop.now()); };
        session.switchBy(session.dockSwipe, session.desktopAt(display, 2), display);
        EXPECT_EQ(first, async::wholeNanos(isShared ? 0 : 0.5)) << display;
    }
}

TEST_F(DockSwipeEngineTest, RestsBetweenSwipesAndNeverAfterTheLast) {
    dockSwipe.config.stepDelay = 0.25;
    EXPECT_EQ(swipeTo("LEFT", 2).result->elapsed, 0.25 + 0.12);
}

TEST_F(DockSwipeEngineTest, ACancelledSwitchSwipesNoMoreAndPutsThePointerBack) {
    loseEachSwipe();
    for (const double after : {0.01, 0.3}) {
        events.forget();
        EXPECT_TRUE(
            cancelled(dockSwipe, desktopAt("RIGHT", 1), "RIGHT", after).failedWithA<async::Cancelled>());
        EXPECT_EQ(events.posted.size(), after < 0.02 ? 0u : 3u);
        EXPECT_EQ(events.warps, (Points{{2792, 720}, {10, 10}}));
    }
}

} // namespace
} // namespace lumnara
