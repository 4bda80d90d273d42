#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/RunTimeError.h"
#include "support/Paths.h"
#include "tests/unit/TempFolder.h"
#include "vendors/VendorList.h"

namespace corvane {
namespace {

using test::TempFolder;
using test::WriteBytes;
using testing::HasSubstr;

std::string Little(std::size_t value, int size) {
    std::string bytes;
    for (int i = 0; i < size; ++i) bytes += static_cast<char>((value >> (8 * i)) & 0xFF);
    return bytes;
}

/// A record of a vendor file; the texts are in the code page.
std::string RecordBytes(const std::string& prefix, const std::string& name, const std::string& address) {
    return prefix + Little(name.size(), 2) + name + Little(address.size(), 2) + address;
}

std::string FileBytes(const std::vector<std::string>& records) {
    std::string bytes = Little(records.size(), 4);
    for (const std::string& record : records) bytes += record;
    return bytes;
}

VendorTable TableOf(const std::vector<std::string>& records) {
    return VendorTable::Parse(FileBytes(records), "list");
}

struct Failure {
    int number = 0;  ///< 0 when nothing was thrown.
    std::string words;
};

Failure FailureOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const RunTimeError& error) {
        return {error.Number(), error.what()};
    }
    return {};
}

Failure LoadFailure(const TempFolder& folder) {
    return FailureOf([&] { LoadVendorList(folder / ""); });
}

Failure ParseFailure(const std::string& bytes) {
    return FailureOf([&] { VendorTable::Parse(bytes, "list"); });
}

TEST(LoadVendorList, RecordsAreInTheOrderOfTheFile) {
    const TempFolder folder;
    WriteBytes(folder / "VendorNumbers.log",
               FileBytes({RecordBytes("000C29", "VMware, Inc.", "Palo Alto"),
                          RecordBytes("00000C", "Cisco", "San Jose"), RecordBytes("FFFFFE", "", "")}));
    const VendorTable table = LoadVendorList(folder / "");
    ASSERT_EQ(table.Size(), 3U);
    EXPECT_EQ(table.Record(0), (VendorRecord{"000C29", "VMware, Inc.", "Palo Alto"}));
    EXPECT_EQ(table.Record(1), (VendorRecord{"00000C", "Cisco", "San Jose"}));
    EXPECT_EQ(table.Record(2), (VendorRecord{"FFFFFE", "", ""}));
    EXPECT_EQ(table.Prefix(1), "00000C");
    EXPECT_EQ(table.Name(1), "Cisco");
    EXPECT_EQ(table.Address(1), "San Jose");
}

TEST(LoadVendorList, MissingFileIsError53WithFileReasonAndRemedy) {
    const TempFolder folder;
    const Failure failure = LoadFailure(folder);
    EXPECT_EQ(failure.number, 53);
    EXPECT_THAT(failure.words, HasSubstr(folder / "VendorNumbers.log"));
    EXPECT_THAT(failure.words, HasSubstr("No such file"));
    EXPECT_THAT(failure.words, HasSubstr("Put back the file"));
}

TEST(LoadVendorList, MissingFolderIsError53) {
    EXPECT_EQ(FailureOf([] { LoadVendorList("/nonexistent-folder/"); }).number, 53);
}

TEST(LoadVendorList, FolderInTheFilesPlaceIsError75) {
    const TempFolder folder;
    std::filesystem::create_directory(folder / "VendorNumbers.log");
    const Failure failure = LoadFailure(folder);
    EXPECT_EQ(failure.number, 75);
    EXPECT_THAT(failure.words, HasSubstr("directory"));
}

TEST(LoadVendorList, FileOfTenGigabytesIsRefusedUnread) {
    const TempFolder folder;
    WriteBytes(folder / "VendorNumbers.log", FileBytes({RecordBytes("00000C", "Cisco", "")}));
    std::filesystem::resize_file(folder / "VendorNumbers.log", 10'000'000'000U);
    const Failure failure = LoadFailure(folder);
    EXPECT_EQ(failure.number, 7);
    EXPECT_THAT(failure.words, HasSubstr("too large"));
}

TEST(VendorTable, EmptyFileIsError62) { EXPECT_EQ(ParseFailure("").number, 62); }

TEST(VendorTable, FileShorterThanACountIsError62) {
    EXPECT_EQ(ParseFailure(std::string(3, '\1')).number, 62);
}

TEST(VendorTable, CountOfZeroIsError9) {
    const Failure failure = ParseFailure(std::string(100, '\0'));
    EXPECT_EQ(failure.number, 9);
    EXPECT_THAT(failure.words, HasSubstr("record count 0"));
}

TEST(VendorTable, NegativeCountIsError9) {
    EXPECT_EQ(ParseFailure("\xFF\xFF\xFF\xFF" + std::string(100, '\0')).number, 9);
    EXPECT_EQ(ParseFailure(std::string("\0\0\0\x80", 4) + std::string(100, '\0')).number, 9);
}

TEST(VendorTable, FileCutAtAnyByteIsError62) {
    const std::string whole =
        FileBytes({RecordBytes("00000C", "Cisco", "San Jose"), RecordBytes("000C29", "VM", "")});
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const Failure failure = ParseFailure(whole.substr(0, length));
        ASSERT_EQ(failure.number, 62) << length << " bytes";
        ASSERT_THAT(failure.words, HasSubstr("shorter than its record count says"));
    }
    EXPECT_EQ(VendorTable::Parse(whole, "list").Size(), 2U);
}

