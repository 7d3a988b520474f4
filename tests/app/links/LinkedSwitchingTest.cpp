#include "core/async/Task.h"
#include "tests/app/ScriptedSession.h"

#include "core/switching/SwitchError.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <utility>

namespace lumnara::testing {
namespace {

using Case = SwitchError::Case;

class LinkedSwitchingTest : public ::testing::Test {
protected:
    LinkedSwitchingTest() {
        session.start();
        session.catalog().rename("A-2", "Mail");
        session.logged.clear();
        settled_ = linked().settled.subscribe([this](const Desktop& asked, const auto& entries) {
            settlements.emplace_back(asked.display.uuid, entries);
        });
    }

    LinkedSwitching& linked() { return session.state().linkedSwitching(); }
    std::vector<Desktop> pair() { return {session.desktop("A-2"), session.desktop("B-2")}; }

    /// The result, or the sentence of the failure.
    std::string run(std::vector<Desktop> members) {
        std::string outcome;
        const auto handle = async::spawn(session.loop, finish(std::move(members), outcome));
        while (outcome.empty()) session.loop.advance(0.001);
        session.tell();
        return outcome;
    }
    /// The lines since the last call, without what they all begin with.
    Texts logged() {
        const std::string start = "Lumnara linked switch";
        Texts lines;
        for (const std::string& line : std::exchange(session.logged, {}))
            if (line.starts_with(start)) lines.push_back(line.substr(start.size()));
        return lines;
    }

    ScriptedSession session{twoDisplays()};
    std::vector<std::pair<std::string, std::vector<SwitchSettle::Entry>>> settlements;

private:
    async::Task<> finish(std::vector<Desktop> members, std::string& outcome) {
        try {
            const SwitchResult result = co_await linked().run(members);
            outcome = result.landed ? "landed" : "not landed";
        } catch (const Failure& failure) {
            outcome = failure.sentence();
        }
    }

