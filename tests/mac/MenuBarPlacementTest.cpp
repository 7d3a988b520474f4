#include "core/platform/mac/server/MenuBarPlacement.h"
#include "tests/support/MemoryDefaultsStore.h"

#include <gtest/gtest.h>

namespace lumnara {
namespace {

constexpr const char* position = "NSStatusItem Preferred Position Item-0";
constexpr const char* visible = "NSStatusItem Visible Item-0";

TEST(MenuBarPlacement, StoresAPlaceOnTheFirstStartOnly) {
    testing::MemoryDefaultsStore defaults;
    MenuBarPlacement::placeOnFirstStart(defaults, 1512);
    EXPECT_EQ(defaults.get<double>(position), 1028) << "0.68 of the width, rounded";
    MenuBarPlacement::placeOnFirstStart(defaults, 3000);
    EXPECT_EQ(defaults.get<double>(position), 1028);
    EXPECT_EQ(defaults.writes, 1);
}

TEST(MenuBarPlacement, LeavesAnItemAloneThatWasHidden) {
    testing::MemoryDefaultsStore defaults;
    defaults.set(visible, false);
    MenuBarPlacement::placeOnFirstStart(defaults, 1512);
    EXPECT_EQ(defaults.value(position), std::nullopt);
}

} // namespace
} // namespace lumnara
