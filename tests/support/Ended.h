#pragma once

#include "core/async/Task.h"
#include "core/async/TestLoop.h"

#include <exception>
#include <gtest/gtest.h>
#include <optional>
#include <utility>

namespace lumnara::testing {

/// How a task ended.
template <class T> struct Ended {
    std::optional<T> result;
    std::exception_ptr error;

    /// Nothing for an error of another type.
    template <class E> std::optional<E> errorAs() const {
        try {
            if (error) std::rethrow_exception(error);
        } catch (const E& caught) {
            return caught;
        } catch (...) {
            return std::nullopt;
        }
        return std::nullopt;
    }
    template <class E> bool failedWith(const E& expected) const { return errorAs<E>() == expected; }
    template <class E> bool failedWithA() const { return errorAs<E>().has_value(); }
};

template <class T> async::Task<> noteEnd(async::Task<T> task, Ended<T>& ended) {
    try {
        T result = co_await std::move(task);
        ended.result = std::move(result);
    } catch (...) {
        ended.error = std::current_exception();
    }
}

inline async::Task<bool> thenTrue(async::Task<> task) {
    co_await std::move(task);
    co_return true;
}

/// Runs a task to its end, and all that it leaves to happen.
template <class T> Ended<T> finish(async::TestLoop& loop, async::Task<T> task) {
    Ended<T> ended;
    const auto handle = async::spawn(loop, noteEnd(std::move(task), ended));
    loop.runUntilDone();
    EXPECT_TRUE(ended.result || ended.error);
    return ended;
}
inline Ended<bool> finish(async::TestLoop& loop, async::Task<> task) {
    return finish(loop, thenTrue(std::move(task)));
}

} // namespace lumnara::testing
