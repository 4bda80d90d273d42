#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include "platform/linux/registry/RegistryStore.h"
#include "tests/unit/FileSupport.h"

/// The store's file: made, missing, damaged, foreign, read-only.
namespace corvane {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Kind = RegistryStore::Change::Kind;
using Editor = RegistryStore::Editor;

const RegistryValue kValue{kRegBinary, {1, 2, 3}};

class RegistryStoreFiles : public testing::Test {
 protected:
    void Seed() const {
        RegistryStore store(path_);
        ASSERT_EQ(store.Apply(kHkeyLocalMachine, {{Kind::kSetValue, "K\\Sub", "v", kValue}}),
                  Win32Error::kSuccess);
    }

    /// Runs SQL on the file, past the store.
    void Execute(const std::string& sql) const {
        sqlite3* database = nullptr;
        ASSERT_EQ(sqlite3_open(path_.c_str(), &database), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sql;
        sqlite3_close(database);
    }

    /// Every operation gives `code`, and the file is not touched.
    void ExpectEverything(Win32Error code) const {
        const std::string before = test::ReadBytes(path_);
        RegistryStore store(path_);
        for (int round = 0; round < 2; ++round) {
            std::vector<std::string> names = {"former"};
            std::vector<NamedValue> values(1);
            std::vector<LinkRow> links(1);
            std::vector<HeldMessage> messages(1);
            bool edited = false;
            const RegistryRead read = store.ReadValue(kHkeyLocalMachine, "K", "v");
            EXPECT_EQ(read.code, code);
            EXPECT_FALSE(read.keyOpened);
            EXPECT_EQ(store.WriteValue(kHkeyLocalMachine, "K", "v", kValue), code);
            EXPECT_EQ(store.DeleteValue(kHkeyLocalMachine, "K", "v"), code);
            EXPECT_EQ(store.CreateKey(kHkeyLocalMachine, "New"), code);
            EXPECT_EQ(store.DeleteKey(kHkeyLocalMachine, "K"), code);
            EXPECT_EQ(store.Apply(kHkeyLocalMachine, {{Kind::kCreateKey, "New", "", {}}}), code);
            EXPECT_EQ(store.EnumSubkeys(kHkeyLocalMachine, "K", names), code);
            EXPECT_EQ(store.EnumValues(kHkeyLocalMachine, "K", values), code);
            EXPECT_EQ(store.LoadLinks(links), code);
            EXPECT_EQ(store.LoadHeld("{1}", messages), code);
            EXPECT_EQ(store.Transact([&](Editor& editor) {
                edited = true;
                return editor.CreateKey("New");
            }),
                      code);
            EXPECT_TRUE(store.ReadOnly());
            EXPECT_FALSE(edited);
            EXPECT_EQ(names, std::vector<std::string>{"former"});
            EXPECT_EQ(values.size() + links.size() + messages.size(), 3U);
        }
        EXPECT_TRUE(test::ReadBytes(path_) == before);
        EXPECT_EQ(folder_.Names(), (std::set<std::string>{"registry.db"}));
    }

    test::TempFolder folder_;
    const std::string path_ = folder_ / "registry.db";
};

mode_t ModeOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777U;
}

// ---- making it ----

TEST_F(RegistryStoreFiles, AreMadeReadableForAllWhateverTheUmask) {
    const mode_t former = umask(0077);
    const std::string path = folder_ / "nicx/registry.db";
    RegistryStore store(path);
    umask(former);
    EXPECT_EQ(store.CreateKey(kHkeyLocalMachine, "K"), Win32Error::kSuccess);
    EXPECT_FALSE(store.ReadOnly());
    EXPECT_EQ(ModeOf(folder_ / "nicx"), 0755U);
    EXPECT_EQ(ModeOf(path), 0644U);
}

TEST_F(RegistryStoreFiles, OfNoLengthCountAsNew) {
    test::WriteBytes(path_, "");
    RegistryStore store(path_);
    EXPECT_EQ(store.CreateKey(kHkeyLocalMachine, "K"), Win32Error::kSuccess);
    EXPECT_TRUE(RegistryStore(path_).ReadValue(kHkeyLocalMachine, "K", "").keyOpened);
}

TEST_F(RegistryStoreFiles, ThatAreGoneAreMadeAnewByTheNextWrite) {
    Seed();
    RegistryStore store(path_);
    ASSERT_EQ(store.CreateKey(kHkeyLocalMachine, "Old"), Win32Error::kSuccess);
    std::filesystem::remove(path_);
    ASSERT_EQ(store.CreateKey(kHkeyLocalMachine, "New"), Win32Error::kSuccess);
    RegistryStore next(path_);
    EXPECT_TRUE(next.ReadValue(kHkeyLocalMachine, "New", "").keyOpened);
    EXPECT_FALSE(next.ReadValue(kHkeyLocalMachine, "Old", "").keyOpened);
}

TEST_F(RegistryStoreFiles, UseNoWriteAheadLog) {
    Seed();
    EXPECT_EQ(test::ReadBytes(path_).substr(18, 2),
              "\x01\x01");  // File format versions: 2 would be such a log.
    EXPECT_FALSE(std::filesystem::exists(path_ + "-wal"));
}

TEST_F(RegistryStoreFiles, BelowAFileCannotBeOpened) {
    test::WriteBytes(folder_ / "plain", "x");
    RegistryStore store(folder_ / "plain/registry.db");
    EXPECT_EQ(store.ReadValue(kHkeyLocalMachine, "K", "v").code, Win32Error::kCantOpen);
    EXPECT_EQ(store.CreateKey(kHkeyLocalMachine, "K"), Win32Error::kCantOpen);
}

TEST_F(RegistryStoreFiles, ThatAreFoldersCannotBeOpened) {
    RegistryStore store(folder_.Path());
    EXPECT_EQ(store.ReadValue(kHkeyLocalMachine, "K", "v").code, Win32Error::kCantOpen);
    EXPECT_EQ(store.CreateKey(kHkeyLocalMachine, "K"), Win32Error::kCantOpen);
}

// ---- damage ----

TEST_F(RegistryStoreFiles, OfGarbageAreCorrupt) {
    test::WriteBytes(path_, std::string(10000, 'x'));
    ExpectEverything(Win32Error::kRegistryCorrupt);
}

TEST_F(RegistryStoreFiles, OfAFewBytesAreCorrupt) {
    test::WriteBytes(path_, "xy");
    ExpectEverything(Win32Error::kRegistryCorrupt);
}

TEST_F(RegistryStoreFiles, ThatWereCutOffAreCorrupt) {
    Seed();
    const auto size = std::filesystem::file_size(path_);
    for (const std::uintmax_t left : {size - 1, size - 4096, std::uintmax_t{4096}, std::uintmax_t{4000},
                                      std::uintmax_t{100}, std::uintmax_t{50}}) {
        SCOPED_TRACE(left);
        std::filesystem::remove(path_ + "-journal");
        std::filesystem::resize_file(path_, left);
        ExpectEverything(Win32Error::kRegistryCorrupt);
    }
}

TEST_F(RegistryStoreFiles, WithDamagedPagesGiveCorruptOnceTheyAreMet) {
    {
        RegistryStore store(path_);
        std::vector<RegistryStore::Change> changes;
        for (int i = 0; i < 2000; ++i) {
            changes.push_back({Kind::kSetValue, "K\\" + std::to_string(i), "v", {kRegBinary, Bytes(100, 7)}});
        }
        ASSERT_EQ(store.Apply(kHkeyLocalMachine, changes), Win32Error::kSuccess);
    }
    std::string bytes = test::ReadBytes(path_);
    ASSERT_GT(bytes.size(), 20U * 4096);
    bytes.replace(4096, bytes.size() - 4096, bytes.size() - 4096, '\xA5');  // All but the schema.
    test::WriteBytes(path_, bytes);
    std::filesystem::remove(path_ + "-journal");
    ExpectEverything(Win32Error::kRegistryCorrupt);
}

TEST_F(RegistryStoreFiles, WithoutATableAreCorrupt) {
    Seed();
    Execute("DROP TABLE vals");
    RegistryStore store(path_);
    EXPECT_EQ(store.ReadValue(kHkeyLocalMachine, "K\\Sub", "v").code, Win32Error::kRegistryCorrupt);
    EXPECT_EQ(store.CreateKey(kHkeyLocalMachine, "New"), Win32Error::kRegistryCorrupt);
}

TEST_F(RegistryStoreFiles, OfAnotherProgramAreCorrupt) {
    Execute("CREATE TABLE other(x)");
    ExpectEverything(Win32Error::kRegistryCorrupt);
}

TEST_F(RegistryStoreFiles, OfANewerVersionCannotBeOpened) {
    Seed();
    Execute("PRAGMA user_version = 2");
    std::filesystem::remove(path_ + "-journal");
    ExpectEverything(Win32Error::kCantOpen);
}

}  // namespace
}  // namespace corvane
