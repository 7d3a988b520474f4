#include "core/async/Timer.h"

#include <utility>

namespace lumnara::async {

Repeating::Repeating(Loop& loop, double seconds, std::function<void()> tick)
    : loop_(loop),
      period_(wholeNanos(seconds)),
      tick_(std::make_shared<const std::function<void()>>(std::move(tick))),
      wake_(*this) {
    loop_.at(loop_.now() + period_, wake_);
}

Repeating::TickWake::TickWake(Repeating& owner)
    : Wake([](Wake& wake) { static_cast<TickWake&>(wake).repeating.fire(); }),
      repeating(owner) {}

void Repeating::fire() {
    loop_.at(loop_.now() + period_, wake_);
    const auto tick = tick_; // outlives this timer when the call destroys it
    (*tick)();
}

Delayed::Delayed(Loop& loop, double seconds, std::function<void()> fire)
    : fire_(std::move(fire)),
      wake_(*this) {
    loop.at(loop.now() + wholeNanos(seconds), wake_);
}

Delayed::FireWake::FireWake(Delayed& owner)
    : Wake([](Wake& wake) {
          const auto fire = std::move(static_cast<FireWake&>(wake).delayed.fire_);
          fire();
      }),
      delayed(owner) {}

} // namespace lumnara::async
