#pragma once

#include "core/base/Date.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace lumnara::text {

/// A calendar in a time zone: where days, weeks and months begin for the user. One thread at a time.
class Calendar {
public:
    enum class Unit { day, week, month };

    /// The user's calendar, by LC_ALL, LC_TIME or LANG, in the zone that the machine is in now. Where none of
    /// them names a language, weeks are those of ISO 8601.
    static Calendar ofUser();
    /// An ICU locale ("de_DE", "" for no language in particular) and a zone ("Europe/Berlin"). Throws
    /// std::invalid_argument for an unknown zone.
    Calendar(std::string_view locale, std::string_view zone);
    Calendar(Calendar&&) noexcept;
    Calendar& operator=(Calendar&&) noexcept;
    ~Calendar();

    /// The first moment of the day, week or month that holds the moment; nothing when the calendar gives
    /// none. Where the clocks skip midnight, a day begins when they go on.
    std::optional<Date> startOf(Unit unit, Date moment) const;
    /// The first moment of the day, week or month after that one; nothing when the calendar gives none.
    std::optional<Date> startOfNext(Unit unit, Date moment) const;
    /// So many days, weeks or months later at the same time of day; nothing when the calendar gives none.
    std::optional<Date> adding(Unit unit, int count, Date moment) const;
    /// The moment in a pattern of Unicode TS 35 ("yyyy-MM-dd"), with the digits 0 to 9.
    std::string format(Date moment, std::string_view pattern) const;

private:
    struct Parts;
    explicit Calendar(std::unique_ptr<Parts> parts);
    std::unique_ptr<Parts> parts_;
};

} // namespace lumnara::text
