#pragma once

#include "core/async/Coroutine.h"

#include <coroutine>
#include <optional>
#include <stop_token>

namespace lumnara::async {

namespace detail {

/// Makes a wake ready once the task is cancelled.
struct WakeOnStop {
    Loop* loop;
    Wake* wake;
    void operator()() const noexcept { loop->ready(*wake); }
};
using StopWatch = std::optional<std::stop_callback<WakeOnStop>>;

class SleepAwaiter {
public:
    explicit SleepAwaiter(Nanos length) : length_(length) {}
    bool await_ready() noexcept { return false; }
    template <class P> bool await_suspend(std::coroutine_handle<P> awaiting) {
        return park(awaiting.promise().context, awaiting);
    }
    bool await_resume() noexcept;

private:
    bool park(const Context& context, std::coroutine_handle<> awaiting);

    Nanos length_;
    ResumeWake wake_;
    std::stop_token stop_;
    StopWatch onStop_;
};

class ThrowingSleepAwaiter : public SleepAwaiter {
public:
    using SleepAwaiter::SleepAwaiter;
    void await_resume();
};

} // namespace detail

/// Waits. True when the time has passed, false when the task is cancelled: at once if it already is.
inline detail::SleepAwaiter sleepUnlessCancelled(double seconds) {
    return detail::SleepAwaiter(wholeNanos(seconds));
}

/// Waits, and throws Cancelled in place of answering false.
inline detail::ThrowingSleepAwaiter sleepFor(double seconds) {
    return detail::ThrowingSleepAwaiter(wholeNanos(seconds));
}

} // namespace lumnara::async
