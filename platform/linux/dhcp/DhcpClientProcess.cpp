#include "platform/linux/dhcp/DhcpClientProcess.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>

#include <fcntl.h>
#include <poll.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/linux/dhcp/DhcpHook.h"
#include "platform/linux/system/ProcessDescriptor.h"

namespace corvane {

namespace {

/// The largest message that DecodeReport is given; EncodeReport's limits stay below it.
constexpr std::size_t kLargestReport = std::size_t{256} * 1024;

/// The child's part between fork and exec. Only calls that are safe there are made.
/// `parent` is what getppid(2) says while the supervisor lives.
[[noreturn]] void BecomeClient(char* const* arguments, char* const* environment, pid_t parent, int hookEnd,
                               int failureEnd, bool talk) {
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    // A parent that ended before the line above sends no signal any more.
    if (getppid() != parent) _exit(127);
    const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
    bool ready = nothing >= 0 && chdir("/") == 0 && dup2(nothing, STDIN_FILENO) == STDIN_FILENO;
    if (!talk) ready = ready && dup2(nothing, STDOUT_FILENO) >= 0 && dup2(nothing, STDERR_FILENO) >= 0;
    if (hookEnd == kHookDescriptor) {
        ready = ready && fcntl(hookEnd, F_SETFD, 0) == 0;
    } else {
        ready = ready && dup2(hookEnd, kHookDescriptor) == kHookDescriptor;
    }
    for (int number = 1; number < NSIG; ++number) signal(number, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    if (ready) execve(arguments[0], arguments, environment);
    const int error = errno;
    [[maybe_unused]] const ssize_t told = write(failureEnd, &error, sizeof error);
    _exit(127);
}

/// The first process of a client's namespace: collects what is orphaned there and ends with the supervisor.
/// It keeps nothing else open.
[[noreturn]] void BecomeKeeper(int pipeEnd) {
    signal(SIGCHLD, SIG_IGN);
    dup2(pipeEnd, STDIN_FILENO);
    close_range(STDIN_FILENO + 1, ~0U, 0);
    char ignored = 0;
    while (read(STDIN_FILENO, &ignored, 1) < 0 && errno == EINTR) {
    }
    _exit(0);
}

/// Waits for a child; its wait status.
int Await(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return status;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

}  // namespace

DhcpClientProcess::~DhcpClientProcess() {
    if (Running()) End(0);
}

Refusal DhcpClientProcess::Start(const std::vector<std::string>& arguments, bool talk) {
    const auto refused = [](const std::string& what, int error) {
        return Refusal(what + ": " + std::strerror(error));
    };
    std::array<int, 2> hookEnds{};
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, hookEnds.data()) != 0) {
        return refused("no socket for the DHCP client's hook", errno);
    }
    Descriptor ownEnd(hookEnds[0]);
    const Descriptor clientEnd(hookEnds[1]);
    std::array<int, 2> failureEnds{};
    if (pipe2(failureEnds.data(), O_CLOEXEC) != 0) return refused("no pipe to the DHCP client", errno);
    const Descriptor failureReading(failureEnds[0]);
    Descriptor failureWriting(failureEnds[1]);

