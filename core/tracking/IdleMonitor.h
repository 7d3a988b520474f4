#pragma once

#include "core/async/Timer.h"
#include "core/seams/IdleSource.h"

#include <functional>
#include <optional>

namespace lumnara {

/// Decides whether the user is idle. Main thread.
class IdleMonitor {
public:
    /// The loop outlives the monitor.
    IdleMonitor(async::Loop& loop, double threshold, std::function<double()> secondsSinceInput);
    /// Asks the platform, which outlives the monitor; without a source the user never counts as idle.
    IdleMonitor(async::Loop& loop, double threshold, IdleSource* source);

    /// Seconds without input after which the user counts as idle. Holds from the next look on.
    double threshold;
    /// Called with the new state on each change.
    std::function<void(bool)> onChange;

    bool isIdle() const { return isIdle_; }
    bool isRunning() const { return timer_.has_value(); }

    /// Looks at once and then every so many seconds, in place of an earlier period.
    void start(double period);
    /// Looks no more; the state stays as it was.
    void stop() { timer_.reset(); }
    /// Looks now.
    void check();

private:
    async::Loop& loop_;
    std::function<double()> secondsSinceInput_;
    bool isIdle_ = false;
    std::optional<async::Repeating> timer_;
};

} // namespace lumnara
