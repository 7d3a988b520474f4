#include "core/windows/WindowIndex.h"

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

} // namespace
} // namespace lumnara::testing
