#pragma once

#include "core/async/Coroutine.h"
#include "core/async/Race.h"

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>

namespace lumnara::async {

/// A worker thread that runs what is posted to it, one after the other.
class SerialQueue {
public:
    /// `name` is the thread's name in a debugger; the system shows its first 15 bytes.
    explicit SerialQueue(std::string name);
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;
    /// Runs what was posted, then ends the thread.
    ~SerialQueue();

    /// Any thread. `work` must not throw.
    void post(std::function<void()> work);
    /// Blocks until all that was posted so far has run. Any thread but the queue's own.
    void drain();

private:
    void run();

    const std::string name_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<std::function<void()>> items_;
    std::uint64_t posted_ = 0;
    std::uint64_t finished_ = 0;
    bool closed_ = false;
    std::thread thread_;
};

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
