#include "core/platform/mac/server/LiveSpaceProvider.h"
#include "core/async/TestLoop.h"
#include "core/model/SpaceKitError.h"

#include <gtest/gtest.h>

namespace lumnara {
namespace {

struct FakeWindowServer : WindowServer {
    PropertyList managedDisplaySpaces() override { return list; }
    std::optional<SpaceID> currentSpace(const DisplayID&) override { return std::nullopt; }
    std::optional<bool> isAnimating(const DisplayID&) override { return std::nullopt; }
    std::optional<std::string> activeMenuBarDisplay() override { return menuBar; }
    std::vector<SpaceID> spacesOfWindows(const std::vector<WindowNumber>&) override { return {{5}}; }
    std::optional<PropertyList> windowList(WindowListOption) override {
        return PropertyList{{{"kCGWindowNumber", 1},
                             {"kCGWindowOwnerPID", 10},
                             {"kCGWindowOwnerName", "Player"},
                             {"kCGWindowLayer", 0}}};
    }

    void show(const std::string& display, int type = 0) {
        const PropertyDictionary space{{"id64", 5}, {"uuid", "A"}, {"type", type}};
        list = {
            {{"Display Identifier", display}, {"Spaces", PropertyArray{space}}, {"Current Space", space}}};
    }
    PropertyList list;
    std::optional<std::string> menuBar = "Right";
};

struct FakeScreens : Screens {
    std::vector<ScreenInfo> screens() override {
        return {{.uuid = "Left", .connector = "DP-1", .name = "Dell U2720Q", .frame = {}}};
    }
    std::optional<Point> pointer() override { return std::nullopt; }
    std::optional<std::string> displayUnderPointer() override { return pointed; }
    std::optional<std::string> pointed = "Left";
};

class LiveSpaceProviderTest : public ::testing::Test {
protected:
    async::TestLoop loop;
    FakeWindowServer windowServer;
    FakeScreens screens;
    LiveSpaceProvider provider{loop, windowServer, screens};
};

TEST_F(LiveSpaceProviderTest, ReadsDisplaysOfTheirOwn) {
    windowServer.show("Left");
    loop.advance(3);
    const SpaceSnapshot snapshot = provider.snapshot();
    EXPECT_EQ(snapshot.takenAt, loop.date());
    EXPECT_EQ(snapshot.displays.at(0).spaces.at(0).uuid, "A");
    EXPECT_EQ(provider.menuBarDisplay(), DisplayID{"Right"});
    EXPECT_EQ(provider.cursorDisplay(), DisplayID{"Left"});
    EXPECT_EQ(provider.displayName("LEFT"), "Dell U2720Q");
    EXPECT_EQ(provider.displayName("Right"), std::nullopt);
    windowServer.menuBar = "";
    screens.pointed.reset();
    EXPECT_EQ(provider.menuBarDisplay(), std::nullopt);
    EXPECT_EQ(provider.cursorDisplay(), std::nullopt);
}

TEST_F(LiveSpaceProviderTest, AnswersMainUnderASharedArrangement) {
    windowServer.show("Main");
    EXPECT_EQ(provider.menuBarDisplay(), DisplayID{"Right"}) << "nothing has been read yet";
    provider.snapshot();
    EXPECT_EQ(provider.menuBarDisplay(), DisplayID{"Main"});
    EXPECT_EQ(provider.cursorDisplay(), DisplayID{"Main"});
    EXPECT_EQ(provider.displayName("Main"), "All Displays");
    windowServer.show("Left");
    provider.snapshot();
    EXPECT_EQ(provider.cursorDisplay(), DisplayID{"Left"});
}

TEST_F(LiveSpaceProviderTest, FillsInTheOwnersOfFullscreenSpacesUnlessToldNotTo) {
    windowServer.show("Left", 4);
    EXPECT_EQ(provider.snapshot().displays.at(0).spaces.at(0).fullscreenOwner,
              (RunningApp{10, std::nullopt, "Player"}));
    provider.resolvesFullscreenOwners = false;
    EXPECT_EQ(provider.snapshot().displays.at(0).spaces.at(0).fullscreenOwner, std::nullopt);
}

TEST_F(LiveSpaceProviderTest, PassesOnWhatCannotBeRead) { EXPECT_THROW(provider.snapshot(), SpaceKitError); }

} // namespace
} // namespace lumnara
