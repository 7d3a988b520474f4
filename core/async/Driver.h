#pragma once

#include "core/base/Date.h"

#include <chrono>
#include <functional>
#include <memory>

namespace lumnara::async {

using Nanos = std::chrono::nanoseconds;

/// Seconds as whole nanoseconds, cut off; more than thirty years either way count as thirty years.
Nanos wholeNanos(double seconds);
double secondsOf(Nanos length);

/// Watches a file descriptor while it lives. Destroying it ends the callbacks, also from inside its own
/// callback and after the driver is gone. The descriptor must stay open for as long as it is watched.
class FdWatch {
public:
    virtual ~FdWatch() = default;
};

/// What drives a Loop: the toolkit in the application, poll(2) in tools, a virtual clock in tests.
/// Main thread but for wakeUp. It outlives the loop it drives.
struct Driver {
    virtual ~Driver() = default;

    /// Monotonic time since an arbitrary moment.
    virtual Nanos now() const = 0;
    /// The moment on the wall clock.
    virtual Date date() const = 0;
    /// Any thread: call Loop::turn soon.
    virtual void wakeUp() = 0;
    /// Call Loop::turn at `due`; replaces an earlier time.
    virtual void armTimer(Nanos due) = 0;
    virtual void disarmTimer() = 0;
    /// Calls back on the main thread, outside Loop::turn, for as long as `fd` is readable or hung up.
    virtual std::unique_ptr<FdWatch> watchReadable(int fd, std::function<void()> onReadable) = 0;
};

/// The moment on the system's wall clock, for what runs without a loop. Any thread.
Date systemDate();

/// A driver on the system's clocks; nothing else in the program reads them.
struct RealTimeDriver : Driver {
    Nanos now() const final;
    Date date() const final;
};

} // namespace lumnara::async
