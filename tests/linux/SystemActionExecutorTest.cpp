#include "core/platform/linux/SystemActionExecutor.h"
#include "core/async/PollLoop.h"
#include "core/async/Task.h"
#include "core/async/TestLoop.h"
#include "core/automation/AutomationRunner.h"
#include "core/platform/linux/Spawn.h"
#include "tests/linux/Fifo.h"
#include "tests/support/RecordingNotifications.h"
#include "tests/support/TemporaryFolder.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <sys/wait.h>
#include <unistd.h>

namespace lumnara {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

class ScriptedWorkspace : public Workspace {
public:
    std::vector<RunningApplication> running;
    std::vector<std::int32_t> activated;

    async::Subscription observe(std::function<void(WorkspaceEvent)>) override { return {}; }
    std::vector<RunningApplication> runningApplications() override { return running; }
    void activate(std::int32_t pid, ActivationOptions) override { activated.push_back(pid); }
};

async::Task<> runInto(AutomationRunner& runner, Automation automation, std::optional<Lines>& failures) {
    const AutomationRunReport report = co_await runner.run(std::move(automation));
    failures = report.failures;
}

/// A home with a bin folder of scripts and desktop files of its own. `told_` is what the scripts report to.
template <class Loop> class ExecutorTest : public ::testing::Test {
protected:
    ExecutorTest() {
        fs::create_directories(folder_.path() / "bin");
        fs::create_directories(folder_.path() / "data/applications");
    }
    void putProgram(const std::string& name, const std::string& script) {
        const fs::path path = folder_.path() / "bin" / name;
        std::ofstream(path) << "#!/bin/sh\n" << script << "\n";
        fs::permissions(path, fs::perms::owner_all);
    }
    /// A program that reports its name and arguments.
    void putReporter(const std::string& name, const std::string& then = "") {
        putProgram(name, "echo " + name + " \"$@\" >" + told_.path() + "\n" + then);
    }
    void putApp(const std::string& id, const std::string& keys) {
        std::ofstream(folder_.path() / "data/applications" / (id + ".desktop"))
            << "[Desktop Entry]\nType=Application\nName=App\n"
            << keys;
    }
    void start(AutomationAction action) {
        failures_.reset();
        task_ = async::spawn(
            loop_,
            runInto(*runner_, {.id = "A", .spaceKey = "k", .name = "N", .icon = "", .actions = {action}},
                    failures_));
    }

    testing::TemporaryFolder folder_;
    testing::Fifo told_{folder_ / "told"};
    Loop loop_;
    ScriptedWorkspace workspace_;
    testing::RecordingNotifications notifications_;
    const Environment environment_{{{"HOME", folder_.path()},
                                    {"XDG_DATA_HOME", folder_ / "data"},
                                    {"XDG_DATA_DIRS", folder_ / "none"},
                                    {"PATH", (folder_ / "bin").string()}}};
    std::unique_ptr<SystemActionExecutor> executor_ = std::make_unique<SystemActionExecutor>(
        loop_, environment_, &workspace_, &notifications_, folder_.path());
    AutomationStore store_{loop_, folder_ / "automations.json"};
    std::unique_ptr<AutomationRunner> runner_ = std::make_unique<AutomationRunner>(store_, *executor_);
    std::optional<Lines> failures_;
    async::TaskHandle task_;
};

class SystemActionExecutorTest : public ExecutorTest<async::PollLoop> {
protected:
    /// Runs the action; "" or what it failed with, without the label.
    std::string outcomeOf(AutomationAction action) {
        start(action);
        if (!loop_.runUntil([&] { return failures_.has_value(); }, 20)) return "never ended";
        if (failures_->empty()) return "";
        return failures_->front().substr(labelOf(action).size() + 2);
    }
};

TEST_F(SystemActionExecutorTest, AnAppIsStartedInASessionOfItsOwnAndOutlivesTheProgram) {
    putReporter("player", "exec /bin/sleep 1000");
    putApp("player", "Exec=player %U --mode \"a b\"\nPath=" + folder_.path().string() + "\n");
    EXPECT_EQ(outcomeOf(OpenAppAction{"player", {}}), "");
    EXPECT_EQ(told_.line(), "player --mode a b");
    const std::int32_t pid = executor_->lastProcessID().value();
    EXPECT_EQ(::getsid(pid), pid);
    std::error_code error;
    EXPECT_EQ(fs::read_symlink("/proc/" + std::to_string(pid) + "/cwd", error),
              fs::canonical(folder_.path()));
    runner_.reset();
    executor_.reset();
    EXPECT_EQ(::kill(pid, 0), 0);
    ::kill(pid, SIGKILL);
    ::waitpid(pid, nullptr, 0);
}

TEST_F(SystemActionExecutorTest, AnAppThatRunsComesToTheFront) {
    putReporter("notes");
    putApp("org.gnome.Notes", "Exec=notes\nStartupWMClass=Bijiben\n");
    workspace_.running = {{{.pid = 11, .bundleID = "other", .name = "Other"}},
                          {{.pid = 12, .bundleID = {}, .name = "bijiben"}}};
    EXPECT_EQ(outcomeOf(OpenAppAction{"com.apple.Notes", "Notes"}), "");
    EXPECT_EQ(workspace_.activated, (std::vector<std::int32_t>{12}));
    EXPECT_FALSE(executor_->lastProcessID());
    workspace_.running.clear();
    EXPECT_EQ(outcomeOf(OpenAppAction{"com.apple.Notes", "Notes"}), "");
    EXPECT_EQ(told_.line(), "notes");
}

TEST_F(SystemActionExecutorTest, AnAppThatCannotBeStartedSaysWhy) {
    putApp("broken", "Exec=app %z\n");
    putApp("gone", "Exec=vanished --now\n");
    putApp("console", "Exec=console\nTerminal=true\n");
    putProgram("noformat", "");
    std::ofstream(folder_.path() / "bin/noformat") << "no program";
    putApp("noformat", "Exec=noformat\n");
    EXPECT_EQ(outcomeOf(OpenAppAction{"us.zoom.xos", "Zoom"}), "Open app failed: Zoom is not installed");
    EXPECT_EQ(outcomeOf(OpenAppAction{"a.b", {}}), "Open app failed: a.b is not installed");
    EXPECT_EQ(outcomeOf(OpenAppAction{"broken", "B"}), "Open app failed: B has no command that can be run");
    EXPECT_EQ(outcomeOf(OpenAppAction{"gone", {}}), "Open app failed: vanished is not installed");
    EXPECT_EQ(outcomeOf(OpenAppAction{"noformat", {}}), "Open app failed: Exec format error");
    EXPECT_EQ(outcomeOf(OpenAppAction{"console", {}}),
              "Open app failed: console needs a terminal, and none is installed");
    putReporter("xterm");
    EXPECT_EQ(outcomeOf(OpenAppAction{"console", {}}), "");
    EXPECT_EQ(told_.line(), "xterm -e console");
}

TEST_F(SystemActionExecutorTest, PathsAndAddressesGoToTheDesktopsOpener) {
    const std::string file = folder_ / "plan b.pdf";
    EXPECT_EQ(outcomeOf(OpenPathAction{file}), "Open failed: " + file + " does not exist");
    EXPECT_EQ(outcomeOf(OpenURLAction{"example.org"}), "Open URL failed: not a URL");
    std::ofstream(file).flush();
    EXPECT_EQ(outcomeOf(OpenPathAction{file}), "Open failed: neither xdg-open nor gio is installed");
    putReporter("gio");
    EXPECT_EQ(outcomeOf(OpenPathAction{"~/plan b.pdf"}), "");
    EXPECT_EQ(told_.line(), "gio open " + file);
    putReporter("xdg-open", "exit 3");
    EXPECT_EQ(outcomeOf(OpenURLAction{"https://example.org/?a=b&c"}),
              "Open URL failed: xdg-open found nothing that opens it (exit 3)");
    EXPECT_EQ(told_.line(), "xdg-open https://example.org/?a=b&c");
    EXPECT_EQ(outcomeOf(OpenPathAction{"~"}), "Open failed: xdg-open found nothing that opens it (exit 3)");
    EXPECT_EQ(told_.line(), "xdg-open " + folder_.path().string());
}

TEST_F(SystemActionExecutorTest, ScriptsRunInALoginShellAndTheRestSaysThatItIsNotHere) {
    EXPECT_EQ(outcomeOf(RunShellAction{"exit 3"}), "Shell script failed: exit 3");
    EXPECT_TRUE(executor_->lastProcessID());
    EXPECT_EQ(outcomeOf(RunShellAction{"case $0 in *sh) exit 0;; esac; exit 1"}), "");
    EXPECT_EQ(outcomeOf(AppleScriptAction{"beep"}),
              "AppleScript failed: AppleScript is not available on this system.");
    EXPECT_EQ(outcomeOf(RunShortcutAction{"Set Focus"}),
              "Shortcut failed: Shortcuts are not available on this system.");
}

TEST_F(SystemActionExecutorTest, SessionsAndPomodorosArePassedOn) {
    Lines sessions;
    EXPECT_EQ(outcomeOf(SessionAction{SessionOp::start, "F"}), "") << "nobody has to listen";
    executor_->onSession = [&](SessionOp op, const std::optional<std::string>& name) {
        sessions.push_back(std::string(textOf(op)) + " " + name.value_or("-"));
    };
    EXPECT_EQ(outcomeOf(SessionAction{SessionOp::start, "F"}), "");
    EXPECT_EQ(outcomeOf(SessionAction{SessionOp::stop, {}}), "");
    EXPECT_EQ(sessions, (Lines{"start F", "stop -"}));
    EXPECT_EQ(outcomeOf(PomodoroAction{25, 5}), "");
    EXPECT_TRUE(fs::exists(folder_ / "pomodoro.json"));
    executor_ = std::make_unique<SystemActionExecutor>(loop_, environment_, nullptr, nullptr, folder_.path());
    runner_ = std::make_unique<AutomationRunner>(store_, *executor_);
    EXPECT_EQ(outcomeOf(PomodoroAction{25, 5}),
              "Pomodoro failed: Notifications are not available on this system.");
}

/// The clock moves by hand, the children are real.
class ActionTimeLimitTest : public ExecutorTest<async::TestLoop> {};

TEST_F(ActionTimeLimitTest, AScriptThatTakesTooLongAndIgnoresTermIsKilled) {
    start(RunShellAction{"trap '' TERM; echo ready >" + told_.path() + "; exec sleep 1000"});
    loop_.runUntilIdle();
    EXPECT_EQ(told_.line(), "ready");
    const OwnedFd child = openProcess(executor_->lastProcessID().value());
    loop_.advance(30.5);
    EXPECT_FALSE(failures_) << "the child has its second";
    loop_.advance(0.6);
    ASSERT_TRUE(testing::awaitReadable(child.get()));
    loop_.runUntilIdle();
    EXPECT_EQ(failures_, (Lines{"Run a shell script: Run a shell script took too long."}));
}

TEST_F(ActionTimeLimitTest, AnOpenerThatBecomesTheApplicationIsNotWaitedForNorKilled) {
    putReporter("xdg-open", "exec /bin/sleep 1000");
    start(OpenURLAction{"https://example.org"});
    loop_.runUntilIdle();
    told_.line();
    loop_.advance(1.9);
    EXPECT_FALSE(failures_);
    loop_.advance(0.2);
    EXPECT_EQ(failures_, Lines{});
    loop_.advance(60);
    const std::int32_t pid = executor_->lastProcessID().value();
    const OwnedFd opener = openProcess(pid);
    EXPECT_EQ(::kill(pid, 0), 0);
    ::kill(pid, SIGKILL);
    ASSERT_TRUE(testing::awaitReadable(opener.get()));
    loop_.runUntilIdle();
    EXPECT_NE(::kill(pid, 0), 0) << "was not reaped";
}

} // namespace
} // namespace lumnara
