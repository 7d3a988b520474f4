#include "tests/session/ArrangerSession.h"
#include "tests/session/ObstinateWindowManager.h"

namespace lumnara::testing {
namespace {

/// What is peculiar to window managers to which a desktop is an index.
class EwmhArrangerTest : public ::testing::TestWithParam<WindowManager> {
protected:
    ArrangerSession at{GetParam(), 4};
};

INSTANTIATE_TEST_SUITE_P(Ewmh, EwmhArrangerTest,
                         ::testing::Values(WindowManager::openbox, WindowManager::xfwm4),
                         [](const auto& info) {
                             return std::string(info.param == WindowManager::openbox ? "openbox" : "xfwm4");
                         });

TEST_P(EwmhArrangerTest, LeavesWindowsOnAllDesktopsThere) {
    const std::string window = std::to_string(at.windows.at("c"));
    at.x().run({"xdotool", "set_desktop_for_window", window, "-1"});
    ASSERT_TRUE(at.waitFor([&] { return at.homes() == "a b everywhere d "; })) << at.homes();
    EXPECT_TRUE(at.reorder(at.ids({"d", "c", "b", "a"})).matchesDesired);
    EXPECT_EQ(at.homes(), "a b everywhere d ");
    EXPECT_EQ(at.remove(at.ids({"c", "a"})).removedIDs.size(), 2U);
    EXPECT_EQ(at.homes(), "b b everywhere d ");
}

TEST_P(EwmhArrangerTest, GivesARemovedDesktopNeverBack) {
    const std::string gone = at.shown().spaces[1].uuid;
    EXPECT_EQ(at.remove(at.ids({"b"})).removedIDs.size(), 1U);
    EXPECT_EQ(at.create().size(), 1U);
    EXPECT_NE(at.shown().spaces.back().uuid, gone);
    EXPECT_EQ(at.order(), "a* c d ? ");

    at.x().run({"wmctrl", "-n", "2"});
    ASSERT_TRUE(at.waitFor([&] { return at.order() == "a* c "; }));
    EXPECT_EQ(at.create().size(), 1U);
    EXPECT_EQ(at.order(), "a* c ? ") << "the new one is not what another program took away";
}

TEST_P(EwmhArrangerTest, StandsWindowsThatGoMeanwhile) {
    at.arranger().onProgress = [&](const std::string&) {
        at.x().closeWindow(at.windows.at("d"));
        at.windows["new"] = at.x().openWindow("new");
    };
    EXPECT_TRUE(at.reorder(at.ids({"d", "c", "b", "a"})).matchesDesired) << at.failure;
    EXPECT_EQ(at.homes(), "a b c  a ");
}

class ObstinateTest : public ::testing::Test {
protected:
    ObstinateTest() {
        for (std::uint32_t desktop = 0; desktop < 3; ++desktop)
            windows.push_back(windowManager.addWindow(desktop));
        before = at.desktops().spaces;
        uuids = at.uuids();
    }
    std::string homes() {
        std::string text;
        for (const xcb_window_t window : windows)
            text += std::to_string(windowManager.desktopOf(window)) + " ";
        return text;
    }
    std::vector<SpaceID> ids(const std::vector<std::size_t>& places) {
        std::vector<SpaceID> found;
        for (const std::size_t place : places) found.push_back(before.at(place).id);
        return found;
    }
    Arranged<ReorderOutcome> reorder(const std::vector<std::size_t>& places) {
        auto result = arranged(at.loop, at.platform.arranger->reorder({"Main"}, ids(places)));
        at.settle();
        return result;
    }
    Arranged<RemoveOutcome> remove(const std::vector<std::size_t>& places) {
        auto result = arranged(at.loop, at.platform.arranger->remove(ids(places), {"Main"}));
        at.settle();
        return result;
    }

    EwmhFixture at{WindowManager::none};
    ObstinateWindowManager windowManager{at.loop, at.session.display(), 3};
    std::vector<xcb_window_t> windows;
    std::vector<Space> before;
    std::vector<std::string> uuids;
};

TEST_F(ObstinateTest, ObeysAtFirst) {
    EXPECT_TRUE(reorder({2, 0, 1}).value.matchesDesired);
    EXPECT_EQ(homes(), "1 2 0 ");
    EXPECT_EQ(at.current(), 1U);
    EXPECT_EQ(remove({0}).value.removedIDs.size(), 1U);
    EXPECT_EQ(homes(), "0 1 0 ");
    EXPECT_EQ(at.uuids(), (std::vector{uuids[2], uuids[1]}));
}

TEST_F(ObstinateTest, MayRefuseToMoveWindowsOrToShowAnotherDesktop) {
    for (const std::string refused : {"_NET_WM_DESKTOP", "_NET_CURRENT_DESKTOP"}) {
        windowManager.refuses = {refused};
        const ReorderOutcome outcome = reorder({2, 0, 1}).value;
        EXPECT_EQ(outcome.stoppedBecause, "obstinate did not move desktop 3 to position 1.");
        EXPECT_EQ(outcome.performed, 0);
        EXPECT_FALSE(outcome.matchesDesired);
        EXPECT_EQ(homes(), "0 1 2 ") << refused;
        EXPECT_EQ(at.uuids(), uuids) << refused;
        EXPECT_EQ(at.current(), 0U);
    }
    windowManager.refuses = {"_NET_WM_DESKTOP"};
    EXPECT_EQ(remove({1}).value, (RemoveOutcome{{}, "obstinate did not remove the desktop."}));
    EXPECT_EQ(homes(), "0 1 2 ");
    EXPECT_EQ(at.uuids(), uuids);
}

TEST_F(ObstinateTest, MayRefuseAnotherNumberOfDesktops) {
    windowManager.refuses = {"_NET_NUMBER_OF_DESKTOPS"};
    EXPECT_TRUE(arranged(at.loop, at.platform.arranger->create({"Main"})).value.empty());
    EXPECT_EQ(remove({0, 1}).value, (RemoveOutcome{{}, "obstinate did not remove the desktop."}));
    EXPECT_EQ(at.uuids(), uuids);
    EXPECT_EQ(homes(), "1 1 2 ") << "the windows have gone to the neighbour already";
    EXPECT_TRUE(reorder({2, 1, 0}).value.matchesDesired);
    EXPECT_EQ(homes(), "1 1 0 ");
}

TEST_F(ObstinateTest, ShowsNobodyAStateInBetween) {
    std::set<std::vector<std::string>> seen;
    std::set<std::string> shown;
    windowManager.onMessage = [&](const std::string&) {
        const DisplaySpaces now = at.desktops();
        seen.insert(at.uuids());
        for (const Space& space : now.spaces)
            if (space.id == now.currentID) shown.insert(space.uuid);
    };
    EXPECT_TRUE(reorder({2, 0, 1}).value.matchesDesired);
    EXPECT_EQ(seen, std::set{uuids});
    EXPECT_EQ(shown, std::set{uuids[0]});
    EXPECT_EQ(at.uuids(), (std::vector{uuids[2], uuids[0], uuids[1]}));
}

} // namespace
} // namespace lumnara::testing
