#include "core/arranging/DesktopRemoveError.h"
#include "tests/mac/Arranging.h"

namespace lumnara {
namespace {

using testing::Arranging;
using testing::DamagedAccessibility;
using testing::WatchedDriver;
using Case = DesktopRemoveError::Case;
using Numbers = Arranging::Numbers;
using Strings = std::vector<std::string>;

constexpr const char* notLinedUp =
    "Mission Control's thumbnails did not line up with the desktops. Nothing was changed.";
constexpr const char* notRemoved = "Mission Control did not remove the desktop.";

/// Gives a window of "LEFT" a Space of its own, second on it.
SpaceID addFullscreen(Arranging& at) {
    const auto player = at.mac.launch("Player", "com.example.player");
    const SpaceID space = at.mac.enterFullscreen(at.mac.openWindow(player, at.id(1)));
    at.loop.runUntilDone();
    return space;
}

TEST(DesktopRemover, RemovesWhatIsAskedForAndNothingElse) {
    Arranging at;
    addFullscreen(at);
    EXPECT_EQ(at.remove({4, 1, 4, 3}, "left").result, (RemoveOutcome{at.ids({4, 1, 3}), std::nullopt}));
    EXPECT_EQ(at.order(), (Numbers{0, 2}));
    EXPECT_EQ(at.order("RIGHT"), (Numbers{11, 12, 13, 14}));
    EXPECT_EQ(at.said, Strings({"Opening Mission Control", "Removing desktops in Mission Control (1/3)",
                                "Removing desktops in Mission Control (2/3)",
                                "Removing desktops in Mission Control (3/3)"}));
    at.expectLeft();
    EXPECT_EQ(at.remove({13}, "RIGHT").result, (RemoveOutcome{at.ids({13}), std::nullopt}));
    EXPECT_EQ(at.said.back(), "Removing the desktop in Mission Control");
}

TEST(DesktopRemover, RefusesBeforeAnythingIsTouched) {
    Arranging at;
    const SpaceID fullscreen = addFullscreen(at);
    EXPECT_TRUE(at.remove({1, 99}).failedWith(DesktopRemoveError(Case::notOnDisplay)));
    EXPECT_TRUE(at.remove({11}).failedWith(DesktopRemoveError(Case::notOnDisplay)));
    EXPECT_TRUE(testing::finish(at.loop, at.arranger.remove({at.id(1), fullscreen}, {"LEFT"}))
                    .failedWith(DesktopRemoveError(Case::notAUserDesktop)));
    EXPECT_TRUE(at.remove({1, 2, 3, 4}).failedWith(DesktopRemoveError(Case::lastOnDisplay)));
    EXPECT_EQ(at.remove({}).result, RemoveOutcome());
    at.mac.setPreference("mru-spaces", "com.apple.dock", true);
    EXPECT_TRUE(at.remove({99}).failedWith(SpaceReorderError(SpaceReorderError::Case::mruSpacesOn)));
    at.expectUntouched();
}

/// A mishap, what has gone by its end and why no more went.
void expectStop(const char* what, const Numbers& wish, const Arranging::Mishap& mishap,
                const Numbers& removed, const char* because) {
    SCOPED_TRACE(what);
    Arranging at;
    mishap(at);
    EXPECT_EQ(at.remove(wish).result, (RemoveOutcome{at.ids(removed), because}));
    at.expectLeft();
    for (const int number : {1, 2, 3, 4})
        EXPECT_EQ(at.mac.layout().displayOf(at.id(number)) == nullptr,
                  std::ranges::count(removed, number) > 0)
            << number;
}

TEST(DesktopRemover, RemovesNothingWhoseTitleDoesNotAgree) {
    for (const std::string title : {"Desktop 3", "desktop 2", "Desktop  2", "Desktop +2", "Desktop2",
                                    "Desktop 2e", "2", "Desktop 999999999992"}) {
        const auto mistitle = [&](std::string_view name, const AccessibilityValue& value) {
            const bool isMeant = name == "AXTitle" && value == AccessibilityValue(std::string("Desktop 2"));
            return std::optional(isMeant ? AccessibilityValue(title) : value);
        };
        expectStop(
            title.c_str(), {2}, [&](Arranging& at) { at.accessibility.damage = mistitle; }, {}, notLinedUp);
    }
}

TEST(DesktopRemover, StopsWhenItIsNotSureAndKeepsCountOfWhatWent) {
    using Mishap = Arranging::Mishap;
    using Actions = DamagedAccessibility::Actions;
    constexpr const char* gone = "That desktop is not on this display any more.";
    constexpr const char* barGone = "Mission Control closed or stopped showing the desktop thumbnails.";
    const auto asked = [](int n, Mishap happens) -> Mishap {
        return [=](Arranging& at) { at.at(&WatchedDriver::removals, n, happens); };
    };
    const auto beforeSecond = [](Mishap happens) -> Mishap {
        return [=](Arranging& at) { at.onSaid["Removing desktops in Mission Control (2/2)"] = happens; };
    };
    /// The request is taken and does nothing; what is read behind it is bent.
    const auto ignored = [&](std::function<void(SpaceSnapshot&)> bend) {
        return asked(1, [bend](Arranging& at) {
            at.accessibility.actions = Actions::ignored;
            at.provider.bend = bend;
        });
    };
    const auto fail = [](Arranging& at) { at.provider.failures = 1; };
    const auto lagBehindTheBar = [](Arranging& at) {
        const SpaceID added = at.mac.addDesktop("LEFT");
        at.mac.stage().freezeReadings(0.2);
        at.mac.removeSpace(added);
    };
    const auto moveAsTheBarIsRead = [](Arranging& at) {
        at.at(&WatchedDriver::looks, at.driver.looks + 1,
              [](Arranging& mid) { mid.mac.moveSpace(mid.id(4), 0); });
    };
    const auto refuse = [](Arranging& at) { at.accessibility.actions = Actions::refused; };
    const auto toOtherDisplay = [](SpaceSnapshot& told) {
        auto& from = told.displays[0].spaces;
        told.displays[1].spaces.push_back(from[1]);
        from.erase(from.begin() + 1);
    };
    const auto noDisplay = [](SpaceSnapshot& told) { told.displays.erase(told.displays.begin()); };
    const auto withoutSecond = [](Arranging& at) {
        at.provider.bend = [](SpaceSnapshot& told) {
            told.displays[0].spaces.erase(told.displays[0].spaces.begin() + 1);
        };
    };
    const auto add = [](Arranging& at) { at.mac.addDesktop("LEFT"); };
    const auto collapse = [](Arranging& at) { at.mac.inject(SimulatedFault::barCollapses); };

    expectStop("the window server lags", {1, 3}, beforeSecond(lagBehindTheBar), {1}, notLinedUp);
    expectStop("another order as the bar is read", {1, 3}, beforeSecond(moveAsTheBarIsRead), {1}, notLinedUp);
    expectStop("refused", {1, 2, 3}, asked(2, refuse), {1},
               "Mission Control did not accept the request to remove that desktop.");
    expectStop("nothing comes of it", {2, 3}, ignored({}), {}, notRemoved);
    expectStop("it went to another display", {2}, ignored(toOtherDisplay), {}, notRemoved);
    expectStop("the display went with it", {2}, ignored(noDisplay), {}, notRemoved);
    expectStop("the next one is gone", {1, 3}, beforeSecond(withoutSecond), {1}, gone);
    expectStop("the next one can't be read", {1, 3}, beforeSecond(fail), {1}, gone);
    expectStop("another desktop comes", {1, 3}, beforeSecond(add), {1}, barGone);
    expectStop("the bar collapses", {1, 3}, asked(1, collapse), {1}, barGone);

    Arranging at; // and nobody can tell whether it went
    asked(1, fail)(at);
    EXPECT_EQ(at.remove({2}).result, (RemoveOutcome{{}, notRemoved}));
    at.expectLeft();
}

} // namespace
} // namespace lumnara
