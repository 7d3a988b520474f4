#include "core/platform/linux/ProcessRunner.h"
#include "core/async/PollLoop.h"
#include "core/async/Task.h"
#include "core/async/TestLoop.h"
#include "core/platform/linux/Spawn.h"
#include "tests/linux/Fifo.h"
#include "tests/support/TemporaryFolder.h"

#include <csignal>
#include <gtest/gtest.h>
#include <optional>
#include <sys/resource.h>
#include <sys/wait.h>

namespace lumnara {
namespace {

/// A run as a test sees it.
struct ShellRun {
    std::int32_t pid = 0;
    OwnedFd process;     ///< opened at the start: a child may be reaped before the test looks
    std::string outcome; ///< "done", "cancelled" or the reason of its failure; empty until it ends
};

async::Task<> runShellInto(ProcessRunner& runner, std::string script, ShellRun& run) {
    try {
        co_await runner.run({"/bin/sh", "-c", std::move(script)}, [&run](std::int32_t pid) {
            run.pid = pid;
            run.process = openProcess(pid);
        });
        run.outcome = "done";
    } catch (const ProcessError& error) {
        run.outcome = error.sentence();
    } catch (const async::Cancelled&) {
        run.outcome = "cancelled";
    }
}

bool isGone(std::int32_t pid) { return ::kill(pid, 0) != 0; }

/// Real children under a clock that moves by hand.
class ProcessRunnerTest : public ::testing::Test {
protected:
    void start(std::string script) {
        task_ = async::spawn(loop_, runShellInto(*runner_, std::move(script), run_));
        loop_.runUntilIdle();
    }
    /// Waits for the end of a process, and lets the loop take note of it.
    void awaitEndOf(const OwnedFd& process) {
        ASSERT_TRUE(testing::awaitReadable(process.get()));
        loop_.runUntilIdle();
    }

    testing::TemporaryFolder folder_;
    testing::Fifo told_{folder_ / "told"};
    testing::Fifo asked_{folder_ / "asked"};
    async::TestLoop loop_;
    std::unique_ptr<ProcessRunner> runner_ = std::make_unique<ProcessRunner>(loop_);
    ShellRun run_;
    async::TaskHandle task_;
};

TEST(ProcessRunnerRealTimeTest, AChildFailsWithWhatItSaysOrHowItEnds) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"exit 0", "done"},
        {"echo fine >&2", "done"},
        {"exit 3", "exit 3"},
        {"kill -9 $$", "stopped (signal 9)"},
        {"kill -15 $$", "stopped (signal 15)"},
        {"echo out; echo; echo ' no such desktop' >&2; exit 1", "no such desktop"},
        {"echo out; exit 4", "exit 4"},
        {"printf '\\377!' >&2; exit 1", "\uFFFD!"},
        {"read x && exit 8; exit 9", "exit 9"}, // nothing to read
        {"read -r pid name state parent group rest </proc/$$/stat; test $group = $$ || exit 1", "done"},
    };
    async::PollLoop loop;
    ProcessRunner runner(loop);
    for (const auto& [script, expected] : cases) {
        ShellRun run;
        const auto task = async::spawn(loop, runShellInto(runner, script, run));
        ASSERT_TRUE(loop.runUntil([&] { return !run.outcome.empty(); }, 20)) << script;
        EXPECT_EQ(run.outcome, expected) << script;
        EXPECT_TRUE(isGone(run.pid)) << "was not reaped";
    }
}

TEST(ProcessRunnerRealTimeTest, OutputIsBoundedInMemory) {
    async::PollLoop loop;
    ProcessRunner runner(loop);
    rusage before{};
    ::getrusage(RUSAGE_SELF, &before);
    ShellRun run;
    const std::string flood = "head -c 104857600 /dev/zero | tr '\\0' ";
    const auto task =
        async::spawn(loop, runShellInto(runner, flood + "o; (" + flood + "e; echo last) >&2; exit 7", run));
    ASSERT_TRUE(loop.runUntil([&] { return !run.outcome.empty(); }, 120));
    rusage after{};
    ::getrusage(RUSAGE_SELF, &after);
    EXPECT_LE(run.outcome.size(), ProcessRunner::keptOutput);
    EXPECT_TRUE(run.outcome.ends_with("eelast"));
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 16 * 1024) << "KiB";
}

