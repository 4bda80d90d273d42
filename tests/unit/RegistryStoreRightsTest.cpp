#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "platform/linux/registry/RegistryStore.h"
#include "tests/unit/FileSupport.h"

/// The store for a user without rights: each case's body runs in a child process without privileges.
namespace corvane {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Kind = RegistryStore::Change::Kind;
using Editor = RegistryStore::Editor;

const RegistryValue kStoredValue{kRegBinary, {1, 2, 3}};

class RegistryStoreRights : public testing::Test {
 protected:
    void Seed() const {
        RegistryStore store(path_);
        ASSERT_EQ(store.Apply(kHkeyLocalMachine, {{Kind::kSetValue, "K\\Sub", "v", kStoredValue}}),
                  Win32Error::kSuccess);
    }

    test::TempFolder folder_;
    const std::string path_ = folder_ / "registry.db";
};

/// Ends the child's action with the line's number (less than 125 different ones are told apart by the
/// caller's output).
#define CHECK_OR_FAIL(condition)                                         \
    do {                                                                 \
        if (!(condition)) {                                              \
            std::fprintf(stderr, "line %d: %s\n", __LINE__, #condition); \
            return 1;                                                    \
        }                                                                \
    } while (false)

TEST_F(RegistryStoreRights, OfAnotherOwnerAreReadOnly) {
    Seed();
    const std::string before = test::ReadBytes(path_);
    EXPECT_EQ(
        test::WithoutPrivileges([this] {
            RegistryStore store(path_);
            CHECK_OR_FAIL(store.ReadOnly());
            CHECK_OR_FAIL(store.ReadValue(kHkeyLocalMachine, "K\\Sub", "v").value == kStoredValue);
            CHECK_OR_FAIL(store.WriteValue(kHkeyLocalMachine, "K\\Sub", "v", {kRegBinary, {9}}) ==
                          Win32Error::kAccessDenied);
            CHECK_OR_FAIL(store.WriteValue(kHkeyLocalMachine, "Missing", "v", kStoredValue) ==
                          Win32Error::kAccessDenied);
            CHECK_OR_FAIL(store.DeleteValue(kHkeyLocalMachine, "K\\Sub", "v") == Win32Error::kAccessDenied);
            CHECK_OR_FAIL(store.DeleteKey(kHkeyLocalMachine, "K") == Win32Error::kAccessDenied);
            CHECK_OR_FAIL(store.CreateKey(kHkeyLocalMachine, "New") == Win32Error::kAccessDenied);
            CHECK_OR_FAIL(store.CreateKey(kHkeyLocalMachine, "K\\Sub") == Win32Error::kSuccess);
            CHECK_OR_FAIL(store.Apply(kHkeyLocalMachine, {{Kind::kCreateKey, "New", "", {}}}) ==
                          Win32Error::kAccessDenied);
            CHECK_OR_FAIL(store.ReadValue(kHkeyLocalMachine, "K\\Sub", "v").value == kStoredValue);
            return 0;
        }),
        0);
    EXPECT_TRUE(test::ReadBytes(path_) == before);
}

TEST_F(RegistryStoreRights, InAFolderWithoutRightsAreReadOnly) {
    Seed();
    std::filesystem::permissions(path_, std::filesystem::perms(0666));
    EXPECT_EQ(test::WithoutPrivileges([this] {
                  RegistryStore store(path_);
                  CHECK_OR_FAIL(store.ReadOnly());
                  CHECK_OR_FAIL(store.ReadValue(kHkeyLocalMachine, "K\\Sub", "v").value == kStoredValue);
                  CHECK_OR_FAIL(store.CreateKey(kHkeyLocalMachine, "New") == Win32Error::kAccessDenied);
                  return 0;
              }),
              0);
}

TEST_F(RegistryStoreRights, ThatMayNotBeReadAreDenied) {
    Seed();
    std::filesystem::permissions(path_, std::filesystem::perms(0600));
    EXPECT_EQ(test::WithoutPrivileges([this] {
                  RegistryStore store(path_);
                  CHECK_OR_FAIL(store.ReadValue(kHkeyLocalMachine, "K\\Sub", "v").code ==
                                Win32Error::kAccessDenied);
                  CHECK_OR_FAIL(store.CreateKey(kHkeyLocalMachine, "New") == Win32Error::kAccessDenied);
                  CHECK_OR_FAIL(store.ReadOnly());
                  return 0;
              }),
              0);
}

TEST_F(RegistryStoreRights, ThatMayNotBeMadeLeaveTheStoreEmpty) {
    for (const std::string& path : {path_, folder_ / "deep/er/registry.db"}) {
        EXPECT_EQ(
            test::WithoutPrivileges([&path] {
                RegistryStore store(path);
                std::vector<std::string> names = {"former"};
                CHECK_OR_FAIL(store.ReadOnly());
                CHECK_OR_FAIL(store.EnumSubkeys(kHkeyLocalMachine, "", names) == Win32Error::kSuccess);
                CHECK_OR_FAIL(names == std::vector<std::string>{"former"});
                CHECK_OR_FAIL(store.ReadValue(kHkeyLocalMachine, "K", "v").code == Win32Error::kFileNotFound);
                CHECK_OR_FAIL(store.CreateKey(kHkeyLocalMachine, "K") == Win32Error::kAccessDenied);
                return 0;
            }),
            0);
    }
    EXPECT_TRUE(folder_.Names().empty());
}

TEST_F(RegistryStoreRights, WithAnInterruptedWriteGoBackToWhatWasBefore) {
    // What a program leaves behind when it is killed while it writes: changed pages, and the journal of the
    // old ones.
    const std::string origin = folder_ / "origin.db";
    {
        RegistryStore store(origin);
        ASSERT_EQ(store.Apply(kHkeyLocalMachine, {{Kind::kSetValue, "K\\Sub", "v", kStoredValue}}),
                  Win32Error::kSuccess);
    }
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(origin.c_str(), &database), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(database,
                           "PRAGMA cache_size = 1; BEGIN; UPDATE vals SET data = x'FF';"
                           "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 3000)"
                           " INSERT INTO held SELECT 'x', i, 0, randomblob(100) FROM n;",
                           nullptr, nullptr, nullptr),
              SQLITE_OK);
    std::filesystem::copy_file(origin, path_);
    std::filesystem::copy_file(origin + "-journal", path_ + "-journal");
    sqlite3_close(database);
    ASSERT_GT(std::filesystem::file_size(path_ + "-journal"), 512U);

    const auto readWithoutRights = [this](Win32Error code) {
        return test::WithoutPrivileges([this, code] {
            RegistryStore store(path_);
            CHECK_OR_FAIL(store.ReadValue(kHkeyLocalMachine, "K\\Sub", "v").code == code);
            return 0;
        });
    };
    // Without the right to put the old pages back there is nothing whole to read.
    EXPECT_EQ(readWithoutRights(Win32Error::kAccessDenied), 0);
    EXPECT_EQ(RegistryStore(path_).ReadValue(kHkeyLocalMachine, "K\\Sub", "v").value, kStoredValue);
    EXPECT_EQ(readWithoutRights(Win32Error::kSuccess), 0);
}

TEST_F(RegistryStoreRights, OfNoLengthWithoutRightsLeaveTheStoreEmpty) {
    test::WriteBytes(path_, "");
    EXPECT_EQ(
        test::WithoutPrivileges([this] {
            RegistryStore store(path_);
            CHECK_OR_FAIL(store.ReadOnly());
            CHECK_OR_FAIL(store.ReadValue(kHkeyLocalMachine, "K", "v").code == Win32Error::kFileNotFound);
            CHECK_OR_FAIL(store.CreateKey(kHkeyLocalMachine, "K") == Win32Error::kAccessDenied);
            return 0;
        }),
        0);
    EXPECT_EQ(test::ReadBytes(path_), "");
}

TEST_F(RegistryStoreRights, ThatAreReadOnlyShowAPrivateImageAfterAnEdit) {
    Seed();
    const std::string before = test::ReadBytes(path_);
    EXPECT_EQ(
        test::WithoutPrivileges([this] {
            RegistryStore store(path_);
            CHECK_OR_FAIL(store.Transact([](Editor& editor) {
                (void)editor.SetFromKernel("New\\Key", "v", {kRegBinary, {7}});
                (void)editor.SetFromKernel("K\\Sub", "v", {kRegBinary, {7}});
                (void)editor.SaveHeld("{1}", {{1, {2}}});
                return editor.SaveLink({"{1}", "", 0, "", "", "", "", "", "", false, false});
            }) == Win32Error::kSuccess);
            std::vector<LinkRow> links;
            std::vector<HeldMessage> messages;
            CHECK_OR_FAIL(store.ReadValue(kHkeyLocalMachine, "New\\Key", "v").value.data == Bytes{7});
            CHECK_OR_FAIL(store.ReadValue(kHkeyLocalMachine, "K\\Sub", "v").value == kStoredValue);
            CHECK_OR_FAIL(store.LoadLinks(links) == Win32Error::kSuccess && links.size() == 1);
            CHECK_OR_FAIL(store.LoadHeld("{1}", messages) == Win32Error::kSuccess && messages.size() == 1);
            CHECK_OR_FAIL(store.CreateKey(kHkeyLocalMachine, "Other") == Win32Error::kAccessDenied);
            CHECK_OR_FAIL(store.WriteValue(kHkeyLocalMachine, "New\\Key", "v", kStoredValue) ==
                          Win32Error::kAccessDenied);
            CHECK_OR_FAIL(store.ReadValue(kHkeyLocalMachine, "New\\Key", "v").value.data == Bytes{7});
            CHECK_OR_FAIL(store.Transact([](Editor& editor) {
                (void)editor.CreateKey("Undone");
                return Win32Error::kBusy;
            }) == Win32Error::kBusy);
            CHECK_OR_FAIL(!store.ReadValue(kHkeyLocalMachine, "Undone", "").keyOpened);
            CHECK_OR_FAIL(store.ReadValue(kHkeyLocalMachine, "New\\Key", "v").value.data == Bytes{7});
            return 0;
        }),
        0);
    EXPECT_TRUE(test::ReadBytes(path_) == before);
}

TEST_F(RegistryStoreRights, ThatChangeTakeThePlaceOfAPrivateImage) {
    Seed();
    int toChild[2];
    int toParent[2];
    ASSERT_EQ(pipe(toChild), 0);
    ASSERT_EQ(pipe(toParent), 0);
    const pid_t writer = fork();
    if (writer == 0) {
        char byte = 0;
        int code = 1;
        if (read(toChild[0], &byte, 1) == 1) {
            RegistryStore store(path_);
            code = Ok(store.WriteValue(kHkeyLocalMachine, "K\\Sub", "v", {kRegBinary, {8}})) ? 0 : 2;
        }
        _exit(write(toParent[1], "d", 1) == 1 ? code : 3);
    }
    ASSERT_GT(writer, 0);
    EXPECT_EQ(test::WithoutPrivileges([&] {
                  RegistryStore store(path_);
                  CHECK_OR_FAIL(store.Transact([](Editor& editor) { return editor.CreateKey("Imagined"); }) ==
                                Win32Error::kSuccess);
                  char byte = 0;
                  CHECK_OR_FAIL(write(toChild[1], "g", 1) == 1 && read(toParent[0], &byte, 1) == 1);
                  CHECK_OR_FAIL(store.ReadValue(kHkeyLocalMachine, "Imagined", "").keyOpened);
                  CHECK_OR_FAIL(store.ReadValue(kHkeyLocalMachine, "K\\Sub", "v").value == kStoredValue);
                  std::vector<LinkRow> links;
                  CHECK_OR_FAIL(store.LoadLinks(links) == Win32Error::kSuccess);
                  CHECK_OR_FAIL(store.ReadValue(kHkeyLocalMachine, "K\\Sub", "v").value.data == Bytes{8});
                  CHECK_OR_FAIL(!store.ReadValue(kHkeyLocalMachine, "Imagined", "").keyOpened);
                  CHECK_OR_FAIL(store.Transact([](Editor& editor) { return editor.CreateKey("Again"); }) ==
                                Win32Error::kSuccess);
                  CHECK_OR_FAIL(store.ReadValue(kHkeyLocalMachine, "K\\Sub", "v").value.data == Bytes{8});
                  CHECK_OR_FAIL(store.ReadValue(kHkeyLocalMachine, "Again", "").keyOpened);
                  return 0;
              }),
              0);
    int status = 0;
    ASSERT_EQ(waitpid(writer, &status, 0), writer);
    EXPECT_EQ(status, 0);
    for (const int descriptor : {toChild[0], toChild[1], toParent[0], toParent[1]}) close(descriptor);
}

TEST_F(RegistryStoreRights, ThatAppearLaterTakeThePlaceOfAnEmptyStore) {
    int ready[2];
    int made[2];
    ASSERT_EQ(pipe(ready), 0);
    ASSERT_EQ(pipe(made), 0);
    const pid_t maker = fork();
    if (maker == 0) {
        char byte = 0;
        if (read(ready[0], &byte, 1) != 1) _exit(1);
        RegistryStore store(path_);
        const bool done =
            Ok(store.Apply(kHkeyLocalMachine, {{Kind::kSetValue, "K\\Sub", "v", kStoredValue}}));
        _exit(write(made[1], "d", 1) == 1 && done ? 0 : 2);
    }
    ASSERT_GT(maker, 0);
    EXPECT_EQ(test::WithoutPrivileges([&] {
                  RegistryStore store(path_);
                  char byte = 0;
                  CHECK_OR_FAIL(!store.ReadValue(kHkeyLocalMachine, "K\\Sub", "v").keyOpened);
                  CHECK_OR_FAIL(write(ready[1], "g", 1) == 1 && read(made[0], &byte, 1) == 1);
                  std::vector<LinkRow> links;
                  CHECK_OR_FAIL(store.LoadLinks(links) == Win32Error::kSuccess);
                  CHECK_OR_FAIL(store.ReadValue(kHkeyLocalMachine, "K\\Sub", "v").value == kStoredValue);
                  return 0;
              }),
              0);
    int status = 0;
    ASSERT_EQ(waitpid(maker, &status, 0), maker);
    EXPECT_EQ(status, 0);
    for (const int descriptor : {ready[0], ready[1], made[0], made[1]}) close(descriptor);
}

}  // namespace
}  // namespace corvane
