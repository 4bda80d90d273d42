#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

/// SQLite behind three classes. Nothing here throws; every int is an SQLite result code (sqlite3.h).
namespace corvane {

inline constexpr int kSqliteOk = 0;
inline constexpr int kSqliteRow = 100;
inline constexpr int kSqliteDone = 101;

/// One connection, closed at the end of its life. Statements must not outlive it. Not for two threads at
/// once.
class Database {
 public:
    enum class Mode {
        kReadWrite,  ///< Falls back to reading (see ReadOnly) when the file may not be written. Makes no
                     ///< file.
        kReadOnly,   ///< Makes no file.
        kMemory,     ///< A new empty database; the path is not used.
    };

    Database() = default;
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    /// Closes what was open. The contents are not looked at. A call that meets another program's lock waits
    /// up to `busyTimeoutMs` for it.
    int Open(const std::string& path, Mode mode, int busyTimeoutMs);
    void Close();

    /// Changes that wait; nothing when no database is open.
    void SetBusyTimeout(int busyTimeoutMs);

    [[nodiscard]] bool IsOpen() const { return handle_ != nullptr; }
    [[nodiscard]] bool ReadOnly() const;
    [[nodiscard]] bool InTransaction() const;

    /// Runs one or more SQL statements whose rows do not matter.
    int Execute(const char* sql);

    /// Rows that the latest INSERT, UPDATE or DELETE touched, and the row id of the latest INSERT.
    [[nodiscard]] std::int64_t Changes() const;
    [[nodiscard]] std::int64_t LastRowId() const;

    /// Makes this database a copy of `source`.
    int CopyFrom(Database& source);

 private:
    friend class Statement;
    sqlite3* handle_ = nullptr;
};

/// A prepared statement, made once and used many times. After each use Reset, which ends its hold on the
/// file: see StatementUse.
class Statement {
 public:
    Statement() = default;
    ~Statement();
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    /// Does nothing when it has been prepared already.
    int Prepare(Database& database, const char* sql);
    void Finalize();
    void Reset();

    /// Parameters count from 1. Bytes are not copied: they must stay until Reset. A failure shows in Step.
    void Bind(int parameter, std::int64_t number);
    void Bind(int parameter, std::string_view text);
    void Bind(int parameter, const std::vector<std::uint8_t>& bytes);

    /// kSqliteRow, kSqliteDone, or the failure.
    int Step();

    /// Columns of the present row, counted from 0. NULL reads as 0 or empty.
    [[nodiscard]] bool IsNull(int column) const;
    [[nodiscard]] std::int64_t Number(int column) const;
    [[nodiscard]] std::string Text(int column) const;
    [[nodiscard]] std::vector<std::uint8_t> Bytes(int column) const;

 private:
    void Note(int resultCode);

    sqlite3_stmt* handle_ = nullptr;
    int bindFailure_ = kSqliteOk;
};

/// Resets a statement at the end of a scope.
class StatementUse {
 public:
    explicit StatementUse(Statement& statement) : statement_(statement) {}
    ~StatementUse() { statement_.Reset(); }
    StatementUse(const StatementUse&) = delete;
    StatementUse& operator=(const StatementUse&) = delete;

 private:
    Statement& statement_;
};

/// A write transaction: begun by Begin, made lasting by Commit, undone by the destructor if neither failed
/// nor committed. Inside another transaction it is part of that one, and only the outer one decides.
class Transaction {
 public:
    explicit Transaction(Database& database) : database_(database) {}
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    /// Takes the right to write at once, so that nothing read inside can be out of date.
    int Begin();
    /// On disk when it returns kSqliteOk; otherwise the destructor undoes everything.
    int Commit();

 private:
    Database& database_;
    bool open_ = false;
};

}  // namespace corvane
