#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "fakes/Fakes.h"
#include "netns/NetnsSupport.h"
#include "platform/linux/IpHelper.h"
#include "platform/linux/Machine.h"

namespace corvane {
namespace {

constexpr Ipv4Bytes kAddress{10, 91, 0, 5};
constexpr Ipv4Bytes kSecond{10, 91, 0, 6};
constexpr Ipv4Bytes kMask{255, 255, 255, 0};
constexpr MacBytes kMac{0x02, 0x00, 0x5e, 0x00, 0x53, 0x01};

/// A machine with one live interface, whose address is kMac, and one that is down.
class IpWorld {
 public:
    virtual ~IpWorld() = default;
    virtual IpHelperApi& Api() = 0;
    [[nodiscard]] virtual std::uint32_t Live() const = 0;
    [[nodiscard]] virtual std::uint32_t Down() const = 0;
};

class FakeIpWorld : public IpWorld {
 public:
    FakeIpWorld() {
        IfRow row;
        row.physAddr = kMac;
        row.adminStatus = 1;
        row.operStatus = 5;
        helper_.AddInterface(3, "{A}", row);
        helper_.texts[Win32Error::kAccessDenied] = "Access is denied.\r\n";
    }
    IpHelperApi& Api() override { return helper_; }
    [[nodiscard]] std::uint32_t Live() const override { return 3; }
    [[nodiscard]] std::uint32_t Down() const override { return 4; }

 private:
    FakeIpHelper helper_;
};

class LinuxIpWorld : public IpWorld {
 public:
    LinuxIpWorld() {
        netns::Ip("link set " + live_.Name() + " address 02:00:5e:00:53:01");
        live_.BringUp();
    }
    ~LinuxIpWorld() override { std::filesystem::remove_all(folder_); }
    IpHelperApi& Api() override { return helper_; }
    [[nodiscard]] std::uint32_t Live() const override { return live_.Index(); }
    [[nodiscard]] std::uint32_t Down() const override { return down_.Index(); }

 private:
    std::string folder_ = "/run/" + netns::NewLinkName("contract");
    netns::ScopedVeth live_;
    netns::ScopedVeth down_;
    IpHelper helper_{std::make_shared<Machine>(folder_ + "/registry.db")};
};

class IpHelperContract : public testing::TestWithParam<std::string> {
 protected:
    void SetUp() override {
        if (GetParam() == "Fake") {
            world_ = std::make_unique<FakeIpWorld>();
        } else {
            world_ = std::make_unique<LinuxIpWorld>();
        }
    }

    IpHelperApi& Api() { return world_->Api(); }
    std::uint32_t Live() { return world_->Live(); }

    /// The rows of the live interface.
    std::vector<IpAddrRow> LiveAddresses() {
        TableRead<IpAddrRow> table = Api().GetIpAddrTable();
        EXPECT_EQ(table.outcome, TableRead<IpAddrRow>::Outcome::kRows);
        std::erase_if(table.rows, [&](const IpAddrRow& row) { return row.index != Live(); });
        return table.rows;
    }
    std::vector<IpForwardRow> LiveDefaultRoutes() {
        TableRead<IpForwardRow> table = Api().GetIpForwardTable();
        EXPECT_EQ(table.outcome, TableRead<IpForwardRow>::Outcome::kRows);
        std::erase_if(table.rows, [&](const IpForwardRow& row) {
            return row.ifIndex != Live() || row.destination != Ipv4Bytes{} || row.mask != Ipv4Bytes{};
        });
        return table.rows;
    }

