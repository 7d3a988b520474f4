#include "core/async/Task.h"
#include "core/model/SpaceKitError.h"
#include "core/switching/SwitchSettle.h"
#include "tests/simruns/SwitchingSession.h"

namespace lumnara {
namespace {

using testing::Outcome;
using Case = SwitchError::Case;

class SwitchChainTest : public ::testing::Test, protected testing::SwitchingSession {};

/// The same on a Mac where calls are missing.
Outcome switchWithout(std::initializer_list<std::string_view> symbols, bool instant = true) {
    testing::SwitchingSession session({}, [&](SimulatedMac& mac) {
        for (const std::string_view symbol : symbols) mac.removeSymbol(symbol);
    });
    session.switcher.settings.instantSwitching = instant;
    const DisplayID display{"LEFT"};
    Space target;
    target.id = session.space("LEFT", 2);
    const Outcome outcome =
        testing::finish(session.loop, session.switcher.switchTo(target, display, std::nullopt));
    EXPECT_EQ(session.shownAt("LEFT"), outcome.result ? 2u : 0u);
    return outcome;
}

TEST_F(SwitchChainTest, ASwipeLandsWithoutAnimationAndThePointerIsBack) {
    const Outcome outcome = switchTo("RIGHT", 2);
    ASSERT_TRUE(outcome.result);
    EXPECT_EQ(outcome.result->description(), "dockSwipe landed=true attempts=1 elapsed=140ms");
    EXPECT_EQ(shownAt("RIGHT"), 2u);
    EXPECT_EQ(shownAt("LEFT"), 0u);
    EXPECT_EQ(events.posted.size(), 6u);
    EXPECT_EQ(events.warps.size(), 2u);
    EXPECT_EQ(mac.pointer().position(), (Point{10, 10}));
    EXPECT_EQ(switcher.history.current("RIGHT"), reader.snapshot().displays[1].spaces[2].uuid);
    EXPECT_TRUE(switchTo("RIGHT", 2).failedWith(Case::alreadyThere));
}

TEST_F(SwitchChainTest, AJumpOverManySpacesIsOneSwipeEach) {
    for (int more = 0; more < 13; ++more) mac.addDesktop("LEFT");
    EXPECT_EQ(switchTo("LEFT", 15).result->attempts, 1);
    EXPECT_EQ(switchTo("LEFT", 0).result->attempts, 1);
    EXPECT_EQ(events.posted.size(), 2u * 15 * 3);
    EXPECT_TRUE(events.warps.empty());
}

TEST(SwitchChain, ADisplayThatSnapsBackIsCaughtByTheLookOrByTheOneAfter) {
    int caughtInTime = 0;
    constexpr int seeds = 40;
    for (std::uint64_t seed = 1; seed <= seeds; ++seed) {
        testing::SwitchingSession session({.seed = seed});
        const SpaceID target = session.space("LEFT", 1);
        Space wanted;
        wanted.id = target;
        session.mac.inject(SimulatedFault::snapBack);
        const DisplayID display{"LEFT"};
        Outcome outcome;
        const auto handle =
            async::spawn(session.loop,
                         testing::noteEnd(session.switcher.switchTo(wanted, display, std::nullopt), outcome));
        session.loop.advance(2);
        ASSERT_TRUE(outcome.result);
        const auto reading = [&](const DisplayID& each) {
            return session.seams.windowServer->currentSpace(each);
        };
        const bool holds =
            SwitchSettle::unsettled(SwitchSettle::entries({{display, target}}, reading)).empty();
        EXPECT_EQ(holds, outcome.result->attempts == 2);
        caughtInTime += holds ? 1 : 0;
    }
    EXPECT_GT(caughtInTime, 0);
    EXPECT_LT(caughtInTime, seeds);
}

TEST_F(SwitchChainTest, WithoutThePermissionTheHelperWindowSwitchesAndHandsTheFocusBack) {
    const auto notes = mac.launch("Notes", {});
    mac.openWindow(notes, space("LEFT", 1));
    mac.openWindow(notes, space("RIGHT", 0));
    mac.inject(SimulatedFault::permissionWithdrawn);
    const Outcome outcome = switchTo("LEFT", 1);
    ASSERT_TRUE(outcome.result);
    EXPECT_EQ(outcome.result->engine, EngineKind::helperWindow);
    EXPECT_GT(outcome.result->elapsed, 0.4) << "it animates";
    EXPECT_EQ(shownAt("LEFT"), 1u);
    EXPECT_TRUE(events.posted.empty());
    EXPECT_EQ(front(), "Notes");
    EXPECT_EQ(switchTo("LEFT", 2).result->engine, EngineKind::helperWindow);
    EXPECT_EQ(front(), "Finder") << "nobody has a window there";
    EXPECT_EQ(shownAt("RIGHT"), 0u);
}

TEST_F(SwitchChainTest, AFullscreenSpaceIsReachedByTheGestureOrThroughItsOwner) {
    const auto player = mac.launch("Player", "com.example.player");
    mac.enterFullscreen(mac.openWindow(player, space("LEFT", 0)));
    loop.runUntilDone();
    for (const std::size_t index : {0, 1, 0})
        EXPECT_EQ(switchTo("LEFT", index).result->engine, EngineKind::dockSwipe) << "a Space like any other";
    switcher.settings.instantSwitching = false;
    EXPECT_EQ(switchTo("LEFT", 1).result->engine, EngineKind::fullscreenActivation);
    EXPECT_EQ(switcher.history.current("LEFT"), "fullscreen:com.example.player");
}

TEST_F(SwitchChainTest, AnAnimationThatNeverEndsFailsWithASentenceAndThePointerIsBack) {
    mac.inject(SimulatedFault::animationNeverEnds);
    const Outcome outcome = switchTo("RIGHT", 1);
    EXPECT_EQ(outcome.switchError(), SwitchError::notLanded(1));
    EXPECT_EQ(sentenceOf(outcome.error), "Could not switch after 1 attempts.");
    EXPECT_EQ(shownAt("RIGHT"), 0u);
    EXPECT_EQ(mac.pointer().position(), (Point{10, 10}));
    EXPECT_EQ(switcher.history.current("RIGHT"), std::nullopt);
}

TEST_F(SwitchChainTest, ARunningAnimationIsWaitedFor) {
    mac.addDesktop("LEFT");
    mac.stage().move(space("LEFT", 1), 0.3);
    const Outcome outcome = switchTo("LEFT", 2);
    EXPECT_EQ(outcome.result->attempts, 2) << "planned from before it, the first round went too far";
    EXPECT_EQ(shownAt("LEFT"), 2u);
}

TEST(SwitchChain, MissingCallsCostWhatTheyGive) {
    EXPECT_EQ(
        switchWithout({"CGSManagedDisplayGetCurrentSpace", "CGSManagedDisplayIsAnimating"}).result->engine,
        EngineKind::dockSwipe);
    for (const std::string_view symbol : {"CGSCopySpacesForWindows", "CGSAddWindowsToSpaces"}) {
        EXPECT_EQ(switchWithout({symbol}).result->engine, EngineKind::dockSwipe);
        EXPECT_TRUE(switchWithout({symbol}, false).failedWith(Case::engineUnavailable));
    }
    EXPECT_EQ(switchWithout({"CGWindowListCopyWindowInfo"}, false).result->engine, EngineKind::helperWindow);
    EXPECT_EQ(sentenceOf(switchWithout({"CGSCopyManagedDisplaySpaces"}).error),
              "This macOS build does not expose the desktop APIs Lumnara needs.");
    EXPECT_TRUE(switchWithout({"CGSMainConnectionID"}).failedWithA<SpaceKitError>());
}

TEST(SwitchChain, TheSharedArrangementNeedsNoPointer) {
    testing::SwitchingSession session({.separateSpaces = false});
    session.mac.pointer().moveTo({2000, 700});
    for (const bool instant : {true, false}) {
        session.switcher.settings.instantSwitching = instant;
        EXPECT_TRUE(session.switchTo("Main", instant ? 2 : 0).result);
    }
    EXPECT_EQ(session.shownAt("Main"), 0u);
    EXPECT_TRUE(session.events.warps.empty());
}

} // namespace
} // namespace lumnara
