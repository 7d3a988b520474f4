#include "core/platform/linux/TerminationSignals.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>

namespace lumnara {

namespace {

constexpr std::array terminationSignals = {SIGTERM, SIGINT, SIGHUP};

// A handler may touch nothing but this: it only counts up, and the loop does the rest.
volatile int terminationEvent = -1;

void noteTermination(int) {
    const int saved = errno;
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(terminationEvent, &one, sizeof one);
    errno = saved;
}

} // namespace

TerminationSignals::TerminationSignals(async::Loop& loop, std::function<void()> onTerminate) {
    terminationEvent = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (terminationEvent < 0) throw std::system_error(errno, std::generic_category(), "eventfd");
    watch_ = loop.watchReadable(terminationEvent, [onTerminate = std::move(onTerminate)] {
        std::uint64_t count = 0;
        if (::read(terminationEvent, &count, sizeof count) == sizeof count) onTerminate();
    });
    struct sigaction action{};
    action.sa_handler = noteTermination;
    action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
    for (const int signal : terminationSignals) ::sigaction(signal, &action, nullptr);
}

TerminationSignals::~TerminationSignals() {
    for (const int signal : terminationSignals) ::signal(signal, SIG_DFL);
    watch_.reset();
    ::close(terminationEvent);
    terminationEvent = -1;
}

} // namespace lumnara
