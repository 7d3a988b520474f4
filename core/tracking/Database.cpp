#include "core/tracking/Database.h"

#include "core/tracking/DatabaseDate.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <string>
#include <unistd.h>
#include <utility>

namespace lumnara {

namespace {

/// Made by SQLite, the file would have the mode that the user's mask leaves.
void makePrivate(const std::filesystem::path& file) {
    const int made = ::open(file.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (made >= 0) ::close(made);
}

} // namespace

void Database::Close::operator()(sqlite3* connection) const { sqlite3_close_v2(connection); }

Database::Database(std::filesystem::path file) : file_(std::move(file)) {
    if (!file_.empty()) makePrivate(file_);
    sqlite3* opened = nullptr;
    const int code = sqlite3_open_v2(file_.empty() ? ":memory:" : file_.c_str(), &opened,
                                     SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    connection_.reset(opened);
    check(code);
    sqlite3_extended_result_codes(opened, 1);
    execute("PRAGMA foreign_keys = ON");
}

void Database::execute(const char* sql) {
    check(sqlite3_exec(connection_.get(), sql, nullptr, nullptr, nullptr));
}

std::int64_t Database::lastInsertedId() const { return sqlite3_last_insert_rowid(connection_.get()); }

std::int64_t Database::totalChanges() const { return sqlite3_total_changes64(connection_.get()); }

void Database::check(int code) const {
    if (code == SQLITE_OK) return;
    sqlite3* connection = connection_.get();
    throw DatabaseError::of(code, file_, connection ? sqlite3_errmsg(connection) : sqlite3_errstr(code));
}

Database::Transaction::~Transaction() {
    // SQLite may have rolled back by itself, and then has nothing to roll back.
    if (!committed_) sqlite3_exec(database_.connection_.get(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void Database::Transaction::commit() {
    database_.execute("COMMIT");
    committed_ = true;
}

void Statement::Finalize::operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }

Statement::Statement(const Database& database, std::string_view sql) : database_(&database) {
    sqlite3_stmt* prepared = nullptr;
    check(sqlite3_prepare_v2(database.connection_.get(), sql.data(), static_cast<int>(sql.size()), &prepared,
                             nullptr));
    statement_.reset(prepared);
}

void Statement::check(int code) const { database_->check(code); }

bool Statement::step() {
    const int code = sqlite3_step(statement_.get());
    if (code == SQLITE_ROW) return true;
    if (code == SQLITE_DONE) return false;
    check(code);
    return false;
}

void Statement::reset() { sqlite3_reset(statement_.get()); }

void Statement::bindNull(int index) { check(sqlite3_bind_null(statement_.get(), index)); }

void Statement::bindOne(int index, std::int64_t value) {
    check(sqlite3_bind_int64(statement_.get(), index, value));
}

void Statement::bindOne(int index, double value) {
    check(sqlite3_bind_double(statement_.get(), index, value));
}

void Statement::bindOne(int index, std::string_view value) {
    // A text without bytes is a text and no NULL, wherever it points.
    check(sqlite3_bind_text64(statement_.get(), index, value.empty() ? "" : value.data(), value.size(),
                              SQLITE_STATIC, SQLITE_UTF8));
}

void Statement::bindOne(int index, Date value) {
    const std::string text = databaseText(value);
    check(sqlite3_bind_text64(statement_.get(), index, text.data(), text.size(), SQLITE_TRANSIENT,
                              SQLITE_UTF8));
}

bool Statement::isNull(int column) const {
    return sqlite3_column_type(statement_.get(), column) == SQLITE_NULL;
}

std::int64_t Statement::integer(int column) const { return sqlite3_column_int64(statement_.get(), column); }

double Statement::real(int column) const { return sqlite3_column_double(statement_.get(), column); }

std::string_view Statement::text(int column) const {
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement_.get(), column));
    return {bytes ? bytes : "", static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), column))};
}

std::optional<std::string_view> Statement::optionalText(int column) const {
    return isNull(column) ? std::nullopt : std::optional(text(column));
}

Date Statement::date(int column) const {
    const auto found = databaseDate(text(column));
    if (!found)
        throw DatabaseError::damagedValue(database_->file(),
                                          "\"" + std::string(text(column)) + "\" is no date");
    return *found;
}

std::optional<Date> Statement::optionalDate(int column) const {
    return isNull(column) ? std::nullopt : std::optional(date(column));
}

} // namespace lumnara
