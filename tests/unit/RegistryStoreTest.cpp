#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/linux/registry/RegistryStore.h"
#include "tests/unit/FileSupport.h"

/// What the store does beyond RegistryApi, with one program and all rights.
namespace corvane {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Kind = RegistryStore::Change::Kind;
using Editor = RegistryStore::Editor;

LinkRow BareRow(const std::string& id) {
    LinkRow row;
    row.id = id;
    return row;
}

class RegistryStoreTest : public testing::Test {
 protected:
    Bytes Data(const std::string& key, const std::string& name) {
        const RegistryRead read = store_.ReadValue(kHkeyLocalMachine, key, name);
        EXPECT_EQ(read.code, Win32Error::kSuccess) << key << " " << name;
        return read.value.data;
    }
    bool HasKey(const std::string& key) { return store_.ReadValue(kHkeyLocalMachine, key, "").keyOpened; }
    void Set(const std::string& key, const std::string& name, const Bytes& data) {
        ASSERT_EQ(store_.Apply(kHkeyLocalMachine, {{Kind::kSetValue, key, name, {kRegBinary, data}}}),
                  Win32Error::kSuccess);
    }

    test::TempFolder folder_;
    const std::string path_ = folder_ / "registry.db";
    RegistryStore store_{path_};
};

// ---- keys and values ----

TEST_F(RegistryStoreTest, KeepsEverythingForTheNextProgram) {
    Set("A\\B", "v", {1, 2});
    RegistryStore next(path_);
    EXPECT_EQ(next.ReadValue(kHkeyLocalMachine, "a\\b", "V").value, (RegistryValue{kRegBinary, {1, 2}}));
}

TEST_F(RegistryStoreTest, ValuesComeInOrderWithTheirNames) {
    for (const char* name : {"b", "A", "_", "", "10", "9"}) Set("K", name, {1});
    std::vector<NamedValue> values;
    ASSERT_EQ(store_.EnumValues(kHkeyLocalMachine, "k", values), Win32Error::kSuccess);
    std::vector<std::string> names;
    for (const NamedValue& value : values) names.push_back(value.name);
    EXPECT_EQ(names, (std::vector<std::string>{"", "10", "9", "A", "b", "_"}));
    EXPECT_EQ(values[3].value, (RegistryValue{kRegBinary, {1}}));
}

TEST_F(RegistryStoreTest, AKeyWithoutValuesGivesNone) {
    ASSERT_EQ(store_.CreateKey(kHkeyLocalMachine, "K"), Win32Error::kSuccess);
    std::vector<NamedValue> values(3);
    EXPECT_EQ(store_.EnumValues(kHkeyLocalMachine, "K", values), Win32Error::kSuccess);
    EXPECT_TRUE(values.empty());
}

TEST_F(RegistryStoreTest, AMissingKeyLeavesTheValues) {
    std::vector<NamedValue> values(3);
    EXPECT_EQ(store_.EnumValues(kHkeyLocalMachine, "K", values), Win32Error::kFileNotFound);
    EXPECT_EQ(values.size(), 3U);
}

TEST_F(RegistryStoreTest, AValueKeepsTheCaseItWasMadeWith) {
    Set("K", "Name", {1});
    Set("K", "NAME", {2});
    std::vector<NamedValue> values;
    ASSERT_EQ(store_.EnumValues(kHkeyLocalMachine, "K", values), Win32Error::kSuccess);
    ASSERT_EQ(values.size(), 1U);
    EXPECT_EQ(values[0].name, "Name");
    EXPECT_EQ(values[0].value.data, (Bytes{2}));
}

TEST_F(RegistryStoreTest, DeletingAKeyTakesEverythingBelowAndNothingBeside) {
    for (const char* key : {"K", "K\\a", "K\\a\\b", "K]", "K[", "Ka", "K a", "L"}) Set(key, "v", {1});
    ASSERT_EQ(store_.DeleteKey(kHkeyLocalMachine, "k"), Win32Error::kSuccess);
    for (const char* key : {"K", "K\\a", "K\\a\\b"}) EXPECT_FALSE(HasKey(key)) << key;
    for (const char* key : {"K]", "K[", "Ka", "K a", "L"}) EXPECT_EQ(Data(key, "v"), (Bytes{1})) << key;
}

TEST_F(RegistryStoreTest, AKeyMadeAnewAfterDeletingHasNoValues) {
    Set("K", "v", {1});
    ASSERT_EQ(store_.DeleteKey(kHkeyLocalMachine, "K"), Win32Error::kSuccess);
    ASSERT_EQ(store_.CreateKey(kHkeyLocalMachine, "K"), Win32Error::kSuccess);
    EXPECT_EQ(store_.ReadValue(kHkeyLocalMachine, "K", "v").code, Win32Error::kFileNotFound);
}

TEST_F(RegistryStoreTest, DeletingAMissingKeyIsAnError) {
    EXPECT_EQ(store_.DeleteKey(kHkeyLocalMachine, "K"), Win32Error::kFileNotFound);
}

TEST_F(RegistryStoreTest, TheRootCannotBeDeleted) {
    Set("K", "v", {1});
    EXPECT_EQ(store_.DeleteKey(kHkeyLocalMachine, ""), Win32Error::kAccessDenied);
    EXPECT_EQ(store_.DeleteKey(kHkeyLocalMachine, "\\"), Win32Error::kAccessDenied);
    EXPECT_EQ(Data("K", "v"), (Bytes{1}));
}

TEST_F(RegistryStoreTest, EmptyPiecesOfAPathDoNotCount) {
    ASSERT_EQ(store_.CreateKey(kHkeyLocalMachine, "\\A\\\\B\\"), Win32Error::kSuccess);
    EXPECT_TRUE(HasKey("A\\B"));
    EXPECT_TRUE(HasKey("\\\\a\\b\\\\"));
    std::vector<std::string> names;
    EXPECT_EQ(store_.EnumSubkeys(kHkeyLocalMachine, "A\\", names), Win32Error::kSuccess);
    EXPECT_EQ(names, std::vector<std::string>{"B"});
}

TEST_F(RegistryStoreTest, PathsThatLookSpecialToTheDatabaseAreFiles) {
    const std::string former = std::filesystem::current_path();
    std::filesystem::current_path(folder_.Path());
    for (const char* path : {"file:x.db", ":memory:", "plain.db"}) {
        RegistryStore store(path);
        EXPECT_EQ(store.CreateKey(kHkeyLocalMachine, "K"), Win32Error::kSuccess);
        EXPECT_TRUE(std::filesystem::exists(path)) << path;
    }
    std::filesystem::current_path(former);
}

// ---- Apply ----

TEST_F(RegistryStoreTest, ApplyMakesItsChangesInOrder) {
    ASSERT_EQ(store_.Apply(kHkeyLocalMachine, {{Kind::kCreateKey, "A", "", {}},
                                               {Kind::kSetValue, "B\\C", "v", {kRegBinary, {1}}},
                                               {Kind::kSetValue, "B\\C", "w", {kRegBinary, {2}}},
                                               {Kind::kDeleteValue, "B\\C", "v", {}},
                                               {Kind::kSetValue, "D", "v", {kRegBinary, {3}}},
                                               {Kind::kDeleteKey, "D", "", {}}}),
              Win32Error::kSuccess);
    EXPECT_TRUE(HasKey("A"));
    EXPECT_EQ(store_.ReadValue(kHkeyLocalMachine, "B\\C", "v").code, Win32Error::kFileNotFound);
    EXPECT_EQ(Data("B\\C", "w"), (Bytes{2}));
    EXPECT_FALSE(HasKey("D"));
}

TEST_F(RegistryStoreTest, ApplyForgivesDeletingWhatIsNotThere) {
    EXPECT_EQ(store_.Apply(kHkeyLocalMachine,
                           {{Kind::kDeleteKey, "No", "", {}}, {Kind::kDeleteValue, "No", "v", {}}}),
              Win32Error::kSuccess);
    EXPECT_FALSE(HasKey("No"));
}

TEST_F(RegistryStoreTest, ApplyIsAllOrNothing) {
    EXPECT_EQ(store_.Apply(kHkeyLocalMachine,
                           {{Kind::kSetValue, "A", "v", {kRegBinary, {1}}}, {Kind::kDeleteKey, "", "", {}}}),
              Win32Error::kAccessDenied);
    EXPECT_FALSE(HasKey("A"));
}

TEST_F(RegistryStoreTest, ApplyStoresTextAsItIs) {
    ASSERT_EQ(store_.Apply(kHkeyLocalMachine, {{Kind::kSetValue, "A", "v", {kRegSz, {'x'}}}}),
              Win32Error::kSuccess);
    EXPECT_EQ(Data("A", "v"), (Bytes{'x'}));
}

// ---- Transact ----

TEST_F(RegistryStoreTest, AFailedEditLeavesNothing) {
    EXPECT_EQ(store_.Transact([](Editor& editor) {
        EXPECT_EQ(editor.CreateKey("A"), Win32Error::kSuccess);
        EXPECT_EQ(editor.SaveLink(BareRow("{1}")), Win32Error::kSuccess);
        return Win32Error::kBusy;
    }),
              Win32Error::kBusy);
    std::vector<LinkRow> links;
    EXPECT_FALSE(HasKey("A"));
    EXPECT_EQ(store_.LoadLinks(links), Win32Error::kSuccess);
    EXPECT_TRUE(links.empty());
}

TEST_F(RegistryStoreTest, AnEditThatThrowsLeavesNothing) {
    EXPECT_EQ(store_.Transact([](Editor& editor) -> Win32Error {
        EXPECT_EQ(editor.CreateKey("A"), Win32Error::kSuccess);
        throw std::runtime_error("no");
    }),
              Win32Error::kGenFailure);
    EXPECT_FALSE(HasKey("A"));
    EXPECT_EQ(store_.CreateKey(kHkeyLocalMachine, "B"), Win32Error::kSuccess);
}

TEST_F(RegistryStoreTest, TheStoresOwnOperationsTakePartInAnEdit) {
    EXPECT_EQ(store_.Transact([this](Editor& editor) {
        EXPECT_EQ(editor.CreateKey("A"), Win32Error::kSuccess);
        EXPECT_EQ(store_.WriteValue(kHkeyLocalMachine, "A", "v", {kRegBinary, {1}}), Win32Error::kSuccess);
        EXPECT_EQ(store_.CreateKey(kHkeyLocalMachine, "B"), Win32Error::kSuccess);
        EXPECT_EQ(Data("A", "v"), (Bytes{1}));
        return Win32Error::kBusy;
    }),
              Win32Error::kBusy);
    EXPECT_FALSE(HasKey("A"));
    EXPECT_FALSE(HasKey("B"));
}

TEST_F(RegistryStoreTest, AnEditReadsItsOwnWrites) {
    EXPECT_EQ(store_.Transact([this](Editor& editor) {
        EXPECT_EQ(editor.SetFromUser("A\\b", "v", {kRegBinary, {1}}), Win32Error::kSuccess);
        EXPECT_EQ(editor.CreateKey("A\\a"), Win32Error::kSuccess);
        EXPECT_EQ(editor.ReadValue("a\\B", "V").value.data, (Bytes{1}));
        EXPECT_EQ(editor.ReadValue("A\\b", "w").code, Win32Error::kFileNotFound);
        EXPECT_TRUE(editor.ReadValue("A\\b", "w").keyOpened);
        EXPECT_FALSE(editor.ReadValue("B", "v").keyOpened);
        std::vector<std::string> names;
        EXPECT_EQ(editor.EnumSubkeys("A", names), Win32Error::kSuccess);
        EXPECT_EQ(names, (std::vector<std::string>{"a", "b"}));
        std::vector<NamedValue> values;
        EXPECT_EQ(editor.EnumValues("A\\b", values), Win32Error::kSuccess);
        EXPECT_EQ(values.size(), 1U);
        EXPECT_EQ(editor.EnumValues("B", values), Win32Error::kFileNotFound);
        EXPECT_EQ(values.size(), 1U);
        return Win32Error::kBusy;
    }),
              Win32Error::kBusy);
}

TEST_F(RegistryStoreTest, WhatTheKernelShowedIsReplacedByWhatItShows) {
    for (const std::uint8_t byte : Bytes{1, 2}) {
        ASSERT_EQ(store_.Transact([&](Editor& editor) {
            EXPECT_FALSE(editor.UserSet("K", "v"));
            return editor.SetFromKernel("K", "v", {kRegBinary, {byte}});
        }),
                  Win32Error::kSuccess);
        EXPECT_EQ(Data("K", "v"), (Bytes{byte}));
    }
}

TEST_F(RegistryStoreTest, WhatTheUserSetStaysAgainstTheKernel) {
    const auto fromKernel = [this] {
        return store_.Transact([](Editor& editor) {
            EXPECT_TRUE(editor.UserSet("k", "V"));
            return editor.SetFromKernel("K", "v", {kRegDword, {9, 9, 9, 9}});
        });
    };
    const RegistryValue value{kRegBinary, {1}};
    ASSERT_EQ(store_.CreateKey(kHkeyLocalMachine, "K"), Win32Error::kSuccess);
    ASSERT_EQ(store_.WriteValue(kHkeyLocalMachine, "K", "v", value), Win32Error::kSuccess);
    EXPECT_EQ(fromKernel(), Win32Error::kSuccess);
    EXPECT_EQ(store_.ReadValue(kHkeyLocalMachine, "K", "v").value, value);

    ASSERT_EQ(store_.DeleteKey(kHkeyLocalMachine, "K"), Win32Error::kSuccess);
    ASSERT_EQ(store_.Apply(kHkeyLocalMachine, {{Kind::kSetValue, "K", "v", value}}), Win32Error::kSuccess);
    EXPECT_EQ(fromKernel(), Win32Error::kSuccess);
    EXPECT_EQ(store_.ReadValue(kHkeyLocalMachine, "K", "v").value, value);

    ASSERT_EQ(store_.DeleteKey(kHkeyLocalMachine, "K"), Win32Error::kSuccess);
    ASSERT_EQ(store_.Transact([&](Editor& editor) { return editor.SetFromUser("K", "v", value); }),
              Win32Error::kSuccess);
    EXPECT_EQ(fromKernel(), Win32Error::kSuccess);
    EXPECT_EQ(store_.ReadValue(kHkeyLocalMachine, "K", "v").value, value);
}

TEST_F(RegistryStoreTest, TheUserTakesOverWhatTheKernelShowed) {
    ASSERT_EQ(store_.Transact([](Editor& editor) {
        return editor.SetFromKernel("K", "v", {kRegBinary, {1}});
    }),
              Win32Error::kSuccess);
    ASSERT_EQ(store_.WriteValue(kHkeyLocalMachine, "K", "v", {kRegBinary, {2}}), Win32Error::kSuccess);
    ASSERT_EQ(store_.Transact([](Editor& editor) {
        EXPECT_TRUE(editor.UserSet("K", "v"));
        return editor.SetFromKernel("K", "v", {kRegBinary, {3}});
    }),
              Win32Error::kSuccess);
    EXPECT_EQ(Data("K", "v"), (Bytes{2}));
}

TEST_F(RegistryStoreTest, AfterTheUserDeletedAValueTheKernelsIsRecordedAgain) {
    Set("K", "v", {1});
    ASSERT_EQ(store_.DeleteValue(kHkeyLocalMachine, "K", "v"), Win32Error::kSuccess);
    ASSERT_EQ(store_.Transact([](Editor& editor) {
        EXPECT_FALSE(editor.UserSet("K", "v"));
        return editor.SetFromKernel("K", "v", {kRegBinary, {2}});
    }),
              Win32Error::kSuccess);
    EXPECT_EQ(Data("K", "v"), (Bytes{2}));
}

TEST_F(RegistryStoreTest, EditsTerminateText) {
    ASSERT_EQ(store_.Transact([](Editor& editor) {
        EXPECT_EQ(editor.SetFromKernel("K", "v", {kRegSz, {'a'}}), Win32Error::kSuccess);
        return editor.SetFromUser("K", "w", {kRegMultiSz, {'b', 0, 'c'}});
    }),
              Win32Error::kSuccess);
    EXPECT_EQ(Data("K", "v"), (Bytes{'a', 0}));
    EXPECT_EQ(Data("K", "w"), (Bytes{'b', 0, 'c', 0}));
}

TEST_F(RegistryStoreTest, AnEditMayDeleteAKeyThatIsNotThere) {
    EXPECT_EQ(store_.Transact([](Editor& editor) { return editor.DeleteKey("No"); }), Win32Error::kSuccess);
}

// ---- links and held messages ----

LinkRow FullRow(const std::string& id) {
    return {.id = id,
            .name = "eth\xFF",
            .index = 0xFFFFFFFFU,
            .incarnation = "boot/ns/7",
            .permanent = "001122334455",
            .original = "001122334456",
            .applied = "021122334457",
            .driverKey = "0012",
            .signature = "digest",
            .present = true,
            .held = true};
}

TEST_F(RegistryStoreTest, LinkRowsComeBackInOrderOfId) {
    const LinkRow bare = BareRow("{1}");
    ASSERT_EQ(store_.Transact([&](Editor& editor) {
        EXPECT_EQ(editor.SaveLink(FullRow("{2}")), Win32Error::kSuccess);
        EXPECT_EQ(editor.SaveLink(bare), Win32Error::kSuccess);
        std::vector<LinkRow> inside;
        EXPECT_EQ(editor.LoadLinks(inside), Win32Error::kSuccess);
        EXPECT_EQ(inside.size(), 2U);
        return Win32Error::kSuccess;
    }),
              Win32Error::kSuccess);
    std::vector<LinkRow> links;
    ASSERT_EQ(store_.LoadLinks(links), Win32Error::kSuccess);
    EXPECT_EQ(links, (std::vector<LinkRow>{bare, FullRow("{2}")}));
}

TEST_F(RegistryStoreTest, SavingALinkAgainReplacesItsRow) {
    LinkRow row = FullRow("{1}");
    ASSERT_EQ(store_.Transact([&](Editor& editor) { return editor.SaveLink(row); }), Win32Error::kSuccess);
    row.name = "new";
    row.present = false;
    ASSERT_EQ(store_.Transact([&](Editor& editor) { return editor.SaveLink(row); }), Win32Error::kSuccess);
    std::vector<LinkRow> links;
    ASSERT_EQ(store_.LoadLinks(links), Win32Error::kSuccess);
    EXPECT_EQ(links, std::vector<LinkRow>{row});
}

TEST_F(RegistryStoreTest, HeldMessagesComeBackInTheirOrder) {
    const std::vector<HeldMessage> messages = {{0xFFFF, {3, 0, 1}}, {20, {}}, {20, {9}}};
    ASSERT_EQ(store_.Transact([&](Editor& editor) {
        EXPECT_EQ(editor.SaveHeld("{2}", {{1, {1}}}), Win32Error::kSuccess);
        EXPECT_EQ(editor.SaveHeld("{1}", {{7, {7}}}), Win32Error::kSuccess);
        return editor.SaveHeld("{1}", messages);
    }),
              Win32Error::kSuccess);
    std::vector<HeldMessage> read;
    ASSERT_EQ(store_.LoadHeld("{1}", read), Win32Error::kSuccess);
    EXPECT_EQ(read, messages);
    ASSERT_EQ(store_.Transact([](Editor& editor) { return editor.SaveHeld("{1}", {}); }),
              Win32Error::kSuccess);
    ASSERT_EQ(store_.LoadHeld("{1}", read), Win32Error::kSuccess);
    EXPECT_TRUE(read.empty());
    ASSERT_EQ(store_.LoadHeld("{2}", read), Win32Error::kSuccess);
    EXPECT_EQ(read.size(), 1U);
}

TEST_F(RegistryStoreTest, DeletingALinkTakesItsHeldMessages) {
    ASSERT_EQ(store_.Transact([](Editor& editor) {
        EXPECT_EQ(editor.SaveLink(BareRow("{1}")), Win32Error::kSuccess);
        EXPECT_EQ(editor.SaveHeld("{1}", {{1, {1}}}), Win32Error::kSuccess);
        EXPECT_EQ(editor.DeleteLink("{0}"), Win32Error::kSuccess);
        return editor.DeleteLink("{1}");
    }),
              Win32Error::kSuccess);
    std::vector<LinkRow> links(1);
    std::vector<HeldMessage> messages(1);
    EXPECT_EQ(store_.LoadLinks(links), Win32Error::kSuccess);
    EXPECT_EQ(store_.LoadHeld("{1}", messages), Win32Error::kSuccess);
    EXPECT_TRUE(links.empty());
    EXPECT_TRUE(messages.empty());
}

// ---- the path ----

TEST(RegistryStorePath, ComesFromTheEnvironment) {
    ASSERT_EQ(setenv("NICX_REGISTRY", "/some/where.db", 1), 0);
    EXPECT_EQ(RegistryStore::DefaultPath(), "/some/where.db");
    ASSERT_EQ(setenv("NICX_REGISTRY", "", 1), 0);
    EXPECT_EQ(RegistryStore::DefaultPath(), "/var/lib/nicx/registry.db");
    ASSERT_EQ(unsetenv("NICX_REGISTRY"), 0);
    EXPECT_EQ(RegistryStore::DefaultPath(), "/var/lib/nicx/registry.db");
}

}  // namespace
}  // namespace corvane
