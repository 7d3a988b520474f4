#pragma once

#include "core/async/Loop.h"

namespace lumnara {

/// Where the sampler's dates come from. Main thread.
class TrackingClock {
public:
    virtual ~TrackingClock() = default;
    virtual Date now() const = 0;
};

/// The loop's wall clock, which in the program is the system's.
class SystemClock : public TrackingClock {
public:
    /// The loop outlives the clock.
    explicit SystemClock(const async::Loop& loop) : loop_(loop) {}
    Date now() const override { return loop_.date(); }

private:
    const async::Loop& loop_;
};

} // namespace lumnara
