#include "core/automation/AutomationEditor.h"
#include "core/async/TestLoop.h"
#include "tests/support/RecordingExecutor.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <limits>
#include <memory>

namespace lumnara {
namespace {

using Lines = std::vector<std::string>;

class AutomationEditorTest : public ::testing::Test {
protected:
    Lines labels(const std::string& id) {
        Lines result;
        for (const AutomationAction& action : store_.find(id)->actions) result.push_back(labelOf(action));
        return result;
    }
    std::string sentenceOfAdding(const std::string& id, AutomationAction action) {
        try {
            editor_->addAction(id, std::move(action));
        } catch (const AutomationEditError& error) {
            return error.sentence();
        }
        return {};
    }

    testing::TemporaryFolder folder_;
    async::TestLoop loop_;
    AutomationStore store_{loop_, folder_ / "automations.json"};
    testing::RecordingExecutor executor_;
    AutomationRunner runner_{store_, executor_};
    std::unique_ptr<AutomationEditor> editor_ = std::make_unique<AutomationEditor>(loop_, store_, runner_);
};

TEST_F(AutomationEditorTest, BadInputIsRefusedWithASentenceAndChangesNothing) {
    const std::string id = editor_->addEmpty("k");
    const Automation before = *store_.find(id);
    EXPECT_THROW(editor_->rename(id, " \n"), AutomationEditError);
    const std::vector<std::pair<AutomationAction, std::string>> refused = {
        {OpenAppAction{" ", "x"}, "Choose the app to open."},
        {OpenPathAction{"x/y"}, "Enter the whole path of a file or folder, beginning with / or ~."},
        {OpenURLAction{"example.org"}, "Enter a whole address, such as https://example.org."},
        {OpenURLAction{"http:"}, "Enter a whole address, such as https://example.org."},
        {OpenURLAction{"http://a b"}, "Enter a whole address, such as https://example.org."},
        {OpenURLAction{"-x:y"}, "Enter a whole address, such as https://example.org."},
        {RunShortcutAction{"\t"}, "Enter the name of the shortcut to run."},
        {RunShellAction{"\n"}, "Enter the shell script to run."},
        {AppleScriptAction{""}, "Enter the AppleScript to run."},
        {PomodoroAction{0, 5}, "A pomodoro lasts from 1 to 1440 minutes."},
        {PomodoroAction{25, -1}, "A break lasts from 0 to 1440 minutes."},
        {WaitAction{30.5}, "A wait lasts from 0 to 30 seconds; a longer one would be cut off."},
        {WaitAction{std::numeric_limits<double>::quiet_NaN()},
         "A wait lasts from 0 to 30 seconds; a longer one would be cut off."}};
    for (const auto& [action, sentence] : refused) EXPECT_EQ(sentenceOfAdding(id, action), sentence);
    EXPECT_EQ(*store_.find(id), before);

    EXPECT_EQ(sentenceOfAdding(id, OpenAppAction{" a.b ", "  "}), "");
    EXPECT_EQ(store_.find(id)->actions.back(), AutomationAction(OpenAppAction{"a.b", {}}));
    EXPECT_EQ(sentenceOfAdding(id, OpenURLAction{"https://例え.jp/ü?q=1"}), "");
    for (std::size_t i = 0; i < ActionRules::kinds().size(); ++i)
        EXPECT_EQ(ActionRules::kinds()[i].blank.index(), i);
}

TEST_F(AutomationEditorTest, ActionsMoveAndRemovalsComeBackInTheirPlaces) {
    editor_->addPreset("other", 2);
    const std::string id = editor_->addPreset("k", 0);
    editor_->addPreset("k", 1);
    editor_->rename(id, "  Deep work ");
    for (const double seconds : {1.0, 2.0, 3.0}) editor_->addAction(id, WaitAction{seconds});
    editor_->removeAction(id, 0);
    editor_->removeAction(id, 0);
    editor_->moveAction(id, 0, 2);
    EXPECT_EQ(labels(id), (Lines{"Wait 2s", "Wait 3s", "Wait 1s"}));
    editor_->moveAction(id, 2, 0);
    editor_->moveAction(id, 1, 99);
    editor_->moveAction(id, 99, 0);
    editor_->replaceAction(id, 0, WaitAction{4});
    EXPECT_EQ(labels(id), (Lines{"Wait 4s", "Wait 3s", "Wait 2s"}));

    editor_->remove(id);
    EXPECT_FALSE(editor_->undoTitle("other"));
    EXPECT_EQ(editor_->undoTitle("k"), "“Deep work”");
    editor_->undoRemoval("k");
    EXPECT_EQ(store_.file().automations[1].id, id);
    EXPECT_EQ(editor_->undoTitle("k"), "“start session” of “Deep work”");
    editor_->undoRemoval("k");
    editor_->undoRemoval("k");
    EXPECT_EQ(labels(id),
              (Lines{"Run Shortcut “Set Focus”", "start session", "Wait 4s", "Wait 3s", "Wait 2s"}));
    EXPECT_FALSE(editor_->undoTitle("k"));

    AutomationStore onDisk(loop_, store_.url());
    onDisk.load();
    EXPECT_EQ(onDisk.file(), store_.file());

    // What is gone altogether can't get an action back.
    editor_->removeAction(id, 0);
    store_.removeAll("k");
    EXPECT_FALSE(editor_->undoTitle("k"));
    editor_->undoRemoval("k");
    editor_->setEnabled(id, false);
    EXPECT_TRUE(editor_->automations("k").empty());
}

TEST_F(AutomationEditorTest, ARunReportsItselfAndCanBeCancelled) {
    const std::string id = editor_->addEmpty("k");
    editor_->addAction(id, RunShellAction{"fail"});
    editor_->addAction(id, RunShellAction{"hang"});
    std::vector<std::optional<AutomationRunReport>> told;
    const auto subscription = editor_->runChanged.subscribe(
        [&](const std::string&, const std::optional<AutomationRunReport>& report) {
            told.push_back(report);
        });

    editor_->runNow(id);
    EXPECT_TRUE(editor_->isRunning(id));
    loop_.advance(1);
    editor_->cancelRun(id);
    EXPECT_FALSE(editor_->isRunning(id));
    loop_.advance(60);
    EXPECT_EQ(executor_.calls, (Lines{"fail", "hang", "hang cancelled"}));
    EXPECT_EQ(told.size(), 2u) << "began and was cancelled";

    editor_->runNow(id);
    loop_.advance(31);
    EXPECT_FALSE(editor_->isRunning(id));
    ASSERT_TRUE(told.back());
    EXPECT_EQ(told.back()->succeeded, 0);
    EXPECT_EQ(told.back()->failures.size(), 2u);

    for (const double moment : {0.0, 1.0}) { // the editor goes with a run under way
        editor_->runNow(id);
        if (moment > 0) loop_.advance(moment);
        editor_ = std::make_unique<AutomationEditor>(loop_, store_, runner_);
        loop_.advance(1);
        EXPECT_FALSE(loop_.hasRoots());
    }
}

} // namespace
} // namespace lumnara
