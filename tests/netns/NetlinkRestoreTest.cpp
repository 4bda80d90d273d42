#include <algorithm>
#include <cerrno>
#include <chrono>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <linux/rtnetlink.h>

#include "platform/linux/kernel/Netlink.h"
#include "tests/netns/NetnsSupport.h"

namespace corvane {
namespace {

using netns::Ip;
using netns::IpJson;
using netns::ScopedVeth;
using netns::WaitUntil;

/// A list of `ip` without regard to order.
std::vector<std::string> Lines(const nlohmann::json& list) {
    std::vector<std::string> lines;
    for (const nlohmann::json& item : list) lines.push_back(item.dump());
    std::sort(lines.begin(), lines.end());
    return lines;
}

/// A veth pair that is up with 10.60.0.1/24 and 2001:db8:60::1/64, without duplicate address detection.
class SavedLinkState : public ::testing::Test {
 protected:
    void SetUp() override {
        netns::SetSysctl("net/ipv6/conf/" + Name() + "/accept_dad", "0");
        veth_.BringUp();
        Ip("addr add 10.60.0.1/24 dev " + Name());
        Ip("-6 addr add 2001:db8:60::1/64 dev " + Name());
        ASSERT_TRUE(
            WaitUntil([this] { return IpJson("-6 addr show scope link dev " + Name()).size() == 1; }));
    }

    [[nodiscard]] const std::string& Name() const { return veth_.Name(); }

    /// Everything of the link that is to come back, as `ip` shows it.
    [[nodiscard]] std::vector<std::string> Shown() const {
        nlohmann::json all = nlohmann::json::array();
        for (const char* query :
             {"-4 route show dev ", "-6 route show dev ", "neigh show nud permanent dev "}) {
            for (const nlohmann::json& item : IpJson(query + Name())) all.push_back(item);
        }
        for (const nlohmann::json& link : IpJson("addr show dev " + Name())) {
            for (const nlohmann::json& item : link.at("addr_info")) all.push_back(item);
        }
        return Lines(all);
    }

    /// Shown() once no IPv6 address is tentative: the kernel takes that mark off in the background, even
    /// where it does not look for duplicates.
    [[nodiscard]] std::vector<std::string> ShownSettled() const {
        const bool settled = WaitUntil([this] {
            const nlohmann::json links = IpJson("-6 addr show dev " + Name());
            const nlohmann::json& addresses = links.at(0).at("addr_info");
            return std::none_of(addresses.begin(), addresses.end(), [](const nlohmann::json& address) {
                return address.value("tentative", false);
            });
        });
        EXPECT_TRUE(settled);
        return Shown();
    }

    std::vector<HeldMessage> Save() {
        std::vector<HeldMessage> messages;
        EXPECT_EQ(netlink_.SaveLinkState(veth_.Index(), messages).Words(), "");
        return messages;
    }

    void DownAndUp() {
        ASSERT_EQ(netlink_.SetLinkUp(veth_.Index(), false).Words(), "");
        ASSERT_EQ(netlink_.SetLinkUp(veth_.Index(), true).Words(), "");
    }

    void RestoreAll(const std::vector<HeldMessage>& messages) {
        for (const HeldMessage& message : messages) {
            EXPECT_EQ(netlink_.Restore(message).Words(), "") << "type " << message.type;
        }
    }

    /// Down, up, restore; then everything must come to look as before.
    void ExpectAllBack() {
        const std::vector<std::string> before = ShownSettled();
        const std::vector<HeldMessage> messages = Save();
        DownAndUp();
        EXPECT_NE(Shown(), before) << "nothing was lost, so nothing is tested";
        RestoreAll(messages);
        EXPECT_TRUE(WaitUntil([&] { return Shown() == before; }))
            << ::testing::PrintToString(before) << "\n now " << ::testing::PrintToString(Shown());
    }

