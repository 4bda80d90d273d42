#pragma once

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <random>
#include <set>
#include <stdexcept>
#include <string>

#include <grp.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

/// Helpers for tests of file operations. POSIX only.
namespace corvane::test {

/// A new empty folder that everybody may enter and list; removed with its contents at the end of the scope.
class TempFolder {
 public:
    TempFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "corvane-test-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
        path_ = pattern;
        std::filesystem::permissions(path_, std::filesystem::perms(0755));
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    /// Path of `name` in the folder; with an empty name the folder with a separator at its end.
    [[nodiscard]] std::string operator/(const std::string& name) const { return path_ + "/" + name; }
    [[nodiscard]] const std::string& Path() const { return path_; }

    /// Names in the folder.
    [[nodiscard]] std::set<std::string> Names() const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(path_))
            names.insert(entry.path().filename());
        return names;
    }

 private:
    std::string path_;
};

inline void WriteBytes(const std::string& path, const std::string& bytes) {
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    if (!stream) throw std::runtime_error("cannot write " + path);
}

inline std::string ReadBytes(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    if (!stream) throw std::runtime_error("cannot open " + path);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// Runs `action` in a child process without any privilege and hands back what it returns, which must be 0 to
/// 124; 125 when the privileges could not be given up, 126 when it threw, 128 + signal number when a signal
/// ended it.
inline int WithoutPrivileges(const std::function<int()>& action) {
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        constexpr uid_t kNobody = 65534;
        if (geteuid() == 0 && (setgroups(0, nullptr) != 0 || setgid(kNobody) != 0 || setuid(kNobody) != 0))
            _exit(125);
        try {
            _exit(action());
        } catch (...) {
            _exit(126);
        }
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child) throw std::runtime_error("no child process");
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

/// Repeats `action` in a child process until the child is killed at a random moment, not before one run of it
/// is complete. `action` gets the number of the run, from 0.
inline void KillWhileRepeating(std::mt19937& random, const std::function<void(int)>& action) {
    int channel[2];
    if (pipe(channel) != 0) throw std::runtime_error("no pipe");
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        for (int run = 0;; ++run) {
            action(run);
            if (run == 0 && write(channel[1], "x", 1) != 1) _exit(1);
        }
    }
    if (child < 0) throw std::runtime_error("no child process");
    close(channel[1]);
    char done = 0;
    const bool started = read(channel[0], &done, 1) == 1;
    close(channel[0]);
    usleep(std::uniform_int_distribution<useconds_t>(0, 5000)(random));
    kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    if (!started || !WIFSIGNALED(status)) throw std::runtime_error("the child process ended by itself");
}

/// The seed of a test's random choices: what the environment variable CORVANE_SEED says, else `usual`.
/// Printed, so that a failing run can be repeated.
inline std::uint32_t TestSeed(std::uint32_t usual = std::random_device{}()) {
    const char* given = std::getenv("CORVANE_SEED");
    const std::uint32_t seed =
        given != nullptr ? static_cast<std::uint32_t>(std::strtoul(given, nullptr, 10)) : usual;
    std::printf("CORVANE_SEED=%u\n", seed);
    return seed;
}

}  // namespace corvane::test
