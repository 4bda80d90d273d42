#include <algorithm>
#include <set>

#include <gtest/gtest.h>

#include "platform/windows/WindowsIpHelper.h"
#include "tests/wine/contract/Links.h"
#include "tests/wine/contract/WineLimits.h"

/// What others have set up is read as it is: the script `links` is the other.
namespace corvane {
namespace {

using contract::LinkIndex;

TEST(WindowsIpHelper, AddressesOfTheHostAreListedInAscendingOrderWithTheirMasks) {
    WindowsIpHelper helper;
    TableRead<IpAddrRow> table = helper.GetIpAddrTable();
    ASSERT_EQ(table.outcome, TableRead<IpAddrRow>::Outcome::kRows);
    EXPECT_TRUE(std::is_sorted(table.rows.begin(), table.rows.end(),
                               [](const IpAddrRow& a, const IpAddrRow& b) { return a.address < b.address; }));
    std::erase_if(table.rows, [](const IpAddrRow& row) { return row.index != LinkIndex("CORVANE_GIVEN"); });
    ASSERT_EQ(table.rows.size(), 2U);
    EXPECT_EQ(table.rows[0].address, (Ipv4Bytes{10, 91, 7, 5}));
    EXPECT_EQ(table.rows[0].mask, (Ipv4Bytes{255, 255, 255, 128}));
    EXPECT_EQ(table.rows[1].address, (Ipv4Bytes{10, 91, 7, 9}));
    EXPECT_EQ(table.rows[1].mask, (Ipv4Bytes{255, 255, 255, 0}));
}

TEST(WindowsIpHelper, RoutesOfTheHostAreListed) {
    WindowsIpHelper helper;
    TableRead<IpForwardRow> table = helper.GetIpForwardTable();
    ASSERT_EQ(table.outcome, TableRead<IpForwardRow>::Outcome::kRows);
    std::erase_if(table.rows, [](const IpForwardRow& row) { return row.mask != Ipv4Bytes{}; });
    ASSERT_EQ(table.rows.size(), 1U);
    const IpForwardRow& route = table.rows[0];
    EXPECT_EQ(route.destination, Ipv4Bytes{});
    EXPECT_EQ(route.nextHop, (Ipv4Bytes{10, 91, 7, 1}));
    EXPECT_EQ(route.ifIndex, LinkIndex("CORVANE_GIVEN"));
    EXPECT_EQ(route.type, 4U);
    const bool asTheyAre = contract::WineLimit("GetIpForwardTable gives metrics as they are") == nullptr;
    EXPECT_EQ(route.metric1, asTheyAre ? 20U : 0x20U);
}

TEST(WindowsIpHelper, EveryRowOfTheInterfacesTableHasAnEntryOfItsOwnIndex) {
    WindowsIpHelper helper;
    const TableRead<InterfaceEntry> table = helper.GetInterfaceInfo();
    std::set<std::uint32_t> indexes;
    for (const InterfaceEntry& entry : table.rows) {
        IfRow row;
        EXPECT_EQ(helper.GetIfEntry(entry.index, row), Win32Error::kSuccess);
        EXPECT_EQ(row.index, entry.index);
        indexes.insert(entry.index);
    }
    EXPECT_TRUE(indexes.contains(LinkIndex("CORVANE_LIVE")));
    EXPECT_TRUE(indexes.contains(LinkIndex("CORVANE_GIVEN")));
    EXPECT_EQ(indexes.size(), table.rows.size());
}

TEST(WindowsIpHelper, SystemTextsAreThoseOfTheSystem) {
    WindowsIpHelper helper;
    const std::string denied = helper.SystemText(Win32Error::kAccessDenied);
    EXPECT_NE(denied.find("denied"), std::string::npos) << denied;
    EXPECT_TRUE(denied.ends_with("\r\n"));
}

}  // namespace
}  // namespace corvane
