#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/RegistryValues.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::PrintToString;
using Texts = std::vector<std::string>;
using namespace std::string_literals;

RegistryBytes Bytes(const std::string& characters) { return {characters.begin(), characters.end()}; }

TEST(RegistryText, IsReadInThreeWays) {
    struct Row {
        std::string bytes;
        std::string beforeLastByte;
        std::string beforeNul;
        std::string withoutNuls;
    };
    const std::vector<Row> table = {
        {"", "", "", ""},                                       // a value of no bytes
        {"\0"s, "", "", ""},                                    // an empty text
        {"\0\0"s, "\0"s, "", ""},                               // a doubled terminator
        {"a\0"s, "a", "a", "a"},                                // as it should be
        {"a", "", "a", "a"},                                    // without its terminator
        {"abc", "ab", "abc", "abc"},                            //
        {"a\0\0"s, "a\0"s, "a", "a"},                           //
        {"a\0b\0"s, "a\0b"s, "a", "ab"},                        // a NUL inside
        {"\0a\0"s, "\0a"s, "", "a"},                            //
        {"a\0b\0\0"s, "a\0b\0"s, "a", "ab"},                    // a list
        {"b\xFCro\0"s, "b\u00FCro", "b\u00FCro", "b\u00FCro"},  // the code page
        {"\x80\x81\xFF\0"s, "\u20AC\u0081\u00FF", "\u20AC\u0081\u00FF", "\u20AC\u0081\u00FF"},
    };
    for (const Row& row : table) {
        const RegistryBytes bytes = Bytes(row.bytes);
        EXPECT_EQ(TextBeforeLastByte(bytes), row.beforeLastByte) << PrintToString(bytes);
        EXPECT_EQ(TextBeforeNul(bytes), row.beforeNul) << PrintToString(bytes);
        EXPECT_EQ(TextWithoutNuls(bytes), row.withoutNuls) << PrintToString(bytes);
    }
}

TEST(RegistryText, BecomesBytesOfTheCodePage) {
    struct Row {
        std::string text;
        std::string bytes;
    };
    const std::vector<Row> table = {
        {"", ""}, {"a", "a"}, {"a\0b"s, "a\0b"s}, {"b\u00FCro", "b\xFCro"}, {"\u0142", "?"}, {"\xFF", "?"},
    };
    for (const Row& row : table) {
        EXPECT_EQ(TextBytes(row.text), Bytes(row.bytes)) << PrintToString(row.text);
        EXPECT_EQ(TextValue(row.text), (RegistryValue{kRegSz, Bytes(row.bytes + '\0')}))
            << PrintToString(row.text);
    }
}

TEST(RegistryText, ComesBackAsItWasWritten) {
    for (const std::string& text :
         Texts{"", "a", "10.0.0.1,10.0.0.2", "b\u00FCro", std::string(100000, 'x')}) {
        const RegistryBytes bytes = TextValue(text).data;
        EXPECT_EQ(TextBeforeLastByte(bytes), text);
        EXPECT_EQ(TextBeforeNul(bytes), text);
        EXPECT_EQ(TextWithoutNuls(bytes), text);
    }
}

TEST(RegistryList, BytesGiveTheEntriesWhateverTheirTerminators) {
    struct Row {
        std::string bytes;
        Texts entries;
    };
    const std::vector<Row> table = {
        {"", {}},
        {"\0"s, {}},
        {"\0\0\0"s, {}},
        {"a", {"a"}},
        {"a\0"s, {"a"}},
        {"a\0\0"s, {"a"}},
        {"a\0b"s, {"a", "b"}},
        {"a\0b\0\0\0\0"s, {"a", "b"}},
        {"a\0\0b\0\0"s, {"a", "", "b"}},
        {"\0a\0\0"s, {"", "a"}},
        {"b\xFCro\0\0"s, {"b\u00FCro"}},
    };
    for (const Row& row : table)
        EXPECT_EQ(ListFrom(Bytes(row.bytes)), row.entries) << PrintToString(row.bytes);
}

