#include "core/tracking/DatabaseError.h"

#include <fmt/format.h>
#include <sqlite3.h>
#include <utility>

namespace lumnara {

namespace {

DatabaseError::Case databaseCaseOf(int code) {
    using Case = DatabaseError::Case;
    switch (code & 0xFF) { // an extended code has the plain one in its low byte
    case SQLITE_CANTOPEN: return Case::cannotOpen;
    case SQLITE_NOTADB: return Case::notADatabase;
    case SQLITE_CORRUPT: return Case::damaged;
    case SQLITE_BUSY:
    case SQLITE_LOCKED: return Case::locked;
    case SQLITE_FULL: return Case::full;
    case SQLITE_READONLY:
    case SQLITE_PERM: return Case::readOnly;
    default: return Case::failed;
    }
}

std::string databaseName(const std::filesystem::path& file) {
    return file.empty() ? "in memory" : file.string();
}

} // namespace

DatabaseError DatabaseError::of(int code, const std::filesystem::path& file, std::string reason) {
    return DatabaseError(databaseCaseOf(code), code, databaseName(file), std::move(reason));
}

DatabaseError DatabaseError::damagedValue(const std::filesystem::path& file, std::string what) {
    return DatabaseError(Case::damaged, 0, databaseName(file), std::move(what));
}

DatabaseError DatabaseError::newerSchema(const std::filesystem::path& file, const std::string& migration) {
    return DatabaseError(Case::newerSchema, 0, databaseName(file),
                         fmt::format("it has the change \"{}\"", migration));
}

} // namespace lumnara
