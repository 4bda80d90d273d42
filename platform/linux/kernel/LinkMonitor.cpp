#include "platform/linux/kernel/LinkMonitor.h"

#include <array>
#include <cerrno>
#include <cstddef>

#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>
#include <unistd.h>

namespace corvane {
namespace {

/// Some hundred events: the kernel's default of about 200 kB overflows when many links change at once.
constexpr int kReceiveBufferBytes = 1 << 20;

/// SO_RCVBUFFORCE goes past net.core.rmem_max and needs CAP_NET_ADMIN; without it as much as is allowed.
void EnlargeBuffer(int descriptor) {
    const int size = kReceiveBufferBytes;
    if (setsockopt(descriptor, SOL_SOCKET, SO_RCVBUFFORCE, &size, sizeof size) != 0) {
        (void)setsockopt(descriptor, SOL_SOCKET, SO_RCVBUF, &size, sizeof size);
    }
}

}  // namespace

LinkMonitor::LinkMonitor()
    : descriptor_(socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE)) {
    if (descriptor_ < 0) return;
    EnlargeBuffer(descriptor_);
    sockaddr_nl address{};
    address.nl_family = AF_NETLINK;
    address.nl_groups = RTMGRP_LINK | RTMGRP_IPV4_IFADDR | RTMGRP_IPV4_ROUTE;
    if (bind(descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        close(descriptor_);
        descriptor_ = -1;
    }
}

LinkMonitor::~LinkMonitor() {
    if (descriptor_ >= 0) close(descriptor_);
}

bool LinkMonitor::TakeChanges() {
    if (descriptor_ < 0) return true;
    // The content does not matter, so a byte of each event is enough; the kernel drops the rest of it.
    std::array<std::byte, 1> start{};
    bool changed = false;
    for (;;) {
        // ENOBUFS: events were lost; the ones still queued follow.
        if (recv(descriptor_, start.data(), start.size(), 0) >= 0 || errno == ENOBUFS) {
            changed = true;
        } else if (errno == EAGAIN) {
            return changed;
        } else if (errno != EINTR) {
            return true;
        }
    }
}

}  // namespace corvane
