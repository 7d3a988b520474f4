#include "core/model/SpaceKitError.h"
#include "tests/mac/Arranging.h"

#include <limits>

namespace lumnara {
namespace {

using testing::Arranging;
using testing::WatchedDriver;
using Case = SpaceReorderError::Case;
using Numbers = Arranging::Numbers;
using Strings = std::vector<std::string>;

constexpr const char* notMoved = "Mission Control did not move desktop 1 to position 2.";
constexpr const char* closedInMove = "Mission Control closed while a desktop was being moved.";
constexpr const char* barGone = "Mission Control closed or stopped showing the desktop thumbnails.";

TEST(SpaceReorderer, DragsThumbnailsAsAHandDoes) {
    Arranging at;
    Strings steps;
    at.driver.onStep = [&](const std::string& step) { steps.push_back(step); };
    EXPECT_TRUE(at.reorder({2, 3, 4, 1}).result->matchesDesired);
    const std::string bar = " pt tall: Desktop 1, Desktop 2, Desktop 3, Desktop 4";
    EXPECT_EQ(steps, Strings({"  0.00 s  open Mission Control",
                              "  0.60 s  move to (756, 200)",
                              "  0.70 s  move to (756, 20)",
                              "  0.85 s  move to (760, 22)",
                              "  1.55 s  bar read, 18" + bar,
                              "  1.55 s  move to (756, 200)",
                              "  1.65 s  move to (756, 28)",
                              "  1.80 s  move to (760, 30)",
                              "  2.50 s  bar read, 18" + bar,
                              "  2.50 s  move to (756, 200)",
                              "  2.60 s  move to (756, 36)",
                              "  2.75 s  move to (760, 38)",
                              "  3.45 s  bar read, 100" + bar,
                              "  3.45 s  bar read, 100" + bar,
                              "  3.45 s  move to (471, 86)",
                              "  3.55 s  press at (471, 86)",
                              "  3.98 s  5 drags to (481, 86)",
                              "  3.98 s  bar read, 100" + bar,
                              "  4.61 s  30 drags to (1101, 86)",
                              "  4.61 s  bar read, 100 pt tall: Desktop 2, Desktop 3, Desktop 4, Desktop 1",
                              "  4.61 s  release at (1101, 86)",
                              "  4.91 s  Escape",
                              "  5.71 s  pointer put back to (400, 600)"}));
    at.expectLeft();
}

TEST(SpaceReorderer, MovesEachDesktopToItsPlace) {
    Arranging at;
    const auto ended = at.reorder({4, 3, 2, 1});
    EXPECT_EQ(ended.result, (ReorderOutcome{{{2, 3}, {1, 3}, {0, 3}}, 3, at.ids({4, 3, 2, 1}), true, {}}));
    EXPECT_EQ(at.order(), (Numbers{4, 3, 2, 1}));
    EXPECT_EQ(at.said, Strings({"Opening Mission Control", "Moving desktops in Mission Control (1 of 3)",
                                "Moving desktops in Mission Control (2 of 3)",
                                "Moving desktops in Mission Control (3 of 3)"}));
    at.expectLeft();
    EXPECT_TRUE(at.reorder({14, 11, 13, 12}, "RIGHT").result->matchesDesired);
    EXPECT_EQ(at.order("RIGHT"), (Numbers{14, 11, 13, 12}));
    EXPECT_EQ(at.order(), (Numbers{4, 3, 2, 1}));
}

TEST(SpaceReorderer, OpensNothingForAnOrderThatStands) {
    Arranging at;
    const auto ended = at.reorder({1, 9, 2, 1});
    EXPECT_EQ(ended.result, (ReorderOutcome{{}, 0, at.ids({1, 2, 3, 4}), true, {}}));
    at.expectUntouched();
}

TEST(SpaceReorderer, TellsTheFirstThingThatStandsAgainstIt) {
    // Without the window list Mission Control can only be seen by its elements.
    Arranging at({}, [](SimulatedMac& mac) { mac.removeSymbol("CGWindowListCopyWindowInfo"); });
    const auto error = [&](const char* on = "LEFT") { return at.reorder({2, 1}, on); };
    const auto expect = [&](const SpaceReorderError& expected, const char* on = "LEFT") {
        EXPECT_TRUE(error(on).failedWith(expected)) << expected.sentence();
    };
    const auto frames = [&](double width) {
        at.mac.moveScreens({{0, 0, width, 982}, {1512, 0, 2560, 1440}});
    };
    at.provider.failures = 1;
    frames(std::numeric_limits<double>::quiet_NaN());
    at.mac.missionControl().toggle();
    at.loop.advance(2);
    at.mac.isLocked = true;
    at.mac.setPreference("mru-spaces", "com.apple.dock", std::nullopt);
    at.mac.isTrusted = false;
    expect(SpaceReorderError(Case::accessibilityNotTrusted));
    at.mac.isTrusted = true;
    expect(SpaceReorderError(Case::mruSpacesOn));
    at.mac.setPreference("mru-spaces", "com.apple.dock", false);
    expect(SpaceReorderError::session(SwitchError(SwitchError::Case::screenLocked)));
    at.mac.isLocked = false;
    expect(SpaceReorderError(Case::missionControlOpen));
    at.mac.missionControl().vanish();
    expect(SpaceReorderError(Case::displayNotAttached), "gone");
    expect(SpaceReorderError(Case::displayNotAttached));
    frames(1512);
    EXPECT_TRUE(error().failedWith(SpaceKitError::enumerationFailed()));
    at.provider.bend = [](SpaceSnapshot& told) { told.displays[0].spaces.clear(); };
    expect(SpaceReorderError(Case::displayNotInSnapshot));
    at.provider.bend = [](SpaceSnapshot& told) { told.displays.erase(told.displays.begin()); };
    expect(SpaceReorderError(Case::displayNotInSnapshot));
    at.expectUntouched();
}

/// A mishap at the n-th of these calls, and how it ends.
void expectStop(const char* what, const int WatchedDriver::* count, int n, Arranging::Mishap mishap,
                int performed, const char* because) {
    SCOPED_TRACE(what);
    Arranging at;
    at.at(count, n, std::move(mishap));
    const auto ended = at.reorder({2, 1, 4, 3});
    ASSERT_TRUE(ended.result);
    EXPECT_EQ(ended.result->performed, performed);
    EXPECT_EQ(ended.result->stoppedBecause, because);
    EXPECT_FALSE(ended.result->matchesDesired);
    EXPECT_EQ(at.numbers(ended.result->finalOrder), at.order());
    at.expectLeft();
}

TEST(SpaceReorderer, StopsAtTheFirstMoveThatDidNotComeOut) {
    constexpr auto drags = &WatchedDriver::drags, releases = &WatchedDriver::releases;
    const auto collapse = [](Arranging& at) { at.mac.inject(SimulatedFault::barCollapses); };
    expectStop(
        "the window server lags", releases, 1, [](Arranging& at) { at.mac.stage().freezeReadings(0.5); }, 0,
        notMoved);
    expectStop(
        "the drop can't be read", releases, 1, [](Arranging& at) { at.provider.failures = 1; }, 0, notMoved);
    expectStop(
        "another order by the user", drags, 30, [](Arranging& at) { at.mac.moveSpace(at.id(4), 0); }, 0,
        notMoved);
    expectStop("the bar collapses before the drop", drags, 35, collapse, 0, notMoved);
    expectStop("the bar collapses behind it", releases, 1, collapse, 1, barGone);
    expectStop(
        "a press is lost", &WatchedDriver::presses, 2,
        [](Arranging& at) { at.mac.inject(SimulatedFault::gestureLost); }, 1,
        "Mission Control did not move desktop 3 to position 4.");
    expectStop(
        "Mission Control goes behind the lift", drags, 5,
        [](Arranging& at) { at.mac.missionControl().vanish(); }, 0, closedInMove);
    expectStop(
        "a desktop goes behind the lift", drags, 5, [](Arranging& at) { at.mac.removeSpace(at.id(4)); }, 0,
        closedInMove);
}

TEST(SpaceReorderer, AimsAgainAtThumbnailsThatMadeRoom) {
    struct Aim {
        double shift;
        Numbers wish;
        int drags;
    };
    for (const Aim& aim : {Aim{110, {2, 3, 1, 4}, 45}, {4, {2, 3, 1, 4}, 35}, {-110, {4, 1, 2, 3}, 45}}) {
        Arranging at;
        at.at(&WatchedDriver::drags, 20, [&](Arranging&) { at.mac.missionControl().shift(aim.shift, 1.2); });
        EXPECT_TRUE(at.reorder(aim.wish).result->matchesDesired) << aim.shift;
        EXPECT_EQ(at.driver.drags, aim.drags);
    }
}

TEST(SpaceReorderer, TellsTheLastKnownOrderWhenTheEndCannotBeRead) {
    Arranging at;
    at.driver.onCall = [&] { at.provider.failures = at.driver.escapes; };
    const auto ended = at.reorder({2, 1});
    ASSERT_TRUE(ended.result);
    EXPECT_EQ(at.numbers(ended.result->finalOrder), (Numbers{2, 1, 3, 4}));
    EXPECT_TRUE(ended.result->matchesDesired);
}

} // namespace
} // namespace lumnara
