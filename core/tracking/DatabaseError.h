#pragma once

#include "core/base/Failure.h"

#include <filesystem>
#include <string>

namespace lumnara {

/// What SQLite could not do, told for a user and ended by SQLite's own words.
class DatabaseError : public FailureOf<DatabaseError, int, std::string, std::string> {
public:
    enum class Case {
        cannotOpen,   ///< the file can't be opened or made
        notADatabase, ///< the file is something else
        damaged,      ///< the file's pages don't fit together, or a value in it can't be read
        locked,       ///< another program holds the file
        full,         ///< there is no room left on the disk
        readOnly,     ///< the file or its folder can't be written
        newerSchema,  ///< a later version of the system has changed the file
        failed        ///< anything else
    };
    static constexpr Sentence<Case> sentences[] = {
        {Case::cannotOpen, "The database {1} can't be opened: {2}."},
        {Case::notADatabase, "The file {1} is no database and was left as it is: {2}."},
        {Case::damaged, "The database {1} is damaged and was left as it is: {2}."},
        {Case::locked, "Another program is using the database {1}: {2}."},
        {Case::full, "There is no room left for the database {1}: {2}."},
        {Case::readOnly, "The database {1} can't be written: {2}."},
        {Case::newerSchema, "The database {1} was made by a newer version of Lumnara: {2}."},
        {Case::failed, "The database {1} failed: {2}."},
    };

    /// `code` is SQLite's result code, extended or not; `reason` its words. `file` is empty for a database
    /// in memory.
    static DatabaseError of(int code, const std::filesystem::path& file, std::string reason);
    static DatabaseError damagedValue(const std::filesystem::path& file, std::string what);
    static DatabaseError newerSchema(const std::filesystem::path& file, const std::string& migration);

private:
    using FailureOf::FailureOf;
};

} // namespace lumnara
