#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Address.h"
#include "platform/linux/system/HeldMessage.h"

/// The kernel's links, IPv4 addresses and routes through rtnetlink (rtnetlink(7)). One dump each; requests
/// carry the kernel's own words back.
namespace corvane {

/// What the kernel answered. errnoValue 0 = success. `text` is the extended-acknowledgement message, empty
/// when the kernel gave none.
struct [[nodiscard]] KernelAnswer {
    int errnoValue = 0;
    std::string text;

    [[nodiscard]] bool Ok() const { return errnoValue == 0; }
    /// The kernel's words, or else the C library's for the number; both when the kernel gave some. Empty on
    /// success.
    [[nodiscard]] std::string Words() const;
};

/// One network link (struct ifinfomsg and its attributes, linux/if_link.h).
struct KernelLink {
    std::uint32_t index = 0;
    std::string name;
    std::uint16_t arpType = 0;  ///< ARPHRD_* (linux/if_arp.h): 1 Ethernet, 772 loopback.
    std::uint32_t flags = 0;    ///< IFF_* (linux/if.h).
    std::string kind;           ///< IFLA_INFO_KIND: "veth", "bridge", ...; empty for real devices.
    bool hasAddress = false;    ///< A six-byte hardware address is present.
    MacBytes address{};
    std::optional<MacBytes> permanent;  ///< IFLA_PERM_ADDRESS; never all zeros.
    std::uint8_t operState = 0;         ///< IF_OPER_* (linux/if.h).
    std::uint32_t master = 0;           ///< IFLA_MASTER, 0 when none.
    std::uint64_t rxBytes = 0;
    std::uint64_t txBytes = 0;

    [[nodiscard]] bool Up() const;       ///< IFF_UP: administratively up.
    [[nodiscard]] bool Running() const;  ///< IFF_RUNNING: up and with carrier.
};

inline constexpr std::uint32_t kForever = 0xFFFFFFFFU;

/// One IPv4 address of a link (struct ifaddrmsg).
struct KernelAddress {
    std::uint32_t index = 0;
    Ipv4Bytes address{};
    std::uint8_t prefix = 0;
    bool secondary = false;                 ///< IFA_F_SECONDARY.
    std::uint32_t validSeconds = kForever;  ///< Lifetime left; kForever = permanent.
    std::uint32_t preferredSeconds = kForever;

    bool operator==(const KernelAddress&) const = default;
};

/// Equal but for lifetimes and rank.
[[nodiscard]] bool SamePlace(const KernelAddress& one, const KernelAddress& other);

/// One IPv4 route of the main table; a multipath route is one record per next hop.
struct KernelRoute {
    Ipv4Bytes destination{};
    std::uint8_t prefix = 0;
    std::optional<Ipv4Bytes> gateway;
    std::uint32_t index = 0;    ///< Output link.
    std::uint32_t metric = 0;   ///< RTA_PRIORITY.
    std::uint8_t protocol = 4;  ///< RTPROT_* (linux/rtnetlink.h): 2 kernel, 3 boot, 4 static, 16 DHCP.
    std::uint8_t scope = 0;     ///< RT_SCOPE_*: 0 universe, 253 link.
    std::uint8_t type = 1;      ///< RTN_*: 1 unicast.

    bool operator==(const KernelRoute&) const = default;
};

/// True for what SaveLinkState kept of an IPv4 route.
[[nodiscard]] bool IsIpv4Route(const HeldMessage& message);

class NetlinkSocket;
class NetlinkTransport;

/// A request socket of the namespace that the process is in. Strict checking and extended acknowledgements
/// on, 64 kB receive buffer; a dump that the kernel marks as interrupted is repeated, up to ten times, and
/// then EAGAIN. When no socket could be had, every call gives the reason. Not thread-safe.
class Netlink {
 public:
    Netlink();
    /// Over `transport` instead of a socket; see there.
    explicit Netlink(std::unique_ptr<NetlinkTransport> transport);
    ~Netlink();
    Netlink(const Netlink&) = delete;
    Netlink& operator=(const Netlink&) = delete;

    // Dumps replace their out-list; on failure it is empty.
    KernelAnswer DumpLinks(std::vector<KernelLink>& links);
    KernelAnswer DumpAddresses(std::vector<KernelAddress>& addresses);
    KernelAnswer DumpRoutes(std::vector<KernelRoute>& routes);

    /// One link by index or by name; ENODEV when there is none.
    KernelAnswer GetLink(std::uint32_t index, KernelLink& link);
    KernelAnswer GetLinkByName(const std::string& name, KernelLink& link);

    // Changes; ENODEV for an unknown link, EPERM without CAP_NET_ADMIN.

    /// EADDRNOTAVAIL for a multicast or zero address, EADDRINUSE when a macvlan's lower link or a sibling has
    /// it, EOPNOTSUPP for a link without one. The kernel drops the link's neighbours, permanent ones
    /// included.
    KernelAnswer SetLinkAddress(std::uint32_t index, const MacBytes& address);
    /// EADDRINUSE for a macvlan that comes up with the address of a sibling that is up. Going down loses what
    /// SaveLinkState saves, and no event tells of the routes that go.
    KernelAnswer SetLinkUp(std::uint32_t index, bool up);

    /// Adds an address (EEXIST when it is there already with this prefix); with `replace` an existing one
    /// gets the new lifetimes instead. The broadcast address is set from the prefix (RFC 919) for prefixes up
    /// to 30.
    KernelAnswer AddAddress(const KernelAddress& address, bool replace);
    /// Takes address and prefix together; EADDRNOTAVAIL when the link has no such pair, or has it with a
    /// peer's address on the other end. The kernel removes the secondary addresses of a primary one with it.
    KernelAnswer DeleteAddress(const KernelAddress& address);

    /// Adds a route beside routes of the same destination and metric (NLM_F_APPEND); EEXIST for the very same
    /// route. ENETUNREACH when no route leads to the gateway. Every field is sent as it is, the scope too.
    KernelAnswer AddRoute(const KernelRoute& route);
    /// Removes the route that agrees in every field; ESRCH when there is none.
    KernelAnswer DeleteRoute(const KernelRoute& route);

    /// What link `index` loses when it goes down and does not get back by itself: its main-table IPv4 routes
    /// other than kernel-made, DHCP-made and default ones; its static global IPv6 addresses; its static IPv6
    /// routes; its permanent neighbours (both families). A multipath route counts when all its next hops are
    /// on the link: others stay and heal by themselves. The order is the one to restore in: a route comes
    /// after those that its gateway may need. On failure the list is empty.
    KernelAnswer SaveLinkState(std::uint32_t index, std::vector<HeldMessage>& messages);
    /// Sends one saved message back; what is there already is success. EINVAL for a type that SaveLinkState
    /// does not give and for a payload too short to be one.
    KernelAnswer Restore(const HeldMessage& message);

 private:
    std::unique_ptr<NetlinkSocket> socket_;
};

}  // namespace corvane
