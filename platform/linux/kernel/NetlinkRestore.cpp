#include "platform/linux/kernel/NetlinkRestore.h"

#include <algorithm>

#include <linux/if_addr.h>
#include <linux/neighbour.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

namespace corvane {
namespace {

/// Flags that a request to add an IPv6 address may carry (inet6_rtm_newaddr); the others are the kernel's to
/// set.
constexpr std::uint32_t kAddressRequestFlags =
    IFA_F_NODAD | IFA_F_HOMEADDRESS | IFA_F_MANAGETEMPADDR | IFA_F_NOPREFIXROUTE | IFA_F_MCAUTOJOIN;

/// The only next hop flag of a request; the others describe a state.
constexpr unsigned kRouteRequestFlags = RTNH_F_ONLINK;

/// Ticks per second of the times that the kernel shows (USER_HZ).
constexpr std::int32_t kTicksPerSecond = 100;

/// Collects a message's payload anew.
class PayloadWriter {
 public:
    template <class Header>
    explicit PayloadWriter(const Header& header) {
        Append(&header, sizeof header);
    }

    void Attribute(std::uint16_t type, ByteSpan value) {
        nlattr header{};
        header.nla_len = static_cast<std::uint16_t>(MNL_ATTR_HDRLEN + value.size());
        header.nla_type = type;
        Append(&header, sizeof header);
        if (!value.empty()) Append(value.data(), value.size());
    }

    void Attribute(std::uint16_t type, std::uint32_t value) {
        Attribute(type, ByteSpan(reinterpret_cast<const std::uint8_t*>(&value), sizeof value));
    }

    [[nodiscard]] std::vector<std::uint8_t> Payload() && { return std::move(payload_); }

 private:
    void Append(const void* data, std::size_t size) {
        const auto* bytes = static_cast<const std::uint8_t*>(data);
        payload_.insert(payload_.end(), bytes, bytes + size);
        payload_.resize(MNL_ALIGN(payload_.size()));
    }

