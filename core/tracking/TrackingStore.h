#pragma once

#include "core/async/Loop.h"
#include "core/tracking/DatabaseError.h"
#include "core/tracking/TrackingRecords.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumnara {

class Database;

/// Owns the local SQLite database of how long the user spent on each desktop and in each app there. One
/// connection, on the main thread; nothing waits for another program that holds the file. Every member
/// throws DatabaseError; a write that throws has changed nothing. The statements that close or touch an
/// interval pass over closed and unknown ones. Rows are kept until somebody prunes them.
class TrackingStore {
public:
    static constexpr const char* fileName = "tracking.sqlite";

    /// Opens or makes the file, with mode 0600 and its folders with 0700, and brings its schema up to date.
    /// The loop tells the present moment, to which an open interval counts; it outlives the store.
    TrackingStore(const async::Loop& loop, std::filesystem::path url);
    /// The same in memory.
    explicit TrackingStore(const async::Loop& loop);
    TrackingStore(const TrackingStore&) = delete;
    TrackingStore& operator=(const TrackingStore&) = delete;
    ~TrackingStore();

    /// The file's location; ":memory:" for a database in memory.
    const std::filesystem::path& url() const { return url_; }
    Database& database() { return *database_; }

    /// Gives the interval with its row id.
    Interval insert(Interval interval);
    void closeInterval(std::int64_t id, Date at);
    void heartbeat(std::int64_t id, Date at);
    void deleteInterval(std::int64_t id);
    /// Closes each open interval at its last heartbeat or else so many seconds, whole ones, after its start.
    void repairOpenIntervals(double seconds);
    void closeAllOpen(Date at);
    /// Replaces the session of this id, or adds it.
    void saveSession(const TrackingSession& session);
    void renameSpace(std::string_view spaceKey, std::string_view name);
    /// Forgets the intervals that ended before that moment.
    void prune(Date before);

    /// The newest one.
    std::optional<Interval> openInterval();
    /// The intervals that overlap the range, oldest first.
    std::vector<Interval> intervals(Date from, Date to);
    /// Newest first.
    std::vector<TrackingSession> sessions();

    /// The time in the range by desktop, or by app and desktop, of one session or of all; the longest first.
    std::vector<UsageRow> usage(Date from, Date to, bool byApp,
                                const std::optional<std::string>& sessionID = std::nullopt);
    /// usage() of each period, which follow one another without overlap, handed over one by one in their
    /// order. Reads the database once, and keeps no more than the rows of the periods not handed over yet.
    void usage(const std::vector<DateRange>& periods, bool byApp,
               const std::function<void(std::size_t period, std::vector<UsageRow> rows)>& take);

private:
    void sumUsage(const std::vector<DateRange>& periods, bool byApp,
                  const std::optional<std::string>& sessionID,
                  const std::function<void(std::size_t, std::vector<UsageRow>)>& take);

    const async::Loop& loop_;
    const std::filesystem::path url_;
    const std::unique_ptr<Database> database_;
};

} // namespace lumnara
