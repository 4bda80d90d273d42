#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <memory>
#include <string>

#include <gtest/gtest.h>
#include <linux/rtnetlink.h>

#include "netns/AnsweringTransport.h"
#include "netns/NetnsSupport.h"
#include "platform/linux/ConnectionsFolder.h"
#include "platform/linux/IpHelper.h"
#include "platform/linux/NameServers.h"

namespace corvane {
namespace {

using netns::Ip;

/// The error numbers of the kernel's dumps; 0 lets them through.
struct DumpRefusals {
    int links = 0;
    int addresses = 0;
    int routes = 0;
};

/// The kernel, but for these dumps.
class UnreadableTransport : public netns::AnsweringTransport {
 public:
    explicit UnreadableTransport(DumpRefusals& refusals) : refusals_(refusals) {}

 private:
    std::optional<Answer> AnswerTo(const nlmsghdr& header, ByteSpan) override {
        const int refusal = RefusalOf(header.nlmsg_type);
        const bool dump = (header.nlmsg_flags & NLM_F_DUMP) == NLM_F_DUMP;
        return dump && refusal != 0 ? std::optional(Answer{refusal, ""}) : std::nullopt;
    }

    [[nodiscard]] int RefusalOf(unsigned type) const {
        if (type == RTM_GETLINK) return refusals_.links;
        if (type == RTM_GETADDR) return refusals_.addresses;
        return type == RTM_GETROUTE ? refusals_.routes : 0;
    }

    DumpRefusals& refusals_;
};

class UnreadableKernelTest : public testing::Test {
 protected:
    UnreadableKernelTest() {
        link_.BringUp();
        Ip("address add 10.91.0.5/24 dev " + link_.Name());
    }
    ~UnreadableKernelTest() override { std::filesystem::remove_all(folder_); }

    /// Makes the next call ask the kernel.
    void Change() { Ip("address add 10.91.0." + std::to_string(++host_) + "/24 dev " + link_.Name()); }

    template <class Row>
    static void ExpectFailed(const TableRead<Row>& table, Win32Error code) {
        EXPECT_EQ(table.outcome, TableRead<Row>::Outcome::kFailed);
        EXPECT_EQ(table.code, code);
        EXPECT_TRUE(table.rows.empty());
    }

