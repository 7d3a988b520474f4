#include "core/platform/mac/missioncontrol/DesktopCreator.h"

#include "core/model/SpaceKitError.h"
#include "tests/mac/Arranging.h"
#include "tests/support/LogLines.h"

namespace lumnara {
namespace {

using testing::Arranging;
using testing::finish;
using Case = DesktopCreator::Failure::Case;
using Numbers = Arranging::Numbers;
using Strings = std::vector<std::string>;

/// As "LEFT" has so many desktops.
void addUpTo(Arranging& at, std::size_t count) {
    while (at.order().size() < count) at.mac.addDesktop("LEFT");
}

TEST(DesktopCreator, PressesTheButtonOfTheDisplay) {
    testing::LogLines lines;
    Arranging at;
    addUpTo(at, 15);
    Strings steps;
    at.driver.onStep = [&](const std::string& step) { steps.push_back(step); };
    const auto ended = at.create();
    ASSERT_EQ(at.order().size(), 16u);
    EXPECT_EQ(ended.result, std::vector{at.mac.layout().display("LEFT")->spaces.back().id});
    EXPECT_EQ(steps, Strings({"  0.00 s  open Mission Control", "  0.70 s  move to (1504, 60)",
                              "  1.30 s  add button pressed", "  1.30 s  Escape",
                              "  1.90 s  pointer put back to (400, 600)"}));
    EXPECT_EQ(lines.take(),
              Strings({"Lumnara new desktop: 15 on display, opening Mission Control",
                       "Lumnara new desktop: add button pressed for display at {{0, 0}, {1512, 982}}"}));
    at.expectLeft();
}

TEST(DesktopCreator, FindsTheButtonByItsDescription) {
    testing::LogLines lines;
    Arranging at;
    at.accessibility.identifier = "mc.spaces.add";
    at.accessibility.damage = [](std::string_view name, const AccessibilityValue& value) {
        return name == "AXIdentifier" ? std::nullopt : std::optional(value);
    };
    DesktopCreator creator(at.driver, at.driver);
    const Rect right = at.mac.layout().screens()[1].frame;
    EXPECT_TRUE(finish(at.loop, creator.create(right, std::nullopt, 4)).result);
    EXPECT_EQ(at.order("RIGHT"), (Numbers{11, 12, 13, 14, 0}));
    EXPECT_EQ(lines.take(),
              Strings({"Lumnara new desktop: 4 on display, opening Mission Control",
                       "Lumnara new desktop: no mc.spaces.add for the display, pressing the first add button",
                       "Lumnara new desktop: add button pressed for display at unknown"}));
    at.expectLeft();
}

TEST(DesktopCreator, LeavesWhenThereIsNoButton) {
    testing::LogLines lines;
    Arranging at;
    at.accessibility.actions = testing::DamagedAccessibility::Actions::refused;
    EXPECT_TRUE(at.create().failedWith(DesktopCreator::Failure(Case::buttonMissing)));
    EXPECT_EQ(lines.take().back(),
              "Lumnara new desktop: add button not found for display at {{0, 0}, {1512, 982}}");
    at.expectLeft();
}

TEST(DesktopCreator, RefusesBeforeAnythingIsTouched) {
    Arranging at;
    addUpTo(at, 16);
    EXPECT_EQ(sentenceOf(at.create().error),
              "macOS allows 16 desktops per display, and this display has 16.");
    at.mac.isTrusted = false;
    EXPECT_TRUE(at.create().failedWith(DesktopCreator::Failure(Case::accessibility)));
    EXPECT_TRUE(
        at.create("gone").failedWith(SpaceReorderError(SpaceReorderError::Case::displayNotInSnapshot)));
    at.mac.stage().freezeReadings(1);
    at.mac.removeScreen("RIGHT");
    EXPECT_TRUE(
        at.create("RIGHT").failedWith(SpaceReorderError(SpaceReorderError::Case::displayNotAttached)));
    EXPECT_EQ(at.arranger.desktopsPerDisplay(), 16);
    at.expectUntouched();
}

TEST(DesktopCreator, TellsOnlyDesktopsThatCanBeSeen) {
    testing::LogLines lines;
    Arranging at;
    at.mac.stage().freezeReadings(30);
    at.at(&testing::WatchedDriver::escapes, 1, [](Arranging& mid) {
        mid.mac.inject(SimulatedFault::gestureLost); // and pressed once more
    });
    EXPECT_EQ(at.create().result, std::vector<SpaceID>());
    at.expectLeft();
    at.driver.onCall = [&] { at.provider.failures = at.driver.escapes - 2; };
    EXPECT_TRUE(at.create().failedWith(SpaceKitError::enumerationFailed()));
    EXPECT_EQ(at.order(), (Numbers{1, 2, 3, 4, 0, 0}));
    at.expectLeft();
}

} // namespace
} // namespace lumnara
