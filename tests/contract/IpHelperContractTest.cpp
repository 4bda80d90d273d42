#include <algorithm>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "tests/contract/IpHelperWorld.h"
#include "tests/fakes/Fakes.h"

namespace corvane {
namespace {

constexpr Ipv4Bytes kAddress{10, 91, 0, 5};
constexpr Ipv4Bytes kSecond{10, 91, 0, 6};
constexpr Ipv4Bytes kMask{255, 255, 255, 0};
constexpr std::uint32_t kUnknown = 987654;

class FakeIpWorld : public contract::IpHelperWorld {
 public:
    FakeIpWorld() {
        IfRow row;
        row.physAddr = contract::kLiveMac;
        row.adminStatus = 1;
        row.operStatus = 5;
        helper_.AddInterface(3, "{A}", row);
        helper_.releaseResult = helper_.renewResult = Win32Error::kNotSupported;
        helper_.texts[Win32Error::kAccessDenied] = "Access is denied.\r\n";
    }
    IpHelperApi& Api() override { return helper_; }
    [[nodiscard]] std::uint32_t Live() const override { return 3; }
    [[nodiscard]] std::uint32_t Down() const override { return 4; }

 private:
    FakeIpHelper helper_;
};

using IpHelperCase = contract::NamedWorld<contract::IpHelperWorld>;

class IpHelperContract : public testing::TestWithParam<IpHelperCase> {
 protected:
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

    /// What a call must answer: what the contract says, or what the world's system says instead.
    Win32Error Answer(const char* what, Win32Error byContract) {
        const contract::Limit* const limit = world_->LimitOf(what);
        return limit == nullptr ? byContract : limit->answer;
    }
    /// True when the world's system cannot do the call: it has then said so in its own words and changed
    /// nothing.
    bool IsBeyondTheSystem(const char* call, Win32Error said) {
        const contract::Limit* const limit = world_->LimitOf(call);
        if (limit == nullptr) return false;
        EXPECT_EQ(said, limit->answer) << limit->reason;
        EXPECT_TRUE(LiveAddresses().empty());
        EXPECT_TRUE(LiveDefaultRoutes().empty());
        return true;
    }
    /// Adds an address to the live interface. False when that failed, or is beyond the system.
    bool CanAdd(const Ipv4Bytes& address, std::uint32_t& context) {
        const Win32Error said = Api().AddIPAddress(address, kMask, Live(), context);
        if (IsBeyondTheSystem("AddIPAddress", said)) return false;
        EXPECT_EQ(said, Win32Error::kSuccess);
        return Ok(said);
    }
    /// True when the system has no routes to be made or deleted.
    bool RoutesAreBeyondTheSystem(const IpForwardRow& route) {
        if (world_->LimitOf("CreateIpForwardEntry") == nullptr) return false;
        return IsBeyondTheSystem("CreateIpForwardEntry", Api().CreateIpForwardEntry(route)) &&
               IsBeyondTheSystem("DeleteIpForwardEntry", Api().DeleteIpForwardEntry(route));
    }

    std::unique_ptr<contract::IpHelperWorld> world_ = GetParam().make();
};

INSTANTIATE_TEST_SUITE_P(BackEnds, IpHelperContract,
                         testing::ValuesIn(contract::WithFake<FakeIpWorld>(contract::SystemIpHelperWorlds())),
                         [](const auto& world) { return world.param.name; });

TEST_P(IpHelperContract, InterfaceInfoListsLiveInterfacesOnlyUnderTheirDeviceName) {
    const TableRead<InterfaceEntry> table = Api().GetInterfaceInfo();
    ASSERT_EQ(table.outcome, TableRead<InterfaceEntry>::Outcome::kRows);
    int live = 0;
    int down = 0;
    for (const InterfaceEntry& entry : table.rows) {
        EXPECT_TRUE(entry.name.starts_with("\\DEVICE\\TCPIP_{")) << entry.name;
        EXPECT_TRUE(entry.name.ends_with("}")) << entry.name;
        if (entry.index == Live()) ++live;
        if (entry.index == world_->Down()) ++down;
    }
    EXPECT_EQ(live, 1);
    EXPECT_EQ(down, world_->LimitOf("GetInterfaceInfo leaves out what is down") == nullptr ? 0 : 1);
}

TEST_P(IpHelperContract, IfEntryTellsAddressAndState) {
    IfRow row;
    ASSERT_EQ(Api().GetIfEntry(Live(), row), Win32Error::kSuccess);
    EXPECT_EQ(row.index, Live());
    EXPECT_EQ(row.physAddr, contract::kLiveMac);
    EXPECT_EQ(row.adminStatus, 1U);
    EXPECT_EQ(row.operStatus, 5U);
}

TEST_P(IpHelperContract, IfEntryOfAnUnknownIndexIsAnInvalidParameterAndLeavesTheRow) {
    IfRow row;
    row.speed = 77;
    EXPECT_EQ(Api().GetIfEntry(kUnknown, row),
              Answer("GetIfEntry of an unknown index", Win32Error::kInvalidParameter));
    EXPECT_EQ(row.speed, 77U);
}

TEST_P(IpHelperContract, AnAddedAddressIsInTheTableWithItsMaskAndContext) {
    std::uint32_t context = 0;
    if (!CanAdd(kAddress, context)) return;
    const std::vector<IpAddrRow> rows = LiveAddresses();
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].address, kAddress);
    EXPECT_EQ(rows[0].mask, kMask);
    EXPECT_EQ(rows[0].nteContext, context);
}

