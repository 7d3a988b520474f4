#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace lumnara {

/// A moment of the system clock, in whole milliseconds since 1970-01-01T00:00:00Z. Values come from
/// async::Loop::date(); nothing else reads the clock.
struct Date {
    std::int64_t milliseconds = 0;

    auto operator<=>(const Date&) const = default;

    /// Seconds from `earlier` to this moment; negative when `earlier` is later.
    double secondsSince(Date earlier) const {
        return static_cast<double>(milliseconds - earlier.milliseconds) / 1000.0;
    }
    Date plusSeconds(double seconds) const {
        return {milliseconds + static_cast<std::int64_t>(seconds * 1000.0)};
    }

    /// ISO 8601 in UTC, "2026-01-05T09:00:00Z"; fractions of a second are cut off.
    std::string iso8601() const;
    /// Reads "YYYY-MM-DDThh:mm:ss[.fff](Z|±hh:mm)"; nothing for any other text or an impossible date.
    static std::optional<Date> fromISO8601(std::string_view text);
};

} // namespace lumnara
