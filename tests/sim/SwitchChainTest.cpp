#include "core/model/SpaceKitError.h"
#include "core/switching/SwitchSettle.h"
#include "tests/sim/SwitchingSession.h"

#include <algorithm>

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
    EXPECT_EQ(events.posted, 6);
    EXPECT_TRUE(events.lastWarp);
    EXPECT_EQ(mac.pointer().position(), (Point{10, 10}));
    EXPECT_EQ(switcher.history.current("RIGHT"), reader.snapshot().displays[1].spaces[2].uuid);
    EXPECT_TRUE(switchTo("RIGHT", 2).failedWith(Case::alreadyThere));
}

TEST_F(SwitchChainTest, AJumpOverManySpacesIsOneSwipeEach) {
    for (int more = 0; more < 13; ++more) mac.addDesktop("LEFT");
    EXPECT_EQ(switchTo("LEFT", 15).result->attempts, 1);
    EXPECT_EQ(switchTo("LEFT", 0).result->attempts, 1);
    EXPECT_EQ(events.posted, 2 * 15 * 3);
    EXPECT_FALSE(events.lastWarp);
}

TEST_F(SwitchChainTest, FollowsTheUsersScrollDirection) {
    mac.dock().positiveIsHigherIndex = false;
    dockSwipe.config.positiveIsHigherIndex = false;
    EXPECT_EQ(switchTo("LEFT", 2).result->attempts, 1);
}

TEST_F(SwitchChainTest, ALostGestureCostsARound) {
    mac.inject(SimulatedFault::gestureLost);
    const Outcome second = switchTo("LEFT", 1);
    EXPECT_EQ(second.result->attempts, 2);
    EXPECT_EQ(second.result->engine, EngineKind::dockSwipe);

    mac.inject(SimulatedFault::gestureLost); // one step of two
    EXPECT_EQ(switchTo("RIGHT", 2).result->attempts, 2);
    EXPECT_EQ(shownAt("RIGHT"), 2u);
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
        const auto handle = async::spawn(
            session.loop,
            testing::noteOutcome(session.switcher.switchTo(wanted, display, std::nullopt), outcome));
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
    EXPECT_EQ(events.posted, 0);
    EXPECT_EQ(front(), "Notes");
    EXPECT_EQ(switchTo("LEFT", 2).result->engine, EngineKind::helperWindow);
    EXPECT_EQ(front(), "Finder") << "nobody has a window there";

    helperWindow.handsFocusBack = false;
    EXPECT_TRUE(switchTo("LEFT", 1).result);
    EXPECT_EQ(front(), "Lumnara");
    EXPECT_EQ(shownAt("RIGHT"), 0u);
}

TEST_F(SwitchChainTest, TheOwnerOfAFullscreenSpaceIsActivatedWithoutTheGesture) {
    const auto player = mac.launch("Player", "com.example.player");
    mac.enterFullscreen(mac.openWindow(player, space("LEFT", 0)));
    loop.runUntilDone();
    EXPECT_EQ(switchTo("LEFT", 0).result->engine, EngineKind::dockSwipe);
    EXPECT_EQ(switchTo("LEFT", 1).result->engine, EngineKind::dockSwipe) << "a Space like any other";
    switchTo("LEFT", 0);

    switcher.settings.instantSwitching = false;
    for (const int version : {13, 14}) {
        testing::SwitchingSession other({.systemVersion = version});
        const auto owner = other.mac.launch("Player", "com.example.player");
        other.mac.enterFullscreen(other.mac.openWindow(owner, other.space("LEFT", 0)));
        other.loop.runUntilDone();
        other.switcher.settings.instantSwitching = false;
        EXPECT_EQ(other.switchTo("LEFT", 2).result->engine, EngineKind::helperWindow);
        const Outcome outcome = other.switchTo("LEFT", 1);
        ASSERT_TRUE(outcome.result);
        EXPECT_EQ(outcome.result->engine, EngineKind::fullscreenActivation);
        EXPECT_EQ(other.shownAt("LEFT"), 1u);
        EXPECT_EQ(other.front(), "Player");
        EXPECT_EQ(other.switcher.history.current("LEFT"), "fullscreen:com.example.player");
    }
    mac.apps().quit(player);
    EXPECT_TRUE(switchTo("LEFT", 1).failedWith(Case::engineUnavailable)) << "it has no owner any more";
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

TEST_F(SwitchChainTest, TheSessionsStateForbidsSwitches) {
    mac.isLocked = true;
    EXPECT_TRUE(switchTo("LEFT", 1).failedWith(Case::screenLocked));
    mac.isLocked = false;
    mac.isOnConsole = false;
    EXPECT_TRUE(switchTo("LEFT", 1).failedWith(Case::sessionNotOnConsole));
    mac.isOnConsole = true;
    for (const int layer : {18, 20, 20})
        mac.windows().add(
            {.ownerName = "Dock", .layer = layer, .isOrderedIn = true, .spaces = {space("LEFT", 0)}});
    EXPECT_TRUE(switchTo("LEFT", 1).failedWith(Case::missionControlActive));
    EXPECT_EQ(events.posted, 0);
}

TEST_F(SwitchChainTest, TheHelperWindowsFollowTheSpaces) {
    const auto own = [&] {
        return std::ranges::count(mac.windows().all(), mac.ownPid(), &SimulatedWindow::ownerPid);
    };
    switcher.observe(reader.snapshot());
    EXPECT_EQ(own(), 0);
    switcher.keepHelperWindowsWarm = true;
    switcher.observe(reader.snapshot());
    EXPECT_EQ(own(), 6);
    for (const SimulatedWindow& window : mac.windows().all()) EXPECT_EQ(window.spaces.size(), 1u);
    mac.removeSpace(space("LEFT", 1));
    switcher.observe(reader.snapshot());
    EXPECT_EQ(own(), 5);
    switcher.settings.instantSwitching = false;
    EXPECT_TRUE(switchTo("RIGHT", 2).result);
    EXPECT_EQ(own(), 5);
}

TEST(SwitchChain, TheSharedArrangementNeedsNoPointer) {
    testing::SwitchingSession session({.separateSpaces = false});
    session.mac.pointer().moveTo({2000, 700});
    for (const bool instant : {true, false}) {
        session.switcher.settings.instantSwitching = instant;
        EXPECT_TRUE(session.switchTo("Main", instant ? 2 : 0).result);
    }
    EXPECT_EQ(session.shownAt("Main"), 0u);
    EXPECT_FALSE(session.events.lastWarp);
}

TEST_F(SwitchChainTest, GoesBackWithTheHelperWindowAlone) {
    switcher.observe(reader.snapshot());
    const auto key = *reader.snapshot().key(reader.snapshot().displays[0].spaces[2], "LEFT");
    const Outcome outcome =
        testing::finish(loop, switcher.switchWithHelperWindow(key, [&] { return reader.snapshot(); }));
    EXPECT_EQ(outcome.result->engine, EngineKind::helperWindow);
    EXPECT_EQ(events.posted, 0);
    EXPECT_EQ(testing::finish(loop, switcher.switchBack()).result->engine, EngineKind::dockSwipe);
    EXPECT_EQ(shownAt("LEFT"), 0u);
}

} // namespace
} // namespace lumnara
