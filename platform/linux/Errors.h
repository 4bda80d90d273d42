#pragma once

#include <string>

#include "platform/Win32Error.h"

/// The one table that turns the system's native errors into the program's numbers, and numbers into words.
namespace corvane {

/// errno values (errno.h) of system calls and netlink answers. 0 gives kSuccess; a value outside the table
/// kGenFailure.
Win32Error FromErrno(int errnoValue);

/// SQLite result codes (sqlite3.h; extended codes are cut to their primary code). SQLITE_OK, _ROW and _DONE
/// give kSuccess. `writing` decides what a busy or unreachable store means: kCantWrite or kCantRead.
Win32Error FromSqlite(int resultCode, bool writing);

/// The words for a number, ending in a line break as system texts do; empty for a number outside the table.
std::string Win32Text(Win32Error code);

}  // namespace corvane
