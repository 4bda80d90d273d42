#include <atomic>
#include <cerrno>
#include <filesystem>
#include <string>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/Files.h"
#include "tests/unit/FileSupport.h"

namespace corvane {
namespace {

using test::ReadBytes;
using test::TempFolder;
using test::WithoutPrivileges;
using test::WriteBytes;
using Names = std::set<std::string>;

struct stat StatusOf(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) throw std::runtime_error("no status of " + path);
    return status;
}

TEST(ReadFileContents, HandsBackEveryByte) {
    const TempFolder folder;
    std::string bytes;
    for (int i = 0; i < 100000; ++i) bytes += static_cast<char>(i * 7);
    WriteBytes(folder / "file", bytes);
    std::string contents = "what was there";
    EXPECT_EQ(ReadFileContents(folder / "file", contents).value(), 0);
    EXPECT_EQ(contents, bytes);
}

TEST(ReadFileContents, EmptyFileIsEmpty) {
    const TempFolder folder;
    WriteBytes(folder / "file", "");
    std::string contents = "what was there";
    EXPECT_EQ(ReadFileContents(folder / "file", contents).value(), 0);
    EXPECT_EQ(contents, "");
}

TEST(ReadFileContents, FileWhoseSizeTheKernelGivesAsZeroIsReadWhole) {
    std::string contents;
    ASSERT_EQ(StatusOf("/proc/self/status").st_size, 0);
    EXPECT_EQ(ReadFileContents("/proc/self/status", contents).value(), 0);
    EXPECT_NE(contents.find("Name:"), std::string::npos);
    EXPECT_EQ(contents.back(), '\n');
}

TEST(ReadFileContents, NoMoreIsReadThanAskedFor) {
    const TempFolder folder;
    WriteBytes(folder / "file", "abcdef");
    for (const auto& [atMost, expected] : {std::pair<std::uintmax_t, const char*>{0, ""},
                                           {1, "a"},
                                           {5, "abcde"},
                                           {6, "abcdef"},
                                           {7, "abcdef"}}) {
        std::string contents;
        EXPECT_EQ(ReadFileContents(folder / "file", contents, atMost).value(), 0);
        EXPECT_EQ(contents, expected);
    }
}

TEST(FileSize, IsThatOfTheFile) {
    const TempFolder folder;
    WriteBytes(folder / "file", "abcdef");
    std::uintmax_t size = 0;
    EXPECT_EQ(FileSize(folder / "file", size).value(), 0);
    EXPECT_EQ(size, 6U);
}

TEST(FileSize, StaysAsItWasWhereThereIsNoFile) {
    const TempFolder folder;
    std::uintmax_t size = 7;
    EXPECT_EQ(FileSize(folder / "file", size).value(), ENOENT);
    EXPECT_EQ(FileSize(folder.Path(), size).value(), EISDIR);
    EXPECT_EQ(size, 7U);
}

TEST(ReadFileContents, MissingFileGivesEnoentAndNoContents) {
    const TempFolder folder;
    std::string contents = "what was there";
    EXPECT_EQ(ReadFileContents(folder / "file", contents).value(), ENOENT);
    EXPECT_EQ(contents, "");
}

TEST(ReadFileContents, FolderIsRefused) {
    const TempFolder folder;
    std::string contents = "what was there";
    EXPECT_EQ(ReadFileContents(folder.Path(), contents).value(), EISDIR);
    EXPECT_EQ(contents, "");
}

TEST(ReadFileContents, PipeIsRefusedWithoutWaitingForItsOtherEnd) {
    const TempFolder folder;
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    std::string contents;
    EXPECT_EQ(ReadFileContents(folder / "pipe", contents).value(), EINVAL);
}

TEST(ReadFileContents, FileUnderALeaseIsReadWhenItsHolderGivesItBack) {
    const TempFolder folder;
    WriteBytes(folder / "file", "abc");
    const int holder = open((folder / "file").c_str(), O_RDWR | O_CLOEXEC);
    // The signal that asks for the lease waits until it is asked after.
    sigset_t asked;
    sigemptyset(&asked);
    sigaddset(&asked, SIGIO);
    ASSERT_EQ(pthread_sigmask(SIG_BLOCK, &asked, nullptr), 0);
    ASSERT_EQ(fcntl(holder, F_SETLEASE, F_WRLCK), 0);
    std::string contents;
    std::error_code code;
    std::thread reader([&] { code = ReadFileContents(folder / "file", contents); });
    int signalNumber = 0;
    EXPECT_EQ(sigwait(&asked, &signalNumber), 0);
    EXPECT_EQ(fcntl(holder, F_SETLEASE, F_UNLCK), 0);
    reader.join();
    close(holder);
    EXPECT_EQ(code.value(), 0);
    EXPECT_EQ(contents, "abc");
}

TEST(ReadFileContents, EndlessDeviceIsRefused) {
    std::string contents;
    EXPECT_EQ(ReadFileContents("/dev/zero", contents).value(), EINVAL);
    EXPECT_EQ(contents, "");
}

TEST(ReadFileContents, UnreadableFileGivesEacces) {
    const TempFolder folder;
    WriteBytes(folder / "file", "secret");
    std::filesystem::permissions(folder / "file", std::filesystem::perms::none);
    const int code = WithoutPrivileges([&] {
        std::string contents;
        const int number = ReadFileContents(folder / "file", contents).value();
        return contents.empty() ? number : 1;
    });
    EXPECT_EQ(code, EACCES);
}

TEST(ReplaceFileContents, MakesAMissingFileWithTheUsualMode) {
    const TempFolder folder;
    const mode_t former = umask(027);
    const std::error_code code = ReplaceFileContents(folder / "file", std::string("a\0b", 3));
    umask(former);
    EXPECT_EQ(code.value(), 0);
    EXPECT_EQ(ReadBytes(folder / "file"), std::string("a\0b", 3));
    EXPECT_EQ(StatusOf(folder / "file").st_mode & 07777U, 0640U);
    EXPECT_EQ(folder.Names(), Names{"file"});
}

TEST(ReplaceFileContents, NewContentsMayBeShorterAndMayBeEmpty) {
    const TempFolder folder;
    WriteBytes(folder / "file", std::string(100000, 'x'));
    EXPECT_EQ(ReplaceFileContents(folder / "file", "short").value(), 0);
    EXPECT_EQ(ReadBytes(folder / "file"), "short");
    EXPECT_EQ(ReplaceFileContents(folder / "file", "").value(), 0);
    EXPECT_EQ(ReadBytes(folder / "file"), "");
    EXPECT_EQ(folder.Names(), Names{"file"});
}

TEST(ReplaceFileContents, KeepsTheMode) {
    const TempFolder folder;
    WriteBytes(folder / "file", "old");
    ASSERT_EQ(chmod((folder / "file").c_str(), 04711), 0);
    EXPECT_EQ(ReplaceFileContents(folder / "file", "new").value(), 0);
    EXPECT_EQ(StatusOf(folder / "file").st_mode & 07777U, 04711U);
}

TEST(ReplaceFileContents, KeepsTheOwner) {
    ASSERT_EQ(geteuid(), 0U) << "only root can give a file away";
    const TempFolder folder;
    WriteBytes(folder / "file", "old");
    ASSERT_EQ(chown((folder / "file").c_str(), 1234, 5678), 0);
    EXPECT_EQ(ReplaceFileContents(folder / "file", "new").value(), 0);
    EXPECT_EQ(StatusOf(folder / "file").st_uid, 1234U);
    EXPECT_EQ(StatusOf(folder / "file").st_gid, 5678U);
}

TEST(ReplaceFileContents, RefusesWhenTheOwnerCannotBeKept) {
    ASSERT_EQ(geteuid(), 0U) << "only root can give a file away";
    const TempFolder folder;
    std::filesystem::permissions(folder.Path(), std::filesystem::perms(0777));
    WriteBytes(folder / "file", "old");
    ASSERT_EQ(chmod((folder / "file").c_str(), 0666), 0);
    const auto replace = [&] { return ReplaceFileContents(folder / "file", "new").value(); };
    EXPECT_EQ(WithoutPrivileges(replace), EPERM);
    EXPECT_EQ(ReadBytes(folder / "file"), "old");
    EXPECT_EQ(folder.Names(), Names{"file"});
}

TEST(ReplaceFileContents, FollowsLinksOfAnyKind) {
    const TempFolder folder;
    std::filesystem::create_directory(folder / "sub");
    WriteBytes(folder / "sub/file", "old");
    std::filesystem::create_symlink("sub/file", folder / "relative");
    std::filesystem::create_symlink(folder / "relative", folder / "absolute");
    EXPECT_EQ(ReplaceFileContents(folder / "absolute", "new").value(), 0);
    EXPECT_EQ(ReadBytes(folder / "sub/file"), "new");
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "absolute"));
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "relative"));
}

