#include "core/platform/mac/engines/HelperWindowEngine.h"

#include "tests/support/ScriptedSeams.h"
#include "tests/switching/SwitchingTest.h"

#include <algorithm>
#include <fmt/format.h>

namespace lumnara {
namespace {

using testing::desktop;
using testing::finish;
using testing::Outcome;
using testing::ScriptedProvider;
using testing::twoDisplays;
using Case = SwitchError::Case;
using Lines = std::vector<std::string>;

/// What the engine does to windows and applications, line by line.
struct Desk {
    Lines done;
    std::map<std::int64_t, std::vector<SpaceID>> spaces;
    std::vector<WindowForm> forms;
    std::int64_t nextNumber = 100;

    Lines take() { return std::exchange(done, {}); }
};

class DeskWindow : public OwnWindow {
public:
    DeskWindow(Desk& desk, std::int64_t number) : desk_(desk), number_(number) {}
    std::int64_t windowNumber() override { return number_; }
    void orderFrontRegardless() override { say("front"); }
    void makeKeyAndOrderFront() override { say("key"); }
    void orderOut() override { say("out"); }
    void close() override { say("close"); }

private:
    void say(const char* what) { desk_.done.push_back(fmt::format("{} {}", what, number_)); }
    Desk& desk_;
    std::int64_t number_;
};

struct DeskApplication : OwnApplication {
    explicit DeskApplication(Desk& onto) : desk(onto) {}
    std::int32_t pid() override { return 1; }
    std::unique_ptr<OwnWindow> makeWindow(const WindowForm& form) override {
        desk.forms.push_back(form);
        return std::make_unique<DeskWindow>(desk, desk.nextNumber++);
    }
    void activateIgnoringOtherApps() override { desk.done.push_back("activate self"); }
    bool mustYieldActivation() override { return mustYield; }
    void yieldActivation(std::int32_t toPid) override { desk.done.push_back(fmt::format("yield {}", toPid)); }

    Desk& desk;
    bool mustYield = true;
};

struct DeskWorkspace : Workspace {
    explicit DeskWorkspace(Desk& onto) : desk(onto) {}
    async::Subscription observe(std::function<void(WorkspaceEvent)>) override { return {}; }
    std::vector<RunningApplication> runningApplications() override { return running; }
    void activate(std::int32_t pid, ActivationOptions options) override {
        desk.done.push_back(fmt::format("activate {} with {}", pid, static_cast<int>(options)));
    }

    Desk& desk;
    std::vector<RunningApplication> running;
};

struct DeskServer : testing::ScriptedWindowServer {
    explicit DeskServer(Desk& onto) : desk(onto) {
        expectedOption = WindowListOption::onScreenOnlyWithoutDesktop;
    }
    std::vector<SpaceID> spacesOfWindows(const std::vector<WindowNumber>& windows) override {
        EXPECT_EQ(windows.size(), 1u);
        return desk.spaces[windows.at(0)];
    }
    void addWindowsToSpaces(const std::vector<WindowNumber>& windows,
                            const std::vector<SpaceID>& spaces) override {
        desk.done.push_back(fmt::format("add {} to {}", windows.at(0), spaces.at(0).raw));
        if (spaces.at(0) != refusing) desk.spaces[windows.at(0)].push_back(spaces.at(0));
    }
    void removeWindowsFromSpaces(const std::vector<WindowNumber>& windows,
                                 const std::vector<SpaceID>& spaces) override {
        for (const SpaceID space : spaces) {
            desk.done.push_back(fmt::format("remove {} from {}", windows.at(0), space.raw));
            std::erase(desk.spaces[windows.at(0)], space);
        }
    }

    Desk& desk;
    /// A Space that takes no window.
    SpaceID refusing;
};

class HelperWindowEngineTest : public ::testing::Test {
protected:
    HelperWindowEngineTest() { desk.spaces[100] = {{1}}; }
    Outcome switchTo(const Space& target, const char* on = "D1") {
        const DisplayID display{on};
        const SpaceSnapshot snapshot = provider.current;
        return finish(loop, engine.switchTo(target, display, snapshot));
    }
    /// Makes Space 3 a full-screen one of that owner, which takes no foreign window.
    Space fullscreen(std::optional<RunningApp> owner) {
        Space& space = provider.current.displays[0].spaces[2];
        space = testing::makeFullscreen(3, "U3", std::move(owner));
        space.indexOnDisplay = 2;
        server.refusing = {3};
        return space;
    }
    void list(std::int64_t pid, Point middle, int layer = 0) {
        if (!server.list) server.list.emplace();
        server.list->push_back(
            {{"kCGWindowOwnerPID", pid},
             {"kCGWindowLayer", layer},
             {"kCGWindowBounds",
              PropertyDictionary{{"X", middle.x - 5}, {"Y", middle.y - 5}, {"Width", 10}, {"Height", 10}}}});
    }
    void run(std::int32_t pid, const char* bundleID, ActivationPolicy policy = ActivationPolicy::regular) {
        workspace.running.push_back({{pid, bundleID, bundleID}, policy});
    }

