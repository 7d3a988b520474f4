#include "core/platform/mac/server/DisplayHelpers.h"

#include <gtest/gtest.h>

namespace lumnara {
namespace {

struct TwoScreens : Screens {
    std::vector<ScreenInfo> screens() override {
        return {
            {.uuid = "AB", .connector = "1", .name = "Panel", .frame = {0, 0, 100, 50}, .isBuiltIn = true},
            {.uuid = "CD", .connector = "2", .name = "Desk", .frame = {100, 0, 200, 80}}};
    }
    std::optional<Point> pointer() override { return at; }
    std::optional<std::string> displayUnderPointer() override { return std::nullopt; }
    std::optional<Point> at;
};

TEST(DisplayHelpers, FindsAScreenByItsUuidInAnyCase) {
    TwoScreens screens;
    const auto found = DisplayHelpers::screen(screens, "cd");
    ASSERT_TRUE(found);
    EXPECT_EQ(found->name, "Desk");
    EXPECT_EQ(DisplayHelpers::uuid(*found), "CD");
    EXPECT_FALSE(DisplayHelpers::isBuiltIn(*found));
    EXPECT_TRUE(DisplayHelpers::isBuiltIn(*DisplayHelpers::screen(screens, "AB")));
    EXPECT_EQ(DisplayHelpers::screen(screens, "Main"), std::nullopt);
}

TEST(DisplayHelpers, TheFramesDecideWhereThePointerIs) {
    TwoScreens screens;
    const auto nameAt = [&](std::optional<Point> at) -> std::string {
        screens.at = at;
        const auto found = DisplayHelpers::displayUnderCursor(screens);
        return found ? found->name : "none";
    };
    EXPECT_EQ(nameAt(std::nullopt), "none");
    EXPECT_EQ(nameAt(Point{0, 0}), "Panel");
    EXPECT_EQ(nameAt(Point{100, 20}), "Panel") << "the right edge belongs to a screen";
    EXPECT_EQ(nameAt(Point{100.5, 20}), "Desk");
    EXPECT_EQ(nameAt(Point{300, 80}), "Desk");
    EXPECT_EQ(nameAt(Point{50, 51}), "none");
}

} // namespace
} // namespace lumnara
