#pragma once

#include "core/async/Timer.h"
#include "core/platform/sim/SimulatedMissionControl.h"
#include "core/platform/sim/SimulatedPointer.h"
#include "core/platform/sim/SimulatedStage.h"
#include "core/seams/EventServices.h"

#include <deque>
#include <memory>
#include <optional>
#include <string>

namespace lumnara {

/// The Dock as it answers events, which it reads one after another a moment after they were posted. Those of
/// mouse and keyboard are Mission Control's while it shows. Swipes are read by their field numbers. A swipe
/// belongs to the display that was under the pointer as it began, and moves that display by one Space, at its
/// end, when it was quick enough; a very quick one leaves no time for an animation.
class SimulatedDock {
public:
    SimulatedDock(async::Loop& loop, SimulatedRandom& random, SimulatedFaults& faults, SimulatedStage& stage,
                  const SimulatedLayout& layout, const SimulatedPointer& pointer,
                  SimulatedMissionControl& missionControl)
        : loop_(loop),
          random_(random),
          faults_(faults),
          stage_(stage),
          layout_(layout),
          pointer_(pointer),
          missionControl_(missionControl) {}

    /// Whether a rightward velocity leads to the next Space; the user's scroll direction decides.
    bool positiveIsHigherIndex = true;

    void take(const SyntheticEvent& event);
    /// It is gone for a while: what it hasn't read is lost, and so is what comes meanwhile.
    void goAway(double seconds);
    bool isAway() const { return away_ != nullptr; }
    /// It runs again.
    async::Signal<> cameBack;

private:
    struct Swipe {
        std::string display;
        bool hasMoved = false;
    };
    void waitForNext();
    void read(const SyntheticEvent& event);
    void readSwipe(const SyntheticEvent& event);
    void end(const Swipe& swipe, const SyntheticEvent& event);
    void step(const std::string& display, bool towardsHigherIndex, double seconds);

    async::Loop& loop_;
    SimulatedRandom& random_;
    SimulatedFaults& faults_;
    SimulatedStage& stage_;
    const SimulatedLayout& layout_;
    const SimulatedPointer& pointer_;
    SimulatedMissionControl& missionControl_;
    std::deque<SyntheticEvent> waiting_;
    std::unique_ptr<async::Delayed> next_;
    std::optional<Swipe> swipe_;
    std::unique_ptr<async::Delayed> away_;
};

} // namespace lumnara
