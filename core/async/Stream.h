#pragma once

#include "core/async/Coroutine.h"

#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

namespace lumnara::async {

/// Items in order from producers on any thread to one consuming task on the loop; unbounded.
/// `while (auto item = co_await stream.next())` reads it to its end.
template <class T> class EventStream {
    struct State {
        std::mutex mutex;
        std::deque<T> items;
        bool finished = false;
        bool consumerParked = false;
        const std::shared_ptr<Inbox> inbox;
        detail::Parking* consumer = nullptr; // main thread only

        explicit State(Loop& owner) : inbox(owner.inbox()) {}
    };

public:
    /// The producers' end: cheap to copy, for any thread, and it may outlive the stream and the loop.
    class Feed {
    public:
        /// Dropped when the stream is finished.
        void send(T item) const {
            std::unique_lock guard(state_->mutex);
            if (state_->finished) return;
            state_->items.push_back(std::move(item));
            wakeConsumer(guard);
        }
        /// The consumer gets what was sent so far, then the end.
        void finish() const {
            std::unique_lock guard(state_->mutex);
            if (std::exchange(state_->finished, true)) return;
            wakeConsumer(guard);
        }

    private:
        friend EventStream;
        explicit Feed(std::shared_ptr<State> state) : state_(std::move(state)) {}

        void wakeConsumer(std::unique_lock<std::mutex>& guard) const {
            if (!std::exchange(state_->consumerParked, false)) return;
            guard.unlock();
            state_->inbox->post([state = state_] {
                if (state->consumer != nullptr) state->consumer->wakeUp();
            });
        }

        std::shared_ptr<State> state_;
    };

    class NextAwaiter {
    public:
        explicit NextAwaiter(std::shared_ptr<State> state) : state_(std::move(state)) {}
        NextAwaiter(NextAwaiter&&) = delete;
        ~NextAwaiter() {
            if (state_->consumer == &parking_) state_->consumer = nullptr;
        }
        bool await_ready() noexcept { return false; }
        template <class P> bool await_suspend(std::coroutine_handle<P> awaiting) {
            if (!parking_.parkUnlessCancelled(awaiting)) return false;
            std::lock_guard guard(state_->mutex);
            if (!state_->items.empty() || state_->finished) return false;
            state_->consumerParked = true;
            state_->consumer = &parking_;
            return true;
        }
        std::optional<T> await_resume() {
            const bool isCancelled = parking_.endParking();
            state_->consumer = nullptr;
            std::lock_guard guard(state_->mutex);
            state_->consumerParked = false;
            if (isCancelled || state_->items.empty()) return std::nullopt;
            std::optional<T> item(std::move(state_->items.front()));
            state_->items.pop_front();
            return item;
        }

    private:
        std::shared_ptr<State> state_;
        detail::Parking parking_;
    };

    explicit EventStream(Loop& loop) : state_(std::make_shared<State>(loop)) {}

    Feed feed() const { return Feed(state_); }
    /// The next item; nothing at the end, and when the consuming task is cancelled (even while items wait).
    NextAwaiter next() { return NextAwaiter(state_); }

private:
    std::shared_ptr<State> state_;
};

} // namespace lumnara::async