    std::vector<std::string> argumentTexts = arguments;
    std::vector<std::string> environmentTexts = {
        "PATH=/usr/sbin:/usr/bin:/sbin:/bin",
        std::string(kHookVariable) + "=" + std::to_string(kHookDescriptor)};
    const std::vector<char*> argumentPointers = Pointers(argumentTexts);
    const std::vector<char*> environmentPointers = Pointers(environmentTexts);
    MakeKeeper();
    // A parent outside the namespace is process 0 inside.
    const pid_t parent = keeper_ > 0 ? 0 : getpid();
    const pid_t child = fork();
    const int forkError = errno;
    if (child == 0) {
        BecomeClient(argumentPointers.data(), environmentPointers.data(), parent, clientEnd.Get(),
                     failureWriting.Get(), talk);
    }
    LeaveNamespace();
    process_ = child;
    if (child < 0) {
        Clear();
        return refused("cannot start the DHCP client", forkError);
    }
    failureWriting.Reset();
    int error = 0;
    ssize_t told = 0;
    do {
        told = read(failureReading.Get(), &error, sizeof error);
    } while (told < 0 && errno == EINTR);
    Descriptor end(OpenProcess(child));
    if (told > 0 || !end.IsOpen()) {
        if (told <= 0) error = errno;
        Clear();
        return refused("cannot run " + arguments[0], error);
    }
    processEnd_ = std::move(end);
    hookSocket_ = std::move(ownEnd);
    return {};
}

void DhcpClientProcess::MakeKeeper() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) return;
    const Descriptor reading(ends[0]);
    keeperPipe_.Reset(ends[1]);
    // Needs CAP_SYS_ADMIN, which a container may lack.
    if (unshare(CLONE_NEWPID) != 0) {
        keeperPipe_.Reset();
        return;
    }
    keeper_ = fork();
    if (keeper_ == 0) BecomeKeeper(reading.Get());
    if (keeper_ < 0) {
        keeperPipe_.Reset();
        LeaveNamespace();
    }
}

void DhcpClientProcess::LeaveNamespace() const {
    const Descriptor self(OpenProcess(getpid()));
    setns(self.Get(), CLONE_NEWPID);
}

int DhcpClientProcess::Clear() {
    keeperPipe_.Reset();
    if (keeper_ > 0) kill(keeper_, SIGKILL);
    int status = 0;
    if (process_ > 0) {
        kill(process_, SIGKILL);
        status = Await(process_);
    }
    // The keeper is not gone before all others are, and the client not before it was waited for.
    if (keeper_ > 0) Await(keeper_);
    keeper_ = -1;
    process_ = -1;
    processEnd_.Reset();
    hookSocket_.Reset();
    return status;
}

void DhcpClientProcess::Signal(int number) const {
    if (Running()) SignalProcess(processEnd_.Get(), number);
}

std::optional<std::string> DhcpClientProcess::Collect() {
    if (!Running()) return std::nullopt;
    siginfo_t end{};
    const int result = waitid(P_PID, static_cast<id_t>(process_), &end, WEXITED | WNOHANG | WNOWAIT);
    if (result != 0 || end.si_pid == 0) return std::nullopt;
    // The status of a process that has ended is not changed by a signal to it.
    const int status = Clear();
    return WIFSIGNALED(status) ? "signal " + std::to_string(WTERMSIG(status))
                               : "exit code " + std::to_string(WEXITSTATUS(status));
}

void DhcpClientProcess::End(int milliseconds) {
    if (!Running()) return;
    hookSocket_.Reset();
    Signal(SIGTERM);
    pollfd wait{processEnd_.Get(), POLLIN, 0};
    while (milliseconds > 0 && poll(&wait, 1, milliseconds) < 0 && errno == EINTR) {
    }
    Clear();
}

bool DhcpClientProcess::TakeReport(HookReport& report) {
    if (!hookSocket_.IsOpen()) return false;
    std::string message(kLargestReport, '\0');
    ssize_t size = 0;
    do {
        size = recv(hookSocket_.Get(), message.data(), message.size(), MSG_DONTWAIT);
    } while (size < 0 && errno == EINTR);
    if (size == 0 || (size < 0 && errno != EAGAIN)) {
        // No process has the other end any longer.
        hookSocket_.Reset();
        return false;
    }
    if (size < 0) return false;
    std::optional<HookReport> decoded =
        DecodeReport(std::string_view(message).substr(0, static_cast<std::size_t>(size)));
    if (!decoded) return false;
    report = std::move(*decoded);
    return true;
}

void DhcpClientProcess::Answer(const HookReport& report, bool usable) const {
    if (!hookSocket_.IsOpen()) return;
    const std::string text = report.token + (usable ? " 0" : " 1");
    // A hook that is gone needs no answer.
    send(hookSocket_.Get(), text.data(), text.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
}

}  // namespace corvane
