#include "platform/linux/DesktopOpener.h"

#include <cerrno>
#include <cstring>

#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>

#include "platform/linux/system/Descriptor.h"
#include "platform/linux/system/ProcessDescriptor.h"

extern char** environ;

namespace corvane {

namespace {

constexpr int kPatienceMilliseconds = 1000;

/// Whether the process has ended when the patience is over.
bool EndsSoon(pid_t process) {
    const Descriptor descriptor(OpenProcess(process));
    if (descriptor.Get() < 0) return false;
    pollfd watched{descriptor.Get(), POLLIN, 0};
    int ready = 0;
    do {
        ready = poll(&watched, 1, kPatienceMilliseconds);
    } while (ready < 0 && errno == EINTR);
    return ready == 1;
}

}  // namespace

void DesktopOpener::ReapEnded() {
    std::erase_if(running_, [](pid_t process) { return waitpid(process, nullptr, WNOHANG) != 0; });
}

Refusal DesktopOpener::Open(const std::string& target) {
    ReapEnded();
    std::string program = "xdg-open";
    std::string argument = target;
    char* arguments[] = {program.data(), argument.data(), nullptr};
    pid_t child = 0;
    const int error = posix_spawnp(&child, program.c_str(), nullptr, nullptr, arguments, environ);
    if (error != 0) {
        return Refusal("xdg-open could not be started: " + std::string(std::strerror(error)) +
                       "; install the package xdg-utils");
    }
    if (!EndsSoon(child)) {
        running_.push_back(child);
        return {};
    }
    int status = 0;
    if (waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0) return {};
    return Refusal("xdg-open found no program that opens it");
}

}  // namespace corvane