TEST(ReplaceFileContents, MakesTheFileThatADanglingLinkNames) {
    const TempFolder folder;
    std::filesystem::create_symlink("target", folder / "link");
    EXPECT_EQ(ReplaceFileContents(folder / "link", "new").value(), 0);
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link"));
    EXPECT_EQ(ReadBytes(folder / "target"), "new");
}

TEST(ReplaceFileContents, LinkThatNamesItselfGivesEloop) {
    const TempFolder folder;
    std::filesystem::create_symlink("link", folder / "link");
    EXPECT_EQ(ReplaceFileContents(folder / "link", "new").value(), ELOOP);
    EXPECT_EQ(folder.Names(), Names{"link"});
}

TEST(ReplaceFileContents, MissingFolderGivesEnoent) {
    const TempFolder folder;
    EXPECT_EQ(ReplaceFileContents(folder / "none/file", "new").value(), ENOENT);
    EXPECT_EQ(folder.Names(), Names{});
}

TEST(ReplaceFileContents, FolderInTheFilesPlaceGivesEisdir) {
    const TempFolder folder;
    std::filesystem::create_directory(folder / "file");
    EXPECT_EQ(ReplaceFileContents(folder / "file", "new").value(), EISDIR);
    EXPECT_EQ(folder.Names(), Names{"file"});
}

