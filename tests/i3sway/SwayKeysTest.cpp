#include "core/platform/i3sway/SwayKeys.h"

#include <gtest/gtest.h>

namespace lumnara {
namespace {

TEST(SwayKeys, WriteShortcutsAsSwayReadsThem) {
    EXPECT_EQ(swayKeys({KeyCode::digit1, {.option = true}}), "Mod1+1");
    EXPECT_EQ(swayKeys({KeyCode::space, {.shift = true, .control = true, .option = true, .command = true}}),
              "Mod4+Mod1+Control+Shift+space");
    EXPECT_EQ(swayKeys({KeyCode::q, {}}), "q");
    EXPECT_EQ(swayKeys({KeyCode::digit9, {}}), "9");
    EXPECT_EQ(swayKeys({static_cast<KeyCode>(999), {}}), std::nullopt);
}

TEST(SwayKeys, AreOneInAnySpelling) {
    EXPECT_EQ(swayKeysKey("Shift+Alt+Space"), swayKeysKey("mod1+SHIFT+space"));
    EXPECT_EQ(swayKeysKey("Ctrl+Super+q"), swayKeysKey("Mod4+Control+q"));
    EXPECT_NE(swayKeysKey("Mod1+1"), swayKeysKey("Mod4+1"));
    EXPECT_NE(swayKeysKey("Mod1+1"), swayKeysKey("Mod1+Shift+1"));
}

TEST(SwayKeys, AreReadFromAConfiguration) {
    const auto bound = swayBoundKeys(R"(
# bindsym Mod1+9 nop
set $mod Mod1
set $modShift $mod+Shift
set $term foot
bindsym $mod+Return exec $term
  bindsym --release --locked $modShift+q kill
bindcode $mod+38 nop
bindsym {
    $mod+1 workspace number 1
    --to-code Alt+2 workspace number 2
}
mode "resize" {
    bindsym Left resize shrink width 10px
    bindsym {
        Right resize grow width 10px
    }
}
bar {
    position top
}
}
bindsym
bindsym $unknown+3 nop)");
    const auto binds = [&](const char* keys) { return bound.contains(swayKeysKey(keys)); };
    EXPECT_TRUE(binds("Mod1+Return") && binds("Mod1+Shift+q") && binds("Mod1+1") && binds("Mod1+2"));
    EXPECT_EQ(bound.size(), 5U);
}

} // namespace
} // namespace lumnara
