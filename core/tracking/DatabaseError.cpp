#include "core/tracking/DatabaseError.h"

#include <fmt/format.h>
#include <sqlite3.h>
#include <utility>

namespace lumnara {

namespace {

using Case = DatabaseError::Case;

Case caseOf(int code) {
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

const char* explanationOf(Case which) {
    switch (which) {
    case Case::cannotOpen: return "The database {} can't be opened: {}.";
    case Case::notADatabase: return "The file {} is no database and was left as it is: {}.";
    case Case::damaged: return "The database {} is damaged and was left as it is: {}.";
    case Case::locked: return "Another program is using the database {}: {}.";
    case Case::full: return "There is no room left for the database {}: {}.";
    case Case::readOnly: return "The database {} can't be written: {}.";
    case Case::newerSchema: return "The database {} was made by a newer version of Lumnara: {}.";
    case Case::failed: break;
    }
    return "The database {} failed: {}.";
}

std::string sentenceFor(Case which, const std::filesystem::path& file, const std::string& reason) {
    return fmt::format(fmt::runtime(explanationOf(which)), file.empty() ? "in memory" : file.string(),
                       reason);
}

} // namespace

DatabaseError::DatabaseError(Case which, int code, std::string sentence)
    : Failure(std::move(sentence)),
      which_(which),
      code_(code) {}

DatabaseError DatabaseError::of(int code, const std::filesystem::path& file, const std::string& reason) {
    const Case which = caseOf(code);
    return {which, code, sentenceFor(which, file, reason)};
}

DatabaseError DatabaseError::damagedValue(const std::filesystem::path& file, const std::string& what) {
    return {Case::damaged, 0, sentenceFor(Case::damaged, file, what)};
}

DatabaseError DatabaseError::newerSchema(const std::filesystem::path& file, const std::string& migration) {
    return {Case::newerSchema, 0,
            sentenceFor(Case::newerSchema, file, fmt::format("it has the change \"{}\"", migration))};
}

} // namespace lumnara
