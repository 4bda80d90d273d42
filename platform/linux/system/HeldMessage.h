#pragma once

#include <cstdint>
#include <vector>

namespace corvane {

/// A netlink message as the kernel dumped it, that can be sent back to it: what a link loses when it goes
/// down, kept by the store until the link is up again.
struct HeldMessage {
    std::uint16_t type = 0;             ///< RTM_NEWROUTE, RTM_NEWADDR or RTM_NEWNEIGH (linux/rtnetlink.h).
    std::vector<std::uint8_t> payload;  ///< Everything after struct nlmsghdr.

    bool operator==(const HeldMessage&) const = default;
};

}  // namespace corvane
