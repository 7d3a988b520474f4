#pragma once

#include "core/async/Coroutine.h"

#include <coroutine>

namespace lumnara::async {

namespace detail {

class SleepAwaiter {
public:
    explicit SleepAwaiter(double seconds) : length_(wholeNanos(seconds)) {}
    bool await_ready() noexcept { return false; }
    template <class P> bool await_suspend(std::coroutine_handle<P> awaiting) {
        if (!parking_.parkUnlessCancelled(awaiting)) return false;
        parking_.wakeUpAfter(length_);
        return true;
    }
    bool await_resume() noexcept { return !parking_.endParking(); }

private:
    Nanos length_;
    Parking parking_;
};

class ThrowingSleepAwaiter : public SleepAwaiter {
public:
    using SleepAwaiter::SleepAwaiter;
    void await_resume() {
        if (!SleepAwaiter::await_resume()) throw Cancelled{};
    }
};

} // namespace detail

/// Waits. True when the time has passed, false when the task is cancelled: at once if it already is.
inline detail::SleepAwaiter sleepUnlessCancelled(double seconds) { return detail::SleepAwaiter(seconds); }

/// Waits, and throws Cancelled in place of answering false.
inline detail::ThrowingSleepAwaiter sleepFor(double seconds) { return detail::ThrowingSleepAwaiter(seconds); }

} // namespace lumnara::async
