#include "core/platform/mac/server/WindowIndex.h"

#include <gtest/gtest.h>
#include <map>
#include <utility>

namespace lumnara::testing {
namespace {

class ScriptedWindows : public WindowSource {
public:
    std::vector<DesktopWindow> windows() override { return list; }
    std::vector<SpaceID> spaces(WindowNumber windowID) override { return places[windowID]; }

    void add(WindowNumber id, double width, double height, std::vector<SpaceID> on, int zOrder) {
        list.push_back({id, 1, "Editor", "", {0, 0, width, height}, zOrder});
        places[id] = std::move(on);
    }

    std::vector<DesktopWindow> list;
    std::map<WindowNumber, std::vector<SpaceID>> places;
};

std::vector<WindowNumber> idsOf(const std::vector<DesktopWindow>& windows) {
    std::vector<WindowNumber> ids;
    for (const DesktopWindow& window : windows) ids.push_back(window.id);
    return ids;
}

TEST(WindowIndex, ListsTheWindowsOfTheWantedSpacesFrontFirst) {
    ScriptedWindows source;
    source.add(5, 400, 300, {{1}}, 2);
    source.add(3, 400, 300, {{1}, {2}, {9}}, 0);
    source.add(4, 119, 200, {{1}}, 1);
    source.add(8, 200, 79, {{1}}, 5);
    source.add(7, 120, 80, {{2}}, 3);
    source.add(6, 400, 300, {}, 4);
    source.add(9, 400, 300, {{1}}, 2);
    const auto found = WindowIndex::windows({{1}, {2}, {3}}, source);
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(idsOf(found.at({1})), (std::vector<WindowNumber>{3, 5, 9})) << "equals keep their order";
    EXPECT_EQ(idsOf(found.at({2})), (std::vector<WindowNumber>{3, 7}));
}

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
