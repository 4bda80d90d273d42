#include <cstdint>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <signal.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/linux/registry/RegistryStore.h"
#include "tests/unit/FileSupport.h"

/// Several programs, or threads, at one store.
namespace corvane {
namespace {

using Kind = RegistryStore::Change::Kind;

/// Runs `action` in a child process; its return value is the exit code.
pid_t Start(const std::function<int()>& action) {
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) _exit(action());
    return child;
}

int Wait(pid_t child) {
    int status = 0;
    if (waitpid(child, &status, 0) != child) return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

TEST(RegistryStoreProcesses, LoseNothingWhenTheyWriteAtOnce) {
    constexpr int kWriters = 4;
    constexpr int kValues = 25;
    const test::TempFolder folder;
    const std::string path = folder / "registry.db";  // Also made by all of them at once.
    std::vector<pid_t> children;
    for (int writer = 0; writer < kWriters; ++writer) {
        children.push_back(Start([&] {
            RegistryStore store(path, 60000);
            const std::string own = "Common\\" + std::to_string(writer);
            if (!Ok(store.CreateKey(kHkeyLocalMachine, own))) return 1;
            for (int i = 0; i < kValues; ++i) {
                const RegistryValue value{kRegBinary, {static_cast<std::uint8_t>(i)}};
                if (!Ok(store.WriteValue(kHkeyLocalMachine, own, std::to_string(i), value))) return 2;
                if (!Ok(store.WriteValue(kHkeyLocalMachine, "Common", std::to_string(writer * kValues + i),
                                         value)))
                    return 3;
            }
            return 0;
        }));
    }
    for (const pid_t child : children) EXPECT_EQ(Wait(child), 0);
    RegistryStore store(path);
    std::vector<NamedValue> values;
    ASSERT_EQ(store.EnumValues(kHkeyLocalMachine, "Common", values), Win32Error::kSuccess);
    EXPECT_EQ(values.size(), static_cast<std::size_t>(kWriters * kValues));
    for (int writer = 0; writer < kWriters; ++writer) {
        ASSERT_EQ(store.EnumValues(kHkeyLocalMachine, "Common\\" + std::to_string(writer), values),
                  Win32Error::kSuccess);
        EXPECT_EQ(values.size(), static_cast<std::size_t>(kValues));
    }
}

TEST(RegistryStoreProcesses, KeepEverythingReportedAsDoneWhenKilled) {
    constexpr int kRounds = 25;
    const test::TempFolder folder;
    const std::string path = folder / "registry.db";
    std::mt19937 random(test::TestSeed());
    std::uint32_t first = 0;
    for (int round = 0; round < kRounds; ++round) {
        int report[2];
        ASSERT_EQ(pipe(report), 0);
        const pid_t child = Start([&] {
            RegistryStore store(path);
            for (std::uint32_t i = first;; ++i) {
                const std::string name = std::to_string(i);
                const RegistryValue value{kRegBinary, std::vector<std::uint8_t>(i % 3 == 0 ? 20000 : 5, 7)};
                if (!Ok(store.Apply(kHkeyLocalMachine, {{Kind::kSetValue, "K\\" + name, "v", value},
                                                        {Kind::kSetValue, "Last", "v", {kRegBinary, {1}}}})))
                    return 1;
                if (write(report[1], &i, sizeof i) != sizeof i) return 2;
            }
        });
        ASSERT_GT(child, 0);
        close(report[1]);
        std::uint32_t done = 0;
        ASSERT_EQ(read(report[0], &done, sizeof done), static_cast<ssize_t>(sizeof done));
        usleep(std::uniform_int_distribution<useconds_t>(0, 8000)(random));
        kill(child, SIGKILL);
        EXPECT_EQ(Wait(child), 128 + SIGKILL);
        while (read(report[0], &done, sizeof done) == static_cast<ssize_t>(sizeof done)) {
        }
        close(report[0]);

        RegistryStore store(path);
        for (std::uint32_t i = 0; i <= done; ++i) {
            const RegistryRead value = store.ReadValue(kHkeyLocalMachine, "K\\" + std::to_string(i), "v");
            ASSERT_EQ(value.code, Win32Error::kSuccess) << i << " of " << done << ", round " << round;
            ASSERT_EQ(value.value.data.size(), i % 3 == 0 ? 20000U : 5U);
        }
        // One more may be there in full: done, but killed before its report. A key without its value may not.
        std::vector<std::string> names;
        ASSERT_EQ(store.EnumSubkeys(kHkeyLocalMachine, "K", names), Win32Error::kSuccess);
        ASSERT_LE(names.size(), done + 2U);
        ASSERT_GE(names.size(), done + 1U);
        for (const std::string& name : names)
            ASSERT_TRUE(Ok(store.ReadValue(kHkeyLocalMachine, "K\\" + name, "v").code));
        first = static_cast<std::uint32_t>(names.size());
    }
}

/// Another program that holds the file to itself for as long as the object lives.
class Holder {
 public:
    explicit Holder(const std::string& path) {
        EXPECT_EQ(pipe(held_), 0);
        EXPECT_EQ(pipe(release_), 0);
        child_ = Start([&] {
            close(release_[1]);
            sqlite3* database = nullptr;
            if (sqlite3_open(path.c_str(), &database) != SQLITE_OK) return 1;
            if (sqlite3_exec(database, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr) != SQLITE_OK) return 2;
            char byte = 0;
            if (write(held_[1], "h", 1) != 1) return 3;
            (void)!read(release_[0], &byte, 1);
            sqlite3_close(database);
            return 0;
        });
        char byte = 0;
        EXPECT_EQ(read(held_[0], &byte, 1), 1);
    }
    ~Holder() { Release(); }
    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;

    void Release() {
        if (child_ < 0) return;
        close(release_[1]);
        EXPECT_EQ(Wait(child_), 0);
        for (const int descriptor : {held_[0], held_[1], release_[0]}) close(descriptor);
        child_ = -1;
    }

 private:
    int held_[2] = {-1, -1};
    int release_[2] = {-1, -1};
    pid_t child_ = -1;
};

class RegistryStoreHeld : public testing::Test {
 protected:
    RegistryStoreHeld() {
        RegistryStore store(path_);
        EXPECT_EQ(store.Apply(kHkeyLocalMachine, {{Kind::kSetValue, "K", "v", {kRegBinary, {1}}}}),
                  Win32Error::kSuccess);
    }

    test::TempFolder folder_;
    const std::string path_ = folder_ / "registry.db";
};

TEST_F(RegistryStoreHeld, LongerThanTheTimeoutCannotBeReadOrWritten) {
    RegistryStore store(path_, 20);
    ASSERT_EQ(store.ReadValue(kHkeyLocalMachine, "K", "v").code, Win32Error::kSuccess);
    Holder holder(path_);
    std::vector<std::string> names;
    EXPECT_EQ(store.ReadValue(kHkeyLocalMachine, "K", "v").code, Win32Error::kCantRead);
    EXPECT_EQ(store.EnumSubkeys(kHkeyLocalMachine, "K", names), Win32Error::kCantRead);
    EXPECT_EQ(store.WriteValue(kHkeyLocalMachine, "K", "v", {kRegBinary, {2}}), Win32Error::kCantWrite);
    EXPECT_EQ(store.Transact([](RegistryStore::Editor&) { return Win32Error::kSuccess; }),
              Win32Error::kCantWrite);
}

TEST_F(RegistryStoreHeld, WorksAgainAfterwards) {
    RegistryStore store(path_, 20);
    Holder holder(path_);
    ASSERT_EQ(store.ReadValue(kHkeyLocalMachine, "K", "v").code, Win32Error::kCantRead);
    holder.Release();
    EXPECT_EQ(store.ReadValue(kHkeyLocalMachine, "K", "v").code, Win32Error::kSuccess);
    EXPECT_EQ(store.WriteValue(kHkeyLocalMachine, "K", "v", {kRegBinary, {2}}), Win32Error::kSuccess);
}

TEST_F(RegistryStoreHeld, WhileItIsOpenedWorksAfterwards) {
    Holder holder(path_);
    RegistryStore store(path_, 20);
    EXPECT_EQ(store.ReadValue(kHkeyLocalMachine, "K", "v").code, Win32Error::kCantRead);
    holder.Release();
    EXPECT_EQ(store.ReadValue(kHkeyLocalMachine, "K", "v").code, Win32Error::kSuccess);
    EXPECT_FALSE(store.ReadOnly());
}

TEST_F(RegistryStoreHeld, ShorterThanTheTimeoutIsWaitedFor) {
    RegistryStore store(path_, 60000);
    Holder holder(path_);
    std::thread later([&] {
        usleep(50000);
        holder.Release();
    });
    EXPECT_EQ(store.WriteValue(kHkeyLocalMachine, "K", "v", {kRegBinary, {2}}), Win32Error::kSuccess);
    later.join();
}

TEST(RegistryStoreThreads, TakeTurns) {
    const test::TempFolder folder;
    RegistryStore store(folder / "registry.db");
    ASSERT_EQ(store.CreateKey(kHkeyLocalMachine, "K"), Win32Error::kSuccess);
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&store, thread] {
            for (int i = 0; i < 20; ++i) {
                const std::string name = std::to_string(thread) + "." + std::to_string(i);
                EXPECT_EQ(store.WriteValue(kHkeyLocalMachine, "K", name, {kRegBinary, {1}}),
                          Win32Error::kSuccess);
                EXPECT_EQ(store.ReadValue(kHkeyLocalMachine, "K", name).code, Win32Error::kSuccess);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    std::vector<NamedValue> values;
    ASSERT_EQ(store.EnumValues(kHkeyLocalMachine, "K", values), Win32Error::kSuccess);
    EXPECT_EQ(values.size(), 80U);
}

}  // namespace
}  // namespace corvane
