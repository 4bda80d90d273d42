#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/Platform.h"
#include "platform/Registry.h"
#include "platform/RegistryValues.h"
#include "tests/contract/RegistryWorld.h"
#include "tests/fakes/FakeRegistry.h"

/// What every registry must do, the fake and the real ones alike.
namespace corvane {
namespace {

using Bytes = std::vector<std::uint8_t>;
using std::string_literals::operator""s;

constexpr RegistryRoot kRoot = kHkeyLocalMachine;

class FakeRegistryWorld : public contract::RegistryWorld {
 public:
    std::shared_ptr<RegistryApi> Registry() override { return registry_; }

 private:
    std::shared_ptr<RegistryApi> registry_ = std::make_shared<FakeRegistry>();
};

using RegistryCase = contract::NamedWorld<contract::RegistryWorld>;

class RegistryContract : public testing::TestWithParam<RegistryCase> {
 protected:
    RegistryContract() { EXPECT_EQ(registry_->CreateKey(kRoot, "SOFTWARE\\Test"), Win32Error::kSuccess); }

    static Platform WithRegistry(const std::shared_ptr<RegistryApi>& registry) {
        Platform platform;
        platform.registry = registry;
        return platform;
    }

    RegistryRead Read(const std::string& name) { return registry_->ReadValue(kRoot, kKey, name); }
    Win32Error Write(const std::string& name, std::uint32_t type, const Bytes& data) {
        return registry_->WriteValue(kRoot, kKey, name, {type, data});
    }

