#include <gtest/gtest.h>

#include "platform/linux/kernel/Ethtool.h"
#include "platform/linux/kernel/Netlink.h"
#include "platform/linux/links/DeviceNames.h"
#include "tests/netns/NetnsSupport.h"

namespace corvane {
namespace {

using netns::NewLinkName;
using netns::ScopedLink;
using netns::ScopedTun;
using netns::ScopedVeth;

TEST(Ethtool, SpeedsOfLinksThatKnowOne) {
    const ScopedVeth veth;
    const ScopedTun tap("tap");
    Ethtool ethtool;
    EXPECT_EQ(ethtool.Speed(veth.Name()), 10'000'000'000U);
    EXPECT_EQ(ethtool.Speed(tap.Name()), 10'000'000'000U);
}

TEST(Ethtool, SpeedIsZeroWhenUnknownOrWhenThereIsNoSuchQuestion) {
    const ScopedLink bridge(NewLinkName("br"), "type bridge");
    Ethtool ethtool;
    EXPECT_EQ(ethtool.Speed(bridge.Name()), 0U);
    EXPECT_EQ(ethtool.Speed("lo"), 0U);
    EXPECT_EQ(ethtool.Speed("nosuchlink0"), 0U);
    EXPECT_EQ(ethtool.Speed(""), 0U);
    EXPECT_EQ(ethtool.Speed("a-name-longer-than-fifteen"), 0U);
}

TEST(Ethtool, DriverAndBus) {
    const ScopedVeth veth;
    const ScopedTun tap("tap");
    Ethtool ethtool;
    EXPECT_EQ(ethtool.Driver(veth.Name()).driver, "veth");
    EXPECT_EQ(ethtool.Driver(tap.Name()).driver, "tun");
    EXPECT_EQ(ethtool.Driver(tap.Name()).bus, "tap");
    const Ethtool::DriverInfo unknown = ethtool.Driver("nosuchlink0");
    EXPECT_EQ(unknown.driver, "");
    EXPECT_EQ(unknown.bus, "");
}

TEST(NameDevice, RealLinksOfEachVirtualKind) {
    const ScopedVeth veth;
    const ScopedTun tap("tap");
    const ScopedLink bridge(NewLinkName("br"), "type bridge");
    const ScopedLink macvlan(NewLinkName("mv"), "link " + veth.Name() + " type macvlan");
    Netlink netlink;
    Ethtool ethtool;
    const auto name = [&](std::uint32_t index) {
        KernelLink link;
        EXPECT_EQ(netlink.GetLink(index, link).Words(), "");
        return NameDevice(link, ethtool);
    };
    EXPECT_EQ(name(veth.Index()).description, "Virtual Ethernet");
    EXPECT_EQ(name(veth.Index()).componentId, "veth");
    EXPECT_EQ(name(bridge.Index()).description, "Network Bridge");
    EXPECT_EQ(name(bridge.Index()).componentId, "ms_bridgemp");
    EXPECT_EQ(name(tap.Index()).description, "TUN/TAP Adapter");
    EXPECT_EQ(name(tap.Index()).componentId, "tun");
    EXPECT_EQ(name(macvlan.Index()).description, "MAC VLAN");
    EXPECT_EQ(name(netns::LinkIndex("lo")).description, "Loopback Interface");
    EXPECT_EQ(name(netns::LinkIndex("lo")).componentId, "loopback");
}

}  // namespace
}  // namespace corvane