    std::unique_ptr<IpWorld> world_;
};

INSTANTIATE_TEST_SUITE_P(BackEnds, IpHelperContract, testing::Values("Fake", "Linux"),
                         [](const auto& instance) { return instance.param; });

TEST_P(IpHelperContract, InterfaceInfoListsLiveInterfacesOnlyUnderTheirDeviceName) {
    const TableRead<InterfaceEntry> table = Api().GetInterfaceInfo();
    ASSERT_EQ(table.outcome, TableRead<InterfaceEntry>::Outcome::kRows);
    int live = 0;
    for (const InterfaceEntry& entry : table.rows) {
        EXPECT_NE(entry.index, world_->Down());
        EXPECT_TRUE(entry.name.starts_with("\\DEVICE\\TCPIP_{")) << entry.name;
        EXPECT_TRUE(entry.name.ends_with("}")) << entry.name;
        if (entry.index == Live()) ++live;
    }
    EXPECT_EQ(live, 1);
}

TEST_P(IpHelperContract, IfEntryTellsAddressAndState) {
    IfRow row;
    ASSERT_EQ(Api().GetIfEntry(Live(), row), Win32Error::kSuccess);
    EXPECT_EQ(row.index, Live());
    EXPECT_EQ(row.physAddr, kMac);
    EXPECT_EQ(row.adminStatus, 1U);
    EXPECT_EQ(row.operStatus, 5U);
}

TEST_P(IpHelperContract, IfEntryOfAnUnknownIndexIsAnInvalidParameterAndLeavesTheRow) {
    IfRow row;
    row.speed = 77;
    EXPECT_EQ(Api().GetIfEntry(987654, row), Win32Error::kInvalidParameter);
    EXPECT_EQ(row.speed, 77U);
}

TEST_P(IpHelperContract, AnAddedAddressIsInTheTableWithItsMaskAndContext) {
    std::uint32_t context = 0;
    ASSERT_EQ(Api().AddIPAddress(kAddress, kMask, Live(), context), Win32Error::kSuccess);
    const std::vector<IpAddrRow> rows = LiveAddresses();
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].address, kAddress);
    EXPECT_EQ(rows[0].mask, kMask);
    EXPECT_EQ(rows[0].nteContext, context);
}

TEST_P(IpHelperContract, AddingAnAddressTwiceSaysThatItExists) {
    std::uint32_t context = 0;
    ASSERT_EQ(Api().AddIPAddress(kAddress, kMask, Live(), context), Win32Error::kSuccess);
    EXPECT_EQ(Api().AddIPAddress(kAddress, kMask, Live(), context), Win32Error::kObjectAlreadyExists);
    EXPECT_EQ(LiveAddresses().size(), 1U);
}

TEST_P(IpHelperContract, AnAddressThatNoHostMayHaveAndAnUnknownInterfaceAreInvalidParameters) {
    std::uint32_t context = 0;
    EXPECT_EQ(Api().AddIPAddress({}, kMask, Live(), context), Win32Error::kInvalidParameter);
    EXPECT_EQ(Api().AddIPAddress(kAddress, kMask, 987654, context), Win32Error::kInvalidParameter);
    EXPECT_TRUE(LiveAddresses().empty());
}

TEST_P(IpHelperContract, DeletingByContextTakesThatAddressAndNoOther) {
    std::uint32_t first = 0;
    std::uint32_t second = 0;
    ASSERT_EQ(Api().AddIPAddress(kAddress, kMask, Live(), first), Win32Error::kSuccess);
    ASSERT_EQ(Api().AddIPAddress(kSecond, kMask, Live(), second), Win32Error::kSuccess);
    EXPECT_NE(first, second);
    EXPECT_EQ(Api().DeleteIPAddress(first), Win32Error::kSuccess);
    const std::vector<IpAddrRow> rows = LiveAddresses();
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].address, kSecond);
    EXPECT_EQ(rows[0].nteContext, second);
}

TEST_P(IpHelperContract, AnUnknownContextIsAnInvalidParameter) {
    EXPECT_EQ(Api().DeleteIPAddress(0), Win32Error::kInvalidParameter);
    EXPECT_EQ(Api().DeleteIPAddress(54321), Win32Error::kInvalidParameter);
    EXPECT_EQ(Api().DeleteIPAddress(0x10001), Win32Error::kInvalidParameter);
}

