#pragma once

#include <cstdint>
#include <optional>

#include "platform/linux/kernel/Netlink.h"
#include "platform/linux/kernel/NetlinkParse.h"

/// Which dumped objects a link loses when it goes down, and how their messages must be changed before the
/// kernel takes them back. Pure functions over the payload of a dumped message; nullopt for what is not to be
/// saved.
namespace corvane {

/// A route of the main table and `family` (AF_INET or AF_INET6) whose next hops are all on link `index`. Not
/// saved are the kernel's own (RTPROT_KERNEL, RTPROT_REDIRECT), for IPv4 DHCP's and default ones, for IPv6
/// those from router advertisements (RTPROT_RA). State bits (RTNH_F_DEAD, RTNH_F_LINKDOWN, ...), which the
/// kernel refuses in a request, and the cache record are taken out; an expiry in it becomes RTA_EXPIRES. A
/// route over a next hop object, which is gone for good when the link goes down, becomes one over the same
/// next hops by themselves.
[[nodiscard]] std::optional<HeldMessage> SavedRoute(ByteSpan payload, std::uint8_t family,
                                                    std::uint32_t index);

/// A permanent IPv6 address of link `index` with global scope that was set by hand: not a temporary one (RFC
/// 8981) and not one that the kernel made. State flags are taken out, lifetimes are kept.
[[nodiscard]] std::optional<HeldMessage> SavedAddress(ByteSpan payload, std::uint32_t index);

/// A permanent neighbour of `family` and link `index` that is no proxy entry.
[[nodiscard]] std::optional<HeldMessage> SavedNeighbour(ByteSpan payload, std::uint8_t family,
                                                        std::uint32_t index);

/// Whether a saved route leads over a gateway, so that another route must be there before it.
[[nodiscard]] bool HasGateway(const HeldMessage& route);

/// Size of the fixed header that a payload of this type starts with; 0 for a type that is never saved.
[[nodiscard]] std::size_t HeaderSize(std::uint16_t type);

}  // namespace corvane
