#include "platform/linux/registry/SqliteErrors.h"

#include <sqlite3.h>

namespace corvane {

Win32Error FromSqlite(int resultCode, bool writing) {
    switch (resultCode & 0xFF) {
        case SQLITE_OK:
        case SQLITE_ROW:
        case SQLITE_DONE:
            return Win32Error::kSuccess;
        case SQLITE_PERM:
        case SQLITE_READONLY:
        case SQLITE_AUTH:
            return Win32Error::kAccessDenied;
        case SQLITE_NOMEM:
            return Win32Error::kNotEnoughMemory;
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
            return Win32Error::kRegistryCorrupt;
        case SQLITE_ERROR:  // A table or column that should be there is not.
            return Win32Error::kBadDatabase;
        case SQLITE_CANTOPEN:
            return Win32Error::kCantOpen;
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
        case SQLITE_IOERR:
        case SQLITE_FULL:
        case SQLITE_PROTOCOL:
        case SQLITE_SCHEMA:
        case SQLITE_NOLFS:
            return writing ? Win32Error::kCantWrite : Win32Error::kCantRead;
        case SQLITE_TOOBIG:
        case SQLITE_CONSTRAINT:
        case SQLITE_MISMATCH:
        case SQLITE_MISUSE:
        case SQLITE_RANGE:
            return Win32Error::kInvalidParameter;
        default:
            return Win32Error::kGenFailure;
    }
}

}  // namespace corvane
