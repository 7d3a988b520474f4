// What recorded times cost: to write an interval, to sum a report beside the same sums by sqlite3 in plain
// SQL, to export a year.

#include "bench/Bench.h"
#include "core/async/TestLoop.h"
#include "core/tracking/CSVExporter.h"
#include "core/tracking/Database.h"
#include "core/tracking/DatabaseDate.h"
#include "core/tracking/UsageSampler.h"
#include "tests/support/TemporaryFolder.h"

#include <cmath>
#include <cstdlib>
#include <fmt/format.h>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace lumnara::bench {
namespace {

constexpr double yearSeconds = 365 * 86'400.0;
constexpr int desktops = 12;
constexpr int apps = 9;

/// A year before the loop's present moment, cut into intervals without gaps.
class RecordedYear {
public:
    RecordedYear(const async::Loop& loop, const std::filesystem::path& file, int intervals)
        : store(loop, file),
          range{loop.date().plusSeconds(-yearSeconds), loop.date()} {
        Database::Transaction transaction(store.database());
        Statement statement = store.database().prepare(
            "INSERT INTO intervals (spaceKey, spaceName, displayUUID, appBundleID, appName, startedAt, "
            "endedAt, "
            "isIdle) VALUES ('1D2C3B4A-0000-4000-8000-' || ?1, 'Desktop ' || ?1, '37D8832A-2D66-02CA-B9F7', "
            "'org.example.app' || ?2, 'Application ' || ?2, ?3, ?4, ?5)");
        const double step = yearSeconds / intervals;
        for (int i = 0; i < intervals; ++i) {
            const auto desktop = std::int64_t{i} * 7 % desktops;
            const auto app = std::int64_t{i} * 5 % apps;
            statement
                .bind(desktop, app, range.from.plusSeconds(step * i), range.from.plusSeconds(step * (i + 1)),
                      i % 6 == 0)
                .run();
            statement.reset();
        }
        transaction.commit();
    }

    TrackingStore store;
    DateRange range;
};

/// The same report in plain SQL.
std::string plainSql(DateRange range, bool byApp) {
    const std::string from = databaseText(range.from), to = databaseText(range.to);
    return fmt::format(
        "SELECT spaceKey, {key} AS app, spaceName, sum(CASE WHEN isIdle THEN 0 ELSE length END), "
        "sum(CASE WHEN isIdle THEN length ELSE 0 END) FROM (SELECT spaceKey, appBundleID, appName, "
        "spaceName, "
        "isIdle, (julianday(min(coalesce(endedAt, '{to}'), '{to}')) - julianday(max(startedAt, '{from}'))) * "
        "86400 AS length FROM intervals WHERE startedAt < '{to}' AND (endedAt IS NULL OR endedAt > "
        "'{from}')) "
        "WHERE length > 0 GROUP BY 1, 2 ORDER BY sum(length) DESC;",
        fmt::arg("key", byApp ? "coalesce(appBundleID, appName, 'unknown')" : "NULL"), fmt::arg("from", from),
        fmt::arg("to", to));
}

/// Runs sqlite3 to its end and gives what it printed.
std::string runShell(const std::filesystem::path& file, const std::string& sql) {
    FILE* shell = ::popen(fmt::format("sqlite3 '{}' \"{}\"", file.string(), sql).c_str(), "r");
    if (!shell) throw std::runtime_error("no shell");
    std::string printed;
    char buffer[4096];
    while (const auto count = std::fread(buffer, 1, sizeof buffer, shell)) printed.append(buffer, count);
    if (::pclose(shell) != 0) throw std::runtime_error("sqlite3 failed");
    return printed;
}

/// Both add up to the whole year, or the figures mean nothing.
void compareSums(const std::vector<UsageRow>& ours, const std::string& printed) {
    double sum = 0, theirs = 0;
    for (const UsageRow& row : ours) sum += row.active + row.idle;
    std::size_t rows = 0;
    for (std::size_t start = 0; start < printed.size(); ++rows) {
        const std::size_t end = printed.find('\n', start);
        const std::string line = printed.substr(start, end - start);
        const std::size_t idle = line.rfind('|');
        theirs += std::stod(line.substr(idle + 1)) + std::stod(line.substr(line.rfind('|', idle - 1) + 1));
        start = end + 1;
    }
    if (rows != ours.size() || std::abs(sum - yearSeconds) > 1 || std::abs(theirs - yearSeconds) > 60)
        throw std::runtime_error(
            fmt::format("{} rows, {} s; sqlite3: {} rows, {} s", ours.size(), sum, rows, theirs));
}

void compareUsage(Report& report, RecordedYear& year, bool byApp, const std::string& name, int rounds) {
    const std::string sql = plainSql(year.range, byApp);
    std::vector<UsageRow> rows;
    std::string printed;
    std::vector<double> ours, theirs;
    for (int round = 0; round < rounds; ++round) {
        ours.push_back(
            medianMicroseconds(1, [&] { rows = year.store.usage(year.range.from, year.range.to, byApp); }));
        theirs.push_back(medianMicroseconds(1, [&] { printed = runShell(year.store.url(), sql); }));
    }
    compareSums(rows, printed);
    const double our = medianOf(ours) / 1000, their = medianOf(theirs) / 1000;
    report.line(name + "_ms", our);
    report.line(name + "_sqlite3_ms", their, "the whole process");
    report.add(name + "_vs_sqlite3", our / their);
}

/// Kilobytes, from the process's status: "VmHWM" is the most there was, "VmRSS" what there is.
double memory(std::string_view field) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(field)) return std::stod(line.substr(field.size() + 1));
    throw std::runtime_error("no memory told");
}

