#include <array>
#include <atomic>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/linux/resolver/Dns.h"

namespace corvane {
namespace {

const std::string kBegin = "# Orvella Corvane: name servers of the network connections, do not edit\n";
const std::string kEnd = "# Orvella Corvane: end\n";
const std::string kForeign = "# mine\nsearch example.test\nnameserver 192.0.2.1\noptions ndots:2\n";

/// Each case works in a folder of its own.
class ResolvConf : public ::testing::Test {
 protected:
    void SetUp() override {
        std::string folder = (std::filesystem::temp_directory_path() / "resolvXXXXXX").string();
        ASSERT_NE(mkdtemp(folder.data()), nullptr);
        folder_ = folder;
        path_ = folder_ + "/resolv.conf";
        copy_ = folder_ + "/copies/before";
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }

    static std::string Read(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        EXPECT_TRUE(file) << path;
        std::ostringstream text;
        text << file.rdbuf();
        return text.str();
    }
    static void Write(const std::string& path, const std::string& text) {
        std::ofstream file(path, std::ios::binary | std::ios::trunc);
        file << text << std::flush;
        ASSERT_TRUE(file) << path;
    }
    static ino_t Inode(const std::string& path) {
        struct stat status {};
        EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
        return status.st_ino;
    }

    bool Update(const std::vector<std::string>& servers) {
        const Refusal refusal = UpdateResolvConf(path_, copy_, servers);
        failure_ = refusal.Words();
        return !refusal;
    }

