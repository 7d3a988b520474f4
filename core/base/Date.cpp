#include "core/base/Date.h"

#include <chrono>
#include <fmt/core.h>

namespace lumnara {

namespace {

/// Takes fixed pieces off the front of a text; once a piece is missing it stays failed.
class DateReader {
public:
    explicit DateReader(std::string_view text) : rest_(text) {}

    int digits(std::size_t count) {
        int value = 0;
        for (std::size_t i = 0; i < count; ++i) value = value * 10 + digit();
        return value;
    }
    void literal(char expected) { failed_ = failed_ || !accept(expected); }
    bool accept(char expected) {
        if (rest_.empty() || rest_.front() != expected) return false;
        rest_.remove_prefix(1);
        return true;
    }
    /// One to nine digits after the point, cut to milliseconds.
    int fraction() {
        int value = 0;
        int count = 0;
        while (count < 9 && (count == 0 || startsWithDigit())) {
            const int next = digit();
            if (count < 3) value = value * 10 + next;
            ++count;
        }
        for (; count < 3; ++count) value *= 10;
        return value;
    }
    bool done() const { return !failed_ && rest_.empty(); }

private:
    bool startsWithDigit() const { return !rest_.empty() && rest_.front() >= '0' && rest_.front() <= '9'; }
    int digit() {
        if (!startsWithDigit()) {
            failed_ = true;
            return 0;
        }
        const int value = rest_.front() - '0';
        rest_.remove_prefix(1);
        return value;
    }

    std::string_view rest_;
    bool failed_ = false;
};

} // namespace

std::string Date::iso8601() const {
    using namespace std::chrono;
    const sys_time<std::chrono::milliseconds> moment{std::chrono::milliseconds(milliseconds)};
    const auto midnight = floor<days>(moment);
    const year_month_day day(midnight);
    const hh_mm_ss time(floor<seconds>(moment - midnight));
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z", static_cast<int>(day.year()),
                       static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()),
                       time.hours().count(), time.minutes().count(), time.seconds().count());
}

std::optional<Date> Date::fromISO8601(std::string_view text) {
    using namespace std::chrono;
    DateReader reader(text);
    const year years(reader.digits(4));
    reader.literal('-');
    const month months(static_cast<unsigned>(reader.digits(2)));
    reader.literal('-');
    const day days(static_cast<unsigned>(reader.digits(2)));
    reader.literal('T');
    const int hour = reader.digits(2);
    reader.literal(':');
    const int minute = reader.digits(2);
    reader.literal(':');
    const int second = reader.digits(2);
    const int fraction = reader.accept('.') ? reader.fraction() : 0;

    int offsetMinutes = 0;
    if (!reader.accept('Z')) {
        const int sign = reader.accept('-') ? -1 : 1;
        if (sign > 0) reader.literal('+');
        const int offsetHour = reader.digits(2);
        reader.literal(':');
        const int offsetMinute = reader.digits(2);
        if (offsetHour > 23 || offsetMinute > 59) return std::nullopt;
        offsetMinutes = sign * (offsetHour * 60 + offsetMinute);
    }

    const year_month_day date(years, months, days);
    if (!reader.done() || !date.ok() || hour > 23 || minute > 59 || second > 59) return std::nullopt;
    const std::int64_t daySeconds = sys_days(date).time_since_epoch().count() * std::int64_t{86'400};
    const std::int64_t timeSeconds = hour * 3'600 + (minute - offsetMinutes) * 60 + second;
    return Date{(daySeconds + timeSeconds) * 1'000 + fraction};
}

} // namespace lumnara