TEST_F(ProcessRunnerTest, NoDescriptorOfOursReachesAChild) {
    const OwnedFd leaky(::dup(STDIN_FILENO)); // not close-on-exec
    start("test -e /proc/$$/fd/" + std::to_string(leaky.get()) + " && echo leak >" + told_.path() +
          " || echo tight >" + told_.path());
    EXPECT_EQ(told_.line(), "tight");
    awaitEndOf(run_.process);
}

TEST_F(ProcessRunnerTest, AJobThatHoldsThePipeDelaysTheEndByHalfASecondAndIsNotKilledByIt) {
    // The job outlives the script, and writes once it is told to.
    start("{ read x <" + asked_.path() + "; echo late; echo late >&2; echo alive >" + told_.path() +
          "; } & echo ready >" + told_.path());
    EXPECT_EQ(told_.line(), "ready");
    awaitEndOf(run_.process);
    loop_.advance(0.49);
    EXPECT_EQ(run_.outcome, "");
    loop_.advance(0.02);
    EXPECT_EQ(run_.outcome, "done");
    asked_.write("go");
    EXPECT_EQ(told_.line(), "alive");
}

TEST_F(ProcessRunnerTest, AChildThatIgnoresTermIsKilledASecondLater) {
    start("trap '' TERM; echo ready >" + told_.path() + "; exec sleep 1000");
    EXPECT_EQ(told_.line(), "ready");
    task_.cancel();
    loop_.advance(0.99);
    EXPECT_EQ(run_.outcome, "") << "the child is awaited";
    EXPECT_FALSE(isGone(run_.pid));
    loop_.advance(0.02);
    awaitEndOf(run_.process);
    EXPECT_EQ(run_.outcome, "cancelled");
    EXPECT_TRUE(isGone(run_.pid));
    EXPECT_EQ(loop_.timerCount(), 0u);
}

TEST_F(ProcessRunnerTest, TheWholeGroupEndsWithAChildThatIsCancelled) {
    start("sh -c 'trap \"\" TERM; echo $$ >" + told_.path() + "; exec sleep 1000' & wait");
    const std::int32_t stubborn = std::stoi(told_.line());
    const OwnedFd member = openProcess(stubborn);
    task_.cancel();
    awaitEndOf(run_.process);
    loop_.advance(0.99);
    EXPECT_EQ(run_.outcome, "cancelled") << "its leader has ended, and the pipes had their time";
    EXPECT_FALSE(isGone(stubborn));
    loop_.advance(0.02);
    EXPECT_TRUE(testing::awaitReadable(member.get()));
    loop_.runUntilIdle();
    EXPECT_TRUE(isGone(run_.pid)) << "is reaped once its group is gone";
}

TEST_F(ProcessRunnerTest, CancelledBeforeItsStartItStartsNothing) {
    task_ = async::spawn(loop_, runShellInto(*runner_, "echo ran >" + told_.path(), run_));
    task_.cancel();
    loop_.runUntilIdle();
    EXPECT_EQ(run_.pid, 0);
    EXPECT_EQ(run_.outcome, "cancelled");
}

TEST_F(ProcessRunnerTest, AChildUnderWayIsToldToEndWhenTheRunnerGoes) {
    start("echo ready >" + told_.path() + "; exec sleep 1000");
    EXPECT_EQ(told_.line(), "ready");
    runner_.reset();
    EXPECT_TRUE(testing::awaitReadable(run_.process.get()));
    siginfo_t info{};
    EXPECT_EQ(::waitid(P_PIDFD, static_cast<id_t>(run_.process.get()), &info, WEXITED), 0);
    EXPECT_EQ(info.si_status, SIGTERM);
}

} // namespace
} // namespace lumnara
