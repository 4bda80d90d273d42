#include "platform/linux/registry/RegistryTables.h"

#include <algorithm>
#include <utility>

#include "platform/linux/registry/SqliteErrors.h"

namespace corvane {

namespace {

constexpr std::int64_t kSchemaVersion = 1;
constexpr std::int64_t kRootKey = 1;

/// The folded paths below a key lie between these two: "]" follows "\" in ASCII.
struct Below {
    explicit Below(const std::string& folded) : first(folded + "\\"), end(folded + "]") {}
    std::string first;
    std::string end;
};

}  // namespace

std::string FoldName(std::string_view name) {
    std::string folded(name);
    bool afterLead = false;  // Behind the lead byte of U+00C0 to U+00FF.
    for (char& c : folded) {
        const auto byte = static_cast<unsigned char>(c);
        const bool ascii = byte >= 'a' && byte <= 'z';
        const bool latin = afterLead && byte >= 0xA0 && byte <= 0xBE && byte != 0xB7;
        if (ascii || latin) c = static_cast<char>(byte - 0x20);
        afterLead = byte == 0xC3;
    }
    return folded;
}

std::string FoldPath(std::string_view path) {
    std::string folded = FoldName(path);
    const auto bothSlashes = [](char a, char b) { return a == '\\' && b == '\\'; };
    folded.erase(std::unique(folded.begin(), folded.end(), bothSlashes), folded.end());
    if (folded.ends_with('\\')) folded.pop_back();
    if (folded.starts_with('\\')) folded.erase(0, 1);
    return folded;
}

RegistryValue Terminated(const RegistryValue& value) {
    RegistryValue result = value;
    const bool text = value.type == kRegSz || value.type == kRegMultiSz;
    if (text && !value.data.empty() && value.data.back() != 0) result.data.push_back(0);
    return result;
}

void RegistryTables::Close() {
    for (Statement& statement : statements_) statement.Finalize();
    database.Close();
}

int RegistryTables::Prepare(Sql sql, Statement*& statement) {
    statement = &statements_[static_cast<std::size_t>(sql)];
    return statement->Prepare(database, SqlText(sql));
}

Win32Error RegistryTables::Number(Sql sql, std::int64_t& number) {
    Statement* statement = nullptr;
    int result = Prepare(sql, statement);
    if (result != kSqliteOk) return FromSqlite(result, false);
    const StatementUse use(*statement);
    result = statement->Step();
    if (result == kSqliteRow) number = statement->Number(0);
    return FromSqlite(result, false);
}

Win32Error RegistryTables::Run(Statement& statement) {
    const StatementUse use(statement);
    return FromSqlite(statement.Step(), true);
}

RegistryTables::Schema RegistryTables::LookAtSchema(Win32Error& code) {
    // In this order: another program may make the tables and their version, as one step, in between.
    std::int64_t tables = 0;
    code = Number(Sql::kSchemaSize, tables);
    if (!Ok(code)) return Schema::kFailed;
    std::int64_t version = 0;
    code = Number(Sql::kUserVersion, version);
    if (!Ok(code)) return Schema::kFailed;
    if (version == kSchemaVersion) return Schema::kReady;
    if (version != 0) return version > kSchemaVersion ? Schema::kNewer : Schema::kForeign;
    return tables == 0 ? Schema::kEmpty : Schema::kForeign;
}

Win32Error RegistryTables::MakeSchema() {
    return Transact([this] {
        Win32Error code = Win32Error::kSuccess;
        if (LookAtSchema(code) != Schema::kEmpty) return code;
        return FromSqlite(database.Execute(kMakeTables), true);
    });
}

std::int64_t RegistryTables::PageSize() {
    std::int64_t size = 0;
    return Ok(Number(Sql::kPageSize, size)) ? size : 0;
}

std::int64_t RegistryTables::DataVersion() {
    std::int64_t version = 0;
    return Ok(Number(Sql::kDataVersion, version)) ? version : 0;
}

Win32Error RegistryTables::Transact(const std::function<Win32Error()>& work) {
    Transaction transaction(database);
    const int begun = transaction.Begin();
    if (begun != kSqliteOk) return FromSqlite(begun, true);
    const Win32Error code = work();
    return Ok(code) ? FromSqlite(transaction.Commit(), true) : code;
}

RegistryRead RegistryTables::ReadValue(const std::string& subkey, const std::string& name) {
    RegistryRead read;
    const std::string foldedKey = FoldPath(subkey);
    const std::string foldedName = FoldName(name);
    Statement* statement = nullptr;
    int result = Prepare(Sql::kReadValue, statement);
    if (result == kSqliteOk) {
        const StatementUse use(*statement);
        statement->Bind(1, foldedKey);
        statement->Bind(2, foldedName);
        result = statement->Step();
        read.keyOpened = result == kSqliteRow;
        if (read.keyOpened && !statement->IsNull(0)) {
            read.value.type = static_cast<std::uint32_t>(statement->Number(0));
            read.value.data = statement->Bytes(1);
            return read;
        }
    }
    read.code = FromSqlite(result, false);
    if (Ok(read.code)) read.code = Win32Error::kFileNotFound;
    return read;
}

Win32Error RegistryTables::EnumSubkeys(const std::string& subkey, std::vector<std::string>& names) {
    const std::string folded = FoldPath(subkey);
    Statement* statement = nullptr;
    int result = Prepare(Sql::kEnumSubkeys, statement);
    if (result != kSqliteOk) return FromSqlite(result, false);
    const StatementUse use(*statement);
    statement->Bind(1, folded);
    std::vector<std::string> found;
    bool opened = false;
    while ((result = statement->Step()) == kSqliteRow) {
        opened = true;
        if (!statement->IsNull(0)) found.push_back(statement->Text(0));
    }
    if (!found.empty()) names = std::move(found);
    const Win32Error code = FromSqlite(result, false);
    return Ok(code) && !opened ? Win32Error::kFileNotFound : code;
}

Win32Error RegistryTables::EnumValues(const std::string& subkey, std::vector<NamedValue>& values) {
    const std::string folded = FoldPath(subkey);
    Statement* statement = nullptr;
    int result = Prepare(Sql::kEnumValues, statement);
    if (result != kSqliteOk) return FromSqlite(result, false);
    const StatementUse use(*statement);
    statement->Bind(1, folded);
    std::vector<NamedValue> found;
    bool opened = false;
    while ((result = statement->Step()) == kSqliteRow) {
        opened = true;
        if (statement->IsNull(0)) continue;
        found.push_back(
            {statement->Text(0), {static_cast<std::uint32_t>(statement->Number(1)), statement->Bytes(2)}});
    }
    const Win32Error code = FromSqlite(result, false);
    if (!Ok(code)) return code;
    if (!opened) return Win32Error::kFileNotFound;
    values = std::move(found);
    return code;
}

Win32Error RegistryTables::FindKey(std::string_view folded, std::int64_t& id) {
    Statement* statement = nullptr;
    int result = Prepare(Sql::kFindKey, statement);
    if (result != kSqliteOk) return FromSqlite(result, false);
    const StatementUse use(*statement);
    statement->Bind(1, folded);
    result = statement->Step();
    if (result == kSqliteRow) id = statement->Number(0);
    return result == kSqliteDone ? Win32Error::kFileNotFound : FromSqlite(result, false);
}

bool RegistryTables::HasKey(const std::string& subkey) {
    std::int64_t id = 0;
    return Ok(FindKey(FoldPath(subkey), id));
}

Win32Error RegistryTables::PutValue(const std::string& subkey, const std::string& name,
                                    const RegistryValue& value, Origin origin) {
    const std::string foldedKey = FoldPath(subkey);
    const std::string foldedName = FoldName(name);
    Statement* statement = nullptr;
    const int result =
        Prepare(origin == Origin::kUser ? Sql::kPutUserValue : Sql::kPutKernelValue, statement);
    if (result != kSqliteOk) return FromSqlite(result, true);
    statement->Bind(1, foldedKey);
    statement->Bind(2, foldedName);
    statement->Bind(3, name);
    statement->Bind(4, std::int64_t{value.type});
    statement->Bind(5, value.data);
    const Win32Error code = Run(*statement);
    return Ok(code) && database.Changes() == 0 ? Win32Error::kFileNotFound : code;
}

bool RegistryTables::UserSet(const std::string& subkey, const std::string& name) {
    const std::string foldedKey = FoldPath(subkey);
    const std::string foldedName = FoldName(name);
    Statement* statement = nullptr;
    if (Prepare(Sql::kUserValue, statement) != kSqliteOk) return false;
    const StatementUse use(*statement);
    statement->Bind(1, foldedKey);
    statement->Bind(2, foldedName);
    return statement->Step() == kSqliteRow;
}

Win32Error RegistryTables::DeleteValue(const std::string& subkey, const std::string& name) {
    const std::string foldedKey = FoldPath(subkey);
    const std::string foldedName = FoldName(name);
    Statement* statement = nullptr;
    const int result = Prepare(Sql::kDeleteValue, statement);
    if (result != kSqliteOk) return FromSqlite(result, true);
    statement->Bind(1, foldedKey);
    statement->Bind(2, foldedName);
    const Win32Error code = Run(*statement);
    return Ok(code) && database.Changes() == 0 ? Win32Error::kFileNotFound : code;
}

Win32Error RegistryTables::CreateKey(const std::string& subkey) {
    const std::string folded = FoldPath(subkey);
    std::int64_t parent = kRootKey;
    Win32Error code = FindKey(folded, parent);
    if (code != Win32Error::kFileNotFound) return code;

    // The pieces of both forms have the same lengths; only the given one may hold empty pieces.
    parent = kRootKey;
    std::string path;
    std::size_t start = 0;
    while (start <= subkey.size()) {
        const std::size_t end = std::min(subkey.find('\\', start), subkey.size());
        const std::string name = subkey.substr(start, end - start);
        start = end + 1;
        if (name.empty()) continue;
        if (!path.empty()) path += '\\';
        path += FoldName(name);
        code = FindKey(path, parent);
        if (code == Win32Error::kFileNotFound) {
            Statement* statement = nullptr;
            const int result = Prepare(Sql::kInsertKey, statement);
            if (result != kSqliteOk) return FromSqlite(result, true);
            statement->Bind(1, path);
            statement->Bind(2, parent);
            statement->Bind(3, name);
            code = Run(*statement);
            parent = database.LastRowId();
        }
        if (!Ok(code)) return code;
    }
    return Win32Error::kSuccess;
}

Win32Error RegistryTables::DeleteKey(const std::string& subkey) {
    const std::string folded = FoldPath(subkey);
    if (folded.empty()) return Win32Error::kAccessDenied;
    std::int64_t id = 0;
    if (const Win32Error code = FindKey(folded, id); !Ok(code)) return code;
    const Below below(folded);
    for (const Sql sql : {Sql::kDeleteValuesBelow, Sql::kDeleteKeysBelow}) {
        Statement* statement = nullptr;
        const int result = Prepare(sql, statement);
        if (result != kSqliteOk) return FromSqlite(result, true);
        statement->Bind(1, folded);
        statement->Bind(2, below.first);
        statement->Bind(3, below.end);
        if (const Win32Error code = Run(*statement); !Ok(code)) return code;
    }
    return Win32Error::kSuccess;
}

Win32Error RegistryTables::LoadLinks(std::vector<LinkRow>& links) {
    Statement* statement = nullptr;
    int result = Prepare(Sql::kLoadLinks, statement);
    if (result != kSqliteOk) return FromSqlite(result, false);
    const StatementUse use(*statement);
    std::vector<LinkRow> found;
    while ((result = statement->Step()) == kSqliteRow) {
        LinkRow& row = found.emplace_back();
        row.id = statement->Text(0);
        row.name = statement->Text(1);
        row.index = static_cast<std::uint32_t>(statement->Number(2));
        row.incarnation = statement->Text(3);
        row.permanent = statement->Text(4);
        row.original = statement->Text(5);
        row.applied = statement->Text(6);
        row.driverKey = statement->Text(7);
        row.signature = statement->Text(8);
        row.present = statement->Number(9) != 0;
        row.held = statement->Number(10) != 0;
    }
    if (result == kSqliteDone) links = std::move(found);
    return FromSqlite(result, false);
}

Win32Error RegistryTables::SaveLink(const LinkRow& link) {
    Statement* statement = nullptr;
    const int result = Prepare(Sql::kSaveLink, statement);
    if (result != kSqliteOk) return FromSqlite(result, true);
    statement->Bind(1, link.id);
    statement->Bind(2, link.name);
    statement->Bind(3, std::int64_t{link.index});
    statement->Bind(4, link.incarnation);
    statement->Bind(5, link.permanent);
    statement->Bind(6, link.original);
    statement->Bind(7, link.applied);
    statement->Bind(8, link.driverKey);
    statement->Bind(9, link.signature);
    statement->Bind(10, std::int64_t{link.present});
    statement->Bind(11, std::int64_t{link.held});
    return Run(*statement);
}

Win32Error RegistryTables::DeleteLink(const std::string& id) {
    for (const Sql sql : {Sql::kDeleteLink, Sql::kDeleteHeld}) {
        Statement* statement = nullptr;
        const int result = Prepare(sql, statement);
        if (result != kSqliteOk) return FromSqlite(result, true);
        statement->Bind(1, id);
        if (const Win32Error code = Run(*statement); !Ok(code)) return code;
    }
    return Win32Error::kSuccess;
}

Win32Error RegistryTables::LoadHeld(const std::string& linkId, std::vector<HeldMessage>& messages) {
    Statement* statement = nullptr;
    int result = Prepare(Sql::kLoadHeld, statement);
    if (result != kSqliteOk) return FromSqlite(result, false);
    const StatementUse use(*statement);
    statement->Bind(1, linkId);
    std::vector<HeldMessage> found;
    while ((result = statement->Step()) == kSqliteRow) {
        found.push_back({static_cast<std::uint16_t>(statement->Number(0)), statement->Bytes(1)});
    }
    if (result == kSqliteDone) messages = std::move(found);
    return FromSqlite(result, false);
}

Win32Error RegistryTables::SaveHeld(const std::string& linkId, const std::vector<HeldMessage>& messages) {
    Statement* statement = nullptr;
    int result = Prepare(Sql::kDeleteHeld, statement);
    if (result != kSqliteOk) return FromSqlite(result, true);
    statement->Bind(1, linkId);
    if (const Win32Error code = Run(*statement); !Ok(code)) return code;
    result = Prepare(Sql::kInsertHeld, statement);
    if (result != kSqliteOk) return FromSqlite(result, true);
    for (std::size_t i = 0; i < messages.size(); ++i) {
        statement->Bind(1, linkId);
        statement->Bind(2, static_cast<std::int64_t>(i));
        statement->Bind(3, std::int64_t{messages[i].type});
        statement->Bind(4, messages[i].payload);
        if (const Win32Error code = Run(*statement); !Ok(code)) return code;
    }
    return Win32Error::kSuccess;
}

}  // namespace corvane
