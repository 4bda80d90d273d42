#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "base/RunTimeError.h"
#include "presets/PresetsFile.h"
#include "tests/unit/FileSupport.h"
#include "tests/unit/SavePresetsSupport.h"

/// The presets file where the system's rights, links and kills come in.
namespace corvane {
namespace {

using test::DhcpPreset;
using test::OfficePreset;
using test::ReadBytes;
using test::SavePresetsTest;
using test::TempFolder;
using test::WriteBytes;
using List = std::vector<PresetRecord>;

/// The number of the failure to read the presets file of a folder; 0 when there is none.
int ReadingFailure(const TempFolder& folder) {
    try {
        ReadPresets(folder / "");
    } catch (const RunTimeError& error) {
        return error.Number();
    }
    return 0;
}

TEST(ReadPresets, UnreadableFileIsError70) {
    const TempFolder folder;
    WriteBytes(folder / "presets.npf", std::string(4, '\0'));
    std::filesystem::permissions(folder / "presets.npf", std::filesystem::perms::none);
    EXPECT_EQ(test::WithoutPrivileges([&] { return ReadingFailure(folder); }), 70);
}

TEST(ReadPresets, PipeInTheFilesPlaceIsError75) {
    const TempFolder folder;
    ASSERT_EQ(mkfifo((folder / "presets.npf").c_str(), 0600), 0);
    EXPECT_EQ(ReadingFailure(folder), 75);
}

TEST_F(SavePresetsTest, FileThatIsALinkStaysOne) {
    WriteBytes(folder_ / "elsewhere", std::string(4, '\0'));
    std::filesystem::create_symlink("elsewhere", Path());
    Save({OfficePreset()});
    EXPECT_TRUE(std::filesystem::is_symlink(Path()));
    EXPECT_EQ(ReadBytes(folder_ / "elsewhere"), BuildPresets({OfficePreset()}));
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