    async::Subscription settled_;
};

TEST_F(LinkedSwitchingTest, MovesThePointersMemberFirstAndLeavesTheKeyboardThere) {
    session.provider->cursor = DisplayID{"b"};
    EXPECT_EQ(run(pair()), "landed");
    EXPECT_EQ(session.activator->asked, (std::vector{SpaceID{12}, SpaceID{2}}));
    EXPECT_EQ(session.activator->focused, (Texts{"B", "B"}));
    EXPECT_TRUE(session.notices.empty());
    EXPECT_EQ(logged(), (Texts{": Monitor B: Desktop 1 -> Desktop 2 via windowManager, 1 attempt(s), 1 ms",
                               ": Monitor A: Desktop 1 -> Mail via windowManager, 1 attempt(s), 1 ms",
                               ": 2 displays, 0 already there, 0 failed, 2 ms"}));

    session.loop.advance(0.9);
    EXPECT_TRUE(settlements.empty());
    session.loop.advance(0.2);
    ASSERT_EQ(settlements.size(), 1u);
    EXPECT_EQ(settlements[0].first, "B");
    EXPECT_TRUE(SwitchSettle::unsettled(settlements[0].second).empty());
    session.loop.advance(2);
    EXPECT_EQ(settlements.size(), 1u) << "the second look is for the log alone";
    session.state().switchTo(session.desktop("A-1"));
    session.loop.advance(1);
    EXPECT_EQ(session.activator->focused, (Texts{"B", "B", "A"})) << "an ordinary switch goes where it goes";
    EXPECT_EQ(logged(), (Texts{" settle +1s: Monitor B on Desktop 2; Monitor A on Mail; frontmost none",
                               " settle +3s: Monitor B on Desktop 2; Monitor A on Mail; frontmost none"}));
}

TEST_F(LinkedSwitchingTest, CountsWhoIsThereAlready) {
    session.userShows(2);
    session.provider->cursor = DisplayID{"A"};
    EXPECT_EQ(run(pair()), "landed");
    EXPECT_EQ(session.activator->asked, (std::vector{SpaceID{12}}));
    EXPECT_EQ(logged()[0], ": Monitor A: already on Mail");
    session.loop.advance(1);
    ASSERT_EQ(settlements.size(), 1u);
    EXPECT_EQ(settlements[0].second.size(), 2u);

    EXPECT_EQ(run(pair()), SwitchError(Case::alreadyThere).sentence());
    EXPECT_EQ(logged().back(), ": 2 displays, 2 already there, 0 failed, 0 ms");
    session.loop.advance(5);
    EXPECT_EQ(settlements.size(), 1u) << "nothing moved";
    EXPECT_EQ(run({}), SwitchError(Case::targetNotInSnapshot).sentence());
}

TEST_F(LinkedSwitchingTest, OneStubbornDisplayStopsNoOther) {
    session.activator->stubborn = "A";
    EXPECT_EQ(run(pair()), "landed");
    EXPECT_EQ(session.desktop("B-2").isCurrent, true);
    EXPECT_EQ(session.notices,
              (std::vector{Notice{"Monitor A did not follow: i3 refused a command: A is stuck.", 2.2}}));
    const Texts lines = logged();
    EXPECT_EQ(std::ranges::count(lines, ": Monitor A did not follow: i3 refused a command: A is stuck."), 1);
    session.loop.advance(1);
    EXPECT_EQ(settlements.back().second.size(), 1u) << "only where it landed";

    session.activator->stubborn = "";
    session.activator->failure =
        std::make_exception_ptr(WindowManagerError(WindowManagerError::Case::refused, "i3", "no"));
    session.userShows(11);
    EXPECT_EQ(run(pair()), "i3 refused a command: no.");
    EXPECT_EQ(session.notices.size(), 2u);

    session.activator->failure = nullptr;
    std::vector<Desktop> members = pair();
    session.provider->current.displays.pop_back();
    EXPECT_EQ(run(members), "landed") << "a monitor was unplugged before";
    EXPECT_EQ(session.notices.back().text, "Monitor B did not follow: That desktop no longer exists.");
}

TEST_F(LinkedSwitchingTest, AMonitorUnpluggedBetweenTheMembersStopsNothing) {
    const std::vector<Desktop> members = pair();
    session.activator->onShown = [&] {
        session.activator->onShown = nullptr;
        session.provider->current.displays.pop_back();
        session.screens->list.pop_back();
        session.tell(WorkspaceEvent::screenParametersDidChange);
    };
    EXPECT_EQ(run(members), "landed");
    EXPECT_EQ(session.notices,
              (std::vector{Notice{"Monitor B did not follow: That desktop no longer exists.", 2.2}}));
    session.loop.advance(4);
    ASSERT_EQ(settlements.size(), 1u);
    EXPECT_EQ(settlements[0].second,
              (std::vector{SwitchSettle::Entry{DisplayID{"A"}, SpaceID{2}, SpaceID{2}}}));
}

TEST_F(LinkedSwitchingTest, SeesADisplayThatSnapsBack) {
    EXPECT_EQ(run(pair()), "landed");
    session.loop.advance(0.5);
    session.userShows(11);
    session.workspace->frontmost = RunningApp{7, std::nullopt, "Editor"};
    session.loop.advance(0.6);
    ASSERT_EQ(settlements.size(), 1u);
    EXPECT_EQ(SwitchSettle::unsettled(settlements[0].second),
              (std::vector{SwitchSettle::Entry{DisplayID{"B"}, SpaceID{12}, SpaceID{11}}}));
    EXPECT_EQ(logged().back(),
              " settle +1s: Monitor A on Mail; Monitor B LEFT for an unnamed Space; frontmost Editor");
}

TEST_F(LinkedSwitchingTest, OnlyTheLatestIsMeasured) {
    EXPECT_EQ(run(pair()), "landed");
    session.loop.advance(0.5);
    EXPECT_EQ(run({session.desktop("A-3"), session.desktop("B-1")}), "landed");
    logged();
    session.loop.advance(10);
    EXPECT_EQ(settlements.size(), 1u);
    EXPECT_EQ(logged().size(), 2u);

    // The next one moves nothing, and makes the measurement of the one before meaningless all the same.
    EXPECT_EQ(run(pair()), "landed");
    EXPECT_EQ(run(pair()), SwitchError(Case::alreadyThere).sentence());
    session.loop.advance(10);
    EXPECT_EQ(settlements.size(), 1u);
}

} // namespace
} // namespace lumnara::testing
