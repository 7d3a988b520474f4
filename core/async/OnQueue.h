#pragma once

#include "core/async/Coroutine.h"
#include "core/async/Queue.h"
#include "core/async/Race.h"

#include <exception>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

namespace lumnara::async {

/// Runs `work` on a queue and brings its value, or what it threw, back to the awaiting task:
/// `OnQueue hop(queue, work); const auto value = co_await hop;`. Awaited once. Cancelling the task doesn't
/// cut the work short; when the task dies first, the result is dropped.
template <class Work> class OnQueue {
    using T = std::invoke_result_t<Work&>;

    struct State {
        Work work;
        std::optional<detail::Held<T>> value;
        std::exception_ptr error;
        detail::Parking* awaiting = nullptr; // main thread only

        explicit State(Work w) : work(std::move(w)) {}
        void run() noexcept {
            try {
                if constexpr (std::is_void_v<T>) {
                    work();
                    value.emplace();
                } else {
                    value.emplace(work());
                }
            } catch (...) {
                error = std::current_exception();
            }
        }
    };

public:
    OnQueue(SerialQueue& queue, Work work)
        : queue_(queue),
          state_(std::make_shared<State>(std::move(work))) {}
    OnQueue(OnQueue&&) = delete;
    ~OnQueue() { state_->awaiting = nullptr; }

    bool await_ready() noexcept { return false; }
    template <class P> void await_suspend(std::coroutine_handle<P> awaiting) {
        parking_.park(awaiting);
        state_->awaiting = &parking_;
        queue_.post([state = state_, inbox = awaiting.promise().context.loop->inbox()] {
            state->run();
            inbox->post([state] {
                if (state->awaiting != nullptr) state->awaiting->wakeUp();
            });
        });
    }
    T await_resume() {
        if (state_->error) std::rethrow_exception(state_->error);
        if constexpr (!std::is_void_v<T>) return std::move(*state_->value);
    }

private:
    SerialQueue& queue_;
    std::shared_ptr<State> state_;
    detail::Parking parking_;
};

} // namespace lumnara::async
