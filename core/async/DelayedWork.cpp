#include "core/async/DelayedWork.h"

#include <utility>

namespace lumnara::async {

DelayedWork::DelayedWork(Loop& loop, std::string queue, double seconds, std::function<Work()> makeWork)
    : loop_(loop),
      seconds_(seconds),
      makeWork_(std::move(makeWork)),
      queue_(std::move(queue)) {}

void DelayedWork::ask() {
    if (!isToCome()) askAnew();
}

void DelayedWork::askAnew() {
    timer_ = std::make_unique<Delayed>(loop_, seconds_, [this] { queue_.post(makeWork_()); });
}

void DelayedWork::doNow(Work work) {
    timer_.reset();
    queue_.post(std::move(work));
    queue_.drain();
}

} // namespace lumnara::async
