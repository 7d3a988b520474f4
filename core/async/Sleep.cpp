#include "core/async/Sleep.h"

namespace lumnara::async::detail {

bool SleepAwaiter::park(const Context& context, std::coroutine_handle<> awaiting) {
    stop_ = context.stop;
    if (stop_.stop_requested()) return false;
    wake_.handle = awaiting;
    context.loop->at(context.loop->now() + length_, wake_);
    onStop_.emplace(stop_, WakeOnStop{context.loop, &wake_});
    return true;
}

bool SleepAwaiter::await_resume() noexcept {
    onStop_.reset();
    return !stop_.stop_requested();
}

void ThrowingSleepAwaiter::await_resume() {
    if (!SleepAwaiter::await_resume()) throw Cancelled{};
}

} // namespace lumnara::async::detail
