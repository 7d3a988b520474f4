#include "core/platform/mac/server/CGWindowSource.h"

#include "tests/simruns/SimulatedSession.h"

#include <gtest/gtest.h>
#include <utility>

namespace lumnara::testing {
namespace {

PropertyDictionary with(int number, const char* key, PropertyValue value) {
    PropertyDictionary entry{
        {"kCGWindowNumber", number},
        {"kCGWindowOwnerPID", 7},
        {"kCGWindowOwnerName", "Editor"},
        {"kCGWindowLayer", 0},
        {"kCGWindowBounds", PropertyDictionary{{"X", 1}, {"Y", 2.5}, {"Width", 300}, {"Height", 200}}}};
    entry.set(key, std::move(value));
    return entry;
}

TEST(CGWindowSource, KeepsOrdinaryWindowsThatCanBeSeen) {
    SimulatedSession at;
    const WindowNumber window = at.mac.openWindow(at.mac.launch("Notes", {}), at.space("LEFT", 1));
    at.mac.windows().add({.ownerName = "Wallpaper", .layer = -100, .isOrderedIn = true});
    CGWindowSource whole(*at.seams.windowServer);
    ASSERT_EQ(whole.windows().size(), 1u) << "on any Space";
    EXPECT_EQ(whole.spaces(window), std::vector{at.space("LEFT", 1)});

    WindowServerCalls calls;
    calls.windowList = [](WindowListOption) {
        return PropertyList{with(1, "kCGWindowLayer", 1),
                            with(3, "kCGWindowOwnerPID", "seven"),
                            with(4, "kCGWindowBounds", PropertyDictionary{{"X", 1}, {"Y", 2}}),
                            with(5, "kCGWindowAlpha", 0.05),
                            with(6, "kCGWindowAlpha", 0.06),
                            with(7, "kCGWindowOwnerName", "Dock"),
                            with(8, "kCGWindowOwnerName", "Window Server"),
                            with(9, "kCGWindowName", "Letters"),
                            with(10, "kCGWindowNumber", -1)};
    };
    PrivateAPI odd(calls), none({});
    EXPECT_EQ(CGWindowSource(odd).windows(),
              (std::vector<DesktopWindow>{{6, 7, "Editor", "", {1, 2.5, 300, 200}, 0},
                                          {9, 7, "Editor", "Letters", {1, 2.5, 300, 200}, 1}}));
    EXPECT_EQ(CGWindowSource(none).windows(), std::vector<DesktopWindow>());
}

} // namespace
} // namespace lumnara::testing
