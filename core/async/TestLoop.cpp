#include "core/async/TestLoop.h"

#include <algorithm>
#include <utility>

namespace lumnara::async {

Date detail::VirtualDriver::date() const {
    constexpr Date start{1'767'603'600'000};
    return {start.milliseconds + std::chrono::floor<std::chrono::milliseconds>(now_).count()};
}

std::unique_ptr<FdWatch> detail::VirtualDriver::watchReadable(int fd, std::function<void()> onReadable) {
    return watches_.watch(fd, std::move(onReadable));
}

void TestLoop::runUntilIdle() {
    do {
        while (!idle()) turn();
    } while (watches_.poll(Nanos::zero()) || !idle());
}

void TestLoop::advance(double seconds) {
    const Nanos target = now() + wholeNanos(seconds);
    runUntilIdle();
    while (hasTimer() && nextDue() <= target) runNextTimer();
    now_ = target;
}

void TestLoop::runUntilDone() {
    runUntilIdle();
    while (hasTimer()) runNextTimer();
}

void TestLoop::runNextTimer() {
    now_ = std::max(now_, nextDue());
    turn();
    runUntilIdle();
}

} // namespace lumnara::async
