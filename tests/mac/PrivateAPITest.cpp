#include "core/platform/mac/server/PrivateAPI.h"
#include "core/model/SpaceKitError.h"

#include <gtest/gtest.h>

namespace lumnara {
namespace {

using Case = SpaceKitError::Case;

constexpr WindowServerCalls::Connection connection = 77;

/// Calls that answer, each only on the right connection.
WindowServerCalls completeCalls() {
    const auto onlyOurs = [](WindowServerCalls::Connection given) { EXPECT_EQ(given, connection); };
    WindowServerCalls calls;
    calls.mainConnectionID = [] { return connection; };
    calls.copyManagedDisplaySpaces = [=](auto given) {
        onlyOurs(given);
        return PropertyValue(PropertyArray{PropertyDictionary{{"Display Identifier", "D1"}}});
    };
    calls.getActiveSpace = [=](auto given) { return onlyOurs(given), 3u; };
    calls.managedDisplayGetCurrentSpace = [=](auto given, const std::string& display) {
        return onlyOurs(given), display == "D1" ? 3u : 0u;
    };
    calls.copyActiveMenuBarDisplayIdentifier = [=](auto given) { return onlyOurs(given), "D1"; };
    calls.copyManagedDisplayForSpace = [=](auto given, std::uint64_t space) {
        return onlyOurs(given), space == 3 ? std::optional<std::string>("D1") : std::nullopt;
    };
    calls.managedDisplayIsAnimating = [=](auto given, const std::string& display) {
        return onlyOurs(given), display == "D1";
    };
    calls.copyBestManagedDisplayForPoint = [=](auto given, Point point) {
        return onlyOurs(given), point.x < 100 ? "D1" : "D2";
    };
    calls.copySpacesForWindows = [=](auto given, int mask, const auto& windows) {
        onlyOurs(given);
        EXPECT_EQ(mask, 7);
        return std::vector<std::uint64_t>(windows.begin(), windows.end());
    };
    calls.spaceGetType = [=](auto given, std::uint64_t space) { return onlyOurs(given), space == 3 ? 4 : 1; };
    return calls;
}

std::optional<SpaceKitError> errorOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const SpaceKitError& error) {
        return error;
    }
    return std::nullopt;
}

TEST(PrivateAPI, AsksOnTheProgramsConnection) {
    PrivateAPI api(completeCalls());
    EXPECT_EQ(api.managedDisplaySpaces(), (PropertyList{{{"Display Identifier", "D1"}}}));
    EXPECT_EQ(api.activeSpace(), SpaceID{3});
    EXPECT_EQ(api.currentSpace({"D1"}), SpaceID{3});
    EXPECT_EQ(api.currentSpace({"D9"}), std::nullopt) << "0 is no Space";
    EXPECT_EQ(api.activeMenuBarDisplay(), "D1");
    EXPECT_EQ(api.displayOfSpace({3}), "D1");
    EXPECT_EQ(api.displayOfSpace({4}), std::nullopt);
    EXPECT_EQ(api.isAnimating({"D1"}), true);
    EXPECT_EQ(api.isAnimating({"D2"}), false);
    EXPECT_EQ(api.displayAt({150, 0}), "D2");
    EXPECT_EQ(api.spacesOfWindows({5, 6}), (std::vector<SpaceID>{{5}, {6}}));
    EXPECT_EQ(api.kindOfSpace({3}), SpaceKind::fullscreen);
    EXPECT_EQ(api.kindOfSpace({4}), SpaceKind::unknown);
}

TEST(PrivateAPI, PutsWindowsOnSpacesAndTakesThemOff) {
    std::vector<std::string> asked;
    WindowServerCalls calls = completeCalls();
    calls.addWindowsToSpaces = [&](auto, const auto& windows, const auto& spaces) {
        asked.push_back("add " + std::to_string(windows.at(0)) + " " + std::to_string(spaces.at(0)));
    };
    calls.removeWindowsFromSpaces = [&](auto, const auto& windows, const auto& spaces) {
        asked.push_back("remove " + std::to_string(windows.at(0)) + " " + std::to_string(spaces.at(0)));
    };
    PrivateAPI api(std::move(calls));
    api.removeWindowsFromSpaces({9}, {{2}});
    api.addWindowsToSpaces({9}, {{3}});
    EXPECT_EQ(asked, (std::vector<std::string>{"remove 9 2", "add 9 3"}));
}

TEST(PrivateAPI, AMissingCallGivesItsTypedErrorOrNoAnswer) {
    WindowServerCalls withoutConnection = completeCalls();
    withoutConnection.mainConnectionID = {};
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
    WindowServerCalls calls = completeCalls();
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
