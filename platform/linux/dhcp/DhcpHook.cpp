#include "platform/linux/dhcp/DhcpHook.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <string_view>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "platform/linux/dhcp/DhcpLease.h"

namespace corvane {

namespace {

constexpr std::chrono::seconds kPatience{30};

/// The socket's number, or -1 when the text names none.
int HookSocket(const std::string& text) {
    int descriptor = -1;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), descriptor);
    if (error != std::errc() || end != text.data() + text.size()) return -1;
    int type = 0;
    socklen_t size = sizeof type;
    const bool fits =
        getsockopt(descriptor, SOL_SOCKET, SO_TYPE, &type, &size) == 0 && type == SOCK_SEQPACKET;
    return fits ? descriptor : -1;
}

}  // namespace

int RunHook(const std::string& descriptorText, const std::string& event, const char* const* environment) {
    const int socket = HookSocket(descriptorText);
    if (socket < 0) return 1;
    const std::string token = std::to_string(getpid());
    const std::string message = EncodeReport(token, event, environment);
    while (send(socket, message.data(), message.size(), MSG_NOSIGNAL) < 0) {
        if (errno != EINTR) return 1;
    }

    // The answer to a hook that was killed while it waited may come first.
    const auto end = std::chrono::steady_clock::now() + kPatience;
    for (;;) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        if (left.count() <= 0) return 1;
        pollfd wait{socket, POLLIN, 0};
        const int ready = poll(&wait, 1, static_cast<int>(left.count()));
        if (ready < 0 && errno != EINTR) return 1;
        if (ready <= 0) continue;
        std::array<char, 64> answer{};
        const ssize_t size = recv(socket, answer.data(), answer.size(), MSG_DONTWAIT);
        if (size < 0 && (errno == EINTR || errno == EAGAIN)) continue;
        if (size <= 0) return 1;
        const std::string_view text(answer.data(), static_cast<std::size_t>(size));
        if (text == token + " 0") return 0;
        if (text == token + " 1") return 1;
    }
}

}  // namespace corvane
