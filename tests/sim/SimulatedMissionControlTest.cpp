#include "core/platform/mac/engines/SessionState.h"
#include "tests/simruns/SimulatedSession.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <set>

namespace lumnara {
namespace {

/// A person at the Mac's mouse and keyboard.
class SimulatedMissionControlTest : public ::testing::Test, protected testing::SimulatedSession {
protected:
    void point(MouseEventType type, Point at) { mac.input({.origin = MouseEvent{type, at}}); }
    void move(Point to) {
        point(MouseEventType::moved, to);
        loop.advance(0.02);
    }
    void escape() { mac.input({.origin = KeyEvent{KeyCode::escape, true}}); }
    void open() {
        mac.openFile("/System/Applications/Mission Control.app");
        loop.advance(1);
    }
    /// As a person does, in small steps from below.
    void expand() {
        for (double y = 200; y > 34; y -= 6) move({700, y});
        loop.advance(0.5);
    }
    const SpacesBarPicture bar(std::size_t screen = 0) const {
        return mac.missionControl().picture().bars.at(screen);
    }
    std::vector<std::string> titles() const {
        std::vector<std::string> titles;
        for (const ThumbnailPicture& each : bar().thumbnails) titles.push_back(each.title);
        return titles;
    }
    Point middleOf(std::size_t thumbnail) const { return bar().thumbnails.at(thumbnail).frame.middle(); }
    /// Presses, holds, lifts and carries a thumbnail; the button stays down.
    void carry(std::size_t from, Point to, double hold = 0.35, int steps = 20) {
        const Point start = middleOf(from);
        move(start);
        point(MouseEventType::leftDown, start);
        loop.advance(hold);
        for (int step = 1; step <= steps; ++step) {
            point(MouseEventType::leftDragged,
                  {start.x + (to.x - start.x) * step / steps, start.y + (to.y - start.y) * step / steps});
            loop.advance(0.016);
        }
        loop.advance(0.15);
    }
    std::vector<SpaceID> order() const {
        std::vector<SpaceID> ids;
        for (const SimulatedSpace& space : mac.layout().display("LEFT")->spaces) ids.push_back(space.id);
        return ids;
    }
};

TEST_F(SimulatedMissionControlTest, ComesAndGoesInTimeAndIsSeenByTheWindowsOfTheDock) {
    int changes = 0;
    const auto heard = mac.missionControl().changed.subscribe([&] { ++changes; });
    EXPECT_FALSE(mac.openFile("/System/Applications/Chess.app"));
    EXPECT_TRUE(mac.openFile("/System/Applications/Mission Control.app"));
    std::set<double> seen;
    for (int look = 0; look < 100; ++look) {
        loop.advance(0.01);
        seen.insert(mac.missionControl().picture().open);
        EXPECT_EQ(SessionState::isMissionControlVisible(*seams.windowServer), mac.missionControl().isUp());
    }
    EXPECT_EQ(*seen.begin(), 0);
    EXPECT_EQ(*seen.rbegin(), 1);
    EXPECT_GT(seen.size(), 15u) << "it moves in between";
    EXPECT_FALSE(mac.missionControl().isAnimating());
    EXPECT_TRUE(SessionState::dockOverlayVisible(*seams.windowServer));
    escape();
    loop.advance(0.1);
    EXPECT_TRUE(mac.missionControl().isUp() && mac.missionControl().isAnimating());
    loop.advance(1);
    EXPECT_EQ(mac.missionControl().picture().open, 0);
    EXPECT_FALSE(SessionState::dockOverlayVisible(*seams.windowServer));
    EXPECT_GE(changes, 5);
    open();
    open();
    EXPECT_FALSE(mac.missionControl().isUp()) << "opening it again sends it away";
}

TEST_F(SimulatedMissionControlTest, TheBarExpandsOnlyForAPointerThatComesFromBelow) {
    open();
    ASSERT_EQ(mac.missionControl().picture().bars.size(), 2u);
    EXPECT_LE(bar().thumbnails.front().frame.height, 26);
    seams.eventServices->warpPointer({700, 36});
    for (int small = 0; small < 5; ++small) move({700.0 + small, 36});
    EXPECT_EQ(bar().expanded, 0) << "it was never below";
    move({700, 200});
    move({600, 36});
    move({700, 36});
    EXPECT_EQ(bar().expanded, 0) << "no small move";
    expand();
    EXPECT_EQ(bar().expanded, 1);
    EXPECT_EQ(bar(1).expanded, 0) << "the pointer is on the other screen";
    EXPECT_GT(bar().thumbnails.front().frame.height, 26);
    EXPECT_EQ(titles(), (std::vector<std::string>{"Desktop 1", "Desktop 2", "Desktop 3"}));
    const Rect first = bar().thumbnails.front().frame, last = bar().thumbnails.back().frame;
    EXPECT_NEAR(first.x - 0, 1512 - (last.x + last.width), 0.001) << "centred";
    move({700, 400});
    loop.advance(1);
    EXPECT_EQ(bar().expanded, 0);
}

TEST_F(SimulatedMissionControlTest, AThumbnailIsLiftedMakesTheOthersGiveWayAndIsDropped) {
    const auto before = order();
    open();
    carry(0, {middleOf(2).x + 60, middleOf(2).y});
    EXPECT_FALSE(bar().thumbnails[2].isDragged) << "a label stays where it is";
    point(MouseEventType::leftUp, mac.pointer().position());
    expand();
    carry(0, {middleOf(2).x + 60, middleOf(2).y});
    EXPECT_TRUE(bar().thumbnails[2].isDragged);
    EXPECT_EQ(bar().thumbnails[2].frame.middle().x, mac.pointer().position().x);
    EXPECT_EQ(titles(), (std::vector<std::string>{"Desktop 2", "Desktop 3", "Desktop 1"}));
    EXPECT_TRUE(mac.missionControl().picture().isButtonDown);
    EXPECT_EQ(order(), before) << "nothing is decided yet";
    point(MouseEventType::leftUp, mac.pointer().position());
    loop.advance(0.3);
    EXPECT_EQ(order(), (std::vector<SpaceID>{before[1], before[2], before[0]}));
    EXPECT_EQ(titles(), (std::vector<std::string>{"Desktop 1", "Desktop 2", "Desktop 3"}));

    carry(0, {middleOf(2).x + 60, middleOf(2).y}, 0.05);
    point(MouseEventType::leftUp, mac.pointer().position());
    carry(0, {middleOf(2).x + 60, middleOf(2).y}, 0.35, 19);
    point(MouseEventType::leftUp, mac.pointer().position());
    carry(0, {middleOf(2).x + 60, 500});
    point(MouseEventType::leftUp, mac.pointer().position());
    loop.advance(1);
    EXPECT_EQ(order(), (std::vector<SpaceID>{before[1], before[2], before[0]}))
        << "a flick; a throw; a drop off the bar";
}

TEST_F(SimulatedMissionControlTest, TakesFromProgramsOnlyWhatReadsAsTheMousesOwn) {
    using enum MouseEventType;
    const auto hardware = EventSourceState::hidSystem;
    const auto comesThrough = [&](SyntheticEvent event, EventTap tap = EventTap::hid) {
        mac.warpPointer({});
        seams.eventServices->post(event, tap);
        return mac.pointer().position() == Point{9, 9};
    };
    for (const MouseEventType type : {leftDown, leftDragged, leftUp, moved}) {
        const SyntheticEvent bare{.origin = MouseEvent{type, {9, 9}}, .source = hardware};
        SyntheticEvent click = bare, held = bare;
        click.set(1, std::int64_t{1});
        held.fields = {{1, std::int64_t{1}}, {2, 1.0}};
        EXPECT_EQ(comesThrough(bare), type == moved);
        EXPECT_EQ(comesThrough(click), type == moved || type == leftUp);
        EXPECT_TRUE(comesThrough(held));
        EXPECT_FALSE(comesThrough(held, EventTap::session));
        held.source.reset();
        EXPECT_FALSE(comesThrough(held));
    }
}

TEST_F(SimulatedMissionControlTest, AClickGoesThereAndOneBesideSendsItAway) {
    const auto player = mac.launch("Player", "com.example.player");
    mac.enterFullscreen(mac.openWindow(player, space("LEFT", 1)));
    loop.advance(1);
    open();
    expand();
    EXPECT_EQ(titles(), (std::vector<std::string>{"Desktop 1", "Player", "Desktop 2", "Desktop 3"}));
    EXPECT_TRUE(bar().thumbnails[1].isCurrent);
    move(middleOf(0));
    mac.click();
    loop.advance(1);
    EXPECT_EQ(shownAt("LEFT"), 0u);
    EXPECT_FALSE(mac.missionControl().isUp());
    open();
    move({700, 600});
    mac.click();
    loop.advance(1);
    EXPECT_FALSE(mac.missionControl().isUp());
    EXPECT_EQ(shownAt("LEFT"), 0u);
}

TEST_F(SimulatedMissionControlTest, RemovesAndAddsDesktopsWithinItsLimits) {
    const auto notes = mac.launch("Notes", "com.example.notes");
    const SpaceID shown = space("LEFT", 2), neighbour = space("LEFT", 1);
    const WindowNumber window = mac.openWindow(notes, shown);
    mac.stage().move(shown, 0);
    SimulatedMissionControl& missionControl = mac.missionControl();
    EXPECT_FALSE(missionControl.remove(shown)) << "it doesn't show";
    open();
    EXPECT_TRUE(missionControl.remove(shown));
    loop.advance(0.3);
    EXPECT_EQ(order().size(), 2u);
    EXPECT_EQ(mac.layout().display("LEFT")->current, neighbour);
    EXPECT_EQ(seams.windowServer->spacesOfWindows({window}), std::vector{neighbour});
    EXPECT_TRUE(missionControl.remove(space("LEFT", 0)));
    loop.advance(0.3);
    EXPECT_FALSE(missionControl.remove(space("LEFT", 0))) << "the last one stays";

    EXPECT_FALSE(missionControl.add("LEFT")) << "no button in a collapsed bar";
    expand();
    for (std::size_t count = 2; count <= SimulatedMissionControl::desktopsPerDisplay; ++count) {
        EXPECT_TRUE(missionControl.add("LEFT"));
        loop.advance(0.3);
        EXPECT_EQ(order().size(), count);
    }
    EXPECT_FALSE(missionControl.add("LEFT"));
}

TEST_F(SimulatedMissionControlTest, GoesWithTheDockAndComesBackWithIt) {
    open();
    const std::int32_t before = mac.dockPid();
    mac.inject(SimulatedFault::dockRestarted);
    EXPECT_FALSE(mac.missionControl().isUp());
    EXPECT_FALSE(seams.workspace->runningApplication(before));
    open();
    EXPECT_FALSE(mac.missionControl().isUp()) << "nobody is there to open it";
    loop.advance(2);
    EXPECT_NE(mac.dockPid(), before);
    open();
    EXPECT_TRUE(mac.missionControl().isUp());
}

TEST_F(SimulatedMissionControlTest, IsHeldUpByItsFaultsAsTheyAreNamed) {
    mac.inject(SimulatedFault::animationNeverEnds);
    open();
    EXPECT_TRUE(mac.missionControl().isAnimating());
    expand();
    EXPECT_EQ(bar().expanded, 0) << "it listens to nobody yet";
    mac.heal();
    expand();
    EXPECT_EQ(bar().expanded, 1);
    const double place = middleOf(0).x;
    mac.inject(SimulatedFault::thumbnailsShift);
    EXPECT_NE(middleOf(0).x, place);
    loop.advance(3.1);
    EXPECT_EQ(middleOf(0).x, place);
    mac.inject(SimulatedFault::barCollapses);
    loop.advance(0.5);
    EXPECT_EQ(bar().expanded, 0);
    expand();

    const auto before = order();
    mac.inject(SimulatedFault::snapBack);
    carry(2, {middleOf(0).x - 60, middleOf(0).y});
    mac.inject(SimulatedFault::userClicks); // and so lets go of it
    loop.advance(0.16);
    EXPECT_NE(order(), before);
    loop.advance(1);
    EXPECT_EQ(order(), before);
    mac.inject(SimulatedFault::gestureLost);
    escape();
    loop.advance(1);
    EXPECT_TRUE(mac.missionControl().isUp());
    mac.inject(SimulatedFault::userEscapes);
    loop.advance(1);
    EXPECT_FALSE(mac.missionControl().isUp());
}

TEST_F(SimulatedMissionControlTest, ScreensLeaveTheirDesktopsBehindAndTakeThemBack) {
    const ScreenInfo right = mac.layout().screens()[1];
    const auto notes = mac.launch("Notes", "com.example.notes");
    const WindowNumber window = mac.openWindow(notes, space("RIGHT", 1));
    const std::vector<SpaceID> moved{space("RIGHT", 0), space("RIGHT", 1), space("RIGHT", 2)};
    mac.warpPointer({2000, 500});
    open();
    mac.removeScreen("right");
    loop.advance(1);
    EXPECT_FALSE(mac.missionControl().isUp());
    EXPECT_EQ(mac.layout().display("RIGHT"), nullptr);
    EXPECT_EQ(order().size(), 6u);
    EXPECT_TRUE(mac.layout().screens()[0].frame.contains(mac.pointer().position()));
    EXPECT_TRUE(mac.layout().screens()[0].frame.contains(mac.windows().find(window)->bounds.middle()));
    auto reader = provider();
    EXPECT_EQ(reader.snapshot().key(reader.snapshot().displays[0].spaces[0], "LEFT"), "primary:LEFT");
    mac.removeScreen("LEFT");
    EXPECT_EQ(mac.layout().screens().size(), 1u) << "the last one stays";

    mac.removeSpace(moved[1]);
    mac.addScreen(right, 1);
    EXPECT_EQ(order().size(), 3u);
    EXPECT_EQ(space("RIGHT", 0), moved[0]);
    EXPECT_EQ(space("RIGHT", 1), moved[2]);
    EXPECT_EQ(reader.snapshot().key(reader.snapshot().displays[1].spaces[0], "RIGHT"), "primary:RIGHT");
}

TEST(SimulatedMissionControl, HasOneBarWhereScreensShareTheirDesktops) {
    testing::SimulatedSession session({.separateSpaces = false});
    session.mac.openFile("/System/Applications/Mission Control.app");
    session.loop.advance(1);
    const auto picture = session.mac.missionControl().picture();
    ASSERT_EQ(picture.bars.size(), 1u);
    EXPECT_EQ(picture.bars[0].display, "LEFT");
    EXPECT_EQ(picture.bars[0].thumbnails.size(), 3u);
    session.mac.removeScreen("LEFT");
    EXPECT_EQ(session.mac.layout().display("Main")->spaces.size(), 3u);
}

} // namespace
} // namespace lumnara