TEST_P(IpHelperContract, AContextIsSpentWithItsAddress) {
    std::uint32_t context = 0;
    ASSERT_EQ(Api().AddIPAddress(kAddress, kMask, Live(), context), Win32Error::kSuccess);
    ASSERT_EQ(Api().DeleteIPAddress(context), Win32Error::kSuccess);
    EXPECT_EQ(Api().DeleteIPAddress(context), Win32Error::kInvalidParameter);
}

TEST_P(IpHelperContract, RoutesAreMadeListedAndDeleted) {
    std::uint32_t context = 0;
    ASSERT_EQ(Api().AddIPAddress(kAddress, kMask, Live(), context), Win32Error::kSuccess);
    IpForwardRow route;
    route.nextHop = {10, 91, 0, 1};
    route.ifIndex = Live();
    route.metric1 = 20;
    ASSERT_EQ(Api().CreateIpForwardEntry(route), Win32Error::kSuccess);
    EXPECT_EQ(Api().CreateIpForwardEntry(route), Win32Error::kObjectAlreadyExists);
    const std::vector<IpForwardRow> rows = LiveDefaultRoutes();
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].nextHop, route.nextHop);
    EXPECT_EQ(rows[0].metric1, 20U);
    EXPECT_EQ(Api().DeleteIpForwardEntry(route), Win32Error::kSuccess);
    EXPECT_TRUE(LiveDefaultRoutes().empty());
    EXPECT_EQ(Api().DeleteIpForwardEntry(route), Win32Error::kNotFound);
}

TEST_P(IpHelperContract, MetricZeroDeletesTheRouteInForceAndAnotherMetricThatRouteOnly) {
    std::uint32_t context = 0;
    ASSERT_EQ(Api().AddIPAddress(kAddress, kMask, Live(), context), Win32Error::kSuccess);
    IpForwardRow route;
    route.ifIndex = Live();
    // The first in the table is not the one that is looked for.
    route.nextHop = {10, 91, 0, 2};
    route.metric1 = 5;
    ASSERT_EQ(Api().CreateIpForwardEntry(route), Win32Error::kSuccess);
    route.nextHop = {10, 91, 0, 1};
    for (const std::uint32_t metric : {30U, 10U, 20U}) {
        route.metric1 = metric;
        ASSERT_EQ(Api().CreateIpForwardEntry(route), Win32Error::kSuccess);
    }
    const auto metrics = [&] {
        std::vector<std::uint32_t> left;
        for (const IpForwardRow& row : LiveDefaultRoutes()) left.push_back(row.metric1);
        std::sort(left.begin(), left.end());
        return left;
    };
    using Metrics = std::vector<std::uint32_t>;
    route.metric1 = 0;
    EXPECT_EQ(Api().DeleteIpForwardEntry(route), Win32Error::kSuccess);
    EXPECT_EQ(metrics(), (Metrics{5, 20, 30}));
    route.metric1 = 10;
    EXPECT_EQ(Api().DeleteIpForwardEntry(route), Win32Error::kNotFound);
    route.metric1 = 30;
    EXPECT_EQ(Api().DeleteIpForwardEntry(route), Win32Error::kSuccess);
    EXPECT_EQ(metrics(), (Metrics{5, 20}));
    route.metric1 = 0;
    EXPECT_EQ(Api().DeleteIpForwardEntry(route), Win32Error::kSuccess);
    EXPECT_EQ(metrics(), Metrics{5});
    EXPECT_EQ(Api().DeleteIpForwardEntry(route), Win32Error::kNotFound);
    EXPECT_EQ(metrics(), Metrics{5});
}

TEST_P(IpHelperContract, SystemTextsEndInALineBreakAndAreEmptyForUnknownNumbers) {
    EXPECT_TRUE(Api().SystemText(Win32Error::kAccessDenied).ends_with("\n"));
    EXPECT_EQ(Api().SystemText(static_cast<Win32Error>(4000000001U)), "");
}

}  // namespace
}  // namespace corvane
