#include <cerrno>
#include <string>

#include <gtest/gtest.h>
#include <sys/mount.h>

#include "platform/Files.h"
#include "tests/unit/FileSupport.h"
#include "tests/unit/SmallDisk.h"

namespace corvane {
namespace {

using test::ReadBytes;
using test::SmallDisk;
using test::TempFolder;
using test::WriteBytes;

TEST(ReplaceFileContentsOnSmallDisk, FullDiskLeavesTheOldFileAndNothingElse) {
    const SmallDisk disk;
    ASSERT_TRUE(disk.Mounted());
    const std::string old(30000, 'o');
    WriteBytes(disk.Folder() / "file", old);
    EXPECT_EQ(ReplaceFileContents(disk.Folder() / "file", std::string(60000, 'n')).value(), ENOSPC);
    EXPECT_EQ(ReadBytes(disk.Folder() / "file"), old);
    EXPECT_EQ(disk.Folder().Names(), std::set<std::string>{"file"});
}

TEST(ReplaceFileContentsOnSmallDisk, ReadOnlyDiskGivesErofs) {
    const SmallDisk disk;
    ASSERT_TRUE(disk.Mounted());
    WriteBytes(disk.Folder() / "file", "old");
    ASSERT_TRUE(disk.MakeReadOnly());
    EXPECT_EQ(ReplaceFileContents(disk.Folder() / "file", "new").value(), EROFS);
    EXPECT_EQ(ReplaceFileContents(disk.Folder() / "other", "new").value(), EROFS);
    EXPECT_EQ(ReadBytes(disk.Folder() / "file"), "old");
}

TEST(ReplaceFileContentsOnSmallDisk, FileThatIsAMountPointCannotBeReplaced) {
    const TempFolder folder;
    WriteBytes(folder / "file", "old");
    WriteBytes(folder / "mounted", "mounted");
    ASSERT_EQ(mount((folder / "mounted").c_str(), (folder / "file").c_str(), nullptr, MS_BIND, nullptr), 0);
    EXPECT_EQ(ReplaceFileContents(folder / "file", "new").value(), EBUSY);
    EXPECT_EQ(ReadBytes(folder / "file"), "mounted");
    EXPECT_EQ(folder.Names(), (std::set<std::string>{"file", "mounted"}));
    ASSERT_EQ(umount2((folder / "file").c_str(), MNT_DETACH), 0);
}

}  // namespace
}  // namespace corvane
