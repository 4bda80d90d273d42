#include "platform/linux/dhcp/DhcpSocket.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include "platform/linux/dhcp/DhcpControl.h"
#include "platform/linux/system/FileLock.h"
#include "platform/linux/system/ProcessDescriptor.h"
#include "platform/linux/system/RuntimeFolder.h"

namespace corvane {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kOpenPatience{10};

/// False when the path is too long for a socket's address.
bool SocketAddress(const std::string& path, sockaddr_un& address) {
    address = {};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) return false;
    std::memcpy(address.sun_path, path.data(), path.size());
    return true;
}

/// Takes the lock of the run-time folder, for the time that it takes to look at the socket's file and to
/// change it. It is a file, as another user could hold a lock on the folder itself. False, with errno set,
/// when there is no folder or its lock is not to be had before `end`.
bool LockFolder(const std::string& folder, Clock::time_point end, FileLock& lock) {
    const auto patience = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
    errno = lock.Take(folder + "/lock", patience);
    return errno == 0;
}

/// Binds under a mask that leaves the owner alone the right to connect, from the first moment on.
int BindPrivately(int socket, const sockaddr_un& address) {
    const mode_t former = umask(0177);
    const int result = bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    const int error = errno;
    umask(former);
    errno = error;
    return result;
}

}  // namespace

std::string DhcpSocketPath(std::uint32_t linkIndex) {
    std::uint64_t cookie = 0;
    const Descriptor socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    socklen_t size = sizeof cookie;
    // Kernels before 5.14 cannot tell namespaces apart: 0 for all of them.
    if (getsockopt(socket.Get(), SOL_SOCKET, SO_NETNS_COOKIE, &cookie, &size) != 0) cookie = 0;
    return RuntimeFolder() + "/dhcp-" + std::to_string(cookie) + "-" + std::to_string(linkIndex) + ".socket";
}

DhcpCaller::Outcome DhcpCaller::Connect(std::uint32_t linkIndex) {
    sockaddr_un address{};
    if (!SocketAddress(DhcpSocketPath(linkIndex), address)) return Outcome::kNobody;
    Descriptor socket(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    // connect(2) waits that long for a place in a full queue.
    const timeval patience{kDhcpStatusMilliseconds / 1000, 0};
    setsockopt(socket.Get(), SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
    while (connect(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        if (errno == EINTR) continue;
        if (errno == EACCES || errno == EPERM) return Outcome::kDenied;
        return errno == EAGAIN ? Outcome::kLate : Outcome::kNobody;
    }
    ucred peer{};
    socklen_t size = sizeof peer;
    // A process of another process namespace is number 0 here.
    const bool known = getsockopt(socket.Get(), SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.pid > 0;
    process_.Reset(known ? OpenProcess(peer.pid) : -1);
    socket_ = std::move(socket);
    return Outcome::kAnswered;
}

DhcpCaller::Outcome DhcpCaller::Ask(const std::string& question, int milliseconds, DhcpAnswer& answer) {
    if (send(socket_.Get(), question.data(), question.size(), MSG_NOSIGNAL) < 0) return Outcome::kNobody;
    const Clock::time_point end = Clock::now() + std::chrono::milliseconds(milliseconds);
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        if (left <= 0) return Outcome::kLate;
        pollfd wait{socket_.Get(), POLLIN, 0};
        if (poll(&wait, 1, static_cast<int>(left)) <= 0) continue;
        std::array<char, 1024> text{};
        const ssize_t size = recv(socket_.Get(), text.data(), text.size(), MSG_DONTWAIT);
        if (size < 0 && (errno == EAGAIN || errno == EINTR)) continue;
        if (size <= 0) return Outcome::kNobody;
        std::uint32_t number = 0;
        const char* const last = text.data() + size;
        const auto [rest, error] = std::from_chars(text.data(), last, number);
        if (error != std::errc()) return Outcome::kNobody;
        answer.code = static_cast<Win32Error>(number);
        answer.words.assign(rest == last ? rest : rest + 1, last);
        return Outcome::kAnswered;
    }
}

DhcpListener::Opening DhcpListener::Open(std::uint32_t linkIndex) {
    const std::string folder = RuntimeFolder();
    const std::string path = DhcpSocketPath(linkIndex);
    const auto fail = [](const std::string& what, const std::string& reason) {
        return Opening{Outcome::kFailed, what + ": " + reason};
    };
    sockaddr_un address{};
    if (!SocketAddress(path, address))
        return fail(path, "the path is too long for a socket (see NICX_RUNTIME)");
    std::error_code error;
    if (std::filesystem::create_directories(folder, error)) chmod(folder.c_str(), 0755);
    if (error) return fail(folder, error.message());
    Descriptor socket(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!socket.IsOpen()) return fail("no socket", std::strerror(errno));

    const Clock::time_point end = Clock::now() + kOpenPatience;
    while (Clock::now() < end) {
        DhcpCaller former;
        DhcpCaller::Outcome found = DhcpCaller::Outcome::kNobody;
        {
            FileLock lock;
            if (!LockFolder(folder, end, lock)) return fail(folder, std::strerror(errno));
            found = former.Connect(linkIndex);
            if (found == DhcpCaller::Outcome::kNobody) {
                unlink(path.c_str());
                if (BindPrivately(socket.Get(), address) != 0) return fail(path, std::strerror(errno));
                if (listen(socket.Get(), 64) != 0) {
                    const std::string reason = std::strerror(errno);
                    unlink(path.c_str());
                    return fail(path, reason);
                }
                socket_ = std::move(socket);
                path_ = path;
                return {Outcome::kListening, {}};
            }
        }
        // Asked without the lock: a supervisor that is ending needs it to remove its file.
        DhcpAnswer answer;
        if (found == DhcpCaller::Outcome::kAnswered)
            found = former.Ask(kAskStatus, kDhcpStatusMilliseconds, answer);
        if (found == DhcpCaller::Outcome::kAnswered) return {Outcome::kAnotherRuns, {}};
        if (found != DhcpCaller::Outcome::kNobody) break;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return fail(path, "another process has this socket and does not answer");
}

void DhcpListener::Close() {
    if (!socket_.IsOpen()) return;
    FileLock lock;
    // Without the lock another supervisor may put its socket there in between; then the file is left, and is
    // recognised as nobody's.
    if (LockFolder(RuntimeFolder(), Clock::now() + std::chrono::seconds(2), lock)) unlink(path_.c_str());
    socket_.Reset();
}

Descriptor DhcpListener::Accept() const {
    return Descriptor(accept4(socket_.Get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
}

void SendDhcpAnswer(const Descriptor& connection, const DhcpAnswer& answer) {
    const std::string text = std::to_string(Number(answer.code)) + " " + answer.words.substr(0, 1000);
    // A controller that is gone needs no answer.
    send(connection.Get(), text.data(), text.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
}

}  // namespace corvane
