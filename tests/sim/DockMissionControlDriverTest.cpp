#include "core/platform/mac/missioncontrol/FrameArea.h"
#include "core/platform/mac/missioncontrol/MissionControlSession.h"
#include "tests/simruns/ArrangeStage.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace lumnara {
namespace {

using testing::ArrangeStage;
using testing::DamagedAccessibility;

class DockMissionControlDriverTest : public ::testing::TestWithParam<SimulatedDockTree> {
protected:
    /// Mission Control stands, and the bar of "LEFT" is expanded.
    void openBar() {
        stage.driver.open();
        stage.loop.advance(1);
        for (const Point to : {Point{700, 200}, Point{700, 36}, Point{704, 38}}) {
            stage.driver.movePointer(to);
            stage.loop.advance(0.7);
        }
    }
    static SimulatedMacOptions options() {
        SimulatedMacOptions options;
        options.dockTree = GetParam();
        return options;
    }
    std::optional<SpacesBarButtons> bar() { return stage.driver.spacesBarButtons(left); }

    ArrangeStage stage{4, options()};
    const Rect left = stage.mac.layout().screens()[0].frame;
    const Rect right = stage.mac.layout().screens()[1].frame;
};

TEST_P(DockMissionControlDriverTest, ReadsTheBarOfADisplayInItsOrder) {
    EXPECT_FALSE(stage.driver.isOpen());
    EXPECT_FALSE(bar());
    stage.mac.moveSpace(stage.mac.layout().display("LEFT")->spaces[3].id, 0);
    openBar();
    EXPECT_TRUE(stage.driver.isOpen());
    ASSERT_TRUE(bar());
    ASSERT_EQ(bar()->size(), 4u);
    EXPECT_TRUE(MissionControlSession::isExpanded(*bar(), left));
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ((*bar())[i].title, "Desktop " + std::to_string(i + 1));
        EXPECT_EQ((*bar())[i].frame, stage.mac.missionControl().bar("LEFT")->thumbnails[i].frame);
    }
    const auto other = stage.driver.spacesBarButtons(right);
    EXPECT_FALSE(MissionControlSession::isExpanded(*other, right));
    EXPECT_EQ(other->front().frame, stage.mac.missionControl().bar("RIGHT")->thumbnails[0].frame);
    EXPECT_EQ(stage.driver.blockingReason(), SwitchError(SwitchError::Case::missionControlActive));
}

TEST_P(DockMissionControlDriverTest, RemovesTheThumbnailOfTheBarThatItReadLast) {
    openBar();
    EXPECT_FALSE(stage.driver.removeDesktop(1, "Desktop 2")) << "no bar was read yet";
    stage.driver.spacesBarButtons(right);
    const SpaceID meant = stage.mac.layout().display("RIGHT")->spaces[1].id;
    EXPECT_FALSE(stage.driver.removeDesktop(1, "Desktop 3"));
    EXPECT_FALSE(stage.driver.removeDesktop(-1, "Desktop 1"));
    EXPECT_FALSE(stage.driver.removeDesktop(4, "Desktop 1"));
    EXPECT_TRUE(stage.driver.removeDesktop(1, "Desktop 2"));
    stage.loop.advance(0.3);
    EXPECT_EQ(stage.mac.layout().displayOf(meant), nullptr);
    EXPECT_EQ(stage.mac.layout().display("LEFT")->spaces.size(), 4u);
    EXPECT_EQ(stage.mac.layout().display("RIGHT")->spaces.size(), 3u);
}

TEST_P(DockMissionControlDriverTest, PressesTheAddButtonByItsNameOrByWhatItSays) {
    EXPECT_FALSE(stage.driver.addDesktop(left) || stage.driver.addDesktopByDescription());
    openBar();
    EXPECT_FALSE(stage.driver.addDesktop(right)) << "its bar is collapsed and shows none";
    EXPECT_TRUE(stage.driver.addDesktop(left));
    stage.loop.advance(0.3);
    stage.accessibility.damage = [](std::string_view name, const AccessibilityValue& value) {
        const bool isButton =
            name == "AXIdentifier" && value == AccessibilityValue(std::string("mc.spaces.add"));
        return isButton ? std::nullopt : std::optional(value);
    };
    EXPECT_FALSE(stage.driver.addDesktop(left));
    EXPECT_TRUE(stage.driver.addDesktopByDescription());
    stage.loop.advance(0.3);
    EXPECT_EQ(stage.mac.layout().display("LEFT")->spaces.size(), 6u);
    stage.accessibility.damage = nullptr;
    stage.accessibility.actions = DamagedAccessibility::Actions::refused;
    EXPECT_FALSE(stage.driver.addDesktop(left) || stage.driver.addDesktopByDescription());
}

