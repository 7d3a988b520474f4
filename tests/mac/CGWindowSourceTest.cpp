#include "core/platform/mac/server/CGWindowSource.h"

#include <gtest/gtest.h>
#include <utility>

namespace lumnara::testing {
namespace {

/// Answers with the list that the test wrote.
class ListingServer : public WindowServer {
public:
    PropertyList managedDisplaySpaces() override { return {}; }
    std::optional<SpaceID> currentSpace(const DisplayID&) override { return std::nullopt; }
    std::optional<bool> isAnimating(const DisplayID&) override { return std::nullopt; }
    std::optional<std::string> activeMenuBarDisplay() override { return std::nullopt; }
    std::optional<PropertyList> windowList(WindowListOption option) override {
        EXPECT_EQ(static_cast<std::uint32_t>(option), 0x10u);
        return list;
    }
    std::vector<SpaceID> spacesOfWindows(const std::vector<WindowNumber>& windows) override {
        return {SpaceID{windows.at(0) + 100}};
    }

    std::optional<PropertyList> list = PropertyList();
};

PropertyDictionary entry(int number) {
    return {{"kCGWindowNumber", number},
            {"kCGWindowOwnerPID", 7},
            {"kCGWindowOwnerName", "Editor"},
            {"kCGWindowLayer", 0},
            {"kCGWindowBounds", PropertyDictionary{{"X", 1}, {"Y", 2.5}, {"Width", 300}, {"Height", 200}}}};
}

PropertyDictionary with(PropertyDictionary entry, const char* key, PropertyValue value) {
    entry.set(key, std::move(value));
    return entry;
}

TEST(CGWindowSource, KeepsOrdinaryWindowsThatCanBeSeen) {
    ListingServer server;
    CGWindowSource source(server);
    server.list = PropertyList{with(entry(1), "kCGWindowLayer", 1),
                               with(entry(3), "kCGWindowOwnerPID", "seven"),
                               with(entry(4), "kCGWindowBounds", PropertyDictionary{{"X", 1}, {"Y", 2}}),
                               with(entry(5), "kCGWindowAlpha", 0.05),
                               with(entry(6), "kCGWindowAlpha", 0.06),
                               with(entry(7), "kCGWindowOwnerName", "Dock"),
                               with(entry(8), "kCGWindowOwnerName", "Window Server"),
                               with(entry(9), "kCGWindowName", "Letters"),
                               with(entry(10), "kCGWindowNumber", -1)};
    EXPECT_EQ(source.windows(),
              (std::vector<DesktopWindow>{{6, 7, "Editor", "", {1, 2.5, 300, 200}, 0},
                                          {9, 7, "Editor", "Letters", {1, 2.5, 300, 200}, 1}}));
    EXPECT_EQ(source.spaces(9), std::vector{SpaceID{109}});
    server.list.reset();
    EXPECT_EQ(source.windows(), std::vector<DesktopWindow>());
}

} // namespace
} // namespace lumnara::testing
