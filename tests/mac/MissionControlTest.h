#pragma once

#include "core/async/TestLoop.h"
#include "core/platform/mac/missioncontrol/SpaceReorderError.h"
#include "tests/mac/ScriptedMissionControl.h"
#include "tests/model/Layouts.h"

#include <exception>
#include <gtest/gtest.h>
#include <numeric>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace lumnara::testing {

/// How a task ended.
template <class T> struct Ended {
    std::optional<T> value;
    std::exception_ptr error;

    template <class E> bool failedWith(const E& expected) const {
        if (!error) return false;
        try {
            std::rethrow_exception(error);
        } catch (const E& caught) {
            return caught == expected;
        } catch (...) {
            return false;
        }
    }
};

template <class T> async::Task<> noteEnd(async::Task<T> task, Ended<T>& ended) {
    try {
        T value = co_await std::move(task);
        ended.value = std::move(value);
    } catch (...) {
        ended.error = std::current_exception();
    }
}

inline async::Task<bool> thenTrue(async::Task<> task) {
    co_await std::move(task);
    co_return true;
}

/// Runs a task to its end.
template <class T> Ended<T> finish(async::TestLoop& loop, async::Task<T> task) {
    Ended<T> ended;
    const auto handle = async::spawn(loop, noteEnd(std::move(task), ended));
    loop.runUntilDone();
    EXPECT_TRUE(ended.value || ended.error);
    return ended;
}
inline Ended<bool> finish(async::TestLoop& loop, async::Task<> task) {
    return finish(loop, thenTrue(std::move(task)));
}

inline std::vector<SpaceID> ids(std::vector<std::uint64_t> numbers) {
    std::vector<SpaceID> made;
    for (const std::uint64_t number : numbers) made.push_back({number});
    return made;
}

/// A display "D1" with so many desktops, from 1 on, and "D2" with 101 and 102.
inline SpaceSnapshot twoDisplays(int desktops) {
    std::vector<Space> spaces;
    for (int i = 1; i <= desktops; ++i)
        spaces.push_back(makeSpace(static_cast<std::uint64_t>(i), "U" + std::to_string(i)));
    return {{makeDisplay("D1", std::move(spaces)),
             makeDisplay("D2", {makeSpace(101, "U101"), makeSpace(102, "U102")})},
            {}};
}

class MissionControlTest : public ::testing::Test {
protected:
    /// The button is up, the pointer where it was, Mission Control left.
    void expectLeft() {
        EXPECT_FALSE(mc.held);
        EXPECT_EQ(mc.presses, mc.releases);
        EXPECT_FALSE(mc.showsNow());
        EXPECT_EQ(mc.warped, mc.asked);
        EXPECT_TRUE(mc.restsAfterWarp);
    }
    void expectUntouched() {
        EXPECT_EQ(mc.opens + mc.moves + mc.presses + mc.escapes, 0);
        EXPECT_TRUE(mc.warped.empty());
    }
    double seconds() const { return async::secondsOf(loop.now()); }

    async::TestLoop loop;
    ScriptedMissionControl mc{loop, twoDisplays(4)};
};

} // namespace lumnara::testing
