#include "core/platform/sim/SimulatedDock.h"

#include <cmath>
#include <utility>

namespace lumnara {

namespace {

// The window server's numbers of the fields, and their values for a swipe between Spaces.
constexpr int typeField = 55;
constexpr int hidTypeField = 110;
constexpr int motionField = 123;
constexpr int progressField = 124;
constexpr int velocityXField = 129;
constexpr int velocityYField = 130;
constexpr int phaseField = 132;
constexpr std::int64_t gestureType = 30;
constexpr std::int64_t dockSwipe = 23;
constexpr std::int64_t horizontal = 1;
constexpr std::int64_t began = 1;
constexpr std::int64_t changed = 2;
constexpr std::int64_t ended = 4;

// Our own choice: below the first velocity the Space springs back, from the second on nothing animates when
// the gesture has made next to no way: the least that a field of 32 bits can tell.
constexpr double flickVelocity = 100;
constexpr double instantVelocity = 1000;
constexpr double instantProgress = 0x1p-149;

bool isSpaceSwipe(const SyntheticEvent& event) {
    return event.integer(typeField) == gestureType && event.integer(hidTypeField) == dockSwipe &&
           event.integer(motionField) == horizontal;
}

} // namespace

void SimulatedDock::take(const SyntheticEvent& event) {
    if (isAway()) return;
    waiting_.push_back(event);
    if (!next_) waitForNext();
}

void SimulatedDock::goAway(double seconds) {
    waiting_.clear();
    next_.reset();
    swipe_.reset();
    away_ = std::make_unique<async::Delayed>(loop_, seconds, [this] {
        away_.reset();
        cameBack.emit();
    });
}

void SimulatedDock::waitForNext() {
    next_ = std::make_unique<async::Delayed>(loop_, random_.between(0.0005, 0.003), [this] {
        next_.reset();
        const SyntheticEvent event = std::move(waiting_.front());
        waiting_.pop_front();
        if (!waiting_.empty()) waitForNext();
        read(event);
    });
}

void SimulatedDock::read(const SyntheticEvent& event) {
    if (const auto* mouse = std::get_if<MouseEvent>(&event.origin)) missionControl_.point(*mouse);
    const auto* key = std::get_if<KeyEvent>(&event.origin);
    if (key && key->isDown && key->key == KeyCode::escape) missionControl_.dismiss();
    if (isSpaceSwipe(event)) readSwipe(event);
}

void SimulatedDock::readSwipe(const SyntheticEvent& event) {
    const auto phase = event.integer(phaseField);
    if (phase == began) {
        const SimulatedDisplay* display = layout_.displayAt(pointer_.position());
        swipe_.reset();
        if (display) swipe_ = Swipe{display->uuid};
    } else if (phase == changed && swipe_) {
        swipe_->hasMoved = true;
    } else if (phase == ended && swipe_) {
        const Swipe swipe = *std::exchange(swipe_, std::nullopt);
        if (!faults_.befalls(SimulatedFault::gestureLost)) end(swipe, event);
    }
}

void SimulatedDock::end(const Swipe& swipe, const SyntheticEvent& event) {
    const double progress = event.real(progressField).value_or(0);
    const double velocity = event.real(velocityXField).value_or(0);
    const bool agrees = progress != 0 && std::signbit(progress) == std::signbit(velocity);
    if (!swipe.hasMoved || !agrees || event.real(velocityYField) != velocity) return;
    if (std::abs(velocity) < flickVelocity) return;
    const bool isInstant = std::abs(velocity) >= instantVelocity && std::abs(progress) == instantProgress;
    step(swipe.display, (velocity > 0) == positiveIsHigherIndex, isInstant ? 0 : random_.between(0.3, 0.5));
}

void SimulatedDock::step(const std::string& display, bool towardsHigherIndex, double seconds) {
    const SimulatedDisplay* on = layout_.display(display);
    if (!on || stage_.isAnimating(display)) return;
    const std::size_t index = on->indexOf(on->current);
    if (towardsHigherIndex ? index + 1 >= on->spaces.size() : index == 0) return;
    stage_.move(on->spaces[towardsHigherIndex ? index + 1 : index - 1].id, seconds);
}

} // namespace lumnara
