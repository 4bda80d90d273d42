#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <functional>
#include <optional>

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/linux/kernel/Netlink.h"
#include "tests/netns/NetnsSupport.h"

namespace corvane {
namespace {

using netns::Ip;
using netns::IpJson;
using netns::NewLinkName;
using netns::ScopedLink;
using netns::ScopedTun;
using netns::ScopedVeth;

constexpr MacBytes kNewMac{0x02, 0x11, 0x22, 0x33, 0x44, 0x55};
constexpr const char* kNewMacText = "02:11:22:33:44:55";
constexpr std::uint32_t kUnusedIndex = 987654;

std::string Text(const MacBytes& mac) {
    char text[18];
    std::snprintf(text, sizeof text, "%02x:%02x:%02x:%02x:%02x:%02x", mac[0], mac[1], mac[2], mac[3], mac[4],
                  mac[5]);
    return text;
}

/// The address as `ip` shows it.
std::string AddressOf(const std::string& name) { return IpJson("link show dev " + name).at(0).at("address"); }

bool HasFlag(const nlohmann::json& link, const std::string& flag) {
    const nlohmann::json& flags = link.at("flags");
    return std::find(flags.begin(), flags.end(), flag) != flags.end();
}

/// Runs `action` in a child without any right; its result is the child's exit code.
int AsNobody(const std::function<int()>& action) {
    const pid_t child = fork();
    if (child == 0) _exit(setgid(65534) == 0 && setuid(65534) == 0 ? action() : 255);
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(NetlinkLinks, DumpAgreesWithIp) {
    const ScopedVeth veth;
    const ScopedLink bridge(NewLinkName("br"), "type bridge");
    const ScopedTun tun("tun");
    Ip("link set " + veth.Peer() + " master " + bridge.Name());
    veth.BringUp();

    std::vector<KernelLink> links;
    ASSERT_EQ(Netlink().DumpLinks(links).Words(), "");

    const nlohmann::json expected = IpJson("-d link show");
    ASSERT_EQ(links.size(), expected.size());
    for (const nlohmann::json& oracle : expected) {
        const auto link = std::find_if(links.begin(), links.end(), [&](const KernelLink& one) {
            return one.index == oracle.at("ifindex").get<std::uint32_t>();
        });
        ASSERT_NE(link, links.end()) << oracle;
        EXPECT_EQ(link->name, oracle.at("ifname"));
        EXPECT_EQ(link->Up(), HasFlag(oracle, "UP")) << link->name;
        EXPECT_EQ(link->operState == 6, oracle.at("operstate") == "UP") << link->name;
        EXPECT_EQ(link->hasAddress, oracle.contains("address")) << link->name;
        EXPECT_EQ(link->hasAddress ? Text(link->address) : "", oracle.value("address", "")) << link->name;
        EXPECT_EQ(link->kind,
                  oracle.contains("linkinfo") ? oracle.at("linkinfo").value("info_kind", "") : "");
        EXPECT_EQ(link->master, oracle.contains("master") ? netns::LinkIndex(oracle.at("master")) : 0U);
    }
}

TEST(NetlinkLinks, KindAndHardwareTypeOfEachSort) {
    const ScopedVeth veth;
    const ScopedTun tun("tun");
    Netlink netlink;
    KernelLink link;
    ASSERT_EQ(netlink.GetLink(veth.Index(), link).Words(), "");
    EXPECT_EQ(link.kind, "veth");
    EXPECT_EQ(link.arpType, 1);
    ASSERT_EQ(netlink.GetLinkByName("lo", link).Words(), "");
    EXPECT_EQ(link.kind, "");
    EXPECT_EQ(link.arpType, 772);
    ASSERT_EQ(netlink.GetLink(tun.Index(), link).Words(), "");
    EXPECT_EQ(link.kind, "tun");
    EXPECT_EQ(link.arpType, 65534);
    EXPECT_FALSE(link.hasAddress);
}

TEST(NetlinkLinks, VirtualLinksHaveNoPermanentAddress) {
    const ScopedVeth veth;
    const ScopedTun tap("tap");
    const ScopedLink bridge(NewLinkName("br"), "type bridge");
    Netlink netlink;
    for (const std::uint32_t index : {veth.Index(), tap.Index(), bridge.Index()}) {
        KernelLink link;
        ASSERT_EQ(netlink.GetLink(index, link).Words(), "");
        EXPECT_TRUE(link.hasAddress) << link.name;
        EXPECT_EQ(link.permanent, std::nullopt) << link.name;
    }
}

TEST(NetlinkLinks, OneLinkByIndexAndByName) {
    const ScopedVeth veth;
    Netlink netlink;
    KernelLink byIndex;
    KernelLink byName;
    ASSERT_EQ(netlink.GetLink(veth.Index(), byIndex).Words(), "");
    ASSERT_EQ(netlink.GetLinkByName(veth.Name(), byName).Words(), "");
    EXPECT_EQ(byIndex.name, veth.Name());
    EXPECT_EQ(byName.index, veth.Index());
    EXPECT_EQ(Text(byName.address), AddressOf(veth.Name()));
}

TEST(NetlinkLinks, NoSuchLinkIsEnodevAndLeavesTheRecord) {
    Netlink netlink;
    KernelLink link;
    link.name = "as it was";
    EXPECT_EQ(netlink.GetLink(kUnusedIndex, link).errnoValue, ENODEV);
    EXPECT_EQ(netlink.GetLink(0, link).errnoValue, ENODEV);
    EXPECT_EQ(netlink.GetLink(0xFFFFFFFFU, link).errnoValue, ENODEV);
    EXPECT_EQ(netlink.GetLinkByName("nosuchlink0", link).errnoValue, ENODEV);
    EXPECT_EQ(netlink.GetLinkByName("", link).errnoValue, ENODEV);
    EXPECT_EQ(netlink.GetLinkByName("a-name-longer-than-fifteen", link).errnoValue, ENODEV);
    EXPECT_EQ(link.name, "as it was");
}

TEST(NetlinkLinks, ByteCountersAgreeWithIp) {
    netns::SetSysctl("net/ipv6/conf/default/disable_ipv6", "1");
    const ScopedVeth veth;
    netns::SetSysctl("net/ipv6/conf/default/disable_ipv6", "0");
    veth.BringUp();
    Ip("addr add 10.11.0.1/24 dev " + veth.Name());
    Ip("neigh add 10.11.0.2 lladdr 02:00:00:00:00:09 nud permanent dev " + veth.Name());
    const int sender = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    ASSERT_GE(sender, 0);
    sockaddr_in target{};
    target.sin_family = AF_INET;
    target.sin_port = htons(9);
    target.sin_addr.s_addr = inet_addr("10.11.0.2");
    const std::string load(500, 'x');
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(
            sendto(sender, load.data(), load.size(), 0, reinterpret_cast<sockaddr*>(&target), sizeof target),
            static_cast<ssize_t>(load.size()));
    }
    close(sender);

    Netlink netlink;
    for (const std::string& name : {veth.Name(), veth.Peer()}) {
        KernelLink link;
        ASSERT_EQ(netlink.GetLinkByName(name, link).Words(), "");
        const nlohmann::json counters = IpJson("-s link show dev " + name).at(0).at("stats64");
        EXPECT_EQ(link.rxBytes, counters.at("rx").at("bytes").get<std::uint64_t>());
        EXPECT_EQ(link.txBytes, counters.at("tx").at("bytes").get<std::uint64_t>());
        // 500 bytes of data, UDP 8, IPv4 20, Ethernet 14.
        EXPECT_EQ(name == veth.Name() ? link.txBytes : link.rxBytes, 5420U);
    }
}

TEST(NetlinkLinks, UpAndDownShowInFlagsAndRunningNeedsCarrier) {
    const ScopedVeth veth;
    Netlink netlink;
    KernelLink link;
    ASSERT_EQ(netlink.SetLinkUp(veth.Index(), true).Words(), "");
    EXPECT_TRUE(HasFlag(IpJson("link show dev " + veth.Name()).at(0), "UP"));
    ASSERT_EQ(netlink.GetLink(veth.Index(), link).Words(), "");
    EXPECT_TRUE(link.Up());
    EXPECT_FALSE(link.Running());

    ASSERT_EQ(netlink.SetLinkUp(veth.PeerIndex(), true).Words(), "");
    EXPECT_TRUE(netns::WaitUntil([&] { return netlink.GetLink(veth.Index(), link).Ok() && link.Running(); }));

    ASSERT_EQ(netlink.SetLinkUp(veth.Index(), false).Words(), "");
    EXPECT_FALSE(HasFlag(IpJson("link show dev " + veth.Name()).at(0), "UP"));
    ASSERT_EQ(netlink.GetLink(veth.Index(), link).Words(), "");
    EXPECT_FALSE(link.Up());
    EXPECT_FALSE(link.Running());
}

TEST(SetLinkAddress, WorksUpAndDownOnLinksThatAllowIt) {
    const ScopedVeth veth;
    const ScopedLink bridge(NewLinkName("br"), "type bridge");
    const ScopedTun tap("tap");
    const ScopedLink macvlan(NewLinkName("mv"), "link " + veth.Name() + " type macvlan mode bridge");
    Netlink netlink;
    MacBytes mac = kNewMac;
    for (const ScopedLink* link :
         {static_cast<const ScopedLink*>(&veth), &bridge, static_cast<const ScopedLink*>(&tap), &macvlan}) {
        for (const bool up : {false, true}) {
            link->SetUp(up);
            ++mac[5];
            ASSERT_EQ(netlink.SetLinkAddress(link->Index(), mac).Words(), "") << link->Name() << up;
            EXPECT_EQ(AddressOf(link->Name()), Text(mac)) << link->Name() << up;
        }
    }
}

TEST(SetLinkAddress, MulticastZeroAndBroadcastAreEaddrnotavail) {
    const ScopedVeth veth;
    const std::string before = AddressOf(veth.Name());
    Netlink netlink;
    EXPECT_EQ(netlink.SetLinkAddress(veth.Index(), {0x01, 0, 0x5E, 1, 2, 3}).errnoValue, EADDRNOTAVAIL);
    EXPECT_EQ(netlink.SetLinkAddress(veth.Index(), {0, 0, 0, 0, 0, 0}).errnoValue, EADDRNOTAVAIL);
    EXPECT_EQ(netlink.SetLinkAddress(veth.Index(), {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}).errnoValue,
              EADDRNOTAVAIL);
    EXPECT_EQ(AddressOf(veth.Name()), before);
}

TEST(SetLinkAddress, MacvlanCannotHaveItsLowersOrASiblingsWhenUp) {
    const ScopedVeth veth;
    const ScopedLink first(NewLinkName("mv"), "link " + veth.Name() + " type macvlan mode bridge");
    const ScopedLink second(NewLinkName("mv"), "link " + veth.Name() + " type macvlan mode bridge");
    veth.BringUp();
    first.SetUp(true);
    second.SetUp(true);
    Netlink netlink;
    KernelLink lower;
    KernelLink sibling;
    ASSERT_EQ(netlink.GetLink(veth.Index(), lower).Words(), "");
    ASSERT_EQ(netlink.GetLink(first.Index(), sibling).Words(), "");
    EXPECT_EQ(netlink.SetLinkAddress(second.Index(), lower.address).errnoValue, EADDRINUSE);
    EXPECT_EQ(netlink.SetLinkAddress(second.Index(), sibling.address).errnoValue, EADDRINUSE);
}

TEST(SetLinkAddress, MacvlanSiblingsThatAreDownMayShareAndTheSecondCannotComeUp) {
    const ScopedVeth veth;
    const ScopedLink first(NewLinkName("mv"), "link " + veth.Name() + " type macvlan mode bridge");
    const ScopedLink second(NewLinkName("mv"), "link " + veth.Name() + " type macvlan mode bridge");
    veth.BringUp();
    Netlink netlink;
    ASSERT_EQ(netlink.SetLinkAddress(first.Index(), kNewMac).Words(), "");
    ASSERT_EQ(netlink.SetLinkAddress(second.Index(), kNewMac).Words(), "");
    ASSERT_EQ(netlink.SetLinkUp(first.Index(), true).Words(), "");
    EXPECT_EQ(netlink.SetLinkUp(second.Index(), true).errnoValue, EADDRINUSE);
}

TEST(SetLinkAddress, PassthruMacvlanChangesItsLowerToo) {
    const ScopedVeth veth;
    const ScopedLink macvlan(NewLinkName("mv"), "link " + veth.Name() + " type macvlan mode passthru");
    veth.BringUp();
    macvlan.SetUp(true);
    ASSERT_EQ(Netlink().SetLinkAddress(macvlan.Index(), kNewMac).Words(), "");
    EXPECT_EQ(AddressOf(veth.Name()), kNewMacText);
}

TEST(SetLinkAddress, LinksWithoutTheOperationAreEopnotsupp) {
    const ScopedTun tun("tun");
    EXPECT_EQ(Netlink().SetLinkAddress(tun.Index(), kNewMac).errnoValue, EOPNOTSUPP);
    const ScopedLink ifb(NewLinkName("fb"), "type ifb");
    EXPECT_EQ(Netlink().SetLinkAddress(ifb.Index(), kNewMac).errnoValue, EOPNOTSUPP);
}

TEST(SetLinkAddress, UnknownIndexIsEnodev) {
    Netlink netlink;
    for (const std::uint32_t index : {kUnusedIndex, 0U, 0x80000001U}) {
        EXPECT_EQ(netlink.SetLinkAddress(index, kNewMac).errnoValue, ENODEV) << index;
        EXPECT_EQ(netlink.SetLinkUp(index, true).errnoValue, ENODEV) << index;
    }
}

TEST(SetLinkAddress, LiveChangeDropsPermanentNeighboursAndKeepsAddressesAndRoutes) {
    const ScopedVeth veth;
    veth.BringUp();
    Ip("addr add 10.12.0.1/24 dev " + veth.Name());
    Ip("route add 10.13.0.0/16 via 10.12.0.9");
    Ip("neigh add 10.12.0.9 lladdr 02:00:00:00:00:09 nud permanent dev " + veth.Name());
    ASSERT_EQ(IpJson("neigh show nud permanent dev " + veth.Name()).size(), 1U);
    ASSERT_EQ(Netlink().SetLinkAddress(veth.Index(), kNewMac).Words(), "");
    EXPECT_EQ(IpJson("neigh show nud permanent dev " + veth.Name()).size(), 0U);
    EXPECT_EQ(IpJson("-4 addr show dev " + veth.Name()).size(), 1U);
    EXPECT_EQ(IpJson("route show 10.13.0.0/16").size(), 1U);
}

TEST(SetLinkAddress, Ipv6LinkLocalFollowsOnlyADownAndUp) {
    const ScopedVeth veth;
    veth.BringUp();
    // EUI-64 of kNewMac: fffe in the middle, the universal bit turned round.
    const std::string derived = "fe80::11:22ff:fe33:4455";
    const auto linkLocal = [&]() -> std::string {
        const nlohmann::json links = IpJson("-6 addr show scope link dev " + veth.Name());
        if (links.empty() || links.at(0).at("addr_info").empty()) return "";
        return links.at(0).at("addr_info").at(0).value("local", "");
    };
    ASSERT_TRUE(netns::WaitUntil([&] { return !linkLocal().empty(); }));
    Netlink netlink;
    ASSERT_EQ(netlink.SetLinkAddress(veth.Index(), kNewMac).Words(), "");
    EXPECT_NE(linkLocal(), derived);
    ASSERT_EQ(netlink.SetLinkUp(veth.Index(), false).Words(), "");
    ASSERT_EQ(netlink.SetLinkUp(veth.Index(), true).Words(), "");
    EXPECT_TRUE(netns::WaitUntil([&] { return linkLocal() == derived; })) << linkLocal();
}

TEST(NetlinkRights, ChangesWithoutCapNetAdminAreEpermAndReadsWork) {
    const ScopedVeth veth;
    const std::string before = AddressOf(veth.Name());
    const std::uint32_t index = veth.Index();
    EXPECT_EQ(AsNobody([=] { return Netlink().SetLinkAddress(index, kNewMac).errnoValue; }), EPERM);
    EXPECT_EQ(AsNobody([=] { return Netlink().SetLinkUp(index, true).errnoValue; }), EPERM);
    KernelAddress address;
    address.index = index;
    address.address = {10, 14, 0, 1};
    address.prefix = 24;
    EXPECT_EQ(AsNobody([=] { return Netlink().AddAddress(address, false).errnoValue; }), EPERM);
    EXPECT_EQ(AsNobody([=] { return Netlink().DeleteAddress(address).errnoValue; }), EPERM);
    KernelRoute route;
    route.index = index;
    EXPECT_EQ(AsNobody([=] { return Netlink().AddRoute(route).errnoValue; }), EPERM);
    EXPECT_EQ(AsNobody([=] { return Netlink().DeleteRoute(route).errnoValue; }), EPERM);
    EXPECT_EQ(AsNobody([=] {
                  KernelLink link;
                  return Netlink().GetLink(index, link).errnoValue;
              }),
              0);
    EXPECT_EQ(AddressOf(veth.Name()), before);
}

}  // namespace
}  // namespace corvane
