#include "core/platform/mac/server/LiveSpaceProvider.h"

#include "tests/simruns/SimulatedSession.h"

#include <gtest/gtest.h>
#include <tuple>

namespace lumnara {
namespace {

TEST(LiveSpaceProvider, ReadsDisplaysOfTheirOwn) {
    testing::SimulatedSession at({}, [](SimulatedMac& mac) {
        mac.enterFullscreen(mac.openWindow(mac.launch("Player", "com.example.player"),
                                           mac.layout().display("RIGHT")->spaces.at(0).id));
    });
    LiveSpaceProvider provider = at.provider();
    at.loop.advance(3);
    const SpaceSnapshot snapshot = provider.snapshot();
    EXPECT_EQ(snapshot.takenAt, at.loop.date());
    ASSERT_EQ(snapshot.displays.size(), 2u);
    const DisplaySpaces& left = snapshot.displays[0];
    EXPECT_EQ(std::tie(left.display, left.name, left.currentID),
              std::tuple(DisplayID{"LEFT"}, "Panel", at.space("LEFT", 0)));
    EXPECT_EQ(snapshot.key(left.spaces[0], "LEFT"), "primary:LEFT");
    EXPECT_EQ(left.spaces[1].uuid.size(), 36u);
    EXPECT_EQ(snapshot.userSpaces("RIGHT").size(), 3u);
    EXPECT_EQ(snapshot.displays[1].spaces[1].fullscreenOwner->name, "Player");
    EXPECT_EQ(provider.menuBarDisplay(), DisplayID{"RIGHT"});
    provider.resolvesFullscreenOwners = false;
    EXPECT_EQ(provider.snapshot().displays[1].spaces[1].fullscreenOwner, std::nullopt);

    EXPECT_EQ(provider.cursorDisplay(), DisplayID{"LEFT"});
    at.mac.pointer().moveTo({-5, -5});
    EXPECT_EQ(provider.cursorDisplay(), std::nullopt);
    EXPECT_EQ(provider.displayName("right"), "Desk");
    EXPECT_EQ(provider.displayName("gone"), std::nullopt);
    WindowServerCalls calls = at.mac.calls();
    calls.copyActiveMenuBarDisplayIdentifier = [](auto) { return ""; };
    PrivateAPI nameless(calls);
    EXPECT_EQ(LiveSpaceProvider(at.loop, nameless, *at.seams.screens).menuBarDisplay(), std::nullopt);
}

TEST(LiveSpaceProvider, AnswersMainUnderASharedArrangement) {
    testing::SimulatedSession shared({.separateSpaces = false}), separate;
    bool isShared = true;
    WindowServerCalls calls = separate.mac.calls();
    calls.copyManagedDisplaySpaces = [&](auto own) {
        return (isShared ? shared : separate).mac.calls().copyManagedDisplaySpaces(own);
    };
    PrivateAPI server(calls);
    LiveSpaceProvider provider(separate.loop, server, *separate.seams.screens);
    EXPECT_EQ(provider.menuBarDisplay(), DisplayID{"LEFT"}) << "nothing has been read yet";
    EXPECT_EQ(provider.snapshot().displays.front().name, "All Displays");
    EXPECT_EQ(provider.menuBarDisplay(), DisplayID{"Main"});
    EXPECT_EQ(provider.cursorDisplay(), DisplayID{"Main"});
    EXPECT_EQ(provider.displayName("Main"), "All Displays");
    isShared = false;
    provider.snapshot();
    EXPECT_EQ(provider.cursorDisplay(), DisplayID{"LEFT"});
}

} // namespace
} // namespace lumnara