TEST(VendorTable, BytesAfterTheLastRecordAreNotLookedAt) {
    const VendorTable table =
        VendorTable::Parse(FileBytes({RecordBytes("00000C", "Cisco", "x")}) + "\xFF\xFF", "list");
    EXPECT_EQ(table.Size(), 1U);
    EXPECT_EQ(table.Address(0), "x");
}

TEST(VendorTable, FirstRecordWithoutNameAndAddressIsARecordLikeOthers) {
    const VendorTable table =
        TableOf({RecordBytes("00000C", "", ""), RecordBytes("000C29", "VMware", "Palo Alto")});
    ASSERT_EQ(table.Size(), 2U);
    EXPECT_EQ(VendorText(table, 0), "   Address: ");
    EXPECT_EQ(VendorText(table, 1), "VMware   Address: Palo Alto");
}

TEST(VendorTable, NameOf300BytesIsWhole) {
    const std::string name = std::string(299, 'n') + "!";
    const VendorTable table =
        TableOf({RecordBytes("00000C", name, "after"), RecordBytes("000C29", "next", "")});
    EXPECT_EQ(table.Record(0), (VendorRecord{"00000C", name, "after"}));
    EXPECT_EQ(table.Name(1), "next");
}

TEST(VendorTable, LongestNameAndAddressAreWhole) {
    const std::string name = std::string(65534, 'n') + "!";
    const std::string address = std::string(65534, 'a') + "?";
    const VendorTable table =
        TableOf({RecordBytes("00000C", name, address), RecordBytes("000C29", "next", "")});
    EXPECT_EQ(table.Record(0), (VendorRecord{"00000C", name, address}));
    EXPECT_EQ(table.Name(1), "next");
}

TEST(VendorTable, TextsComeFromTheCodePage) {
    const VendorTable table = TableOf({RecordBytes("00000C", "M\xFCller \x80", "\x81\x8D\x8F\x90\x9D")});
    EXPECT_EQ(table.Name(0), "M\u00FCller \u20AC");
    EXPECT_EQ(table.Address(0), "\xC2\x81\xC2\x8D\xC2\x8F\xC2\x90\xC2\x9D");
}

TEST(VendorTable, BytesOfTextsAreThoseOfTheFile) {
    const VendorTable table =
        TableOf({RecordBytes("00000C", "M\xFCller \x80", "\x81"), RecordBytes("000C29", "", "Ro\xDF")});
    EXPECT_EQ(table.NameBytes(0), "M\xFCller \x80");
    EXPECT_EQ(table.AddressBytes(0), "\x81");
    EXPECT_EQ(table.NameBytes(1), "");
    EXPECT_EQ(table.AddressBytes(1), "Ro\xDF");
}

TEST(VendorTable, SubscriptOutOfRangeIsError9) {
    const VendorTable table = TableOf({RecordBytes("00000C", "Cisco", "")});
    EXPECT_EQ(FailureOf([&] { (void)table.Prefix(1); }).number, 9);
    EXPECT_EQ(FailureOf([&] { (void)table.Name(1); }).number, 9);
    EXPECT_EQ(FailureOf([&] { (void)table.Address(SIZE_MAX); }).number, 9);
    EXPECT_EQ(FailureOf([&] { (void)table.NameBytes(1); }).number, 9);
    EXPECT_EQ(FailureOf([&] { (void)table.AddressBytes(1); }).number, 9);
    EXPECT_THAT(FailureOf([&] { (void)table.Record(7); }).words, HasSubstr("no record 7"));
}

TEST(VendorTable, CopyAndMoveKeepTheRecords) {
    VendorTable table = TableOf({RecordBytes("00000C", "C", "")});
    const VendorTable copy = table;
    const VendorTable moved = std::move(table);
    for (const VendorTable* each : {&copy, &moved}) {
        EXPECT_EQ(each->FindVendor("00000C"), 0U);
        EXPECT_EQ(each->Name(0), "C");
    }
}

