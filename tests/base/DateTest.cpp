#include "core/base/Date.h"

#include <gtest/gtest.h>

namespace lumnara {
namespace {

TEST(Date, ReadsTheFormsOfIso8601) {
    EXPECT_EQ(Date::fromISO8601("1970-01-01T00:00:00Z"), Date{0});
    EXPECT_EQ(Date::fromISO8601("2026-01-05T09:00:00Z"), Date{1'767'603'600'000});
    EXPECT_EQ(Date::fromISO8601("2026-01-05T09:00:00.5Z"), Date{1'767'603'600'500});
    EXPECT_EQ(Date::fromISO8601("2026-01-05T09:00:00.123999Z"), Date{1'767'603'600'123});
    EXPECT_EQ(Date::fromISO8601("2026-01-05T10:30:00+01:30"), Date{1'767'603'600'000});
    EXPECT_EQ(Date::fromISO8601("2026-01-04T23:00:00-10:00"), Date{1'767'603'600'000});
    EXPECT_EQ(Date::fromISO8601("1969-12-31T23:59:59.900Z"), Date{-100});
    EXPECT_TRUE(Date::fromISO8601("2024-02-29T00:00:00Z"));
}

TEST(Date, RefusesEveryOtherText) {
    for (const char* text :
         {"", "2026-01-05", "2026-01-05T09:00Z", "2026-01-05 09:00:00Z", "2026-01-05T09:00:00",
          "2026-01-05T09:00:00Zulu", "2026-01-05T09:00:00.Z", "2026-02-29T00:00:00Z", "2026-13-01T00:00:00Z",
          "2026-01-05T24:00:00Z", "2026-01-05T09:60:00Z", "2026-01-05T09:00:60Z", "2026-01-05T09:00:00+0100",
          "2026-01-05T09:00:00+24:00", "2026-1-05T09:00:00Z", "+026-01-05T09:00:00Z"})
        EXPECT_FALSE(Date::fromISO8601(text)) << text;
}

TEST(Date, WritesUtcAndCutsFractionsTowardsThePast) {
    EXPECT_EQ(Date{1'767'603'600'999}.iso8601(), "2026-01-05T09:00:00Z");
    EXPECT_EQ(Date{-1}.iso8601(), "1969-12-31T23:59:59Z");
}

} // namespace
} // namespace lumnara
