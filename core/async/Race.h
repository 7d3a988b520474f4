#pragma once

#include "core/async/Coroutine.h"

#include <array>
#include <coroutine>
#include <exception>
#include <optional>
#include <stop_token>
#include <type_traits>
#include <utility>
#include <variant>

namespace lumnara::async {

namespace detail {

/// A value that stands for void where a place needs one.
template <class T> using Held = std::conditional_t<std::is_void_v<T>, std::monostate, T>;

struct RaceState {
    std::optional<std::size_t> winner;
    int running = 2;
    std::array<std::stop_source, 2> stops;
    Parking parking;
    std::exception_ptr error;

    void finished(std::size_t arm, std::exception_ptr armError);
};

template <class T>
Task<> raceArm(RaceState& state, std::size_t arm, Task<T> task, std::optional<Held<T>>& result) {
    std::exception_ptr error;
    try {
        if constexpr (std::is_void_v<T>) {
            co_await std::move(task);
            result.emplace();
        } else {
            T value = co_await std::move(task);
            result.emplace(std::move(value));
        }
    } catch (...) {
        error = std::current_exception();
    }
    state.finished(arm, error);
}

class RaceAwaiter {
public:
    RaceAwaiter(RaceState& state, Task<>& first, Task<>& second)
        : state_(state),
          first_(first),
          second_(second) {}
    bool await_ready() noexcept { return false; }
    template <class P> void await_suspend(std::coroutine_handle<P> awaiting) {
        state_.parking.park(awaiting);
        start(awaiting.promise().context);
    }
    /// Throws what the deciding arm threw.
    void await_resume();

private:
    struct StopBoth {
        RaceState* state;
        void operator()() const noexcept;
    };
    void start(const Context& context);

    RaceState& state_;
    Task<>& first_;
    Task<>& second_;
    std::optional<std::stop_callback<StopBoth>> onStop_;
};

} // namespace detail

/// Runs both tasks. The first to end decides, with its value or its failure; the other is cancelled and
/// awaited, so that nothing of it runs after the race. Void counts as std::monostate.
template <class A, class B>
Task<std::variant<detail::Held<A>, detail::Held<B>>> race(Task<A> first, Task<B> second) {
    detail::RaceState state;
    std::optional<detail::Held<A>> firstResult;
    std::optional<detail::Held<B>> secondResult;
    Task<> firstArm = detail::raceArm(state, 0, std::move(first), firstResult);
    Task<> secondArm = detail::raceArm(state, 1, std::move(second), secondResult);
    co_await detail::RaceAwaiter(state, firstArm, secondArm);

    using Result = std::variant<detail::Held<A>, detail::Held<B>>;
    if (state.winner == 0) co_return Result(std::in_place_index<0>, std::move(*firstResult));
    co_return Result(std::in_place_index<1>, std::move(*secondResult));
}

} // namespace lumnara::async
