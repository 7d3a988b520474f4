#include "core/platform/mac/engines/SessionState.h"

#include "tests/support/ScriptedSeams.h"

#include <tuple>

namespace lumnara {
namespace {

using Case = SwitchError::Case;

class SessionStateTest : public ::testing::Test {
protected:
    void setWindows(std::vector<std::pair<const char*, int>> windows) {
        server.list.emplace();
        for (const auto& [owner, layer] : windows)
            server.list->push_back({{"kCGWindowOwnerName", owner}, {"kCGWindowLayer", layer}});
    }
    bool missionControl() { return SessionState::isMissionControlVisible(server); }

    testing::ScriptedSession session;
    testing::ScriptedWindowServer server;
};

TEST_F(SessionStateTest, OnlyATrueFlagLocksAndOnlyAFalseOneLeavesTheConsole) {
    const auto with = [&](PropertyValue value) {
        session.dictionary =
            PropertyDictionary{{"CGSSessionScreenIsLocked", value}, {"kCGSSessionOnConsoleKey", value}};
        return std::pair(session.isScreenLocked(), session.isOnConsole());
    };
    EXPECT_EQ(with(true), std::pair(true, true));
    EXPECT_EQ(with(false), std::pair(false, false));
    for (const PropertyValue& doubtful : {PropertyValue(1), PropertyValue(0), PropertyValue("true"),
                                          PropertyValue(), PropertyValue(PropertyArray())})
        EXPECT_EQ(with(doubtful), std::pair(false, true));
    for (const auto& dictionary :
         {std::optional<PropertyDictionary>(), std::optional(PropertyDictionary())}) {
        session.dictionary = dictionary;
        EXPECT_FALSE(session.isScreenLocked());
        EXPECT_TRUE(session.isOnConsole());
    }
}

TEST_F(SessionStateTest, MissionControlShowsFewerWindowsOfOneLayerThanOfTheOther) {
    EXPECT_FALSE(missionControl()) << "no list";
    setWindows({});
    EXPECT_FALSE(missionControl());
    setWindows({{"Dock", 18}});
    EXPECT_FALSE(missionControl()) << "that layer alone is not enough";
    setWindows({{"Dock", 18}, {"Dock", 20}});
    EXPECT_FALSE(missionControl());
    setWindows({{"Dock", 18}, {"Dock", 20}, {"Dock", 20}});
    EXPECT_TRUE(missionControl());
    setWindows({{"Docks", 18}, {"Dock", 20}, {"Dock", 20}});
    EXPECT_FALSE(missionControl());
    setWindows({{"Dock", 20}, {"Dock", 20}});
    EXPECT_FALSE(missionControl());
}

TEST_F(SessionStateTest, TheLooserProbeTakesAnyOfTheDocksOverlays) {
    EXPECT_FALSE(SessionState::dockOverlayVisible(server));
    for (const auto& [owner, layer, visible] : std::vector<std::tuple<const char*, int, bool>>{
             {"Dock", 18, true}, {"Dock", 20, true}, {"Dock", 19, false}, {"Finder", 18, false}}) {
        setWindows({{owner, layer}});
        EXPECT_EQ(SessionState::dockOverlayVisible(server), visible) << owner << layer;
    }
}

TEST_F(SessionStateTest, NamesTheFirstReasonThatHolds) {
    const auto reason = [&] { return SessionState::blockingReason(session, server); };
    EXPECT_EQ(reason(), std::nullopt);
    setWindows({{"Dock", 18}, {"Dock", 20}, {"Dock", 20}});
    EXPECT_EQ(reason(), SwitchError(Case::missionControlActive));
    session.dictionary = PropertyDictionary{{"kCGSSessionOnConsoleKey", false}};
    EXPECT_EQ(reason(), SwitchError(Case::sessionNotOnConsole));
    session.dictionary->set("CGSSessionScreenIsLocked", true);
    EXPECT_EQ(reason(), SwitchError(Case::screenLocked));
}

} // namespace
} // namespace lumnara
