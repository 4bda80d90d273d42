#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/RunTimeError.h"
#include "presets/PresetsFile.h"
#include "support/Paths.h"
#include "tests/unit/PresetsSupport.h"
#include "tests/unit/TempFolder.h"

namespace corvane {
namespace {

using test::DhcpPreset;
using test::FreshPresets;
using test::OfficePreset;
using test::ReadBytes;
using test::TempFolder;
using test::WriteBytes;
using testing::HasSubstr;
using List = std::vector<PresetRecord>;

std::string Golden(const std::string& name) {
    return ReadBytes(CORVANE_SOURCE_DIR "/tests/data/presets/" + name);
}

List Parse(const std::string& bytes) { return ParsePresets(bytes, false, "presets"); }

std::string Count(std::uint32_t count) {
    std::string bytes;
    for (int i = 0; i < 4; ++i) bytes += static_cast<char>((count >> (8 * i)) & 0xFFU);
    return bytes;
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

/// The records of several.npf.
List SeveralPresets() {
    PresetRecord random;
    random.Name = "Random";
    random.Flags = kPresetMac | kPresetRandomMac;
    random.IpAddresses = std::vector<std::string>();
    random.SubnetMasks = std::vector<std::string>();
    random.GatewayMetrics = std::vector<std::string>();
    PresetRecord all;
    all.Name = "All bits";
    all.Flags = 63;
    all.Mac = "000C2912ABFF";
    all.IpAddresses = {""};
    all.SubnetMasks = {"", ""};
    all.Gateways = std::vector<std::string>();
    all.DnsServers = {std::string(300, 'x')};
    return {OfficePreset(), PresetRecord(), DhcpPreset(), random, all};
}

TEST(PresetList, TellsNeverSizedFromSizedToNothing) {
    EXPECT_FALSE(PresetList().Allocated);
    EXPECT_TRUE(PresetList(std::vector<std::string>()).Allocated);
    EXPECT_NE(PresetList(), PresetList(std::vector<std::string>()));
    const PresetList two = {"a", "b"};
    EXPECT_TRUE(two.Allocated);
    EXPECT_EQ(two.Items, (std::vector<std::string>{"a", "b"}));
}

TEST(PresetsFormat, OneEmptyPresetTakesFifteenBytes) {
    EXPECT_EQ(BuildPresets(List(1)), std::string("\1\0\0\0", 4) + std::string(15, '\0'));
    EXPECT_EQ(BuildPresets(List(1)), Golden("empty-slot.npf"));
    EXPECT_EQ(Parse(Golden("empty-slot.npf")), List(1));
}

TEST(PresetsFormat, PresetWithAddressesEqualsTheIndependentWriters) {
    EXPECT_EQ(BuildPresets({OfficePreset()}), Golden("office.npf"));
    EXPECT_EQ(Parse(Golden("office.npf")), List{OfficePreset()});
}

TEST(PresetsFormat, UnusedSlotsUnallocatedAndEmptyListsEqualTheIndependentWriters) {
    EXPECT_EQ(BuildPresets(SeveralPresets()), Golden("several.npf"));
    EXPECT_EQ(Parse(Golden("several.npf")), SeveralPresets());
}

TEST(PresetsFormat, TextOutsideTheCodePageIsStoredAsQuestionMarks) {
    List list(2);
    list[0].Name = "B\u00FCro \u20AC \u201CZ\u00FCrich\u201D \xC2\x81\xC2\x8D\xC2\x8F\xC2\x90\xC2\x9D";
    list[0].IpAddresses = {"\u00FF"};
    list[1].Name = "\u0141\u00F3d\u017A \u6DF1\u5733 \U0001F600";
    EXPECT_EQ(BuildPresets(list), Golden("letters.npf"));
    list[1].Name = "?\u00F3d? ?? ?";
    EXPECT_EQ(Parse(Golden("letters.npf")), list);
}

TEST(PresetsFormat, TextsAreCutTo65535BytesOfTheCodePage) {
    List list = {PresetRecord(), DhcpPreset()};
    list[0].Name = std::string(65535, 'n');
    list[0].Flags = kPresetMac;
    list[0].Mac = std::string(70000, 'm');
    std::string euros;
    for (int i = 0; i < 70000; ++i) euros += "\u20AC";
    list[0].IpAddresses = {euros};
    EXPECT_EQ(BuildPresets(list), Golden("long.npf"));
    list[0].Mac.resize(65535);
    euros.resize(std::size_t{3} * 65535);
    list[0].IpAddresses = {euros};
    EXPECT_EQ(Parse(Golden("long.npf")), list);
}

TEST(PresetsFormat, LowerBoundIsIgnored) {
    std::string bytes = Golden("office.npf");
    const std::size_t list = 4 + (2 + 6) + 1 + (2 + 17);
    ASSERT_EQ(bytes.substr(list, 10), std::string("\1\0\2\0\0\0\0\0\0\0", 10));
    bytes.replace(list + 6, 4, "\xFF\xFF\xFF\xFF");
    EXPECT_EQ(Parse(bytes), List{OfficePreset()});
}

TEST(ParsePresets, FourZeroBytesAreOneUnusedSlot) { EXPECT_EQ(Parse(std::string(4, '\0')), List(1)); }

TEST(ParsePresets, FileTooShortForACountIsOneUnusedSlot) {
    EXPECT_EQ(Parse(""), List(1));
    EXPECT_EQ(Parse("\5\5\5"), List(1));
}

TEST(ParsePresets, CountOfZeroReadsOneRecordWhenThereIsOne) {
    const std::string bytes = Golden("office.npf");
    EXPECT_EQ(Parse(Count(0) + bytes.substr(4)), List{OfficePreset()});
}

TEST(ParsePresets, RecordsThatTheFileDoesNotHoldAreUnusedSlots) {
    List expected = SeveralPresets();
    expected.resize(9);
    EXPECT_EQ(Parse(Count(9) + Golden("several.npf").substr(4)), expected);
}

TEST(ParsePresets, OnlyAsManyRecordsAsTheCountSaysAreRead) {
    EXPECT_EQ(Parse(Count(1) + Golden("several.npf").substr(4)), List{OfficePreset()});
}

TEST(ParsePresets, RecordCutAtAnyByteIsAnUnusedSlotAndThoseBeforeItAreWhole) {
    const std::string whole = BuildPresets({DhcpPreset(), OfficePreset()});
    const std::size_t second = BuildPresets({DhcpPreset()}).size();
    for (std::size_t length = second; length < whole.size(); ++length) {
        ASSERT_EQ(Parse(whole.substr(0, length)), (List{DhcpPreset(), PresetRecord()})) << length << " bytes";
    }
    for (std::size_t length = 4; length < second; ++length) {
        ASSERT_EQ(Parse(whole.substr(0, length)), List(2)) << length << " bytes";
    }
}

TEST(ParsePresets, NegativeCountIsError9) {
    for (const std::uint32_t count : {0xFFFFFFFFU, 0x80000000U}) {
        const Failure failure = FailureOf([&] { Parse(Count(count) + std::string(100, '\0')); });
        EXPECT_EQ(failure.number, 9);
        EXPECT_THAT(failure.words, HasSubstr("record count -"));
    }
}

TEST(ParsePresets, ListOfSeveralDimensionsIsError321) {
    for (const char dimensions : {'\2', '\3', '\xFF'}) {
        const std::string record = std::string(5, '\0') + dimensions + std::string(100, '\0');
        const Failure failure = FailureOf([&] { Parse(Count(1) + record); });
        EXPECT_EQ(failure.number, 321);
        EXPECT_THAT(failure.words, HasSubstr("dimensions"));
    }
}

TEST(ParsePresets, CountOfTwoBillionKeepsABoundedList) {
    List expected = SeveralPresets();
    expected.resize(kMostMissingPresets);
    EXPECT_EQ(Parse(Count(2'000'000'000U) + Golden("several.npf").substr(4)), expected);
}

TEST(ParsePresets, RecordsThatTheFileReallyHoldsAreAllKept) {
    const List many(kMostMissingPresets + 100);
    EXPECT_EQ(Parse(BuildPresets(many)).size(), many.size());
    const std::string more = Count(2'000'000'000U) + BuildPresets(many).substr(4);
    EXPECT_EQ(Parse(more).size(), many.size());
}

TEST(ParsePresets, ListOfTwoBillionTextsIsARecordThatIsNotWhole) {
    const std::string record =
        std::string(5, '\0') + std::string("\1\0", 2) + Count(2'000'000'000U) + Count(0);
    EXPECT_EQ(Parse(Count(2) + record + std::string(1000, '\0')), List(2));
}

TEST(ParsePresets, TextLongerThanTheFileIsARecordThatIsNotWhole) {
    EXPECT_EQ(Parse(Count(1) + "\xFF\xFF" + std::string(1000, 'x')), List(1));
}

TEST(Presets, StartAsOneUnusedSlot) { EXPECT_EQ(Presets(), List(1)); }

TEST(ReadPresets, ReplacesTheList) {
    const FreshPresets fresh;
    const TempFolder folder;
    Presets() = List(7);
    WriteBytes(folder / "presets.npf", Golden("several.npf"));
    ReadPresets(folder / "");
    EXPECT_EQ(Presets(), SeveralPresets());
}

TEST(ReadPresets, FileThatTheProgramComesWithIsOneUnusedSlot) {
    const FreshPresets fresh;
    Presets() = List(7);
    ReadPresets(CORVANE_SOURCE_DIR "/data/");
    EXPECT_EQ(Presets(), List(1));
}

TEST(ReadPresets, MissingFileIsError53WithFileReasonAndRemedyAndLeavesTheList) {
    const FreshPresets fresh;
    const TempFolder folder;
    Presets() = {OfficePreset()};
    const Failure failure = FailureOf([&] { ReadPresets(folder / ""); });
    EXPECT_EQ(failure.number, 53);
    EXPECT_THAT(failure.words, HasSubstr(folder / "presets.npf"));
    EXPECT_THAT(failure.words, HasSubstr("No such file"));
    EXPECT_THAT(failure.words, HasSubstr("four zero bytes"));
    EXPECT_EQ(Presets(), List{OfficePreset()});
}

TEST(ReadPresets, FolderInTheFilesPlaceIsError75) {
    const TempFolder folder;
    std::filesystem::create_directory(folder / "presets.npf");
    EXPECT_EQ(FailureOf([&] { ReadPresets(folder / ""); }).number, 75);
}

TEST(ReadPresets, DamagedFileLeavesTheList) {
    const FreshPresets fresh;
    const TempFolder folder;
    Presets() = {OfficePreset()};
    WriteBytes(folder / "presets.npf", Count(0xFFFFFFFFU));
    EXPECT_EQ(FailureOf([&] { ReadPresets(folder / ""); }).number, 9);
    EXPECT_EQ(Presets(), List{OfficePreset()});
}

TEST(ReadPresets, FewPresetsAtTheBeginningOfATenGigabyteFileAreRead) {
    const FreshPresets fresh;
    const TempFolder folder;
    WriteBytes(folder / "presets.npf", Golden("several.npf"));
    std::filesystem::resize_file(folder / "presets.npf", 10'000'000'000U);
    ReadPresets(folder / "");
    EXPECT_EQ(Presets(), SeveralPresets());
}

TEST(ReadPresets, TenGigabytesOfPresetsAreRefused) {
    const FreshPresets fresh;
    const TempFolder folder;
    Presets() = {OfficePreset()};
    WriteBytes(folder / "presets.npf", Count(2'000'000'000U));
    std::filesystem::resize_file(folder / "presets.npf", 10'000'000'000U);
    const Failure failure = FailureOf([&] { ReadPresets(folder / ""); });
    EXPECT_EQ(failure.number, 7);
    EXPECT_THAT(failure.words, HasSubstr("16777216 bytes"));
    EXPECT_EQ(Presets(), List{OfficePreset()});
}

}  // namespace
}  // namespace corvane
