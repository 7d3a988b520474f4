#pragma once

#include "core/async/Loop.h"
#include "core/async/PollSet.h"

#include <functional>
#include <memory>
#include <optional>
#include <thread>

namespace lumnara::async {

namespace detail {

class PollDriver : public RealTimeDriver {
public:
    /// Throws std::system_error when the process has no file descriptor left.
    PollDriver();
    PollDriver(const PollDriver&) = delete;
    ~PollDriver() override;

    void wakeUp() override;
    void armTimer(Nanos due) override { due_ = due; }
    void disarmTimer() override { due_.reset(); }
    std::unique_ptr<FdWatch> watchReadable(int fd, std::function<void()> onReadable) override;

protected:
    /// Waits for a watched descriptor, a wake-up, the armed timer or `deadline`.
    void waitUntil(Nanos deadline);

private:
    const std::thread::id home_ = std::this_thread::get_id();
    /// Asked to turn by its own thread since it last waited.
    bool awake_ = false;
    int wakeFd_;
    PollSet watches_;
    std::unique_ptr<FdWatch> wakeWatch_;
    std::optional<Nanos> due_;
};

} // namespace detail

/// A loop on real time over poll(2), for programs without a toolkit. It runs only inside runUntil.
class PollLoop : private detail::PollDriver, public Loop {
public:
    PollLoop() : Loop(static_cast<Driver&>(*this)) {}
    using Loop::date;
    using Loop::now;
    using Loop::watchReadable;

    /// Runs until `done` holds, which is looked at after each turn, or `seconds` have passed. Returns
    /// whether it holds.
    bool runUntil(const std::function<bool()>& done, double seconds);
};

} // namespace lumnara::async
