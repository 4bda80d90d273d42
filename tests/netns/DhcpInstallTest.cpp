#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/mount.h>

#include "platform/RegistryKeys.h"
#include "platform/linux/dhcp/DhcpInstall.h"
#include "platform/linux/resolver/Dns.h"
#include "tests/netns/DhcpTestSupport.h"

/// Leases on a link, and name servers in the resolver's configuration, without a client.
namespace corvane::netns {
namespace {

class DhcpInstall : public DhcpFixture {
 protected:
    void SetUp() override {
        DhcpFixture::SetUp();
        veth_.BringUp();
        Introduce(veth_.Name(), kId);
    }

    static Lease MakeLease(Ipv4Bytes address, std::uint8_t prefix, Ipv4Bytes router) {
        Lease lease;
        lease.address = address;
        lease.prefix = prefix;
        lease.routes = {{{}, 0, router}};
        lease.seconds = 100;
        lease.renewSeconds = 50;
        lease.rebindSeconds = 87;
        return lease;
    }

    void SetText(const std::string& id, const std::string& name, std::string text) {
        text += '\0';
        RegistryStore store(RegistryStore::DefaultPath());
        ASSERT_TRUE(Ok(
            store.WriteValue(kHkeyLocalMachine, TcpipKey(id), name, {kRegSz, {text.begin(), text.end()}})));
    }

    bool Apply() {
        RegistryStore store(RegistryStore::DefaultPath());
        Netlink netlink;
        const Refusal refusal = ApplyDns(store, netlink);
        failure_ = refusal.Words();
        return !refusal;
    }

    static std::vector<std::string> Servers() {
        RegistryStore store(RegistryStore::DefaultPath());
        Netlink netlink;
        return MergedDnsServers(store, netlink);
    }

