#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/registry/Database.h"
#include "platform/linux/registry/RegistryStore.h"

namespace corvane {

/// Upper case of the letters of ASCII and Latin-1 (U+00E0 to U+00FE less the division sign) in UTF-8; every
/// other byte stays. Names that fold to the same bytes are the same name.
std::string FoldName(std::string_view name);

/// FoldName of a key path without empty pieces, the form under which keys are found.
std::string FoldPath(std::string_view path);

/// The registry's tables in one database: a file or an image in memory. Knows nothing of rights or locks.
/// Every call is one statement or part of the caller's transaction, except Transact.
class RegistryTables {
 public:
    /// Who set a value; stored in its row.
    enum class Origin { kKernel = 0, kUser = 1 };

    Database database;

    /// Finalizes the statements and closes the database.
    void Close();

    /// The outcome of looking at the schema of an open database.
    enum class Schema { kReady, kEmpty, kNewer, kForeign, kFailed };
    /// `code` is set with kFailed only.
    Schema LookAtSchema(Win32Error& code);
    /// Makes the tables in an empty database; nothing when another program was faster.
    Win32Error MakeSchema();

    /// Bytes of a page: the file's size is a multiple of it. 0 when it cannot be told.
    std::int64_t PageSize();

    /// Changes whenever another program has changed the file. 0 when it cannot be told.
    std::int64_t DataVersion();

    RegistryRead ReadValue(const std::string& subkey, const std::string& name);
    Win32Error EnumSubkeys(const std::string& subkey, std::vector<std::string>& names);
    Win32Error EnumValues(const std::string& subkey, std::vector<NamedValue>& values);
    bool HasKey(const std::string& subkey);

    /// kFileNotFound when there is no such key, or (kKernel) when the value is the user's or already equal.
    Win32Error PutValue(const std::string& subkey, const std::string& name, const RegistryValue& value,
                        Origin origin);
    /// True when there is such a value and its origin is kUser.
    bool UserSet(const std::string& subkey, const std::string& name);
    Win32Error DeleteValue(const std::string& subkey, const std::string& name);
    Win32Error CreateKey(const std::string& subkey);
    Win32Error DeleteKey(const std::string& subkey);

    Win32Error LoadLinks(std::vector<LinkRow>& links);
    Win32Error SaveLink(const LinkRow& link);
    Win32Error DeleteLink(const std::string& id);
    Win32Error LoadHeld(const std::string& linkId, std::vector<HeldMessage>& messages);
    Win32Error SaveHeld(const std::string& linkId, const std::vector<HeldMessage>& messages);

    /// Runs `work` in a write transaction; nothing of it stays when it or the commit fails.
    Win32Error Transact(const std::function<Win32Error()>& work);

 private:
    enum class Sql : std::size_t {
        kReadValue,
        kEnumSubkeys,
        kEnumValues,
        kFindKey,
        kInsertKey,
        kPutUserValue,
        kPutKernelValue,
        kUserValue,
        kDeleteValue,
        kDeleteValuesBelow,
        kDeleteKeysBelow,
        kLoadLinks,
        kSaveLink,
        kDeleteLink,
        kLoadHeld,
        kInsertHeld,
        kDeleteHeld,
        kUserVersion,
        kSchemaSize,
        kPageSize,
        kDataVersion,
        kCount
    };
    static const char* const kMakeTables;
    static const char* SqlText(Sql sql);

    int Prepare(Sql sql, Statement*& statement);
    Win32Error Number(Sql sql, std::int64_t& number);
    /// Runs a bound statement that gives no rows.
    Win32Error Run(Statement& statement);
    Win32Error FindKey(std::string_view folded, std::int64_t& id);

    std::array<Statement, static_cast<std::size_t>(Sql::kCount)> statements_;
};

/// The form in which RegSetValueExA stores text: a REG_SZ or REG_MULTI_SZ that is neither empty nor ends in
/// NUL gets one NUL. Other values are returned as they are.
RegistryValue Terminated(const RegistryValue& value);

}  // namespace corvane
