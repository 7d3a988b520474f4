#pragma once

#include "core/base/Date.h"
#include "core/tracking/DatabaseError.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace lumnara {

class Database;

/// A prepared statement. Its columns count from 0, and what they give lasts until the next step.
class Statement {
public:
    /// Binds all parameters of the statement, in their order. The texts outlive the statement's use.
    template <class... Values> Statement& bind(const Values&... values) {
        int index = 0;
        (bindOne(++index, values), ...);
        return *this;
    }
    /// Goes on to the next row; false after the last.
    bool step();
    /// For a statement that gives no rows.
    void run() { step(); }
    /// Makes it ready to be bound and run anew.
    void reset();

    bool isNull(int column) const;
    std::int64_t integer(int column) const;
    double real(int column) const;
    std::string_view text(int column) const;
    std::optional<std::string_view> optionalText(int column) const;
    /// Throws DatabaseError::damagedValue for a text that is no date.
    Date date(int column) const;
    std::optional<Date> optionalDate(int column) const;

private:
    friend class Database;
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const;
    };
    Statement(const Database& database, std::string_view sql);

    void check(int code) const;
    void bindNull(int index);
    void bindOne(int index, bool value) { bindOne(index, std::int64_t{value}); }
    void bindOne(int index, std::int64_t value);
    void bindOne(int index, double value);
    void bindOne(int index, std::string_view value);
    void bindOne(int index, Date value);
    template <class T> void bindOne(int index, const std::optional<T>& value) {
        value ? bindOne(index, *value) : bindNull(index);
    }

    const Database* database_;
    std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

/// One connection to an SQLite database, with foreign keys held to and everything else as SQLite has it: a
/// rollback journal, and no waiting for another connection. Everything throws DatabaseError. It outlives its
/// statements.
class Database {
public:
    /// Opens the file, or makes it with mode 0600.
    explicit Database(std::filesystem::path file);
    static Database inMemory() { return Database({}); }

    /// Runs statements that have no parameters, divided by semicolons.
    void execute(const char* sql);
    Statement prepare(std::string_view sql) const { return {*this, sql}; }
    std::int64_t lastInsertedId() const;
    /// The rows that were inserted, changed and deleted since it was opened.
    std::int64_t totalChanges() const;
    /// Empty for a database in memory.
    const std::filesystem::path& file() const { return file_; }

    /// Everything done while it lives, or nothing unless it is committed.
    class Transaction {
    public:
        explicit Transaction(Database& database) : database_(database) {
            database.execute("BEGIN IMMEDIATE");
        }
        Transaction(const Transaction&) = delete;
        Transaction& operator=(const Transaction&) = delete;
        ~Transaction();
        void commit();

    private:
        Database& database_;
        bool committed_ = false;
    };

private:
    friend class Statement;
    struct Close {
        void operator()(sqlite3* connection) const;
    };

    void check(int code) const;

    std::filesystem::path file_;
    std::unique_ptr<sqlite3, Close> connection_;
};

} // namespace lumnara
