#pragma once

#include "core/async/Queue.h"
#include "core/async/Timer.h"

#include <functional>
#include <memory>
#include <string>

namespace lumnara::async {

/// Work that is done on a queue of its own a while after it was asked for: a burst of changes costs one
/// writing, and nobody waits for the disk. Main thread; the loop outlives it.
class DelayedWork {
public:
    using Work = std::function<void()>;

    /// `makeWork` is called on the main thread when the time is up, and what it returns on the queue, which
    /// bears the name `queue`. Work must not throw.
    DelayedWork(Loop& loop, std::string queue, double seconds, std::function<Work()> makeWork);
    DelayedWork(const DelayedWork&) = delete;
    /// Work that is still to come is dropped; that which has come is waited for.
    ~DelayedWork() = default;

    /// Nothing happens while it is still to come.
    void ask();
    /// The time begins anew.
    void askAnew();
    bool isToCome() const { return timer_ && timer_->pending(); }

    /// Does this in place of what is to come, behind what has come, and waits for it.
    void doNow(Work work);
    /// Waits for what has come.
    void drain() { queue_.drain(); }

private:
    Loop& loop_;
    const double seconds_;
    const std::function<Work()> makeWork_;
    std::unique_ptr<Delayed> timer_;
    /// Last, so that it goes first: its destructor waits for work that runs.
    SerialQueue queue_;
};

} // namespace lumnara::async
