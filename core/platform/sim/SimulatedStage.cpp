#include "core/platform/sim/SimulatedStage.h"

#include <limits>
#include <utility>

namespace lumnara {

void SimulatedStage::move(SpaceID space, double seconds) {
    const SimulatedDisplay* display = layout_.displayOf(space);
    if (!display) return;
    const std::string uuid = display->uuid;
    const auto running = moves_.find(uuid);
    if (running != moves_.end() && !running->second.end) return;
    if (faults_.befalls(SimulatedFault::animationNeverEnds)) {
        moves_.insert_or_assign(uuid,
                                Move{{space, loop_.now(), std::numeric_limits<double>::infinity()}, nullptr});
    } else if (seconds <= 0) {
        land(uuid, space);
    } else {
        auto end = std::make_unique<async::Delayed>(loop_, seconds, [=, this] { land(uuid, space); });
        moves_.insert_or_assign(uuid, Move{{space, loop_.now(), seconds}, std::move(end)});
    }
}

bool SimulatedStage::isAnimating(std::string_view display) const {
    const SimulatedDisplay* found = layout_.display(display);
    return found && moves_.contains(found->uuid);
}

std::optional<SimulatedStage::Transition> SimulatedStage::transition(std::string_view display) const {
    const SimulatedDisplay* found = layout_.display(display);
    const auto running = found ? moves_.find(found->uuid) : moves_.end();
    return running == moves_.end() ? std::nullopt : std::optional(running->second.transition);
}

void SimulatedStage::land(std::string display, SpaceID space) {
    moves_.erase(display);
    const SimulatedDisplay* on = layout_.display(display);
    if (!on || !on->find(space) || on->current == space) return;
    const SpaceID previous = on->current;
    layout_.show(space);
    returns_.erase(display);
    if (faults_.befalls(SimulatedFault::snapBack))
        returns_[display] = std::make_unique<async::Delayed>(loop_, random_.between(0.02, 0.9),
                                                             [this, previous] { move(previous, 0); });
    shown.emit(space);
}

const std::vector<SimulatedDisplay>& SimulatedStage::told() const {
    return readingsAreStale() ? frozen_->displays : layout_.displays();
}

void SimulatedStage::freezeReadings(double seconds) {
    frozen_ = Frozen{layout_.displays(), loop_.now() + async::wholeNanos(seconds)};
}

void SimulatedStage::heal() {
    frozen_.reset();
    const auto running = std::exchange(moves_, {});
    for (const auto& [display, move] : running) land(display, move.transition.to);
}

} // namespace lumnara