TEST_P(IpHelperContract, AddingAnAddressTwiceSaysThatItExists) {
    std::uint32_t context = 0;
    if (!CanAdd(kAddress, context)) return;
    EXPECT_EQ(Api().AddIPAddress(kAddress, kMask, Live(), context), Win32Error::kObjectAlreadyExists);
    EXPECT_EQ(LiveAddresses().size(), 1U);
}

TEST_P(IpHelperContract, AnAddressThatNoHostMayHaveAndAnUnknownInterfaceAreInvalidParameters) {
    std::uint32_t context = 0;
    const Win32Error refused = Answer("AddIPAddress", Win32Error::kInvalidParameter);
    EXPECT_EQ(Api().AddIPAddress({}, kMask, Live(), context), refused);
    EXPECT_EQ(Api().AddIPAddress(kAddress, kMask, kUnknown, context), refused);
    EXPECT_TRUE(LiveAddresses().empty());
}

TEST_P(IpHelperContract, DeletingByContextTakesThatAddressAndNoOther) {
    std::uint32_t first = 0;
    std::uint32_t second = 0;
    if (!CanAdd(kAddress, first)) return;
    if (!CanAdd(kSecond, second)) return;
    EXPECT_NE(first, second);
    EXPECT_EQ(Api().DeleteIPAddress(first), Win32Error::kSuccess);
    const std::vector<IpAddrRow> rows = LiveAddresses();
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].address, kSecond);
    EXPECT_EQ(rows[0].nteContext, second);
}

TEST_P(IpHelperContract, AnUnknownContextIsAnInvalidParameter) {
    const Win32Error refused = Answer("DeleteIPAddress", Win32Error::kInvalidParameter);
    for (const std::uint32_t context : {0U, 54321U, 0x10001U}) {
        EXPECT_EQ(Api().DeleteIPAddress(context), refused);
    }
}

TEST_P(IpHelperContract, AContextIsSpentWithItsAddress) {
    std::uint32_t context = 0;
    if (!CanAdd(kAddress, context)) return;
    ASSERT_EQ(Api().DeleteIPAddress(context), Win32Error::kSuccess);
    EXPECT_EQ(Api().DeleteIPAddress(context), Win32Error::kInvalidParameter);
}

TEST_P(IpHelperContract, RoutesAreMadeListedAndDeleted) {
    IpForwardRow route;
    route.nextHop = {10, 91, 0, 1};
    route.ifIndex = Live();
    route.metric1 = 20;
    if (RoutesAreBeyondTheSystem(route)) return;
    std::uint32_t context = 0;
    if (!CanAdd(kAddress, context)) return;
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
    IpForwardRow route;
    route.ifIndex = Live();
    if (RoutesAreBeyondTheSystem(route)) return;
    std::uint32_t context = 0;
    if (!CanAdd(kAddress, context)) return;
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

TEST_P(IpHelperContract, ALinkWithoutDhcpHasNoLeaseToGiveBackOrToAskFor) {
    const TableRead<InterfaceEntry> table = Api().GetInterfaceInfo();
    const auto live = std::find_if(table.rows.begin(), table.rows.end(),
                                   [&](const InterfaceEntry& entry) { return entry.index == Live(); });
    ASSERT_NE(live, table.rows.end());
    EXPECT_EQ(Api().IpReleaseAddress(*live), Answer("IpReleaseAddress", Win32Error::kNotSupported));
    EXPECT_EQ(Api().IpRenewAddress(*live), Answer("IpRenewAddress", Win32Error::kNotSupported));
}

TEST_P(IpHelperContract, SystemTextsEndInALineBreakAndAreEmptyForUnknownNumbers) {
    EXPECT_TRUE(Api().SystemText(Win32Error::kAccessDenied).ends_with("\n"));
    EXPECT_EQ(Api().SystemText(static_cast<Win32Error>(4000000001U)), "");
}

}  // namespace
}  // namespace corvane
