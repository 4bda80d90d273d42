#include <algorithm>
#include <cerrno>

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <linux/rtnetlink.h>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/linux/kernel/Netlink.h"
#include "platform/linux/kernel/NetlinkSocket.h"
#include "tests/netns/NetnsSupport.h"

namespace corvane {
namespace {

using netns::Ip;
using netns::IpJson;
using netns::ScopedVeth;

constexpr std::uint8_t kUniverse = RT_SCOPE_UNIVERSE;
constexpr std::uint8_t kLinkScope = RT_SCOPE_LINK;

std::vector<KernelRoute> Dumped() {
    std::vector<KernelRoute> routes;
    EXPECT_EQ(Netlink().DumpRoutes(routes).Words(), "");
    return routes;
}

KernelRoute Route(const ScopedVeth& veth, const Ipv4Bytes& destination, std::uint8_t prefix,
                  std::optional<Ipv4Bytes> gateway, std::uint32_t metric = 0) {
    KernelRoute route;
    route.index = veth.Index();
    route.destination = destination;
    route.prefix = prefix;
    route.gateway = gateway;
    route.metric = metric;
    route.scope = gateway ? kUniverse : kLinkScope;
    return route;
}

bool Has(const std::vector<KernelRoute>& routes, const KernelRoute& route) {
    return std::find(routes.begin(), routes.end(), route) != routes.end();
}

std::string Text(const Ipv4Bytes& address) {
    char text[INET_ADDRSTRLEN];
    return inet_ntop(AF_INET, address.data(), text, sizeof text);
}

/// A veth pair that is up and has 10.40.0.1/24.
class NetlinkRoutes : public ::testing::Test {
 protected:
    void SetUp() override {
        veth_.BringUp();
        Ip("addr add 10.40.0.1/24 dev " + veth_.Name());
    }

