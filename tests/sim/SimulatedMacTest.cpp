#include "tests/simruns/SimulatedSession.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace lumnara {
namespace {

class SimulatedMacTest : public ::testing::Test, protected testing::SimulatedSession {
protected:
    SimulatedMacTest() {
        heard = seams.workspace->observe([this](WorkspaceEvent event) { events.push_back(event); });
    }
    std::vector<SpaceID> spacesOf(WindowNumber window) {
        return seams.windowServer->spacesOfWindows({window});
    }
    std::vector<WindowNumber> listed(WindowListOption option) {
        std::vector<WindowNumber> numbers;
        const auto list = seams.windowServer->windowList(option);
        for (const PropertyDictionary& entry : *list)
            numbers.push_back(static_cast<WindowNumber>(*entry.find("kCGWindowNumber")->unsignedInteger()));
        return numbers;
    }

    std::vector<WorkspaceEvent> events;
    async::Subscription heard;
};

TEST_F(SimulatedMacTest, SpacesComeAndGoWithIdsThatAreNeverUsedAgain) {
    const SpaceID added = mac.addDesktop("LEFT");
    const SpaceID middle = space("LEFT", 1);
    const auto app = mac.launch("Notes", "com.example.notes");
    const WindowNumber window = mac.openWindow(app, middle);
    mac.stage().move(middle, 0);
    mac.removeSpace(middle);
    EXPECT_EQ(mac.layout().displayOf(middle), nullptr);
    EXPECT_EQ(shownAt("LEFT"), 0u) << "a neighbour is shown";
    EXPECT_EQ(spacesOf(window), std::vector<SpaceID>{space("LEFT", 0)});
    EXPECT_EQ(std::ranges::count(events, WorkspaceEvent::activeSpaceDidChange), 2);
    EXPECT_GT(mac.addDesktop("LEFT"), added);

    for (int number = 0; number < 9; ++number) mac.removeSpace(space("RIGHT", 0));
    EXPECT_EQ(mac.layout().display("RIGHT")->spaces.size(), 1u) << "the last desktop stays";
    EXPECT_EQ(mac.addDesktop("nowhere"), SpaceID{});
}

TEST_F(SimulatedMacTest, AFullscreenWindowHasASpaceToItselfBehindTheOneItLeft) {
    const auto app = mac.launch("Player", "com.example.player");
    const WindowNumber window = mac.openWindow(app, space("LEFT", 0));
    const SpaceID fullscreen = mac.enterFullscreen(window);
    EXPECT_EQ(space("LEFT", 1), fullscreen);
    EXPECT_TRUE(mac.stage().isAnimating("LEFT"));
    loop.runUntilDone();
    EXPECT_EQ(shownAt("LEFT"), 1u);
    EXPECT_EQ(front(), "Player");

    auto reader = provider();
    const SpaceSnapshot snapshot = reader.snapshot();
    const Space& read = snapshot.displays[0].spaces[1];
    EXPECT_EQ(read.kind, SpaceKind::fullscreen);
    EXPECT_EQ(read.fullscreenOwner, (RunningApp{app, "com.example.player", "Player"}));
    EXPECT_EQ(snapshot.key(read, "LEFT"), "fullscreen:com.example.player");

    const WindowNumber foreign = mac.openWindow(mac.launch("Notes", {}), space("LEFT", 0));
    seams.windowServer->addWindowsToSpaces({foreign}, {fullscreen});
    EXPECT_EQ(spacesOf(foreign), std::vector<SpaceID>{space("LEFT", 0)}) << "it takes no foreign window";

    const auto own = seams.ownApplication->makeWindow({.contentRect = {5, 5, 1, 1}});
    own->orderFrontRegardless();
    EXPECT_EQ(spacesOf(static_cast<WindowNumber>(own->windowNumber())), std::vector{space("LEFT", 0)})
        << "not even one that opens while it is shown";

    mac.leaveFullscreen(window);
    loop.runUntilDone();
    EXPECT_EQ(mac.layout().display("LEFT")->spaces.size(), 3u);
    EXPECT_EQ(shownAt("LEFT"), 0u);
    EXPECT_EQ(spacesOf(window), std::vector<SpaceID>{space("LEFT", 0)});
    EXPECT_GT(mac.enterFullscreen(window), fullscreen);
}

TEST_F(SimulatedMacTest, ALoginGivesOtherIdsUnderTheSameUuids) {
    auto reader = provider();
    const SpaceSnapshot before = reader.snapshot();
    mac.logInAgain();
    const SpaceSnapshot after = reader.snapshot();
    const std::string key = *before.key(before.displays[1].spaces[2], "RIGHT");
    EXPECT_NE(after.resolve(key)->space.id, before.resolve(key)->space.id);
    EXPECT_EQ(after.stableKeys(), before.stableKeys());
}

TEST_F(SimulatedMacTest, ListsWindowsFrontToBackWithWhereTheyAre) {
    const auto app = mac.launch("Notes", {});
    const WindowNumber back = mac.openWindow(app, space("LEFT", 0));
    const WindowNumber frontWindow = mac.openWindow(app, space("LEFT", 0));
    const WindowNumber elsewhere = mac.openWindow(app, space("LEFT", 1));
    const WindowNumber clear =
        mac.windows().add({.ownerPid = app, .alpha = 0, .isOrderedIn = true, .spaces = {space("LEFT", 0)}});
    const WindowNumber wallpaper = mac.windows().add(
        {.ownerPid = app, .layer = -100, .isOrderedIn = true, .spaces = {space("LEFT", 0)}});
    EXPECT_EQ(listed(WindowListOption::all), (std::vector{clear, elsewhere, frontWindow, back, wallpaper}));
    EXPECT_EQ(listed(WindowListOption::onScreenOnly), (std::vector{frontWindow, back, wallpaper}));
    EXPECT_EQ(listed(WindowListOption::onScreenOnlyWithoutDesktop), (std::vector{frontWindow, back}));
}

TEST_F(SimulatedMacTest, ActivatingAnAppWhoseKeyWindowIsElsewhereGoesThereInTime) {
    const auto app = mac.launch("Notes", {});
    mac.openWindow(app, space("RIGHT", 2));
    mac.apps().activateSelf(app);
    loop.advance(0.02);
    EXPECT_TRUE(mac.stage().isAnimating("RIGHT"));
    EXPECT_EQ(shownAt("RIGHT"), 0u);
    loop.advance(0.8);
    EXPECT_EQ(shownAt("RIGHT"), 2u);
    EXPECT_EQ(front(), "Notes");
    EXPECT_EQ(seams.windowServer->activeMenuBarDisplay(), "RIGHT");
    EXPECT_EQ(events, std::vector{WorkspaceEvent::activeSpaceDidChange});
}

TEST_F(SimulatedMacTest, ALandingOnAnotherDisplayDoesNotStealTheFocusOfTheOneUnderWay) {
    const auto app = mac.launch("Notes", {});
    mac.openWindow(app, space("RIGHT", 2));
    const WindowNumber other = mac.openWindow(mac.launch("Other", {}), space("RIGHT", 2));
    mac.apps().activateSelf(app);
    loop.advance(0.1);
    mac.stage().move(space("LEFT", 1), 0);
    loop.advance(1);
    EXPECT_EQ(front(), "Notes") << "and not who stands in front there";

    EXPECT_EQ(listed(WindowListOption::onScreenOnly).back(), other) << "the focused window came to the front";
    mac.stage().move(space("RIGHT", 0), 0);
    mac.windows().orderFront(other);
    mac.stage().move(space("RIGHT", 2), 0);
    EXPECT_EQ(front(), "Other") << "a landing that nobody led";
}

TEST_F(SimulatedMacTest, AnAppThatHasAWindowInViewStays) {
    const auto app = mac.launch("Notes", {});
    mac.openWindow(app, space("LEFT", 0));
    const WindowNumber key = mac.openWindow(app, space("LEFT", 2));
    mac.apps().activateSelf(app);
    loop.runUntilDone();
    EXPECT_EQ(shownAt("LEFT"), 0u);
    mac.apps().makeKey(key); // asked for, it leads there all the same
    loop.runUntilDone();
    EXPECT_EQ(shownAt("LEFT"), 2u);
}

TEST_F(SimulatedMacTest, AnotherAppIsActivatedOnlyByOneThatHasYieldedToIt) {
    const auto app = mac.launch("Notes", {});
    const auto ask = [&](ActivationOptions options) {
        seams.workspace->activate(app, options);
        loop.runUntilDone();
        return front();
    };
    EXPECT_TRUE(seams.ownApplication->mustYieldActivation());
    EXPECT_EQ(ask(ActivationOptions::ignoringOtherApps), "nobody");
    seams.ownApplication->activateIgnoringOtherApps();
    loop.runUntilDone();
    EXPECT_EQ(ask(ActivationOptions::none), "Lumnara");
    seams.ownApplication->yieldActivation(app);
    EXPECT_EQ(ask(ActivationOptions::none), "Notes");

    testing::SimulatedSession older({.systemVersion = 13});
    const auto notes = older.mac.launch("Notes", {});
    older.seams.workspace->activate(notes, ActivationOptions::none);
    older.loop.runUntilDone();
    EXPECT_EQ(older.front(), "nobody");
    older.seams.workspace->activate(notes, ActivationOptions::ignoringOtherApps);
    older.loop.runUntilDone();
    EXPECT_EQ(older.front(), "Notes");
}

TEST_F(SimulatedMacTest, TheFrontWindowOfWhatIsShownGetsTheFocus) {
    const auto app = mac.launch("Notes", {});
    mac.openWindow(app, space("RIGHT", 1));
    mac.stage().move(space("RIGHT", 1), 0);
    EXPECT_EQ(front(), "Notes");
    mac.apps().quit(app);
    EXPECT_EQ(front(), "nobody");
    EXPECT_TRUE(listed(WindowListOption::all).empty());
}

} // namespace
} // namespace lumnara
