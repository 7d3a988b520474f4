#include "core/platform/mac/server/PrivateAPI.h"
#include "core/model/SpaceKitError.h"
#include "tests/simruns/SimulatedSession.h"

#include <gtest/gtest.h>

namespace lumnara {
namespace {

using Case = SpaceKitError::Case;

std::optional<SpaceKitError> errorOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const SpaceKitError& error) {
        return error;
    }
    return std::nullopt;
}

TEST(PrivateAPI, TellsWhatTheWindowServerDoes) {
    testing::SimulatedSession at;
    PrivateAPI api(at.mac.calls());
    const WindowNumber window = at.mac.openWindow(at.mac.launch("Notes", {}), at.space("LEFT", 0));
    const SpaceID fullscreen = at.mac.enterFullscreen(window), other = at.space("RIGHT", 2);
    at.loop.runUntilDone();
    EXPECT_EQ(api.managedDisplaySpaces().size(), 2u);
    EXPECT_EQ(api.activeSpace(), fullscreen);
    EXPECT_EQ(api.currentSpace({"right"}), at.space("RIGHT", 0));
    EXPECT_EQ(api.currentSpace({"nowhere"}), std::nullopt) << "0 is no Space";
    EXPECT_EQ(api.activeMenuBarDisplay(), "LEFT");
    EXPECT_EQ(api.displayOfSpace(other), "RIGHT");
    EXPECT_EQ(api.displayOfSpace({1'000'000}), std::nullopt);
    at.mac.stage().move(other, 1);
    EXPECT_EQ(api.isAnimating({"RIGHT"}), true);
    EXPECT_EQ(api.isAnimating({"LEFT"}), false);
    EXPECT_EQ(api.displayAt({2000, 100}), "RIGHT");
    EXPECT_EQ(api.kindOfSpace(fullscreen), SpaceKind::fullscreen);
    EXPECT_EQ(api.kindOfSpace({1'000'000}), SpaceKind::unknown);
    api.removeWindowsFromSpaces({window}, {fullscreen});
    api.addWindowsToSpaces({window}, {other, {999'999}});
    EXPECT_EQ(api.spacesOfWindows({window}), std::vector{other});
    EXPECT_TRUE(api.spacesOfWindows({999'999}).empty());
}

TEST(PrivateAPI, AMissingCallGivesItsTypedErrorOrNoAnswer) {
    testing::SimulatedSession at;
    WindowServerCalls withoutConnection = at.mac.calls();
    withoutConnection.mainConnectionID = {};
    withoutConnection.windowList = {};
    for (PrivateAPI api : {PrivateAPI({}), PrivateAPI(withoutConnection)}) {
        const std::function<void()> throwing[] = {
            [&] { api.managedDisplaySpaces(); }, [&] { api.activeSpace(); }, [&] { api.displayOfSpace({3}); },
            [&] { api.displayAt({}); }, [&] { api.kindOfSpace({3}); }};
        for (const auto& call : throwing) EXPECT_EQ(errorOf(call), SpaceKitError::privateAPIUnavailable());
        EXPECT_EQ(api.currentSpace({"D1"}), std::nullopt);
        EXPECT_EQ(api.isAnimating({"D1"}), std::nullopt);
        EXPECT_EQ(api.activeMenuBarDisplay(), std::nullopt);
        EXPECT_TRUE(api.spacesOfWindows({5}).empty());
        api.addWindowsToSpaces({5}, {{3}});
        api.removeWindowsFromSpaces({5}, {{3}});
        EXPECT_EQ(api.windowList(WindowListOption::all), std::nullopt);
    }
}

TEST(PrivateAPI, RefusesAResultThatIsNoListOfDisplays) {
    testing::SimulatedSession at;
    WindowServerCalls calls = at.mac.calls();
    const auto outcome = [&](std::optional<PropertyValue> result) {
        calls.copyManagedDisplaySpaces = [=](auto) { return result; };
        return errorOf([&] { PrivateAPI(calls).managedDisplaySpaces(); });
    };
    const auto malformed = SpaceKitError::malformed("managed display spaces is not an array of dictionaries");
    EXPECT_EQ(outcome(std::nullopt), SpaceKitError::enumerationFailed());
    EXPECT_EQ(outcome(PropertyValue("text")), malformed);
    EXPECT_EQ(outcome(PropertyValue(PropertyDictionary())), malformed);
    EXPECT_EQ(outcome(PropertyValue(PropertyArray{PropertyDictionary(), 5})), malformed);
    EXPECT_EQ(outcome(PropertyValue(PropertyArray())), std::nullopt) << "the parser refuses an empty list";
}

} // namespace
} // namespace lumnara