    std::string folder_;
    std::string path_;
    std::string copy_;
    std::string failure_;
};

TEST_F(ResolvConf, ABlockComesBeforeTheForeignLines) {
    Write(path_, kForeign);
    ASSERT_TRUE(Update({"10.0.0.1", "2001:db8::1"})) << failure_;
    EXPECT_EQ(Read(path_), kBegin + "nameserver 10.0.0.1\nnameserver 2001:db8::1\n" + kEnd + kForeign);
    EXPECT_EQ(Read(copy_), kForeign);
}

TEST_F(ResolvConf, ABlockIsReplacedByTheNext) {
    Write(path_, kForeign);
    ASSERT_TRUE(Update({"10.0.0.1"})) << failure_;
    ASSERT_TRUE(Update({"10.0.0.2", "10.0.0.3"})) << failure_;
    EXPECT_EQ(Read(path_), kBegin + "nameserver 10.0.0.2\nnameserver 10.0.0.3\n" + kEnd + kForeign);
    EXPECT_EQ(Read(copy_), kForeign) << "the copy is of the file without block";
}

TEST_F(ResolvConf, TheFileIsAsItWasWithoutServers) {
    for (const std::string& text :
         {kForeign, std::string(""), std::string("\n"), std::string("nameserver 1.1.1.1"),
          std::string("a\r\nb\r\n"), std::string("\r\n\r\nnameserver 1.1.1.1\r\n"), std::string("a\0b\n", 4),
          std::string("\xff\xfe junk")}) {
        Write(path_, text);
        ASSERT_TRUE(Update({"10.0.0.1"})) << failure_;
        EXPECT_EQ(Read(path_), kBegin + "nameserver 10.0.0.1\n" + kEnd + text);
        ASSERT_TRUE(Update({})) << failure_;
        EXPECT_EQ(Read(path_), text);
    }
}

TEST_F(ResolvConf, LinesAddedOutsideTheBlockMeanwhileStay) {
    Write(path_, kForeign);
    ASSERT_TRUE(Update({"10.0.0.1"})) << failure_;
    Write(path_, "# above\n" + Read(path_) + "# below");
    ASSERT_TRUE(Update({"10.0.0.2"})) << failure_;
    EXPECT_EQ(Read(path_), kBegin + "nameserver 10.0.0.2\n" + kEnd + "# above\n" + kForeign + "# below");
    ASSERT_TRUE(Update({})) << failure_;
    EXPECT_EQ(Read(path_), "# above\n" + kForeign + "# below");
}

TEST_F(ResolvConf, ABlockTurnedToCrLfIsStillRecognised) {
    Write(path_,
          "# Orvella Corvane: name servers of the network connections, do not edit\r\nnameserver 10.0.0.1\r\n"
          "# Orvella Corvane: end\r\nnameserver 192.0.2.1\r\n");
    ASSERT_TRUE(Update({})) << failure_;
    EXPECT_EQ(Read(path_), "nameserver 192.0.2.1\r\n");
}

TEST_F(ResolvConf, ABlockThatLostItsEndEndsBeforeForeignLines) {
    Write(path_,
          kBegin + "nameserver 10.0.0.1\nnameserver 10.0.0.2\nsearch example.test\nnameserver 192.0.2.1\n");
    ASSERT_TRUE(Update({})) << failure_;
    EXPECT_EQ(Read(path_), "search example.test\nnameserver 192.0.2.1\n");
}

TEST_F(ResolvConf, SeveralBlocksBecomeOne) {
    const std::string block = kBegin + "nameserver 10.0.0.1\n" + kEnd;
    Write(path_, block + kForeign + block);
    ASSERT_TRUE(Update({"10.0.0.9"})) << failure_;
    EXPECT_EQ(Read(path_), kBegin + "nameserver 10.0.0.9\n" + kEnd + kForeign);
}

TEST_F(ResolvConf, NothingIsWrittenWhenNothingChanges) {
    Write(path_, kForeign);
    const ino_t before = Inode(path_);
    ASSERT_TRUE(Update({})) << failure_;
    EXPECT_EQ(Inode(path_), before);
    EXPECT_FALSE(std::filesystem::exists(copy_));
    ASSERT_TRUE(Update({"10.0.0.1"})) << failure_;
    const ino_t withBlock = Inode(path_);
    EXPECT_NE(withBlock, before) << "a change replaces the file";
    ASSERT_TRUE(Update({"10.0.0.1"})) << failure_;
    EXPECT_EQ(Inode(path_), withBlock);
}

TEST_F(ResolvConf, AMissingFileIsMadeForServersOnly) {
    ASSERT_TRUE(Update({})) << failure_;
    EXPECT_FALSE(std::filesystem::exists(path_));
    ASSERT_TRUE(Update({"10.0.0.1"})) << failure_;
    EXPECT_EQ(Read(path_), kBegin + "nameserver 10.0.0.1\n" + kEnd);
    EXPECT_FALSE(std::filesystem::exists(copy_));
}

TEST_F(ResolvConf, ASymbolicLinkIsRefusedWithItsTarget) {
    const std::string target = folder_ + "/stub-resolv.conf";
    Write(target, kForeign);
    std::filesystem::create_symlink(target, path_);
    EXPECT_FALSE(Update({"10.0.0.1"}));
    EXPECT_NE(failure_.find(target), std::string::npos) << failure_;
    EXPECT_NE(failure_.find("symbolic link"), std::string::npos) << failure_;
    EXPECT_EQ(Read(target), kForeign);
    EXPECT_TRUE(std::filesystem::is_symlink(path_));
}

TEST_F(ResolvConf, ADanglingSymbolicLinkIsRefused) {
    std::filesystem::create_symlink(folder_ + "/nothing", path_);
    EXPECT_FALSE(Update({"10.0.0.1"}));
    EXPECT_NE(failure_.find("symbolic link"), std::string::npos) << failure_;
    EXPECT_FALSE(std::filesystem::exists(folder_ + "/nothing"));
}

TEST_F(ResolvConf, AFolderAndAPipeAreRefused) {
    std::filesystem::create_directory(path_);
    EXPECT_FALSE(Update({"10.0.0.1"}));
    EXPECT_NE(failure_.find("no plain file"), std::string::npos) << failure_;
    std::filesystem::remove(path_);
    ASSERT_EQ(mkfifo(path_.c_str(), 0600), 0);
    EXPECT_FALSE(Update({"10.0.0.1"}));
    EXPECT_NE(failure_.find("no plain file"), std::string::npos) << failure_;
}

/// As somebody without rights: root may write everywhere.
TEST_F(ResolvConf, AFileThatMayNotBeWrittenIsRefusedWithTheRemedy) {
    Write(path_, kForeign);
    ASSERT_EQ(chmod(path_.c_str(), 0444), 0);
    ASSERT_EQ(chmod(folder_.c_str(), 0777), 0);
    const pid_t child = fork();
    if (child == 0) {
        if (geteuid() == 0 && (setgid(65534) != 0 || setuid(65534) != 0)) _exit(3);
        if (Update({"10.0.0.1"})) _exit(1);
        _exit(failure_.find("make it writable") != std::string::npos ? 0 : 2);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(Read(path_), kForeign);
}

TEST_F(ResolvConf, ACopyThatCannotBeKeptStopsTheChange) {
    Write(path_, kForeign);
    std::filesystem::create_directories(copy_);
    EXPECT_FALSE(Update({"10.0.0.1"}));
    EXPECT_NE(failure_.find(copy_), std::string::npos) << failure_;
    EXPECT_EQ(Read(path_), kForeign);
}

TEST_F(ResolvConf, ALargeFileComesThrough) {
    std::string text;
    while (text.size() < 65536)
        text += "# a line of a large file, number " + std::to_string(text.size()) + "\n";
    Write(path_, text);
    ASSERT_TRUE(Update({"10.0.0.1"})) << failure_;
    EXPECT_EQ(Read(path_), kBegin + "nameserver 10.0.0.1\n" + kEnd + text);
    ASSERT_TRUE(Update({})) << failure_;
    EXPECT_EQ(Read(path_), text);
}

TEST_F(ResolvConf, KeepsTheModeOfTheFile) {
    Write(path_, kForeign);
    ASSERT_EQ(chmod(path_.c_str(), 0640), 0);
    ASSERT_TRUE(Update({"10.0.0.1"})) << failure_;
    struct stat status {};
    ASSERT_EQ(stat(path_.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0640U);
}

TEST_F(ResolvConf, UpdatesAtTheSameTimeLeaveOneWholeBlock) {
    Write(path_, kForeign);
    std::atomic<int> failures{0};
    std::vector<std::thread> threads;
    for (int writer = 0; writer < 8; ++writer) {
        threads.emplace_back([&, writer] {
            for (int round = 0; round < 10; ++round) {
                const std::string server = "10.0." + std::to_string(writer) + "." + std::to_string(round);
                if (UpdateResolvConf(path_, copy_, {server})) ++failures;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(failures, 0);
    const std::string text = Read(path_);
    EXPECT_EQ(text.rfind(kBegin), 0U) << text;
    EXPECT_TRUE(text.ends_with(".9\n" + kEnd + kForeign)) << text;
    EXPECT_EQ(Read(copy_), kForeign);
}

/// A process that updates without end is killed at many different moments.
TEST_F(ResolvConf, AKilledUpdateLeavesTheOldOrTheNewFile) {
    std::string large = kForeign;
    while (large.size() < 20000) large += "# filling\n";
    Write(path_, large);
    const std::string one = kBegin + "nameserver 10.0.0.1\n" + kEnd + large;
    const std::string two = kBegin + "nameserver 10.0.0.2\nnameserver 10.0.0.3\n" + kEnd + large;
    for (int round = 0; round < 40; ++round) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            for (;;) {
                static_cast<void>(UpdateResolvConf(path_, copy_, {"10.0.0.1"}));
                static_cast<void>(UpdateResolvConf(path_, copy_, {"10.0.0.2", "10.0.0.3"}));
            }
        }
        // The first round sees an update done; the others strike anywhere.
        for (int tries = 0; round == 0 && tries < 10000 && Read(path_) == large; ++tries) usleep(1000);
        usleep(static_cast<useconds_t>(500 + 137 * round));
        kill(child, SIGKILL);
        ASSERT_EQ(waitpid(child, nullptr, 0), child);
        const std::string text = Read(path_);
        ASSERT_TRUE(text == large || text == one || text == two) << "round " << round << "\n"
                                                                 << text.substr(0, 300);
        if (round == 0) {
            ASSERT_NE(text, large) << "no update came to its end";
        }
    }
    ASSERT_TRUE(Update({})) << failure_;
    EXPECT_EQ(Read(path_), large);
}

TEST_F(ResolvConf, AnUpdateWaitsForTheLockAndGivesUpInTheEnd) {
    Write(path_, kForeign);
    ASSERT_TRUE(Update({"10.0.0.1"})) << failure_;
    std::array<int, 2> ready{};
    ASSERT_EQ(pipe(ready.data()), 0);
    const pid_t holder = fork();
    if (holder == 0) {
        const int lock = open((copy_ + ".lock").c_str(), O_RDWR | O_CLOEXEC);
        const bool held = flock(lock, LOCK_EX) == 0;
        if (write(ready[1], held ? "y" : "n", 1) != 1) _exit(1);
        pause();
        _exit(0);
    }
    char held = 0;
    ASSERT_EQ(read(ready[0], &held, 1), 1);
    EXPECT_EQ(held, 'y');
    EXPECT_FALSE(Update({"10.0.0.2"}));
    EXPECT_NE(failure_.find("another program has the lock"), std::string::npos) << failure_;
    kill(holder, SIGKILL);
    ASSERT_EQ(waitpid(holder, nullptr, 0), holder);
    close(ready[0]);
    close(ready[1]);
    EXPECT_TRUE(Update({"10.0.0.2"})) << failure_;
}

}  // namespace
}  // namespace corvane