TEST(RegistryList, TextsGiveOnePieceMoreThanEntries) {
    struct Row {
        std::string text;
        Texts pieces;
        Texts entries;
    };
    const std::vector<Row> table = {
        {"", {""}, {""}},
        {"\0"s, {"", ""}, {""}},
        {"\0\0"s, {"", "", ""}, {"", ""}},
        {"a", {"a"}, {"a"}},
        {"a\0"s, {"a", ""}, {"a"}},
        {"a\0b\0"s, {"a", "b", ""}, {"a", "b"}},
        {"a\0b"s, {"a", "b"}, {"a", "b"}},
        {"a\0\0b\0\0"s, {"a", "", "b", "", ""}, {"a", "", "b", ""}},
    };
    for (const Row& row : table) {
        EXPECT_EQ(ListPieces(row.text), row.pieces) << PrintToString(row.text);
        EXPECT_EQ(ListEntries(row.text), row.entries) << PrintToString(row.text);
    }
}

TEST(RegistryList, IsWrittenWithItsTerminators) {
    struct Row {
        Texts entries;
        std::string bytes;
        std::string text;
    };
    const std::vector<Row> table = {
        {{}, "\0"s, "\0\0"s},
        {{""}, "\0\0"s, "\0\0"s},
        {{"a"}, "a\0\0"s, "a\0\0"s},
        {{"a", "b"}, "a\0b\0\0"s, "a\0b\0\0"s},
        {{"a", "", "b"}, "a\0\0b\0\0"s, "a\0\0b\0\0"s},
        {{"a", ""}, "a\0\0\0"s, "a\0\0\0"s},
    };
    for (const Row& row : table) {
        EXPECT_EQ(ListValue(row.entries), (RegistryValue{kRegMultiSz, Bytes(row.bytes)}))
            << PrintToString(row.entries);
        EXPECT_EQ(ListText(row.entries), row.text) << PrintToString(row.entries);
    }
    EXPECT_EQ(ListValue({"b\u00FCro"}).data, Bytes("b\xFCro\0\0"s));
    EXPECT_EQ(ListText({"b\u00FCro"}), "b\u00FCro\0\0"s);
    EXPECT_EQ(kEmptyListText, "\0"s);
}

TEST(RegistryList, ComesBackAsItWasWritten) {
    const std::vector<Texts> lists = {
        {"a"}, {"10.0.0.1", "10.0.0.2"}, {"a", "", "b"}, {"b\u00FCro", "\u20AC"}, Texts(100000, "10.0.0.1"),
    };
    for (const Texts& entries : lists) {
        const RegistryBytes bytes = ListValue(entries).data;
        EXPECT_EQ(ListFrom(bytes), entries);
        EXPECT_EQ(ListEntries(TextBeforeLastByte(bytes)), entries);
        EXPECT_EQ(Bytes(ListText(entries)).size(), TextBeforeLastByte(bytes).size() + 1);
    }
    EXPECT_EQ(ListFrom(ListValue({}).data), Texts{});
}

TEST(RegistryDword, BytesAreCutOrZeroFilledToFourAndReadLittleEndian) {
    const std::vector<std::pair<RegistryBytes, std::uint32_t>> table = {
        {{}, 0},
        {{7}, 7},
        {{1, 2}, 0x0201},
        {{1, 2, 3}, 0x030201},
        {{1, 2, 3, 4}, 0x04030201},
        {{1, 2, 3, 4, 5}, 0x04030201},
        {{255, 255, 255, 255}, 0xFFFFFFFF},
        {RegistryBytes(100000, 1), 0x01010101},
    };
    for (const auto& [bytes, number] : table) EXPECT_EQ(DwordFrom(bytes), number) << bytes.size();
}

TEST(RegistryDword, NumbersBecomeFourLittleEndianBytes) {
    EXPECT_THAT(DwordBytes(0), ElementsAre(0, 0, 0, 0));
    EXPECT_THAT(DwordBytes(0x04030201), ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(DwordBytes(0xFFFFFFFE), ElementsAre(254, 255, 255, 255));
    EXPECT_EQ(DwordValue(0x04030201), (RegistryValue{kRegDword, {1, 2, 3, 4}}));
}

TEST(RegistryDword, ComesBackAsItWasWritten) {
    for (const std::uint32_t number : {0U, 1U, 0x80U, 0x12345678U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU})
        EXPECT_EQ(DwordFrom(DwordValue(number).data), number);
}

TEST(RegistryFlag, IsTheFirstByte) {
    const std::vector<std::pair<RegistryBytes, bool>> table = {
        {{}, false}, {{0}, false}, {{1}, true}, {{2, 0, 0, 0}, true}, {{0, 1, 0, 0}, false}, {{255}, true},
    };
    for (const auto& [bytes, flag] : table) EXPECT_EQ(FlagFrom(bytes), flag) << PrintToString(bytes);
}

}  // namespace
}  // namespace corvane
