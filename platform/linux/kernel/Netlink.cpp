#include "platform/linux/kernel/Netlink.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <system_error>
#include <utility>

#include <linux/if.h>
#include <linux/if_addr.h>
#include <linux/if_link.h>
#include <linux/neighbour.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include "platform/linux/kernel/NetlinkParse.h"
#include "platform/linux/kernel/NetlinkRestore.h"
#include "platform/linux/kernel/NetlinkSocket.h"

namespace corvane {
namespace {

/// Indexes are positive ints to the kernel; 0 would mean "whatever matches" to it.
bool IsIndex(std::uint32_t index) {
    return index != 0 && index <= static_cast<std::uint32_t>(std::numeric_limits<int>::max());
}

ifinfomsg LinkHeader(std::uint32_t index) {
    ifinfomsg header{};
    header.ifi_index = static_cast<int>(index);
    return header;
}

KernelAnswer TakeLink(NetlinkSocket& socket, NetlinkRequest& request, KernelLink& link) {
    bool parsed = false;
    KernelAnswer answer = socket.Query(request, [&](std::uint16_t type, ByteSpan payload) {
        KernelLink found;
        parsed = type == RTM_NEWLINK && ParseLink(payload, found);
        if (parsed) link = std::move(found);
    });
    if (answer.Ok() && !parsed) answer.errnoValue = EBADMSG;
    return answer;
}

/// RFC 919: all host bits set.
Ipv4Bytes BroadcastOf(const Ipv4Bytes& address, std::uint8_t prefix) {
    Ipv4Bytes broadcast = address;
    for (unsigned bit = prefix; bit < 32; ++bit) {
        broadcast[bit / 8] = static_cast<std::uint8_t>(broadcast[bit / 8] | (0x80U >> (bit % 8)));
    }
    return broadcast;
}

/// Prefixes above this have no broadcast address: both addresses of a /31 are hosts (RFC 3021).
constexpr std::uint8_t kLongestBroadcastPrefix = 30;

NetlinkRequest AddressRequest(std::uint16_t type, std::uint16_t flags, const KernelAddress& address) {
    ifaddrmsg header{};
    header.ifa_family = AF_INET;
    header.ifa_prefixlen = address.prefix;
    header.ifa_scope = address.address[0] == 127 ? RT_SCOPE_HOST : RT_SCOPE_UNIVERSE;
    header.ifa_index = address.index;
    NetlinkRequest request(type, flags, header);
    request.Put(IFA_LOCAL, address.address);
    request.Put(IFA_ADDRESS, address.address);
    return request;
}

NetlinkRequest RouteRequest(std::uint16_t type, std::uint16_t flags, const KernelRoute& route) {
    rtmsg header{};
    header.rtm_family = AF_INET;
    header.rtm_dst_len = route.prefix;
    header.rtm_table = RT_TABLE_MAIN;
    header.rtm_protocol = route.protocol;
    header.rtm_scope = route.scope;
    header.rtm_type = route.type;
    NetlinkRequest request(type, flags, header);
    if (route.prefix != 0) request.Put(RTA_DST, route.destination);
    if (route.gateway) request.Put(RTA_GATEWAY, *route.gateway);
    if (route.index != 0) request.Put(RTA_OIF, route.index);
    if (route.metric != 0) request.Put(RTA_PRIORITY, route.metric);
    return request;
}

/// The kernel's filter needs a table to exist, and a namespace without a route has none.
bool MeansNoTable(const KernelAnswer& answer) { return answer.errnoValue == ENOENT; }

/// What a kernel without the family says.
bool MeansNoFamily(const KernelAnswer& answer) {
    return answer.errnoValue == EOPNOTSUPP || answer.errnoValue == EAFNOSUPPORT;
}

NetlinkRequest MainTableRequest(std::uint8_t family) {
    rtmsg header{};
    header.rtm_family = family;
    NetlinkRequest request(RTM_GETROUTE, NLM_F_DUMP, header);
    request.Put(RTA_TABLE, static_cast<std::uint32_t>(RT_TABLE_MAIN));
    return request;
}

/// Collects what `choose` makes of a dump's payloads; nothing when the kernel has no such table or family.
template <class Choose>
KernelAnswer Collect(NetlinkSocket& socket, NetlinkRequest request, std::vector<HeldMessage>& found,
                     Choose choose) {
    KernelAnswer answer = socket.Dump(
        request, [&found] { found.clear(); },
        [&](std::uint16_t, ByteSpan payload) {
            if (std::optional<HeldMessage> message = choose(payload)) found.push_back(std::move(*message));
        });
    if (MeansNoTable(answer) || MeansNoFamily(answer)) {
        found.clear();
        return {};
    }
    return answer;
}

KernelAnswer CollectRoutes(NetlinkSocket& socket, std::uint8_t family, std::uint32_t index,
                           std::vector<HeldMessage>& found) {
    return Collect(socket, MainTableRequest(family), found,
                   [=](ByteSpan payload) { return SavedRoute(payload, family, index); });
}

KernelAnswer CollectAddresses(NetlinkSocket& socket, std::uint32_t index, std::vector<HeldMessage>& found) {
    ifaddrmsg header{};
    header.ifa_family = AF_INET6;
    return Collect(socket, NetlinkRequest(RTM_GETADDR, NLM_F_DUMP, header), found,
                   [=](ByteSpan payload) { return SavedAddress(payload, index); });
}

KernelAnswer CollectNeighbours(NetlinkSocket& socket, std::uint8_t family, std::uint32_t index,
                               std::vector<HeldMessage>& found) {
    ndmsg header{};
    header.ndm_family = family;
    NetlinkRequest request(RTM_GETNEIGH, NLM_F_DUMP, header);
    request.Put(NDA_IFINDEX, index);
    return Collect(socket, std::move(request), found,
                   [=](ByteSpan payload) { return SavedNeighbour(payload, family, index); });
}

}  // namespace

std::string KernelAnswer::Words() const {
    if (Ok()) return {};
    const std::string meaning = std::generic_category().message(errnoValue);
    return text.empty() ? meaning : meaning + ": " + text;
}

bool KernelLink::Up() const { return (flags & IFF_UP) != 0; }

bool KernelLink::Running() const { return (flags & IFF_RUNNING) != 0; }

bool SamePlace(const KernelAddress& one, const KernelAddress& other) {
    return one.index == other.index && one.address == other.address && one.prefix == other.prefix;
}

Netlink::Netlink() : socket_(std::make_unique<NetlinkSocket>()) {}

Netlink::Netlink(std::unique_ptr<NetlinkTransport> transport)
    : socket_(std::make_unique<NetlinkSocket>(std::move(transport))) {}

Netlink::~Netlink() = default;

KernelAnswer Netlink::DumpLinks(std::vector<KernelLink>& links) {
    NetlinkRequest request(RTM_GETLINK, NLM_F_DUMP, ifinfomsg{});
    KernelAnswer answer = socket_->Dump(
        request, [&links] { links.clear(); },
        [&links](std::uint16_t, ByteSpan payload) {
            if (!ParseLink(payload, links.emplace_back())) links.pop_back();
        });
    if (!answer.Ok()) links.clear();
    return answer;
}

KernelAnswer Netlink::DumpAddresses(std::vector<KernelAddress>& addresses) {
    ifaddrmsg header{};
    header.ifa_family = AF_INET;
    NetlinkRequest request(RTM_GETADDR, NLM_F_DUMP, header);
    KernelAnswer answer = socket_->Dump(
        request, [&addresses] { addresses.clear(); },
        [&addresses](std::uint16_t, ByteSpan payload) {
            if (!ParseAddress(payload, addresses.emplace_back())) addresses.pop_back();
        });
    if (!answer.Ok()) addresses.clear();
    return answer;
}

KernelAnswer Netlink::DumpRoutes(std::vector<KernelRoute>& routes) {
    NetlinkRequest request = MainTableRequest(AF_INET);
    KernelAnswer answer = socket_->Dump(
        request, [&routes] { routes.clear(); },
        [&routes](std::uint16_t, ByteSpan payload) { ParseRoute(payload, routes); });
    if (MeansNoTable(answer)) answer = {};
    if (!answer.Ok()) routes.clear();
    return answer;
}

KernelAnswer Netlink::GetLink(std::uint32_t index, KernelLink& link) {
    if (!IsIndex(index)) return {ENODEV, ""};
    NetlinkRequest request(RTM_GETLINK, 0, LinkHeader(index));
    return TakeLink(*socket_, request, link);
}

KernelAnswer Netlink::GetLinkByName(const std::string& name, KernelLink& link) {
    if (name.empty() || name.size() >= IFNAMSIZ) return {ENODEV, ""};
    NetlinkRequest request(RTM_GETLINK, 0, ifinfomsg{});
    request.Put(IFLA_IFNAME, ByteSpan(reinterpret_cast<const std::uint8_t*>(name.c_str()), name.size() + 1));
    return TakeLink(*socket_, request, link);
}

KernelAnswer Netlink::SetLinkAddress(std::uint32_t index, const MacBytes& address) {
    if (!IsIndex(index)) return {ENODEV, ""};
    NetlinkRequest request(RTM_NEWLINK, NLM_F_ACK, LinkHeader(index));
    request.Put(IFLA_ADDRESS, address);
    return socket_->Execute(request);
}

KernelAnswer Netlink::SetLinkUp(std::uint32_t index, bool up) {
    if (!IsIndex(index)) return {ENODEV, ""};
    ifinfomsg header = LinkHeader(index);
    header.ifi_change = IFF_UP;
    header.ifi_flags = up ? IFF_UP : 0;
    NetlinkRequest request(RTM_NEWLINK, NLM_F_ACK, header);
    return socket_->Execute(request);
}

KernelAnswer Netlink::AddAddress(const KernelAddress& address, bool replace) {
    const int mode = NLM_F_ACK | NLM_F_CREATE | (replace ? NLM_F_REPLACE : NLM_F_EXCL);
    NetlinkRequest request = AddressRequest(RTM_NEWADDR, static_cast<std::uint16_t>(mode), address);
    if (address.prefix <= kLongestBroadcastPrefix) {
        request.Put(IFA_BROADCAST, BroadcastOf(address.address, address.prefix));
    }
    if (address.validSeconds != kForever || address.preferredSeconds != kForever) {
        ifa_cacheinfo lifetimes{};
        lifetimes.ifa_valid = address.validSeconds;
        lifetimes.ifa_prefered = std::min(address.preferredSeconds, address.validSeconds);
        request.Put(IFA_CACHEINFO,
                    ByteSpan(reinterpret_cast<const std::uint8_t*>(&lifetimes), sizeof lifetimes));
    }
    return socket_->Execute(request);
}

KernelAnswer Netlink::DeleteAddress(const KernelAddress& address) {
    NetlinkRequest request = AddressRequest(RTM_DELADDR, NLM_F_ACK, address);
    return socket_->Execute(request);
}

KernelAnswer Netlink::AddRoute(const KernelRoute& route) {
    NetlinkRequest request = RouteRequest(RTM_NEWROUTE, NLM_F_ACK | NLM_F_CREATE | NLM_F_APPEND, route);
    return socket_->Execute(request);
}

KernelAnswer Netlink::DeleteRoute(const KernelRoute& route) {
    NetlinkRequest request = RouteRequest(RTM_DELROUTE, NLM_F_ACK, route);
    return socket_->Execute(request);
}

bool IsIpv4Route(const HeldMessage& message) {
    // The payload begins with the address family (struct rtmsg).
    return message.type == RTM_NEWROUTE && !message.payload.empty() && message.payload.front() == AF_INET;
}

KernelAnswer Netlink::SaveLinkState(std::uint32_t index, std::vector<HeldMessage>& messages) {
    messages.clear();
    if (!IsIndex(index)) return {ENODEV, ""};
    std::vector<HeldMessage> addresses;
    std::vector<HeldMessage> routes;
    std::vector<HeldMessage> routes6;
    std::vector<HeldMessage> neighbours;
    std::vector<HeldMessage> neighbours6;
    KernelAnswer answer = CollectAddresses(*socket_, index, addresses);
    if (answer.Ok()) answer = CollectRoutes(*socket_, AF_INET, index, routes);
    if (answer.Ok()) answer = CollectRoutes(*socket_, AF_INET6, index, routes6);
    if (answer.Ok()) answer = CollectNeighbours(*socket_, AF_INET, index, neighbours);
    if (answer.Ok()) answer = CollectNeighbours(*socket_, AF_INET6, index, neighbours6);
    if (!answer.Ok()) return answer;

    routes.insert(routes.end(), routes6.begin(), routes6.end());
    std::stable_partition(routes.begin(), routes.end(),
                          [](const HeldMessage& route) { return !HasGateway(route); });
    for (std::vector<HeldMessage>* part : {&addresses, &routes, &neighbours, &neighbours6}) {
        std::move(part->begin(), part->end(), std::back_inserter(messages));
    }
    return answer;
}

KernelAnswer Netlink::Restore(const HeldMessage& message) {
    const std::size_t headerSize = HeaderSize(message.type);
    if (headerSize == 0 || message.payload.size() < headerSize) return {EINVAL, ""};
    // Replacing an IPv4 route would take the place of another one with the same destination and metric.
    const bool route = message.type == RTM_NEWROUTE;
    const int mode = NLM_F_ACK | NLM_F_CREATE | (route ? NLM_F_APPEND : NLM_F_REPLACE);
    NetlinkRequest request(message.type, static_cast<std::uint16_t>(mode), message.payload);
    KernelAnswer answer = socket_->Execute(request);
    if (route && answer.errnoValue == EEXIST) return {};
    return answer;
}

}  // namespace corvane
