#include "core/platform/x11/X11Connection.h"
#include "core/platform/x11/X11GlobalShortcuts.h"
#include "tests/session/EwmhFixture.h"

#include <X11/keysym.h>

namespace lumnara::testing {
namespace {

constexpr Shortcut board{KeyCode::digit1, {.control = true}};

class ShortcutsTest : public ::testing::Test {
protected:
    ShortcutStatus bind(const std::string& name, const Shortcut& shortcut) {
        return keys().bind(name, shortcut, [this, name] { pressed.push_back(name); });
    }
    GlobalShortcuts& keys() { return *at.platform.globalShortcuts; }
    /// The names of the shortcuts pressed since the last call, once there are so many and no more come.
    std::vector<std::string> take(std::size_t count) {
        at.runUntil([&] { return pressed.size() >= count; });
        at.settle();
        return std::exchange(pressed, {});
    }
    void press(std::uint32_t keysym, const std::vector<std::uint32_t>& modifiers = {XK_Control_L}) {
        at.session.pressKey(keysym, modifiers);
    }

    using Names = std::vector<std::string>;
    EwmhFixture at{WindowManager::openbox};
    Names pressed;
};

TEST_F(ShortcutsTest, ArriveOnceWhateverTheLocks) {
    EXPECT_EQ(bind("board", board), ShortcutStatus::active);
    press(XK_1);
    EXPECT_EQ(take(1), Names{"board"});
    for (const auto lock : {XK_Caps_Lock, XK_Num_Lock, XK_Caps_Lock}) {
        at.session.pressKey(lock);
        press(XK_1);
        EXPECT_EQ(take(1), Names{"board"});
    }
    press(XK_1, {XK_Control_L, XK_Shift_L});
    press(XK_1, {});
    EXPECT_EQ(take(0), Names{});
}

TEST_F(ShortcutsTest, ArriveOnceForAPressHoweverLong) {
    bind("board", board);
    std::size_t presses = 0;
    const auto watched = std::static_pointer_cast<X11Connection>(at.platform.keepAlive);
    const auto counting = watched->keyPressed.subscribe([&](const auto&) { ++presses; });
    at.runTool({"xset", "r", "rate", "150", "50"});
    at.session.holdKey(XK_Control_L, true);
    at.session.holdKey(XK_1, true);
    EXPECT_TRUE(at.runUntil([&] { return presses > 5; })) << "the server doesn't repeat the key";
    EXPECT_EQ(take(1), Names{"board"});
    at.session.holdKey(XK_1, false);
    at.settle();
    at.session.holdKey(XK_1, true);
    EXPECT_EQ(take(1), Names{"board"});
    at.session.holdKey(XK_1, false);
    at.session.holdKey(XK_Control_L, false);
}

TEST_F(ShortcutsTest, ArriveForEachOfTwoQuickPresses) {
    bind("board", board);
    press(XK_1);
    press(XK_1);
    EXPECT_EQ(take(2), (Names{"board", "board"}));
}

TEST_F(ShortcutsTest, LeaveTheKeyboardToTheCallback) {
    std::optional<int> grabbed;
    keys().bind("board", board, [&] {
        auto* other = at.session.connection();
        const auto cookie = xcb_grab_keyboard(other, 1, at.session.root(), XCB_CURRENT_TIME,
                                              XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        const X11Reply<xcb_grab_keyboard_reply_t> reply(xcb_grab_keyboard_reply(other, cookie, nullptr));
        grabbed = reply ? reply->status : -1;
    });
    at.session.holdKey(XK_Control_L, true);
    at.session.holdKey(XK_1, true);
    EXPECT_TRUE(at.runUntil([&] { return grabbed.has_value(); }));
    EXPECT_EQ(grabbed, XCB_GRAB_STATUS_SUCCESS);
}

TEST_F(ShortcutsTest, OfOthersAreReported) {
    EXPECT_EQ(bind("taken", {KeyCode::tab, {.option = true}}), ShortcutStatus::usedBySystem);
    EXPECT_EQ(bind("menu", {KeyCode::space, {.option = true}}), ShortcutStatus::usedBySystem);
    EXPECT_EQ(bind("free", {KeyCode::space, {.control = true, .option = true}}), ShortcutStatus::active);
    press(XK_space, {XK_Control_L, XK_Alt_L});
    EXPECT_EQ(take(1), Names{"free"});
    EXPECT_EQ(bind("super", {KeyCode::b, {.command = true}}), ShortcutStatus::active);
    press(XK_b, {XK_Super_L});
    EXPECT_EQ(take(1), Names{"super"});
}

TEST_F(ShortcutsTest, AreReplacedAndGivenBack) {
    bind("board", board);
    bind("board", {KeyCode::digit2, {.control = true}});
    bind("twin", {KeyCode::digit2, {.control = true}});
    press(XK_1);
    EXPECT_EQ(take(0), Names{});
    press(XK_2);
    EXPECT_EQ(take(2), (Names{"board", "twin"}));
    keys().unbind("board");
    press(XK_2);
    EXPECT_EQ(take(1), Names{"twin"});
    keys().unbind("twin");
    keys().unbind("twin");
    press(XK_2);
    EXPECT_EQ(take(0), Names{});
    // Given back means that another client can have it.
    X11GlobalShortcuts other(X11Connection::open(at.loop, at.session.display()));
    EXPECT_EQ(other.bind("x", {KeyCode::digit2, {.control = true}}, [] {}), ShortcutStatus::active);
}

TEST_F(ShortcutsTest, FollowTheKeyboardLayout) {
    bind("board", board);
    bind("letter", {KeyCode::a, {.control = true}});
    at.runTool({"setxkbmap", "fr"});
    at.settle();
    press(XK_ampersand); // the key of the 1 without shift
    EXPECT_EQ(take(1), Names{"board"});
    press(XK_a);
    EXPECT_EQ(take(1), Names{"letter"});
    press(XK_q); // where the a was
    EXPECT_EQ(take(0), Names{});
    at.runTool({"setxkbmap", "ru"});
    at.settle();
    press(XK_Cyrillic_ef);
    EXPECT_EQ(take(1), Names{"letter"});
}

TEST_F(ShortcutsTest, OutliveTheWindowManager) {
    bind("board", board);
    at.session.killWindowManager();
    press(XK_1);
    EXPECT_EQ(take(1), Names{"board"});
    at.session.startWindowManager();
    press(XK_1);
    EXPECT_EQ(take(1), Names{"board"});
}

TEST_F(ShortcutsTest, ACallbackMayEndEverything) {
    keys().bind("quit", board, [this] {
        pressed.push_back("quit");
        at.platform = {};
        at.x11.reset();
    });
    press(XK_1);
    EXPECT_EQ(take(1), Names{"quit"});
}

} // namespace
} // namespace lumnara::testing
