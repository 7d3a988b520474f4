#pragma once

#include "core/async/Driver.h"

#include <algorithm>

namespace lumnara {

/// A number on its way from one value to another in even steps.
struct SimulatedMotion {
    double from = 0;
    double to = 0;
    async::Nanos start{};
    /// Infinite for a motion that never comes to its end.
    double seconds = 0;

    double at(async::Nanos now) const {
        const double passed = async::secondsOf(now - start);
        if (passed >= seconds) return to;
        return from + (to - from) * std::max(0.0, passed / seconds);
    }
    bool runs(async::Nanos now) const { return async::secondsOf(now - start) < seconds; }
};

} // namespace lumnara
