#include <cerrno>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "presets/PresetsFile.h"
#include "tests/unit/SavePresetsSupport.h"

namespace corvane {
namespace {

using test::DhcpPreset;
using test::OfficePreset;
using test::ReadBytes;
using test::SavePresetsTest;
using test::WriteBytes;
using List = std::vector<PresetRecord>;

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

}  // namespace
}  // namespace corvane
