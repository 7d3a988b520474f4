#pragma once

#include "core/async/Timer.h"
#include "core/platform/EventServices.h"
#include "core/platform/sim/SimulatedPointer.h"
#include "core/platform/sim/SimulatedStage.h"

#include <deque>
#include <memory>
#include <optional>
#include <string>

namespace lumnara {

/// The Dock as it answers swipes: it reads gesture events by their field numbers, one after another a
/// moment after they were posted. A swipe belongs to the display that was under the pointer as it began,
/// and moves that display by one Space, at its end, when it was quick enough; a very quick one leaves no
/// time for an animation.
class SimulatedDock {
public:
    SimulatedDock(async::Loop& loop, SimulatedRandom& random, SimulatedFaults& faults, SimulatedStage& stage,
                  const SimulatedLayout& layout, const SimulatedPointer& pointer)
        : loop_(loop),
          random_(random),
          faults_(faults),
          stage_(stage),
          layout_(layout),
          pointer_(pointer) {}

    /// Whether a rightward velocity leads to the next Space; the user's scroll direction decides.
    bool positiveIsHigherIndex = true;

    void take(const SyntheticEvent& event);

private:
    struct Swipe {
        std::string display;
        bool hasMoved = false;
    };
    void waitForNext();
    void read(const SyntheticEvent& event);
    void end(const Swipe& swipe, const SyntheticEvent& event);
    void step(const std::string& display, bool towardsHigherIndex, double seconds);

    async::Loop& loop_;
    SimulatedRandom& random_;
    SimulatedFaults& faults_;
    SimulatedStage& stage_;
    const SimulatedLayout& layout_;
    const SimulatedPointer& pointer_;
    std::deque<SyntheticEvent> waiting_;
    std::unique_ptr<async::Delayed> next_;
    std::optional<Swipe> swipe_;
};

} // namespace lumnara
