#pragma once

#include "core/base/Failure.h"

#include <filesystem>
#include <string>

namespace lumnara {

/// What SQLite could not do, told for a user and ended by SQLite's own words.
class DatabaseError : public Failure {
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

    /// `code` is SQLite's result code, extended or not; `reason` its words. `file` is empty for a database
    /// in memory.
    static DatabaseError of(int code, const std::filesystem::path& file, const std::string& reason);
    static DatabaseError damagedValue(const std::filesystem::path& file, const std::string& what);
    static DatabaseError newerSchema(const std::filesystem::path& file, const std::string& migration);

    Case which() const { return which_; }
    /// SQLite's result code; 0 when it was not SQLite that failed.
    int code() const { return code_; }
    bool operator==(const DatabaseError& other) const {
        return which_ == other.which_ && code_ == other.code_ && sentence() == other.sentence();
    }

private:
    DatabaseError(Case which, int code, std::string sentence);

    Case which_;
    int code_;
};

} // namespace lumnara
