#include "core/async/Driver.h"

#include <algorithm>

namespace lumnara::async {

Nanos wholeNanos(double seconds) {
    constexpr double limit = 1e9; // well inside 64 bits of nanoseconds
    return Nanos(static_cast<std::int64_t>(std::clamp(seconds, -limit, limit) * 1e9));
}

double secondsOf(Nanos length) { return std::chrono::duration<double>(length).count(); }

Nanos RealTimeDriver::now() const { return std::chrono::steady_clock::now().time_since_epoch(); }

Date systemDate() {
    using namespace std::chrono;
    return {floor<milliseconds>(system_clock::now()).time_since_epoch().count()};
}

Date RealTimeDriver::date() const { return systemDate(); }

} // namespace lumnara::async
