#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "platform/linux/registry/RegFile.h"
#include "platform/linux/registry/Utf16.h"

namespace corvane {
namespace {

using Kind = RegistryStore::Change::Kind;
using Bytes = std::vector<std::uint8_t>;
using std::string_literals::operator""s;

constexpr char kHead[] = "Windows Registry Editor Version 5.00\n\n[HKEY_LOCAL_MACHINE\\A]\n";

/// The one value that a line under a key sets.
RegistryStore::Change OneChange(const std::string& line, const std::string& head = kHead) {
    const RegFileContents contents = ParseRegFile(head + line + "\n");
    EXPECT_EQ(contents.problem, "") << line;
    EXPECT_EQ(contents.changes.size(), 2U) << line;
    return contents.changes.size() == 2 ? contents.changes[1] : RegistryStore::Change();
}

RegistryValue OneValue(const std::string& line, const std::string& head = kHead) {
    const RegistryStore::Change change = OneChange(line, head);
    EXPECT_EQ(change.kind, Kind::kSetValue) << line;
    return change.value;
}

std::string Printed(const RegistryValue& value) {
    const std::string bytes = PrintRegFile({{"A", {{"v", value}}}}).bytes;
    const std::string text = Utf8FromUtf16Le(std::string_view(bytes).substr(2));
    const std::string head = "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_LOCAL_MACHINE\\A]\r\n\"v\"=";
    EXPECT_TRUE(text.starts_with(head)) << text;
    EXPECT_TRUE(text.ends_with("\r\n\r\n"));
    return text.substr(head.size(), text.size() - head.size() - 4);
}

// ---- parsing ----

TEST(ParseRegFile, MakesKeysInTheFilesOrder) {
    const RegFileContents contents = ParseRegFile(
        "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_LOCAL_MACHINE\\B\\[x] "
        "y]\r\n[-hklm\\A]\r\n[HKLM]\r\n");
    ASSERT_EQ(contents.problem, "");
    ASSERT_EQ(contents.changes.size(), 3U);
    EXPECT_EQ(contents.changes[0].kind, Kind::kCreateKey);
    EXPECT_EQ(contents.changes[0].subkey, "B\\[x] y");
    EXPECT_EQ(contents.changes[1].kind, Kind::kDeleteKey);
    EXPECT_EQ(contents.changes[1].subkey, "A");
    EXPECT_EQ(contents.changes[2].kind, Kind::kCreateKey);
    EXPECT_EQ(contents.changes[2].subkey, "");
}

TEST(ParseRegFile, ReadsQuotedTextWithItsEscapes) {
    const RegistryStore::Change change = OneChange(R"("a\"b\\c"="x\\y\"z")");
    EXPECT_EQ(change.name, R"(a"b\c)");
    EXPECT_EQ(change.subkey, "A");
    EXPECT_EQ(change.value, (RegistryValue{kRegSz, {'x', '\\', 'y', '"', 'z', 0}}));
}

TEST(ParseRegFile, ReadsTheValueWithoutName) {
    EXPECT_EQ(OneChange("@=\"x\"").name, "");
    EXPECT_EQ(OneChange("@=-").kind, Kind::kDeleteValue);
}

TEST(ParseRegFile, ReadsADeletedValue) {
    const RegistryStore::Change change = OneChange("\"v\"=-");
    EXPECT_EQ(change.kind, Kind::kDeleteValue);
    EXPECT_EQ(change.name, "v");
}

TEST(ParseRegFile, ReadsNumbersAndBytes) {
    const std::vector<std::tuple<std::string, std::uint32_t, Bytes>> rows = {
        {"dword:12345678", 4, {0x78, 0x56, 0x34, 0x12}},
        {"dword:ff", 4, {0xFF, 0, 0, 0}},
        {"DWORD:0000000A ; ten", 4, {10, 0, 0, 0}},
        {"hex:", 3, {}},
        {"hex:00,fF,1", 3, {0, 0xFF, 1}},
        {"hex: 0a , 0b", 3, {10, 11}},
        {"hex:01,\\\n  02,\\\n\t03", 3, {1, 2, 3}},
        {"hex:\\\n  02", 3, {2}},
        {"hex:01,02 ; two", 3, {1, 2}},
        {"hex(0):01", 0, {1}},
        {"hex(4):01,02", 4, {1, 2}},
        {"hex(b):01", 11, {1}},
        {"hex(80000001):01", 0x80000001U, {1}},
    };
    for (const auto& [text, type, data] : rows) {
        EXPECT_EQ(OneValue("\"v\"=" + text), (RegistryValue{type, data})) << text;
    }
}

TEST(ParseRegFile, ConvertsTextInHexOfVersion5) {
    EXPECT_EQ(OneValue("\"v\"=hex(7):61,00,00,00,ac,20,00,00,00,00"),
              (RegistryValue{7, {'a', 0, 0x80, 0, 0}}));
    EXPECT_EQ(OneValue("\"v\"=hex(2):25,00,00,00"), (RegistryValue{2, {'%', 0}}));
    EXPECT_EQ(OneValue("\"v\"=hex(1):61,00"), (RegistryValue{1, {'a'}}));
    EXPECT_EQ(OneValue("\"v\"=hex(1):16,04"), (RegistryValue{1, {'?'}}));
    EXPECT_EQ(OneValue("\"v\"=hex(1):00,d8,61,00"), (RegistryValue{1, {'?', 'a'}}));
}

TEST(ParseRegFile, LeavesTextInHexOfVersion4) {
    const std::string head = "REGEDIT4\n[HKEY_LOCAL_MACHINE\\A]\n";
    EXPECT_EQ(OneValue("\"v\"=hex(7):61,00,80,00,00", head), (RegistryValue{7, {'a', 0, 0x80, 0, 0}}));
    EXPECT_EQ(OneValue("\"v\"=hex(1):61", head), (RegistryValue{1, {'a'}}));
}

TEST(ParseRegFile, ReadsVersion4InTheCodePage) {
    const RegistryStore::Change change =
        OneChange("\"\x80\"=\"\xE4\x81\"", "REGEDIT4\r\n[HKEY_LOCAL_MACHINE\\A]\r\n");
    EXPECT_EQ(change.name, "\xE2\x82\xAC");
    EXPECT_EQ(change.value, (RegistryValue{kRegSz, {0xE4, 0x81, 0}}));
}

TEST(ParseRegFile, ReadsVersion5InEveryEncoding) {
    const std::string utf8 = kHead + "\"\xE2\x82\xAC\"=\"\xC3\xA4\"\n"s;
    for (const std::string& bytes : {utf8, "\xEF\xBB\xBF" + utf8, "\xFF\xFE" + Utf16LeFromUtf8(utf8),
                                     Utf16LeFromUtf8(utf8), kHead + "\"\x80\"=\"\xE4\"\n"s}) {
        const RegFileContents contents = ParseRegFile(bytes);
        ASSERT_EQ(contents.problem, "");
        ASSERT_EQ(contents.changes.size(), 2U);
        EXPECT_EQ(contents.changes[1].name, "\xE2\x82\xAC");
        EXPECT_EQ(contents.changes[1].value, (RegistryValue{kRegSz, {0xE4, 0}}));
    }
}

TEST(ParseRegFile, SkipsCommentsAndBlankLines) {
    EXPECT_EQ(OneValue("\n ; note\n;[HKLM\\no]\n\t\n  \"v\" = \"x\" ; behind\n"),
              (RegistryValue{kRegSz, {'x', 0}}));
}

TEST(ParseRegFile, AcceptsALastLineWithoutLineBreakWhenItShowsItsEnd) {
    EXPECT_EQ(ParseRegFile(kHead + "\"v\"=\"x\""s).problem, "");
    EXPECT_EQ(ParseRegFile("REGEDIT4\n[HKLM\\A]").problem, "");
}

struct Malformed {
    std::string file;
    std::size_t line;
    std::string problem;  ///< A part of it.
};

TEST(ParseRegFile, NamesTheLineOfWhatIsWrong) {
    const std::string head = kHead;
    const std::vector<Malformed> rows = {
        {"", 1, "empty"},
        {"\xFF\xFE", 1, "empty"},
        {"\xFF\xFE\x57", 1, "cut off"},
        {"\xFF\xFEW\0\n\0x"s, 2, "cut off"},
        {"Windows Registry Editor Version 6.00\n", 1, "first line"},
        {"REGEDIT5\n", 1, "first line"},
        {"\n" + head, 1, "first line"},
        {"REGEDIT4\n[HKEY_LOCAL_MACHINE\\A\n", 2, "\"]\""},
        {"REGEDIT4\n[", 2, "\"]\""},
        {"REGEDIT4\n[]\n", 2, "does not start"},
        {"REGEDIT4\n[HKEY_CURRENT_USER\\A]\n", 2, "does not start"},
        {"REGEDIT4\n[HKEY_LOCAL_MACHINES\\A]\n", 2, "does not start"},
        {"REGEDIT4\n[-HKEY_LOCAL_MACHINE]\n", 2, "root"},
        {"REGEDIT4\n[-HKEY_LOCAL_MACHINE\\]\n", 2, "root"},
        {"REGEDIT4\n\"v\"=\"x\"\n", 2, "no key"},
        {"REGEDIT4\n[-HKLM\\A]\n\"v\"=\"x\"\n", 3, "no key"},
        {head + "v=1\n", 4, "neither a key"},
        {head + "\"v\n", 4, "not closed"},
        {head + "\"v\\", 4, "not closed"},
        {head + "\"v\"", 4, "no \"=\""},
        {head + "@", 4, "no \"=\""},
        {head + "\"v\"=", 4, "neither quoted"},
        {head + "\"v\"=\"x\n", 4, "not closed"},
        {head + "\"v\"=\"C:\\temp\"\n", 4, "\"\\\""},
        {head + "\"v\"=\"x\" y\n", 4, "more behind"},
        {head + "\"v\"=-x\n", 4, "more behind"},
        {head + "\"v\"=word:1\n", 4, "neither quoted"},
        {head + "\"v\"=dword:\n", 4, "hexadecimal digits"},
        {head + "\"v\"=dword:123456789\n", 4, "hexadecimal digits"},
        {head + "\"v\"=dword:0x12\n", 4, "hexadecimal digits"},
        {head + "\"v\"=dword:-1\n", 4, "hexadecimal digits"},
        {head + "\"v\"=dword:12", 4, "line break"},
        {head + "\"v\"=hex\n", 4, "neither quoted"},
        {head + "\"v\"=hex(:00\n", 4, "neither quoted"},
        {head + "\"v\"=hex():00\n", 4, "type"},
        {head + "\"v\"=hex(g):00\n", 4, "type"},
        {head + "\"v\"=hex(100000000):00\n", 4, "type"},
        {head + "\"v\"=hex:0g\n", 4, "hexadecimal bytes"},
        {head + "\"v\"=hex:000\n", 4, "hexadecimal bytes"},
        {head + "\"v\"=hex:00,,00\n", 4, "hexadecimal bytes"},
        {head + "\"v\"=hex:00 00\n", 4, "hexadecimal bytes"},
        {head + "\"v\"=hex:00,\n", 4, "comma"},
        {head + "\"v\"=hex:00\\\n 00\n", 4, "no comma"},
        {head + "\"v\"=hex:00,\\\n", 4, "cut off"},
        {head + "\"v\"=hex:00,\\\n  01,0z\n", 5, "hexadecimal bytes"},
        {head + "\"v\"=hex:00,\\\n  01", 5, "line break"},
        {head + "\"v\"=hex(1):00\n", 4, "odd"},
        {head + "\"v\"=hex(7):00,00,00\n", 4, "odd"},
        {head + "\0"s, 4, "neither a key"},
    };
    for (const Malformed& row : rows) {
        const RegFileContents contents = ParseRegFile(row.file);
        EXPECT_NE(contents.problem.find(row.problem), std::string::npos) << row.file << "\n"
                                                                         << contents.problem;
        EXPECT_EQ(contents.line, row.line) << row.file;
        EXPECT_TRUE(contents.changes.empty()) << row.file;
    }
}

// ---- printing ----

TEST(PrintRegFile, StartsWithTheMarkAndTheVersion) {
    const std::string bytes = PrintRegFile({}).bytes;
    EXPECT_EQ(bytes.substr(0, 6), "\xFF\xFEW\0i\0"s);
    EXPECT_EQ(Utf8FromUtf16Le(std::string_view(bytes).substr(2)),
              "Windows Registry Editor Version 5.00\r\n\r\n");
}

TEST(PrintRegFile, WritesWholeKeys) {
    const RegFileText text = PrintRegFile({{"", {}},
                                           {"A\\B",
                                            {{"", {kRegSz, {'x', 0}}},
                                             {"q\"\\", {kRegDword, {1, 2, 3, 0xFF}}},
                                             {"\xE2\x82\xAC", {kRegBinary, {}}}}}});
    EXPECT_EQ(text.changedNames, 0U);
    EXPECT_EQ(Utf8FromUtf16Le(std::string_view(text.bytes).substr(2)),
              "Windows Registry Editor Version 5.00\r\n"
              "\r\n"
              "[HKEY_LOCAL_MACHINE]\r\n"
              "\r\n"
              "[HKEY_LOCAL_MACHINE\\A\\B]\r\n"
              "@=\"x\"\r\n"
              "\"q\\\"\\\\\"=dword:ff030201\r\n"
              "\"\xE2\x82\xAC\"=hex:\r\n"
              "\r\n");
}

TEST(PrintRegFile, QuotesOnlyTextThatComesBackTheSame) {
    EXPECT_EQ(Printed({kRegSz, {'a', '"', '\\', 0}}), R"("a\"\\")");
    EXPECT_EQ(Printed({kRegSz, {0}}), "\"\"");
    EXPECT_EQ(Printed({kRegSz, {}}), "hex(1):");
    EXPECT_EQ(Printed({kRegSz, {'a'}}), "hex(1):61,00");
    EXPECT_EQ(Printed({kRegSz, {'a', 0, 0}}), "hex(1):61,00,00,00,00,00");
    EXPECT_EQ(Printed({kRegSz, {'a', '\n', 0}}), "hex(1):61,00,0a,00,00,00");
    EXPECT_EQ(Printed({kRegSz, {0x80, 0}}), "\"\xE2\x82\xAC\"");
}

TEST(PrintRegFile, WritesOtherTypesAsHex) {
    EXPECT_EQ(Printed({kRegMultiSz, {'a', 0, 0}}), "hex(7):61,00,00,00,00,00");
    EXPECT_EQ(Printed({2, {'a', 0}}), "hex(2):61,00,00,00");
    EXPECT_EQ(Printed({kRegDword, {1, 2}}), "hex(4):01,02");
    EXPECT_EQ(Printed({0, {}}), "hex(0):");
    EXPECT_EQ(Printed({0x1234ABCDU, {0xFF}}), "hex(1234abcd):ff");
}

TEST(PrintRegFile, BreaksLongLines) {
    EXPECT_EQ(Printed({kRegBinary, Bytes(50, 0)}),
              "hex:00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,\\\r\n"
              "  00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,\\\r\n"
              "  00,00");
}

TEST(PrintRegFile, CountsNamesThatTheFormatCannotHold) {
    const RegFileText text =
        PrintRegFile({{"A\nB", {{"c\rd", {kRegSz, {0}}}, {"\xFF", {kRegSz, {0}}}, {"e", {}}}}});
    EXPECT_EQ(text.changedNames, 3U);
    const RegFileContents contents = ParseRegFile(text.bytes);
    ASSERT_EQ(contents.problem, "");
    EXPECT_EQ(contents.changes[0].subkey,
              "A\xEF\xBF\xBD"
              "B");
}

TEST(PrintRegFile, ParsingGivesEveryValueBack) {
    Bytes all(256);
    for (std::size_t i = 0; i < all.size(); ++i) all[i] = static_cast<std::uint8_t>(i);
    std::vector<NamedValue> values;
    for (const std::uint32_t type : {0U, 1U, 2U, 3U, 4U, 5U, 7U, 11U, 0xFFFFFFFFU}) {
        for (const Bytes& data :
             {Bytes{}, Bytes{0}, Bytes{0, 0}, Bytes{'a'}, Bytes{'a', 0}, Bytes{'a', 0, 'b', 0, 0},
              Bytes{1, 2, 3, 4}, Bytes{'\r', '\n', 0}, Bytes{'"', '\\', 0}, Bytes{';', '=', 0},
              Bytes{0x80, 0x81, 0xFF, 0}, Bytes(5000, 0xC3), all}) {
            values.push_back({"n" + std::to_string(values.size()) + "\\\"=;", {type, data}});
        }
    }
    const RegFileContents contents = ParseRegFile(PrintRegFile({{"A", values}}).bytes);
    ASSERT_EQ(contents.problem, "");
    ASSERT_EQ(contents.changes.size(), values.size() + 1);
    for (std::size_t i = 0; i < values.size(); ++i) {
        EXPECT_EQ(contents.changes[i + 1].name, values[i].name);
        EXPECT_EQ(contents.changes[i + 1].value, values[i].value) << values[i].value.type << " " << i;
    }
}

TEST(Utf16, CarriesEveryPlane) {
    const std::string text = "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80\0"s;
    EXPECT_EQ(Utf16LeFromUtf8(text), "a\0\xE4\0\xAC\x20\x3D\xD8\x00\xDE\0\0"s);
    EXPECT_EQ(Utf8FromUtf16Le(Utf16LeFromUtf8(text)), text);
}

TEST(Utf16, ReplacesWhatIsInvalid) {
    EXPECT_EQ(Utf16LeFromUtf8("\xC0\x80"), "\xFD\xFF\xFD\xFF");
    EXPECT_EQ(Utf16LeFromUtf8("\xED\xA0\x80"), "\xFD\xFF\xFD\xFF\xFD\xFF");
    EXPECT_EQ(Utf8FromUtf16Le("\x00\xDC"s), "\xEF\xBF\xBD");
    EXPECT_EQ(Utf8FromUtf16Le("\x00\xD8\x00\xD8"s), "\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(StripRoot, TakesBothNamesInAnyCase) {
    EXPECT_EQ(StripRoot("hklm\\A\\B"), "A\\B");
    EXPECT_EQ(StripRoot("HKEY_Local_Machine"), "");
    EXPECT_EQ(StripRoot("HKLM\\"), "");
    EXPECT_EQ(StripRoot("HKCU\\A"), std::nullopt);
    EXPECT_EQ(StripRoot(""), std::nullopt);
}

}  // namespace
}  // namespace corvane
