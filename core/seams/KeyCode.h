#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace lumnara {

/// Virtual key codes, the system's own vocabulary; each platform translates its keys to them at its edge.
// clang-format off
enum class KeyCode : std::uint16_t {
    a = 0, s = 1, d = 2, f = 3, h = 4, g = 5, z = 6, x = 7, c = 8, v = 9, b = 11, q = 12, w = 13, e = 14, r = 15,
    y = 16, t = 17, digit1 = 18, digit2 = 19, digit3 = 20, digit4 = 21, digit6 = 22, digit5 = 23, digit9 = 25,
    digit7 = 26, digit8 = 28, digit0 = 29, o = 31, u = 32, i = 34, p = 35, returnKey = 36, l = 37, j = 38, k = 40,
    comma = 43, n = 45, m = 46, tab = 48, space = 49, deleteKey = 51, escape = 53, keypadEnter = 76,
    contextMenu = 110, home = 115, pageUp = 116, forwardDelete = 117, end = 119, pageDown = 121, left = 123, right = 124,
    down = 125, up = 126
};
// clang-format on

/// Held modifiers. On Linux Alt is option and Super is command.
struct ModifierFlags {
    bool shift = false;
    bool control = false;
    bool option = false;
    bool command = false;
    bool operator==(const ModifierFlags&) const = default;
};

} // namespace lumnara
