#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "programs/registry/RegistryTool.h"
#include "tests/unit/FileSupport.h"
#include "tests/unit/RegistryToolSupport.h"

namespace corvane {
namespace {

using namespace test;
using testing::HasSubstr;

// ---- query ----

TEST_F(RegistryToolTest, QueryPrintsAKeyItsValuesAndItsSubkeys) {
    const Outcome outcome = Run({"query", "HKLM\\K"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out,
              "\nHKEY_LOCAL_MACHINE\\K\n"
              "    (Default)    REG_SZ    d\n"
              "    Multi    REG_MULTI_SZ    a\\0b\n"
              "    Number    REG_DWORD    0x12a\n"
              "    Raw    REG_BINARY    00AB0C\n"
              "    Text    REG_SZ    a\xE2\x82\xAC\n"
              "\nHKEY_LOCAL_MACHINE\\K\\One\n"
              "HKEY_LOCAL_MACHINE\\K\\Two\n");
}

TEST_F(RegistryToolTest, QueryWithSPrintsEverythingBelow) {
    const Outcome outcome = Run({"QUERY", "hkey_local_machine\\K\\", "-S"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_TRUE(
        outcome.out.ends_with("    Text    REG_SZ    a\xE2\x82\xAC\n"
                              "\nHKEY_LOCAL_MACHINE\\K\\One\n    Text    REG_SZ    1\n"
                              "\nHKEY_LOCAL_MACHINE\\K\\Two\n"
                              "\nHKEY_LOCAL_MACHINE\\K\\Two\\Deep\n"))
        << outcome.out;
}

TEST_F(RegistryToolTest, QueryOfTheRootListsItsKeys) {
    EXPECT_EQ(Run({"query", "HKLM"}).out, "\nHKEY_LOCAL_MACHINE\\K\n");
}

TEST_F(RegistryToolTest, QueryOfOneValuePrintsOnlyThat) {
    EXPECT_EQ(Run({"query", "HKLM\\K", "/v", "number"}).out,
              "\nHKEY_LOCAL_MACHINE\\K\n    number    REG_DWORD    0x12a\n");
    EXPECT_EQ(Run({"query", "HKLM\\K", "/VE"}).out,
              "\nHKEY_LOCAL_MACHINE\\K\n    (Default)    REG_SZ    d\n");
}

TEST_F(RegistryToolTest, QueryOfOneValueWithSFindsItBelow) {
    EXPECT_EQ(Run({"query", "HKLM\\K", "/v", "Text", "/s"}).out,
              "\nHKEY_LOCAL_MACHINE\\K\n    Text    REG_SZ    a\xE2\x82\xAC\n"
              "\nHKEY_LOCAL_MACHINE\\K\\One\n    Text    REG_SZ    1\n");
}

TEST_F(RegistryToolTest, QueryOfWhatIsMissingFails) {
    const Outcome noKey = Run({"query", "HKLM\\No"});
    EXPECT_EQ(noKey.code, 1);
    EXPECT_EQ(noKey.out, "");
    EXPECT_EQ(noKey.err, "nicx-registry: there is no such key: HKEY_LOCAL_MACHINE\\No\n");
    const Outcome noValue = Run({"query", "HKLM\\K", "/v", "No"});
    EXPECT_EQ(noValue.code, 1);
    EXPECT_EQ(noValue.out, "");
    EXPECT_EQ(noValue.err, "nicx-registry: there is no such value: No in HKEY_LOCAL_MACHINE\\K\n");
    EXPECT_EQ(Run({"query", "HKLM\\No", "/v", "No"}).code, 1);
}

TEST_F(RegistryToolTest, QueryShowsOddValuesWithoutFailing) {
    ASSERT_EQ(store_.Apply(kRoot, {{Kind::kSetValue, "O", "a", {kRegSz, {}}},
                                   {Kind::kSetValue, "O", "b", {kRegSz, {'x'}}},
                                   {Kind::kSetValue, "O", "c", {kRegMultiSz, {'x', 0}}},
                                   {Kind::kSetValue, "O", "d", {kRegDword, {1, 2}}},
                                   {Kind::kSetValue, "O", "e", {11, {1, 0, 0, 0, 0, 0, 0, 0x80}}},
                                   {Kind::kSetValue, "O", "f", {0xABC, {1}}},
                                   {Kind::kSetValue, "O", "g", {kRegSz, {'x', 0, 'y', 0}}}}),
              Win32Error::kSuccess);
    EXPECT_EQ(Run({"query", "HKLM\\O"}).out,
              "\nHKEY_LOCAL_MACHINE\\O\n"
              "    a    REG_SZ    \n"
              "    b    REG_SZ    x\n"
              "    c    REG_MULTI_SZ    x\n"
              "    d    REG_DWORD    0102\n"
              "    e    REG_QWORD    0x8000000000000001\n"
              "    f    REG_TYPE(0xabc)    01\n"
              "    g    REG_SZ    x\\0y\n");
}

// ---- add ----

TEST_F(RegistryToolTest, AddMakesAKey) {
    const Outcome outcome = Run({"add", "HKLM\\New\\Key"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "The operation completed successfully.\n");
    EXPECT_TRUE(Read("New\\Key", "").keyOpened);
}

TEST_F(RegistryToolTest, AddStoresEachTypeAsWindowsDoes) {
    struct Row {
        std::vector<std::string> options;
        RegistryValue value;
    };
    const std::vector<Row> rows = {
        {{"/d", "ab"}, {kRegSz, {'a', 'b', 0}}},
        {{}, {kRegSz, {0}}},
        {{"/t", "reg_sz", "/d", "\xE2\x82\xAC"}, {kRegSz, {0x80, 0}}},
        {{"/t", "REG_EXPAND_SZ", "/d", "%a%"}, {2, {'%', 'a', '%', 0}}},
        {{"/t", "REG_MULTI_SZ", "/d", "a\\0bc"}, {kRegMultiSz, {'a', 0, 'b', 'c', 0, 0}}},
        {{"/t", "REG_MULTI_SZ", "/d", "a,b,", "/s", ","}, {kRegMultiSz, {'a', 0, 'b', 0, 0}}},
        {{"/t", "REG_MULTI_SZ"}, {kRegMultiSz, {0, 0}}},
        {{"/t", "REG_DWORD", "/d", "10"}, {kRegDword, {10, 0, 0, 0}}},
        {{"/t", "REG_DWORD", "/d", "0xFFFFFFFF"}, {kRegDword, {0xFF, 0xFF, 0xFF, 0xFF}}},
        {{"/t", "REG_QWORD", "/d", "0x100000000"}, {11, {0, 0, 0, 0, 1, 0, 0, 0}}},
        {{"/t", "REG_BINARY", "/d", "00fFA0"}, {kRegBinary, {0, 0xFF, 0xA0}}},
        {{"/t", "REG_NONE"}, {0, {}}},
        {{"/d", "/f"}, {kRegSz, {'/', 'f', 0}}},
    };
    for (const Row& row : rows) {
        std::vector<std::string> arguments = {"add", "HKLM\\T", "/v", "v", "/f"};
        arguments.insert(arguments.end(), row.options.begin(), row.options.end());
        SCOPED_TRACE(testing::PrintToString(arguments));
        EXPECT_EQ(Run(arguments).code, 0);
        EXPECT_EQ(Read("T", "v").value, row.value);
    }
}

TEST_F(RegistryToolTest, AddRefusesDataThatDoNotFitTheType) {
    const std::vector<std::vector<std::string>> rows = {
        {"/t", "REG_DWORD"},
        {"/t", "REG_DWORD", "/d", ""},
        {"/t", "REG_DWORD", "/d", "0x"},
        {"/t", "REG_DWORD", "/d", "4294967296"},
        {"/t", "REG_DWORD", "/d", "-1"},
        {"/t", "REG_DWORD", "/d", "12x"},
        {"/t", "REG_QWORD", "/d", "18446744073709551616"},
        {"/t", "REG_BINARY", "/d", "abc"},
        {"/t", "REG_BINARY", "/d", "zz"},
        {"/t", "REG_MULTI_SZ", "/d", "a\\0\\0b"},
        {"/t", "REG_LINK", "/d", "a"},
        {"/t", "REG_WORD", "/d", "1"},
    };
    for (const auto& options : rows) {
        std::vector<std::string> arguments = {"add", "HKLM\\T", "/v", "v", "/f"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        SCOPED_TRACE(testing::PrintToString(arguments));
        const Outcome outcome = Run(arguments);
        EXPECT_EQ(outcome.code, 2);
        EXPECT_TRUE(outcome.err.starts_with("nicx-registry: ")) << outcome.err;
        EXPECT_FALSE(Read("T", "v").keyOpened);
    }
}

TEST_F(RegistryToolTest, AddDoesNotOverwriteWithoutATerminalToAskAt) {
    const Outcome outcome = Run({"add", "HKLM\\K", "/v", "TEXT", "/d", "new"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_THAT(outcome.err, HasSubstr("Add /f"));
    EXPECT_EQ(Read("K", "Text").value.data, (Bytes{'a', 0x80, 0}));
}

TEST_F(RegistryToolTest, AddAsksBeforeItOverwrites) {
    const Outcome no = Ask({"add", "HKLM\\K", "/v", "Text", "/d", "new"}, "no\n");
    EXPECT_EQ(no.code, 1);
    EXPECT_THAT(no.err, HasSubstr("(Yes/No)?"));
    EXPECT_EQ(Ask({"add", "HKLM\\K", "/v", "Text", "/d", "new"}, "").code, 1);
    EXPECT_EQ(Read("K", "Text").value.data, (Bytes{'a', 0x80, 0}));
    EXPECT_EQ(Ask({"add", "HKLM\\K", "/v", "Text", "/d", "new"}, "Yes\n").code, 0);
    EXPECT_EQ(Read("K", "Text").value.data, (Bytes{'n', 'e', 'w', 0}));
}

// ---- delete ----

TEST_F(RegistryToolTest, DeleteOfAValueTakesOnlyThat) {
    EXPECT_EQ(Run({"delete", "HKLM\\K", "/v", "text", "/f"}).code, 0);
    EXPECT_EQ(Read("K", "Text").code, Win32Error::kFileNotFound);
    EXPECT_EQ(Read("K", "").code, Win32Error::kSuccess);
    EXPECT_EQ(Run({"delete", "HKLM\\K", "/ve", "/f"}).code, 0);
    EXPECT_EQ(Read("K", "").code, Win32Error::kFileNotFound);
    EXPECT_EQ(Read("K", "Raw").code, Win32Error::kSuccess);
}

TEST_F(RegistryToolTest, DeleteOfAllValuesLeavesTheKeys) {
    EXPECT_EQ(Run({"delete", "HKLM\\K", "/va", "/f"}).code, 0);
    std::vector<NamedValue> values(1);
    EXPECT_EQ(store_.EnumValues(kRoot, "K", values), Win32Error::kSuccess);
    EXPECT_TRUE(values.empty());
    EXPECT_EQ(Read("K\\One", "Text").code, Win32Error::kSuccess);
}

TEST_F(RegistryToolTest, DeleteOfAKeyTakesEverythingBelow) {
    EXPECT_EQ(Run({"delete", "HKLM\\K", "/f"}).code, 0);
    EXPECT_FALSE(Read("K", "").keyOpened);
    EXPECT_FALSE(Read("K\\Two\\Deep", "").keyOpened);
}

TEST_F(RegistryToolTest, DeleteAsksFirst) {
    for (const std::vector<std::string>& options :
         std::vector<std::vector<std::string>>{{}, {"/v", "Text"}, {"/va"}}) {
        std::vector<std::string> arguments = {"delete", "HKLM\\K"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const Outcome refused = Run(arguments);
        EXPECT_EQ(refused.code, 1);
        EXPECT_THAT(refused.err, HasSubstr("Add /f"));
        EXPECT_EQ(Ask(arguments, "n\n").code, 1);
        EXPECT_EQ(Read("K", "Text").code, Win32Error::kSuccess);
    }
    EXPECT_EQ(Ask({"delete", "HKLM\\K", "/va"}, " Y \n").code, 0);
    EXPECT_EQ(Read("K", "Text").code, Win32Error::kFileNotFound);
}

TEST_F(RegistryToolTest, DeleteOfWhatIsMissingFails) {
    EXPECT_THAT(Run({"delete", "HKLM\\No", "/f"}).err, HasSubstr("no such key: HKEY_LOCAL_MACHINE\\No"));
    EXPECT_THAT(Run({"delete", "HKLM\\K", "/v", "No", "/f"}).err, HasSubstr("no such value: No"));
    EXPECT_EQ(Run({"delete", "HKLM\\No", "/va", "/f"}).code, 1);
}

TEST_F(RegistryToolTest, DeleteOfTheRootIsRefused) {
    const Outcome outcome = Run({"delete", "HKLM\\", "/f"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_THAT(outcome.err, HasSubstr("root itself"));
    EXPECT_TRUE(Read("K", "").keyOpened);
}

// ---- arguments ----

TEST_F(RegistryToolTest, WrongArgumentsOpenNoStore) {
    const std::vector<std::vector<std::string>> rows = {
        {},
        {""},
        {"copy", "HKLM\\A"},
        {"query"},
        {"query", ""},
        {"query", "HKCU\\A"},
        {"query", "K"},
        {"query", "HKLM\\A", "HKLM\\B"},
        {"query", "HKLM\\A", "/v"},
        {"query", "HKLM\\A", "/q"},
        {"query", "HKLM\\A", "/f"},
        {"query", "HKLM\\A", "/v", "a", "/ve"},
        {"query", "HKLM\\A", "/v", "a", "/v", "b"},
        {"query", "HKLM\\A", "/s", "/s"},
        {"query", "/K"},
        {"add", "HKLM\\A", "/d", "x"},
        {"add", "HKLM\\A", "/t", "REG_SZ"},
        {"add", "HKLM\\A", "/v", "a", "/s", ""},
        {"delete", "HKLM\\A", "/va", "/v", "x"},
        {"export", "HKLM\\A"},
        {"export", "/tmp/x.reg"},
        {"export", "HKLM\\A", "a.reg", "b.reg"},
        {"export", "HKLM\\A", "-x"},
        {"import"},
        {"import", "a.reg", "b.reg"},
        {"--bogus"},
    };
    for (const auto& arguments : rows) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        const Outcome outcome = Run(arguments);
        EXPECT_EQ(outcome.code, 2);
        EXPECT_FALSE(outcome.opened);
        EXPECT_EQ(outcome.out, "");
        EXPECT_TRUE(outcome.err.starts_with("nicx-registry: ")) << outcome.err;
        EXPECT_THAT(outcome.err, HasSubstr("--help"));
    }
}

TEST_F(RegistryToolTest, HelpAndVersionGoToStandardOutput) {
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {"--help"}, {"/?"}, {"-h"}, {"query", "/?"}, {"add", "HKLM\\A", "--help"}}) {
        const Outcome outcome = Run(arguments);
        EXPECT_EQ(outcome.code, 0);
        EXPECT_FALSE(outcome.opened);
        EXPECT_TRUE(outcome.out.starts_with("Usage: nicx-registry query KEY")) << outcome.out;
        EXPECT_EQ(outcome.err, "");
    }
    EXPECT_EQ(Run({"--version"}).out, "nicx-registry 4.5\n");
}

}  // namespace
}  // namespace corvane
