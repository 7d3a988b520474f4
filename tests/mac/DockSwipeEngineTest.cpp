#include "core/platform/mac/engines/DockSwipeEngine.h"

#include "core/platform/mac/engines/GestureFields.h"
#include "tests/support/ScriptedSeams.h"
#include "tests/switching/SwitchingTest.h"

#include <array>
#include <set>

namespace lumnara {
namespace {

using testing::desktop;
using testing::finish;
using testing::noteOutcome;
using testing::Outcome;
using testing::ScriptedProvider;
using testing::twoDisplays;
using Case = SwitchError::Case;
using Points = std::vector<Point>;

class DockSwipeEngineTest : public ::testing::Test {
protected:
    DockSwipeEngineTest() { provider.cursor = DisplayID{"D1"}; }

    Outcome switchTo(std::uint64_t space, const char* on = "D1") {
        const Space target = desktop(space);
        const DisplayID display{on};
        const SpaceSnapshot snapshot = provider.current;
        return finish(loop, engine.switchTo(target, display, snapshot));
    }
    /// Obeys each swipe of which the number is named, counted from 1.
    void obey(std::set<std::size_t> swipes) {
        events.onPost = [this, swipes] {
            const std::size_t number = events.posted.size() / 3;
            if (events.posted.size() % 3 != 0 || !swipes.contains(number)) return;
            DisplaySpaces& shown = provider.current.displays[0];
            const auto step = GestureFields::of(events.posted.back()).velocityX > 0 ? 1 : -1;
            shown.currentID.raw += static_cast<std::uint64_t>(step);
        };
    }

