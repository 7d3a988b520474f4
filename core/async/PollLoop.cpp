#include "core/async/PollLoop.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace lumnara::async {

namespace detail {

PollDriver::PollDriver() : wakeFd_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (wakeFd_ < 0) throw std::system_error(errno, std::generic_category(), "eventfd");
    wakeWatch_ = watches_.watch(wakeFd_, [this] {
        std::uint64_t count = 0;
        while (::read(wakeFd_, &count, sizeof count) < 0 && errno == EINTR) {
        }
    });
}

PollDriver::~PollDriver() { ::close(wakeFd_); }

void PollDriver::wakeUp() {
    // The loop's own thread is awake; it only must not wait before it has turned.
    if (std::this_thread::get_id() == home_) {
        awake_ = true;
        return;
    }
    // Fails only when the counter is full, and then it is readable as it should be.
    const std::uint64_t one = 1;
    while (::write(wakeFd_, &one, sizeof one) < 0 && errno == EINTR) {
    }
}

std::unique_ptr<FdWatch> PollDriver::watchReadable(int fd, std::function<void()> onReadable) {
    return watches_.watch(fd, std::move(onReadable));
}

void PollDriver::waitUntil(Nanos deadline) {
    const Nanos end = due_ ? std::min(*due_, deadline) : deadline;
    const bool isAwake = std::exchange(awake_, false);
    watches_.poll(isAwake ? Nanos::zero() : std::max(end - now(), Nanos::zero()));
}

} // namespace detail

bool PollLoop::runUntil(const std::function<bool()>& done, double seconds) {
    const Nanos deadline = now() + wholeNanos(seconds);
    for (;;) {
        turn();
        if (done()) return true;
        if (now() >= deadline) return false;
        waitUntil(deadline);
    }
}

} // namespace lumnara::async
