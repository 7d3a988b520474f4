#include "core/platform/mac/server/FullscreenOwnerResolver.h"
#include "core/platform/mac/server/ListedWindow.h"
#include "tests/model/Layouts.h"

#include <gtest/gtest.h>
#include <limits>
#include <map>

namespace lumnara {
namespace {

using testing::makeDisplay;
using testing::makeFullscreen;
using testing::makeSpace;

struct ListingServer : WindowServer {
    PropertyList managedDisplaySpaces() override { return {}; }
    std::optional<SpaceID> currentSpace(const DisplayID&) override { return std::nullopt; }
    std::optional<bool> isAnimating(const DisplayID&) override { return std::nullopt; }
    std::optional<std::string> activeMenuBarDisplay() override { return std::nullopt; }
    std::vector<SpaceID> spacesOfWindows(const std::vector<WindowNumber>& windows) override {
        return spaces[windows.at(0)];
    }
    std::optional<PropertyList> windowList(WindowListOption option) override {
        EXPECT_EQ(option, WindowListOption::all);
        ++listings;
        return list;
    }
    void add(WindowNumber number, std::int64_t pid, const char* owner, int layer, std::vector<SpaceID> on) {
        list->push_back({{"kCGWindowNumber", number},
                         {"kCGWindowOwnerPID", pid},
                         {"kCGWindowOwnerName", owner},
                         {"kCGWindowLayer", layer}});
        spaces[number] = std::move(on);
    }

    std::optional<PropertyList> list = PropertyList();
    std::map<WindowNumber, std::vector<SpaceID>> spaces;
    int listings = 0;
};

struct ListingWorkspace : Workspace {
    async::Subscription observe(std::function<void(WorkspaceEvent)>) override { return {}; }
    std::vector<RunningApplication> runningApplications() override { return running; }
    std::vector<RunningApplication> running;
};

SpaceSnapshot withFullscreen() {
    return {{makeDisplay("D1", {makeSpace(1, "A"), makeFullscreen(2, "B", {}), makeFullscreen(3, "C", {})})},
            {}};
}

TEST(FullscreenOwnerResolver, TakesTheFirstOrdinaryWindowOfEachFullscreenSpace) {
    ListingServer server;
    ListingWorkspace workspace;
    workspace.running = {{{10, "com.example.player", "Player"}}, {{11, "com.example.nameless", ""}}};
    server.add(100, 50, "Overlay", 3, {{2}}); // above the ordinary windows
    server.add(101, 10, "player", 0, {{2}, {1}});
    server.add(102, 11, "Second", 0, {{2}, {3}});
    const SpaceSnapshot resolved = FullscreenOwnerResolver::resolve(withFullscreen(), server, &workspace);

    SpaceSnapshot expected = withFullscreen();
    expected.displays[0].spaces[1].fullscreenOwner = RunningApp{10, "com.example.player", "Player"};
    expected.displays[0].spaces[2].fullscreenOwner = RunningApp{11, "com.example.nameless", "Second"};
    EXPECT_EQ(resolved, expected);
}

TEST(FullscreenOwnerResolver, AnAppWithoutInfoHasTheNameThatItsWindowTells) {
    ListingServer server;
    ListingWorkspace workspace;
    server.add(101, 10, "Player", 0, {{2}});
    for (Workspace* known : {static_cast<Workspace*>(nullptr), static_cast<Workspace*>(&workspace)}) {
        const auto resolved = FullscreenOwnerResolver::resolve(withFullscreen(), server, known);
        EXPECT_EQ(resolved.displays[0].spaces[1].fullscreenOwner, (RunningApp{10, std::nullopt, "Player"}));
        EXPECT_EQ(resolved.displays[0].spaces[2].fullscreenOwner, std::nullopt);
    }
}

TEST(FullscreenOwnerResolver, PassesOverWindowsThatDontTellAndListsThatFail) {
    ListingServer server;
    server.list->push_back({{"kCGWindowNumber", 5}, {"kCGWindowLayer", 0}});
    server.list->push_back({{"kCGWindowNumber", 5}, {"kCGWindowOwnerPID", 7}});
    server.list->push_back({{"kCGWindowOwnerPID", 7}, {"kCGWindowLayer", 0}});
    server.list->push_back({{"kCGWindowNumber", "x"}, {"kCGWindowOwnerPID", 7}, {"kCGWindowLayer", 0}});
    server.spaces[5] = {{2}};
    EXPECT_EQ(FullscreenOwnerResolver::resolve(withFullscreen(), server, nullptr), withFullscreen());
    server.list.reset();
    EXPECT_EQ(FullscreenOwnerResolver::resolve(withFullscreen(), server, nullptr), withFullscreen());

    server.listings = 0;
    const SpaceSnapshot plain{{makeDisplay("D1", {makeSpace(1, "A")})}, {}};
    EXPECT_EQ(FullscreenOwnerResolver::resolve(plain, server, nullptr), plain);
    EXPECT_EQ(server.listings, 0) << "a window list costs";
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
