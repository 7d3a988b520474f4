#pragma once

#include "core/async/TaskFwd.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace lumnara::async {

/// An event that tasks wait for with a limit. Main thread. It may go while tasks wait; they then run out
/// of time.
class Trigger {
public:
    Trigger();

    /// Ends all waits that have begun.
    void fire();
    /// True when the trigger has fired since this call (not only since the co_await), false when `seconds`
    /// have passed since the co_await or the task is cancelled.
    Task<bool> wait(double seconds);

private:
    class Awaiter;
    struct State {
        std::uint64_t fired = 0;
        std::vector<Awaiter*> waiting;
    };
    static Task<bool> waitSince(std::shared_ptr<State> state, std::uint64_t fired, double seconds);

    std::shared_ptr<State> state_;
};

} // namespace lumnara::async
