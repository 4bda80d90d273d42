#include <cerrno>

#include <gtest/gtest.h>
#include <linux/if_addr.h>
#include <linux/if_link.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include "platform/linux/kernel/NetlinkParse.h"
#include "tests/unit/NetlinkMessages.h"

namespace corvane {
namespace {

using messages::Attribute;
using messages::Bytes;
using messages::Join;
using messages::Message;
using messages::Number;
using messages::Raw;
using messages::Text;

Bytes LinkHeader() {
    ifinfomsg header{};
    header.ifi_index = 7;
    header.ifi_type = 1;
    header.ifi_flags = 0x1003;
    return Raw(header);
}

rtmsg RouteHeader() {
    rtmsg header{};
    header.rtm_family = AF_INET;
    header.rtm_dst_len = 16;
    header.rtm_table = RT_TABLE_MAIN;
    header.rtm_protocol = RTPROT_STATIC;
    header.rtm_type = RTN_UNICAST;
    return header;
}

TEST(ParseLink, TakesEveryAttributeItKnows) {
    rtnl_link_stats64 counters{};
    counters.rx_bytes = 0x1'2345'6789;
    counters.tx_bytes = 42;
    const Bytes payload =
        Join({LinkHeader(), Attribute(IFLA_IFNAME, Text("eth9")), Attribute(IFLA_ADDRESS, {2, 0, 0, 0, 0, 1}),
              Attribute(IFLA_PERM_ADDRESS, {2, 0, 0, 0, 0, 2}), Attribute(IFLA_OPERSTATE, {6}),
              Attribute(IFLA_MASTER, Number(3)), Attribute(IFLA_STATS64, Raw(counters)),
              Attribute(IFLA_LINKINFO | NLA_F_NESTED, Attribute(IFLA_INFO_KIND, Text("veth")))});
    KernelLink link;
    ASSERT_TRUE(ParseLink(payload, link));
    EXPECT_EQ(link.index, 7U);
    EXPECT_EQ(link.arpType, 1);
    EXPECT_EQ(link.flags, 0x1003U);
    EXPECT_EQ(link.name, "eth9");
    EXPECT_TRUE(link.hasAddress);
    EXPECT_EQ(link.address, (MacBytes{2, 0, 0, 0, 0, 1}));
    EXPECT_EQ(link.permanent, (MacBytes{2, 0, 0, 0, 0, 2}));
    EXPECT_EQ(link.operState, 6);
    EXPECT_EQ(link.master, 3U);
    EXPECT_EQ(link.rxBytes, 0x1'2345'6789U);
    EXPECT_EQ(link.txBytes, 42U);
    EXPECT_EQ(link.kind, "veth");
}

TEST(ParseLink, PermanentAddressOfZerosIsNone) {
    KernelLink link;
    ASSERT_TRUE(ParseLink(Join({LinkHeader(), Attribute(IFLA_IFNAME, Text("a")),
                                Attribute(IFLA_PERM_ADDRESS, {0, 0, 0, 0, 0, 0})}),
                          link));
    EXPECT_EQ(link.permanent, std::nullopt);
}

TEST(ParseLink, HardwareAddressOfAnotherLengthIsNone) {
    KernelLink link;
    for (const Bytes& address : {Bytes{}, Bytes{1, 2, 3, 4}, Bytes(20)}) {
        ASSERT_TRUE(ParseLink(Join({LinkHeader(), Attribute(IFLA_IFNAME, Text("a")),
                                    Attribute(IFLA_ADDRESS, address), Attribute(IFLA_PERM_ADDRESS, address)}),
                              link));
        EXPECT_FALSE(link.hasAddress);
        EXPECT_EQ(link.permanent, std::nullopt);
    }
}

TEST(ParseLink, CountersShorterAndLongerThanKnownAreTakenAsFarAsTheyGo) {
    rtnl_link_stats64 counters{};
    counters.rx_bytes = 11;
    counters.tx_bytes = 22;
    Bytes raw = Raw(counters);
    raw.resize(raw.size() + 64, 0xFF);
    KernelLink link;
    ASSERT_TRUE(ParseLink(
        Join({LinkHeader(), Attribute(IFLA_IFNAME, Text("a")), Attribute(IFLA_STATS64, raw)}), link));
    EXPECT_EQ(link.rxBytes, 11U);
    EXPECT_EQ(link.txBytes, 22U);
    raw.resize(offsetof(rtnl_link_stats64, tx_bytes));
    ASSERT_TRUE(ParseLink(
        Join({LinkHeader(), Attribute(IFLA_IFNAME, Text("a")), Attribute(IFLA_STATS64, raw)}), link));
    EXPECT_EQ(link.rxBytes, 11U);
    EXPECT_EQ(link.txBytes, 0U);
}

TEST(ParseLink, TextWithoutItsNulEndsWithTheAttribute) {
    KernelLink link;
    ASSERT_TRUE(ParseLink(Join({LinkHeader(), Attribute(IFLA_IFNAME, {'e', 't', 'h', '0'})}), link));
    EXPECT_EQ(link.name, "eth0");
}

TEST(ParseLink, ShortHeaderOrMissingNameIsRefused) {
    KernelLink link;
    EXPECT_FALSE(ParseLink({}, link));
    EXPECT_FALSE(ParseLink(Bytes(sizeof(ifinfomsg) - 1), link));
    EXPECT_FALSE(ParseLink(LinkHeader(), link));
}

TEST(ForEachAttribute, StopsAtAnAttributeThatRunsPastTheEnd) {
    Bytes bytes = Join({Attribute(1, Number(5)), Attribute(2, Number(6))});
    bytes.resize(bytes.size() - 1);
    std::vector<int> types;
    ForEachAttribute(bytes, [&](std::uint16_t type, ByteSpan) { types.push_back(type); });
    EXPECT_EQ(types, std::vector<int>{1});
}

TEST(ForEachAttribute, LengthBelowTheHeadersEndsTheWalk) {
    const Bytes bytes{3, 0, 1, 0, 8, 0, 2, 0, 1, 2, 3, 4};
    int count = 0;
    ForEachAttribute(bytes, [&](std::uint16_t, ByteSpan) { ++count; });
    EXPECT_EQ(count, 0);
}

TEST(ForEachMessage, HandsOutEachMessageWithItsPayload) {
    const Bytes datagram = Join({Message(16, 2, 1, {1, 2, 3}), Message(3, 2, 1, Number(0))});
    std::vector<std::size_t> sizes;
    EXPECT_TRUE(ForEachMessage(datagram,
                               [&](const nlmsghdr&, ByteSpan payload) { sizes.push_back(payload.size()); }));
    EXPECT_EQ(sizes, (std::vector<std::size_t>{3, 4}));
}

TEST(ForEachMessage, LengthsThatDoNotFitAreRefused) {
    int count = 0;
    const auto take = [&count](const nlmsghdr&, ByteSpan) { ++count; };
    // The last two are negative as int.
    for (const std::uint32_t length : {0U, 15U, 21U, 0x80000000U, 0xFFFFFFF0U}) {
        Bytes datagram = Message(16, 0, 1, Number(1));
        std::memcpy(datagram.data(), &length, sizeof length);
        EXPECT_FALSE(ForEachMessage(datagram, take)) << length;
    }
    EXPECT_FALSE(ForEachMessage(Bytes(15), take));
    EXPECT_EQ(count, 0);
}

TEST(ParseAddress, OnlyIpv4IsTaken) {
    ifaddrmsg header{};
    header.ifa_family = AF_INET6;
    KernelAddress address;
    EXPECT_FALSE(ParseAddress(Join({Raw(header), Attribute(IFA_LOCAL, {1, 2, 3, 4})}), address));
    header.ifa_family = AF_INET;
    EXPECT_FALSE(ParseAddress(Raw(header), address));
    header.ifa_prefixlen = 33;
    EXPECT_FALSE(ParseAddress(Join({Raw(header), Attribute(IFA_LOCAL, {1, 2, 3, 4})}), address));
}

TEST(ParseAddress, WithoutALocalOneTheAddressItselfCounts) {
    ifaddrmsg header{};
    header.ifa_family = AF_INET;
    header.ifa_prefixlen = 24;
    header.ifa_index = 5;
    KernelAddress address;
    ASSERT_TRUE(ParseAddress(Join({Raw(header), Attribute(IFA_ADDRESS, {10, 0, 0, 1})}), address));
    EXPECT_EQ(address.address, (Ipv4Bytes{10, 0, 0, 1}));
    EXPECT_EQ(address.prefix, 24);
    EXPECT_EQ(address.index, 5U);
    EXPECT_EQ(address.validSeconds, kForever);
}

TEST(ParseRoute, TableAttributeDecidesAndOthersAreLeftOut) {
    std::vector<KernelRoute> routes;
    ParseRoute(Join({Raw(RouteHeader()), Attribute(RTA_TABLE, Number(100))}), routes);
    EXPECT_TRUE(routes.empty());
    rtmsg header = RouteHeader();
    header.rtm_table = RT_TABLE_UNSPEC;
    ParseRoute(Join({Raw(header), Attribute(RTA_TABLE, Number(254)), Attribute(RTA_DST, {10, 1, 0, 0}),
                     Attribute(RTA_OIF, Number(4))}),
               routes);
    ASSERT_EQ(routes.size(), 1U);
    EXPECT_EQ(routes[0].destination, (Ipv4Bytes{10, 1, 0, 0}));
    EXPECT_EQ(routes[0].index, 4U);
    EXPECT_EQ(routes[0].gateway, std::nullopt);
}

TEST(ParseRoute, NextHopThatRunsPastTheEndIsLeftOut) {
    rtnexthop first{};
    first.rtnh_len = sizeof first;
    first.rtnh_ifindex = 2;
    rtnexthop second = first;
    second.rtnh_len = sizeof second + 1;
    second.rtnh_ifindex = 3;
    std::vector<KernelRoute> routes;
    ParseRoute(Join({Raw(RouteHeader()), Attribute(RTA_MULTIPATH, Join({Raw(first), Raw(second)}))}), routes);
    ASSERT_EQ(routes.size(), 1U);
    EXPECT_EQ(routes[0].index, 2U);
}

nlmsghdr ErrorHeader(unsigned flags) {
    nlmsghdr header{};
    header.nlmsg_type = NLMSG_ERROR;
    header.nlmsg_flags = static_cast<std::uint16_t>(flags);
    return header;
}

Bytes ErrorPayload(std::int32_t error, const Bytes& requestPayload, const std::string& text) {
    nlmsghdr request{};
    request.nlmsg_len = static_cast<std::uint32_t>(sizeof request + requestPayload.size());
    return Join({Raw(error), Raw(request), requestPayload, Attribute(NLMSGERR_ATTR_MSG, Text(text))});
}

TEST(ParseAnswer, TextFollowsACappedRequest) {
    Bytes payload = ErrorPayload(-EINVAL, {}, "the reason");
    // The request's own length still tells of the payload that was left out.
    payload[4] = 200;
    const KernelAnswer answer = ParseAnswer(ErrorHeader(NLM_F_ACK_TLVS | NLM_F_CAPPED), payload);
    EXPECT_EQ(answer.errnoValue, EINVAL);
    EXPECT_EQ(answer.text, "the reason");
    EXPECT_EQ(answer.Words(), "Invalid argument: the reason");
}

TEST(ParseAnswer, TextFollowsAWholeRequest) {
    const KernelAnswer answer =
        ParseAnswer(ErrorHeader(NLM_F_ACK_TLVS), ErrorPayload(-EPERM, Bytes(32, 9), "no"));
    EXPECT_EQ(answer.errnoValue, EPERM);
    EXPECT_EQ(answer.text, "no");
}

TEST(ParseAnswer, WithoutTheFlagThereIsNoText) {
    const KernelAnswer answer = ParseAnswer(ErrorHeader(NLM_F_CAPPED), ErrorPayload(-EPERM, {}, "no"));
    EXPECT_EQ(answer.errnoValue, EPERM);
    EXPECT_EQ(answer.text, "");
    EXPECT_EQ(answer.Words(), "Operation not permitted");
}

TEST(ParseAnswer, EndOfADumpHasTheTextRightAfterTheError) {
    nlmsghdr header{};
    header.nlmsg_type = NLMSG_DONE;
    header.nlmsg_flags = NLM_F_ACK_TLVS;
    const std::int32_t error = -ENOENT;
    const KernelAnswer answer =
        ParseAnswer(header, Join({Raw(error), Attribute(NLMSGERR_ATTR_MSG, Text("no table"))}));
    EXPECT_EQ(answer.errnoValue, ENOENT);
    EXPECT_EQ(answer.text, "no table");
}

TEST(ParseAnswer, SuccessHasNoWords) {
    const KernelAnswer answer = ParseAnswer(ErrorHeader(0), Number(0));
    EXPECT_TRUE(answer.Ok());
    EXPECT_EQ(answer.Words(), "");
}

TEST(ParseAnswer, PayloadThatIsNoAnswerIsEbadmsg) {
    EXPECT_EQ(ParseAnswer(ErrorHeader(0), Bytes(3)).errnoValue, EBADMSG);
    EXPECT_EQ(ParseAnswer(ErrorHeader(0), Number(17)).errnoValue, EBADMSG);
    EXPECT_EQ(ParseAnswer(ErrorHeader(0), Number(0x80000000U)).errnoValue, EBADMSG);
}

}  // namespace
}  // namespace corvane
