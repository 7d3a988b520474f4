#include "core/async/TaskHandle.h"

#include "core/async/Coroutine.h"

#include <exception>
#include <utility>

namespace lumnara::async {

namespace {

/// The outermost frame of a started task; it registers itself with the loop and destroys itself at its end.
struct RootCoroutine {
    struct promise_type : Root {
        Loop& loop;
        Context context;
        detail::Parking start;

        promise_type(Loop& owner, Task<>&, std::stop_source& stop)
            : loop(owner),
              context{&owner, stop.get_token()} {
            destroy = [](Root& root) {
                std::coroutine_handle<promise_type>::from_promise(static_cast<promise_type&>(root)).destroy();
            };
        }
        ~promise_type() { loop.removeRoot(*this); }

        RootCoroutine get_return_object() {
            loop.addRoot(*this);
            start.park(std::coroutine_handle<promise_type>::from_promise(*this));
            start.wakeUp();
            return {};
        }
        std::suspend_always initial_suspend() noexcept { return {}; }
        std::suspend_never final_suspend() noexcept { return {}; }
        void return_void() noexcept {}
        void unhandled_exception() noexcept { std::terminate(); }
    };
};

RootCoroutine runRoot(Loop&, Task<> task, std::stop_source) {
    try {
        co_await std::move(task);
    } catch (const Cancelled&) {
    }
}

} // namespace

TaskHandle::TaskHandle(TaskHandle&& other) noexcept
    : stop_(std::exchange(other.stop_, std::stop_source(std::nostopstate))) {}

TaskHandle& TaskHandle::operator=(TaskHandle&& other) noexcept {
    if (this == &other) return *this;
    cancel();
    stop_ = std::exchange(other.stop_, std::stop_source(std::nostopstate));
    return *this;
}

void TaskHandle::cancel() {
    if (stop_.stop_possible()) stop_.request_stop();
}

void TaskHandle::detach() { stop_ = std::stop_source(std::nostopstate); }

TaskHandle spawn(Loop& loop, Task<> task) {
    std::stop_source stop;
    runRoot(loop, std::move(task), stop);
    return TaskHandle(std::move(stop));
}

} // namespace lumnara::async
