#include "core/switching/SwitchError.h"
#include "tests/session/EwmhFixture.h"

#include <algorithm>

namespace lumnara::testing {
namespace {

using Case = WindowManagerError::Case;

class DesktopsTest : public ::testing::TestWithParam<WindowManager> {
protected:
    EwmhFixture at{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Ewmh, DesktopsTest, ::testing::Values(WindowManager::openbox, WindowManager::xfwm4),
                         [](const auto& info) {
                             return std::string(info.param == WindowManager::openbox ? "openbox" : "xfwm4");
                         });

TEST_P(DesktopsTest, AreReadAndSwitched) {
    const auto before = at.desktops();
    EXPECT_EQ(before.display.uuid, "Main");
    EXPECT_EQ(before.spaces.size(), 4U);
    EXPECT_EQ(at.uuids(), at.uuids());
    for (const std::size_t target : {2U, 0U, 3U}) {
        EXPECT_EQ(at.activate(target), "");
        EXPECT_EQ(at.current(), target);
        EXPECT_EQ(at.session.rootProperty("_NET_CURRENT_DESKTOP"), std::to_string(target));
        EXPECT_EQ(at.platform.spaceProvider->currentSpace({"Main"}), at.desktops().spaces[target].id);
    }
    EXPECT_EQ(at.platform.spaceProvider->currentSpace({"L"}), std::nullopt);
}

TEST_P(DesktopsTest, ASwitchThatChangesNothingOrHasNoTargetDoesNotWait) {
    const auto before = at.desktops().spaces;
    at.runTool({"wmctrl", "-n", "3"});
    ASSERT_TRUE(at.runUntil([&] { return at.uuids().size() == 3; }));
    const auto start = at.loop.now();
    EXPECT_EQ(at.activate(before[0]), "");
    EXPECT_EQ(at.activate(before[3]), SwitchError(SwitchError::Case::targetNotInSnapshot).sentence());
    EXPECT_LT(at.loop.now() - start, std::chrono::milliseconds(250));
}

TEST_P(DesktopsTest, TellWhenAnotherProgramChangesThem) {
    at.settle();
    at.events.clear();
    at.runTool({"wmctrl", "-s", "1"});
    EXPECT_TRUE(at.runUntil([&] { return !at.events.empty(); }));
    EXPECT_EQ(at.events, std::vector{WorkspaceEvent::activeSpaceDidChange});
    EXPECT_EQ(at.current(), 1U);
}

TEST_P(DesktopsTest, KeepTheirIdentityWhenTheCountChanges) {
    const auto four = at.uuids();
    at.activate(3);
    at.runTool({"wmctrl", "-n", "2"});
    // Between the two announcements the current desktop lies beyond the last one.
    ASSERT_TRUE(at.runUntil([&] { return at.uuids().size() == 2; }));
    EXPECT_TRUE(std::equal(four.begin(), four.begin() + 2, at.uuids().begin()));
    EXPECT_LT(at.current(), 2U);
    at.runTool({"wmctrl", "-n", "5"});
    ASSERT_TRUE(at.runUntil([&] { return at.uuids().size() == 5; }));
    const auto five = at.uuids();
    EXPECT_TRUE(std::equal(four.begin(), four.end(), five.begin()));
    EXPECT_EQ(std::count(four.begin(), four.end(), five[4]), 0);
}

TEST_P(DesktopsTest, ShowTheUsersNamesAndThenTheirOwn) {
    const auto before = at.shownNames();
    at.publish({"Mail", "", "Büro"});
    EXPECT_TRUE(at.runUntil([&] { return at.shownNames().find("Büro") != std::string::npos; }));
    EXPECT_NE(at.session.run({"wmctrl", "-d"}).text.find("Mail"), std::string::npos);
    at.publish({"Post", "", ""});
    EXPECT_TRUE(at.runUntil([&] { return at.shownNames().starts_with("Post,"); })) << at.shownNames();
    EXPECT_EQ(at.shownNames().find("Büro"), std::string::npos);
    at.publish({});
    EXPECT_TRUE(at.runUntil([&] { return at.shownNames() == before; })) << at.shownNames();
}

TEST_P(DesktopsTest, OutliveTheirWindowManager) {
    const auto four = at.uuids();
    at.publish({"Mail"});
    for (const int signal : {SIGTERM, SIGKILL}) {
        at.settle();
        at.events.clear();
        at.session.killWindowManager(signal);
        EXPECT_TRUE(at.runUntil([&] { return !at.events.empty(); }));
        ASSERT_FALSE(at.answers());
        EXPECT_EQ(at.failure()->which(), Case::connectionLost);
        EXPECT_EQ(at.platform.spaceProvider->currentSpace({"Main"}), std::nullopt);
        at.events.clear();
        at.session.startWindowManager();
        EXPECT_TRUE(at.runUntil([&] { return !at.events.empty() && at.answers(); }));
        EXPECT_EQ(at.uuids(), four);
        EXPECT_EQ(at.activate(1), "");
        EXPECT_EQ(at.current(), 1U);
        EXPECT_TRUE(at.runUntil([&] { return at.shownNames().starts_with("Mail"); })) << at.shownNames();
    }
}

TEST_P(DesktopsTest, OutliveAWindowManagerThatNobodyMissed) {
    const auto four = at.uuids();
    at.session.killWindowManager();
    at.session.startWindowManager();
    at.settle();
    EXPECT_EQ(at.uuids(), four);
    at.events.clear();
    at.session.killWindowManager();
    EXPECT_TRUE(at.runUntil([&] { return !at.events.empty(); }));
    EXPECT_FALSE(at.answers());
}

TEST_P(DesktopsTest, OutliveAReplacementByAnotherWindowManager) {
    const auto four = at.uuids();
    at.publish({"Mail"});
    const auto other = GetParam() == WindowManager::openbox ? WindowManager::xfwm4 : WindowManager::openbox;
    at.session.startWindowManager(other);
    EXPECT_TRUE(at.runUntil([&] { return at.answers() && at.uuids() == four; }));
    EXPECT_TRUE(at.runUntil([&] { return at.shownNames().starts_with("Mail"); })) << at.shownNames();
    EXPECT_EQ(at.activate(2), "");
    EXPECT_EQ(at.current(), 2U);
}

TEST_P(DesktopsTest, AHangingWindowManagerCostsOnePatience) {
    at.session.stopWindowManager();
    const auto start = at.loop.now();
    EXPECT_EQ(at.activate(2), "");
    const auto waited = async::secondsOf(at.loop.now() - start);
    EXPECT_GE(waited, 0.25);
    EXPECT_LT(waited, 1.0);
    EXPECT_EQ(at.current(), 0U);
    at.session.continueWindowManager();
    EXPECT_TRUE(at.runUntil([&] { return at.current() == 2; }));
}

TEST_P(DesktopsTest, StandPropertiesThatAnotherProgramSpoilt) {
    const auto four = at.uuids();
    const auto set = [&](const char* property, const char* format, const char* value) {
        at.runTool({"xprop", "-root", "-f", property, format, "-set", property, value});
    };
    set("_NET_CURRENT_DESKTOP", "32c", "99");
    EXPECT_EQ(at.current(), 3U);
    at.runTool({"xprop", "-root", "-remove", "_NET_CURRENT_DESKTOP"});
    EXPECT_EQ(at.current(), 0U);
    at.runTool({"xprop", "-root", "-remove", "_LUMNARA_DESKTOP_UUIDS"});
    EXPECT_EQ(at.uuids(), four);
    set("_LUMNARA_DESKTOP_UUIDS", "32c", "7");
    EXPECT_EQ(at.uuids(), four);
    set("_LUMNARA_DESKTOP_UUIDS", "8u", "one");
    EXPECT_EQ(at.uuids().at(0), "one");
    EXPECT_EQ(at.uuids(), at.uuids());
    set("_NET_NUMBER_OF_DESKTOPS", "32c", "4000000000");
    EXPECT_EQ(at.uuids().size(), 1000U);
    set("_NET_NUMBER_OF_DESKTOPS", "32c", "0");
    EXPECT_EQ(at.failure()->which(), Case::connectionLost);
}

TEST_P(DesktopsTest, AreNeverReadFromWhatWasKnownBefore) {
    auto& server = *at.platform.spaceProvider;
    const auto before = at.desktops();
    EXPECT_EQ(server.currentSpace({"Main"}), before.currentID);
    // The loop doesn't run meanwhile, so no event has been delivered.
    at.runTool(
        {"xprop", "-root", "-f", "_LUMNARA_DESKTOP_UUIDS", "8u", "-set", "_LUMNARA_DESKTOP_UUIDS", "x"});
    const auto quick = server.currentSpace({"Main"});
    EXPECT_NE(quick, before.currentID);
    EXPECT_EQ(quick, at.desktops().currentID);
    at.runTool({"wmctrl", "-s", "1"});
    EXPECT_TRUE(waitUntil([&] { return server.currentSpace({"Main"}) == at.desktops().spaces[1].id; }));
    at.session.killWindowManager();
    EXPECT_TRUE(waitUntil([&] { return server.currentSpace({"Main"}) == std::nullopt; }));
}

TEST_P(DesktopsTest, GiveWayToAProgramThatInsistsOnItsNames) {
    at.publish({"Mail"});
    for (int i = 0; i < 8; ++i) {
        at.runTool(
            {"xprop", "-root", "-f", "_NET_DESKTOP_NAMES", "8u", "-set", "_NET_DESKTOP_NAMES", "theirs"});
        at.settle();
        if (i == 0) {
            EXPECT_TRUE(at.shownNames().starts_with("Mail")) << at.shownNames();
        }
    }
    EXPECT_TRUE(at.shownNames().starts_with("theirs")) << at.shownNames();
    at.publish({"Post"});
    EXPECT_TRUE(at.runUntil([&] { return at.shownNames().starts_with("Post"); }));
}

TEST_P(DesktopsTest, AreKnownAgainOnANewServer) {
    at.publish({"Mail", "Web"});
    at.settle();
    const auto uuids = at.uuids();

    EwmhFixture next{GetParam()};
    const auto own = next.shownNames();
    std::filesystem::copy_file(at.folder / "ewmh-desktops.json", next.folder / "ewmh-desktops.json");
    next.platform = ewmhPlatform(next.x11->connection(), next.folder.path());
    EXPECT_EQ(next.uuids(), uuids);
    next.publish({"Mail", "Web"});
    EXPECT_TRUE(next.runUntil([&] { return next.shownNames().starts_with("Mail,Web"); }));
    next.publish({});
    EXPECT_TRUE(next.runUntil([&] { return next.shownNames() == own; })) << next.shownNames();
}

} // namespace
} // namespace lumnara::testing
