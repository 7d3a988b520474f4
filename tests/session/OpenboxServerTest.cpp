#include "core/platform/x11/X11Screens.h"
#include "tests/session/EwmhFixture.h"
#include "tests/support/EdidBlock.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <xcb/randr.h>

namespace lumnara::testing {
namespace {

using Case = WindowManagerError::Case;

class ServerTest : public ::testing::Test {
protected:
    Screens& screens() { return *at.platform.screens; }
    bool told(WorkspaceEvent event) {
        return at.runUntil([&] { return std::count(at.events.begin(), at.events.end(), event) > 0; });
    }

    EwmhFixture at{WindowManager::openbox};
};

/// Lets the server's one output, which belongs to the monitor L, tell of itself as a real monitor does.
void tellEdid(const XSession& session, const std::string& bytes) {
    auto* xcb = session.connection();
    const std::string name = "EDID";
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> atom(
        xcb_intern_atom_reply(xcb, xcb_intern_atom(xcb, 0, 4, name.data()), nullptr), &std::free);
    const auto cookie = xcb_randr_get_screen_resources_current(xcb, session.root());
    const std::unique_ptr<xcb_randr_get_screen_resources_current_reply_t, decltype(&std::free)> resources(
        xcb_randr_get_screen_resources_current_reply(xcb, cookie, nullptr), &std::free);
    const auto output = *xcb_randr_get_screen_resources_current_outputs(resources.get());
    xcb_randr_change_output_property(xcb, output, atom->atom, XCB_ATOM_INTEGER, 8, XCB_PROP_MODE_REPLACE,
                                     static_cast<std::uint32_t>(bytes.size()), bytes.data());
    std::free(xcb_get_input_focus_reply(xcb, xcb_get_input_focus(xcb), nullptr));
}

TEST_F(ServerTest, MonitorsComeAndGo) {
    const ScreenInfo left{"L", "L", "L", {0, 0, 1280, 800}, 1};
    const ScreenInfo right{"R", "R", "R", {1280, 0, 1280, 800}, 1};
    EXPECT_EQ(screens().screens(), (std::vector{left, right}));
    at.events.clear();
    at.session.unplug("R");
    EXPECT_TRUE(told(WorkspaceEvent::screenParametersDidChange));
    EXPECT_EQ(screens().screens(), std::vector{left});
    at.events.clear();
    at.session.plug("R");
    EXPECT_TRUE(told(WorkspaceEvent::screenParametersDidChange));
    EXPECT_EQ(screens().screens(), (std::vector{left, right}));
    EXPECT_EQ(at.current(), 0U);
}

TEST_F(ServerTest, ThePointerIsOnOneMonitor) {
    at.session.movePointer(1279, 400);
    EXPECT_EQ(screens().pointer(), (Point{1279, 400}));
    EXPECT_EQ(screens().displayUnderPointer(), "L");
    at.session.movePointer(1280, 400);
    EXPECT_EQ(screens().displayUnderPointer(), "R");
}

TEST_F(ServerTest, AMonitorIsKnownByWhatItTellsOfItself) {
    tellEdid(at.session, withDescriptor(edidBlock(), 54, '\xFC', "DELL U2720Q\n"));
    const auto left = screens().screens().at(0);
    EXPECT_EQ(left.connector, "L");
    EXPECT_EQ(left.name, "DELL U2720Q");
    EXPECT_EQ(left.uuid, "DEL DELL U2720Q 305419896");
    X11Screens own(at.x11->connection());
    EXPECT_EQ(own.identity("L"), left.uuid);
    EXPECT_EQ(own.identity("R"), "R");
    EXPECT_EQ(own.identity("gone"), "gone");
    at.session.movePointer(10, 10);
    EXPECT_EQ(screens().displayUnderPointer(), left.uuid);
    tellEdid(at.session, edidBlock().substr(0, 100));
    EXPECT_TRUE(at.runUntil([&] { return screens().screens().at(0).uuid == "L"; }));
}

TEST_F(ServerTest, ItsEndIsAnErrorAndNotACrash) {
    at.activate(1);
    const auto target = at.desktops().spaces[2];
    at.platform.globalShortcuts->bind("board", {KeyCode::a, {.control = true}}, [] {});
    at.events.clear();
    at.session.killServer();
    EXPECT_TRUE(told(WorkspaceEvent::activeSpaceDidChange));
    EXPECT_EQ(at.failure()->which(), Case::noDisplay);
    EXPECT_EQ(at.platform.spaceProvider->currentSpace({"Main"}), std::nullopt);
    EXPECT_TRUE(screens().screens().empty());
    EXPECT_EQ(screens().displayUnderPointer(), std::nullopt);
    EXPECT_EQ(at.platform.globalShortcuts->bind("new", {KeyCode::b, {.control = true}}, [] {}),
              ShortcutStatus::unavailable);
    at.platform.globalShortcuts->unbind("board");
    at.platform.namePublisher->publish({{target.uuid, target.id, {"Main"}, "Mail"}});
    EXPECT_EQ(at.x11->i3Socket(), std::nullopt);
    EXPECT_THROW(X11Session(at.loop, Environment(at.session.environment())), WindowManagerError);
}

TEST_F(ServerTest, AReadingBeforeTheEndIsNoticedFails) {
    at.session.killServer();
    EXPECT_EQ(at.failure()->which(), Case::noDisplay);
}

TEST_F(ServerTest, ADisplayIsNeeded) {
    EXPECT_THROW(X11Session(at.loop, Environment({})), WindowManagerError);
    EXPECT_EQ(ewmhWindowManager(at.x11->connection()), "Openbox");
    EXPECT_EQ(at.x11->i3Socket(), std::nullopt);
}

TEST(BareServerTest, WaitsForAWindowManager) {
    EwmhFixture at{WindowManager::none};
    EXPECT_EQ(ewmhWindowManager(at.x11->connection()), std::nullopt);
    EXPECT_EQ(at.failure()->which(), Case::noWindowManager);
    at.session.startWindowManager(WindowManager::openbox);
    EXPECT_TRUE(at.runUntil([&] { return !at.events.empty() && at.answers(); }));
    EXPECT_EQ(at.activate(1), "");
    EXPECT_EQ(at.current(), 1U);
}

TEST(BareServerTest, FindsTheSocketOfI3) {
    XSession session(WindowManager::i3);
    async::PollLoop loop;
    const X11Session x11(loop, Environment(session.environment()));
    EXPECT_EQ(x11.i3Socket(), session.i3Socket());
    session.killWindowManager();
    session.startWindowManager(WindowManager::openbox);
    EXPECT_NE(session.rootProperty("I3_SOCKET_PATH"), std::nullopt);
    EXPECT_EQ(x11.i3Socket(), std::nullopt);
}

} // namespace
} // namespace lumnara::testing
