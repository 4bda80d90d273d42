#pragma once

#include "base/Win32Error.h"

namespace corvane {

/// SQLite result codes (sqlite3.h; extended codes are cut to their primary code). SQLITE_OK, _ROW and _DONE
/// give kSuccess. `writing` decides what a busy or unreachable store means: kCantWrite or kCantRead.
Win32Error FromSqlite(int resultCode, bool writing);

}  // namespace corvane
