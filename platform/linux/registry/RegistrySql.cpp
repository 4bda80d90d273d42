#include "platform/linux/registry/RegistryTables.h"

namespace corvane {

// Names are stored twice: as given, and folded for finding. Folded text is compared byte by byte, which also
// is the order of enumerations. "keys" holds whole paths so that opening a key is one look-up, however deep
// it lies. Row 1 is the root.
const char* const RegistryTables::kMakeTables = R"sql(
    CREATE TABLE keys(
        id INTEGER PRIMARY KEY, folded TEXT NOT NULL UNIQUE, parent INTEGER NOT NULL, name TEXT NOT NULL);
    CREATE INDEX keys_of_parent ON keys(parent, folded);
    INSERT INTO keys(id, folded, parent, name) VALUES(1, '', 0, '');
    CREATE TABLE vals(
        key INTEGER NOT NULL, folded TEXT NOT NULL, name TEXT NOT NULL, type INTEGER NOT NULL,
        origin INTEGER NOT NULL, data BLOB NOT NULL, PRIMARY KEY(key, folded)) WITHOUT ROWID;
    CREATE TABLE links(
        id TEXT PRIMARY KEY NOT NULL, name TEXT NOT NULL, number INTEGER NOT NULL, incarnation TEXT NOT NULL,
        permanent TEXT NOT NULL, original TEXT NOT NULL, applied TEXT NOT NULL, driver TEXT NOT NULL,
        signature TEXT NOT NULL, present INTEGER NOT NULL, held INTEGER NOT NULL) WITHOUT ROWID;
    CREATE TABLE held(
        link TEXT NOT NULL, position INTEGER NOT NULL, type INTEGER NOT NULL, payload BLOB NOT NULL,
        PRIMARY KEY(link, position)) WITHOUT ROWID;
    PRAGMA user_version = 1;
)sql";

const char* RegistryTables::SqlText(Sql sql) {
    switch (sql) {
        case Sql::kReadValue:  // No row: no such key. A row of NULLs: no such value.
            return R"sql(SELECT v.type, v.data FROM keys k
                LEFT JOIN vals v ON v.key = k.id AND v.folded = ?2 WHERE k.folded = ?1)sql";
        case Sql::kEnumSubkeys:
            return R"sql(SELECT c.name FROM keys k
                LEFT JOIN keys c ON c.parent = k.id WHERE k.folded = ?1 ORDER BY c.folded)sql";
        case Sql::kEnumValues:
            return R"sql(SELECT v.name, v.type, v.data FROM keys k
                LEFT JOIN vals v ON v.key = k.id WHERE k.folded = ?1 ORDER BY v.folded)sql";
        case Sql::kFindKey:
            return "SELECT id FROM keys WHERE folded = ?1";
        case Sql::kInsertKey:
            return "INSERT INTO keys(folded, parent, name) VALUES(?1, ?2, ?3)";
        case Sql::kPutUserValue:  // Origin 1: see RegistryTables::Origin. The name keeps the case it was made
                                  // with.
            return R"sql(INSERT INTO vals(key, folded, name, type, origin, data)
                SELECT id, ?2, ?3, ?4, 1, ?5 FROM keys WHERE folded = ?1
                ON CONFLICT(key, folded) DO UPDATE SET type = excluded.type, origin = 1, data = excluded.data)sql";
        case Sql::kPutKernelValue:
            return R"sql(INSERT INTO vals(key, folded, name, type, origin, data)
                SELECT id, ?2, ?3, ?4, 0, ?5 FROM keys WHERE folded = ?1
                ON CONFLICT(key, folded) DO UPDATE SET type = excluded.type, data = excluded.data
                WHERE origin = 0 AND (type <> excluded.type OR data <> excluded.data))sql";
        case Sql::kUserValue:
            return R"sql(SELECT 1 FROM keys k JOIN vals v ON v.key = k.id
                WHERE k.folded = ?1 AND v.folded = ?2 AND v.origin = 1)sql";
        case Sql::kDeleteValue:
            return "DELETE FROM vals WHERE key = (SELECT id FROM keys WHERE folded = ?1) AND folded = ?2";
        case Sql::kDeleteValuesBelow:
            return R"sql(DELETE FROM vals WHERE key IN
                (SELECT id FROM keys WHERE folded = ?1 OR (folded >= ?2 AND folded < ?3)))sql";
        case Sql::kDeleteKeysBelow:
            return "DELETE FROM keys WHERE folded = ?1 OR (folded >= ?2 AND folded < ?3)";
        case Sql::kLoadLinks:
            return R"sql(SELECT id, name, number, incarnation, permanent, original, applied, driver, signature,
                present, held FROM links ORDER BY id)sql";
        case Sql::kSaveLink:
            return R"sql(INSERT OR REPLACE INTO links(id, name, number, incarnation, permanent, original, applied,
                driver, signature, present, held) VALUES(?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11))sql";
        case Sql::kDeleteLink:
            return "DELETE FROM links WHERE id = ?1";
        case Sql::kLoadHeld:
            return "SELECT type, payload FROM held WHERE link = ?1 ORDER BY position";
        case Sql::kInsertHeld:
            return "INSERT INTO held(link, position, type, payload) VALUES(?1, ?2, ?3, ?4)";
        case Sql::kDeleteHeld:
            return "DELETE FROM held WHERE link = ?1";
        case Sql::kUserVersion:
            return "PRAGMA user_version";
        case Sql::kSchemaSize:
            return "SELECT count(*) FROM sqlite_schema";
        case Sql::kPageSize:
            return "PRAGMA page_size";
        case Sql::kDataVersion:
            return "PRAGMA data_version";
        case Sql::kCount:
            break;
    }
    return "";
}

}  // namespace corvane
