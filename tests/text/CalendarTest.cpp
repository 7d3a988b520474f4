#include "core/text/Calendar.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace lumnara::text {
namespace {

using Unit = Calendar::Unit;

Date utc(const char* iso) { return *Date::fromISO8601(iso); }

TEST(Calendar, DaysFollowTheZonesClocks) {
    const Calendar berlin("de_DE", "Europe/Berlin");
    EXPECT_EQ(berlin.startOf(Unit::day, utc("2026-03-29T10:00:00Z")), utc("2026-03-28T23:00:00Z"));
    EXPECT_EQ(berlin.startOfNext(Unit::day, utc("2026-03-29T10:00:00Z")), utc("2026-03-29T22:00:00Z"));
    EXPECT_EQ(berlin.adding(Unit::day, -1, utc("2026-03-30T08:00:00Z")), utc("2026-03-29T08:00:00Z"));
    EXPECT_EQ(berlin.startOf(Unit::month, utc("2026-03-31T23:00:00Z")), utc("2026-03-31T22:00:00Z"));

    const Calendar saoPaulo("pt_BR", "America/Sao_Paulo"); // skipped midnight in spring
    EXPECT_EQ(saoPaulo.startOf(Unit::day, utc("2018-11-04T15:00:00Z")), utc("2018-11-04T03:00:00Z"));
    EXPECT_EQ(saoPaulo.startOfNext(Unit::day, utc("2018-11-04T03:00:00Z")), utc("2018-11-05T02:00:00Z"));
    const Calendar havana("en_US", "America/Havana"); // has midnight twice in autumn
    EXPECT_EQ(havana.startOf(Unit::day, utc("2025-11-02T18:00:00Z")), utc("2025-11-02T04:00:00Z"));
    EXPECT_THROW(Calendar("de_DE", "Europe/Nowhere"), std::invalid_argument);
}

TEST(Calendar, WeeksBeginWhereTheUserBeginsThem) {
    const Date wednesday = utc("2026-01-07T12:00:00Z");
    EXPECT_EQ(Calendar("de_DE.UTF-8", "UTC").startOf(Unit::week, wednesday), utc("2026-01-05T00:00:00Z"));
    EXPECT_EQ(Calendar("en_US", "UTC").startOf(Unit::week, wednesday), utc("2026-01-04T00:00:00Z"));
    EXPECT_EQ(Calendar("ar_EG", "UTC").startOf(Unit::week, wednesday), utc("2026-01-03T00:00:00Z"));
    EXPECT_EQ(Calendar("C.UTF-8", "UTC").startOf(Unit::week, wednesday), utc("2026-01-05T00:00:00Z"));
    EXPECT_EQ(Calendar("ar_EG", "UTC").format(wednesday, "yyyy-MM-dd"), "2026-01-07");
    EXPECT_EQ(Calendar("de_DE", "UTC").format(wednesday, "yyyy-'W'ww"), "2026-W02");
    EXPECT_EQ(Calendar("", "UTC").format(wednesday, "yyyy-'W'ww"), "2026-W02");
}

} // namespace
} // namespace lumnara::text