    std::string folder_ = "/run/" + netns::NewLinkName("unread");
    netns::ScopedVeth link_;
    int host_ = 10;
    DumpRefusals kernel_;
    std::shared_ptr<Machine> machine_ = std::make_shared<Machine>(
        folder_ + "/registry.db", std::make_unique<Netlink>(std::make_unique<UnreadableTransport>(kernel_)));
    IpHelper helper_{machine_};
};

TEST_F(UnreadableKernelTest, EveryTableFailsWithTheKernelsNumberWhicheverDumpItRefuses) {
    for (int* const dump : {&kernel_.links, &kernel_.addresses, &kernel_.routes}) {
        Change();
        *dump = EACCES;
        ExpectFailed(helper_.GetInterfaceInfo(), Win32Error::kAccessDenied);
        ExpectFailed(helper_.GetIpAddrTable(), Win32Error::kAccessDenied);
        *dump = ENOMEM;
        ExpectFailed(helper_.GetIpForwardTable(), Win32Error::kNotEnoughMemory);
        *dump = 0;
        EXPECT_EQ(helper_.GetIpAddrTable().outcome, TableRead<IpAddrRow>::Outcome::kRows);
    }
}

TEST_F(UnreadableKernelTest, ATableThatFailedIsWholeAgainAtTheNextCall) {
    kernel_.addresses = EACCES;
    ExpectFailed(helper_.GetIpAddrTable(), Win32Error::kAccessDenied);
    kernel_.addresses = 0;
    const std::vector<IpAddrRow> rows = helper_.GetIpAddrTable().rows;
    EXPECT_TRUE(std::any_of(rows.begin(), rows.end(), [](const IpAddrRow& row) {
        return row.address == Ipv4Bytes{10, 91, 0, 5};
    }));
}

TEST_F(UnreadableKernelTest, WhatNeedsThePictureIsRefusedAndChangesNothing) {
    kernel_.addresses = EACCES;
    std::uint32_t context = 0;
    EXPECT_EQ(helper_.AddIPAddress({10, 91, 0, 77}, {255, 255, 255, 0}, link_.Index(), context),
              Win32Error::kAccessDenied);
    EXPECT_EQ(helper_.DeleteIpForwardEntry({{10, 91, 0, 0}, {255, 255, 255, 0}, {}, link_.Index(), 3, 2, 0}),
              Win32Error::kAccessDenied);
    std::vector<std::string> names{"as it was"};
    EXPECT_TRUE(ConnectionsFolder(machine_).FolderItems(0, names).Words().starts_with(
        "The links cannot be listed: "));
    EXPECT_EQ(names, std::vector<std::string>{"as it was"});
    EXPECT_TRUE(NameServers(machine_).PutInForce("{X}").Words().starts_with("the links cannot be listed: "));
    kernel_.addresses = 0;
    const std::vector<IpAddrRow> rows = helper_.GetIpAddrTable().rows;
    EXPECT_TRUE(std::none_of(rows.begin(), rows.end(), [](const IpAddrRow& row) {
        return row.address == Ipv4Bytes{10, 91, 0, 77};
    }));
}

class IpHelperTest : public testing::Test {
 protected:
    IpHelperTest() { link_.BringUp(); }
    ~IpHelperTest() override { std::filesystem::remove_all(folder_); }

