#include <cerrno>
#include <ostream>
#include <set>
#include <string>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "platform/linux/registry/SqliteErrors.h"
#include "platform/linux/system/Errors.h"

namespace corvane {
namespace {

struct ErrnoRow {
    int errnoValue;
    std::uint32_t number;
    const char* name;
};

std::ostream& operator<<(std::ostream& stream, const ErrnoRow& row) { return stream << row.name; }

#define ROW(value, number) \
    ErrnoRow { value, number, #value }

class FromErrnoRow : public testing::TestWithParam<ErrnoRow> {};

TEST_P(FromErrnoRow, GivesItsNumber) {
    EXPECT_EQ(Number(FromErrno(GetParam().errnoValue)), GetParam().number);
}

INSTANTIATE_TEST_SUITE_P(, FromErrnoRow,
                         testing::Values(ROW(EPERM, 5), ROW(EACCES, 5), ROW(EROFS, 5), ROW(ENOENT, 2),
                                         ROW(ESRCH, 1168), ROW(EBADF, 6), ROW(ENOMEM, 8), ROW(ENOBUFS, 8),
                                         ROW(EINVAL, 87), ROW(ENODEV, 87), ROW(ENXIO, 87), ROW(ERANGE, 87),
                                         ROW(EADDRNOTAVAIL, 87), ROW(EEXIST, 5010), ROW(EBUSY, 170),
                                         ROW(EADDRINUSE, 170), ROW(ENOSPC, 112), ROW(ENOSYS, 50),
                                         ROW(EOPNOTSUPP, 50), ROW(EAFNOSUPPORT, 50), ROW(EPROTONOSUPPORT, 50),
                                         ROW(ENODATA, 232), ROW(ETIMEDOUT, 121), ROW(ENETDOWN, 1231),
                                         ROW(ENETUNREACH, 1231), ROW(EHOSTDOWN, 1232),
                                         ROW(EHOSTUNREACH, 1232)),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(FromErrno, OfZeroIsSuccess) { EXPECT_EQ(FromErrno(0), Win32Error::kSuccess); }

TEST(FromErrno, OfAnyOtherValueIsAGeneralFailure) {
    for (const int value : {EIO, EINTR, EPIPE, 4095, -1, -EPERM})
        EXPECT_EQ(FromErrno(value), Win32Error::kGenFailure);
}

struct SqliteRow {
    int result;
    std::uint32_t reading;
    std::uint32_t writing;
    const char* name;
};

std::ostream& operator<<(std::ostream& stream, const SqliteRow& row) { return stream << row.name; }

class FromSqliteRow : public testing::TestWithParam<SqliteRow> {};

TEST_P(FromSqliteRow, GivesItsNumbers) {
    EXPECT_EQ(Number(FromSqlite(GetParam().result, false)), GetParam().reading);
    EXPECT_EQ(Number(FromSqlite(GetParam().result, true)), GetParam().writing);
}

#define SQL_ROW(value, reading, writing) \
    SqliteRow { value, reading, writing, #value }

INSTANTIATE_TEST_SUITE_P(
    , FromSqliteRow,
    testing::Values(SQL_ROW(SQLITE_OK, 0, 0), SQL_ROW(SQLITE_ROW, 0, 0), SQL_ROW(SQLITE_DONE, 0, 0),
                    SQL_ROW(SQLITE_PERM, 5, 5), SQL_ROW(SQLITE_READONLY, 5, 5), SQL_ROW(SQLITE_AUTH, 5, 5),
                    SQL_ROW(SQLITE_READONLY_DBMOVED, 5, 5), SQL_ROW(SQLITE_NOMEM, 8, 8),
                    SQL_ROW(SQLITE_IOERR_NOMEM, 1012, 1013), SQL_ROW(SQLITE_CORRUPT, 1015, 1015),
                    SQL_ROW(SQLITE_CORRUPT_INDEX, 1015, 1015), SQL_ROW(SQLITE_NOTADB, 1015, 1015),
                    SQL_ROW(SQLITE_ERROR, 1009, 1009), SQL_ROW(SQLITE_CANTOPEN, 1011, 1011),
                    SQL_ROW(SQLITE_BUSY, 1012, 1013), SQL_ROW(SQLITE_BUSY_SNAPSHOT, 1012, 1013),
                    SQL_ROW(SQLITE_LOCKED, 1012, 1013), SQL_ROW(SQLITE_IOERR, 1012, 1013),
                    SQL_ROW(SQLITE_FULL, 1012, 1013), SQL_ROW(SQLITE_PROTOCOL, 1012, 1013),
                    SQL_ROW(SQLITE_SCHEMA, 1012, 1013), SQL_ROW(SQLITE_NOLFS, 1012, 1013),
                    SQL_ROW(SQLITE_TOOBIG, 87, 87), SQL_ROW(SQLITE_CONSTRAINT, 87, 87),
                    SQL_ROW(SQLITE_MISMATCH, 87, 87), SQL_ROW(SQLITE_MISUSE, 87, 87),
                    SQL_ROW(SQLITE_RANGE, 87, 87), SQL_ROW(SQLITE_INTERNAL, 31, 31),
                    SQL_ROW(SQLITE_ABORT, 31, 31), SQL_ROW(SQLITE_INTERRUPT, 31, 31)),
    [](const auto& row) { return std::string(row.param.name); });

TEST(Win32Text, HasWordsForEveryNumberThatTheBackEndGives) {
    std::set<std::string> texts;
    const std::set<std::uint32_t> numbers = {0,    2,    5,    6,    8,    31,   50,   87,   112,
                                             121,  122,  170,  232,  234,  259,  1009, 1010, 1011,
                                             1012, 1013, 1015, 1168, 1231, 1232, 5010};
    for (const std::uint32_t number : numbers) {
        const std::string text = Win32Text(Win32Error{number});
        EXPECT_GT(text.size(), 10U) << number;
        EXPECT_TRUE(text.ends_with(".\r\n")) << number;
        EXPECT_EQ(text.find('\n'), text.size() - 1) << number;
        texts.insert(text);
    }
    EXPECT_EQ(texts.size(), numbers.size());
}

TEST(Win32Text, IsTheSystemsForTheCommonNumbers) {
    EXPECT_EQ(Win32Text(Win32Error::kAccessDenied), "Access is denied.\r\n");
    EXPECT_EQ(Win32Text(Win32Error::kInvalidParameter), "The parameter is incorrect.\r\n");
    EXPECT_EQ(Win32Text(Win32Error::kNotSupported), "The request is not supported.\r\n");
}

TEST(Win32Text, IsEmptyForANumberOutsideTheTable) {
    EXPECT_EQ(Win32Text(Win32Error{3}), "");
    EXPECT_EQ(Win32Text(Win32Error{0xFFFFFFFFU}), "");
}

}  // namespace
}  // namespace corvane
