#include "core/platform/linux/ProcessRunner.h"

#include "core/async/Task.h"
#include "core/async/Timer.h"
#include "core/platform/linux/Spawn.h"
#include "core/text/Text.h"
#include "core/text/Utf8.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <optional>
#include <stop_token>
#include <system_error>
#include <utility>

namespace lumnara {

namespace {

/// A pipe whose read end never blocks.
struct Pipe {
    OwnedFd readEnd;
    OwnedFd writeEnd;

    Pipe() {
        int ends[2];
        if (::pipe2(ends, O_CLOEXEC) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
        readEnd = OwnedFd(ends[0]);
        writeEnd = OwnedFd(ends[1]);
        ::fcntl(ends[0], F_SETFL, O_NONBLOCK);
    }
};

/// Reads a pipe to its end and keeps the last `limit` bytes.
class PipeReader {
public:
    PipeReader(async::Loop& loop, OwnedFd readEnd, std::size_t limit, std::function<void()> onEnd)
        : fd_(std::move(readEnd)),
          limit_(limit),
          onEnd_(std::move(onEnd)),
          watch_(loop.watchReadable(fd_.get(), [this] { read(); })) {}

    bool atEnd() const { return !fd_.isOpen(); }
    std::string_view text() const {
        const std::string_view all = text_;
        return all.substr(all.size() - std::min(all.size(), limit_));
    }

private:
    void read() {
        char buffer[64 * 1024]; // all that a pipe holds
        const ssize_t count = ::read(fd_.get(), buffer, sizeof buffer);
        if (count < 0 && (errno == EAGAIN || errno == EINTR)) return;
        if (count <= 0) {
            watch_.reset();
            fd_.reset();
            const auto onEnd = onEnd_; // may take this reader with it
            onEnd();
            return;
        }
        if (limit_ == 0) return;
        text_.append(buffer, static_cast<std::size_t>(count));
        if (text_.size() > 2 * limit_) text_.erase(0, text_.size() - limit_);
    }

