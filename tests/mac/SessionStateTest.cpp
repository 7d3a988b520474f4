#include "core/platform/mac/engines/SessionState.h"

#include "core/platform/mac/server/MacSession.h"
#include "core/switching/SwitchError.h"
#include "tests/simruns/SimulatedSession.h"

#include <gtest/gtest.h>

namespace lumnara {
namespace {

using Case = SwitchError::Case;

struct ToldSession : MacSession {
    std::optional<PropertyDictionary> currentDictionary() override { return dictionary; }
    std::optional<PropertyDictionary> dictionary;
};

TEST(MacSession, OnlyATrueFlagLocksAndOnlyAFalseOneLeavesTheConsole) {
    ToldSession session;
    const auto told = [&] { return std::pair(session.isScreenLocked(), session.isOnConsole()); };
    const auto with = [&](PropertyValue value) {
        session.dictionary =
            PropertyDictionary{{"CGSSessionScreenIsLocked", value}, {"kCGSSessionOnConsoleKey", value}};
        return told();
    };
    EXPECT_EQ(told(), std::pair(false, true)) << "no dictionary";
    session.dictionary.emplace();
    EXPECT_EQ(told(), std::pair(false, true)) << "no key";
    EXPECT_EQ(with(true), std::pair(true, true));
    EXPECT_EQ(with(false), std::pair(false, false));
    for (const PropertyValue& doubtful : {PropertyValue(1), PropertyValue(0), PropertyValue("true"),
                                          PropertyValue(), PropertyValue(PropertyArray())})
        EXPECT_EQ(with(doubtful), std::pair(false, true));
}

TEST(SessionState, TellsMissionControlByTheDocksWindowsOnTheScreen) {
    struct Look {
        std::vector<std::pair<const char*, int>> windows;
        bool missionControl, overlay;
    };
    const char* dock = "Dock";
    for (const Look& look : std::vector<Look>{{{}, false, false},
                                              {{{dock, 18}}, false, true},
                                              {{{dock, 20}}, false, true},
                                              {{{dock, 20}, {dock, 20}}, false, true},
                                              {{{dock, 18}, {dock, 20}}, false, true},
                                              {{{dock, 18}, {dock, 20}, {dock, 20}}, true, true},
                                              {{{"Docks", 18}, {dock, 20}, {dock, 20}}, false, true},
                                              {{{dock, 19}, {"Finder", 18}, {"Finder", 20}}, false, false}}) {
        testing::SimulatedSession session;
        for (const auto& [owner, layer] : look.windows)
            session.mac.windows().add(
                {.ownerName = owner, .layer = layer, .isOrderedIn = true, .isOnEverySpace = true});
        session.mac.windows().add({.ownerName = "Dock", .layer = 20, .isOnEverySpace = true}); // not shown
        WindowServer& server = *session.seams.windowServer;
        EXPECT_EQ(SessionState::isMissionControlVisible(server), look.missionControl);
        EXPECT_EQ(SessionState::dockOverlayVisible(server), look.overlay);
    }
    testing::SimulatedSession blind(
        {}, [](SimulatedMac& mac) { mac.removeSymbol("CGWindowListCopyWindowInfo"); });
    EXPECT_FALSE(SessionState::dockOverlayVisible(*blind.seams.windowServer));
}

TEST(SessionState, NamesTheFirstReasonThatHolds) {
    testing::SimulatedSession session;
    const auto reason = [&] {
        return SessionState::blockingReason(*session.seams.session, *session.seams.windowServer);
    };
    EXPECT_EQ(reason(), std::nullopt);
    session.mac.missionControl().toggle();
    session.loop.advance(1);
    EXPECT_EQ(reason(), SwitchError(Case::missionControlActive));
    session.mac.isOnConsole = false;
    EXPECT_EQ(reason(), SwitchError(Case::sessionNotOnConsole));
    session.mac.isLocked = true;
    EXPECT_EQ(reason(), SwitchError(Case::screenLocked));
}

} // namespace
} // namespace lumnara
