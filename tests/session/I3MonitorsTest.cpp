#include "tests/session/IpcFixture.h"

#include <algorithm>
#include <set>

namespace lumnara::testing {
namespace {

class I3Test : public ::testing::Test {
protected:
    IpcFixture at{IpcWindowManager::i3};

    std::size_t displays() {
        try {
            return at.provider().snapshot().displays.size();
        } catch (const WindowManagerError&) {
            return 0;
        }
    }
    bool hasDisplays(std::size_t count) {
        return at.runUntil([&] { return displays() == count; });
    }
};

TEST_F(I3Test, KeepsTheDesktopsOfAMonitorThatIsUnplugged) {
    const std::string one = at.current("L");
    const std::string two = at.current("R");
    at.command("focus output R; workspace web");
    ASSERT_TRUE(at.shows("R", "web* "));
    const std::string web = at.current("R");
    at.publish({{one, "Mail"}, {two, "Code"}, {web, "Browser"}});
    ASSERT_TRUE(at.shows("R", "Browser* "));
    at.command("workspace 5");
    ASSERT_TRUE(at.shows("R", "5* "));
    const std::string five = at.current("R");
    at.x().openWindow("editor");
    at.command("focus output L");
    at.events.clear();

    at.x().unplug("R");
    ASSERT_TRUE(hasDisplays(1));
    EXPECT_TRUE(at.runUntil([&] {
        return std::ranges::find(at.events, WorkspaceEvent::screenParametersDidChange) != at.events.end();
    }));
    at.publish({{one, "Mail"}});
    const DisplaySpaces alone = at.desktops("L");
    ASSERT_EQ(alone.spaces.size(), 2U) << "what had a window moved over";
    EXPECT_EQ(alone.spaces[1].uuid, five);
    EXPECT_EQ(at.switchTo(web), "That desktop no longer exists.");

    at.x().plug("R");
    ASSERT_TRUE(hasDisplays(2));
    std::set<std::string> back;
    for (const Space& space : at.desktops("R").spaces) back.insert(space.uuid);
    EXPECT_TRUE(back.contains(two) && back.contains(web)) << at.workspaces("R");
    EXPECT_EQ(at.desktops("L").spaces[1].uuid, five);
    for (const auto& [uuid, shown] : {std::pair(web, "Browser* "), std::pair(two, "2: Code* ")}) {
        const bool isShown = at.current("R") == uuid;
        EXPECT_TRUE(isShown || !at.switchTo(uuid));
        EXPECT_TRUE(at.shows("R", shown));
    }
}

TEST_F(I3Test, IsReadAtEveryMomentOfPlugging) {
    // A reading comes whole, or fails with a failure of its own, in whatever state the monitors are.
    for (int round = 0; round < 6; ++round) {
        if (round % 2 == 0)
            at.x().unplug("R");
        else
            at.x().plug("R");
        const std::size_t expected = round % 2 == 0 ? 1 : 2;
        ASSERT_TRUE(at.runUntil([&] {
            const auto snapshot = at.provider().snapshot();
            EXPECT_FALSE(snapshot.displays.empty());
            return snapshot.displays.size() == expected;
        }));
        EXPECT_EQ(at.current("L").empty(), false);
    }
}

TEST_F(I3Test, RestartsInPlace) {
    const std::string one = at.current("L");
    at.command("focus output R; workspace web");
    ASSERT_TRUE(at.shows("R", "web* "));
    const std::string web = at.current("R");
    at.publish({{one, "Mail"}, {web, "Browser"}});
    ASSERT_TRUE(at.shows("L", "1: Mail* ") && at.shows("R", "Browser* "));
    for (int round = 0; round < 2; ++round) {
        at.events.clear();
        at.command("restart");
        ASSERT_TRUE(at.runUntil([&] { return !at.events.empty(); }));
        ASSERT_TRUE(at.answers());
        EXPECT_EQ(at.current("L"), one);
        EXPECT_EQ(at.current("R"), web);
        at.publish({{one, "Mail"}, {web, "Browser"}});
        at.command("focus output R; workspace other");
        ASSERT_TRUE(at.shows("R", "other* "));
        EXPECT_EQ(at.switchTo(web), std::nullopt);
        EXPECT_TRUE(at.shows("L", "1: Mail* ") && at.shows("R", "Browser* "));
    }
}

TEST_F(I3Test, ShowsAFullScreenWindowOnAnOrdinaryDesktop) {
    const auto before = at.desktops("L");
    at.command("focus output L");
    at.x().openWindow("film");
    at.command("fullscreen enable");
    const auto after = at.desktops("L");
    EXPECT_EQ(after, before);
    EXPECT_EQ(after.spaces[0].kind, SpaceKind::user);
}

} // namespace
} // namespace lumnara::testing
