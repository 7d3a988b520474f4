#include "core/tracking/TrackingStore.h"

#include "core/base/Files.h"
#include "core/tracking/Database.h"
#include "core/tracking/PeriodUsage.h"
#include "core/tracking/TrackingSchema.h"

#include <fmt/format.h>
#include <utility>

namespace lumnara {

namespace {

constexpr const char* inMemoryName = ":memory:";
constexpr const char* intervalColumns =
    "id, sessionID, spaceKey, spaceName, displayUUID, appBundleID, appName, startedAt, endedAt, isIdle, "
    "lastHeartbeat";
constexpr const char* overlapping =
    "FROM intervals WHERE startedAt < ? AND (endedAt IS NULL OR endedAt > ?) ORDER BY startedAt";

std::optional<std::string> owned(std::optional<std::string_view> text) {
    return text ? std::optional<std::string>(*text) : std::nullopt;
}

/// The row of a statement that selects intervalColumns.
Interval intervalIn(const Statement& row) {
    return {.id = row.integer(0),
            .sessionID = owned(row.optionalText(1)),
            .spaceKey = std::string(row.text(2)),
            .spaceName = std::string(row.text(3)),
            .displayUUID = std::string(row.text(4)),
            .appBundleID = owned(row.optionalText(5)),
            .appName = owned(row.optionalText(6)),
            .startedAt = row.date(7),
            .endedAt = row.optionalDate(8),
            .isIdle = row.integer(9) != 0,
            .lastHeartbeat = row.optionalDate(10)};
}

TrackingSession::State stateIn(const Database& database, std::string_view text) {
    using State = TrackingSession::State;
    for (const State state : {State::running, State::paused, State::ended})
        if (rawValue(state) == text) return state;
    throw DatabaseError::damagedValue(database.file(), fmt::format("\"{}\" is no state of a session", text));
}

std::unique_ptr<Database> openWithFolder(const std::filesystem::path& file) {
    makeFolder(file.parent_path());
    return std::make_unique<Database>(file);
}

} // namespace

TrackingStore::TrackingStore(const async::Loop& loop, std::filesystem::path url)
    : loop_(loop),
      url_(std::move(url)),
      database_(openWithFolder(url_)) {
    TrackingSchema::migrate(*database_);
}

TrackingStore::TrackingStore(const async::Loop& loop)
    : loop_(loop),
      url_(inMemoryName),
      database_(std::make_unique<Database>(std::filesystem::path())) {
    TrackingSchema::migrate(*database_);
}

TrackingStore::~TrackingStore() = default;

Interval TrackingStore::insert(Interval interval) {
    database_
        ->prepare("INSERT INTO intervals (sessionID, spaceKey, spaceName, displayUUID, appBundleID, appName, "
                  "startedAt, endedAt, isIdle, lastHeartbeat) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)")
        .bind(interval.sessionID, interval.spaceKey, interval.spaceName, interval.displayUUID,
              interval.appBundleID, interval.appName, interval.startedAt, interval.endedAt, interval.isIdle,
              interval.lastHeartbeat)
        .run();
    interval.id = database_->lastInsertedId();
    return interval;
}

void TrackingStore::closeInterval(std::int64_t id, Date at) {
    database_->prepare("UPDATE intervals SET endedAt = ? WHERE id = ? AND endedAt IS NULL")
        .bind(at, id)
        .run();
}

void TrackingStore::heartbeat(std::int64_t id, Date at) {
    database_->prepare("UPDATE intervals SET lastHeartbeat = ? WHERE id = ? AND endedAt IS NULL")
        .bind(at, id)
        .run();
}

void TrackingStore::deleteInterval(std::int64_t id) {
    database_->prepare("DELETE FROM intervals WHERE id = ?").bind(id).run();
}

void TrackingStore::repairOpenIntervals(double seconds) {
    const std::string later = fmt::format("+{} seconds", static_cast<std::int64_t>(seconds));
    database_
        ->prepare("UPDATE intervals SET endedAt = COALESCE(lastHeartbeat, datetime(startedAt, ?)) "
                  "WHERE endedAt IS NULL")
        .bind(later)
        .run();
}

void TrackingStore::closeAllOpen(Date at) {
    database_->prepare("UPDATE intervals SET endedAt = ? WHERE endedAt IS NULL").bind(at).run();
}

void TrackingStore::saveSession(const TrackingSession& session) {
    database_
        ->prepare("INSERT INTO sessions (id, name, startedAt, endedAt, pausedSeconds, state) "
                  "VALUES (?, ?, ?, ?, ?, ?) ON CONFLICT (id) DO UPDATE SET name = excluded.name, "
                  "startedAt = excluded.startedAt, endedAt = excluded.endedAt, "
                  "pausedSeconds = excluded.pausedSeconds, state = excluded.state")
        .bind(session.id, session.name, session.startedAt, session.endedAt, session.pausedSeconds,
              rawValue(session.state))
        .run();
}

void TrackingStore::renameSpace(std::string_view spaceKey, std::string_view name) {
    database_->prepare("UPDATE intervals SET spaceName = ? WHERE spaceKey = ?").bind(name, spaceKey).run();
}

void TrackingStore::prune(Date before) {
    database_->prepare("DELETE FROM intervals WHERE endedAt IS NOT NULL AND endedAt < ?").bind(before).run();
}

std::optional<Interval> TrackingStore::openInterval() {
    Statement row = database_->prepare(fmt::format(
        "SELECT {} FROM intervals WHERE endedAt IS NULL ORDER BY startedAt DESC LIMIT 1", intervalColumns));
    return row.step() ? std::optional(intervalIn(row)) : std::nullopt;
}

std::vector<Interval> TrackingStore::intervals(Date from, Date to) {
    Statement row = database_->prepare(fmt::format("SELECT {} {}", intervalColumns, overlapping));
    row.bind(to, from);
    std::vector<Interval> found;
    while (row.step()) found.push_back(intervalIn(row));
    return found;
}

std::vector<TrackingSession> TrackingStore::sessions() {
    Statement row = database_->prepare(
        "SELECT id, name, startedAt, endedAt, pausedSeconds, state FROM sessions ORDER BY startedAt DESC");
    std::vector<TrackingSession> found;
    while (row.step())
        found.push_back({.id = std::string(row.text(0)),
                         .name = std::string(row.text(1)),
                         .startedAt = row.date(2),
                         .endedAt = row.optionalDate(3),
                         .pausedSeconds = row.real(4),
                         .state = stateIn(*database_, row.text(5))});
    return found;
}

std::vector<UsageRow> TrackingStore::usage(Date from, Date to, bool byApp,
                                           const std::optional<std::string>& sessionID) {
    std::vector<UsageRow> report;
    sumUsage({DateRange{from, to}}, byApp, sessionID,
             [&](std::size_t, std::vector<UsageRow> rows) { report = std::move(rows); });
    return report;
}

void TrackingStore::usage(const std::vector<DateRange>& periods, bool byApp,
                          const std::function<void(std::size_t, std::vector<UsageRow>)>& take) {
    if (!periods.empty()) sumUsage(periods, byApp, std::nullopt, take);
}

void TrackingStore::sumUsage(const std::vector<DateRange>& periods, bool byApp,
                             const std::optional<std::string>& sessionID,
                             const std::function<void(std::size_t, std::vector<UsageRow>)>& take) {
    Statement row = database_->prepare(fmt::format(
        "SELECT startedAt, endedAt, isIdle, spaceKey, spaceName, appBundleID, appName, sessionID {}",
        overlapping));
    row.bind(periods.back().to, periods.front().from);
    const Date now = loop_.date();
    PeriodUsage usage(periods, byApp, take);
    UsageSample sample;
    while (row.step()) {
        if (sessionID && row.optionalText(7) != std::string_view(*sessionID)) continue;
        sample.isIdle = row.integer(2) != 0;
        sample.spaceKey = row.text(3);
        sample.spaceName = row.text(4);
        if (byApp) {
            sample.appBundleID = row.optionalText(5);
            sample.appName = row.optionalText(6);
        }
        usage.add(sample, {row.date(0), row.optionalDate(1).value_or(now)});
    }
    usage.finish();
}

} // namespace lumnara
