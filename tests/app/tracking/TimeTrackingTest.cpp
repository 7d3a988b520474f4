#include "core/seams/IdleSource.h"
#include "core/seams/SessionProbe.h"
#include "tests/app/ScriptedSession.h"

#include "core/base/Files.h"

#include <fstream>
#include <gtest/gtest.h>

namespace lumnara::testing {
namespace {

/// Says what the test says of the login session.
class ScriptedProbe : public SessionProbe {
public:
    bool isScreenLocked() override { return isLocked; }
    bool isOnConsole() override { return true; }
    bool isLocked = false;
};

class ScriptedIdle : public IdleSource {
public:
    std::optional<double> secondsSinceInput() override { return seconds; }
    double seconds = 0;
};

class TimeTrackingTest : public ::testing::Test {
protected:
    TimeTrackingTest() {
        auto ownProbe = std::make_unique<ScriptedProbe>();
        auto ownIdle = std::make_unique<ScriptedIdle>();
        probe = ownProbe.get();
        idle = ownIdle.get();
        session.platform.sessionProbe = std::move(ownProbe);
        session.platform.idleSource = std::move(ownIdle);
    }

    /// "<desktop> <app> <seconds>[ idle]", oldest first; "open" for one that is open.
    Texts recorded() {
        Texts lines;
        const Date now = session.loop.date();
        for (const Interval& interval :
             session.state().tracking().store()->intervals({0}, now.plusSeconds(1)))
            lines.push_back(interval.spaceName + " " + interval.appName.value_or("-") + " " +
                            (interval.endedAt ? std::to_string(static_cast<int>(
                                                    interval.endedAt->secondsSince(interval.startedAt)))
                                              : "open") +
                            (interval.isIdle ? " idle" : ""));
        return lines;
    }

    ScriptedSession session{twoDisplays()};
    ScriptedProbe* probe = nullptr;
    ScriptedIdle* idle = nullptr;
};

TEST_F(TimeTrackingTest, FollowsTheUserFromDesktopToDesktop) {
    session.workspace->frontmost = RunningApp{7, "org.example.editor", "Editor"};
    session.start();
    session.loop.advance(10);
    session.userShows(2);
    session.loop.advance(20);
    idle->seconds = 300; // seen at the next look, 5 seconds later
    session.loop.advance(10);
    idle->seconds = 0;
    session.loop.advance(15);
    probe->isLocked = true;
    session.tell();
    session.loop.advance(100);
    probe->isLocked = false;
    session.tell();
    session.loop.advance(30);
    session.settings.trackTime.set(false);
    session.loop.advance(50);
    session.userShows(1);
    session.settings.trackTime.set(true);
    session.loop.advance(40);
    session.state().stop();
    EXPECT_EQ(recorded(), (Texts{"Desktop 1 Editor 10", "Desktop 2 Editor 25", "Desktop 2 Editor 10 idle",
                                 "Desktop 2 Editor 10", "Desktop 2 Editor 30", "Desktop 1 Editor 40"}));
}

TEST_F(TimeTrackingTest, LosesNoMoreThanAHeartbeatInACrash) {
    session.start();
    session.loop.advance(150);
    // The next program on the same file, while this one is as good as dead.
    const TimeTracking next(session.loop, session.settings, session.platform, session.folder.path());
    EXPECT_EQ(recorded(), Texts{"Desktop 1 - 120"});
}

TEST_F(TimeTrackingTest, RunsOnWithoutADatabaseAndTellsItOnce) {
    const auto file = session.folder.path() / "tracking.sqlite";
    std::ofstream(file)
        << "These are no tables, though the text is long enough to be a header of a database.\n";
    session.start();
    ASSERT_EQ(session.notices.size(), 1u);
    EXPECT_TRUE(session.notices[0].text.starts_with("Time is not recorded. ")) << session.notices[0].text;
    EXPECT_TRUE(session.logged.front().starts_with("Tracking unavailable: ")) << session.logged.front();
    session.userShows(2);
    session.loop.advance(200);
    session.state().tracking().carryOut(SessionOp::start, "Client");
    session.state().stop();
    EXPECT_EQ(session.notices.size(), 1u);
    std::ifstream kept(file);
    std::string line;
    std::getline(kept, line);
    EXPECT_TRUE(line.starts_with("These are no tables"));
}

TEST_F(TimeTrackingTest, EnteringADesktopRunsItsAutomations) {
    session.start();
    AutomationStore& automations = session.state().automations();
    automations.upsert({"1",
                        "A-2",
                        "Focus",
                        "moon.fill",
                        AutomationTrigger::onEnter,
                        true,
                        {RunShellAction{"start"}, SessionAction{SessionOp::start, "Focus"}}});
    automations.upsert(
        {"2", "A-2", "Leave", "moon.fill", AutomationTrigger::onExit, true, {RunShellAction{"fail"}}});
    session.tell();
    session.loop.advance(1);
    EXPECT_EQ(session.executor.calls, Texts());
    session.userShows(2);
    session.loop.advance(1);
    EXPECT_EQ(session.executor.calls, (Texts{"start", "session start Focus"}));
    ASSERT_EQ(session.state().tracking().store()->sessions().size(), 1u);
    EXPECT_EQ(session.state().tracking().store()->sessions()[0].name, "Focus");
    EXPECT_TRUE(session.notices.empty());
    session.userShows(1);
    session.loop.advance(1);
    EXPECT_EQ(session.notices.at(0), (Notice{"Leave: Run a shell script: Shell script failed: exit 3", 2.2}));
}

TEST_F(TimeTrackingTest, LinkedDesktopsTriggerOnce) {
    session.settings.displayLinkMode.set(DisplayLinkMode::linked);
    session.start();
    session.catalog().rename("A-2", "Mail");
    ASSERT_TRUE(session.catalog().link("A-2", "B-2"));
    const std::string key = session.desktop("A-2").key;
    session.state().automations().upsert(
        {"1", key, "Focus", "moon.fill", AutomationTrigger::onEnter, true, {RunShellAction{"start"}}});
    session.tell();
    session.loop.advance(1);
    session.userShows(2);
    session.userShows(12);
    session.loop.advance(1);
    EXPECT_EQ(session.executor.calls, Texts{"start"});
}

} // namespace
} // namespace lumnara::testing
