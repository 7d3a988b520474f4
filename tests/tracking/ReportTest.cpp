#include "core/base/Files.h"
#include "core/tracking/CSVExporter.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tracking/TrackingTest.h"

#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

namespace lumnara {
namespace {

using testing::at;
using testing::interval;
using text::Calendar;

Date utc(const char* iso) { return *Date::fromISO8601(iso); }

std::string written(DateRange range) { return range.from.iso8601() + " " + range.to.iso8601(); }

/// "label hours;" for each period.
std::string periods(DateRange range, CSVGrouping grouping, const Calendar& calendar) {
    std::string all;
    Date end = range.from;
    for (const LabelledPeriod& period : periodsOf(range, grouping, calendar)) {
        EXPECT_EQ(period.range.from, end) << "without gaps";
        end = period.range.to;
        all += period.label + " " +
               std::to_string(std::lround(period.range.to.secondsSince(period.range.from) / 3600)) + ";";
    }
    return all;
}

TEST(TrackingRange, EndsNowAndBeginsWhereTheCalendarSays) {
    const Calendar berlin("de_DE", "Europe/Berlin");
    const Date now = utc("2026-03-30T08:30:00Z"); // the Monday after the clocks went on
    EXPECT_EQ(written(rangeOf(RangeChoice::today, now, berlin)), "2026-03-29T22:00:00Z 2026-03-30T08:30:00Z");
    EXPECT_EQ(written(rangeOf(RangeChoice::yesterday, now, berlin)),
              "2026-03-28T23:00:00Z 2026-03-29T22:00:00Z");
    EXPECT_EQ(written(rangeOf(RangeChoice::thisWeek, now, berlin)),
              "2026-03-29T22:00:00Z 2026-03-30T08:30:00Z");
    EXPECT_EQ(written(rangeOf(RangeChoice::last7, now, berlin)), "2026-03-23T09:30:00Z 2026-03-30T08:30:00Z");
    EXPECT_EQ(written(rangeOf(RangeChoice::thisMonth, now, berlin)),
              "2026-02-28T23:00:00Z 2026-03-30T08:30:00Z");
}

TEST(TrackingRange, IsCutIntoDaysAndWeeksWithTheLabelOfTheirFirstMoment) {
    const Calendar berlin("de_DE", "Europe/Berlin");
    const Date now = utc("2026-03-30T08:30:00Z");
    EXPECT_EQ(periods(rangeOf(RangeChoice::last7, now, berlin), CSVGrouping::day, berlin),
              "2026-03-23 14;2026-03-24 24;2026-03-25 24;2026-03-26 24;2026-03-27 24;2026-03-28 24;"
              "2026-03-29 23;2026-03-30 11;");
    EXPECT_EQ(periods(rangeOf(RangeChoice::last7, now, berlin), CSVGrouping::week, berlin),
              "2026-W13 157;2026-W14 11;");
    EXPECT_EQ(periods(rangeOf(RangeChoice::today, now, berlin), CSVGrouping::week, berlin), "2026-W14 11;");
    EXPECT_EQ(periods({now, now}, CSVGrouping::day, berlin), "");
    EXPECT_EQ(periods({utc("2018-11-04T01:00:00Z"), utc("2018-11-06T12:00:00Z")}, CSVGrouping::day,
                      Calendar("pt_BR", "America/Sao_Paulo")),
              "2018-11-03 2;2018-11-04 23;2018-11-05 24;2018-11-06 10;")
        << "a day that began late is no measure for the next";
    for (const auto& [seconds, shown] : std::vector<std::pair<double, std::string>>{
             {59.9, "0m"}, {3599.9, "59m"}, {3600, "1h 00m"}, {93'900, "26h 05m"}})
        EXPECT_EQ(durationText(seconds), shown);
}

class CSVTest : public ::testing::Test {
protected:
    std::string exported(double from, double to, bool apps = false, CSVGrouping grouping = CSVGrouping::day) {
        return CSVExporter::exportText(store, {at(from), at(to)}, apps, grouping, Calendar("", "UTC"));
    }
    void add(double from, double to, const std::string& name, bool idle = false) {
        Interval made = interval(from, to);
        made.spaceKey = "key of " + name;
        made.spaceName = name;
        made.isIdle = idle;
        store.insert(made);
    }

    async::TestLoop loop;
    TrackingStore store{loop};
    const std::string header = "Date,Space ID,Space Name,Active (min),Idle (min),Total (min)\r\n";
};

TEST_F(CSVTest, RoundsEachColumnForItself) {
    EXPECT_EQ(exported(0, 1000), header);
    EXPECT_EQ(exported(0, 1000, true),
              "Date,Space ID,Space Name,App,Active (min),Idle (min),Total (min)\r\n");
    add(0, 89, "a");
    add(100, 190, "a", true);
    add(200, 230, "b");
    add(300, 330, "b", true);
    EXPECT_EQ(exported(0, 1000), header + "2026-01-05,key of a,a,1,2,3\r\n2026-01-05,key of b,b,1,1,1\r\n");
}

TEST_F(CSVTest, SharesOutWhatCrossesMidnightAndSortsEachPeriodByName) {
    const double midnight = 15 * 3600;
    add(midnight - 7200, midnight + 3600, "b");
    add(midnight - 60, midnight - 30, "a");
    add(midnight + 90'000, midnight + 90'060, "Z");
    EXPECT_EQ(exported(0, midnight + 200'000), header + "2026-01-05,key of a,a,1,0,1\r\n"
                                                        "2026-01-05,key of b,b,120,0,120\r\n"
                                                        "2026-01-06,key of b,b,60,0,60\r\n"
                                                        "2026-01-07,key of Z,Z,1,0,1\r\n");
}

TEST_F(CSVTest, IsReadBackByAnotherProgramAsItWas) {
    const std::vector<std::string> names{"A, B",         "say \"hi\"", "two\nlines", "\"",   " blanks ",
                                         "a\r\nb,\"c\"", "Büro 🏡",    "",           ",,,,", "'=1+1"};
    for (std::size_t i = 0; i < names.size(); ++i) {
        Interval made = interval(static_cast<double>(i) * 1000, static_cast<double>(i) * 1000 + 60 * (i + 1));
        made.spaceKey = "k" + std::to_string(i);
        made.spaceName = names[i];
        made.appName = names[names.size() - 1 - i];
        store.insert(made);
    }
    const std::string text = exported(-1, 20'000, true);
    EXPECT_NE(text.find("\"A, B\""), std::string::npos);
    EXPECT_NE(text.find("\"say \"\"hi\"\"\""), std::string::npos);

    const testing::TemporaryFolder folder;
    replaceFile(folder / "report.csv", text);
    const std::string command = "python3 -c 'import csv, json, sys; print(json.dumps(list(csv.reader(open("
                                "sys.argv[1], newline=\"\", encoding=\"utf-8\")))))' " +
                                (folder / "report.csv").string();
    FILE* python = ::popen(command.c_str(), "r");
    ASSERT_TRUE(python);
    std::string printed;
    char buffer[1024];
    while (const auto count = std::fread(buffer, 1, sizeof buffer, python)) printed.append(buffer, count);
    ASSERT_EQ(::pclose(python), 0);
    auto rows = nlohmann::json::parse(printed);
    ASSERT_EQ(rows.size(), names.size() + 1);
    rows.erase(0);
    for (const auto& row : rows) {
        const auto index = std::stoul(row[1].get<std::string>().substr(1));
        const std::string minutes = std::to_string(index + 1);
        EXPECT_EQ(row, (nlohmann::json{"2026-01-05", "k" + std::to_string(index), names[index],
                                       names[names.size() - 1 - index], minutes, "0", minutes}));
    }
}

} // namespace
} // namespace lumnara
