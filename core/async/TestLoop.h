#pragma once

#include "core/async/Loop.h"
#include "core/async/PollSet.h"

namespace lumnara::async {

namespace detail {

class VirtualDriver : public Driver {
public:
    Nanos now() const override { return now_; }
    Date date() const override;
    void wakeUp() override {}
    void armTimer(Nanos) override {}
    void disarmTimer() override {}
    std::unique_ptr<FdWatch> watchReadable(int fd, std::function<void()> onReadable) override;

protected:
    Nanos now_{};
    PollSet watches_;
};

} // namespace detail

/// A loop on virtual time, which moves only by hand and starts at zero, 2026-01-05T09:00:00Z. Watched
/// descriptors are real and looked at without waiting. What other threads have yet to post it can't see:
/// drain their queue first.
class TestLoop : private detail::VirtualDriver, public Loop {
public:
    TestLoop() : Loop(static_cast<Driver&>(*this)) {}
    using Loop::date;
    using Loop::now;
    using Loop::watchReadable;

    /// Runs until nothing is ready or readable, without moving the time.
    void runUntilIdle();
    /// Moves the time on, running each timer at its moment.
    void advance(double seconds);
    /// Moves from timer to timer until none is left; never ends while a Repeating lives.
    void runUntilDone();

private:
    void runNextTimer();
};

} // namespace lumnara::async