    async::TestLoop loop;
    ScriptedProvider provider{twoDisplays()};
    Desk desk;
    DeskServer server{desk};
    DeskApplication own{desk};
    DeskWorkspace workspace{desk};
    testing::TwoScreens screens;
    HelperWindowEngine engine{provider, server, own, workspace, screens};
};

TEST_F(HelperWindowEngineTest, MakesANearlyInvisibleWindowInTheCornerOfTheDisplay) {
    engine.window({5}, {"d2"});
    WindowForm expected;
    expected.contentRect = {398, 198, 1, 1};
    expected.styleMask = 0;
    expected.backing = 2;
    expected.isDeferred = false;
    expected.isReleasedWhenClosed = false;
    expected.alpha = 0.01;
    expected.hasClearBackground = true;
    expected.isOpaque = false;
    expected.hasShadow = false;
    expected.ignoresMouseEvents = true;
    expected.level = 0;
    expected.collectionBehavior = 0x154;
    expected.title = "Lumnara helper";
    expected.isExcludedFromWindowsMenu = true;
    EXPECT_EQ(desk.forms, std::vector{expected});

    server.menuBar = "d2";
    engine.window({1}, {"Main"});
    EXPECT_EQ(desk.forms.back().contentRect, expected.contentRect) << "the main screen";
    server.menuBar.reset();
    engine.window({2}, {"Main"});
    EXPECT_EQ(desk.forms.back().contentRect, (Rect{98, 78, 1, 1}));
    screens.list.clear();
    engine.window({3}, {"D1"});
    EXPECT_EQ(desk.forms.back().contentRect, (Rect{-2, -2, 1, 1}));
}

TEST_F(HelperWindowEngineTest, PinsAWindowToItsSpaceAloneAndOnlyWhenNeeded) {
    OwnWindow& window = engine.window({2}, {"D1"});
    EXPECT_EQ(desk.take(), (Lines{"front 100", "remove 100 from 1", "add 100 to 2"}));
    EXPECT_EQ(&engine.window({2}, {"D1"}), &window);
    desk.spaces[100] = {{2}, {3}};
    engine.window({2}, {"D1"});
    EXPECT_EQ(desk.take(), Lines()) << "it is there";
    desk.spaces[100] = {{3}};
    engine.window({2}, {"D1"});
    EXPECT_EQ(desk.take(), (Lines{"remove 100 from 3", "add 100 to 2"}));

    desk.nextNumber = 0;
    engine.window({4}, {"D2"});
    desk.nextNumber = std::int64_t{1} << 32;
    engine.window({5}, {"D2"});
    EXPECT_EQ(desk.take(), (Lines{"front 0", "front 4294967296"})) << "there is no number to pin";
}

TEST_F(HelperWindowEngineTest, WarmingGivesEachSpaceItsWindowAndCorrectsStrictly) {
    engine.warm(provider.current);
    EXPECT_EQ(desk.forms.size(), 5u);
    EXPECT_EQ(desk.spaces[104], std::vector<SpaceID>{{5}});
    desk.take();
    engine.warm(provider.current);
    EXPECT_EQ(desk.take(), Lines());
    desk.spaces[101] = {{2}, {3}};
    engine.warm(provider.current);
    EXPECT_EQ(desk.take(), Lines{"remove 101 from 3"});
}

TEST_F(HelperWindowEngineTest, ClosesTheWindowsOfSpacesThatAreGone) {
    engine.warm(provider.current);
    desk.take();
    SpaceSnapshot fewer = provider.current;
    fewer.displays[0].spaces.erase(fewer.displays[0].spaces.begin() + 1);
    engine.pruneWindows(fewer);
    EXPECT_EQ(desk.take(), (Lines{"out 101", "close 101"}));
    engine.closeAll();
    EXPECT_EQ(desk.take().size(), 8u);
}

TEST_F(HelperWindowEngineTest, ClosesItsWindowsAsItEnds) {
    {
        HelperWindowEngine brief(provider, server, own, workspace, screens);
        brief.window({2}, {"D1"});
        desk.take();
    }
    EXPECT_EQ(desk.take(), (Lines{"out 100", "close 100"}));
}

TEST_F(HelperWindowEngineTest, ActivatesItselfWithItsKeyWindowThere) {
    engine.handsFocusBack = false;
    provider.show("D1", 2); // at the first look; the snapshot given is from before
    const Space target = desktop(2);
    const DisplayID display{"D1"};
    const SpaceSnapshot before = twoDisplays();
    const Outcome outcome = finish(loop, engine.switchTo(target, display, before));
    ASSERT_TRUE(outcome.result);
    EXPECT_EQ(*outcome.result, (SwitchResult{true, EngineKind::helperWindow, 1, 0.25}));
    EXPECT_EQ(desk.take(),
              (Lines{"front 100", "remove 100 from 1", "add 100 to 2", "activate self", "key 100"}));
}

TEST_F(HelperWindowEngineTest, WaitsLongAndHandsTheFocusBackBeforeItFails) {
    run(7, "com.apple.finder");
    EXPECT_EQ(switchTo(desktop(2)).switchError(), SwitchError::notLanded(1));
    EXPECT_EQ(loop.now(), async::wholeNanos(0.25) + 25 * async::wholeNanos(0.06));
    EXPECT_EQ(desk.take().back(), "activate 7 with 0");
}

TEST_F(HelperWindowEngineTest, ACancelledSwitchHandsTheFocusBackToo) {
    run(7, "com.apple.finder");
    const Space target = desktop(2);
    const DisplayID display{"D1"};
    const SpaceSnapshot snapshot = provider.current;
    Outcome outcome;
    auto handle =
        async::spawn(loop, testing::noteOutcome(engine.switchTo(target, display, snapshot), outcome));
    loop.advance(0.1);
    handle.cancel();
    loop.runUntilDone();
    EXPECT_TRUE(outcome.failedWithA<async::Cancelled>());
    EXPECT_EQ(loop.now(), async::wholeNanos(0.1));
    EXPECT_EQ(desk.take().back(), "activate 7 with 0");
}

TEST_F(HelperWindowEngineTest, RefusesWhatItCannotDo) {
    EXPECT_TRUE(switchTo(desktop(4)).failedWith(Case::targetNotInSnapshot));
    EXPECT_TRUE(switchTo(desktop(2), "gone").failedWith(Case::targetNotInSnapshot));
    EXPECT_TRUE(switchTo(desktop(1)).failedWith(Case::alreadyThere));
    EXPECT_TRUE(desk.forms.empty());
    server.refusing = {2};
    EXPECT_TRUE(switchTo(desktop(2)).failedWith(Case::engineUnavailable)) << "the window isn't on the target";
    EXPECT_TRUE(switchTo(fullscreen({})).failedWith(Case::engineUnavailable)) << "no owner";
    EXPECT_TRUE(switchTo(fullscreen(RunningApp{9, {}, "Gone"})).failedWith(Case::engineUnavailable));
    EXPECT_EQ(std::ranges::count(desk.done, "activate self"), 0);
}

TEST_F(HelperWindowEngineTest, AFullscreenSpaceIsReachedThroughItsOwner) {
    run(9, "com.example.player");
    const Space target = fullscreen(RunningApp{9, "com.example.player", "Player"});
    engine.window(target.id, {"D1"});
    desk.take();
    EXPECT_EQ(switchTo(target).switchError(), SwitchError::notLanded(1));
    EXPECT_EQ(desk.take(), (Lines{"add 100 to 3", "activate self", "yield 9", "activate 9 with 0"}))
        << "the focus stays with the owner";

    own.mustYield = false;
    switchTo(target);
    EXPECT_EQ(desk.take(), (Lines{"add 100 to 3", "activate self", "activate 9 with 2"}));

    const SpaceSnapshot before = provider.current;
    provider.show("D1", 3);
    const DisplayID display{"D1"};
    const Outcome outcome = finish(loop, engine.switchTo(target, display, before));
    ASSERT_TRUE(outcome.result);
    EXPECT_EQ(outcome.result->engine, EngineKind::fullscreenActivation);
}

TEST_F(HelperWindowEngineTest, HandsTheFocusToTheFrontmostOrdinaryAppOfTheDisplay) {
    run(7, "com.apple.finder");
    run(20, "agent", ActivationPolicy::accessory);
    run(21, "floating");
    run(22, "other display");
    run(23, "right");
    run(24, "behind");
    list(1, {50, 40});
    list(20, {50, 40});
    list(21, {50, 40}, 3);
    list(22, {250, 100});
    list(99, {50, 40}); // no longer runs
    server.list->push_back({{"kCGWindowOwnerPID", 24}, {"kCGWindowLayer", 0}});
    list(23, {50, 40});
    list(24, {50, 40});
    switchTo(desktop(2));
    EXPECT_EQ(desk.take().back(), "activate 23 with 0");

    screens.list.clear();
    switchTo(desktop(2));
    EXPECT_EQ(desk.take().back(), "activate 22 with 0") << "the display's place isn't known";

    server.list.reset();
    switchTo(desktop(2));
    EXPECT_EQ(desk.take().back(), "activate 7 with 0");
    workspace.running.clear();
    switchTo(desktop(2));
    EXPECT_EQ(desk.take().back(), "key 100") << "nobody to hand it to";
}

} // namespace
} // namespace lumnara
