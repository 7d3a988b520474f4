#include "core/tracking/IdleMonitor.h"

#include <utility>

namespace lumnara {

IdleMonitor::IdleMonitor(async::Loop& loop, double threshold, std::function<double()> secondsSinceInput)
    : threshold(threshold),
      loop_(loop),
      secondsSinceInput_(std::move(secondsSinceInput)) {}

IdleMonitor::IdleMonitor(async::Loop& loop, double threshold, IdleSource* source)
    : IdleMonitor(loop, threshold,
                  [source] { return source ? source->secondsSinceInput().value_or(0) : 0; }) {}

void IdleMonitor::start(double period) {
    timer_.emplace(loop_, period, [this] { check(); });
    check();
}

void IdleMonitor::check() {
    const bool idle = threshold <= secondsSinceInput_();
    if (idle == isIdle_) return;
    isIdle_ = idle;
    if (onChange) onChange(idle);
}

} // namespace lumnara
