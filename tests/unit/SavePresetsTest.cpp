#include <cerrno>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/RunTimeError.h"
#include "presets/PresetsFile.h"
#include "tests/unit/FileSupport.h"
#include "tests/unit/PresetsSupport.h"

namespace corvane {
namespace {

using test::BoxSeat;
using test::DhcpPreset;
using test::FreshPresets;
using test::OfficePreset;
using test::ReadBytes;
using test::SaveFailureText;
using test::TempFolder;
using test::WriteBytes;
using List = std::vector<PresetRecord>;

class SavePresetsTest : public testing::Test {
 protected:
    /// Saves `list` and expects no box.
    void Save(const List& list) {
        Presets() = list;
        EXPECT_TRUE(SavePresets(folder_ / ""));
        EXPECT_TRUE(seat_.boxes.empty());
    }

    [[nodiscard]] std::string Path() const { return folder_ / "presets.npf"; }

    /// Expects one box, the report of a failed save.
    void ExpectBox(int number, const std::string& description, const std::string& path) const {
        ASSERT_EQ(seat_.boxes.size(), 1U);
        EXPECT_EQ(seat_.boxes[0].title, "Orvella Corvane");
        EXPECT_EQ(seat_.boxes[0].text, SaveFailureText(number, description, path));
        EXPECT_EQ(seat_.boxes[0].icon, BoxIcon::kCritical);
        EXPECT_EQ(seat_.boxes[0].buttons, BoxButtons::kOk);
    }