    ScopedVeth veth_;
};

TEST_F(NetlinkRoutes, DumpAgreesWithIp) {
    Ip("route add 10.41.0.0/16 via 10.40.0.2 metric 7");
    Ip("route add 10.42.0.5/32 dev " + veth_.Name() + " proto static");
    Ip("route add default via 10.40.0.3 proto dhcp metric 100");
    Ip("route add blackhole 10.43.0.0/16");
    const std::vector<KernelRoute> routes = Dumped();
    const nlohmann::json expected = IpJson("-d -N route show table main");
    Ip("route del blackhole 10.43.0.0/16");
    ASSERT_EQ(routes.size(), expected.size());
    for (const nlohmann::json& oracle : expected) {
        const auto found = std::find_if(routes.begin(), routes.end(), [&](const KernelRoute& route) {
            std::string text = Text(route.destination);
            if (route.prefix < 32) text.append("/").append(std::to_string(route.prefix));
            return oracle.at("dst") == (route.prefix == 0 ? "default" : text);
        });
        ASSERT_NE(found, routes.end()) << oracle;
        EXPECT_EQ(found->gateway ? Text(*found->gateway) : "", oracle.value("gateway", "")) << oracle;
        EXPECT_EQ(found->index, oracle.contains("dev") ? netns::LinkIndex(oracle.at("dev")) : 0U) << oracle;
        EXPECT_EQ(found->metric, oracle.value("metric", 0U)) << oracle;
        EXPECT_EQ(std::to_string(found->protocol), oracle.at("protocol")) << oracle;
        EXPECT_EQ(std::to_string(found->scope), oracle.at("scope")) << oracle;
        EXPECT_EQ(std::to_string(found->type), oracle.at("type")) << oracle;
    }
}

TEST_F(NetlinkRoutes, OtherTablesAreFilteredInTheKernel) {
    Ip("route add 10.44.0.0/16 via 10.40.0.2 table 100");
    Ip("route add 10.45.0.0/16 via 10.40.0.2");
    const std::vector<KernelRoute> routes = Dumped();
    EXPECT_TRUE(std::any_of(routes.begin(), routes.end(), [](const KernelRoute& route) {
        return route.destination == Ipv4Bytes{10, 45, 0, 0};
    }));
    EXPECT_TRUE(std::none_of(routes.begin(), routes.end(), [](const KernelRoute& route) {
        return route.destination == Ipv4Bytes{10, 44, 0, 0};
    }));

    // Messages that arrive, before any filter of the program's own.
    rtmsg header{};
    header.rtm_family = AF_INET;
    NetlinkRequest request(RTM_GETROUTE, NLM_F_DUMP, header);
    request.Put(RTA_TABLE, static_cast<std::uint32_t>(RT_TABLE_MAIN));
    std::size_t messages = 0;
    NetlinkSocket socket;
    ASSERT_EQ(socket
                  .Dump(
                      request, [&] { messages = 0; }, [&](std::uint16_t, ByteSpan) { ++messages; })
                  .Words(),
              "");
    EXPECT_EQ(messages, IpJson("route show table main").size());
    EXPECT_LT(messages, IpJson("-4 route show table all").size());
}

TEST_F(NetlinkRoutes, MultipathIsOneRecordPerNextHop) {
    const ScopedVeth other;
    other.BringUp();
    Ip("addr add 10.46.0.1/24 dev " + other.Name());
    Ip("route add 10.47.0.0/16 metric 5 nexthop via 10.40.0.2 dev " + veth_.Name() +
       " nexthop via 10.46.0.2 dev " + other.Name());
    std::vector<KernelRoute> routes = Dumped();
    std::erase_if(routes, [](const KernelRoute& route) {
        return route.destination != Ipv4Bytes{10, 47, 0, 0};
    });
    KernelRoute first = Route(veth_, {10, 47, 0, 0}, 16, Ipv4Bytes{10, 40, 0, 2}, 5);
    KernelRoute second = Route(other, {10, 47, 0, 0}, 16, Ipv4Bytes{10, 46, 0, 2}, 5);
    first.protocol = RTPROT_BOOT;
    second.protocol = RTPROT_BOOT;
    EXPECT_EQ(routes, (std::vector<KernelRoute>{first, second}));
}

TEST_F(NetlinkRoutes, AnIpv6NextHopIsNoIpv4Gateway) {
    Ip("route add 10.48.0.0/16 via inet6 fe80::9 dev " + veth_.Name() + " proto static");
    EXPECT_TRUE(Has(Dumped(), [&] {
        KernelRoute route = Route(veth_, {10, 48, 0, 0}, 16, std::nullopt);
        route.scope = kUniverse;
        return route;
    }()));
}

TEST_F(NetlinkRoutes, NamespaceThatNeverHadARouteGivesAnEmptyList) {
    const pid_t child = fork();
    if (child == 0) {
        if (unshare(CLONE_NEWNET) != 0) _exit(1);
        Netlink netlink;
        std::vector<KernelRoute> routes(1);
        std::vector<HeldMessage> messages(1);
        if (!netlink.DumpRoutes(routes).Ok() || !routes.empty()) _exit(2);
        if (!netlink.SaveLinkState(1, messages).Ok() || !messages.empty()) _exit(3);
        _exit(0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST_F(NetlinkRoutes, AddedOnesShowAsTheyWereGiven) {
    Netlink netlink;
    const KernelRoute overGateway = Route(veth_, {10, 49, 0, 0}, 16, Ipv4Bytes{10, 40, 0, 2}, 3);
    KernelRoute direct = Route(veth_, {10, 50, 0, 0}, 24, std::nullopt);
    direct.protocol = RTPROT_DHCP;
    ASSERT_EQ(netlink.AddRoute(overGateway).Words(), "");
    ASSERT_EQ(netlink.AddRoute(direct).Words(), "");
    const std::vector<KernelRoute> routes = Dumped();
    EXPECT_TRUE(Has(routes, overGateway));
    EXPECT_TRUE(Has(routes, direct));
    const nlohmann::json first = IpJson("route show 10.49.0.0/16");
    ASSERT_EQ(first.size(), 1U);
    EXPECT_EQ(first[0].at("gateway"), "10.40.0.2");
    EXPECT_EQ(first[0].at("metric"), 3);
    EXPECT_EQ(first[0].at("protocol"), "static");
    const nlohmann::json second = IpJson("route show 10.50.0.0/24");
    ASSERT_EQ(second.size(), 1U);
    EXPECT_EQ(second[0].at("protocol"), "dhcp");
    EXPECT_EQ(second[0].at("scope"), "link");
}

TEST_F(NetlinkRoutes, TwoDefaultRoutesOfEqualMetricStandBesideEachOther) {
    Netlink netlink;
    const KernelRoute first = Route(veth_, {}, 0, Ipv4Bytes{10, 40, 0, 2}, 20);
    const KernelRoute second = Route(veth_, {}, 0, Ipv4Bytes{10, 40, 0, 3}, 20);
    ASSERT_EQ(netlink.AddRoute(first).Words(), "");
    ASSERT_EQ(netlink.AddRoute(second).Words(), "");
    const nlohmann::json shown = IpJson("route show default");
    ASSERT_EQ(shown.size(), 2U);
    EXPECT_EQ(shown[0].at("gateway"), "10.40.0.2");
    EXPECT_EQ(shown[1].at("gateway"), "10.40.0.3");

    ASSERT_EQ(netlink.DeleteRoute(first).Words(), "");
    const nlohmann::json left = IpJson("route show default");
    ASSERT_EQ(left.size(), 1U);
    EXPECT_EQ(left[0].at("gateway"), "10.40.0.3");
}

TEST_F(NetlinkRoutes, TheVerySameRouteAgainIsEexist) {
    Netlink netlink;
    const KernelRoute route = Route(veth_, {}, 0, Ipv4Bytes{10, 40, 0, 2}, 20);
    ASSERT_EQ(netlink.AddRoute(route).Words(), "");
    EXPECT_EQ(netlink.AddRoute(route).errnoValue, EEXIST);
    EXPECT_EQ(IpJson("route show default").size(), 1U);
}

TEST_F(NetlinkRoutes, UnreachableGatewayIsEnetunreachWithTheKernelsWords) {
    const KernelAnswer answer = Netlink().AddRoute(Route(veth_, {}, 0, Ipv4Bytes{192, 0, 2, 1}));
    EXPECT_EQ(answer.errnoValue, ENETUNREACH);
    EXPECT_EQ(answer.text, "Nexthop has invalid gateway");
    EXPECT_EQ(answer.Words(), "Network is unreachable: Nexthop has invalid gateway");
}

TEST_F(NetlinkRoutes, AddingOnALinkThatIsDownFailsWithTheKernelsWords) {
    veth_.SetUp(false);
    Netlink netlink;
    const KernelAnswer overGateway = netlink.AddRoute(Route(veth_, {}, 0, Ipv4Bytes{10, 40, 0, 2}));
    EXPECT_EQ(overGateway.errnoValue, ENETUNREACH);
    EXPECT_EQ(overGateway.text, "Nexthop has invalid gateway");
    const KernelAnswer direct = netlink.AddRoute(Route(veth_, {10, 51, 0, 0}, 16, std::nullopt));
    EXPECT_EQ(direct.errnoValue, ENETDOWN);
    EXPECT_EQ(direct.text, "Device for nexthop is not up");
}

TEST_F(NetlinkRoutes, DestinationWithHostBitsIsEinvalWithTheKernelsWords) {
    const KernelAnswer answer = Netlink().AddRoute(Route(veth_, {10, 52, 0, 1}, 16, Ipv4Bytes{10, 40, 0, 2}));
    EXPECT_EQ(answer.errnoValue, EINVAL);
    EXPECT_EQ(answer.text, "Invalid prefix for given prefix length");
}

TEST_F(NetlinkRoutes, UnknownLinkIsEnodev) {
    KernelRoute route = Route(veth_, {10, 53, 0, 0}, 16, std::nullopt);
    route.index = 987654;
    EXPECT_EQ(Netlink().AddRoute(route).errnoValue, ENODEV);
}

TEST_F(NetlinkRoutes, DeletingOneThatDiffersInAnyFieldIsEsrch) {
    Netlink netlink;
    const KernelRoute route = Route(veth_, {10, 54, 0, 0}, 16, Ipv4Bytes{10, 40, 0, 2}, 9);
    ASSERT_EQ(netlink.AddRoute(route).Words(), "");
    KernelRoute other = route;
    other.metric = 10;
    EXPECT_EQ(netlink.DeleteRoute(other).errnoValue, ESRCH);
    other = route;
    other.gateway = Ipv4Bytes{10, 40, 0, 3};
    EXPECT_EQ(netlink.DeleteRoute(other).errnoValue, ESRCH);
    other = route;
    other.prefix = 17;
    EXPECT_EQ(netlink.DeleteRoute(other).errnoValue, ESRCH);
    other = route;
    other.protocol = RTPROT_DHCP;
    EXPECT_EQ(netlink.DeleteRoute(other).errnoValue, ESRCH);
    EXPECT_TRUE(Has(Dumped(), route));
    EXPECT_EQ(netlink.DeleteRoute(route).Words(), "");
    EXPECT_FALSE(Has(Dumped(), route));
}

TEST_F(NetlinkRoutes, DownLosesAllAndUpBringsBackOnlyTheConnectedOne) {
    Netlink netlink;
    ASSERT_EQ(netlink.AddRoute(Route(veth_, {}, 0, Ipv4Bytes{10, 40, 0, 2})).Words(), "");
    ASSERT_EQ(netlink.AddRoute(Route(veth_, {10, 55, 0, 0}, 16, Ipv4Bytes{10, 40, 0, 2})).Words(), "");
    ASSERT_EQ(Dumped().size(), 3U);
    ASSERT_EQ(netlink.SetLinkUp(veth_.Index(), false).Words(), "");
    EXPECT_EQ(Dumped().size(), 0U);
    ASSERT_EQ(netlink.SetLinkUp(veth_.Index(), true).Words(), "");
    const std::vector<KernelRoute> routes = Dumped();
    ASSERT_EQ(routes.size(), 1U);
    EXPECT_EQ(routes[0].destination, (Ipv4Bytes{10, 40, 0, 0}));
    EXPECT_EQ(routes[0].protocol, RTPROT_KERNEL);
}

}  // namespace
}  // namespace corvane
