#pragma once

#include "core/async/TaskFwd.h"
#include "core/model/SpaceProvider.h"

#include <optional>

namespace lumnara {

/// Turns a request to switch into the knowledge that a display really shows the target, by reading. Landed
/// means only that: neither focus nor windows are looked at. Main thread.
class SwitchVerifier {
public:
    struct Config {
        /// Seconds before the first read.
        double initialWait = 0.12;
        /// Seconds after each read that didn't find the target.
        double pollInterval = 0.06;
        /// At least 0.
        int maxPolls = 10;

        bool operator==(const Config&) const = default;
    };

    SwitchVerifier() = delete;

    /// The Space that the display shows now, by the provider's quick probe and, when that has no value, by a
    /// snapshot; nothing when that fails too.
    static std::optional<SpaceID> currentSpace(const DisplayID& display, SpaceProvider& provider);

    /// Whether the display's Space animation runs now; never for the shared arrangement, and not where it
    /// can't be told.
    static bool isAnimating(const DisplayID& display, SpaceProvider& provider);

    /// Whether the display shows the target within the polls. A poll that finds the display animating is
    /// spent without a read. A cancelled sleep is passed over, and the polling goes on at once. The provider
    /// must live until the task ends.
    static async::Task<bool> awaitLanding(SpaceID target, DisplayID display, SpaceProvider& provider,
                                          Config config);
};

} // namespace lumnara