TEST_P(DockMissionControlDriverTest, TakesAnAttributeThatIsMissingOrOfAnotherTypeForAMissingElement) {
    openBar();
    const AccessibilityElements withNull{nullptr};
    const std::vector<std::optional<AccessibilityValue>> lies{
        std::nullopt,  AccessibilityValue{}, true,   std::int64_t{7},         0.5,
        std::string(), Point{1e9, 1e9},      Size{}, AccessibilityElements(), withNull};
    for (const char* identifier : {"mc", "mc.display", "mc.spaces", "mc.spaces.list", "mc.spaces.add", ""})
        for (const char* damaged :
             {"AXChildren", "AXIdentifier", "AXRole", "AXTitle", "AXPosition", "AXSize"})
            for (const auto& lie : lies) {
                SCOPED_TRACE(std::string(identifier) + " " + damaged);
                stage.accessibility.identifier = identifier;
                stage.accessibility.damage = [&](std::string_view name, const AccessibilityValue& value) {
                    return name == damaged ? lie : std::optional(value);
                };
                const auto told = bar();
                const bool isWhole = told && told->size() == 4; // or the script goes no further
                // A place that can't be told leads to no other display's thumbnails that could be pressed.
                const bool isUsable = isWhole && MissionControlSession::isExpanded(*told, left);
                for (std::size_t i = 0; isUsable && i < 4; ++i) {
                    EXPECT_TRUE(left.contains((*told)[i].middle()) || !hasArea((*told)[i].frame) ||
                                std::string(damaged) == "AXPosition");
                }
                EXPECT_FALSE(stage.driver.removeDesktop(9, "Desktop 1"));
            }
    stage.accessibility.damage = nullptr;
    EXPECT_EQ(stage.mac.layout().display("LEFT")->spaces.size(), 4u);
}

TEST_P(DockMissionControlDriverTest, KeepsThumbnailsWithoutATitleAndSortsThoseWithoutANumberLast) {
    openBar();
    stage.accessibility.damage = [](std::string_view name, const AccessibilityValue& value) {
        return name == "AXTitle" ? std::nullopt : std::optional(value);
    };
    ASSERT_EQ(bar()->size(), 4u);
    EXPECT_EQ((*bar())[2].title, "");
    const double first = stage.mac.missionControl().bar("LEFT")->thumbnails[0].frame.x;
    stage.accessibility.damage = [=](std::string_view name,
                                     const AccessibilityValue& value) -> std::optional<AccessibilityValue> {
        const Point* at = std::get_if<Point>(&value);
        if (name == "AXPosition" && at && at->x == first)
            return Point{std::numeric_limits<double>::quiet_NaN(), at->y};
        return value;
    };
    ASSERT_EQ(bar()->size(), 4u);
    EXPECT_EQ(bar()->front().title, "Desktop 2");
    EXPECT_TRUE(std::isnan(bar()->back().frame.x));
    EXPECT_EQ(MissionControlSession(stage.driver).bar(left, 4), std::nullopt)
        << "no script goes on from there";
}

TEST_P(DockMissionControlDriverTest, AScriptTakesNoOtherDisplaysThumbnails) {
    openBar();
    stage.accessibility.identifier = "mc.display";
    stage.accessibility.damage = [](std::string_view name, const AccessibilityValue& value) {
        return name == "AXPosition" ? std::nullopt : std::optional(value);
    };
    const auto told = stage.driver.spacesBarButtons(right);
    EXPECT_EQ(told.has_value(), GetParam() == SimulatedDockTree::newer) << "of the first display, if any";
    EXPECT_EQ(MissionControlSession(stage.driver).bar(right, 4), std::nullopt);
}

TEST_P(DockMissionControlDriverTest, TellsNothingWithoutThePermissionOrTheDock) {
    openBar();
    stage.mac.isTrusted = false;
    EXPECT_FALSE(stage.driver.isAccessibilityTrusted() || stage.driver.isOpen() || bar());
    stage.mac.isTrusted = true;
    EXPECT_TRUE(bar());
    stage.mac.inject(SimulatedFault::dockRestarted);
    EXPECT_FALSE(stage.driver.isOpen() || bar() || stage.driver.removeDesktop(0, "Desktop 1"));
}

TEST_P(DockMissionControlDriverTest, ReadsTheSettingAndTheDisplays) {
    const std::vector<std::pair<std::optional<PropertyValue>, bool>> settings{{std::nullopt, true},
                                                                              {true, true},
                                                                              {false, false},
                                                                              {0, false},
                                                                              {1, true},
                                                                              {0.0, false},
                                                                              {"false", true},
                                                                              {PropertyArray(), true},
                                                                              {std::uint64_t{2}, true}};
    for (const auto& [value, isOn] : settings) {
        stage.mac.setPreference("mru-spaces", "com.apple.dock", value);
        EXPECT_EQ(stage.driver.mruSpacesEnabled(), isOn);
    }
    EXPECT_EQ(stage.driver.displayFrame({"left"}), left);
    EXPECT_EQ(stage.driver.displayFrame({"Main"}), left);
    EXPECT_EQ(stage.driver.displayFrame({"RIGHT"}), right);
    EXPECT_EQ(stage.driver.displayFrame({""}), std::nullopt);
    stage.mac.removeScreen("RIGHT");
    EXPECT_EQ(stage.driver.displayFrame({"RIGHT"}), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(OnA, DockMissionControlDriverTest,
                         ::testing::Values(SimulatedDockTree::older, SimulatedDockTree::newer),
                         [](const auto& info) {
                             return std::string(info.param == SimulatedDockTree::older ? "OlderTree"
                                                                                       : "NewerTree");
                         });

} // namespace
} // namespace lumnara
