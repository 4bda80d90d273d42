#pragma once

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <random>
#include <stdexcept>
#include <string>

#include <grp.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/unit/TempFolder.h"

/// Helpers for tests of file operations. POSIX only, but for what TempFolder.h brings.
namespace corvane::test {

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