TEST(ReplaceFileContents, PipeIsNotReplaced) {
    const TempFolder folder;
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(ReplaceFileContents(folder / "pipe", "new").value(), EINVAL);
    EXPECT_TRUE(std::filesystem::is_fifo(folder / "pipe"));
    EXPECT_EQ(folder.Names(), Names{"pipe"});
}

TEST(ReplaceFileContents, PathWithoutFolderIsInTheWorkingFolder) {
    const TempFolder folder;
    const int code = WithoutPrivileges([] {
        const TempFolder own;
        if (chdir(own.Path().c_str()) != 0) return 120;
        const int number = ReplaceFileContents("file", "new").value();
        return ReadBytes(own / "file") == "new" ? number : 121;
    });
    EXPECT_EQ(code, 0);
}

TEST(ReplaceFileContents, ReadOnlyFolderGivesEacces) {
    const TempFolder folder;
    WriteBytes(folder / "file", "old");
    ASSERT_EQ(chmod((folder / "file").c_str(), 0666), 0);
    std::filesystem::permissions(folder.Path(), std::filesystem::perms(0555));
    const auto replace = [&] { return ReplaceFileContents(folder / "file", "new").value(); };
    EXPECT_EQ(WithoutPrivileges(replace), EACCES);
    EXPECT_EQ(ReadBytes(folder / "file"), "old");
    EXPECT_EQ(folder.Names(), Names{"file"});
}

TEST(ReplaceFileContents, WriteProtectedFileIsNotReplaced) {
    const TempFolder folder;
    std::filesystem::permissions(folder.Path(), std::filesystem::perms(0777));
    const int code = WithoutPrivileges([&] {
        WriteBytes(folder / "file", "old");
        if (chmod((folder / "file").c_str(), 0444) != 0) return 120;
        return ReplaceFileContents(folder / "file", "new").value();
    });
    EXPECT_EQ(code, EACCES);
    EXPECT_EQ(ReadBytes(folder / "file"), "old");
}

