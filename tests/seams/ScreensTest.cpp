#include "core/seams/Screens.h"

#include <gtest/gtest.h>

namespace lumnara {
namespace {

TEST(Screens, TellsTwoMonitorsOfOneModelApart) {
    const auto named = distinctlyNamed({{.uuid = "a", .connector = "DP-1", .name = "U2720Q", .frame = {}},
                                        {.uuid = "b", .connector = "eDP-1", .name = "Panel", .frame = {}},
                                        {.uuid = "c", .connector = "DP-2", .name = "U2720Q", .frame = {}}});
    EXPECT_EQ(named.at(0).name, "U2720Q (DP-1)");
    EXPECT_EQ(named.at(1).name, "Panel");
    EXPECT_EQ(named.at(2).name, "U2720Q (DP-2)");
}

TEST(Screens, KnowsTheConnectorsOfBuiltInPanels) {
    for (const char* panel : {"eDP-1", "LVDS1", "DSI-1"}) EXPECT_TRUE(isPanelConnector(panel)) << panel;
    for (const char* other : {"DP-1", "HDMI-A-1", "VGA-0", ""})
        EXPECT_FALSE(isPanelConnector(other)) << other;
}

} // namespace
} // namespace lumnara
