#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fakes/Fakes.h"
#include "platform/Registry.h"

namespace corvane {
namespace {

using namespace std::string_literals;
using Bytes = std::vector<std::uint8_t>;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr char kKey[] = "SOFTWARE\\Corvane";
constexpr std::uint32_t kNoType = 77;

class RegistryOperations : public testing::Test {
 protected:
    RegistryOperations() { registry_.MakeKey(kKey); }

    void Store(const std::string& name, const Bytes& data, std::uint32_t type = kRegSz) {
        registry_.SetValue(kKey, name, {type, data});
    }

    void FailAt(const std::string& operation, Win32Error code) {
        registry_.fail = [=](const std::string& asked, const std::string&,
                             const std::string&) -> std::optional<Win32Error> {
            if (asked == operation) return code;
            return std::nullopt;
        };
    }

    Win32Error QueryString(const std::string& name) {
        return RegQueryString(kHkeyLocalMachine, kKey, name, text_);
    }

    Win32Error QueryBinary(const std::string& name) {
        return RegQueryBinary(kHkeyLocalMachine, kKey, name, data_, type_);
    }

    FakeMachine machine_;
    FakeRegistry& registry_ = *machine_.registry;
    std::string text_ = "before";
    Bytes data_{1, 2, 3};
    std::uint32_t type_ = kNoType;
};

// ---- RegQueryString

TEST_F(RegistryOperations, QueryStringDropsTheTerminatingNul) {
    Store("Text", {'a', 'b', 'c', 0});
    EXPECT_EQ(QueryString("Text"), Win32Error::kSuccess);
    EXPECT_EQ(text_, "abc");
}

TEST_F(RegistryOperations, QueryStringOfAMultiStringDropsOnlyTheLastNul) {
    Store("Texts", {'a', 0, 'b', 0, 0}, kRegMultiSz);
    EXPECT_EQ(QueryString("Texts"), Win32Error::kSuccess);
    EXPECT_EQ(text_, "a\0b\0"s);
}

TEST_F(RegistryOperations, QueryStringOfOddBytesDropsTheLastOneWhateverItIs) {
    const std::vector<std::pair<Bytes, std::string>> table = {
        {{'a', 'b', 'c'}, "ab"},      // no terminator
        {{'a', 0, 'b'}, "a\0"s},      // multi-string cut short
        {{'a', 0, 'b', 0}, "a\0b"s},  // multi-string with one NUL at its end
        {{'a', 0, 0, 0}, "a\0\0"s},   // one NUL too many
        {{0, 0}, "\0"s},              // empty multi-string
        {{0}, ""},                    // empty text
        {{'a'}, ""},                  // one character without a terminator
    };
    for (const auto& [stored, expected] : table) {
        Store("Odd", stored, kRegMultiSz);
        text_ = "before";
        EXPECT_EQ(QueryString("Odd"), Win32Error::kSuccess);
        EXPECT_EQ(text_, expected) << testing::PrintToString(stored);
    }
}

TEST_F(RegistryOperations, QueryStringDoesNotCheckTheType) {
    registry_.SetDword(kKey, "Number", 0x00434241);
    EXPECT_EQ(QueryString("Number"), Win32Error::kSuccess);
    EXPECT_EQ(text_, "ABC");
    registry_.SetBinary(kKey, "Raw", {'x', 'y', 'z'});
    EXPECT_EQ(QueryString("Raw"), Win32Error::kSuccess);
    EXPECT_EQ(text_, "xy");
}

TEST_F(RegistryOperations, QueryStringOfZeroBytesLeavesTheTextUntouched) {
    Store("Empty", {});
    EXPECT_EQ(QueryString("Empty"), Win32Error::kSuccess);
    EXPECT_EQ(text_, "before");
}

TEST_F(RegistryOperations, QueryStringOfAMissingValueGives2AndLeavesTheText) {
    EXPECT_EQ(QueryString("Missing"), Win32Error::kFileNotFound);
    EXPECT_EQ(text_, "before");
}

TEST_F(RegistryOperations, QueryStringInAMissingKeyGives2AndLeavesTheText) {
    EXPECT_EQ(RegQueryString(kHkeyLocalMachine, "SOFTWARE\\Nowhere", "Text", text_),
              Win32Error::kFileNotFound);
    EXPECT_EQ(text_, "before");
}

TEST_F(RegistryOperations, QueryStringHandsTheFailureOnAndLeavesTheText) {
    Store("Text", {'a', 0});
    for (const char* operation : {"open", "read"}) {
        FailAt(operation, Win32Error::kRegistryCorrupt);
        EXPECT_EQ(QueryString("Text"), Win32Error::kRegistryCorrupt) << operation;
        EXPECT_EQ(text_, "before") << operation;
    }
}

TEST_F(RegistryOperations, QueryStringComesFromTheSingleByteCodePage) {
    Store("Text", {0x80, 0xFC, 0});
    EXPECT_EQ(QueryString("Text"), Win32Error::kSuccess);
    EXPECT_EQ(text_, "\u20AC\u00FC");
}

// ---- RegQueryBinary

TEST_F(RegistryOperations, QueryBinaryGivesEveryByteAndTheType) {
    Store("Raw", {0, 'a', 0, 255}, kRegBinary);
    EXPECT_EQ(QueryBinary("Raw"), Win32Error::kSuccess);
    EXPECT_THAT(data_, ElementsAre(0, 'a', 0, 255));
    EXPECT_EQ(type_, kRegBinary);
}

TEST_F(RegistryOperations, QueryBinaryOfATextKeepsItsTerminator) {
    registry_.SetText(kKey, "Text", "ab");
    EXPECT_EQ(QueryBinary("Text"), Win32Error::kSuccess);
    EXPECT_THAT(data_, ElementsAre('a', 'b', 0));
    EXPECT_EQ(type_, kRegSz);
}

TEST_F(RegistryOperations, QueryBinaryOfZeroBytesGivesAnEmptyArrayAndSuccess) {
    Store("Empty", {}, kRegBinary);
    EXPECT_EQ(QueryBinary("Empty"), Win32Error::kSuccess);
    EXPECT_THAT(data_, IsEmpty());
}

TEST_F(RegistryOperations, QueryBinaryOfAMissingValueGives2AndOneZeroByte) {
    EXPECT_EQ(QueryBinary("Missing"), Win32Error::kFileNotFound);
    EXPECT_THAT(data_, ElementsAre(0));
    EXPECT_EQ(type_, kNoType);
}

TEST_F(RegistryOperations, QueryBinaryInAMissingKeyGives2AndTouchesNothing) {
    EXPECT_EQ(RegQueryBinary(kHkeyLocalMachine, "SOFTWARE\\Nowhere", "Raw", data_, type_),
              Win32Error::kFileNotFound);
    EXPECT_THAT(data_, ElementsAre(1, 2, 3));
    EXPECT_EQ(type_, kNoType);
}

TEST_F(RegistryOperations, QueryBinaryOfAKeyThatCannotBeOpenedTouchesNothing) {
    Store("Raw", {9}, kRegBinary);
    FailAt("open", Win32Error::kAccessDenied);
    EXPECT_EQ(QueryBinary("Raw"), Win32Error::kAccessDenied);
    EXPECT_THAT(data_, ElementsAre(1, 2, 3));
    EXPECT_EQ(type_, kNoType);
}

TEST_F(RegistryOperations, QueryBinaryThatFailsToReadGivesOneZeroByte) {
    Store("Raw", {9, 9}, kRegBinary);
    FailAt("read", Win32Error::kCantRead);
    EXPECT_EQ(QueryBinary("Raw"), Win32Error::kCantRead);
    EXPECT_THAT(data_, ElementsAre(0));
}

// ---- RegSetString, RegSetBinary

TEST_F(RegistryOperations, SetStringPassesTheCharactersWithoutATerminator) {
    EXPECT_EQ(RegSetString(kHkeyLocalMachine, kKey, "Text", "abc", kRegSz), Win32Error::kSuccess);
    ASSERT_THAT(registry_.writes, SizeIs(1));
    EXPECT_EQ(registry_.writes[0].subkey, kKey);
    EXPECT_EQ(registry_.writes[0].name, "Text");
    EXPECT_EQ(registry_.writes[0].value, (RegistryValue{kRegSz, {'a', 'b', 'c'}}));
}

TEST_F(RegistryOperations, SetStringPassesTheTerminatorsThatTheCallerAppended) {
    EXPECT_EQ(RegSetString(kHkeyLocalMachine, kKey, "Texts", "a\0b\0\0"s, kRegMultiSz), Win32Error::kSuccess);
    EXPECT_EQ(registry_.writes.at(0).value, (RegistryValue{kRegMultiSz, {'a', 0, 'b', 0, 0}}));
    EXPECT_THAT(registry_.RawBytes(kKey, "Texts"), ElementsAre('a', 0, 'b', 0, 0));
}

TEST_F(RegistryOperations, SetStringWithAnEmptyTextWritesZeroBytes) {
    registry_.SetText(kKey, "Text", "old");
    EXPECT_EQ(RegSetString(kHkeyLocalMachine, kKey, "Text", "", kRegSz), Win32Error::kSuccess);
    EXPECT_EQ(registry_.writes.at(0).value, (RegistryValue{kRegSz, {}}));
    EXPECT_TRUE(registry_.HasValue(kKey, "Text"));
    EXPECT_THAT(registry_.RawBytes(kKey, "Text"), IsEmpty());
}

TEST_F(RegistryOperations, SetStringGoesToTheSingleByteCodePage) {
    EXPECT_EQ(RegSetString(kHkeyLocalMachine, kKey, "Text", "\u20AC\u0416\u00FC", kRegSz),
              Win32Error::kSuccess);
    EXPECT_THAT(registry_.writes.at(0).value.data, ElementsAre(0x80, '?', 0xFC));
}

TEST_F(RegistryOperations, WhatSetStringWroteIsWhatQueryStringReads) {
    EXPECT_EQ(RegSetString(kHkeyLocalMachine, kKey, "Text", "00-0C-29-4F-8E-35", kRegSz),
              Win32Error::kSuccess);
    EXPECT_EQ(QueryString("Text"), Win32Error::kSuccess);
    EXPECT_EQ(text_, "00-0C-29-4F-8E-35");
}

TEST_F(RegistryOperations, SetBinaryWritesEveryByteWithTheType) {
    EXPECT_EQ(RegSetBinary(kHkeyLocalMachine, kKey, "Number", {1, 0, 0, 2}, kRegDword), Win32Error::kSuccess);
    EXPECT_EQ(registry_.writes.at(0).value, (RegistryValue{kRegDword, {1, 0, 0, 2}}));
    EXPECT_EQ(registry_.Value(kKey, "Number"), (RegistryValue{kRegDword, {1, 0, 0, 2}}));
}

TEST_F(RegistryOperations, SetBinaryWithAnEmptyArrayWritesAValueOfZeroLength) {
    EXPECT_EQ(RegSetBinary(kHkeyLocalMachine, kKey, "Raw", {}, kRegBinary), Win32Error::kSuccess);
    EXPECT_EQ(registry_.Value(kKey, "Raw"), (RegistryValue{kRegBinary, {}}));
}

TEST_F(RegistryOperations, WritingReplacesTheTypeToo) {
    registry_.SetText(kKey, "Value", "text");
    EXPECT_EQ(RegSetBinary(kHkeyLocalMachine, kKey, "Value", {7, 0, 0, 0}, kRegDword), Win32Error::kSuccess);
    EXPECT_EQ(registry_.Value(kKey, "Value"), (RegistryValue{kRegDword, {7, 0, 0, 0}}));
}

TEST_F(RegistryOperations, WritingNeedsAnExistingKey) {
    EXPECT_EQ(RegSetString(kHkeyLocalMachine, "SOFTWARE\\Nowhere", "Text", "a", kRegSz),
              Win32Error::kFileNotFound);
    EXPECT_EQ(RegSetBinary(kHkeyLocalMachine, "SOFTWARE\\Nowhere", "Raw", {1}, kRegBinary),
              Win32Error::kFileNotFound);
    EXPECT_FALSE(registry_.HasKey("SOFTWARE\\Nowhere"));
}

TEST_F(RegistryOperations, WritingWithoutRightsGives5AndChangesNothing) {
    registry_.SetText(kKey, "Text", "old");
    registry_.readOnly = true;
    EXPECT_EQ(RegSetString(kHkeyLocalMachine, kKey, "Text", "new", kRegSz), Win32Error::kAccessDenied);
    EXPECT_EQ(RegSetBinary(kHkeyLocalMachine, kKey, "Text", {1}, kRegBinary), Win32Error::kAccessDenied);
    EXPECT_EQ(RegDeleteValue(kHkeyLocalMachine, kKey, "Text"), Win32Error::kAccessDenied);
    EXPECT_EQ(RegCreateKey(kHkeyLocalMachine, "SOFTWARE\\New"), Win32Error::kAccessDenied);
    EXPECT_EQ(registry_.Text(kKey, "Text"), "old");
    EXPECT_FALSE(registry_.HasKey("SOFTWARE\\New"));
}

TEST_F(RegistryOperations, AFailingWriteHandsItsCodeOn) {
    FailAt("write", Win32Error::kCantWrite);
    EXPECT_EQ(RegSetString(kHkeyLocalMachine, kKey, "Text", "a", kRegSz), Win32Error::kCantWrite);
    EXPECT_EQ(RegSetBinary(kHkeyLocalMachine, kKey, "Raw", {1}, kRegBinary), Win32Error::kCantWrite);
    EXPECT_FALSE(registry_.HasValue(kKey, "Text"));
    EXPECT_FALSE(registry_.HasValue(kKey, "Raw"));
}

// ---- RegDeleteValue, RegCreateKey

TEST_F(RegistryOperations, DeleteValueRemovesOnlyThatValue) {
    registry_.SetText(kKey, "One", "1");
    registry_.SetText(kKey, "Two", "2");
    EXPECT_EQ(RegDeleteValue(kHkeyLocalMachine, kKey, "One"), Win32Error::kSuccess);
    EXPECT_FALSE(registry_.HasValue(kKey, "One"));
    EXPECT_TRUE(registry_.HasValue(kKey, "Two"));
}

TEST_F(RegistryOperations, DeleteOfAMissingValueOrKeyGives2) {
    EXPECT_EQ(RegDeleteValue(kHkeyLocalMachine, kKey, "Missing"), Win32Error::kFileNotFound);
    EXPECT_EQ(RegDeleteValue(kHkeyLocalMachine, "SOFTWARE\\Nowhere", "Value"), Win32Error::kFileNotFound);
}

TEST_F(RegistryOperations, CreateKeyMakesMissingParents) {
    EXPECT_EQ(RegCreateKey(kHkeyLocalMachine, "SYSTEM\\A\\B\\C"), Win32Error::kSuccess);
    EXPECT_TRUE(registry_.HasKey("SYSTEM\\A"));
    EXPECT_TRUE(registry_.HasKey("SYSTEM\\A\\B"));
    EXPECT_TRUE(registry_.HasKey("SYSTEM\\A\\B\\C"));
}

TEST_F(RegistryOperations, CreateKeyOfAnExistingKeyKeepsItsValues) {
    registry_.SetText(kKey, "Text", "kept");
    EXPECT_EQ(RegCreateKey(kHkeyLocalMachine, kKey), Win32Error::kSuccess);
    EXPECT_EQ(registry_.Text(kKey, "Text"), "kept");
}

TEST_F(RegistryOperations, CreateKeyHandsTheFailureOn) {
    FailAt("create", Win32Error::kCantWrite);
    EXPECT_EQ(RegCreateKey(kHkeyLocalMachine, "SYSTEM\\A"), Win32Error::kCantWrite);
    EXPECT_FALSE(registry_.HasKey("SYSTEM\\A"));
}

// ---- RegEnumSubkeys

TEST_F(RegistryOperations, EnumSubkeysGivesTheDirectSubkeysInOrder) {
    for (const char* name : {"0002", "0001", "Properties", "0001\\Deeper"})
        registry_.MakeKey(kKey + "\\"s + name);
    std::vector<std::string> names{"before"};
    EXPECT_EQ(RegEnumSubkeys(kHkeyLocalMachine, kKey, names), Win32Error::kSuccess);
    EXPECT_THAT(names, ElementsAre("0001", "0002", "Properties"));
}

TEST_F(RegistryOperations, EnumSubkeysOfAKeyWithoutSubkeysLeavesTheArrayAndGives0) {
    std::vector<std::string> names{"before"};
    EXPECT_EQ(RegEnumSubkeys(kHkeyLocalMachine, kKey, names), Win32Error::kSuccess);
    EXPECT_THAT(names, ElementsAre("before"));
}

TEST_F(RegistryOperations, EnumSubkeysOfAMissingKeyGives2AndLeavesTheArray) {
    std::vector<std::string> names{"before"};
    EXPECT_EQ(RegEnumSubkeys(kHkeyLocalMachine, "SOFTWARE\\Nowhere", names), Win32Error::kFileNotFound);
    EXPECT_THAT(names, ElementsAre("before"));
}

TEST_F(RegistryOperations, EnumSubkeysReturnsNamesLongerThan32CharactersWhole) {
    const std::vector<std::string> longNames = {std::string(32, 'a'), std::string(33, 'b'),
                                                std::string(64, 'c'), std::string(129, 'd'),
                                                std::string(255, 'e')};
    for (const std::string& name : longNames) registry_.MakeKey(kKey + "\\"s + name);
    std::vector<std::string> names;
    EXPECT_EQ(RegEnumSubkeys(kHkeyLocalMachine, kKey, names), Win32Error::kSuccess);
    EXPECT_EQ(names, longNames);
}

TEST_F(RegistryOperations, EnumSubkeysHandsTheFailureOn) {
    registry_.MakeKey(kKey + "\\0001"s);
    for (const char* operation : {"open", "enum"}) {
        FailAt(operation, Win32Error::kMoreData);
        std::vector<std::string> names;
        EXPECT_EQ(RegEnumSubkeys(kHkeyLocalMachine, kKey, names), Win32Error::kMoreData) << operation;
        EXPECT_THAT(names, IsEmpty()) << operation;
    }
}

// ---- every operation

TEST_F(RegistryOperations, EachOperationAsksTheRegistryOnceAndShowsNothing) {
    registry_.fail = [](const std::string&, const std::string&, const std::string&) {
        return Win32Error::kRegistryCorrupt;
    };
    std::vector<std::string> names;
    EXPECT_EQ(QueryString("S"), Win32Error::kRegistryCorrupt);
    EXPECT_EQ(QueryBinary("B"), Win32Error::kRegistryCorrupt);
    EXPECT_EQ(RegSetString(kHkeyLocalMachine, kKey, "W", "x", kRegSz), Win32Error::kRegistryCorrupt);
    EXPECT_EQ(RegSetBinary(kHkeyLocalMachine, kKey, "X", {1}, kRegBinary), Win32Error::kRegistryCorrupt);
    EXPECT_EQ(RegDeleteValue(kHkeyLocalMachine, kKey, "D"), Win32Error::kRegistryCorrupt);
    EXPECT_EQ(RegCreateKey(kHkeyLocalMachine, kKey), Win32Error::kRegistryCorrupt);
    EXPECT_EQ(RegEnumSubkeys(kHkeyLocalMachine, kKey, names), Win32Error::kRegistryCorrupt);
    const std::string key = kKey;
    EXPECT_THAT(registry_.diary,
                ElementsAre("read " + key + "\\S", "read " + key + "\\B", "write " + key + "\\W",
                            "write " + key + "\\X", "delete " + key + "\\D", "create " + key, "enum " + key));
    EXPECT_THAT(machine_.seat.diary, IsEmpty());
}

TEST_F(RegistryOperations, TheRootKeyReachesTheRegistry) {
    constexpr RegistryRoot kOther = 0x80000001U;
    registry_.SetText(kKey, "Text", "a");
    std::vector<std::string> names;
    EXPECT_EQ(RegQueryString(kOther, kKey, "Text", text_), Win32Error::kInvalidHandle);
    EXPECT_EQ(RegQueryBinary(kOther, kKey, "Text", data_, type_), Win32Error::kInvalidHandle);
    EXPECT_EQ(RegSetString(kOther, kKey, "Text", "b", kRegSz), Win32Error::kInvalidHandle);
    EXPECT_EQ(RegSetBinary(kOther, kKey, "Text", {1}, kRegBinary), Win32Error::kInvalidHandle);
    EXPECT_EQ(RegDeleteValue(kOther, kKey, "Text"), Win32Error::kInvalidHandle);
    EXPECT_EQ(RegCreateKey(kOther, "SOFTWARE\\New"), Win32Error::kInvalidHandle);
    EXPECT_EQ(RegEnumSubkeys(kOther, "SOFTWARE", names), Win32Error::kInvalidHandle);
    EXPECT_EQ(registry_.Text(kKey, "Text"), "a");
}

// ---- what the tests of other parts build on

TEST_F(RegistryOperations, StoredTextWithoutATerminatorGetsOne) {
    EXPECT_EQ(RegSetString(kHkeyLocalMachine, kKey, "Text", "a", kRegSz), Win32Error::kSuccess);
    EXPECT_EQ(RegSetString(kHkeyLocalMachine, kKey, "Texts", "a\0b"s, kRegMultiSz), Win32Error::kSuccess);
    EXPECT_EQ(RegSetString(kHkeyLocalMachine, kKey, "Ended", "a\0"s, kRegSz), Win32Error::kSuccess);
    EXPECT_EQ(RegSetBinary(kHkeyLocalMachine, kKey, "Raw", {'a'}, kRegBinary), Win32Error::kSuccess);
    EXPECT_THAT(registry_.RawBytes(kKey, "Text"), ElementsAre('a', 0));
    EXPECT_THAT(registry_.RawBytes(kKey, "Texts"), ElementsAre('a', 0, 'b', 0));
    EXPECT_THAT(registry_.RawBytes(kKey, "Ended"), ElementsAre('a', 0));
    EXPECT_THAT(registry_.RawBytes(kKey, "Raw"), ElementsAre('a'));
}

}  // namespace
}  // namespace corvane
