#pragma once

#include "core/async/Signal.h"
#include "core/async/Timer.h"
#include "core/platform/sim/SimulatedFault.h"
#include "core/platform/sim/SimulatedLayout.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lumnara {

/// What the displays show over time: changes of Space, the animations between, and what the window server
/// tells of them.
class SimulatedStage {
public:
    SimulatedStage(async::Loop& loop, SimulatedRandom& random, SimulatedFaults& faults,
                   SimulatedLayout& layout)
        : loop_(loop),
          random_(random),
          faults_(faults),
          layout_(layout) {}

    /// Brings the Space's display to show it after an animation of so many seconds; 0 is at once. A newer
    /// move takes the place of one that runs, unless that one never ends.
    void move(SpaceID space, double seconds);
    bool isAnimating(std::string_view display) const;
    /// A change of Space that is under way.
    struct Transition {
        SpaceID to;
        async::Nanos start;
        /// Infinite for an animation that never ends.
        double seconds = 0;
    };
    std::optional<Transition> transition(std::string_view display) const;

    /// The displays as the window server tells them, now or, with stale readings, then.
    const std::vector<SimulatedDisplay>& told() const;
    void freezeReadings(double seconds);
    bool readingsAreStale() const { return frozen_ && loop_.now() < frozen_->until; }
    /// What hangs comes to its end, and readings are fresh.
    void heal();
    /// Ends all moves where they are.
    void stop() { moves_.clear(), returns_.clear(); }

    /// A display shows another Space.
    async::Signal<SpaceID> shown;

private:
    struct Move {
        Transition transition;
        /// Empty for an animation that never ends.
        std::unique_ptr<async::Delayed> end;
    };
    struct Frozen {
        std::vector<SimulatedDisplay> displays;
        async::Nanos until;
    };
    void land(std::string display, SpaceID space);

    async::Loop& loop_;
    SimulatedRandom& random_;
    SimulatedFaults& faults_;
    SimulatedLayout& layout_;
    std::map<std::string, Move> moves_;
    /// The way back of a display that snaps back.
    std::map<std::string, std::unique_ptr<async::Delayed>> returns_;
    std::optional<Frozen> frozen_;
};

} // namespace lumnara
