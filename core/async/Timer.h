#pragma once

#include "core/async/Loop.h"

#include <functional>
#include <memory>

namespace lumnara::async {

/// Calls `tick` every so many seconds, first after one period, until it is destroyed; it may be destroyed
/// from inside the call. A period begins when the timer fires, so late ticks don't bunch. Main thread.
class Repeating {
public:
    Repeating(Loop& loop, double seconds, std::function<void()> tick);

private:
    struct TickWake : Wake {
        explicit TickWake(Repeating& owner);
        Repeating& repeating;
    };
    void fire();

    Loop& loop_;
    Nanos period_;
    std::shared_ptr<const std::function<void()>> tick_;
    TickWake wake_;
};

/// Calls `fire` once after so many seconds unless it is destroyed before; it may be destroyed from inside
/// the call. Main thread.
class Delayed {
public:
    Delayed(Loop& loop, double seconds, std::function<void()> fire);

    /// The call is still to come.
    bool pending() const { return wake_.parked(); }

private:
    struct FireWake : Wake {
        explicit FireWake(Delayed& owner);
        Delayed& delayed;
    };

    std::function<void()> fire_;
    FireWake wake_;
};

} // namespace lumnara::async