    FreshPresets fresh_;
    TempFolder folder_;
    BoxSeat seat_;
    ScopedSeat scope_{seat_};
};

TEST_F(SavePresetsTest, FileOfFourZeroBytesIsSavedAsACountOfOneAndFifteenBytes) {
    WriteBytes(Path(), std::string(4, '\0'));
    ReadPresets(folder_ / "");
    EXPECT_TRUE(SavePresets(folder_ / ""));
    EXPECT_EQ(ReadBytes(Path()), std::string("\1\0\0\0", 4) + std::string(15, '\0'));
}

TEST_F(SavePresetsTest, MissingFileIsMade) {
    Save({OfficePreset()});
    EXPECT_EQ(ReadBytes(Path()), BuildPresets({OfficePreset()}));
    EXPECT_EQ(folder_.Names(), std::set<std::string>{"presets.npf"});
}

TEST_F(SavePresetsTest, WhatWasSavedIsReadBack) {
    PresetRecord sizedToNothing;
    sizedToNothing.Gateways = std::vector<std::string>();
    const List list = {OfficePreset(), PresetRecord(), DhcpPreset(), sizedToNothing};
    Save(list);
    Presets() = List(1);
    ReadPresets(folder_ / "");
    EXPECT_EQ(Presets(), list);
}

TEST_F(SavePresetsTest, OldTailStaysAfterDeletingPresetsAndIsNotReadBack) {
    Save({OfficePreset(), DhcpPreset(), OfficePreset()});
    const std::string old = ReadBytes(Path());
    Save({DhcpPreset()});
    const std::string shorter = BuildPresets({DhcpPreset()});
    EXPECT_EQ(ReadBytes(Path()), shorter + old.substr(shorter.size()));
    ReadPresets(folder_ / "");
    EXPECT_EQ(Presets(), List{DhcpPreset()});
}

TEST_F(SavePresetsTest, LongerListLeavesNothingOfTheOldFile) {
    Save({DhcpPreset()});
    Save({OfficePreset(), OfficePreset()});
    EXPECT_EQ(ReadBytes(Path()), BuildPresets({OfficePreset(), OfficePreset()}));
}

TEST_F(SavePresetsTest, FileThatIsALinkStaysOne) {
    WriteBytes(folder_ / "elsewhere", std::string(4, '\0'));
    std::filesystem::create_symlink("elsewhere", Path());
    Save({OfficePreset()});
    EXPECT_TRUE(std::filesystem::is_symlink(Path()));
    EXPECT_EQ(ReadBytes(folder_ / "elsewhere"), BuildPresets({OfficePreset()}));
}

TEST_F(SavePresetsTest, LargestReadableListIsSavedAndAnyLargerOneIsRefused) {
    // 15 bytes of record, 10 of list and texts that fill the file to its last byte.
    PresetRecord record;
    record.IpAddresses = std::vector<std::string>(255, std::string(65535, 'x'));
    const std::size_t left = kLargestPresetsFile - BuildPresets({record}).size();
    record.IpAddresses.Items.emplace_back(left - 2, 'y');
    Save({record});
    EXPECT_EQ(std::filesystem::file_size(Path()), kLargestPresetsFile);
    ReadPresets(folder_ / "");
    EXPECT_EQ(Presets(), List{record});

    Presets()[0].Name = "x";
    const List larger = Presets();
    EXPECT_FALSE(SavePresets(folder_ / ""));
    ExpectBox(EFBIG, "File too large", Path());
    EXPECT_EQ(Presets(), larger);
    EXPECT_EQ(ReadBytes(Path()), BuildPresets({record}));
}

TEST_F(SavePresetsTest, TailOfATenGigabyteFileIsKeptUpToTheLargestFile) {
    WriteBytes(Path(), std::string(4, '\0'));
    std::filesystem::resize_file(Path(), 10'000'000'000U);
    Save({OfficePreset()});
    EXPECT_EQ(std::filesystem::file_size(Path()), kLargestPresetsFile);
    ReadPresets(folder_ / "");
    EXPECT_EQ(Presets(), List{OfficePreset()});
}

TEST_F(SavePresetsTest, MissingFolderIsReportedWithNumberTextAndPath) {
    Presets() = {OfficePreset()};
    EXPECT_FALSE(SavePresets(folder_ / "none/"));
    ExpectBox(2, "No such file or directory", folder_ / "none/presets.npf");
    EXPECT_EQ(Presets(), List{OfficePreset()});
}

TEST_F(SavePresetsTest, FolderInTheFilesPlaceIsReported) {
    std::filesystem::create_directory(Path());
    EXPECT_FALSE(SavePresets(folder_ / ""));
    ExpectBox(21, "Is a directory", Path());
}

TEST_F(SavePresetsTest, ReadOnlyFolderIsReportedAndTheFileStays) {
    Save({DhcpPreset()});
    std::filesystem::permissions(Path(), std::filesystem::perms(0666));
    std::filesystem::permissions(folder_.Path(), std::filesystem::perms(0555));
    const int code = test::WithoutPrivileges([&] {
        Presets() = {OfficePreset()};
        if (SavePresets(folder_ / "") || Presets() != List{OfficePreset()}) return 1;
        ExpectBox(13, "Permission denied", Path());
        return HasFailure() ? 2 : 0;
    });
    EXPECT_EQ(code, 0);
    EXPECT_EQ(ReadBytes(Path()), BuildPresets({DhcpPreset()}));
}

TEST_F(SavePresetsTest, KilledAtAnyMomentLeavesTheOldOrTheNewListWhole) {
    std::mt19937 random(test::TestSeed());
    const List small = {DhcpPreset()};
    const List large(3000, OfficePreset());
    Save(small);
    for (int round = 0; round < 40; ++round) {
        test::KillWhileRepeating(random, [&](int run) {
            Presets() = run % 2 == 0 ? large : small;
            SavePresets(folder_ / "");
        });
        ReadPresets(folder_ / "");
        ASSERT_TRUE(Presets() == small || Presets() == large) << "round " << round;
        const std::size_t size = std::filesystem::file_size(Path());
        ASSERT_EQ(size, BuildPresets(large).size())
            << "the tail stays, so the size is always that of the large list";
    }
    Save(small);
    EXPECT_EQ(folder_.Names(), std::set<std::string>{"presets.npf"});
}

}  // namespace
}  // namespace corvane
