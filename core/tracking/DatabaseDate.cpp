#include "core/tracking/DatabaseDate.h"

#include <algorithm>
#include <chrono>
#include <fmt/core.h>

namespace lumnara {

namespace {

using std::chrono::sys_days;

constexpr std::int64_t dayMilliseconds = 86'400'000;

std::int64_t millisecondsAt(std::chrono::year_month_day day) {
    return sys_days(day).time_since_epoch().count() * dayMilliseconds;
}

/// The decimal number at these places; `bad` becomes true when one of them is no digit.
int digitsAt(const char* text, int count, bool& bad) {
    int value = 0;
    for (int i = 0; i < count; ++i) {
        const auto digit = static_cast<unsigned>(text[i]) - unsigned{'0'};
        bad |= digit > 9;
        value = value * 10 + static_cast<int>(digit);
    }
    return value;
}

} // namespace

std::string databaseText(Date date) {
    using namespace std::chrono;
    static const std::int64_t first = millisecondsAt(year(0) / 1 / 1);
    static const std::int64_t last = millisecondsAt(year(10'000) / 1 / 1) - 1;
    const sys_time<std::chrono::milliseconds> moment{
        std::chrono::milliseconds(std::clamp(date.milliseconds, first, last))};
    const auto midnight = floor<days>(moment);
    const year_month_day day(midnight);
    const hh_mm_ss time(moment - midnight);
    return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}.{:03}", static_cast<int>(day.year()),
                       static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()),
                       time.hours().count(), time.minutes().count(), time.seconds().count(),
                       time.subseconds().count());
}

std::optional<Date> databaseDate(std::string_view text) {
    constexpr std::size_t whole = std::string_view("2026-01-05 09:00:00").size();
    constexpr std::size_t withFraction = whole + 4;
    if (text.size() != whole && text.size() != withFraction) return std::nullopt;
    const char* at = text.data();
    bool bad = at[4] != '-' || at[7] != '-' || at[10] != ' ' || at[13] != ':' || at[16] != ':';
    const std::chrono::year_month_day day(std::chrono::year(digitsAt(at, 4, bad)),
                                          std::chrono::month(static_cast<unsigned>(digitsAt(at + 5, 2, bad))),
                                          std::chrono::day(static_cast<unsigned>(digitsAt(at + 8, 2, bad))));
    const int hour = digitsAt(at + 11, 2, bad);
    const int minute = digitsAt(at + 14, 2, bad);
    const int second = digitsAt(at + 17, 2, bad);
    int fraction = 0;
    if (text.size() == withFraction) {
        bad |= at[whole] != '.';
        fraction = digitsAt(at + whole + 1, 3, bad);
    }
    if (bad || !day.ok() || hour > 23 || minute > 59 || second > 59) return std::nullopt;
    return Date{millisecondsAt(day) + ((hour * 60 + minute) * 60 + second) * std::int64_t{1000} + fraction};
}

} // namespace lumnara
