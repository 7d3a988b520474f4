#include "tests/session/IpcFixture.h"

namespace lumnara::testing {
namespace {

constexpr const char* configuration = "set $mod Mod4\n"
                                      "bindsym $mod+1 workspace number 1\n"
                                      "bindsym Mod1+2 workspace number 2\n";

class SwayTest : public ::testing::Test {
protected:
    IpcFixture at{IpcWindowManager::sway, configuration};
    GlobalShortcuts& shortcuts() { return *at.platform().globalShortcuts; }

    ShortcutStatus bind(const std::string& name, KeyCode key, ModifierFlags modifiers) {
        return shortcuts().bind(name, {key, modifiers}, [this, name] { pressed += name + " "; });
    }
    void press(const std::string& key) {
        ASSERT_EQ(at.sway().run({"wtype", "-M", "alt", "-k", key, "-m", "alt"}).status, 0);
    }
    bool heard(const std::string& names) {
        return at.runUntil([&] { return pressed == names; });
    }
    std::string pressed;
};

TEST_F(SwayTest, TellsOfShortcuts) {
    ASSERT_TRUE(at.answers());
    EXPECT_EQ(bind("board", KeyCode::digit1, {.option = true}), ShortcutStatus::active);
    EXPECT_EQ(bind("voice", KeyCode::space, {.option = true}), ShortcutStatus::active);
    EXPECT_EQ(bind("taken", KeyCode::digit2, {.option = true}), ShortcutStatus::usedBySystem);
    EXPECT_EQ(bind("taken", KeyCode::digit1, {.command = true}), ShortcutStatus::usedBySystem);
    EXPECT_EQ(bind("none", static_cast<KeyCode>(999), {.option = true}), ShortcutStatus::unavailable);
    press("1");
    press("space");
    EXPECT_TRUE(heard("board voice ")) << pressed;

    // The name goes over to another key.
    pressed.clear();
    EXPECT_EQ(bind("board", KeyCode::digit3, {.option = true}), ShortcutStatus::active);
    press("1");
    press("3");
    EXPECT_TRUE(heard("board ")) << pressed;
    shortcuts().unbind("voice");
    press("space");
    press("3");
    EXPECT_TRUE(heard("board board ")) << pressed;
}

TEST_F(SwayTest, KeepsShortcutsThroughAReloadAndARestart) {
    ASSERT_TRUE(at.answers());
    EXPECT_EQ(bind("board", KeyCode::digit1, {.option = true}), ShortcutStatus::active);
    at.command("reload");
    ASSERT_TRUE(at.runUntil([&] {
        press("1");
        return pressed.find("board") != std::string::npos;
    }));
    at.sway().killWindowManager();
    ASSERT_TRUE(at.runUntil([&] { return at.failure().has_value(); }));
    EXPECT_EQ(bind("voice", KeyCode::space, {.option = true}), ShortcutStatus::active) << "once sway is back";
    at.sway().startWindowManager();
    ASSERT_TRUE(at.answers());
    at.runUntil([] { return false; }, 0.1);
    pressed.clear();
    press("1");
    press("space");
    EXPECT_TRUE(heard("board voice ")) << pressed;
}

TEST_F(SwayTest, LeavesNoShortcutBehind) {
    ASSERT_TRUE(at.answers());
    bind("board", KeyCode::digit1, {.option = true});
    at.restartLumnara();
    ASSERT_TRUE(at.answers());
    EXPECT_NE(at.sway().run({"swaymsg", "unbindsym Mod1+1"}).status, 0) << "it was bound still";
    EXPECT_EQ(at.sway().run({"swaymsg", "unbindsym Mod1+2"}).status, 0) << "the user's own is untouched";
}

TEST_F(SwayTest, ReadsItsOutputsAndTakesInANewOne) {
    const auto screens = at.platform().screens->screens();
    ASSERT_EQ(screens.size(), 2U);
    EXPECT_EQ(screens[1].uuid, "HEADLESS-2");
    EXPECT_EQ(screens[1].connector, "HEADLESS-2");
    EXPECT_EQ(screens[1].frame, (Rect{1280, 0, 1280, 800}));
    EXPECT_EQ(at.platform().screens->pointer(), std::nullopt);
    EXPECT_EQ(at.provider().cursorDisplay(), DisplayID{"HEADLESS-1"});
    at.command("focus output HEADLESS-2");
    EXPECT_EQ(at.provider().cursorDisplay(), DisplayID{"HEADLESS-2"});

    at.events.clear();
    at.command("create_output");
    ASSERT_TRUE(at.runUntil([&] { return !at.events.empty(); }));
    EXPECT_EQ(at.provider().snapshot().displays.size(), 3U);
    EXPECT_EQ(at.platform().screens->screens().size(), 3U);
}

} // namespace
} // namespace lumnara::testing
