#include "platform/linux/dhcp/DhcpControl.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "base/Text.h"
#include "platform/linux/dhcp/DhcpExit.h"
#include "platform/linux/dhcp/DhcpSocket.h"
#include "platform/linux/system/Descriptor.h"
#include "platform/linux/system/Errors.h"
#include "platform/linux/system/ProcessDescriptor.h"

extern char** environ;

namespace corvane {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kRequestMilliseconds = 15000;
constexpr int kStartMilliseconds = 20000;
constexpr int kStopMilliseconds = 20000;

/// Milliseconds until `end`, for poll(2).
int Left(Clock::time_point end) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
    return left > 0 ? static_cast<int>(left) : 0;
}

/// Waits until `descriptor` is readable (or at its end).
bool WaitReadable(int descriptor, Clock::time_point end) {
    for (;;) {
        pollfd wait{descriptor, POLLIN, 0};
        const int ready = poll(&wait, 1, Left(end));
        if (ready > 0) return true;
        if (ready == 0 || errno != EINTR) return false;
    }
}

/// Path of the supervisor's program, empty when it is not beside this program.
std::string SupervisorProgram() {
    std::error_code error;
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error) return {};
    const std::string path = (self.parent_path() / "nicx-dhcp").string();
    return access(path.c_str(), X_OK) == 0 ? path : std::string();
}

/// Runs a program without input or output, its error texts into `errors`. 0 or an errno value.
int Spawn(std::vector<std::string> arguments, int errors, pid_t& child) {
    std::vector<char*> pointers;
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, errors, STDERR_FILENO);
    const int result = posix_spawn(&child, pointers[0], &actions, nullptr, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    return result;
}

/// Everything written to the pipe until its last writer closed it; false when `end` came first.
bool ReadAll(int descriptor, Clock::time_point end, std::string& text) {
    std::array<char, 1024> chunk{};
    for (;;) {
        if (!WaitReadable(descriptor, end)) return false;
        const ssize_t count = read(descriptor, chunk.data(), chunk.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return true;
        text.append(chunk.data(), static_cast<std::size_t>(count));
    }
}

Win32Error FromExit(int exitCode) {
    switch (exitCode) {
        case kDhcpExitDone:
            return Win32Error::kSuccess;
        case kDhcpExitNoRight:
            return Win32Error::kAccessDenied;
        case kDhcpExitNoClient:
            return Win32Error::kFileNotFound;
        case kDhcpExitNoLink:
            return Win32Error::kInvalidParameter;
        default:
            return Win32Error::kGenFailure;
    }
}

/// Asks the supervisor of a link and turns the outcome into a code.
Win32Error Request(std::uint32_t linkIndex, const char* question) {
    DhcpCaller caller;
    DhcpAnswer answer;
    DhcpCaller::Outcome outcome = caller.Connect(linkIndex);
    if (outcome == DhcpCaller::Outcome::kAnswered)
        outcome = caller.Ask(question, kRequestMilliseconds, answer);
    switch (outcome) {
        case DhcpCaller::Outcome::kAnswered:
            return answer.code;
        case DhcpCaller::Outcome::kNobody:
            return Win32Error::kNotSupported;
        case DhcpCaller::Outcome::kDenied:
            return Win32Error::kAccessDenied;
        case DhcpCaller::Outcome::kLate:
            return Win32Error::kSemTimeout;
    }
    return Win32Error::kGenFailure;
}

}  // namespace

bool DhcpRunning(std::uint32_t linkIndex) {
    DhcpCaller caller;
    DhcpAnswer answer;
    return caller.Connect(linkIndex) == DhcpCaller::Outcome::kAnswered &&
           caller.Ask(kAskStatus, kDhcpStatusMilliseconds, answer) == DhcpCaller::Outcome::kAnswered;
}

DhcpAnswer StartDhcp(std::uint32_t linkIndex, const std::string& linkName, const std::string& linkId) {
    if (geteuid() != 0)
        return {Win32Error::kAccessDenied, "only root may start the DHCP supervisor of the link"};
    const std::string program = SupervisorProgram();
    if (program.empty()) return {Win32Error::kFileNotFound, "nicx-dhcp is not installed beside this program"};
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        const int error = errno;
        return {FromErrno(error), std::string("no pipe to nicx-dhcp: ") + std::strerror(error)};
    }
    const Descriptor reading(ends[0]);
    Descriptor writing(ends[1]);
    pid_t child = 0;
    const int error =
        Spawn({program, "--interface", linkName, "--index", std::to_string(linkIndex), "--id", linkId},
              writing.Get(), child);
    writing.Reset();
    if (error != 0) return {FromErrno(error), "cannot run " + program + ": " + std::strerror(error)};
    const Descriptor process(OpenProcess(child));

    // The program's first process ends when the supervisor takes requests, or with the reason why there is
    // none.
    const Clock::time_point end = Clock::now() + std::chrono::milliseconds(kStartMilliseconds);
    std::string words;
    const bool ended = ReadAll(reading.Get(), end, words) && WaitReadable(process.Get(), end);
    if (!ended) kill(child, SIGKILL);
    int status = 0;
    pid_t collected = 0;
    do {
        collected = waitpid(child, &status, 0);
    } while (collected < 0 && errno == EINTR);
    if (!ended) return {Win32Error::kSemTimeout, "nicx-dhcp did not start in time"};
    // A caller that ignores SIGCHLD is not told how its children end.
    const bool done = collected == child ? WIFEXITED(status) && WEXITSTATUS(status) == kDhcpExitDone
                                         : DhcpRunning(linkIndex);
    if (done) return {};
    while (!words.empty() && words.back() == '\n') words.pop_back();
    if (words.empty()) words = "nicx-dhcp ended at once";
    const bool told = collected == child && WIFEXITED(status);
    return {told ? FromExit(WEXITSTATUS(status)) : Win32Error::kGenFailure, words};
}

DhcpAnswer StopDhcp(std::uint32_t linkIndex) {
    DhcpCaller caller;
    DhcpAnswer answer;
    DhcpCaller::Outcome outcome = caller.Connect(linkIndex);
    const Clock::time_point end = Clock::now() + std::chrono::milliseconds(kStopMilliseconds);
    if (outcome == DhcpCaller::Outcome::kAnswered) outcome = caller.Ask(kAskStop, kStopMilliseconds, answer);
    if (outcome == DhcpCaller::Outcome::kDenied)
        return {Win32Error::kAccessDenied, "only root may stop the DHCP supervisor of the link"};
    // Without a process descriptor there was no supervisor, or it belongs to another process namespace.
    const int process = caller.Process().Get();
    if (outcome != DhcpCaller::Outcome::kLate && (process < 0 || WaitReadable(process, end))) return answer;
    if (process >= 0) SignalProcess(process, SIGKILL);
    return {Win32Error::kSemTimeout,
            "the DHCP supervisor of the link did not end in time and was killed; its address may still be "
            "there"};
}

Win32Error ReleaseDhcp(std::uint32_t linkIndex) { return Request(linkIndex, kAskRelease); }

Win32Error RenewDhcp(std::uint32_t linkIndex) { return Request(linkIndex, kAskRenew); }

}  // namespace corvane