TEST(FindVendor, FindsEachRecordOfAnUnsortedFile) {
    const VendorTable table = TableOf({RecordBytes("FFFFFF", "a", ""), RecordBytes("000000", "b", ""),
                                       RecordBytes("7F0001", "c", ""), RecordBytes("000001", "d", "")});
    EXPECT_EQ(table.FindVendor("FFFFFF"), 0U);
    EXPECT_EQ(table.FindVendor("000000"), 1U);
    EXPECT_EQ(table.FindVendor("7F0001"), 2U);
    EXPECT_EQ(table.FindVendor("000001"), 3U);
}

TEST(FindVendor, FirstOfEqualPrefixesWins) {
    const VendorTable table = TableOf({RecordBytes("AAAAAA", "x", ""), RecordBytes("080030", "first", ""),
                                       RecordBytes("080030", "second", ""), RecordBytes("AAAAAA", "y", "")});
    EXPECT_EQ(table.FindVendor("080030"), 1U);
    EXPECT_EQ(table.FindVendor("AAAAAA"), 0U);
    EXPECT_EQ(table.Name(2), "second");
}

TEST(FindVendor, CaseCounts) {
    const VendorTable table =
        TableOf({RecordBytes("00aabb", "lower", ""), RecordBytes("00AABB", "upper", "")});
    EXPECT_EQ(table.FindVendor("00aabb"), 0U);
    EXPECT_EQ(table.FindVendor("00AABB"), 1U);
    EXPECT_EQ(table.FindVendor("00AAbb"), std::nullopt);
}

TEST(FindVendor, UnknownPrefixAndOtherLengthsFindNothing) {
    const VendorTable table = TableOf({RecordBytes("00000C", "Cisco", "")});
    for (const std::string prefix : {"00000D", "", "0", "00000", "00000C0", "00000C29AABB", "C00000"}) {
        EXPECT_EQ(table.FindVendor(prefix), std::nullopt) << prefix;
    }
}

TEST(FindVendor, AgreesWithALinearScanOnTheWholeRegistry) {
    const VendorTable table = LoadVendorList(CORVANE_BIN_DIR "/");
    std::map<std::string, std::size_t> first;
    for (std::size_t i = 0; i < table.Size(); ++i) first.emplace(table.Prefix(i), i);
    for (const auto& [prefix, index] : first) ASSERT_EQ(table.FindVendor(prefix), index) << prefix;
    std::size_t absent = 0;
    for (std::size_t value = 0; value < 0x1000000; value += 101) {
        char prefix[17];
        std::snprintf(prefix, sizeof prefix, "%06zX", value);
        if (first.count(prefix) != 0) continue;
        ++absent;
        ASSERT_EQ(table.FindVendor(prefix), std::nullopt) << prefix;
    }
    EXPECT_GT(absent, 100000U);
}

TEST(FindVendor, WithoutATableWorksOnTheProcessWideList) {
    Vendors() = TableOf({RecordBytes("000000", "zero", ""), RecordBytes("000C29", "VMware", "")});
    EXPECT_EQ(FindVendor("000C29"), 1U);
    EXPECT_EQ(FindVendor("000C2A"), std::nullopt);
    Vendors() = VendorTable::Empty();
    EXPECT_EQ(FindVendor("000C29"), std::nullopt);
}

TEST(Vendors, StartAsASingleEmptyEntry) {
    EXPECT_TRUE(Vendors().IsPlaceholder());
    EXPECT_EQ(Vendors().Size(), 1U);
    EXPECT_EQ(Vendors().Name(0), "");
    EXPECT_EQ(Vendors().Address(0), "");
    EXPECT_EQ(FindVendor("000000"), std::nullopt);
    EXPECT_EQ(FindVendor(""), std::nullopt);
}

TEST(Vendors, TableWithVendorsIsNoPlaceholder) {
    EXPECT_FALSE(TableOf({RecordBytes("00000C", "", "")}).IsPlaceholder());
    EXPECT_FALSE(TableOf({RecordBytes("00000C", "a", ""), RecordBytes("00000D", "b", "")}).IsPlaceholder());
}

TEST(VendorText, IsTheNameAloneInTheShortList) {
    const VendorTable table =
        TableOf({RecordBytes("00000C", "Cisco", "San Jose"), RecordBytes("00000D", "", "x")});
    EXPECT_FALSE(ShortVendorList);
    EXPECT_EQ(VendorText(table, 0), "Cisco   Address: San Jose");
    ShortVendorList = true;
    const std::string name = VendorText(table, 0);
    const std::string none = VendorText(table, 1);
    ShortVendorList = false;
    EXPECT_EQ(name, "Cisco");
    EXPECT_EQ(none, "");
}

}  // namespace
}  // namespace corvane