    OwnedFd fd_;
    const std::size_t limit_;
    const std::function<void()> onEnd_;
    std::string text_;
    std::unique_ptr<async::FdWatch> watch_;
};

} // namespace

/// A running child. It ends for whoever waits when it has exited and its output has come to an end or has
/// had its time. What holds the pipes for longer is still read from, so that it isn't killed for writing.
class ProcessRunner::Child {
public:
    Child(ProcessRunner& runner, const std::vector<std::string>& command)
        : runner_(runner),
          loop_(runner.loop_) {
        Pipe output;
        Pipe error;
        process_ =
            spawnChild({.command = command, .output = output.writeEnd.get(), .error = error.writeEnd.get()});
        const auto onEnd = [this] { noteOutputEnd(); };
        output_.emplace(loop_, std::move(output.readEnd), 0, onEnd);
        error_.emplace(loop_, std::move(error.readEnd), keptOutput, onEnd);
        exitWatch_ = loop_.watchReadable(process_.pidfd.get(), [this] { noteExit(); });
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    std::int32_t pid() const { return process_.pid; }
    bool hasEnded() const { return hasEnded_; }
    /// Why it failed; nothing when it didn't. Once it has ended.
    std::optional<ProcessError> failure() const {
        using enum ProcessError::Case;
        if (*exit_ == ChildExit{}) return std::nullopt;
        const std::string written = text::sanitizedUtf8(error_->text());
        if (const auto words = text::trim(written); !words.empty())
            return ProcessError(complained, std::string(words));
        return ProcessError(exit_->bySignal ? stopped : exited, {}, exit_->code);
    }

    void terminate() {
        if (exit_ || killTimer_) return;
        signalGroup(SIGTERM);
        killTimer_.emplace(loop_, killDelay, [this] { kill(); });
    }
    /// The runner goes: nobody will see the end.
    void abandon() {
        if (!exit_) signalGroup(SIGTERM);
        exitWatch_.reset();
        output_.reset();
        error_.reset();
        killTimer_.reset();
        readersTimer_.reset();
    }
    /// Whom the end is told; null for nobody.
    void setWaiting(async::detail::Parking* waiting) { waiting_ = waiting; }

private:
    void signalGroup(int number) const { ::kill(-process_.pid, number); }

    void kill() {
        signalGroup(SIGKILL);
        isKilled_ = true;
        if (exit_) reap();
    }

    void noteExit() {
        exit_ = exitOf(process_, false);
        if (!exit_) return;
        exitWatch_.reset();
        // Unreaped, the leader keeps its group's number from being given to others until the group is killed.
        if (killTimer_ && !isKilled_)
            endInTime();
        else
            reap();
    }

    void reap() {
        exitOf(process_, true);
        isReaped_ = true;
        endInTime();
    }

    void endInTime() {
        if (!hasEnded_ && !readersTimer_) readersTimer_.emplace(loop_, readersWait, [this] { end(); });
        noteOutputEnd();
    }

    void noteOutputEnd() {
        if (!exit_ || !output_->atEnd() || !error_->atEnd()) return;
        end();
        if (isReaped_) runner_.forget(*this);
    }

    void end() {
        hasEnded_ = true;
        if (waiting_ != nullptr) std::exchange(waiting_, nullptr)->wakeUp();
    }

    ProcessRunner& runner_;
    async::Loop& loop_;
    SpawnedChild process_;
    std::optional<PipeReader> output_;
    std::optional<PipeReader> error_;
    std::unique_ptr<async::FdWatch> exitWatch_;
    std::optional<ChildExit> exit_;
    std::optional<async::Delayed> killTimer_;
    std::optional<async::Delayed> readersTimer_;
    bool isKilled_ = false;
    bool isReaped_ = false;
    bool hasEnded_ = false;
    async::detail::Parking* waiting_ = nullptr;
};

/// Waits until the child has ended, cancelled or not.
class ProcessRunner::EndAwaiter {
public:
    explicit EndAwaiter(Child& child) : child_(child) {}
    EndAwaiter(EndAwaiter&&) = delete;
    ~EndAwaiter() { child_.setWaiting(nullptr); }

    bool await_ready() noexcept { return child_.hasEnded(); }
    template <class P> void await_suspend(std::coroutine_handle<P> awaiting) {
        parking_.park(awaiting);
        child_.setWaiting(&parking_);
    }
    void await_resume() noexcept {}

private:
    Child& child_;
    async::detail::Parking parking_;
};

ProcessRunner::~ProcessRunner() {
    for (const auto& child : children_) child->abandon();
}

std::shared_ptr<ProcessRunner::Child> ProcessRunner::start(const std::vector<std::string>& command) try {
    children_.push_back(std::make_shared<Child>(*this, command));
    return children_.back();
} catch (const std::system_error& error) {
    throw ProcessError(ProcessError::Case::notStarted, error.code().message());
}

async::Task<> ProcessRunner::run(std::vector<std::string> command,
                                 std::function<void(std::int32_t)> onStart) {
    const auto context = co_await async::currentContext();
    if (context.stop.stop_requested()) throw async::Cancelled();
    const std::shared_ptr<Child> child = start(command);
    onStart(child->pid());
    {
        const std::stop_callback onStop(context.stop, [&child = *child] { child.terminate(); });
        EndAwaiter ended(*child);
        co_await ended;
    }
    if (context.stop.stop_requested()) throw async::Cancelled();
    if (const auto failure = child->failure()) throw *failure;
}

void ProcessRunner::forget(const Child& child) {
    const auto found = std::find_if(children_.begin(), children_.end(),
                                    [&](const auto& each) { return each.get() == &child; });
    if (found == children_.end()) return;
    // Not destroyed inside its own call.
    loop_.inbox()->post([gone = std::move(*found)] {});
    children_.erase(found);
}

} // namespace lumnara