    async::TestLoop loop;
    ScriptedProvider provider{twoDisplays()};
    testing::ScriptedTrust trust;
    testing::RecordingEvents events;
    testing::TwoScreens screens;
    DockSwipeEngine engine{provider, trust, events, screens};
};

TEST_F(DockSwipeEngineTest, PostsThreeEventsAStepWithTheSpeedOfTheWholeJump) {
    obey({1, 2});
    const Outcome outcome = switchTo(3);
    ASSERT_TRUE(outcome.result);
    EXPECT_EQ(*outcome.result, (SwitchResult{true, EngineKind::dockSwipe, 1, 0.12}));
    std::vector<SyntheticEvent> expected;
    for (int step = 0; step < 2; ++step)
        for (const GesturePhase phase : {GesturePhase::began, GesturePhase::changed, GesturePhase::ended})
            expected.push_back(GestureFields::dockSwipe(phase, 1, 4000));
    EXPECT_EQ(events.posted, expected);
    EXPECT_TRUE(events.warps.empty());

    events.posted.clear();
    obey({1});
    EXPECT_TRUE(switchTo(2).result);
    EXPECT_EQ(events.posted.size(), 3u);
    EXPECT_EQ(GestureFields::of(events.posted[0]).velocityX, -2000);
}

TEST_F(DockSwipeEngineTest, PlansByTheOrderOfTheDisplay) {
    const SpaceSnapshot snapshot = twoDisplays();
    const auto plan = [&](const char* display, std::uint64_t target) {
        return DockSwipeEngine::plan(snapshot, {display}, {target});
    };
    EXPECT_EQ(plan("d1", 3), (SwipePlan{2, true}));
    EXPECT_EQ(plan("D1", 1), (SwipePlan{0, false}));
    EXPECT_EQ(plan("D1", 5), (SwipePlan{0, false})) << "it is on the other display";
    EXPECT_EQ(plan("gone", 1), std::nullopt);
    SpaceSnapshot elsewhere = snapshot;
    elsewhere.displays[0].currentID = {99};
    EXPECT_EQ(DockSwipeEngine::plan(elsewhere, {"D1"}, {1}), std::nullopt);
    elsewhere.displays[0].currentID = {3};
    EXPECT_EQ(DockSwipeEngine::plan(elsewhere, {"D1"}, {1}), (SwipePlan{2, false}));
}

TEST_F(DockSwipeEngineTest, TheDirectionRuleInvertsEverySignAndNothingElse) {
    engine.swipe(true, true, 2000);
    engine.swipe(false, false, 2000);
    engine.swipe(true, false, 2000);
    engine.swipe(false, true, 2000);
    for (std::size_t i = 0; i < events.posted.size(); ++i) {
        const double sign = i < 6 ? 1 : -1;
        const auto phase = std::array{GesturePhase::began, GesturePhase::changed, GesturePhase::ended}[i % 3];
        EXPECT_EQ(events.posted[i], GestureFields::dockSwipe(phase, sign, 2000));
    }
    EXPECT_EQ(events.posted.size(), 12u);
}

TEST_F(DockSwipeEngineTest, RefusesWhatNoSwipeCanDoBeforeAnyEvent) {
    EXPECT_TRUE(switchTo(4).failedWith(Case::targetNotInSnapshot)) << "it is on the other display";
    EXPECT_TRUE(switchTo(2, "gone").failedWith(Case::targetNotInSnapshot));
    trust.trusted = false;
    EXPECT_TRUE(switchTo(1).failedWith(Case::alreadyThere));
    EXPECT_TRUE(switchTo(2).failedWith(Case::accessibilityDenied));
    trust.trusted = true;
    engine.config.maxAttempts = 0;
    EXPECT_EQ(switchTo(2).switchError(), SwitchError::notLanded(0));
    EXPECT_TRUE(events.posted.empty());
    EXPECT_EQ(loop.now(), async::Nanos::zero());
}

TEST_F(DockSwipeEngineTest, ASecondRoundSwipesOnlyWhatRemains) {
    obey({1, 3});
    const Outcome outcome = switchTo(3);
    ASSERT_TRUE(outcome.result);
    EXPECT_EQ(outcome.result->attempts, 2);
    ASSERT_EQ(events.posted.size(), 9u);
    EXPECT_EQ(GestureFields::of(events.posted[8]).velocityX, 2000) << "one step is left";
}

TEST_F(DockSwipeEngineTest, ALandingAfterTheLastLookNeedsNoFurtherEvents) {
    // The quick probe doesn't see what the next reading does.
    provider.probe = [](const DisplayID&) { return SpaceID{1}; };
    obey({1});
    const Outcome outcome = switchTo(2);
    ASSERT_TRUE(outcome.result);
    EXPECT_EQ(outcome.result->attempts, 2);
    EXPECT_EQ(events.posted.size(), 3u);
}

TEST_F(DockSwipeEngineTest, GivesUpAfterItsAttemptsOrWhenNothingCanBeRead) {
    EXPECT_EQ(switchTo(2).switchError(), SwitchError::notLanded(3));
    EXPECT_EQ(events.posted.size(), 9u);
    EXPECT_EQ(loop.now(), 3 * async::wholeNanos(0.72));

    provider.probe = [](const DisplayID&) { return SpaceID{1}; };
    provider.failure = std::make_exception_ptr(std::runtime_error("away"));
    EXPECT_EQ(switchTo(2).switchError(), SwitchError::notLanded(1));
    provider.failure = nullptr;
    events.onPost = [this] { provider.current.displays[0].display.uuid = "other"; };
    EXPECT_EQ(switchTo(2).switchError(), SwitchError::notLanded(1)) << "the display is gone";
}

TEST_F(DockSwipeEngineTest, ATargetThatGoesBetweenTwoRoundsIsNoLongerThere) {
    events.onPost = [this] { provider.current.displays[0].spaces.resize(1); };
    EXPECT_TRUE(switchTo(2).failedWith(Case::targetNotInSnapshot));
}

TEST_F(DockSwipeEngineTest, TakesThePointerToTheOtherDisplayAndBack) {
    const auto outcome = switchTo(5, "D2");
    EXPECT_EQ(outcome.switchError(), SwitchError::notLanded(3));
    EXPECT_EQ(events.warps, (Points{{250, 100}, {5, 6}})) << "there once, and back after a failure too";
    EXPECT_EQ(loop.now(), async::wholeNanos(0.02) + 3 * async::wholeNanos(0.72));

    events.warps.clear();
    engine.config.restoreCursor = false;
    switchTo(5, "D2");
    EXPECT_EQ(events.warps, (Points{{250, 100}}));

    engine.config.restoreCursor = true;
    events.warps.clear();
    events.at.reset();
    switchTo(5, "D2");
    EXPECT_EQ(events.warps, (Points{{250, 100}})) << "there is no place to go back to";
}

TEST_F(DockSwipeEngineTest, LeavesThePointerWhereItServes) {
    provider.cursor = DisplayID{"d2"};
    switchTo(5, "D2");
    provider.cursor.reset();
    switchTo(5, "D2");
    screens.list.pop_back();
    provider.cursor = DisplayID{"D1"};
    switchTo(5, "D2");
    provider.current.displays[0].display.uuid = "Main";
    switchTo(2, "Main");
    EXPECT_TRUE(events.warps.empty());
    EXPECT_EQ(events.posted.size(), 4 * 9u);
}

TEST_F(DockSwipeEngineTest, WaitsForAnAnimationAndThenSwipesRegardless) {
    int asked = 0;
    provider.animation = [&](const DisplayID&) { return ++asked <= 3; };
    obey({1});
    EXPECT_EQ(switchTo(2).result->elapsed, 3 * 0.05 + 0.12);
    asked = -1003;
    const async::Nanos start = loop.now();
    events.posted.clear();
    std::optional<async::Nanos> first;
    events.onPost = [&] {
        if (!first) first = loop.now();
    };
    switchTo(3);
    EXPECT_EQ(*first - start, async::wholeNanos(0.5));

    provider.current.displays[0].display.uuid = "Main";
    asked = -1000;
    first.reset();
    const async::Nanos again = loop.now();
    switchTo(3, "Main");
    EXPECT_EQ(*first, again) << "the shared arrangement is never waited for";
}

TEST_F(DockSwipeEngineTest, RestsBetweenSwipesAndNeverAfterTheLast) {
    engine.config.stepDelay = 0.25;
    obey({1, 2});
    EXPECT_EQ(switchTo(3).result->elapsed, 0.25 + 0.12);
}

TEST_F(DockSwipeEngineTest, ACancelledSwitchSwipesNoMoreAndPutsThePointerBack) {
    for (const double after : {0.01, 0.3}) {
        events = {};
        const Space target = desktop(5);
        const DisplayID display{"D2"};
        const SpaceSnapshot snapshot = provider.current;
        Outcome outcome;
        auto handle = async::spawn(loop, noteOutcome(engine.switchTo(target, display, snapshot), outcome));
        loop.advance(after);
        handle.cancel();
        loop.runUntilDone();
        EXPECT_TRUE(outcome.failedWithA<async::Cancelled>());
        EXPECT_EQ(events.posted.size(), after < 0.02 ? 0u : 3u);
        EXPECT_EQ(events.warps, (Points{{250, 100}, {5, 6}}));
    }
}

} // namespace
} // namespace lumnara
