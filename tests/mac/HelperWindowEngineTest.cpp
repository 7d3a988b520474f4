#include "core/platform/mac/engines/HelperWindowEngine.h"
#include "core/async/Task.h"

#include "tests/simruns/SwitchingSession.h"

#include <algorithm>

namespace lumnara {
namespace {

using testing::Outcome;
using Case = SwitchError::Case;
using Spaces = std::vector<SpaceID>;

/// "LEFT" and "RIGHT" show the first of their three desktops.
class HelperWindowEngineTest : public ::testing::Test, protected testing::SwitchingSession {
protected:
    Outcome goTo(const char* display, std::size_t index) {
        return switchBy(helperWindow, desktopAt(display, index), display);
    }
    WindowNumber numberOf(SpaceID space, const char* on = "LEFT") {
        return static_cast<WindowNumber>(helperWindow.window(space, {on}).windowNumber());
    }
    Spaces spacesOf(WindowNumber window) { return seams.windowServer->spacesOfWindows({window}); }
    std::size_t ownWindows() const {
        return static_cast<std::size_t>(
            std::ranges::count(mac.windows().all(), mac.ownPid(), &SimulatedWindow::ownerPid));
    }
    /// Of an ordinary window of an application that is launched for it.
    std::int32_t openApp(const char* name, SpaceID space) {
        const auto app = mac.launch(name, std::string("com.example.") + name);
        mac.openWindow(app, space);
        return app;
    }
};

TEST_F(HelperWindowEngineTest, MakesANearlyInvisibleWindowInTheCornerOfTheDisplay) {
    helperWindow.window(space("RIGHT", 1), {"right"});
    const WindowForm expected{.contentRect = {4070, 1438, 1, 1},
                              .styleMask = 0,
                              .backing = 2,
                              .isDeferred = false,
                              .isReleasedWhenClosed = false,
                              .alpha = 0.01,
                              .hasClearBackground = true,
                              .isOpaque = false,
                              .hasShadow = false,
                              .ignoresMouseEvents = true,
                              .level = 0,
                              .collectionBehavior = 0x154,
                              .title = "Lumnara helper",
                              .isExcludedFromWindowsMenu = true};
    EXPECT_EQ(own.forms, std::vector{expected});

    helperWindow.window({1001}, {"Main"});
    EXPECT_EQ(own.forms.back().contentRect, (Rect{1510, 980, 1, 1})) << "of the main screen";
    mac.apps().activateSelf(openApp("Notes", space("RIGHT", 0)));
    loop.runUntilDone();
    helperWindow.window({1002}, {"Main"});
    EXPECT_EQ(own.forms.back().contentRect, expected.contentRect);

    SimulatedMac bare(loop);
    MacSeams seams = bare.seams();
    HelperWindowEngine engine(reader, *seams.windowServer, own, *seams.workspace, *seams.screens);
    engine.window({1003}, {"LEFT"});
    EXPECT_EQ(own.forms.back().contentRect, (Rect{-2, -2, 1, 1}));
}

TEST_F(HelperWindowEngineTest, PinsAWindowToItsSpaceAloneAndOnlyWhenNeeded) {
    const SpaceID home = space("LEFT", 1), other = space("LEFT", 2);
    const WindowNumber window = numberOf(home);
    EXPECT_EQ(spacesOf(window), Spaces{home});
    seams.windowServer->addWindowsToSpaces({window}, {other});
    EXPECT_EQ(numberOf(home), window);
    EXPECT_EQ(spacesOf(window), (Spaces{home, other})) << "it is there";
    seams.windowServer->removeWindowsFromSpaces({window}, {home});
    numberOf(home);
    EXPECT_EQ(spacesOf(window), Spaces{home});
    EXPECT_EQ(ownWindows(), 1u);

    mac.windows().remove(window);
    numberOf(home);
    EXPECT_TRUE(goTo("LEFT", 1).failedWith(Case::engineUnavailable)) << "there is no number to pin";
}

TEST_F(HelperWindowEngineTest, WarmingGivesEachSpaceItsWindowAndCorrectsStrictly) {
    const auto expectHome = [&] {
        for (const PlacedSpace& placed : reader.snapshot().allSpaces())
            EXPECT_EQ(spacesOf(numberOf(placed.space.id, placed.display.uuid.c_str())),
                      Spaces{placed.space.id});
        EXPECT_EQ(ownWindows(), 6u);
    };
    helperWindow.warm(reader.snapshot());
    EXPECT_EQ(own.forms.at(3).contentRect.x, 4070) << "on its own display";
    expectHome();
    seams.windowServer->addWindowsToSpaces({numberOf(space("LEFT", 1))}, {space("LEFT", 2)});
    helperWindow.warm(reader.snapshot());
    expectHome();
}

TEST_F(HelperWindowEngineTest, ClosesTheWindowsOfSpacesThatAreGoneAndAllAsItEnds) {
    helperWindow.warm(reader.snapshot());
    const WindowNumber going = numberOf(space("LEFT", 1));
    mac.removeSpace(space("LEFT", 1));
    helperWindow.pruneWindows(reader.snapshot());
    EXPECT_EQ(ownWindows(), 5u);
    EXPECT_EQ(mac.windows().find(going), nullptr);
    helperWindow.closeAll();
    EXPECT_EQ(ownWindows(), 0u);
    {
        HelperWindowEngine brief(reader, *seams.windowServer, own, *seams.workspace, *seams.screens);
        brief.window(space("LEFT", 1), {"LEFT"});
        EXPECT_EQ(ownWindows(), 1u);
    }
    EXPECT_EQ(ownWindows(), 0u);
}

TEST_F(HelperWindowEngineTest, LooksForTheFirstTimeAfterAQuarterOfASecond) {
    const Space target = desktopAt("LEFT", 1);
    const DisplayID display{"LEFT"};
    const SpaceSnapshot before = reader.snapshot();
    mac.stage().move(target.id, 0);
    helperWindow.handsFocusBack = false;
    EXPECT_EQ(testing::finish(loop, helperWindow.switchTo(target, display, before)).result,
              (SwitchResult{true, EngineKind::helperWindow, 1, 0.25}));
    EXPECT_EQ(front(), "Lumnara");
}

TEST_F(HelperWindowEngineTest, WaitsLongAndHandsTheFocusBackBeforeItFails) {
    mac.inject(SimulatedFault::animationNeverEnds);
    EXPECT_EQ(goTo("LEFT", 1).switchError(), SwitchError::notLanded(1));
    EXPECT_GE(loop.now(), async::wholeNanos(0.25) + 25 * async::wholeNanos(0.06));
    EXPECT_LT(async::secondsOf(loop.now()), 1.77);
    EXPECT_EQ(front(), "Finder");
}

TEST_F(HelperWindowEngineTest, ACancelledSwitchHandsTheFocusBackToo) {
    mac.inject(SimulatedFault::animationNeverEnds);
    EXPECT_TRUE(cancelled(helperWindow, desktopAt("LEFT", 1), "LEFT", 0.1).failedWithA<async::Cancelled>());
    EXPECT_LT(async::secondsOf(loop.now()), 0.2);
    EXPECT_EQ(front(), "Finder");
}

TEST_F(HelperWindowEngineTest, RefusesWhatItCannotDo) {
    const Space onRight = desktopAt("RIGHT", 1);
    EXPECT_TRUE(switchBy(helperWindow, onRight, "LEFT").failedWith(Case::targetNotInSnapshot));
    EXPECT_TRUE(switchBy(helperWindow, onRight, "gone").failedWith(Case::targetNotInSnapshot));
    EXPECT_TRUE(goTo("LEFT", 0).failedWith(Case::alreadyThere));
    EXPECT_EQ(ownWindows(), 0u);

    const auto player = openApp("Player", space("LEFT", 2));
    mac.enterFullscreen(mac.openWindow(player, space("LEFT", 2)));
    mac.stage().move(space("LEFT", 0), 0);
    Space target = desktopAt("LEFT", 1);
    ASSERT_EQ(target.kind, SpaceKind::fullscreen);
    target.kind = SpaceKind::user;
    EXPECT_TRUE(switchBy(helperWindow, target, "LEFT").failedWith(Case::engineUnavailable));
    target.kind = SpaceKind::fullscreen;
    mac.apps().quit(player);
    EXPECT_TRUE(switchBy(helperWindow, target, "LEFT").failedWith(Case::engineUnavailable)) << "it has gone";
    target.fullscreenOwner.reset();
    EXPECT_TRUE(switchBy(helperWindow, target, "LEFT").failedWith(Case::engineUnavailable));
    EXPECT_NE(front(), "Lumnara");
}

TEST_F(HelperWindowEngineTest, AFullscreenSpaceIsReachedThroughItsOwner) {
    for (const int version : {13, 14}) {
        testing::SwitchingSession session({.systemVersion = version});
        const auto player = session.mac.launch("Player", "com.example.player");
        session.mac.enterFullscreen(session.mac.openWindow(player, session.space("LEFT", 0)));
        session.loop.runUntilDone();
        session.mac.windows().add({.ownerPid = session.mac.launch("Notes", {}),
                                   .bounds = {700, 400, 100, 100},
                                   .isOrderedIn = true,
                                   .isOnEverySpace = true});
        const auto goTo = [&](std::size_t index) {
            return session.switchBy(session.helperWindow, session.desktopAt("LEFT", index), "LEFT");
        };
        EXPECT_EQ(goTo(2).result->engine, EngineKind::helperWindow);
        EXPECT_EQ(goTo(1).result->engine, EngineKind::fullscreenActivation);
        EXPECT_EQ(session.shownAt("LEFT"), 1u);
        EXPECT_EQ(session.front(), "Player") << "the focus stays with the owner";
    }
}

TEST_F(HelperWindowEngineTest, HandsTheFocusToTheFrontmostOrdinaryAppOfTheDisplay) {
    const SpaceID there = space("LEFT", 1);
    openApp("behind", there);
    openApp("right", there);
    openApp("other display", space("RIGHT", 0));
    const Rect middle{700, 400, 100, 100};
    const auto agent = mac.apps().launch("agent", {}, ActivationPolicy::accessory);
    const auto floating = mac.launch("floating", {});
    for (const auto& [pid, layer] : {std::pair(agent, 0), {floating, 3}, {9999, 0}, {mac.ownPid(), 0}})
        mac.windows().add(
            {.ownerPid = pid, .layer = layer, .bounds = middle, .isOrderedIn = true, .spaces = {there}});
    EXPECT_TRUE(goTo("LEFT", 1).result);
    EXPECT_EQ(front(), "right");
}

TEST(HelperWindowEngine, HandsTheFocusToWhomeverThereIs) {
    struct World {
        const char* who;
        const char* missing;
        bool hasFinder;
    };
    for (const World& world : {World{"Finder", "CGWindowListCopyWindowInfo", true},
                               {"Lumnara", "CGWindowListCopyWindowInfo", false},
                               {"Notes", "", true}}) {
        testing::SwitchingSession session({.separateSpaces = false},
                                          [&](SimulatedMac& mac) { mac.removeSymbol(world.missing); });
        session.mac.openWindow(session.mac.launch("Notes", {}), session.space("Main", 1));
        for (const RunningApplication& app : std::vector(session.mac.apps().running()))
            if (!world.hasFinder && app.app.name == "Finder") session.mac.apps().quit(app.app.pid);
        EXPECT_TRUE(session.switchBy(session.helperWindow, session.desktopAt("Main", 1), "Main").result);
        EXPECT_EQ(session.front(), world.who);
    }
}

} // namespace
} // namespace lumnara
