#include "platform/linux/dhcp/DhcpControllers.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <utility>

#include <sys/socket.h>

namespace corvane {

namespace {

// Descriptors stay below kHookDescriptor.
constexpr std::size_t kMostConnections = 32;

}  // namespace

void DhcpControllers::AddWaits(std::vector<pollfd>& waits) {
    // Only here: everywhere else connections keep their places.
    std::erase_if(connections_, [](const Connection& connection) { return !connection.socket.IsOpen(); });
    // poll skips negative descriptors.
    const bool full = connections_.size() >= kMostConnections;
    waits.push_back({full ? -1 : listener_.Get(), POLLIN, 0});
    for (const Connection& connection : connections_) waits.push_back({connection.socket.Get(), POLLIN, 0});
}

void DhcpControllers::Take(std::span<const pollfd> waits, const std::optional<DhcpAnswer>& status) {
    for (std::size_t i = 0; i < connections_.size(); ++i) {
        if (waits[i + 1].revents != 0) Hear(connections_[i], status);
    }
    if (waits[0].revents != 0) Accept();
}

void DhcpControllers::Hear(Connection& connection, const std::optional<DhcpAnswer>& status) {
    std::array<char, 64> text{};
    const ssize_t size = recv(connection.socket.Get(), text.data(), text.size(), MSG_DONTWAIT);
    if (size < 0 && (errno == EAGAIN || errno == EINTR)) return;
    if (size <= 0) {
        connection = {};
        return;
    }
    connection.question.assign(text.data(), static_cast<std::size_t>(size));
    const bool waits = connection.question == kAskRenew || connection.question == kAskRelease ||
                       connection.question == kAskStop;
    if (waits) return;
    const bool asksStatus = connection.question == kAskStatus;
    if (asksStatus && !status) return;
    SendDhcpAnswer(connection.socket,
                   asksStatus ? *status : DhcpAnswer{Win32Error::kInvalidParameter, "unknown request"});
    connection = {};
}

void DhcpControllers::Accept() {
    while (connections_.size() < kMostConnections) {
        Descriptor socket = listener_.Accept();
        if (!socket.IsOpen()) return;
        connections_.push_back({std::move(socket), {}});
    }
}

bool DhcpControllers::Asked(const char* question) const {
    return std::any_of(connections_.begin(), connections_.end(),
                       [&](const Connection& connection) { return connection.question == question; });
}

void DhcpControllers::AnswerAll(const std::string& question, const DhcpAnswer& answer) {
    for (Connection& connection : connections_) {
        if (connection.question != question) continue;
        SendDhcpAnswer(connection.socket, answer);
        connection = {};
    }
}

}  // namespace corvane
