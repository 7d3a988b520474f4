#pragma once

#include "core/async/TaskFwd.h"

#include <stop_token>

namespace lumnara::async {

class Loop;

/// A started task. Dropping the handle cancels the task; it then ends by itself at its next wait.
class [[nodiscard]] TaskHandle {
public:
    TaskHandle() : stop_(std::nostopstate) {}
    explicit TaskHandle(std::stop_source stop) : stop_(std::move(stop)) {}
    TaskHandle(TaskHandle&& other) noexcept;
    TaskHandle& operator=(TaskHandle&& other) noexcept;
    ~TaskHandle() { cancel(); }

    /// Asks the task to end; its waits then return at once. Nothing of it runs inside this call.
    void cancel();
    /// Lets the task run on without a handle.
    void detach();
    /// Whether the handle holds a task, ended or not.
    explicit operator bool() const { return stop_.stop_possible(); }

private:
    std::stop_source stop_;
};

/// Starts `task` on the loop's next turn, never inside the caller. The loop owns it until it ends. It ends
/// quietly with Cancelled; any other error that leaves it is a fault of the program and terminates it.
TaskHandle spawn(Loop& loop, Task<> task);

} // namespace lumnara::async
