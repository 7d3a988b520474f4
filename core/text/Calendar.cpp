#include "core/text/Calendar.h"

#include <cstdlib>
#include <stdexcept>
#include <unicode/calendar.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

namespace lumnara::text {

namespace {

std::string userLocale() {
    for (const char* variable : {"LC_ALL", "LC_TIME", "LANG"})
        if (const char* value = std::getenv(variable); value && *value) return value;
    return {};
}

/// The root locale for what is no language.
icu::Locale localeOf(const std::string& name) {
    const std::string language = name.substr(0, name.find_first_of(".@"));
    icu::Locale locale = language.empty() || language == "C" || language == "POSIX"
                             ? icu::Locale::getRoot()
                             : icu::Locale::createCanonical(name.c_str());
    UErrorCode error = U_ZERO_ERROR;
    locale.setKeywordValue("numbers", "latn", error);
    return locale;
}

UCalendarDateFields fieldOf(Calendar::Unit unit) {
    switch (unit) {
    case Calendar::Unit::day: return UCAL_DATE;
    case Calendar::Unit::week: return UCAL_WEEK_OF_YEAR;
    case Calendar::Unit::month: break;
    }
    return UCAL_MONTH;
}

} // namespace

struct Calendar::Parts {
    icu::Locale locale;
    std::unique_ptr<icu::Calendar> calendar;

    Parts(icu::Locale given, icu::TimeZone* adoptedZone) : locale(std::move(given)) {
        UErrorCode error = U_ZERO_ERROR;
        calendar.reset(icu::Calendar::createInstance(adoptedZone, locale, error));
        if (U_FAILURE(error)) throw std::runtime_error(u_errorName(error));
        if (*locale.getLanguage() == '\0') { // ISO 8601
            calendar->setFirstDayOfWeek(UCAL_MONDAY);
            calendar->setMinimalDaysInFirstWeek(4);
        }
        calendar->setSkippedWallTimeOption(UCAL_WALLTIME_NEXT_VALID);
        calendar->setRepeatedWallTimeOption(UCAL_WALLTIME_FIRST);
    }

    std::unique_ptr<icu::Calendar> at(Date moment, UErrorCode& error) const {
        std::unique_ptr<icu::Calendar> copy(calendar->clone());
        copy->setTime(static_cast<UDate>(moment.milliseconds), error);
        return copy;
    }
};

namespace {

std::optional<Date> momentOf(const icu::Calendar& calendar, UErrorCode& error) {
    const UDate time = calendar.getTime(error);
    if (U_FAILURE(error)) return std::nullopt;
    return Date{static_cast<std::int64_t>(time)};
}

} // namespace

Calendar::Calendar(std::unique_ptr<Parts> parts) : parts_(std::move(parts)) {}
Calendar::Calendar(Calendar&&) noexcept = default;
Calendar& Calendar::operator=(Calendar&&) noexcept = default;
Calendar::~Calendar() = default;

Calendar Calendar::ofUser() {
    return Calendar(std::make_unique<Parts>(localeOf(userLocale()), icu::TimeZone::detectHostTimeZone()));
}

Calendar::Calendar(std::string_view locale, std::string_view zone) {
    const auto id =
        icu::UnicodeString::fromUTF8(icu::StringPiece(zone.data(), static_cast<int>(zone.size())));
    std::unique_ptr<icu::TimeZone> found(icu::TimeZone::createTimeZone(id));
    if (*found == icu::TimeZone::getUnknown())
        throw std::invalid_argument("no time zone \"" + std::string(zone) + "\"");
    parts_ = std::make_unique<Parts>(localeOf(std::string(locale)), found.release());
}

std::optional<Date> Calendar::startOf(Unit unit, Date moment) const {
    UErrorCode error = U_ZERO_ERROR;
    const auto calendar = parts_->at(moment, error);
    if (unit == Unit::week) {
        const int since = calendar->get(UCAL_DAY_OF_WEEK, error) - calendar->getFirstDayOfWeek(error);
        calendar->add(UCAL_DATE, -((since + 7) % 7), error);
    }
    if (unit == Unit::month) calendar->set(UCAL_DATE, 1);
    for (const auto field : {UCAL_HOUR_OF_DAY, UCAL_MINUTE, UCAL_SECOND, UCAL_MILLISECOND})
        calendar->set(field, 0);
    return momentOf(*calendar, error);
}

std::optional<Date> Calendar::startOfNext(Unit unit, Date moment) const {
    const auto start = startOf(unit, moment);
    const auto later = start ? adding(unit, 1, *start) : std::nullopt;
    const auto next = later ? startOf(unit, *later) : std::nullopt;
    return next > moment ? next : std::nullopt;
}

std::optional<Date> Calendar::adding(Unit unit, int count, Date moment) const {
    UErrorCode error = U_ZERO_ERROR;
    const auto calendar = parts_->at(moment, error);
    calendar->add(fieldOf(unit), count, error);
    return momentOf(*calendar, error);
}

std::string Calendar::format(Date moment, std::string_view pattern) const {
    UErrorCode error = U_ZERO_ERROR;
    icu::SimpleDateFormat formatter(
        icu::UnicodeString::fromUTF8(icu::StringPiece(pattern.data(), static_cast<int>(pattern.size()))),
        parts_->locale, error);
    if (U_FAILURE(error)) throw std::runtime_error(u_errorName(error));
    formatter.setCalendar(*parts_->calendar);
    icu::UnicodeString text;
    formatter.format(static_cast<UDate>(moment.milliseconds), text);
    std::string out;
    text.toUTF8String(out);
    return out;
}

} // namespace lumnara::text
