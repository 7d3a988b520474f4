#include "core/automation/AutomationRunner.h"
#include "core/async/Task.h"
#include "core/async/TestLoop.h"
#include "tests/support/RecordingExecutor.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <optional>

namespace lumnara {
namespace {

using Lines = std::vector<std::string>;

class AutomationRunnerTest : public ::testing::Test {
protected:
    AutomationRunnerTest() {
        runner_.onReport = [this](const AutomationRunReport& report) { reports_.push_back(report); };
    }
    static async::Task<> runInto(AutomationRunner& runner, Automation automation,
                                 std::optional<AutomationRunReport>& result) {
        const AutomationRunReport report = co_await runner.run(automation);
        result = report;
    }
    async::TaskHandle start(std::vector<AutomationAction> actions) {
        return async::spawn(loop_, runInto(runner_,
                                           {.id = "A",
                                            .spaceKey = "k",
                                            .name = "Name",
                                            .icon = "",
                                            .isEnabled = false,
                                            .actions = std::move(actions)},
                                           result_));
    }

    testing::TemporaryFolder folder_;
    async::TestLoop loop_;
    AutomationStore store_{loop_, folder_ / "automations.json"};
    testing::RecordingExecutor executor_;
    AutomationRunner runner_{store_, executor_};
    std::vector<AutomationRunReport> reports_;
    std::optional<AutomationRunReport> result_;
};

TEST_F(AutomationRunnerTest, EachActionCallsItsRequirementInOrderAndAnEmptyListSucceeds) {
    auto run = start({});
    loop_.runUntilIdle();
    EXPECT_EQ(result_, (AutomationRunReport{"Name", 0, {}}));
    run = start({OpenAppAction{"a.b", {}}, OpenPathAction{"/x"}, OpenURLAction{"u:v"}, RunShellAction{"ls"},
                 AppleScriptAction{"beep"}, PomodoroAction{25, 5}, SessionAction{SessionOp::start, "F"}});
    loop_.runUntilIdle();
    EXPECT_EQ(executor_.calls, (Lines{"app a.b -", "path /x", "url u:v", "ls", "apple beep", "pomodoro 25/5",
                                      "session start F"}));
    EXPECT_EQ(result_, (AutomationRunReport{"Name", 7, {}}));
    EXPECT_EQ(reports_.size(), 2u);
    EXPECT_EQ(reports_.back(), result_);
}

TEST_F(AutomationRunnerTest, AFailedActionDoesNotStopTheList) {
    const auto run = start({RunShellAction{"a"}, RunShellAction{"fail"}, RunShellAction{"b"}});
    loop_.runUntilIdle();
    EXPECT_EQ(result_, (AutomationRunReport{"Name", 2, {"Run a shell script: Shell script failed: exit 3"}}));
    EXPECT_EQ(executor_.calls, (Lines{"a", "fail", "b"}));
}

TEST_F(AutomationRunnerTest, AnActionThatTakesTooLongIsCancelledBeforeTheNextBegins) {
    const auto run = start({RunShortcutAction{"S"}, WaitAction{29.5}, WaitAction{31}, RunShellAction{"b"}});
    loop_.advance(29.9);
    EXPECT_EQ(executor_.calls, (Lines{"shortcut S"}));
    loop_.advance(0.2);
    EXPECT_EQ(executor_.calls, (Lines{"shortcut S", "S cancelled"}));
    loop_.advance(59.3);
    EXPECT_FALSE(result_);
    loop_.advance(0.2);
    const std::string label = "Run Shortcut “S”";
    EXPECT_EQ(
        result_,
        (AutomationRunReport{
            "Name", 2, {label + ": " + label + " took too long.", "Wait 31s: Wait 31s took too long."}}));
    EXPECT_EQ(loop_.timerCount(), 0u);
}

TEST_F(AutomationRunnerTest, CancellingEndsTheActionUnderWayAndBeginsNoOther) {
    auto run = start({RunShellAction{"fail"}, RunShellAction{"hang"}, SessionAction{SessionOp::stop, {}}});
    loop_.advance(1);
    run.cancel();
    loop_.runUntilIdle();
    EXPECT_EQ(executor_.calls, (Lines{"fail", "hang", "hang cancelled"}));
    EXPECT_FALSE(result_);
    ASSERT_EQ(reports_.size(), 1u);
    EXPECT_EQ(reports_[0].failures.size(), 1u) << "a cancelled action is no failure";
    EXPECT_FALSE(loop_.hasRoots());

    executor_.calls.clear();
    run = start({RunShellAction{"a"}});
    run.cancel(); // before its first turn
    loop_.runUntilIdle();
    EXPECT_TRUE(executor_.calls.empty());
}

TEST_F(AutomationRunnerTest, RunAllTakesTheEnabledOnesOfDesktopAndTrigger) {
    const auto add = [&](std::string script, std::string key, AutomationTrigger trigger, bool isEnabled) {
        store_.upsert({.id = script,
                       .spaceKey = std::move(key),
                       .name = script,
                       .icon = "",
                       .trigger = trigger,
                       .isEnabled = isEnabled,
                       .actions = {RunShellAction{script}}});
    };
    add("1", "k", AutomationTrigger::onEnter, true);
    add("2", "k", AutomationTrigger::onExit, true);
    add("3", "k", AutomationTrigger::onEnter, false);
    add("4", "other", AutomationTrigger::onEnter, true);
    add("5", "k", AutomationTrigger::onEnter, true);
    executor_.durations["1"] = 10;
    const auto run = async::spawn(loop_, runner_.runAll("k", AutomationTrigger::onEnter));
    loop_.advance(9);
    EXPECT_EQ(executor_.calls, (Lines{"1"})) << "one after the other";
    loop_.advance(2);
    EXPECT_EQ(executor_.calls, (Lines{"1", "5"}));
}

} // namespace
} // namespace lumnara
