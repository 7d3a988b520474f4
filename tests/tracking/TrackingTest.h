#pragma once

#include "core/async/TestLoop.h"
#include "core/tracking/TrackingStore.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace lumnara::testing {

/// A moment of 2026-01-05, so many seconds after 09:00 UTC, which is when a TestLoop begins.
inline Date at(double seconds) { return async::TestLoop().date().plusSeconds(seconds); }

/// What to change in an ordinary interval on the desktop "work".
inline Interval interval(double from, std::optional<double> to) {
    Interval made;
    made.spaceKey = "work";
    made.spaceName = "Work";
    made.displayUUID = "D";
    made.startedAt = at(from);
    if (to) made.endedAt = at(*to);
    return made;
}

/// The case of the DatabaseError that a call throws; nothing when it throws none.
template <class F> std::optional<DatabaseError::Case> failureOf(F&& call) {
    try {
        call();
    } catch (const DatabaseError& error) {
        EXPECT_TRUE(error.sentence().ends_with('.')) << error.sentence();
        return error.which();
    }
    return std::nullopt;
}

} // namespace lumnara::testing
