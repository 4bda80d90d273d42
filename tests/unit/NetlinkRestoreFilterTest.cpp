#include <gtest/gtest.h>
#include <linux/if_addr.h>
#include <linux/neighbour.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include "platform/linux/kernel/NetlinkRestore.h"
#include "tests/unit/NetlinkMessages.h"

namespace corvane {
namespace {

using messages::Attribute;
using messages::Bytes;
using messages::Join;
using messages::Number;
using messages::Raw;

constexpr std::uint32_t kLink = 4;

ifaddrmsg AddressHeader() {
    ifaddrmsg header{};
    header.ifa_family = AF_INET6;
    header.ifa_index = kLink;
    header.ifa_prefixlen = 64;
    header.ifa_flags = IFA_F_PERMANENT;
    return header;
}

TEST(SavedAddress, StateFlagsAreTakenOutAndRequestFlagsKept) {
    const Bytes payload =
        Join({Raw(AddressHeader()), Attribute(IFA_ADDRESS, Bytes(16, 1)),
              Attribute(IFA_FLAGS, Number(IFA_F_PERMANENT | IFA_F_DEPRECATED | IFA_F_TENTATIVE | IFA_F_NODAD |
                                          IFA_F_NOPREFIXROUTE))});
    const std::optional<HeldMessage> saved = SavedAddress(payload, kLink);
    ASSERT_TRUE(saved);
    ifaddrmsg header = AddressHeader();
    header.ifa_flags = IFA_F_NODAD;
    EXPECT_EQ(saved->type, RTM_NEWADDR);
    EXPECT_EQ(saved->payload, Join({Raw(header), Attribute(IFA_ADDRESS, Bytes(16, 1)),
                                    Attribute(IFA_FLAGS, Number(IFA_F_NODAD | IFA_F_NOPREFIXROUTE))}));
}

TEST(SavedAddress, TemporaryKernelMadeAndLinkLocalOnesAreNot) {
    const Bytes permanent = Raw(AddressHeader());
    EXPECT_TRUE(SavedAddress(permanent, kLink));
    EXPECT_FALSE(SavedAddress(permanent, kLink + 1));
    EXPECT_FALSE(SavedAddress(
        Join({permanent, Attribute(IFA_FLAGS, Number(IFA_F_PERMANENT | IFA_F_TEMPORARY))}), kLink));
    EXPECT_FALSE(SavedAddress(Join({permanent, Attribute(IFA_FLAGS, Number(IFA_F_MANAGETEMPADDR))}), kLink));
    for (const std::uint8_t maker :
         std::initializer_list<std::uint8_t>{IFAPROT_KERNEL_LO, IFAPROT_KERNEL_RA, IFAPROT_KERNEL_LL}) {
        EXPECT_FALSE(SavedAddress(Join({permanent, Attribute(IFA_PROTO, {maker})}), kLink)) << int{maker};
    }
    ifaddrmsg header = AddressHeader();
    header.ifa_scope = RT_SCOPE_LINK;
    EXPECT_FALSE(SavedAddress(Raw(header), kLink));
    header = AddressHeader();
    header.ifa_family = AF_INET;
    EXPECT_FALSE(SavedAddress(Raw(header), kLink));
    EXPECT_FALSE(SavedAddress(Bytes(7), kLink));
}

rtmsg RouteHeader(std::uint8_t family) {
    rtmsg header{};
    header.rtm_family = family;
    header.rtm_dst_len = 16;
    header.rtm_table = RT_TABLE_MAIN;
    header.rtm_protocol = RTPROT_BOOT;
    header.rtm_type = RTN_UNICAST;
    return header;
}

TEST(SavedRoute, StateBitsCacheRecordAndNextHopObjectAreTakenOut) {
    rtmsg header = RouteHeader(AF_INET);
    header.rtm_flags = RTNH_F_DEAD | RTNH_F_LINKDOWN | RTNH_F_ONLINK | RTNH_F_OFFLOAD;
    const Bytes kept = Join({Attribute(RTA_DST, {10, 1, 0, 0}), Attribute(RTA_OIF, Number(kLink))});
    const Bytes payload = Join(
        {Raw(header), kept, Attribute(RTA_CACHEINFO, Raw(rta_cacheinfo{})), Attribute(RTA_NH_ID, Number(9))});
    const std::optional<HeldMessage> saved = SavedRoute(payload, AF_INET, kLink);
    ASSERT_TRUE(saved);
    header.rtm_flags = RTNH_F_ONLINK;
    EXPECT_EQ(saved->type, RTM_NEWROUTE);
    EXPECT_EQ(saved->payload, Join({Raw(header), kept}));
}

TEST(SavedRoute, StateBitsOfEachNextHopAreTakenOut) {
    rtnexthop hop{};
    hop.rtnh_len = sizeof hop + 8;
    hop.rtnh_flags = RTNH_F_DEAD | RTNH_F_ONLINK;
    hop.rtnh_ifindex = kLink;
    rtnexthop clean = hop;
    clean.rtnh_flags = RTNH_F_ONLINK;
    const Bytes gateway = Attribute(RTA_GATEWAY, {10, 0, 0, 1});
    const rtmsg header = RouteHeader(AF_INET);
    const std::optional<HeldMessage> saved = SavedRoute(
        Join({Raw(header), Attribute(RTA_MULTIPATH, Join({Raw(hop), gateway, Raw(hop), gateway}))}), AF_INET,
        kLink);
    ASSERT_TRUE(saved);
    EXPECT_EQ(
        saved->payload,
        Join({Raw(header), Attribute(RTA_MULTIPATH, Join({Raw(clean), gateway, Raw(clean), gateway}))}));
    EXPECT_TRUE(HasGateway(*saved));
}

TEST(SavedRoute, ExpiryInTicksBecomesSeconds) {
    rta_cacheinfo cache{};
    cache.rta_expires = 12'345;
    const Bytes start = Join({Raw(RouteHeader(AF_INET6)), Attribute(RTA_OIF, Number(kLink))});
    const std::optional<HeldMessage> saved =
        SavedRoute(Join({start, Attribute(RTA_CACHEINFO, Raw(cache))}), AF_INET6, kLink);
    ASSERT_TRUE(saved);
    EXPECT_EQ(saved->payload, Join({start, Attribute(RTA_EXPIRES, Number(123))}));
}

TEST(SavedRoute, OnlyTheFamilyThatWasAskedFor) {
    const Bytes payload = Join({Raw(RouteHeader(AF_INET)), Attribute(RTA_OIF, Number(kLink))});
    EXPECT_TRUE(SavedRoute(payload, AF_INET, kLink));
    EXPECT_FALSE(SavedRoute(payload, AF_INET6, kLink));
    EXPECT_FALSE(SavedRoute(payload, AF_INET, kLink + 1));
    EXPECT_FALSE(SavedRoute(Raw(RouteHeader(AF_INET)), AF_INET, kLink));
    EXPECT_FALSE(SavedRoute(Bytes(11), AF_INET, kLink));
}

TEST(SavedRoute, Ipv6DefaultIsSavedAndIpv4DefaultIsNot) {
    for (const std::uint8_t family : std::initializer_list<std::uint8_t>{AF_INET, AF_INET6}) {
        rtmsg header = RouteHeader(family);
        header.rtm_dst_len = 0;
        const Bytes payload = Join({Raw(header), Attribute(RTA_OIF, Number(kLink))});
        EXPECT_EQ(SavedRoute(payload, family, kLink).has_value(), family == AF_INET6);
    }
}

TEST(HeaderSize, KnowsTheThreeSavedTypesOnly) {
    EXPECT_EQ(HeaderSize(RTM_NEWROUTE), sizeof(rtmsg));
    EXPECT_EQ(HeaderSize(RTM_NEWADDR), sizeof(ifaddrmsg));
    EXPECT_EQ(HeaderSize(RTM_NEWNEIGH), sizeof(ndmsg));
    EXPECT_EQ(HeaderSize(RTM_NEWLINK), 0U);
    EXPECT_EQ(HeaderSize(RTM_DELROUTE), 0U);
}

}  // namespace
}  // namespace corvane
