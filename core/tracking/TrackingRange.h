#pragma once

#include "core/text/Calendar.h"
#include "core/tracking/TrackingStore.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace lumnara {

/// The ranges that a report can be made of, in the order of the page.
enum class RangeChoice { today, yesterday, thisWeek, last7, thisMonth };
inline constexpr std::array rangeChoices = {RangeChoice::today, RangeChoice::yesterday, RangeChoice::thisWeek,
                                            RangeChoice::last7, RangeChoice::thisMonth};

/// "today", "yesterday", "thisWeek", "last7", "thisMonth".
std::string_view rawValue(RangeChoice choice);
/// "Today", "Yesterday", "This week", "Last 7 days", "This month".
std::string_view labelOf(RangeChoice choice);
/// All end at `now` but yesterday.
DateRange rangeOf(RangeChoice choice, Date now, const text::Calendar& calendar);

enum class CSVGrouping { day, week };

/// "day", "week".
std::string_view rawValue(CSVGrouping grouping);

struct LabelledPeriod {
    DateRange range;
    std::string label; ///< "2026-01-05" for a day, "2026-W02" for a week: that of its first moment
    bool operator==(const LabelledPeriod&) const = default;
};

/// The range cut into the calendar's days or weeks, the first and the last of them cut to the range.
std::vector<LabelledPeriod> periodsOf(DateRange range, CSVGrouping grouping, const text::Calendar& calendar);

/// Whole minutes, cut off: "59m", "1h 00m", "26h 05m".
std::string durationText(double seconds);

} // namespace lumnara
