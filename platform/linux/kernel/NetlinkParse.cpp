#include "platform/linux/kernel/NetlinkParse.h"

#include <algorithm>
#include <cerrno>

#include <linux/if_addr.h>
#include <linux/if_link.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

namespace corvane {
namespace {

std::string Text(ByteSpan value) {
    const auto end = std::find(value.begin(), value.end(), std::uint8_t{0});
    return {value.begin(), end};
}

/// The counters' record grows with the kernel: what this build knows of it is taken, what is missing is 0.
void ReadCounters(ByteSpan value, KernelLink& link) {
    rtnl_link_stats64 counters{};
    std::memcpy(&counters, value.data(), std::min(value.size(), sizeof counters));
    link.rxBytes = counters.rx_bytes;
    link.txBytes = counters.tx_bytes;
}

void ReadLinkAttribute(std::uint16_t type, ByteSpan value, KernelLink& link) {
    switch (type) {
        case IFLA_IFNAME:
            link.name = Text(value);
            break;
        case IFLA_ADDRESS:
            link.hasAddress = ReadExactly(value, link.address);
            break;
        case IFLA_PERM_ADDRESS: {
            // A driver that knows none may say so with zeros.
            MacBytes permanent{};
            if (ReadExactly(value, permanent) && permanent != MacBytes{}) link.permanent = permanent;
            break;
        }
        case IFLA_OPERSTATE:
            (void)ReadExactly(value, link.operState);
            break;
        case IFLA_MASTER:
            (void)ReadExactly(value, link.master);
            break;
        case IFLA_STATS64:
            if (!value.empty()) ReadCounters(value, link);
            break;
        case IFLA_LINKINFO:
            ForEachAttribute(value, [&link](std::uint16_t infoType, ByteSpan info) {
                if (infoType == IFLA_INFO_KIND) link.kind = Text(info);
            });
            break;
        default:
            break;
    }
}

void ReadNextHops(ByteSpan value, const KernelRoute& common, std::vector<KernelRoute>& routes) {
    ForEachNextHop(value, [&](const rtnexthop& hop, ByteSpan attributes) {
        KernelRoute route = common;
        route.index = static_cast<std::uint32_t>(hop.rtnh_ifindex);
        ForEachAttribute(attributes, [&route](std::uint16_t type, ByteSpan bytes) {
            Ipv4Bytes gateway{};
            if (type == RTA_GATEWAY && ReadExactly(bytes, gateway)) route.gateway = gateway;
        });
        routes.push_back(route);
    });
}

}  // namespace

bool ParseLink(ByteSpan payload, KernelLink& link) {
    ifinfomsg header{};
    if (!ReadRecord(payload, header)) return false;
    link = KernelLink{};
    link.index = static_cast<std::uint32_t>(header.ifi_index);
    link.arpType = header.ifi_type;
    link.flags = header.ifi_flags;
    ForEachAttribute(After(payload, sizeof header),
                     [&link](std::uint16_t type, ByteSpan value) { ReadLinkAttribute(type, value, link); });
    return !link.name.empty();
}

bool ParseAddress(ByteSpan payload, KernelAddress& address) {
    ifaddrmsg header{};
    if (!ReadRecord(payload, header) || header.ifa_family != AF_INET || header.ifa_prefixlen > 32)
        return false;
    address = KernelAddress{};
    address.index = header.ifa_index;
    address.prefix = header.ifa_prefixlen;
    std::uint32_t flags = header.ifa_flags;
    std::optional<Ipv4Bytes> local;
    std::optional<Ipv4Bytes> other;
    ForEachAttribute(After(payload, sizeof header), [&](std::uint16_t type, ByteSpan value) {
        Ipv4Bytes bytes{};
        ifa_cacheinfo lifetimes{};
        if (type == IFA_LOCAL && ReadExactly(value, bytes)) local = bytes;
        if (type == IFA_ADDRESS && ReadExactly(value, bytes)) other = bytes;
        if (type == IFA_FLAGS) (void)ReadExactly(value, flags);
        if (type == IFA_CACHEINFO && ReadRecord(value, lifetimes)) {
            address.validSeconds = lifetimes.ifa_valid;
            address.preferredSeconds = lifetimes.ifa_prefered;
        }
    });
    // With a peer, IFA_ADDRESS is the peer's and IFA_LOCAL the link's own.
    if (!local) local = other;
    if (!local) return false;
    address.address = *local;
    address.secondary = (flags & IFA_F_SECONDARY) != 0;
    return true;
}

void ParseRoute(ByteSpan payload, std::vector<KernelRoute>& routes) {
    rtmsg header{};
    if (!ReadRecord(payload, header) || header.rtm_family != AF_INET || header.rtm_dst_len > 32) return;
    KernelRoute route;
    route.prefix = header.rtm_dst_len;
    route.protocol = header.rtm_protocol;
    route.scope = header.rtm_scope;
    route.type = header.rtm_type;
    std::uint32_t table = header.rtm_table;
    ByteSpan nextHops;
    ForEachAttribute(After(payload, sizeof header), [&](std::uint16_t type, ByteSpan value) {
        Ipv4Bytes gateway{};
        if (type == RTA_DST) (void)ReadExactly(value, route.destination);
        if (type == RTA_GATEWAY && ReadExactly(value, gateway)) route.gateway = gateway;
        if (type == RTA_OIF) (void)ReadExactly(value, route.index);
        if (type == RTA_PRIORITY) (void)ReadExactly(value, route.metric);
        if (type == RTA_TABLE) (void)ReadExactly(value, table);
        if (type == RTA_MULTIPATH) nextHops = value;
    });
    if (table != RT_TABLE_MAIN) return;
    if (nextHops.empty()) {
        routes.push_back(route);
    } else {
        ReadNextHops(nextHops, route, routes);
    }
}

KernelAnswer ParseAnswer(const nlmsghdr& header, ByteSpan payload) {
    KernelAnswer answer;
    std::int32_t error = 0;
    if (!ReadRecord(payload, error)) return {EBADMSG, ""};
    // The kernel negates errno values; anything else is not from it.
    if (error > 0 || error < -4095) return {EBADMSG, ""};
    answer.errnoValue = -error;
    if ((header.nlmsg_flags & NLM_F_ACK_TLVS) == 0) return answer;

    ByteSpan attributes = After(payload, sizeof error);
    if (header.nlmsg_type == NLMSG_ERROR) {
        // The request's header comes first, and without NLM_F_CAPPED its payload too.
        nlmsghdr request{};
        if (!ReadRecord(attributes, request)) return answer;
        const bool capped = (header.nlmsg_flags & NLM_F_CAPPED) != 0;
        const std::size_t skipped =
            capped ? sizeof request : std::max<std::size_t>(request.nlmsg_len, sizeof request);
        attributes = After(attributes, skipped);
    }
    ForEachAttribute(attributes, [&answer](std::uint16_t type, ByteSpan value) {
        if (type == NLMSGERR_ATTR_MSG) answer.text = Text(value);
    });
    return answer;
}

}  // namespace corvane
