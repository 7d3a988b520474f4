#include "core/tracking/TrackingStore.h"

#include "core/base/Files.h"
#include "core/tracking/Database.h"
#include "core/tracking/DatabaseDate.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tracking/TrackingTest.h"

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <vector>

namespace lumnara {
namespace {

using testing::at;
using testing::failureOf;
using testing::interval;
using Case = DatabaseError::Case;

mode_t modeOf(const std::filesystem::path& path) {
    struct stat status{};
    return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

class TrackingStoreTest : public ::testing::Test {
protected:
    /// The first column of a query, row by row, in text.
    static std::string queried(Database& database, std::string_view sql) {
        Statement row = database.prepare(sql);
        std::string all;
        while (row.step()) all += (row.isNull(0) ? "NULL" : std::string(row.text(0))) + ";";
        return all;
    }
    std::string query(std::string_view sql) { return queried(store.database(), sql); }

    testing::TemporaryFolder folder;
    const std::filesystem::path file = folder / "a/b/tracking.sqlite";
    async::TestLoop loop;
    TrackingStore store{loop};
};

TEST(DatabaseDate, GoesToTextAndBack) {
    EXPECT_EQ(databaseText(Date{at(1).milliseconds + 7}), "2026-01-05 09:00:01.007");
    EXPECT_EQ(databaseText(Date{-1}), "1969-12-31 23:59:59.999");
    for (const std::int64_t moment : {std::int64_t{0}, std::int64_t{-1}, std::int64_t{951'782'399'999},
                                      std::int64_t{951'782'400'000}, std::int64_t{-62'167'219'200'000}})
        EXPECT_EQ(databaseDate(databaseText(Date{moment})), Date{moment});
    EXPECT_EQ(databaseDate("2026-01-05 09:00:00"), at(0)) << "the form that datetime() writes";
    EXPECT_LT(databaseText(Date{INT64_MIN / 2}), databaseText(Date{INT64_MAX / 2}));
    for (const char* text : {"", "2026-01-05", "2026-01-05T09:00:00", "2026-02-29 09:00:00",
                             "2026-01-05 24:00:00.000", "2026-01-05 09:00:00.00", "2026-01-05 09:00:00,000",
                             "2026-01-05 09:00:0 .000", "2026-00-05 09:00:00", "+026-01-05 09:00:00"})
        EXPECT_EQ(databaseDate(text), std::nullopt) << text;
}

TEST_F(TrackingStoreTest, HasTheSchemaOfEveryFileOutThere) {
    EXPECT_EQ(query("SELECT name || ' ' || type || ' ' || \"notnull\" || ' ' || coalesce(dflt_value, '-') || "
                    "' ' || pk FROM pragma_table_info('sessions')"),
              "id TEXT 1 - 1;name TEXT 1 - 0;startedAt DATETIME 1 - 0;endedAt DATETIME 0 - 0;"
              "pausedSeconds DOUBLE 1 0 0;state TEXT 1 - 0;");
    EXPECT_EQ(query("SELECT name || ' ' || type || ' ' || \"notnull\" || ' ' || coalesce(dflt_value, '-') || "
                    "' ' || pk FROM pragma_table_info('intervals')"),
              "id INTEGER 0 - 1;sessionID TEXT 0 - 0;spaceKey TEXT 1 - 0;spaceName TEXT 1 - 0;"
              "displayUUID TEXT 1 - 0;appBundleID TEXT 0 - 0;appName TEXT 0 - 0;startedAt DATETIME 1 - 0;"
              "endedAt DATETIME 0 - 0;isIdle BOOLEAN 1 0 0;lastHeartbeat DATETIME 0 - 0;");
    EXPECT_EQ(query("SELECT list.name || ' ' || list.\"unique\" || ' ' || info.name FROM "
                    "pragma_index_list('intervals') list, pragma_index_info(list.name) info ORDER BY 1"),
              "intervals_sessionID 0 sessionID;intervals_spaceKey 0 spaceKey;"
              "intervals_startedAt 0 startedAt;");
    EXPECT_EQ(query("SELECT \"table\" || ' ' || on_delete FROM pragma_foreign_key_list('intervals')"),
              "sessions SET NULL;");
    EXPECT_EQ(query("SELECT identifier FROM grdb_migrations ORDER BY rowid"), "v1;v2-lastHeartbeat;");
    EXPECT_EQ(query("PRAGMA foreign_keys"), "1;");
}

TEST_F(TrackingStoreTest, KeepsEveryFieldOfWhatIsWritten) {
    TrackingSession session{"S-1", "Client, \"A\"", at(0), std::nullopt, 0, TrackingSession::State::running};
    store.saveSession(session);
    Interval full = interval(1.5, 2.25);
    full.sessionID = "S-1";
    full.appBundleID = "org.editor";
    full.appName = "Ëditor";
    full.isIdle = true;
    full.lastHeartbeat = at(2);
    full = store.insert(full);
    const Interval bare = store.insert(interval(3, std::nullopt));
    EXPECT_EQ(store.intervals(at(0), at(100)), (std::vector{full, bare}));
    EXPECT_EQ(query("SELECT startedAt || ' ' || typeof(startedAt) || ' ' || isIdle || typeof(isIdle) FROM "
                    "intervals WHERE id = 1"),
              "2026-01-05 09:00:01.500 text 1integer;");

    session.state = TrackingSession::State::ended;
    session.endedAt = at(9);
    store.saveSession(session);
    const TrackingSession later{"S-2", "", at(10), std::nullopt, 0, TrackingSession::State::paused};
    store.saveSession(later);
    EXPECT_EQ(store.sessions(), (std::vector{later, session}));
    EXPECT_EQ(store.intervals(at(0), at(3)).front().sessionID, "S-1") << "saving again replaces no row";
    store.database().execute("DELETE FROM sessions");
    EXPECT_EQ(store.intervals(at(0), at(3)).front().sessionID, std::nullopt);
}

TEST_F(TrackingStoreTest, ClosesAndTouchesOpenIntervalsOnly) {
    const std::int64_t id = *store.insert(interval(0, std::nullopt)).id;
    store.heartbeat(id, at(60));
    store.closeInterval(id, at(90));
    store.closeInterval(id, at(1000));
    store.heartbeat(id, at(1000));
    store.closeInterval(77, at(1000));
    store.heartbeat(77, at(1000));
    store.deleteInterval(77);
    EXPECT_EQ(query("SELECT endedAt || '/' || lastHeartbeat FROM intervals"),
              "2026-01-05 09:01:30.000/2026-01-05 09:01:00.000;");

    const Interval older = store.insert(interval(100, std::nullopt));
    const Interval newer = store.insert(interval(200, std::nullopt));
    EXPECT_EQ(store.openInterval(), newer);
    store.deleteInterval(*newer.id);
    EXPECT_EQ(store.openInterval(), older);
    store.closeAllOpen(at(300));
    EXPECT_EQ(store.openInterval(), std::nullopt);

    store.renameSpace("work", "Garden");
    EXPECT_EQ(query("SELECT DISTINCT spaceName FROM intervals"), "Garden;");
    store.insert(interval(0, std::nullopt));
    store.prune(at(300));
    EXPECT_EQ(query("SELECT coalesce(endedAt, 'open') FROM intervals ORDER BY 1"),
              "2026-01-05 09:05:00.000;open;")
        << "what ended at the moment itself stays, and what is open";
}

TEST_F(TrackingStoreTest, RepairsAtTheLastHeartbeatOrSomeSecondsAfterTheStart) {
    const std::int64_t beaten = *store.insert(interval(0, std::nullopt)).id;
    store.heartbeat(beaten, at(61.25));
    store.insert(interval(10.75, std::nullopt));
    store.insert(interval(20, 30));
    store.repairOpenIntervals(120.9);
    EXPECT_EQ(query("SELECT endedAt FROM intervals ORDER BY id"),
              "2026-01-05 09:01:01.250;2026-01-05 09:02:10;2026-01-05 09:00:30.000;");
    EXPECT_EQ(store.intervals(at(0), at(1000)).at(1).endedAt, at(130)) << "datetime() cuts the fraction";
}

TEST_F(TrackingStoreTest, FetchesWhatOverlapsTheRange) {
    store.insert(interval(0, 10));
    store.insert(interval(20, 30));
    store.insert(interval(5, std::nullopt));
    const auto starts = [&](double from, double to) {
        std::string all;
        for (const Interval& found : store.intervals(at(from), at(to)))
            all += std::to_string(static_cast<int>(found.startedAt.secondsSince(at(0)))) + " ";
        return all;
    };
    EXPECT_EQ(starts(10, 20), "5 ") << "the ends of a range belong to its neighbours";
    EXPECT_EQ(starts(9.999, 20.001), "0 5 20 ");
    EXPECT_EQ(starts(0, 5), "0 ");
    EXPECT_EQ(starts(30, 20), "5 ");
}

TEST_F(TrackingStoreTest, BringsAnOldFileUpToDateAndKeepsItsRows) {
    makeFolder(file.parent_path());
    {
        Database old{file};
        old.execute(
            "CREATE TABLE grdb_migrations (identifier TEXT NOT NULL PRIMARY KEY);"
            "INSERT INTO grdb_migrations VALUES ('v1');"
            "CREATE TABLE sessions (id TEXT PRIMARY KEY NOT NULL, name TEXT NOT NULL, startedAt DATETIME "
            "NOT NULL, endedAt DATETIME, pausedSeconds DOUBLE NOT NULL DEFAULT 0, state TEXT NOT NULL);"
            "CREATE TABLE intervals (id INTEGER PRIMARY KEY AUTOINCREMENT, sessionID TEXT REFERENCES "
            "sessions ON DELETE SET NULL, spaceKey TEXT NOT NULL, spaceName TEXT NOT NULL, displayUUID "
            "TEXT NOT NULL, appBundleID TEXT, appName TEXT, startedAt DATETIME NOT NULL, endedAt "
            "DATETIME, isIdle BOOLEAN NOT NULL DEFAULT 0);"
            "INSERT INTO intervals (spaceKey, spaceName, displayUUID, startedAt) VALUES "
            "('work', 'Work', 'D', '2026-01-05 09:00:00.000')");
    }
    for (int start = 0; start < 2; ++start) {
        TrackingStore reopened(loop, file);
        const auto all = reopened.intervals(at(0), at(1));
        ASSERT_EQ(all.size(), 1U);
        EXPECT_EQ(all[0].lastHeartbeat, std::nullopt);
        reopened.heartbeat(*all[0].id, at(5));
        EXPECT_EQ(reopened.openInterval()->lastHeartbeat, at(5));
        reopened.database().execute("UPDATE intervals SET lastHeartbeat = NULL");
    }
}

TEST_F(TrackingStoreTest, MakesAPrivateFileThatLasts) {
    {
        TrackingStore made(loop, file);
        made.insert(interval(0, 1));
        EXPECT_EQ(queried(made.database(), "PRAGMA journal_mode"), "delete;");
    }
    EXPECT_EQ(modeOf(file), 0600U);
    EXPECT_EQ(modeOf(file.parent_path()), 0700U);
    EXPECT_EQ(modeOf(file.parent_path().parent_path()), 0700U);
    EXPECT_EQ(TrackingStore(loop, file).intervals(at(0), at(1)).size(), 1U);
}

TEST_F(TrackingStoreTest, LeavesAloneWhatItCannotRead) {
    const auto opening = [&] { return failureOf([&] { TrackingStore(loop, file); }); };
    const std::string letter(5000, 'x');
    replaceFile(file, letter);
    EXPECT_EQ(opening(), Case::notADatabase);
    EXPECT_EQ(readFile(file), letter);

    std::filesystem::remove(file);
    std::filesystem::create_directory(file);
    EXPECT_EQ(opening(), Case::cannotOpen);
    std::filesystem::remove(file);

    TrackingStore(loop, file).database().execute("INSERT INTO grdb_migrations VALUES ('v9-future')");
    const std::string newer = readFile(file);
    EXPECT_EQ(opening(), Case::newerSchema);
    EXPECT_EQ(readFile(file), newer);
}

TEST_F(TrackingStoreTest, TellsADamagedFileFromItsRows) {
    {
        TrackingStore made(loop, file);
        Database::Transaction transaction(made.database());
        for (int i = 0; i < 2000; ++i) made.insert(interval(i, i + 1));
        transaction.commit();
    }
    std::string bytes = readFile(file);
    std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(bytes.size() / 8), bytes.end(), '\xFF');
    replaceFile(file, bytes);
    EXPECT_EQ(failureOf([&] { TrackingStore(loop, file).usage(at(0), at(10), false); }), Case::damaged);

    store.database().execute("INSERT INTO intervals (spaceKey, spaceName, displayUUID, startedAt) VALUES "
                             "('work', 'Work', 'D', '2026-01-05 quarter past')");
    EXPECT_EQ(failureOf([&] { store.intervals(at(0), at(86'400)); }), Case::damaged);
    EXPECT_EQ(failureOf([&] { store.usage(at(0), at(86'400), true); }), Case::damaged);
}

TEST_F(TrackingStoreTest, GivesUpAtOnceWhileAnotherProgramHoldsTheFile) {
    TrackingStore held(loop, file);
    const std::int64_t id = *held.insert(interval(0, std::nullopt)).id;
    Database other{file};
    {
        Database::Transaction transaction(other);
        EXPECT_EQ(failureOf([&] { held.heartbeat(id, at(60)); }), Case::locked);
        EXPECT_EQ(held.intervals(at(0), at(1)).size(), 1U) << "who only writes later still lets others read";
    }
    held.heartbeat(id, at(61));
    EXPECT_EQ(held.openInterval()->lastHeartbeat, at(61));
    other.execute("BEGIN EXCLUSIVE");
    EXPECT_EQ(failureOf([&] { held.openInterval(); }), Case::locked);
    EXPECT_EQ(failureOf([&] { TrackingStore(loop, file); }), Case::locked);
}

TEST_F(TrackingStoreTest, ADiskThatTakesNoMoreCostsTheWriteAndNothingElse) {
    TrackingStore made(loop, file);
    const auto fill = [&] {
        return failureOf([&] {
            for (int i = 0; i < 4000; ++i) made.insert(interval(i, i + 1));
        });
    };
    made.database().execute("BEGIN"); // many inserts, one look at the disk
    made.database().execute("PRAGMA max_page_count = 20");
    EXPECT_EQ(fill(), Case::full);
    made.database().execute("PRAGMA max_page_count = 100000");

    const auto before = made.intervals(at(0), at(1e6)).size();
    const auto ignored = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    ::getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit small{std::filesystem::file_size(file) + 8192, limit.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &small);
    const auto outcome = fill();
    ::setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, ignored);
    EXPECT_EQ(outcome, Case::failed) << "a limit on files is no full disk to SQLite";
    EXPECT_GE(made.intervals(at(0), at(1e6)).size(), before);
    EXPECT_EQ(queried(made.database(), "PRAGMA integrity_check"), "ok;");
    made.insert(interval(0, 1));
}

} // namespace
} // namespace lumnara