    std::string folder_ = "/run/" + netns::NewLinkName("helper");
    netns::ScopedVeth link_;
    IpHelper helper_{std::make_shared<Machine>(folder_ + "/registry.db")};
};

TEST_F(IpHelperTest, AddressesAreListedInAscendingOrder) {
    Ip("address add 10.91.0.9/24 dev " + link_.Name());
    Ip("address add 10.91.0.5/24 dev " + link_.Name());
    Ip("address add 9.1.1.1/8 dev " + link_.Name());
    const std::vector<IpAddrRow> rows = helper_.GetIpAddrTable().rows;
    EXPECT_TRUE(std::is_sorted(rows.begin(), rows.end(),
                               [](const IpAddrRow& a, const IpAddrRow& b) { return a.address < b.address; }));
    EXPECT_GE(rows.size(), 3U);
}

TEST_F(IpHelperTest, RoutesAreListedByDestinationThenMetric) {
    Ip("address add 10.91.0.5/24 dev " + link_.Name());
    Ip("route add default via 10.91.0.1 metric 20");
    Ip("route add default via 10.91.0.2 metric 10");
    const std::vector<IpForwardRow> rows = helper_.GetIpForwardTable().rows;
    ASSERT_GE(rows.size(), 3U);
    EXPECT_EQ(rows[0].nextHop, (Ipv4Bytes{10, 91, 0, 2}));
    EXPECT_EQ(rows[0].metric1, 10U);
    EXPECT_EQ(rows[0].type, 4U);
    EXPECT_EQ(rows[1].nextHop, (Ipv4Bytes{10, 91, 0, 1}));
    EXPECT_EQ(rows[2].type, 3U) << "the connected network is direct";
    Ip("route flush default");
}

TEST_F(IpHelperTest, ContextsStayTheSameFromReadToRead) {
    Ip("address add 10.91.0.5/24 dev " + link_.Name());
    const std::uint16_t first = helper_.GetIpAddrTable().rows.back().nteContext;
    Ip("address add 10.91.0.4/24 dev " + link_.Name());
    EXPECT_EQ(helper_.GetIpAddrTable().rows.back().nteContext, first);
    EXPECT_NE(first, 0U);
}

TEST_F(IpHelperTest, DeletingAPrimaryAddressLeavesItsSecondaryOnes) {
    for (const char* address : {"10.91.0.5/24", "10.91.0.6/24", "10.91.0.7/24"}) {
        Ip(std::string("address add ") + address + " dev " + link_.Name());
    }
    std::uint32_t context = 0;
    for (const IpAddrRow& row : helper_.GetIpAddrTable().rows) {
        if (row.address == Ipv4Bytes{10, 91, 0, 5}) context = row.nteContext;
    }
    ASSERT_EQ(helper_.DeleteIPAddress(context), Win32Error::kSuccess);
    std::vector<Ipv4Bytes> left;
    for (const IpAddrRow& row : helper_.GetIpAddrTable().rows) {
        if (row.index == link_.Index()) left.push_back(row.address);
    }
    EXPECT_EQ(left, (std::vector<Ipv4Bytes>{{10, 91, 0, 6}, {10, 91, 0, 7}}));
}

TEST_F(IpHelperTest, DeletingAPrimaryAddressLeavesTheRoutesThatDoNotNeedIt) {
    for (const char* address : {"10.91.0.5/24", "10.91.0.6/24"}) {
        Ip(std::string("address add ") + address + " dev " + link_.Name());
    }
    Ip("route add default via 10.91.0.1 metric 20 proto dhcp dev " + link_.Name());
    Ip("route add 10.50.0.0/16 via 10.91.0.2 mtu 1400 dev " + link_.Name());
    Ip("route add 10.60.0.0/16 src 10.91.0.5 dev " + link_.Name());
    std::uint32_t context = 0;
    for (const IpAddrRow& row : helper_.GetIpAddrTable().rows) {
        if (row.address == Ipv4Bytes{10, 91, 0, 5}) context = row.nteContext;
    }
    ASSERT_EQ(helper_.DeleteIPAddress(context), Win32Error::kSuccess);
    EXPECT_EQ(netns::Words(Ip("route show dev " + link_.Name())),
              netns::Words("default via 10.91.0.1 proto dhcp metric 20 "
                           "10.50.0.0/16 via 10.91.0.2 mtu 1400 "
                           "10.91.0.0/24 proto kernel scope link src 10.91.0.6"));
}

TEST_F(IpHelperTest, ARouteIsDeletedByItsWayWhateverItsMetricAndMaker) {
    Ip("address add 10.91.0.5/24 dev " + link_.Name());
    for (const char* made : {"metric 40 proto kernel", "metric 30", "metric 20 proto dhcp", "proto static"}) {
        Ip(std::string("route append default via 10.91.0.1 dev ") + link_.Name() + " " + made);
    }
    Ip("route add default via 10.91.0.2 metric 10 dev " + link_.Name());
    IpForwardRow row;
    row.nextHop = {10, 91, 0, 1};
    row.ifIndex = link_.Index();
    const std::vector<std::string> left = {"default via 10.91.0.1 proto dhcp metric 20",
                                           "default via 10.91.0.1 metric 30",
                                           "default via 10.91.0.1 proto kernel metric 40"};
    for (std::size_t gone = 0; gone <= left.size(); ++gone) {
        EXPECT_EQ(helper_.DeleteIpForwardEntry(row), Win32Error::kSuccess);
        std::string expected = "default via 10.91.0.2 metric 10";
        for (std::size_t i = gone; i < left.size(); ++i) expected += " " + left[i];
        EXPECT_EQ(netns::Words(Ip("route show default dev " + link_.Name())), netns::Words(expected));
    }
    EXPECT_EQ(helper_.DeleteIpForwardEntry(row), Win32Error::kNotFound);
}

TEST_F(IpHelperTest, SpeedAndCountersComeFromTheKernel) {
    IfRow row;
    ASSERT_EQ(helper_.GetIfEntry(link_.Index(), row), Win32Error::kSuccess);
    EXPECT_EQ(row.speed, 10000000000ULL);
    Ip("neigh add 10.91.0.77 lladdr 02:00:5e:00:53:77 dev " + link_.Name());
    Ip("address add 10.91.0.5/24 dev " + link_.Name());
    netns::RunCommand({"busybox", "ping", "-c", "1", "-W", "1", "10.91.0.77"});
    const auto statistics = [&] { return netns::IpJson("-s link show dev " + link_.Name())[0]["stats64"]; };
    const auto before = statistics();
    ASSERT_EQ(helper_.GetIfEntry(link_.Index(), row), Win32Error::kSuccess);
    const auto after = statistics();
    EXPECT_GT(row.outOctets, 0U);
    EXPECT_GE(row.outOctets, before["tx"]["bytes"].get<std::uint64_t>());
    EXPECT_LE(row.outOctets, after["tx"]["bytes"].get<std::uint64_t>());
    EXPECT_GE(row.inOctets, before["rx"]["bytes"].get<std::uint64_t>());
    EXPECT_LE(row.inOctets, after["rx"]["bytes"].get<std::uint64_t>());
}

TEST_F(IpHelperTest, AnEntryOfTheDumpIsHandedOutOnceAndThenReadAnew) {
    static_cast<void>(helper_.GetInterfaceInfo());
    IfRow row;
    ASSERT_EQ(helper_.GetIfEntry(link_.Index(), row), Win32Error::kSuccess);
    Ip("link set " + link_.Name() + " down");
    ASSERT_EQ(helper_.GetIfEntry(link_.Index(), row), Win32Error::kSuccess);
    EXPECT_EQ(row.adminStatus, 2U);
}

TEST_F(IpHelperTest, WithoutCarrierALinkIsDisconnectedOrUnreachable) {
    Ip("link set " + link_.Peer() + " down");
    ASSERT_TRUE(netns::WaitUntil(
        [&] { return netns::IpJson("link show dev " + link_.Name())[0]["operstate"] != "UP"; }));
    IfRow row;
    ASSERT_EQ(helper_.GetIfEntry(link_.Index(), row), Win32Error::kSuccess);
    EXPECT_EQ(row.adminStatus, 1U);
    EXPECT_TRUE(row.operStatus == 1U || row.operStatus == 2U) << row.operStatus;
}

TEST_F(IpHelperTest, LeasesOfALinkWithoutDhcpAreNotSupported) {
    const TableRead<InterfaceEntry> table = helper_.GetInterfaceInfo();
    ASSERT_FALSE(table.rows.empty());
    EXPECT_EQ(helper_.IpReleaseAddress(table.rows[0]), Win32Error::kNotSupported);
    EXPECT_EQ(helper_.IpRenewAddress(table.rows[0]), Win32Error::kNotSupported);
}

TEST_F(IpHelperTest, AMaskWithHolesIsAnInvalidParameter) {
    std::uint32_t context = 0;
    EXPECT_EQ(helper_.AddIPAddress({10, 91, 0, 5}, {255, 0, 255, 0}, link_.Index(), context),
              Win32Error::kInvalidParameter);
    IpForwardRow route;
    route.destination = {10, 92, 0, 0};
    route.mask = {255, 0, 255, 0};
    route.ifIndex = link_.Index();
    EXPECT_EQ(helper_.CreateIpForwardEntry(route), Win32Error::kInvalidParameter);
    EXPECT_EQ(helper_.DeleteIpForwardEntry(route), Win32Error::kInvalidParameter);
}

TEST_F(IpHelperTest, AGatewayOutsideEveryNetworkIsUnreachable) {
    IpForwardRow route;
    route.nextHop = {10, 99, 0, 1};
    route.ifIndex = link_.Index();
    EXPECT_EQ(helper_.CreateIpForwardEntry(route), Win32Error::kNetworkUnreachable);
}

}  // namespace
}  // namespace corvane
