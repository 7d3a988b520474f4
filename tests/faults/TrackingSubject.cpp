#include "tests/faults/TrackingSubject.h"

#include "core/tracking/Database.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>

namespace lumnara::testing {

namespace {

namespace fs = std::filesystem;

constexpr double spacing = 1000;
constexpr double beatAfter = 60;
constexpr double repairAfter = 120;
constexpr int sessionEvery = 3;

fs::path trackingFile(const fs::path& folder) { return folder / TrackingStore::fileName; }

/// When change k is made; years before any real date, so that all of it lies in the past.
Date momentOf(int k) { return Date{1'500'000'000'000}.plusSeconds(spacing * k); }

std::vector<Interval> allIntervals(TrackingStore& store) {
    return store.intervals(momentOf(0), momentOf(1'000'000));
}

void checkPages(TrackingStore& store) {
    Statement row = store.database().prepare("PRAGMA integrity_check");
    if (!row.step() || row.text(0) != "ok")
        throw Damage("the database is damaged: " + std::string(row.text(0)));
}

/// The k-th row is as change() makes it, and closed unless it is the last.
void checkRow(const Interval& row, int k, bool isLast) {
    const auto fail = [&](const char* what) { throw Damage(fmt::format("interval {}: {}", k, what)); };
    if (row.spaceKey != std::to_string(k)) fail("another one stands in its place");
    if (row.startedAt != momentOf(k)) fail("another start");
    const Date beat = momentOf(k).plusSeconds(beatAfter);
    if (row.lastHeartbeat && row.lastHeartbeat != beat) fail("another heartbeat");
    if (!row.endedAt && !isLast) fail("left open");
    const Date repaired = row.lastHeartbeat ? beat : momentOf(k).plusSeconds(repairAfter);
    if (row.endedAt && row.endedAt != repaired && row.endedAt != momentOf(k + 1)) fail("another end");
}

} // namespace

TrackingSubject::TrackingSubject(async::Loop& loop, const fs::path& folder)
    : store_(loop, trackingFile(folder)),
      row_(static_cast<int>(allIntervals(store_).size())) {
    sampler_.repairAfterCrash();
}

void TrackingSubject::change(int k) {
    if (std::exchange(change_, k) != k) {
        ++row_;
        hasSession_ = false;
    }
    const std::string desktop = std::to_string(row_);
    clock_.date = momentOf(row_);
    if (row_ % sessionEvery == 0 && !hasSession_) {
        sampler_.closeCurrent();
        sampler_.startSession("session " + desktop);
        hasSession_ = true;
    }
    sampler_.record({desktop, "Desktop " + desktop, "D", "org.app", std::nullopt}, row_ % 2 == 0);
    clock_.date = momentOf(row_).plusSeconds(beatAfter);
    sampler_.beat();
}

int TrackingSubject::found(async::Loop& loop, const fs::path& folder) {
    if (!fs::exists(trackingFile(folder))) return 0;
    TrackingStore store(loop, trackingFile(folder));
    checkPages(store);
    const std::vector<Interval> rows = allIntervals(store);
    const int last = static_cast<int>(rows.size());
    for (int k = 1; k <= last; ++k) checkRow(rows[static_cast<std::size_t>(k - 1)], k, k == last);
    const auto sessions = store.sessions();
    for (int k = sessionEvery; k <= last; k += sessionEvery)
        if (std::ranges::find(sessions, "session " + std::to_string(k), &TrackingSession::name) ==
            sessions.end())
            throw Damage(fmt::format("session {} is missing", k));
    return static_cast<int>(
        std::ranges::count_if(rows, [](const Interval& row) { return row.lastHeartbeat.has_value(); }));
}

void expectRepairedIntervals(async::Loop& loop, const fs::path& folder) {
    std::vector<Interval> before;
    {
        TrackingStore store(loop, trackingFile(folder));
        before = allIntervals(store);
    }
    const TrackingSubject restarted(loop, folder);
    TrackingStore store(loop, trackingFile(folder));
    const std::vector<Interval> after = allIntervals(store);
    if (after.size() != before.size()) throw Damage("the repair changed the number of intervals");
    for (std::size_t i = 0; i < before.size(); ++i) {
        Interval expected = before[i];
        if (!expected.endedAt)
            expected.endedAt = expected.lastHeartbeat.value_or(expected.startedAt.plusSeconds(repairAfter));
        if (after[i] != expected) throw Damage(fmt::format("interval {} is not repaired", i + 1));
    }
}

} // namespace lumnara::testing
