#include "core/tracking/TrackingRange.h"

#include <algorithm>
#include <cstdint>
#include <fmt/format.h>

namespace lumnara {

using Unit = text::Calendar::Unit;

std::string_view rawValue(RangeChoice choice) {
    switch (choice) {
    case RangeChoice::today: return "today";
    case RangeChoice::yesterday: return "yesterday";
    case RangeChoice::thisWeek: return "thisWeek";
    case RangeChoice::last7: return "last7";
    case RangeChoice::thisMonth: break;
    }
    return "thisMonth";
}

std::string_view labelOf(RangeChoice choice) {
    switch (choice) {
    case RangeChoice::today: return "Today";
    case RangeChoice::yesterday: return "Yesterday";
    case RangeChoice::thisWeek: return "This week";
    case RangeChoice::last7: return "Last 7 days";
    case RangeChoice::thisMonth: break;
    }
    return "This month";
}

DateRange rangeOf(RangeChoice choice, Date now, const text::Calendar& calendar) {
    const auto since = [&](Unit unit) { return calendar.startOf(unit, now).value_or(now); };
    switch (choice) {
    case RangeChoice::today: return {since(Unit::day), now};
    case RangeChoice::yesterday: {
        const Date today = since(Unit::day);
        return {calendar.adding(Unit::day, -1, today).value_or(today), today};
    }
    case RangeChoice::thisWeek: return {since(Unit::week), now};
    case RangeChoice::last7: return {calendar.adding(Unit::day, -7, now).value_or(now), now};
    case RangeChoice::thisMonth: break;
    }
    return {since(Unit::month), now};
}

std::string_view rawValue(CSVGrouping grouping) { return grouping == CSVGrouping::day ? "day" : "week"; }

std::vector<LabelledPeriod> periodsOf(DateRange range, CSVGrouping grouping, const text::Calendar& calendar) {
    const Unit unit = grouping == CSVGrouping::day ? Unit::day : Unit::week;
    const char* pattern = grouping == CSVGrouping::day ? "yyyy-MM-dd" : "yyyy-'W'ww";
    std::vector<LabelledPeriod> periods;
    Date cursor = calendar.startOf(unit, range.from).value_or(range.from);
    while (cursor < range.to) {
        const Date next = calendar.startOfNext(unit, cursor).value_or(range.to);
        const DateRange period{std::max(cursor, range.from), std::min(next, range.to)};
        if (period.from < period.to) periods.push_back({period, calendar.format(period.from, pattern)});
        cursor = next;
    }
    return periods;
}

std::string durationText(double seconds) {
    const auto minutes = static_cast<std::int64_t>(seconds / 60);
    return minutes < 60 ? fmt::format("{}m", minutes) : fmt::format("{}h {:02}m", minutes / 60, minutes % 60);
}

} // namespace lumnara
