#include "core/platform/mac/server/FullscreenOwnerResolver.h"

#include "core/platform/mac/server/ListedWindow.h"
#include "tests/simruns/SimulatedSession.h"

#include <gtest/gtest.h>
#include <limits>

namespace lumnara {
namespace {

/// A Mac with two windows in full screen on "LEFT", second and third there.
class FullscreenOwnerResolverTest : public ::testing::Test, protected testing::SimulatedSession {
protected:
    FullscreenOwnerResolverTest() {
        const auto addFullscreen = [&](std::int32_t pid, const char* owner) {
            return mac.enterFullscreen(mac.windows().add(
                {.ownerPid = pid, .ownerName = owner, .isOrderedIn = true, .spaces = {space("LEFT", 0)}}));
        };
        const SpaceID second = addFullscreen(nameless, "Second");
        const SpaceID first = addFullscreen(player, "player");
        // Above the ordinary windows, and another program's behind the first.
        mac.windows().add({.ownerPid = 50, .ownerName = "Overlay", .layer = 3, .spaces = {first, second}});
        mac.windows().add({.ownerPid = 51, .ownerName = "Desktop", .layer = -1, .spaces = {first, second}});
        reader.resolvesFullscreenOwners = false;
    }
    using Owners = std::vector<std::optional<RunningApp>>;
    Owners resolved(WindowServer& server, Workspace* workspace) {
        Owners owners;
        const auto snapshot = FullscreenOwnerResolver::resolve(reader.snapshot(), server, workspace);
        for (const Space& each : snapshot.displays[0].spaces) owners.push_back(each.fullscreenOwner);
        return owners;
    }

    const std::int32_t player = mac.launch("Player", "com.example.player");
    const std::int32_t nameless = mac.launch("", "com.example.nameless");
    LiveSpaceProvider reader = provider();
    const std::optional<RunningApp> none;
};

TEST_F(FullscreenOwnerResolverTest, TakesTheFirstOrdinaryWindowOfEachFullscreenSpace) {
    EXPECT_EQ(resolved(*seams.windowServer, seams.workspace.get()),
              (Owners{none, RunningApp{player, "com.example.player", "Player"},
                      RunningApp{nameless, "com.example.nameless", "Second"}, none, none}));
    mac.windows().add({.ownerPid = 999, .ownerName = "Gone", .spaces = {space("LEFT", 1)}}); // in front
    EXPECT_EQ(resolved(*seams.windowServer, seams.workspace.get())[1],
              (RunningApp{999, std::nullopt, "Gone"}))
        << "the name that its window tells";
    EXPECT_EQ(resolved(*seams.windowServer, nullptr)[2], (RunningApp{nameless, std::nullopt, "Second"}));
}

TEST_F(FullscreenOwnerResolverTest, PassesOverWindowsThatDontTellAndListsThatFail) {
    int listings = 0;
    WindowServerCalls calls = mac.calls();
    calls.copySpacesForWindows = [&](auto, int, const auto&) { return std::vector{space("LEFT", 1).raw}; };
    calls.windowList = [&](WindowListOption) {
        ++listings;
        return PropertyList{{{"kCGWindowNumber", 5}, {"kCGWindowLayer", 0}},
                            {{"kCGWindowNumber", 5}, {"kCGWindowOwnerPID", 7}},
                            {{"kCGWindowOwnerPID", 7}, {"kCGWindowLayer", 0}},
                            {{"kCGWindowNumber", "x"}, {"kCGWindowOwnerPID", 7}, {"kCGWindowLayer", 0}}};
    };
    PrivateAPI odd(calls), empty({});
    const Owners nobody(5);
    EXPECT_EQ(resolved(odd, nullptr), nobody);
    EXPECT_EQ(resolved(empty, nullptr), nobody);
    const int before = listings;
    FullscreenOwnerResolver::resolve(testing::SimulatedSession().provider().snapshot(), odd, nullptr);
    EXPECT_EQ(listings, before) << "a window list costs";
}

TEST(ListedWindow, ReadsWhatIsThereInAnyFormOfNumber) {
    const auto full = ListedWindow::of(
        {{"kCGWindowNumber", 7.0},
         {"kCGWindowOwnerPID", 9},
         {"kCGWindowOwnerName", "Dock"},
         {"kCGWindowLayer", 18},
         {"kCGWindowBounds", PropertyDictionary{{"X", -5}, {"Y", 0.5}, {"Width", 10}, {"Height", 20}}}});
    EXPECT_EQ(full, (ListedWindow{7, 9, "Dock", 18, Rect{-5, 0.5, 10, 20}}));
    EXPECT_EQ(ListedWindow::of({}), ListedWindow());
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(ListedWindow::of({{"kCGWindowNumber", -1},
                                {"kCGWindowOwnerPID", std::int64_t{1} << 40},
                                {"kCGWindowOwnerName", 5},
                                {"kCGWindowLayer", true},
                                {"kCGWindowBounds",
                                 PropertyDictionary{{"X", nan}, {"Y", 0}, {"Width", 10}, {"Height", 20}}}}),
              ListedWindow());
}

} // namespace
} // namespace lumnara
