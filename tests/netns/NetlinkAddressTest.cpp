#include <algorithm>
#include <cerrno>

#include <gtest/gtest.h>

#include "platform/linux/kernel/Netlink.h"
#include "tests/netns/NetnsSupport.h"

namespace corvane {
namespace {

using netns::Ip;
using netns::IpJson;
using netns::ScopedVeth;

KernelAddress Address(const ScopedVeth& veth, const Ipv4Bytes& address, std::uint8_t prefix) {
    KernelAddress record;
    record.index = veth.Index();
    record.address = address;
    record.prefix = prefix;
    return record;
}

/// The IPv4 addresses of the link as `ip` shows them.
nlohmann::json Shown(const ScopedVeth& veth) {
    const nlohmann::json links = IpJson("-4 addr show dev " + veth.Name());
    return links.empty() ? nlohmann::json::array() : links.at(0).at("addr_info");
}

std::vector<KernelAddress> Dumped(const ScopedVeth& veth) {
    std::vector<KernelAddress> addresses;
    EXPECT_EQ(Netlink().DumpAddresses(addresses).Words(), "");
    std::erase_if(addresses, [&](const KernelAddress& one) { return one.index != veth.Index(); });
    return addresses;
}

TEST(NetlinkAddresses, DumpShowsPrimariesSecondariesAndLifetimes) {
    const ScopedVeth veth;
    Ip("addr add 10.20.0.1/24 dev " + veth.Name());
    Ip("addr add 10.20.0.2/24 dev " + veth.Name());
    Ip("addr add 10.21.0.1/16 valid_lft 3000 preferred_lft 2000 dev " + veth.Name());

    const std::vector<KernelAddress> addresses = Dumped(veth);
    ASSERT_EQ(addresses.size(), 3U);
    KernelAddress expected = Address(veth, {10, 20, 0, 1}, 24);
    EXPECT_EQ(addresses[0], expected);
    // The kernel lists primaries before secondaries.
    const KernelAddress& limited = addresses[1];
    EXPECT_EQ(limited.address, (Ipv4Bytes{10, 21, 0, 1}));
    EXPECT_EQ(limited.prefix, 16);
    EXPECT_FALSE(limited.secondary);
    EXPECT_LE(limited.validSeconds, 3000U);
    EXPECT_GT(limited.validSeconds, 2000U);
    EXPECT_LE(limited.preferredSeconds, 2000U);
    EXPECT_GT(limited.preferredSeconds, 1000U);
    expected = Address(veth, {10, 20, 0, 2}, 24);
    expected.secondary = true;
    EXPECT_EQ(addresses[2], expected);
}

TEST(NetlinkAddresses, DumpTakesTheLinksOwnAddressAndNotThePeers) {
    const ScopedVeth veth;
    Ip("addr add 10.22.0.1 peer 10.22.0.9/32 dev " + veth.Name());
    const std::vector<KernelAddress> addresses = Dumped(veth);
    ASSERT_EQ(addresses.size(), 1U);
    EXPECT_EQ(addresses[0].address, (Ipv4Bytes{10, 22, 0, 1}));
}

TEST(AddAddress, SetsTheBroadcastOfThePrefixUpToThirty) {
    const ScopedVeth veth;
    Netlink netlink;
    ASSERT_EQ(netlink.AddAddress(Address(veth, {10, 23, 1, 1}, 20), false).Words(), "");
    ASSERT_EQ(netlink.AddAddress(Address(veth, {10, 24, 0, 5}, 30), false).Words(), "");
    ASSERT_EQ(netlink.AddAddress(Address(veth, {10, 25, 0, 2}, 31), false).Words(), "");
    ASSERT_EQ(netlink.AddAddress(Address(veth, {10, 26, 0, 1}, 32), false).Words(), "");
    const nlohmann::json shown = Shown(veth);
    ASSERT_EQ(shown.size(), 4U);
    EXPECT_EQ(shown[0].at("local"), "10.23.1.1");
    EXPECT_EQ(shown[0].at("prefixlen"), 20);
    EXPECT_EQ(shown[0].at("broadcast"), "10.23.15.255");
    EXPECT_EQ(shown[0].at("scope"), "global");
    EXPECT_EQ(shown[1].at("broadcast"), "10.24.0.7");
    EXPECT_EQ(shown[2].at("local"), "10.25.0.2");
    EXPECT_FALSE(shown[2].contains("broadcast"));
    EXPECT_EQ(shown[3].at("local"), "10.26.0.1");
    EXPECT_FALSE(shown[3].contains("broadcast"));
}

TEST(AddAddress, PermanentUnlessALifetimeIsGiven) {
    const ScopedVeth veth;
    Netlink netlink;
    ASSERT_EQ(netlink.AddAddress(Address(veth, {10, 27, 0, 1}, 24), false).Words(), "");
    KernelAddress leased = Address(veth, {10, 28, 0, 1}, 24);
    leased.validSeconds = 600;
    leased.preferredSeconds = 300;
    ASSERT_EQ(netlink.AddAddress(leased, false).Words(), "");
    const nlohmann::json shown = Shown(veth);
    ASSERT_EQ(shown.size(), 2U);
    EXPECT_EQ(shown[0].at("valid_life_time"), kForever);
    EXPECT_FALSE(shown[0].contains("dynamic"));
    EXPECT_TRUE(shown[1].value("dynamic", false));
    EXPECT_LE(shown[1].at("valid_life_time"), 600);
    EXPECT_GT(shown[1].at("valid_life_time"), 500);
    EXPECT_LE(shown[1].at("preferred_life_time"), 300);
}

TEST(AddAddress, PreferredLifetimeIsCutToTheValidOne) {
    const ScopedVeth veth;
    KernelAddress leased = Address(veth, {10, 28, 1, 1}, 24);
    leased.validSeconds = 600;
    ASSERT_EQ(Netlink().AddAddress(leased, false).Words(), "");
    const nlohmann::json shown = Shown(veth);
    ASSERT_EQ(shown.size(), 1U);
    EXPECT_LE(shown[0].at("preferred_life_time"), 600);
}

TEST(AddAddress, GoesByItselfAtTheEndOfItsLifetime) {
    const ScopedVeth veth;
    KernelAddress leased = Address(veth, {10, 29, 0, 1}, 24);
    leased.validSeconds = 1;
    leased.preferredSeconds = 1;
    ASSERT_EQ(Netlink().AddAddress(leased, false).Words(), "");
    EXPECT_TRUE(netns::WaitUntil([&] { return Shown(veth).empty(); }, 20000));
}

TEST(AddAddress, TheSamePairAgainIsEexistWithTheKernelsWords) {
    const ScopedVeth veth;
    Netlink netlink;
    ASSERT_EQ(netlink.AddAddress(Address(veth, {10, 30, 0, 1}, 24), false).Words(), "");
    const KernelAnswer again = netlink.AddAddress(Address(veth, {10, 30, 0, 1}, 24), false);
    EXPECT_EQ(again.errnoValue, EEXIST);
    EXPECT_EQ(again.text, "ipv4: Address already assigned");
    EXPECT_EQ(again.Words(), "File exists: ipv4: Address already assigned");
    EXPECT_EQ(netlink.AddAddress(Address(veth, {10, 30, 0, 1}, 16), false).Words(), "");
    EXPECT_EQ(Shown(veth).size(), 2U);
}

TEST(AddAddress, ReplaceGivesNewLifetimesAndTakesThemAway) {
    const ScopedVeth veth;
    Netlink netlink;
    KernelAddress address = Address(veth, {10, 31, 0, 1}, 24);
    address.validSeconds = 100;
    address.preferredSeconds = 100;
    ASSERT_EQ(netlink.AddAddress(address, true).Words(), "");
    address.validSeconds = 9000;
    address.preferredSeconds = 9000;
    ASSERT_EQ(netlink.AddAddress(address, true).Words(), "");
    ASSERT_EQ(Shown(veth).size(), 1U);
    EXPECT_GT(Shown(veth)[0].at("valid_life_time"), 8000);
    address.validSeconds = kForever;
    address.preferredSeconds = kForever;
    ASSERT_EQ(netlink.AddAddress(address, true).Words(), "");
    ASSERT_EQ(Shown(veth).size(), 1U);
    EXPECT_EQ(Shown(veth)[0].at("valid_life_time"), kForever);
}

TEST(AddAddress, UnknownLinkAndImpossiblePrefixAreRefused) {
    const ScopedVeth veth;
    Netlink netlink;
    KernelAddress address = Address(veth, {10, 32, 0, 1}, 33);
    EXPECT_EQ(netlink.AddAddress(address, false).errnoValue, EINVAL);
    address.prefix = 24;
    address.index = 987654;
    EXPECT_EQ(netlink.AddAddress(address, false).errnoValue, ENODEV);
    address.index = 0;
    EXPECT_EQ(netlink.AddAddress(address, false).errnoValue, ENODEV);
}

TEST(AddAddress, WorksOnALinkThatIsDownAndStaysOverDownAndUp) {
    const ScopedVeth veth;
    Netlink netlink;
    ASSERT_EQ(netlink.AddAddress(Address(veth, {10, 33, 0, 1}, 24), false).Words(), "");
    veth.BringUp();
    ASSERT_EQ(netlink.SetLinkUp(veth.Index(), false).Words(), "");
    EXPECT_EQ(Shown(veth).size(), 1U);
}

TEST(AddAddress, LoopbackAddressesHaveHostScope) {
    const ScopedVeth veth;
    ASSERT_EQ(Netlink().AddAddress(Address(veth, {127, 9, 0, 1}, 24), false).Words(), "");
    EXPECT_EQ(Shown(veth).at(0).at("scope"), "host");
}

TEST(DeleteAddress, TakesOnlyTheOneWithThisPrefix) {
    const ScopedVeth veth;
    Ip("addr add 10.34.0.1/16 dev " + veth.Name());
    Ip("addr add 10.34.0.1/24 dev " + veth.Name());
    ASSERT_EQ(Netlink().DeleteAddress(Address(veth, {10, 34, 0, 1}, 24)).Words(), "");
    const nlohmann::json shown = Shown(veth);
    ASSERT_EQ(shown.size(), 1U);
    EXPECT_EQ(shown[0].at("prefixlen"), 16);
}

TEST(DeleteAddress, APrimaryTakesItsSecondariesWithItAndASecondaryGoesAlone) {
    const ScopedVeth veth;
    netns::SetSysctl("net/ipv4/conf/" + veth.Name() + "/promote_secondaries", "0");
    netns::SetSysctl("net/ipv4/conf/all/promote_secondaries", "0");
    Ip("addr add 10.35.0.1/24 dev " + veth.Name());
    Ip("addr add 10.35.0.2/24 dev " + veth.Name());
    Ip("addr add 10.35.0.3/24 dev " + veth.Name());
    Netlink netlink;
    ASSERT_EQ(netlink.DeleteAddress(Address(veth, {10, 35, 0, 2}, 24)).Words(), "");
    EXPECT_EQ(Shown(veth).size(), 2U);
    ASSERT_EQ(netlink.DeleteAddress(Address(veth, {10, 35, 0, 1}, 24)).Words(), "");
    EXPECT_EQ(Shown(veth).size(), 0U);
}

TEST(DeleteAddress, OneThatIsNotThereIsEaddrnotavailWithTheKernelsWords) {
    const ScopedVeth veth;
    Ip("addr add 10.36.0.1 peer 10.36.0.9/32 dev " + veth.Name());
    Netlink netlink;
    const KernelAnswer absent = netlink.DeleteAddress(Address(veth, {10, 37, 0, 1}, 24));
    EXPECT_EQ(absent.errnoValue, EADDRNOTAVAIL);
    EXPECT_EQ(absent.text, "ipv4: Address not found");
    EXPECT_EQ(netlink.DeleteAddress(Address(veth, {10, 36, 0, 1}, 32)).errnoValue, EADDRNOTAVAIL);
    EXPECT_EQ(Shown(veth).size(), 1U);
    KernelAddress elsewhere = Address(veth, {10, 37, 0, 1}, 24);
    elsewhere.index = 987654;
    EXPECT_EQ(netlink.DeleteAddress(elsewhere).errnoValue, ENODEV);
}

}  // namespace
}  // namespace corvane
