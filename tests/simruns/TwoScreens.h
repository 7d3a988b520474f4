#pragma once

#include "core/platform/sim/SimulatedMac.h"

namespace lumnara::testing {

/// Plugs in "LEFT", the built-in one, and "RIGHT", with so many desktops each.
inline void plugTwoScreens(SimulatedMac& mac, int left, int right) {
    mac.addScreen({.uuid = "LEFT",
                   .connector = "built-in",
                   .name = "Panel",
                   .frame = {0, 0, 1512, 982},
                   .scale = 2,
                   .isBuiltIn = true},
                  left);
    mac.addScreen(
        {.uuid = "RIGHT", .connector = "1", .name = "Desk", .frame = {1512, 0, 2560, 1440}, .scale = 1},
        right);
}

} // namespace lumnara::testing
