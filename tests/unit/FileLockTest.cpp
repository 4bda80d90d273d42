#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/linux/system/FileLock.h"
#include "tests/unit/FileSupport.h"

namespace corvane {
namespace {

using std::chrono::milliseconds;

class FileLockTest : public testing::Test {
 protected:
    test::TempFolder folder_;
    const std::string path_ = folder_ / "lock";
};

TEST_F(FileLockTest, AFreeLockIsTakenWithoutPatienceAndItsFileStaysPrivate) {
    {
        FileLock lock;
        ASSERT_EQ(lock.Take(path_, milliseconds(0)), 0);
    }
    struct stat status {};
    ASSERT_EQ(stat(path_.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0600U);
    FileLock again;
    EXPECT_EQ(again.Take(path_, milliseconds(0)), 0);
}

TEST_F(FileLockTest, ALockThatAnotherHasIsGivenUpWhenThePatienceIsOver) {
    FileLock holder;
    ASSERT_EQ(holder.Take(path_, milliseconds(0)), 0);
    FileLock lock;
    EXPECT_EQ(lock.Take(path_, milliseconds(0)), EBUSY);
    EXPECT_EQ(lock.Take(path_, milliseconds(-5)), EBUSY);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(lock.Take(path_, milliseconds(30)), EBUSY);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, milliseconds(30));
}

/// Both ways of waiting end when the holder, another process, does.
TEST_F(FileLockTest, ALockThatIsWaitedForIsHadWhenItsHolderEnds) {
    for (const milliseconds patience : {milliseconds(60000), FileLock::kNoLimit}) {
        std::array<int, 2> ready{};
        ASSERT_EQ(pipe(ready.data()), 0);
        const pid_t holder = fork();
        ASSERT_GE(holder, 0);
        if (holder == 0) {
            FileLock lock;
            const char held = lock.Take(path_, milliseconds(0)) == 0 ? 'y' : 'n';
            if (write(ready[1], &held, 1) != 1) _exit(1);
            usleep(30000);
            _exit(0);
        }
        char held = 0;
        ASSERT_EQ(read(ready[0], &held, 1), 1);
        EXPECT_EQ(held, 'y');
        FileLock lock;
        EXPECT_EQ(lock.Take(path_, patience), 0);
        int status = 1;
        ASSERT_EQ(waitpid(holder, &status, 0), holder);
        EXPECT_EQ(status, 0);
        close(ready[0]);
        close(ready[1]);
    }
}

TEST_F(FileLockTest, WhatKeepsTheFileFromBeingOpenedIsTold) {
    FileLock lock;
    EXPECT_EQ(lock.Take(folder_ / "missing/lock", FileLock::kNoLimit), ENOENT);
    std::filesystem::create_symlink(path_, std::string(folder_ / "link"));
    EXPECT_EQ(lock.Take(folder_ / "link", FileLock::kNoLimit), ELOOP);
    EXPECT_FALSE(std::filesystem::exists(path_));
}

}  // namespace
}  // namespace corvane