TEST(ReplaceFileContents, RemovesWhatAKilledReplacementLeft) {
    const TempFolder folder;
    WriteBytes(folder / ".corvane-0123456789abcdef.new", "half of");
    EXPECT_EQ(ReplaceFileContents(folder / "file", "new").value(), 0);
    EXPECT_EQ(folder.Names(), Names{"file"});
}

TEST(ReplaceFileContents, LeavesTheFileOfAReplacementUnderWay) {
    const TempFolder folder;
    const std::string name = ".corvane-0123456789abcdef.new";
    const int other = open((folder / name).c_str(), O_RDWR | O_CREAT, 0600);
    ASSERT_GE(other, 0);
    ASSERT_EQ(flock(other, LOCK_EX), 0);
    EXPECT_EQ(ReplaceFileContents(folder / "file", "new").value(), 0);
    EXPECT_EQ(folder.Names(), (Names{"file", name}));
    close(other);
}

TEST(ReplaceFileContents, LeavesFilesAndLinksOfOtherPrograms) {
    const TempFolder folder;
    const Names others = {".corvane-.new", ".corvane-0123456789abcdef", "x.new",
                          ".corvane-0123456789abcdef.new2"};
    for (const std::string& name : others) WriteBytes(folder / name, "");
    std::filesystem::create_symlink("x.new", folder / ".corvane-aaaaaaaaaaaaaaaa.new");
    EXPECT_EQ(ReplaceFileContents(folder / "file", "new").value(), 0);
    Names expected = others;
    expected.insert({"file", ".corvane-aaaaaaaaaaaaaaaa.new"});
    EXPECT_EQ(folder.Names(), expected);
}

TEST(ReplaceFileContents, ReadersSeeTheOldOrTheNewContentsWhole) {
    const TempFolder folder;
    const std::string small(10, 'a');
    const std::string large(300000, 'b');
    WriteBytes(folder / "file", small);
    std::atomic<bool> done = false;
    std::atomic<int> failures = 0;
    std::thread writer([&] {
        for (int i = 0; i < 100; ++i) {
            if (ReplaceFileContents(folder / "file", i % 2 == 0 ? large : small)) ++failures;
        }
        done = true;
    });
    int mixed = 0;
    do {
        std::string contents;
        const std::error_code code = ReadFileContents(folder / "file", contents);
        if (code || (contents != small && contents != large)) ++mixed;
    } while (!done);
    writer.join();
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(mixed, 0);
}

TEST(ReplaceFileContents, TwoWritersAtOnceBothSucceed) {
    const TempFolder folder;
    std::atomic<int> failures = 0;
    const auto repeat = [&](char letter) {
        for (int i = 0; i < 100; ++i) {
            if (ReplaceFileContents(folder / "file", std::string(1000, letter))) ++failures;
        }
    };
    std::thread other(repeat, 'a');
    repeat('b');
    other.join();
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(folder.Names(), Names{"file"});
    const std::string contents = ReadBytes(folder / "file");
    EXPECT_TRUE(contents == std::string(1000, 'a') || contents == std::string(1000, 'b'));
}

TEST(ReplaceFileContents, KilledAtAnyMomentLeavesTheOldOrTheNewContentsAndNothingElse) {
    const TempFolder folder;
    std::mt19937 random(test::TestSeed());
    const std::string small(100, 'a');
    const std::string large(500000, 'b');
    WriteBytes(folder / "file", small);
    for (int round = 0; round < 40; ++round) {
        test::KillWhileRepeating(
            random, [&](int run) { ReplaceFileContents(folder / "file", run % 2 == 0 ? large : small); });
        const std::string contents = ReadBytes(folder / "file");
        ASSERT_TRUE(contents == small || contents == large)
            << "round " << round << ": " << contents.size() << " bytes";
        ASSERT_LE(folder.Names().size(), 2U) << "files of killed replacements pile up";
    }
    EXPECT_EQ(ReplaceFileContents(folder / "file", "new").value(), 0);
    EXPECT_EQ(folder.Names(), Names{"file"});
}

}  // namespace
}  // namespace corvane
