#include "platform/linux/registry/Database.h"

#include <sqlite3.h>

namespace corvane {

static_assert(kSqliteOk == SQLITE_OK && kSqliteRow == SQLITE_ROW && kSqliteDone == SQLITE_DONE);

Database::~Database() { Close(); }

int Database::Open(const std::string& path, Mode mode, int busyTimeoutMs) {
    Close();
    // SQLite gives ":memory:" and "file:..." a meaning of their own; a leading "./" keeps them file names.
    std::string name = path.starts_with('/') ? path : "./" + path;
    int flags = SQLITE_OPEN_NOMUTEX;
    switch (mode) {
        case Mode::kReadWrite:
            flags |= SQLITE_OPEN_READWRITE;
            break;
        case Mode::kReadOnly:
            flags |= SQLITE_OPEN_READONLY;
            break;
        case Mode::kMemory:
            flags |= SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
            name = ":memory:";
            break;
    }
    int result = sqlite3_open_v2(name.c_str(), &handle_, flags, nullptr);
    if (result == SQLITE_OK) result = sqlite3_busy_timeout(handle_, busyTimeoutMs);
    if (result != SQLITE_OK) Close();
    return result;
}

void Database::SetBusyTimeout(int busyTimeoutMs) {
    if (handle_ != nullptr) static_cast<void>(sqlite3_busy_timeout(handle_, busyTimeoutMs));
}

void Database::Close() {
    // The v2 form keeps a connection that still has statements until the last of them goes.
    sqlite3_close_v2(handle_);
    handle_ = nullptr;
}

bool Database::ReadOnly() const { return sqlite3_db_readonly(handle_, "main") == 1; }

bool Database::InTransaction() const { return sqlite3_get_autocommit(handle_) == 0; }

int Database::Execute(const char* sql) { return sqlite3_exec(handle_, sql, nullptr, nullptr, nullptr); }

std::int64_t Database::Changes() const { return sqlite3_changes64(handle_); }

std::int64_t Database::LastRowId() const { return sqlite3_last_insert_rowid(handle_); }

int Database::CopyFrom(Database& source) {
    sqlite3_backup* backup = sqlite3_backup_init(handle_, "main", source.handle_, "main");
    if (backup == nullptr) return sqlite3_errcode(handle_);
    const int stepped = sqlite3_backup_step(backup, -1);
    const int finished = sqlite3_backup_finish(backup);
    return stepped == SQLITE_DONE ? finished : stepped;
}

Statement::~Statement() { Finalize(); }

int Statement::Prepare(Database& database, const char* sql) {
    if (handle_ != nullptr) return SQLITE_OK;
    return sqlite3_prepare_v3(database.handle_, sql, -1, SQLITE_PREPARE_PERSISTENT, &handle_, nullptr);
}

void Statement::Finalize() {
    sqlite3_finalize(handle_);
    handle_ = nullptr;
}

void Statement::Reset() {
    sqlite3_reset(handle_);
    sqlite3_clear_bindings(handle_);
    bindFailure_ = SQLITE_OK;
}

void Statement::Note(int resultCode) {
    if (bindFailure_ == SQLITE_OK) bindFailure_ = resultCode;
}

void Statement::Bind(int parameter, std::int64_t number) {
    Note(sqlite3_bind_int64(handle_, parameter, number));
}

void Statement::Bind(int parameter, std::string_view text) {
    // A null pointer would bind NULL.
    const char* data = text.data() == nullptr ? "" : text.data();
    Note(sqlite3_bind_text64(handle_, parameter, data, text.size(), SQLITE_STATIC, SQLITE_UTF8));
}

void Statement::Bind(int parameter, const std::vector<std::uint8_t>& bytes) {
    const void* data = bytes.empty() ? static_cast<const void*>("") : bytes.data();
    Note(sqlite3_bind_blob64(handle_, parameter, data, bytes.size(), SQLITE_STATIC));
}

int Statement::Step() { return bindFailure_ == SQLITE_OK ? sqlite3_step(handle_) : bindFailure_; }

bool Statement::IsNull(int column) const { return sqlite3_column_type(handle_, column) == SQLITE_NULL; }

std::int64_t Statement::Number(int column) const { return sqlite3_column_int64(handle_, column); }

std::string Statement::Text(int column) const {
    const unsigned char* text = sqlite3_column_text(handle_, column);
    if (text == nullptr) return {};
    return {reinterpret_cast<const char*>(text),
            static_cast<std::size_t>(sqlite3_column_bytes(handle_, column))};
}

std::vector<std::uint8_t> Statement::Bytes(int column) const {
    const auto* bytes = static_cast<const std::uint8_t*>(sqlite3_column_blob(handle_, column));
    if (bytes == nullptr) return {};
    return {bytes, bytes + sqlite3_column_bytes(handle_, column)};
}

int Transaction::Begin() {
    if (database_.InTransaction()) return SQLITE_OK;
    const int result = database_.Execute("BEGIN IMMEDIATE");
    open_ = result == SQLITE_OK;
    return result;
}

int Transaction::Commit() {
    if (!open_) return SQLITE_OK;
    const int result = database_.Execute("COMMIT");
    if (result == SQLITE_OK) open_ = false;
    return result;
}

Transaction::~Transaction() {
    // SQLite itself has rolled back after some failures (disk full, input/output error).
    if (open_ && database_.InTransaction()) database_.Execute("ROLLBACK");
}

}  // namespace corvane
