#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "presets/PresetsFile.h"
#include "tests/unit/FileSupport.h"
#include "tests/unit/PresetsSupport.h"
#include "tests/unit/SmallDisk.h"

namespace corvane {
namespace {

using test::ReadBytes;
using List = std::vector<PresetRecord>;

TEST(SavePresetsOnSmallDisk, FullDiskIsReportedAndTheOldFileStays) {
    const test::FreshPresets fresh;
    const test::SmallDisk disk;
    ASSERT_TRUE(disk.Mounted());
    test::BoxSeat seat;
    const ScopedSeat scope(seat);
    Presets() = {test::OfficePreset()};
    ASSERT_TRUE(SavePresets(disk.Folder() / ""));
    const List large(1000, test::OfficePreset());
    Presets() = large;
    EXPECT_FALSE(SavePresets(disk.Folder() / ""));
    ASSERT_EQ(seat.boxes.size(), 1U);
    EXPECT_EQ(seat.boxes[0].text,
              test::SaveFailureText(28, "No space left on device", disk.Folder() / "presets.npf"));
    EXPECT_EQ(Presets(), large);
    EXPECT_EQ(ReadBytes(disk.Folder() / "presets.npf"), BuildPresets({test::OfficePreset()}));
    EXPECT_EQ(disk.Folder().Names(), std::set<std::string>{"presets.npf"});
}

TEST(SavePresetsOnSmallDisk, ReadOnlyDiskIsReported) {
    const test::FreshPresets fresh;
    const test::SmallDisk disk;
    ASSERT_TRUE(disk.Mounted());
    test::BoxSeat seat;
    const ScopedSeat scope(seat);
    ASSERT_TRUE(SavePresets(disk.Folder() / ""));
    ASSERT_TRUE(disk.MakeReadOnly());
    Presets() = {test::OfficePreset()};
    EXPECT_FALSE(SavePresets(disk.Folder() / ""));
    ASSERT_EQ(seat.boxes.size(), 1U);
    EXPECT_EQ(seat.boxes[0].text,
              test::SaveFailureText(30, "Read-only file system", disk.Folder() / "presets.npf"));
    EXPECT_EQ(ReadBytes(disk.Folder() / "presets.npf"), BuildPresets(List(1)));
}

}  // namespace
}  // namespace corvane