    ScopedVeth veth_;
    std::string failure_;
    std::vector<std::string> said_;
    LeaseInstaller installer_{veth_.Index(), kId,
                              [this](const std::string& words) { said_.push_back(words); }};
};

TEST_F(DhcpInstall, AGatewayOutsideTheNetworkIsReachedByARouteOfItsOwn) {
    EXPECT_TRUE(installer_.PutOnLink(MakeLease({10, 1, 2, 3}, 32, {10, 9, 9, 1}), 100));
    std::vector<std::string> routes = Routes(veth_.Name());
    std::sort(routes.begin(), routes.end());
    EXPECT_EQ(routes, (std::vector<std::string>{"10.9.9.1 - 0 dhcp", "default 10.9.9.1 0 dhcp"}));
    EXPECT_TRUE(said_.empty()) << said_[0];
    installer_.TakeFromLink();
    EXPECT_TRUE(Routes(veth_.Name()).empty());
    EXPECT_TRUE(Addresses(veth_.Name()).empty());
}

TEST_F(DhcpInstall, ALeaseWithoutEndIsAPermanentAddress) {
    EXPECT_TRUE(installer_.PutOnLink(MakeLease({10, 1, 2, 3}, 24, {10, 1, 2, 1}), kInfiniteLease));
    EXPECT_EQ(Addresses(veth_.Name()).at(0).value("valid_life_time", std::uint64_t{0}), 0xFFFFFFFFU);
    installer_.TakeFromLink();
}

TEST_F(DhcpInstall, ANewAddressReplacesTheFormer) {
    EXPECT_TRUE(installer_.PutOnLink(MakeLease({10, 1, 2, 3}, 24, {10, 1, 2, 1}), 100));
    EXPECT_TRUE(installer_.PutOnLink(MakeLease({10, 1, 2, 4}, 24, {10, 1, 2, 2}), 100));
    EXPECT_EQ(Address(veth_.Name()), "10.1.2.4");
    EXPECT_EQ(Routes(veth_.Name()), std::vector<std::string>{"default 10.1.2.2 0 dhcp"});
    EXPECT_TRUE(installer_.PutOnLink(MakeLease({10, 1, 2, 4}, 16, {10, 1, 2, 2}), 100));
    EXPECT_EQ(Addresses(veth_.Name()).at(0).value("prefixlen", 0), 16);
    EXPECT_EQ(Addresses(veth_.Name()).size(), 1U);
    installer_.TakeFromLink();
}

TEST_F(DhcpInstall, RoutesThatTheLeaseNoLongerHasGo) {
    Lease lease = MakeLease({10, 1, 2, 3}, 24, {10, 1, 2, 1});
    lease.routes.push_back({{192, 168, 0, 0}, 16, Ipv4Bytes{10, 1, 2, 9}});
    EXPECT_TRUE(installer_.PutOnLink(lease, 100));
    EXPECT_EQ(Routes(veth_.Name()).size(), 2U);
    lease.routes.pop_back();
    EXPECT_TRUE(installer_.PutOnLink(lease, 100));
    EXPECT_EQ(Routes(veth_.Name()), std::vector<std::string>{"default 10.1.2.1 0 dhcp"});
    installer_.TakeFromLink();
}

TEST_F(DhcpInstall, RoutesOfOthersStay) {
    EXPECT_TRUE(installer_.PutOnLink(MakeLease({10, 1, 2, 3}, 24, {10, 1, 2, 1}), 100));
    // Without any address left the kernel itself would drop every route of the link.
    Ip("address add 10.200.0.1/24 dev " + veth_.Name());
    Ip("route add 172.16.0.0/12 dev " + veth_.Name());
    installer_.TakeFromLink();
    EXPECT_EQ(Routes(veth_.Name()), std::vector<std::string>{"172.16.0.0/12 - 0 "});
}

TEST_F(DhcpInstall, OnALinkThatIsGoneTheLeaseCannotBeUsed) {
    Ip("link del " + veth_.Name());
    EXPECT_FALSE(installer_.PutOnLink(MakeLease({10, 1, 2, 3}, 24, {10, 1, 2, 1}), 100));
    ASSERT_EQ(said_.size(), 1U);
    EXPECT_NE(said_[0].find("10.1.2.3/24"), std::string::npos) << said_[0];
    installer_.TakeFromLink();
    EXPECT_EQ(said_.size(), 1U) << "there is nothing to take away";
}

TEST_F(DhcpInstall, APermanentAddressIsNotTakenForALease) {
    Ip("address add 10.1.2.3/24 dev " + veth_.Name());
    SetText(kId, "DhcpIPAddress", "10.1.2.3");
    installer_.Adopt();
    installer_.TakeFromLink();
    const nlohmann::json addresses = netns::IpJson("-4 address show dev " + veth_.Name())[0]["addr_info"];
    ASSERT_EQ(addresses.size(), 1U);
    EXPECT_EQ(addresses[0]["local"], "10.1.2.3");
}

TEST_F(DhcpInstall, AStoreThatCannotBeWrittenIsReported) {
    setenv("NICX_REGISTRY", "/proc/nowhere/registry.db", 1);
    installer_.Record(MakeLease({10, 1, 2, 3}, 24, {10, 1, 2, 1}));
    ASSERT_FALSE(said_.empty());
    EXPECT_NE(said_[0].find("/proc/nowhere/registry.db"), std::string::npos) << said_[0];
}

TEST_F(DhcpInstall, NameServersOfAllLinksThatAreUpAreMergedInOrder) {
    const ScopedVeth second;
    second.SetUp(true);
    Introduce(second.Name(), kOtherId);
    SetText(kId, "NameServer", "10.0.0.1, 2001:db8::1 ,bad,10.0.0.2");
    SetText(kId, "DhcpNameServer", "10.0.0.99");
    SetText(kOtherId, "NameServer", "");
    SetText(kOtherId, "DhcpNameServer", "10.0.0.2 10.0.0.3 300.1.1.1");
    EXPECT_EQ(Servers(), (std::vector<std::string>{"10.0.0.1", "2001:db8::1", "10.0.0.2", "10.0.0.3"}));
    second.SetUp(false);
    EXPECT_EQ(Servers(), (std::vector<std::string>{"10.0.0.1", "2001:db8::1", "10.0.0.2"}));
    veth_.SetUp(false);
    EXPECT_TRUE(Servers().empty());
}

TEST_F(DhcpInstall, AFileThatIsAMountPointIsWrittenInPlace) {
    SetText(kId, "NameServer", "10.0.0.1");
    ASSERT_TRUE(Apply()) << failure_;
    EXPECT_NE(File(kResolvConf).find("\nnameserver 10.0.0.1\n"), std::string::npos) << File(kResolvConf);
    EXPECT_TRUE(File(kResolvConf).ends_with(kOriginal));
    EXPECT_EQ(File("/run/sandbox/resolv.conf"), File(kResolvConf)) << "the file bound there";
    EXPECT_EQ(File("/run/dhcp-test/resolv.conf.before"), kOriginal);
    SetText(kId, "NameServer", "");
    ASSERT_TRUE(Apply()) << failure_;
    EXPECT_EQ(File(kResolvConf), kOriginal);
}

TEST_F(DhcpInstall, AReadOnlyFileIsLeftAloneInWords) {
    SetText(kId, "NameServer", "10.0.0.1");
    ASSERT_EQ(mount(nullptr, kResolvConf, nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr), 0);
    EXPECT_FALSE(Apply());
    EXPECT_NE(failure_.find(kResolvConf), std::string::npos) << failure_;
    EXPECT_NE(failure_.find("Read-only"), std::string::npos) << failure_;
    EXPECT_NE(failure_.find("make it writable"), std::string::npos) << failure_;
    EXPECT_EQ(File(kResolvConf), kOriginal);
}

TEST_F(DhcpInstall, ADamagedStoreLeavesTheNameServersAlone) {
    SetText(kId, "NameServer", "10.0.0.1");
    ASSERT_TRUE(Apply()) << failure_;
    const std::string before = File(kResolvConf);
    std::ofstream("/run/dhcp-test/damaged.db") << std::string(8192, 'x');
    setenv("NICX_REGISTRY", "/run/dhcp-test/damaged.db", 1);
    EXPECT_FALSE(Apply());
    EXPECT_NE(failure_, "");
    EXPECT_EQ(File(kResolvConf), before);
}

}  // namespace
}  // namespace corvane::netns
