#include "platform/linux/kernel/LinkWatch.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>

#include <linux/if.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

namespace corvane {

LinkWatch::LinkWatch(std::uint32_t linkIndex)
    : linkIndex_(linkIndex),
      socket_(socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE)) {
    sockaddr_nl address{};
    address.nl_family = AF_NETLINK;
    address.nl_groups = RTMGRP_LINK;
    if (bind(socket_.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        socket_.Reset();
}

LinkWatch::Events LinkWatch::Take() {
    Events events;
    // A notification about one link is a few kilobytes at most; longer ones are cut, after their first part.
    alignas(nlmsghdr) std::array<char, 32768> buffer{};
    for (;;) {
        sockaddr_nl sender{};
        socklen_t senderSize = sizeof sender;
        const ssize_t size = recvfrom(socket_.Get(), buffer.data(), buffer.size(), 0,
                                      reinterpret_cast<sockaddr*>(&sender), &senderSize);
        if (size < 0 && errno == EINTR) continue;
        if (size < 0 && errno == ENOBUFS) {
            events = {true, true};
            continue;
        }
        if (size < 0) return events;
        // Only the kernel speaks for links; any process may send to this socket.
        if (sender.nl_pid != 0) continue;
        std::size_t at = 0;
        const auto end = static_cast<std::size_t>(size);
        while (end - at >= sizeof(nlmsghdr) + sizeof(ifinfomsg)) {
            nlmsghdr header{};
            std::memcpy(&header, buffer.data() + at, sizeof header);
            ifinfomsg link{};
            std::memcpy(&link, buffer.data() + at + sizeof header, sizeof link);
            const bool ours = (header.nlmsg_type == RTM_NEWLINK || header.nlmsg_type == RTM_DELLINK) &&
                              link.ifi_index == static_cast<int>(linkIndex_);
            if (ours) events.changed = true;
            if (ours && (link.ifi_flags & IFF_UP) == 0) events.wasDown = true;
            if (header.nlmsg_len < sizeof header || header.nlmsg_len > end - at) break;
            at += NLMSG_ALIGN(header.nlmsg_len);
            if (at > end) break;
        }
    }
}

}  // namespace corvane
