#pragma once

#include "core/async/Loop.h"
#include "core/async/TaskFwd.h"

#include <coroutine>
#include <exception>
#include <optional>
#include <stop_token>
#include <utility>

namespace lumnara::async {

/// What a cancelled wait throws; it ends a task without being a failure of it.
struct Cancelled : std::exception {
    const char* what() const noexcept override { return "cancelled"; }
};

/// What a task inherits from the task that awaits it.
struct Context {
    Loop* loop = nullptr;
    std::stop_token stop;
};

namespace detail {

struct PromiseBase {
    Context context;
    std::coroutine_handle<> continuation;
    bool startingInline = false; ///< the awaiting task's await_suspend is still on the stack
    bool finished = false;
    std::exception_ptr error;

    struct Final {
        bool await_ready() noexcept { return false; }
        template <class P> void await_suspend(std::coroutine_handle<P> handle) noexcept {
            PromiseBase& promise = handle.promise();
            promise.finished = true;
            // A plain call, not symmetric transfer: without optimisation, and under the sanitizers, that
            // one grows the stack with each task of a long loop.
            if (!promise.startingInline && promise.continuation) promise.continuation.resume();
        }
        void await_resume() noexcept {}
    };

    std::suspend_always initial_suspend() noexcept { return {}; }
    Final final_suspend() noexcept { return {}; }
    void unhandled_exception() noexcept { error = std::current_exception(); }
};

template <class T> struct Promise : PromiseBase {
    std::optional<T> value;

    Task<T> get_return_object();
    template <class U> void return_value(U&& result) { value.emplace(std::forward<U>(result)); }
    T take() {
        if (error) std::rethrow_exception(error);
        return std::move(*value);
    }
};

template <> struct Promise<void> : PromiseBase {
    Task<void> get_return_object();
    void return_void() noexcept {}
    void take() {
        if (error) std::rethrow_exception(error);
    }
};

/// What an awaiter parks its task with. The task goes on once it is woken, at the moment set, or, where the
/// awaiter asks for that, when it is cancelled; never after its frame has gone.
class Parking : private Wake {
public:
    Parking() : Wake([](Wake& wake) { static_cast<Parking&>(wake).task_.resume(); }) {}

    /// For await_suspend.
    template <class P> void park(std::coroutine_handle<P> task) {
        task_ = task;
        loop_ = task.promise().context.loop;
    }
    /// For await_suspend: false for a task that is cancelled already, which then isn't to be suspended.
    template <class P> bool parkUnlessCancelled(std::coroutine_handle<P> task) {
        stop_ = task.promise().context.stop;
        if (stop_.stop_requested()) return false;
        park(task);
        onStop_.emplace(stop_, WakeUp{*this});
        return true;
    }
    /// For await_resume, after parkUnlessCancelled: cancelling wakes it no longer. Whether the task is
    /// cancelled.
    bool endParking() noexcept {
        onStop_.reset();
        return stop_.stop_requested();
    }

    void wakeUp() { loop_->ready(*this); }
    void wakeUpAfter(Nanos length) { loop_->at(loop_->now() + length, *this); }

private:
    struct WakeUp {
        Parking& parking;
        void operator()() const { parking.wakeUp(); }
    };

    std::coroutine_handle<> task_;
    Loop* loop_ = nullptr;
    std::stop_token stop_;
    std::optional<std::stop_callback<WakeUp>> onStop_;
};

} // namespace detail

/// A coroutine of the main thread. It starts when it is awaited, within the awaiting task's turn, is
/// awaited once, and is destroyed with its owner wherever it stands.
template <class T> class [[nodiscard]] Task {
public:
    using promise_type = detail::Promise<T>;
    using Handle = std::coroutine_handle<promise_type>;

    Task(Task&& other) noexcept : handle_(std::exchange(other.handle_, {})) {}
    Task& operator=(Task&& other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~Task() {
        if (handle_) handle_.destroy();
    }

    class Awaiter {
    public:
        explicit Awaiter(Handle task) : task_(task) {}
        bool await_ready() noexcept { return false; }
        template <class P> bool await_suspend(std::coroutine_handle<P> awaiting) {
            promise_type& promise = task_.promise();
            promise.context = awaiting.promise().context;
            promise.continuation = awaiting;
            promise.startingInline = true;
            task_.resume();
            promise.startingInline = false;
            return !promise.finished;
        }
        T await_resume() { return task_.promise().take(); }

    private:
        Handle task_;
    };

    Awaiter operator co_await() && noexcept { return Awaiter(handle_); }

    /// Starts a task that no other task awaits; for those who build awaiters.
    void start(Context context) {
        handle_.promise().context = std::move(context);
        handle_.resume();
    }

private:
    friend promise_type;
    explicit Task(Handle handle) : handle_(handle) {}

    Handle handle_;
};

namespace detail {

template <class T> Task<T> Promise<T>::get_return_object() {
    return Task<T>(std::coroutine_handle<Promise>::from_promise(*this));
}

inline Task<void> Promise<void>::get_return_object() {
    return Task<void>(std::coroutine_handle<Promise>::from_promise(*this));
}

class ContextAwaiter {
public:
    ContextAwaiter() = default;
    bool await_ready() noexcept { return false; }
    template <class P> bool await_suspend(std::coroutine_handle<P> awaiting) noexcept {
        context_ = awaiting.promise().context;
        return false;
    }
    Context await_resume() noexcept { return std::move(context_); }

private:
    Context context_;
};

} // namespace detail

/// The awaiting task's own loop and stop token: `const auto context = co_await currentContext();`.
inline detail::ContextAwaiter currentContext() { return {}; }

} // namespace lumnara::async