void exportYear(Report& report, RecordedYear& year) {
    std::ofstream("/proc/self/clear_refs") << "5"; // the peak starts anew
    const double before = memory("VmRSS");
    std::string text;
    const double time = medianMicroseconds(1, [&] {
        text = CSVExporter::exportText(year.store, year.range, true, CSVGrouping::day,
                                       text::Calendar("en_GB", "Europe/London"));
    });
    report.add("export_year_rss_mib", (memory("VmHWM") - before) / 1024,
               fmt::format("a file of {} kB", text.size() / 1000));
    report.line("export_year_ms", time / 1000, "a day and app a row");
}

void writing(Report& report, const async::Loop& loop, const std::filesystem::path& file) {
    TrackingStore store(loop, file);
    Interval interval;
    interval.spaceKey = "1D2C3B4A-0000-4000-8000-000000000001";
    interval.spaceName = "Desktop";
    interval.startedAt = loop.date();
    report.add("inserts_per_s", 1e6 / medianMicroseconds(201, [&] { store.insert(interval); }),
               "each a transaction on disk");

    const SystemClock clock(loop);
    UsageSampler sampler(store, clock);
    const SamplerInput input{interval.spaceKey, interval.spaceName, "D", "org.example.app", "Application"};
    sampler.record(input, false);
    const std::int64_t changes = store.database().totalChanges();
    const auto stamp = std::filesystem::last_write_time(file);
    const double each = medianMicroseconds(1000, [&] { sampler.record(input, false); });
    const auto written = store.database().totalChanges() - changes;
    report.add("unchanged_refresh_writes",
               static_cast<double>(written) + (std::filesystem::last_write_time(file) == stamp ? 0 : 1),
               "in 1000 samples");
    report.line("unchanged_refresh_us", each);
}

void measure() {
    async::TestLoop loop;
    const testing::TemporaryFolder folder;
    Report report("tracking");
    writing(report, loop, folder / "writing.sqlite");
    {
        RecordedYear small(loop, folder / "small.sqlite", 10'000);
        compareUsage(report, small, false, "usage_10k", 21);
        compareUsage(report, small, true, "usage_app_10k", 21);
    }
    RecordedYear big(loop, folder / "big.sqlite", 1'000'000);
    exportYear(report, big);
    compareUsage(report, big, false, "usage_1m", 5);
    compareUsage(report, big, true, "usage_app_1m", 5);
    report.line("usage_last_day_1m_ms", medianMicroseconds(5, [&] {
                                            big.store.usage(loop.date().plusSeconds(-86'400), loop.date(),
                                                            true);
                                        }) / 1000);
}

} // namespace
} // namespace lumnara::bench

int main() {
    lumnara::bench::measure();
    return 0;
}
