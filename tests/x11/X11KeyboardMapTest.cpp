#include "core/platform/x11/X11KeyboardMap.h"

#include <X11/keysym.h>
#include <algorithm>
#include <gtest/gtest.h>
#include <xcb/xproto.h>

namespace lumnara {
namespace {

constexpr std::uint32_t none = 0;

/// A keyboard of the keys 36 to 39 and the locks, with Alt on Mod3 and no Super.
X11KeyboardMap keyboard(std::vector<std::uint32_t> keys) {
    std::vector<std::uint32_t> keysyms(200UL * 2, none);
    std::copy(keys.begin(), keys.end(), keysyms.begin() + (36 - 8) * 2);
    keysyms[(64 - 8) * 2] = XK_Alt_L;
    keysyms[(77 - 8) * 2] = XK_Num_Lock;
    return {8, 2, keysyms, {50, 62, 66, 0, 37, 105, 0, 0, 77, 0, 64, 0, 0, 0, 0, 0}};
}

TEST(X11KeyboardMapTest, FindsAKeyOnItsLowestLevel) {
    const auto french = keyboard({XK_ampersand, XK_1, XK_Return, none, XK_q, XK_Q, XK_m, XK_1});
    EXPECT_EQ(french.keyCode(KeyCode::digit1), 36);
    EXPECT_EQ(french.keyCode(KeyCode::returnKey), 37);
    EXPECT_EQ(french.keyCode(KeyCode::q), 38);
    const auto plainWins = keyboard({XK_ampersand, XK_1, XK_1, none});
    EXPECT_EQ(plainWins.keyCode(KeyCode::digit1), 37);
}

TEST(X11KeyboardMapTest, FallsBackToTheKeysPlace) {
    const auto cyrillic = keyboard({XK_Cyrillic_ef, XK_Cyrillic_EF});
    EXPECT_EQ(cyrillic.keyCode(KeyCode::a), 38);
    EXPECT_EQ(X11KeyboardMap(8, 2, std::vector<std::uint32_t>(10UL * 2, none), {}).keyCode(KeyCode::a),
              std::nullopt);
    EXPECT_EQ(X11KeyboardMap(8, 0, {}, {}).keyCode(KeyCode::a), std::nullopt);
}

TEST(X11KeyboardMapTest, FindsTheModifiersWhereTheMapHasThem) {
    const auto map = keyboard({});
    EXPECT_EQ(map.mask({.shift = true, .control = true}), XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL);
    EXPECT_EQ(map.mask({.option = true}), XCB_MOD_MASK_3);
    EXPECT_EQ(map.mask({.command = true}), XCB_MOD_MASK_4);
    EXPECT_EQ(map.numLockMask(), XCB_MOD_MASK_2);
}

} // namespace
} // namespace lumnara