    std::vector<std::uint8_t> payload_;
};

bool RouteIsLost(const rtmsg& header, std::uint8_t family) {
    if (header.rtm_family != family || (header.rtm_flags & RTM_F_CLONED) != 0) return false;
    if (header.rtm_protocol == RTPROT_KERNEL || header.rtm_protocol == RTPROT_REDIRECT) return false;
    if (family == AF_INET6) return header.rtm_protocol != RTPROT_RA;
    return header.rtm_protocol != RTPROT_DHCP && header.rtm_dst_len != 0;
}

/// True when every way of the route leaves by link `index` and its table is the main one.
bool RouteIsOn(ByteSpan attributes, std::uint32_t table, std::uint32_t index) {
    std::uint32_t oneLink = 0;
    bool onLink = false;
    bool elsewhere = false;
    ForEachAttribute(attributes, [&](std::uint16_t type, ByteSpan value) {
        if (type == RTA_TABLE) (void)ReadExactly(value, table);
        if (type == RTA_OIF && ReadExactly(value, oneLink)) (oneLink == index ? onLink : elsewhere) = true;
        if (type != RTA_MULTIPATH) return;
        ForEachNextHop(value, [&](const rtnexthop& hop, ByteSpan) {
            (static_cast<std::uint32_t>(hop.rtnh_ifindex) == index ? onLink : elsewhere) = true;
        });
    });
    return table == RT_TABLE_MAIN && onLink && !elsewhere;
}

/// The value of RTA_MULTIPATH with the state bits of its next hops cleared.
std::vector<std::uint8_t> CleanNextHops(ByteSpan value) {
    std::vector<std::uint8_t> clean(value.begin(), value.end());
    std::size_t offset = 0;
    ForEachNextHop(value, [&](const rtnexthop& hop, ByteSpan) {
        const std::size_t at = offset + offsetof(rtnexthop, rtnh_flags);
        clean[at] = static_cast<std::uint8_t>(clean[at] & kRouteRequestFlags);
        offset += MNL_ALIGN(hop.rtnh_len);
    });
    return clean;
}

void CopyRouteAttribute(std::uint16_t type, ByteSpan value, PayloadWriter& writer) {
    switch (type) {
        case RTA_CACHEINFO: {
            rta_cacheinfo cache{};
            if (ReadRecord(value, cache) && cache.rta_expires > 0) {
                const std::int32_t seconds = std::max(1, cache.rta_expires / kTicksPerSecond);
                writer.Attribute(RTA_EXPIRES, static_cast<std::uint32_t>(seconds));
            }
            break;
        }
        case RTA_NH_ID:
            break;
        case RTA_MULTIPATH:
            writer.Attribute(type, CleanNextHops(value));
            break;
        case RTA_ENCAP:
            writer.Attribute(RTA_ENCAP | NLA_F_NESTED, value);
            break;
        default:
            writer.Attribute(type, value);
            break;
    }
}

}  // namespace

std::optional<HeldMessage> SavedRoute(ByteSpan payload, std::uint8_t family, std::uint32_t index) {
    rtmsg header{};
    if (!ReadRecord(payload, header) || !RouteIsLost(header, family)) return std::nullopt;
    const ByteSpan attributes = After(payload, sizeof header);
    if (!RouteIsOn(attributes, header.rtm_table, index)) return std::nullopt;

    header.rtm_flags &= kRouteRequestFlags;
    PayloadWriter writer(header);
    ForEachAttribute(attributes, [&writer](std::uint16_t type, ByteSpan value) {
        CopyRouteAttribute(type, value, writer);
    });
    return HeldMessage{RTM_NEWROUTE, std::move(writer).Payload()};
}

std::optional<HeldMessage> SavedAddress(ByteSpan payload, std::uint32_t index) {
    ifaddrmsg header{};
    if (!ReadRecord(payload, header) || header.ifa_family != AF_INET6 || header.ifa_index != index ||
        header.ifa_scope != RT_SCOPE_UNIVERSE) {
        return std::nullopt;
    }
    const ByteSpan attributes = After(payload, sizeof header);
    std::uint32_t flags = header.ifa_flags;
    std::uint8_t maker = IFAPROT_UNSPEC;
    ForEachAttribute(attributes, [&](std::uint16_t type, ByteSpan value) {
        if (type == IFA_FLAGS) (void)ReadExactly(value, flags);
        if (type == IFA_PROTO) (void)ReadExactly(value, maker);
    });
    const bool kernelMade =
        maker == IFAPROT_KERNEL_LO || maker == IFAPROT_KERNEL_RA || maker == IFAPROT_KERNEL_LL;
    if ((flags & IFA_F_PERMANENT) == 0 || (flags & IFA_F_TEMPORARY) != 0 || kernelMade) return std::nullopt;

    flags &= kAddressRequestFlags;
    header.ifa_flags = static_cast<std::uint8_t>(flags);
    PayloadWriter writer(header);
    ForEachAttribute(attributes, [&](std::uint16_t type, ByteSpan value) {
        if (type == IFA_FLAGS) {
            writer.Attribute(IFA_FLAGS, flags);
        } else {
            writer.Attribute(type, value);
        }
    });
    return HeldMessage{RTM_NEWADDR, std::move(writer).Payload()};
}

std::optional<HeldMessage> SavedNeighbour(ByteSpan payload, std::uint8_t family, std::uint32_t index) {
    ndmsg header{};
    if (!ReadRecord(payload, header) || header.ndm_family != family ||
        static_cast<std::uint32_t>(header.ndm_ifindex) != index || (header.ndm_state & NUD_PERMANENT) == 0 ||
        (header.ndm_flags & NTF_PROXY) != 0) {
        return std::nullopt;
    }
    PayloadWriter writer(header);
    ForEachAttribute(After(payload, sizeof header), [&writer](std::uint16_t type, ByteSpan value) {
        if (type != NDA_CACHEINFO && type != NDA_PROBES) writer.Attribute(type, value);
    });
    return HeldMessage{RTM_NEWNEIGH, std::move(writer).Payload()};
}

bool HasGateway(const HeldMessage& route) {
    bool found = false;
    const auto look = [&found](std::uint16_t type, ByteSpan) {
        found |= type == RTA_GATEWAY || type == RTA_VIA;
    };
    ForEachAttribute(After(route.payload, sizeof(rtmsg)), [&](std::uint16_t type, ByteSpan value) {
        look(type, value);
        if (type != RTA_MULTIPATH) return;
        ForEachNextHop(value,
                       [&](const rtnexthop&, ByteSpan attributes) { ForEachAttribute(attributes, look); });
    });
    return found;
}

std::size_t HeaderSize(std::uint16_t type) {
    switch (type) {
        case RTM_NEWROUTE:
            return sizeof(rtmsg);
        case RTM_NEWADDR:
            return sizeof(ifaddrmsg);
        case RTM_NEWNEIGH:
            return sizeof(ndmsg);
        default:
            return 0;
    }
}

}  // namespace corvane
