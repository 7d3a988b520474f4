#include "core/tracking/Database.h"
#include "tests/tracking/TrackingTest.h"

#include <algorithm>
#include <map>
#include <random>
#include <vector>

namespace lumnara {
namespace {

using testing::at;
using testing::interval;

/// The report as it is defined, interval by interval.
std::vector<UsageRow> plainUsage(const std::vector<Interval>& fetched, Date from, Date to, bool byApp,
                                 const std::optional<std::string>& sessionID, Date now) {
    std::vector<UsageRow> rows;
    for (const Interval& found : fetched) {
        if (sessionID && found.sessionID != sessionID) continue;
        const Date start = from >= found.startedAt ? from : found.startedAt;
        const Date end = found.endedAt ? *found.endedAt : now;
        const double seconds = (to < end ? to : end).secondsSince(start);
        if (seconds <= 0) continue;
        std::string key = found.spaceKey;
        if (byApp) key += "|" + found.appBundleID.value_or(found.appName.value_or("unknown"));
        auto row = std::ranges::find(rows, key, &UsageRow::key);
        if (row == rows.end()) {
            rows.push_back({key, found.spaceKey, "", std::nullopt, 0, 0});
            row = rows.end() - 1;
            if (byApp) row->appName = found.appName ? found.appName : found.appBundleID;
        }
        (found.isIdle ? row->idle : row->active) += seconds;
        row->spaceName = found.spaceName;
    }
    return rows;
}

/// By key, with the sums in whole milliseconds: what two reports have to agree on.
std::map<std::string, std::string> comparable(const std::vector<UsageRow>& rows) {
    std::map<std::string, std::string> all;
    for (const UsageRow& row : rows)
        all[row.key] = row.spaceKey + "/" + row.spaceName + "/" + row.appName.value_or("(none)") + "/" +
                       std::to_string(std::llround(row.active * 1000)) + "/" +
                       std::to_string(std::llround(row.idle * 1000));
    return all;
}

class UsageTest : public ::testing::Test {
protected:
    void add(double from, std::optional<double> to, std::optional<std::string> bundle = {},
             std::optional<std::string> app = {}, bool idle = false) {
        Interval made = interval(from, to);
        made.appBundleID = std::move(bundle);
        made.appName = std::move(app);
        made.isIdle = idle;
        store.insert(made);
    }
    /// "key name app active idle;" for each row, in the report's order.
    std::string report(double from, double to, bool byApp = false) {
        std::string all;
        for (const UsageRow& row : store.usage(at(from), at(to), byApp))
            all += row.key + " " + row.spaceName + " " + row.appName.value_or("-") + " " +
                   std::to_string(std::lround(row.active)) + " " + std::to_string(std::lround(row.idle)) +
                   ";";
        return all;
    }

    async::TestLoop loop;
    TrackingStore store{loop};
};

TEST_F(UsageTest, ClipsToTheRangeAndCountsAnOpenIntervalToThePresent) {
    add(-100, std::nullopt);
    EXPECT_EQ(report(-50, 1000), "work Work - 50 0;");
    EXPECT_EQ(report(-50, -20), "work Work - 30 0;");
    loop.advance(200);
    EXPECT_EQ(report(-50, 1000), "work Work - 250 0;");
    EXPECT_EQ(report(0, 0), "");
    EXPECT_EQ(report(100, 50), "");
}

TEST_F(UsageTest, TimeThatDidNotPassMakesNoRow) {
    add(10, 10);
    add(20, 5);
    add(5000, std::nullopt); // the clock was put back meanwhile
    EXPECT_EQ(report(0, 1e6), "");
}

TEST_F(UsageTest, NamesAppsByBundleOrNameAndDesktopsByTheirLatestName) {
    add(0, 10, "org.a", "Editor");
    add(10, 30, "org.b", "Editor");
    add(30, 60, "org.c");
    add(60, 100, std::nullopt, "Tool");
    Interval renamed = interval(100, 150);
    renamed.spaceName = "Works";
    store.insert(renamed);
    add(-10, 0, "org.a", "Old editor", true);
    EXPECT_EQ(report(-10, 200, true),
              "work|unknown Works - 50 0;work|Tool Work Tool 40 0;work|org.c Work org.c 30 0;"
              "work|org.a Work Old editor 10 10;work|org.b Work Editor 20 0;");
    EXPECT_EQ(report(-10, 200), "work Works - 150 10;");
    EXPECT_EQ(report(0, 5, true), "work|org.a Work Editor 5 0;") << "the label of the range's first interval";
}

TEST_F(UsageTest, AgreesWithThePlainDefinitionOnRandomIntervals) {
    std::mt19937 random(7);
    const auto pick = [&](int below) { return static_cast<int>(random() % static_cast<unsigned>(below)); };
    store.saveSession({"S", "s", at(0), std::nullopt, 0, TrackingSession::State::running});
    Database::Transaction transaction(store.database());
    for (int i = 0; i < 3000; ++i) {
        const double from = pick(2'000'000) / 1000.0 - 500;
        Interval made = interval(from, from + pick(20'000) / 1000.0 - 2);
        if (pick(40) == 0) made.endedAt = std::nullopt;
        if (pick(100) == 0) made.endedAt = at(from + 900);
        made.spaceKey = "desk|" + std::to_string(pick(5));
        made.spaceName = "Name " + std::to_string(pick(3));
        if (pick(3)) made.appBundleID = "org." + std::to_string(pick(4));
        if (pick(3)) made.appName = "App " + std::to_string(pick(4));
        if (pick(4) == 0) made.sessionID = "S";
        made.isIdle = pick(3) == 0;
        store.insert(made);
    }
    transaction.commit();
    store.database().execute("UPDATE intervals SET startedAt = datetime(startedAt) WHERE id % 7 = 0");

    loop.advance(1000);
    for (int round = 0; round < 60; ++round) {
        const Date from = at(pick(3000) - 1000);
        const Date to = from.plusSeconds(pick(2000) - 100);
        const bool byApp = pick(2) == 0;
        const auto session = pick(3) == 0 ? std::optional<std::string>("S") : std::nullopt;
        const auto ours = store.usage(from, to, byApp, session);
        EXPECT_EQ(comparable(ours),
                  comparable(plainUsage(store.intervals(from, to), from, to, byApp, session, loop.date())));
        EXPECT_TRUE(std::ranges::is_sorted(ours, std::greater(), [](const UsageRow& row) {
            return std::round((row.active + row.idle) * 1000);
        }));
    }

    for (const bool byApp : {false, true}) {
        std::vector<DateRange> periods;
        for (Date start = at(-700); start < at(1500);) {
            const Date end = start.plusSeconds(1 + pick(300));
            periods.push_back({start, end});
            start = end.plusSeconds(pick(2) * 3);
        }
        std::size_t next = 0;
        store.usage(periods, byApp, [&](std::size_t period, const std::vector<UsageRow>& rows) {
            ASSERT_EQ(period, next++);
            EXPECT_EQ(rows, store.usage(periods[period].from, periods[period].to, byApp));
        });
        EXPECT_EQ(next, periods.size());
    }
    store.usage({}, false, [](std::size_t, const std::vector<UsageRow>&) { FAIL(); });
}

} // namespace
} // namespace lumnara
