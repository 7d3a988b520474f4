#pragma once

#include "core/async/TestLoop.h"
#include "core/switching/SpaceSwitching.h"
#include "core/switching/SwitchError.h"
#include "core/switching/SwitchVerifier.h"
#include "tests/model/Layouts.h"
#include "tests/support/ScriptedProvider.h"

#include <exception>
#include <gtest/gtest.h>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace lumnara::testing {

/// A desktop with the uuid "U<id>"; 1 has none.
inline Space desktop(std::uint64_t id) { return makeSpace(id, id == 1 ? "" : "U" + std::to_string(id)); }

/// "D1" with the desktops 1, 2 and 3, and "D2" with 4 and 5; 1 and 4 are shown.
inline SpaceSnapshot twoDisplays(Date takenAt = {}) {
    return {{makeDisplay("D1", {desktop(1), desktop(2), desktop(3)}),
             makeDisplay("D2", {desktop(4), desktop(5)})},
            takenAt};
}

/// How a task ended.
struct Outcome {
    std::optional<SwitchResult> result;
    std::exception_ptr error;

    bool ended() const { return result.has_value() || error != nullptr; }
    std::optional<SwitchError> switchError() const {
        if (!error) return std::nullopt;
        try {
            std::rethrow_exception(error);
        } catch (const SwitchError& caught) {
            return caught;
        } catch (...) {
            return std::nullopt;
        }
    }
    bool failedWith(SwitchError::Case which) const { return switchError() == SwitchError(which); }
    template <class E> bool failedWithA() const {
        if (!error) return false;
        try {
            std::rethrow_exception(error);
        } catch (const E&) {
            return true;
        } catch (...) {
            return false;
        }
    }
};

inline async::Task<> noteOutcome(async::Task<SwitchResult> task, Outcome& outcome) {
    try {
        const SwitchResult result = co_await std::move(task);
        outcome.result = result;
    } catch (...) {
        outcome.error = std::current_exception();
    }
}

/// Runs a switch to its end.
inline Outcome finish(async::TestLoop& loop, async::Task<SwitchResult> task) {
    Outcome outcome;
    const auto handle = async::spawn(loop, noteOutcome(std::move(task), outcome));
    loop.runUntilDone();
    EXPECT_TRUE(outcome.ended());
    return outcome;
}

} // namespace lumnara::testing