    const std::string kKey = "SOFTWARE\\Test";
    std::unique_ptr<contract::RegistryWorld> world_ = GetParam().make();
    std::shared_ptr<RegistryApi> registry_ = world_->Registry();
    ScopedPlatform installed_{WithRegistry(registry_)};
};

INSTANTIATE_TEST_SUITE_P(
    , RegistryContract,
    testing::ValuesIn(contract::WithFake<FakeRegistryWorld>(contract::SystemRegistryWorlds())),
    [](const auto& world) { return world.param.name; });

// ---- reading and writing values ----

TEST_P(RegistryContract, AValueComesBackAsItWasWritten) {
    for (const std::uint32_t type : world_->TypesOfBytes()) {
        const Bytes data = {0, 1, 0xFF, 0x80, 7};
        ASSERT_EQ(Write("value", type, data), Win32Error::kSuccess);
        const RegistryRead read = Read("value");
        EXPECT_EQ(read.code, Win32Error::kSuccess);
        EXPECT_TRUE(read.keyOpened);
        EXPECT_EQ(read.value, (RegistryValue{type, data}));
    }
}

TEST_P(RegistryContract, TextWithoutATerminatorGetsOne) {
    for (const std::uint32_t type : {kRegSz, kRegMultiSz}) {
        RegistryValue value{type, {'a', 'b', 'X'}};
        value.data.pop_back();  // What lies behind the text is no NUL.
        ASSERT_EQ(registry_->WriteValue(kRoot, kKey, "value", value), Win32Error::kSuccess);
        EXPECT_EQ(Read("value").value, (RegistryValue{type, {'a', 'b', 0}}));
    }
}

TEST_P(RegistryContract, TextWithATerminatorGetsNoSecondOne) {
    for (const std::uint32_t type : {kRegSz, kRegMultiSz}) {
        ASSERT_EQ(Write("value", type, {'a', 0}), Win32Error::kSuccess);
        EXPECT_EQ(Read("value").value, (RegistryValue{type, {'a', 0}}));
    }
}

TEST_P(RegistryContract, AnEmptyValueStaysEmpty) {
    for (const std::uint32_t type : {kRegSz, kRegBinary, kRegDword, kRegMultiSz}) {
        ASSERT_EQ(Write("value", type, {}), Win32Error::kSuccess);
        EXPECT_EQ(Read("value").value, (RegistryValue{type, {}}));
        EXPECT_EQ(Read("value").code, Win32Error::kSuccess);
    }
}

TEST_P(RegistryContract, WritingReplacesTheTypeToo) {
    ASSERT_EQ(Write("value", kRegSz, {'a', 0}), Win32Error::kSuccess);
    ASSERT_EQ(Write("value", kRegDword, {1, 0, 0, 0}), Win32Error::kSuccess);
    EXPECT_EQ(Read("value").value, (RegistryValue{kRegDword, {1, 0, 0, 0}}));
}

TEST_P(RegistryContract, AMissingValueSaysThatTheKeyWasOpened) {
    const RegistryRead read = Read("missing");
    EXPECT_EQ(read.code, Win32Error::kFileNotFound);
    EXPECT_TRUE(read.keyOpened);
}

TEST_P(RegistryContract, AMissingKeySaysThatItWasNotOpened) {
    const RegistryRead read = registry_->ReadValue(kRoot, "SOFTWARE\\Missing", "value");
    EXPECT_EQ(read.code, Win32Error::kFileNotFound);
    EXPECT_FALSE(read.keyOpened);
}

TEST_P(RegistryContract, WritingNeedsTheKey) {
    EXPECT_EQ(registry_->WriteValue(kRoot, "SOFTWARE\\Missing", "value", {kRegSz, {'a', 0}}),
              Win32Error::kFileNotFound);
    EXPECT_FALSE(registry_->ReadValue(kRoot, "SOFTWARE\\Missing", "value").keyOpened);
}

TEST_P(RegistryContract, ValueNamesAreTheSameInAnyCase) {
    ASSERT_EQ(Write("NetCfgInstanceId", kRegSz, {'a', 0}), Win32Error::kSuccess);
    EXPECT_EQ(Read("NETCFGINSTANCEID").value.data, (Bytes{'a', 0}));
    ASSERT_EQ(Write("netcfginstanceid", kRegSz, {'b', 0}), Win32Error::kSuccess);
    EXPECT_EQ(Read("NetCfgInstanceId").value.data, (Bytes{'b', 0}));
}

TEST_P(RegistryContract, KeyNamesAreTheSameInAnyCase) {
    const std::string lower = "software\\test\\system\\class\\{4D36e972}";
    ASSERT_EQ(registry_->CreateKey(kRoot, kKey + "\\System\\Class\\{4d36e972}"), Win32Error::kSuccess);
    EXPECT_EQ(
        registry_->WriteValue(kRoot, "SOFTWARE\\TEST\\SYSTEM\\CLASS\\{4D36E972}", "x", {kRegSz, {'a', 0}}),
        Win32Error::kSuccess);
    EXPECT_TRUE(registry_->ReadValue(kRoot, lower, "X").keyOpened);
    EXPECT_EQ(registry_->ReadValue(kRoot, lower, "X").code, Win32Error::kSuccess);
}

TEST_P(RegistryContract, LatinLettersAreTheSameInAnyCase) {
    ASSERT_EQ(Write("\xC3\xA4\xC3\xB6\xC3\xBE", kRegBinary, {1}),
              Win32Error::kSuccess);  // a and o umlaut, thorn
    EXPECT_EQ(Read("\xC3\x84\xC3\x96\xC3\x9E").value.data, (Bytes{1}));
}

TEST_P(RegistryContract, TheDivisionSignIsNoLetter) {
    ASSERT_EQ(Write("\xC3\xB7", kRegBinary, {1}),
              Win32Error::kSuccess);  // Its place in the lower half is "x".
    EXPECT_EQ(Read("\xC3\x97").code, Win32Error::kFileNotFound);
}

TEST_P(RegistryContract, TheEmptyNameIsAValueToo) {
    ASSERT_EQ(Write("", kRegSz, {'a', 0}), Win32Error::kSuccess);
    EXPECT_EQ(Read("").value.data, (Bytes{'a', 0}));
    EXPECT_EQ(Read("x").code, Win32Error::kFileNotFound);
}

TEST_P(RegistryContract, NamesMayHoldAnyBytes) {
    for (const std::string& name : {world_->NamesMayHoldNul() ? "a\0b"s : "ab"s, "\xFF\xFE"s, "\xC3"s,
                                    "'; DROP TABLE keys; --"s, "%_*?"s, "\n"s, " "s}) {
        ASSERT_EQ(Write(name, kRegBinary, {1, 2}), Win32Error::kSuccess);
        EXPECT_EQ(Read(name).value.data, (Bytes{1, 2}));
        ASSERT_EQ(registry_->CreateKey(kRoot, kKey + "\\" + name), Win32Error::kSuccess);
        EXPECT_TRUE(registry_->ReadValue(kRoot, kKey + "\\" + name, "v").keyOpened);
    }
    EXPECT_EQ(Read("a").code, Win32Error::kFileNotFound);
}

TEST_P(RegistryContract, LargeValuesAndLongPathsWork) {
    const std::size_t each =
        std::min(world_->LongestKeyName(), (world_->LongestPath() - kKey.size() - 2) / 2);
    const std::string longKey = kKey + "\\" + std::string(each, 'k') + "\\" + std::string(each, 'l');
    const RegistryValue value{kRegBinary, Bytes(1 << 20, 0xA5)};
    ASSERT_EQ(registry_->CreateKey(kRoot, longKey), Win32Error::kSuccess);
    ASSERT_EQ(registry_->WriteValue(kRoot, longKey, std::string(1000, 'n'), value), Win32Error::kSuccess);
    EXPECT_EQ(registry_->ReadValue(kRoot, longKey, std::string(1000, 'N')).value, value);
}

// ---- deleting values ----

TEST_P(RegistryContract, ADeletedValueIsGone) {
    ASSERT_EQ(Write("value", kRegSz, {'a', 0}), Win32Error::kSuccess);
    EXPECT_EQ(registry_->DeleteValue(kRoot, kKey, "VALUE"), Win32Error::kSuccess);
    EXPECT_EQ(Read("value").code, Win32Error::kFileNotFound);
    EXPECT_TRUE(Read("value").keyOpened);
}

TEST_P(RegistryContract, DeletingAMissingValueIsAnError) {
    EXPECT_EQ(registry_->DeleteValue(kRoot, kKey, "missing"), Win32Error::kFileNotFound);
    EXPECT_EQ(registry_->DeleteValue(kRoot, "SOFTWARE\\Missing", "missing"), Win32Error::kFileNotFound);
}

// ---- keys ----

TEST_P(RegistryContract, CreatingAKeyMakesItsParents) {
    ASSERT_EQ(registry_->CreateKey(kRoot, kKey + "\\A\\B\\C"), Win32Error::kSuccess);
    for (const char* key : {"\\A", "\\A\\B", "\\A\\B\\C"})
        EXPECT_TRUE(registry_->ReadValue(kRoot, kKey + key, "").keyOpened) << key;
    std::vector<std::string> names;
    ASSERT_EQ(registry_->EnumSubkeys(kRoot, kKey + "\\A", names), Win32Error::kSuccess);
    EXPECT_EQ(names, std::vector<std::string>{"B"});
}

TEST_P(RegistryContract, CreatingAnExistingKeyKeepsItsValues) {
    ASSERT_EQ(Write("value", kRegSz, {'a', 0}), Win32Error::kSuccess);
    EXPECT_EQ(registry_->CreateKey(kRoot, "software\\TEST"), Win32Error::kSuccess);
    EXPECT_EQ(Read("value").code, Win32Error::kSuccess);
}

TEST_P(RegistryContract, SubkeysComeInOrderWithTheCaseTheyWereMadeWith) {
    for (const char* name : {"beta", "_x", "Alpha", "0010", "0002", "\xC3\xA4", "gamma\\deep"}) {
        ASSERT_EQ(registry_->CreateKey(kRoot, kKey + "\\" + name), Win32Error::kSuccess);
    }
    ASSERT_EQ(registry_->CreateKey(kRoot, kKey + "\\BETA"), Win32Error::kSuccess);
    std::vector<std::string> names = {"former"};
    EXPECT_EQ(registry_->EnumSubkeys(kRoot, kKey, names), Win32Error::kSuccess);
    using Names = std::vector<std::string>;
    const bool signsFirst = world_->LimitOf("EnumSubkeys puts \"_\" after the letters") != nullptr;
    EXPECT_EQ(names, signsFirst ? (Names{"0002", "0010", "_x", "Alpha", "beta", "gamma", "\xC3\xA4"})
                                : (Names{"0002", "0010", "Alpha", "beta", "gamma", "_x", "\xC3\xA4"}));
}

TEST_P(RegistryContract, EnumeratingTheRootGivesItsKeys) {
    std::vector<std::string> names;
    EXPECT_EQ(registry_->EnumSubkeys(kRoot, "", names), Win32Error::kSuccess);
    EXPECT_EQ(names, world_->RootKeys());
}

TEST_P(RegistryContract, EnumeratingAKeyWithoutSubkeysLeavesTheNames) {
    std::vector<std::string> names = {"former"};
    EXPECT_EQ(registry_->EnumSubkeys(kRoot, kKey, names), Win32Error::kSuccess);
    EXPECT_EQ(names, std::vector<std::string>{"former"});
}

TEST_P(RegistryContract, EnumeratingAMissingKeyLeavesTheNames) {
    std::vector<std::string> names = {"former"};
    EXPECT_EQ(registry_->EnumSubkeys(kRoot, "SOFTWARE\\Missing", names), Win32Error::kFileNotFound);
    EXPECT_EQ(names, std::vector<std::string>{"former"});
}

TEST_P(RegistryContract, AnUnknownRootIsAnInvalidHandle) {
    const RegistryRoot unknown = world_->UnknownRoot();
    std::vector<std::string> names = {"former"};
    const RegistryRead read = registry_->ReadValue(unknown, kKey, "value");
    EXPECT_EQ(read.code, Win32Error::kInvalidHandle);
    EXPECT_FALSE(read.keyOpened);
    EXPECT_EQ(registry_->WriteValue(unknown, kKey, "value", {kRegSz, {0}}), Win32Error::kInvalidHandle);
    EXPECT_EQ(registry_->DeleteValue(unknown, kKey, "value"), Win32Error::kInvalidHandle);
    EXPECT_EQ(registry_->CreateKey(unknown, kKey), Win32Error::kInvalidHandle);
    EXPECT_EQ(registry_->EnumSubkeys(unknown, kKey, names), Win32Error::kInvalidHandle);
    EXPECT_EQ(names, std::vector<std::string>{"former"});
}

// ---- the fixed operations above it ----

TEST_P(RegistryContract, QueryStringDropsTheTerminator) {
    ASSERT_EQ(Write("value", kRegSz, {'a', 'b', 'c', 0}), Win32Error::kSuccess);
    std::string text = "former";
    EXPECT_EQ(RegQueryString(kRoot, kKey, "value", text), Win32Error::kSuccess);
    EXPECT_EQ(text, "abc");
}

TEST_P(RegistryContract, QueryStringOfAMultiKeepsTheInnerTerminators) {
    ASSERT_EQ(Write("value", kRegMultiSz, {'a', 0, 'b', 0, 0}), Win32Error::kSuccess);
    std::string text;
    EXPECT_EQ(RegQueryString(kRoot, kKey, "value", text), Win32Error::kSuccess);
    EXPECT_EQ(text, "a\0b\0"s);
}

TEST_P(RegistryContract, QueryStringLooksAtNoType) {
    ASSERT_EQ(Write("value", kRegDword, {'1', '2', '3', '4'}), Win32Error::kSuccess);
    std::string text;
    EXPECT_EQ(RegQueryString(kRoot, kKey, "value", text), Win32Error::kSuccess);
    EXPECT_EQ(text, "123");
}

TEST_P(RegistryContract, QueryStringOfAnEmptyValueLeavesTheText) {
    ASSERT_EQ(Write("value", kRegSz, {}), Win32Error::kSuccess);
    std::string text = "former";
    EXPECT_EQ(RegQueryString(kRoot, kKey, "value", text), Win32Error::kSuccess);
    EXPECT_EQ(text, "former");
}

TEST_P(RegistryContract, QueryStringOfWhatIsMissingLeavesTheText) {
    std::string text = "former";
    EXPECT_EQ(RegQueryString(kRoot, kKey, "missing", text), Win32Error::kFileNotFound);
    EXPECT_EQ(RegQueryString(kRoot, "SOFTWARE\\Missing", "missing", text), Win32Error::kFileNotFound);
    EXPECT_EQ(text, "former");
}

TEST_P(RegistryContract, QueryStringConvertsFromTheCodePage) {
    ASSERT_EQ(Write("value", kRegSz, {0x80, 0xE4, 0}), Win32Error::kSuccess);
    std::string text;
    EXPECT_EQ(RegQueryString(kRoot, kKey, "value", text), Win32Error::kSuccess);
    EXPECT_EQ(text, "\xE2\x82\xAC\xC3\xA4");  // euro sign, a umlaut
}

TEST_P(RegistryContract, QueryBinaryGivesBytesAndType) {
    ASSERT_EQ(Write("value", kRegDword, {1, 2, 3, 4}), Win32Error::kSuccess);
    Bytes data;
    std::uint32_t type = 0;
    EXPECT_EQ(RegQueryBinary(kRoot, kKey, "value", data, type), Win32Error::kSuccess);
    EXPECT_EQ(data, (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(type, kRegDword);
}

TEST_P(RegistryContract, QueryBinaryOfAnEmptyValueGivesNoBytes) {
    ASSERT_EQ(Write("value", kRegBinary, {}), Win32Error::kSuccess);
    Bytes data = {9, 9};
    std::uint32_t type = 0;
    EXPECT_EQ(RegQueryBinary(kRoot, kKey, "value", data, type), Win32Error::kSuccess);
    EXPECT_EQ(data, Bytes());
    EXPECT_EQ(type, kRegBinary);
}

TEST_P(RegistryContract, QueryBinaryOfAMissingValueGivesOneZeroByte) {
    Bytes data = {9, 9};
    std::uint32_t type = 77;
    EXPECT_EQ(RegQueryBinary(kRoot, kKey, "missing", data, type), Win32Error::kFileNotFound);
    EXPECT_EQ(data, (Bytes{0}));
    EXPECT_EQ(DwordFrom(data), 0U);
}

TEST_P(RegistryContract, QueryBinaryOfAMissingKeyLeavesEverything) {
    Bytes data = {9, 9};
    std::uint32_t type = 77;
    EXPECT_EQ(RegQueryBinary(kRoot, "SOFTWARE\\Missing", "value", data, type), Win32Error::kFileNotFound);
    EXPECT_EQ(data, (Bytes{9, 9}));
    EXPECT_EQ(type, 77U);
}

TEST_P(RegistryContract, SetStringOfAnEmptyTextWritesNoBytes) {
    EXPECT_EQ(RegSetString(kRoot, kKey, "value", "", kRegSz), Win32Error::kSuccess);
    EXPECT_EQ(Read("value").value, (RegistryValue{kRegSz, {}}));
}

TEST_P(RegistryContract, SetStringConvertsToTheCodePage) {
    EXPECT_EQ(RegSetString(kRoot, kKey, "value", "\xE2\x82\xAC\xD0\x96", kRegSz), Win32Error::kSuccess);
    EXPECT_EQ(Read("value").value, (RegistryValue{kRegSz, {0x80, '?', 0}}));
}

TEST_P(RegistryContract, SetStringNeedsTheKey) {
    EXPECT_EQ(RegSetString(kRoot, "SOFTWARE\\Missing", "value", "a", kRegSz), Win32Error::kFileNotFound);
}

TEST_P(RegistryContract, SetBinaryOfAnEmptyArrayWritesNoBytes) {
    EXPECT_EQ(RegSetBinary(kRoot, kKey, "value", {}, kRegBinary), Win32Error::kSuccess);
    EXPECT_EQ(Read("value").value, (RegistryValue{kRegBinary, {}}));
}

TEST_P(RegistryContract, ADwordComesBackAsItsNumber) {
    EXPECT_EQ(RegSetBinary(kRoot, kKey, "value", DwordBytes(0xFEDCBA98U), kRegDword), Win32Error::kSuccess);
    EXPECT_EQ(Read("value").value.data, (Bytes{0x98, 0xBA, 0xDC, 0xFE}));
    Bytes data;
    std::uint32_t type = 0;
    EXPECT_EQ(RegQueryBinary(kRoot, kKey, "value", data, type), Win32Error::kSuccess);
    EXPECT_EQ(DwordFrom(data), 0xFEDCBA98U);
}

TEST_P(RegistryContract, TheFixedOperationsDeleteAndCreate) {
    EXPECT_EQ(RegCreateKey(kRoot, kKey + "\\New\\Key"), Win32Error::kSuccess);
    EXPECT_EQ(RegSetString(kRoot, kKey + "\\New\\Key", "value", "a", kRegSz), Win32Error::kSuccess);
    EXPECT_EQ(RegDeleteValue(kRoot, kKey + "\\New\\Key", "value"), Win32Error::kSuccess);
    EXPECT_EQ(RegDeleteValue(kRoot, kKey + "\\New\\Key", "value"), Win32Error::kFileNotFound);
}

TEST_P(RegistryContract, EnumSubkeysReturnsLongNamesWhole) {
    const std::size_t longest = std::min<std::size_t>(255, world_->LongestPath() - kKey.size() - 1);
    for (const std::size_t length :
         {std::size_t{32}, std::size_t{33}, std::size_t{64}, std::size_t{65}, longest}) {
        const std::string name(length, 'n');
        ASSERT_EQ(RegCreateKey(kRoot, kKey + "\\" + name), Win32Error::kSuccess);
    }
    std::vector<std::string> names;
    EXPECT_EQ(RegEnumSubkeys(kRoot, kKey, names), Win32Error::kSuccess);
    ASSERT_EQ(names.size(), 5U);
    EXPECT_EQ(names[0], std::string(32, 'n'));
    EXPECT_EQ(names[4], std::string(longest, 'n'));
}

TEST_P(RegistryContract, EnumSubkeysWithoutSubkeysLeavesTheNames) {
    std::vector<std::string> names = {"former"};
    EXPECT_EQ(RegEnumSubkeys(kRoot, kKey, names), Win32Error::kSuccess);
    EXPECT_EQ(RegEnumSubkeys(kRoot, "SOFTWARE\\Missing", names), Win32Error::kFileNotFound);
    EXPECT_EQ(names, std::vector<std::string>{"former"});
}

TEST(RegErrorText, NamesEveryNumberOfTheTable) {
    const std::vector<std::pair<std::uint32_t, std::string>> rows = {
        {0, "(0) No Error"},
        {2, "(2) Bad Key Name"},
        {3, "(3) Undefined Error Code"},
        {4, "(4) Can't Read Key"},
        {5, "(5) Access to this key is denied"},
        {6, "(6) Invalid registry key handle"},
        {8, "(8) Out of memory"},
        {14, "(14) Out of memory"},
        {87, "(87) Invalid Parameter"},
        {234, "(234) There is more data than the buffer has been allocated to hold"},
        {1009, "(1009) The Registry Database is corrupt!"},
        {1010, "(1010) Bad Key Name"},
        {1011, "(1011) Can't Open Key"},
        {1012, "(1012) Can't Read Key"},
        {1013, "(1013) Can't Write Key"},
        {1014, "(1014) Undefined Error Code"},
        {1015, "(1015) The Registry Database is corrupt!"},
        {4294967295U, "(4294967295) Undefined Error Code"},
    };
    for (const auto& [code, text] : rows) EXPECT_EQ(RegErrorText(Win32Error{code}), text);
}

// ---- a registry without rights ----

TEST(FakeRegistryFailures, AnOrderedFailureIsReturned) {
    FakeRegistry registry;
    registry.SetText("A", "value", "x");
    registry.fail = [](const std::string& operation, const std::string&, const std::string&) {
        return operation == "read" ? std::optional(Win32Error::kCantRead) : std::nullopt;
    };
    const RegistryRead read = registry.ReadValue(kRoot, "A", "value");
    EXPECT_EQ(read.code, Win32Error::kCantRead);
    EXPECT_TRUE(read.keyOpened);
    EXPECT_EQ(registry.WriteValue(kRoot, "A", "value", {kRegSz, {0}}), Win32Error::kSuccess);
    EXPECT_EQ(registry.diary, (std::vector<std::string>{"read A\\value", "write A\\value"}));
}

}  // namespace
}  // namespace corvane
