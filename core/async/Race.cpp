#include "core/async/Race.h"

namespace lumnara::async::detail {

void RaceState::finished(std::size_t arm, std::exception_ptr armError) {
    if (!winner) {
        winner = arm;
        error = std::move(armError);
        stops[1 - arm].request_stop();
    }
    if (--running == 0) parking.wakeUp();
}

void RaceAwaiter::StopBoth::operator()() const noexcept {
    for (std::stop_source& stop : state->stops) stop.request_stop();
}

void RaceAwaiter::start(const Context& context) {
    // Ahead of the starts: a race inside a cancelled task starts two cancelled arms.
    onStop_.emplace(context.stop, StopBoth{&state_});
    first_.start({context.loop, state_.stops[0].get_token()});
    second_.start({context.loop, state_.stops[1].get_token()});
}

void RaceAwaiter::await_resume() {
    onStop_.reset();
    if (state_.error) std::rethrow_exception(state_.error);
}

} // namespace lumnara::async::detail
