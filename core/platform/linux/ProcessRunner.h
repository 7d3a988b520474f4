#pragma once

#include "core/async/Loop.h"
#include "core/async/TaskFwd.h"
#include "core/base/Failure.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace lumnara {

/// A child didn't do what it was to do; the sentence is the reason alone.
class ProcessError : public FailureOf<ProcessError, std::string, int> {
public:
    enum class Case { notStarted, complained, exited, stopped };
    static constexpr Sentence<Case> sentences[] = {
        {Case::notStarted, "{0}"}, // the system's words
        {Case::complained, "{0}"}, // the child's, on standard error
        {Case::exited, "exit {1}"},
        {Case::stopped, "stopped (signal {1})"},
    };
    ProcessError(Case which, std::string words, int code = 0)
        : FailureOf(which, std::move(words), std::move(code)) {}
};

/// Runs child processes to their end, each in a process group of its own, with nothing to read. Main thread,
/// without blocking it; it outlives its tasks and is outlived by the loop.
class ProcessRunner {
public:
    static constexpr double killDelay = 1.0;   ///< seconds from SIGTERM to SIGKILL, which go to the group
    static constexpr double readersWait = 0.5; ///< seconds that output may still come after the exit
    static constexpr std::size_t keptOutput = 64 * 1024; ///< bytes of standard error, the last ones

    explicit ProcessRunner(async::Loop& loop) : loop_(loop) {}
    ProcessRunner(const ProcessRunner&) = delete;
    ProcessRunner& operator=(const ProcessRunner&) = delete;
    /// Ends those under way by SIGTERM.
    ~ProcessRunner();

    /// Runs `command`, an absolute path and its arguments. `onStart` is told the process id. Throws
    /// ProcessError for a child that couldn't be started or failed. Cancelled before its start it starts
    /// nothing; cancelled later it ends the child first.
    async::Task<> run(std::vector<std::string> command, std::function<void(std::int32_t)> onStart);

private:
    class Child;
    class EndAwaiter;

    std::shared_ptr<Child> start(const std::vector<std::string>& command);
    void forget(const Child& child);

    async::Loop& loop_;
    std::vector<std::shared_ptr<Child>> children_;
};

} // namespace lumnara