    ScopedVeth veth_;
    Netlink netlink_;
};

TEST_F(SavedLinkState, Ipv4RoutesAreBack) {
    Ip("route add 10.61.0.0/16 via 10.60.0.2 metric 5 mtu 1400");
    Ip("route add 10.62.0.0/16 dev " + Name() + " src 10.60.0.1 proto static");
    ExpectAllBack();
}

TEST_F(SavedLinkState, RouteOverAGatewayComesAfterTheRouteToTheGateway) {
    Ip("route add 10.69.0.9/32 dev " + Name());
    Ip("route add 10.61.0.0/16 via 10.69.0.9 dev " + Name());
    Ip("-6 route add 2001:db8:69::9/128 dev " + Name());
    Ip("-6 route add 2001:db8:61::/48 via 2001:db8:69::9 dev " + Name());
    ExpectAllBack();
}

TEST_F(SavedLinkState, OnlinkGatewayIsBack) {
    Ip("route add 10.61.0.0/16 via 192.0.2.1 dev " + Name() + " onlink");
    ExpectAllBack();
}

TEST_F(SavedLinkState, RoutesOfOneDestinationAndMetricAreAllBack) {
    Ip("route append 10.61.0.0/16 via 10.60.0.2 metric 5");
    Ip("route append 10.61.0.0/16 via 10.60.0.3 metric 5");
    ExpectAllBack();
    const nlohmann::json shown = IpJson("route show 10.61.0.0/16");
    ASSERT_EQ(shown.size(), 2U);
    EXPECT_EQ(shown[0].at("gateway"), "10.60.0.2");
}

TEST_F(SavedLinkState, MultipathWithAllHopsOnTheLinkIsBack) {
    const std::string hops = " nexthop via 10.60.0.2 weight 3 nexthop via 10.60.0.3 weight 1";
    Ip("route add 10.61.0.0/16" + hops);
    Ip("-6 route add 2001:db8:61::/48 nexthop via 2001:db8:60::2 nexthop via 2001:db8:60::3");
    ExpectAllBack();
    EXPECT_EQ(IpJson("route show 10.61.0.0/16").at(0).at("nexthops").size(), 2U);
}

TEST_F(SavedLinkState, MultipathThatAlsoLeavesElsewhereStaysAndIsNotSaved) {
    const ScopedVeth other;
    other.BringUp();
    Ip("addr add 10.64.0.1/24 dev " + other.Name());
    const std::size_t without = Save().size();
    Ip("route add 10.61.0.0/16 nexthop via 10.60.0.2 nexthop via 10.64.0.2");
    const std::vector<std::string> before = Lines(IpJson("route show 10.61.0.0/16"));
    EXPECT_EQ(Save().size(), without);
    DownAndUp();
    EXPECT_TRUE(WaitUntil([&] { return Lines(IpJson("route show 10.61.0.0/16")) == before; }))
        << IpJson("route show 10.61.0.0/16");
}

TEST_F(SavedLinkState, RouteOverANextHopObjectComesBackOverTheSameGateway) {
    Ip("nexthop add id 7 via 10.60.0.2 dev " + Name());
    Ip("route add 10.61.0.0/16 nhid 7");
    const std::vector<HeldMessage> messages = Save();
    DownAndUp();
    ASSERT_EQ(IpJson("route show 10.61.0.0/16").size(), 0U);
    RestoreAll(messages);
    const nlohmann::json shown = IpJson("route show 10.61.0.0/16");
    ASSERT_EQ(shown.size(), 1U);
    EXPECT_EQ(shown[0].at("gateway"), "10.60.0.2");
    EXPECT_FALSE(shown[0].contains("nhid"));
}

TEST_F(SavedLinkState, RoutesMarkedForMissingCarrierAreTakenBack) {
    Ip("route add 10.61.0.0/16 via 10.60.0.2");
    Ip("route add 10.62.0.0/16 nexthop via 10.60.0.2 nexthop via 10.60.0.3");
    Ip("link set " + veth_.Peer() + " down");
    ASSERT_TRUE(WaitUntil([&] {
        return IpJson("route show 10.61.0.0/16").at(0).at("flags") == nlohmann::json::array({"linkdown"});
    }));
    const std::vector<HeldMessage> messages = Save();
    DownAndUp();
    ASSERT_EQ(IpJson("route show 10.61.0.0/16").size(), 0U);
    ASSERT_EQ(IpJson("route show 10.62.0.0/16").size(), 0U);
    RestoreAll(messages);
    EXPECT_EQ(IpJson("route show 10.61.0.0/16").size(), 1U);
    EXPECT_EQ(IpJson("route show 10.62.0.0/16").size(), 1U);
}

TEST_F(SavedLinkState, Ipv6AddressesAreBackWithFlagsAndLifetimes) {
    Ip("-6 addr add 2001:db8:65::1/64 nodad noprefixroute dev " + Name());
    Ip("-6 addr add 2001:db8:66::1/64 valid_lft forever preferred_lft 0 dev " + Name());
    Ip("-6 addr add 2001:db8:67::1 peer 2001:db8:67::2/128 dev " + Name());
    ExpectAllBack();
    bool deprecated = false;
    const nlohmann::json links = IpJson("-6 addr show dev " + Name());
    for (const nlohmann::json& item : links.at(0).at("addr_info")) {
        if (item.at("local") == "2001:db8:66::1") deprecated = item.value("deprecated", false);
    }
    EXPECT_TRUE(deprecated) << links;
}

TEST_F(SavedLinkState, Ipv6RoutesAreBackDefaultOnesToo) {
    Ip("-6 route add 2001:db8:61::/48 via 2001:db8:60::2 metric 77");
    Ip("-6 route add default via 2001:db8:60::3 proto static");
    Ip("-6 route add 2001:db8:62::/48 dev " + Name() + " mtu 1300");
    ExpectAllBack();
}

TEST_F(SavedLinkState, Ipv6RouteThatExpiresStillDoes) {
    Ip("-6 route add 2001:db8:61::/48 dev " + Name() + " expires 500");
    const std::vector<HeldMessage> messages = Save();
    DownAndUp();
    RestoreAll(messages);
    const nlohmann::json shown = IpJson("-6 route show 2001:db8:61::/48");
    ASSERT_EQ(shown.size(), 1U);
    ASSERT_TRUE(shown[0].contains("expires")) << shown;
    EXPECT_GT(shown[0].at("expires"), 400);
    EXPECT_LE(shown[0].at("expires"), 500);
}

TEST_F(SavedLinkState, PermanentNeighboursOfBothFamiliesAreBack) {
    Ip("neigh add 10.60.0.9 lladdr 02:00:00:00:00:09 nud permanent dev " + Name());
    Ip("-6 neigh add 2001:db8:60::9 lladdr 02:00:00:00:00:0a nud permanent router dev " + Name());
    ASSERT_EQ(IpJson("neigh show nud permanent dev " + Name()).size(), 2U);
    ExpectAllBack();
    EXPECT_EQ(IpJson("neigh show nud permanent dev " + Name()).size(), 2U);
}

TEST_F(SavedLinkState, EverythingAtOnceIsBack) {
    Ip("route add 10.61.0.0/16 via 10.60.0.2 metric 5");
    Ip("-6 addr add 2001:db8:65::1/64 dev " + Name());
    Ip("-6 route add 2001:db8:61::/48 via 2001:db8:65::2");
    Ip("neigh add 10.60.0.2 lladdr 02:00:00:00:00:09 nud permanent dev " + Name());
    ExpectAllBack();
}

TEST_F(SavedLinkState, WhatComesByItselfOrFromOthersIsNotSaved) {
    const std::size_t before = Save().size();
    ASSERT_EQ(before, 1U) << "the IPv6 address only";
    Ip("route add default via 10.60.0.2");
    Ip("route add 10.61.0.0/16 via 10.60.0.2 proto dhcp");
    Ip("route add 10.62.0.0/16 dev " + Name() + " proto kernel");
    Ip("route add 10.63.0.0/16 via 10.60.0.2 table 100");
    Ip("-6 route add 2001:db8:61::/48 via 2001:db8:60::2 proto ra");
    Ip("-6 route add 2001:db8:62::/48 dev " + Name() + " proto kernel");
    Ip("-6 route add 2001:db8:63::/48 dev " + Name() + " table 100");
    Ip("-6 addr add 2001:db8:64::1/64 valid_lft 900 preferred_lft 900 dev " + Name());
    Ip("neigh add 10.60.0.9 lladdr 02:00:00:00:00:09 nud reachable dev " + Name());
    Ip("neigh add proxy 10.60.0.8 dev " + Name());
    const ScopedVeth other;
    other.BringUp();
    Ip("addr add 10.64.0.1/24 dev " + other.Name());
    Ip("-6 addr add 2001:db8:68::1/64 dev " + other.Name());
    Ip("route add 10.65.0.0/16 via 10.64.0.2");
    Ip("neigh add 10.64.0.9 lladdr 02:00:00:00:00:09 nud permanent dev " + other.Name());
    EXPECT_EQ(Save().size(), before);
}

TEST_F(SavedLinkState, RestoringWhatIsThereIsSuccessAndChangesNothing) {
    Ip("route append 10.61.0.0/16 via 10.60.0.2 metric 5");
    Ip("route append 10.61.0.0/16 via 10.60.0.3 metric 5");
    Ip("-6 route add 2001:db8:61::/48 via 2001:db8:60::2");
    Ip("neigh add 10.60.0.9 lladdr 02:00:00:00:00:09 nud permanent dev " + Name());
    const std::vector<std::string> before = ShownSettled();
    const std::vector<HeldMessage> messages = Save();
    EXPECT_EQ(messages.size(), 5U);
    RestoreAll(messages);
    EXPECT_EQ(Shown(), before);
}

TEST_F(SavedLinkState, RestoringOnALinkThatIsDownGivesTheKernelsReason) {
    Ip("route add 10.61.0.0/16 via 10.60.0.2");
    std::vector<HeldMessage> messages = Save();
    std::erase_if(messages, [](const HeldMessage& message) { return message.type != RTM_NEWROUTE; });
    ASSERT_EQ(messages.size(), 1U);
    veth_.SetUp(false);
    const KernelAnswer answer = netlink_.Restore(messages[0]);
    EXPECT_EQ(answer.errnoValue, ENETUNREACH);
    EXPECT_EQ(answer.text, "Nexthop has invalid gateway");
}

TEST_F(SavedLinkState, OtherMessagesAreNotSent) {
    const std::vector<HeldMessage> messages = Save();
    ASSERT_EQ(messages.size(), 1U);
    HeldMessage message = messages[0];
    message.type = RTM_DELADDR;
    EXPECT_EQ(netlink_.Restore(message).errnoValue, EINVAL);
    message.type = RTM_NEWLINK;
    EXPECT_EQ(netlink_.Restore(message).errnoValue, EINVAL);
    EXPECT_EQ(netlink_.Restore({RTM_NEWROUTE, {}}).errnoValue, EINVAL);
    EXPECT_EQ(netlink_.Restore({RTM_NEWADDR, std::vector<std::uint8_t>(7)}).errnoValue, EINVAL);
    EXPECT_EQ(IpJson("-6 addr show scope global dev " + Name()).size(), 1U);
}

TEST(SaveLinkState, UnknownLinkHasNothingAndAnImpossibleIndexIsEnodev) {
    std::vector<HeldMessage> messages(3);
    EXPECT_EQ(Netlink().SaveLinkState(0, messages).errnoValue, ENODEV);
    EXPECT_TRUE(messages.empty());
}

}  // namespace
}  // namespace corvane
