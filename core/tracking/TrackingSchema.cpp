#include "core/tracking/TrackingSchema.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace lumnara::TrackingSchema {

namespace {

struct Migration {
    const char* identifier;
    const char* sql;
};

// Names, types and identifiers are promises to every database out there.
constexpr std::array migrations = {
    Migration{"v1", R"sql(
        CREATE TABLE sessions (
            id TEXT PRIMARY KEY NOT NULL,
            name TEXT NOT NULL,
            startedAt DATETIME NOT NULL,
            endedAt DATETIME,
            pausedSeconds DOUBLE NOT NULL DEFAULT 0,
            state TEXT NOT NULL
        );
        CREATE TABLE intervals (
            id INTEGER PRIMARY KEY AUTOINCREMENT,
            sessionID TEXT REFERENCES sessions ON DELETE SET NULL,
            spaceKey TEXT NOT NULL,
            spaceName TEXT NOT NULL,
            displayUUID TEXT NOT NULL,
            appBundleID TEXT,
            appName TEXT,
            startedAt DATETIME NOT NULL,
            endedAt DATETIME,
            isIdle BOOLEAN NOT NULL DEFAULT 0
        );
        CREATE INDEX intervals_startedAt ON intervals (startedAt);
        CREATE INDEX intervals_spaceKey ON intervals (spaceKey);
        CREATE INDEX intervals_sessionID ON intervals (sessionID);
    )sql"},
    Migration{"v2-lastHeartbeat", "ALTER TABLE intervals ADD COLUMN lastHeartbeat DATETIME"},
};

bool isKnown(const std::string& identifier) {
    return std::ranges::any_of(migrations,
                               [&](const Migration& known) { return known.identifier == identifier; });
}

std::vector<std::string> appliedIn(const Database& database) {
    std::vector<std::string> applied;
    Statement statement = database.prepare("SELECT identifier FROM grdb_migrations");
    while (statement.step()) applied.emplace_back(statement.text(0));
    return applied;
}

} // namespace

void migrate(Database& database) {
    database.execute("CREATE TABLE IF NOT EXISTS grdb_migrations (identifier TEXT NOT NULL PRIMARY KEY)");
    const auto applied = appliedIn(database);
    for (const std::string& identifier : applied)
        if (!isKnown(identifier)) throw DatabaseError::newerSchema(database.file(), identifier);
    for (const Migration& migration : migrations) {
        if (std::ranges::find(applied, migration.identifier) != applied.end()) continue;
        Database::Transaction transaction(database);
        database.execute(migration.sql);
        const std::string_view identifier = migration.identifier;
        database.prepare("INSERT INTO grdb_migrations (identifier) VALUES (?)").bind(identifier).run();
        transaction.commit();
    }
}

} // namespace lumnara::TrackingSchema
