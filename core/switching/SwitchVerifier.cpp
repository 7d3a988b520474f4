#include "core/switching/SwitchVerifier.h"

#include "core/async/Task.h"

#include <exception>
#include <stdexcept>

namespace lumnara {

std::optional<SpaceID> SwitchVerifier::currentSpace(const DisplayID& display, SpaceProvider& provider) {
    if (const auto shown = provider.currentSpace(display)) return shown;
    try {
        const SpaceSnapshot snapshot = provider.snapshot();
        if (const DisplaySpaces* spaces = snapshot.spacesOnDisplay(display.uuid)) return spaces->currentID;
    } catch (const std::exception&) {
        // A reading that fails tells nothing; the next one may.
    }
    return std::nullopt;
}

bool SwitchVerifier::isAnimating(const DisplayID& display, SpaceProvider& provider) {
    return !display.isMain() && provider.isAnimating(display);
}

async::Task<bool> SwitchVerifier::awaitLanding(SpaceID target, DisplayID display, SpaceProvider& provider,
                                               Config config) {
    if (config.maxPolls < 0) throw std::logic_error("SwitchVerifier: maxPolls is negative");
    // Without a wait the first read happens within the caller's turn.
    if (config.initialWait > 0) co_await async::sleepUnlessCancelled(config.initialWait);
    for (int poll = 0; poll < config.maxPolls; ++poll) {
        if (!isAnimating(display, provider) && currentSpace(display, provider) == target) co_return true;
        co_await async::sleepUnlessCancelled(config.pollInterval);
    }
    co_return false;
}

} // namespace lumnara
