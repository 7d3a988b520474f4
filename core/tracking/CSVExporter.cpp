#include "core/tracking/CSVExporter.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <tuple>
#include <vector>

namespace lumnara::CSVExporter {

namespace {

void appendField(std::string& out, std::string_view field) {
    if (field.find_first_of(",\"\n") == std::string_view::npos) {
        out += field;
        return;
    }
    out += '"';
    for (const char c : field) {
        if (c == '"') out += '"';
        out += c;
    }
    out += '"';
}

void appendRow(std::string& out, const std::vector<std::string_view>& fields) {
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (i > 0) out += ',';
        appendField(out, fields[i]);
    }
    out += "\r\n";
}

std::string_view appNameOf(const UsageRow& row) {
    return row.appName ? std::string_view(*row.appName) : std::string_view();
}

std::string minutesIn(double seconds) { return fmt::format("{:.0f}", std::round(seconds / 60)); }

void appendUsage(std::string& out, std::string_view label, const UsageRow& row, bool withApp) {
    const std::string active = minutesIn(row.active);
    const std::string idle = minutesIn(row.idle);
    const std::string total = minutesIn(row.active + row.idle);
    std::vector<std::string_view> fields{label, row.spaceKey, row.spaceName};
    if (withApp) fields.push_back(appNameOf(row));
    fields.insert(fields.end(), {active, idle, total});
    appendRow(out, fields);
}

} // namespace

std::string exportText(TrackingStore& store, DateRange range, bool includeApps, CSVGrouping grouping,
                       const text::Calendar& calendar) {
    std::string out;
    std::vector<std::string_view> header{"Date", "Space ID", "Space Name"};
    if (includeApps) header.emplace_back("App");
    header.insert(header.end(), {"Active (min)", "Idle (min)", "Total (min)"});
    appendRow(out, header);

    const auto periods = periodsOf(range, grouping, calendar);
    std::vector<DateRange> ranges;
    ranges.reserve(periods.size());
    for (const LabelledPeriod& period : periods) ranges.push_back(period.range);
    store.usage(ranges, includeApps, [&](std::size_t index, std::vector<UsageRow> rows) {
        // The key decides among apps of one name.
        std::ranges::sort(rows, {}, [](const UsageRow& row) {
            return std::tuple<std::string_view, std::string_view, std::string_view>(row.spaceName,
                                                                                    appNameOf(row), row.key);
        });
        for (const UsageRow& row : rows) appendUsage(out, periods[index].label, row, includeApps);
    });
    return out;
}

} // namespace lumnara::CSVExporter
