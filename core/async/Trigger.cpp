#include "core/async/Trigger.h"

#include "core/async/Task.h"

#include <utility>

namespace lumnara::async {

class Trigger::Awaiter {
public:
    Awaiter(std::shared_ptr<State> state, std::uint64_t fired, double seconds)
        : state_(std::move(state)),
          firedBefore_(fired),
          seconds_(seconds) {}
    Awaiter(Awaiter&&) = delete;
    ~Awaiter() { std::erase(state_->waiting, this); }

    bool await_ready() noexcept { return state_->fired != firedBefore_; }
    template <class P> bool await_suspend(std::coroutine_handle<P> awaiting) {
        if (!parking_.parkUnlessCancelled(awaiting)) return false;
        parking_.wakeUpAfter(wholeNanos(seconds_));
        state_->waiting.push_back(this);
        return true;
    }
    bool await_resume() noexcept {
        parking_.endParking();
        return state_->fired != firedBefore_;
    }
    void wakeUp() { parking_.wakeUp(); }

private:
    std::shared_ptr<State> state_;
    std::uint64_t firedBefore_;
    double seconds_;
    detail::Parking parking_;
};

Trigger::Trigger() : state_(std::make_shared<State>()) {}

void Trigger::fire() {
    ++state_->fired;
    for (Awaiter* awaiter : std::exchange(state_->waiting, {})) awaiter->wakeUp();
}

Task<bool> Trigger::wait(double seconds) { return waitSince(state_, state_->fired, seconds); }

Task<bool> Trigger::waitSince(std::shared_ptr<State> state, std::uint64_t fired, double seconds) {
    Awaiter awaiter(std::move(state), fired, seconds);
    co_return co_await awaiter;
}

} // namespace lumnara::async
