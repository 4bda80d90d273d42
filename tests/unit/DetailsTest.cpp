#include <ostream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "inventory/NicInfo.h"
#include "tests/unit/ConnectionRowSupport.h"
#include "ui/logic/Details.h"

namespace corvane {

// Readable failures.
static void PrintTo(const DetailsRow& row, std::ostream* out) {
    *out << row.tag << " [" << row.text << "] [" << row.subItem << "]";
}

namespace {

using test::kMac;
using test::kOther;
using test::kThird;
using testing::ElementsAre;
using testing::IsEmpty;

NicInfo DhcpAdapter() {
    NicInfo nic;
    nic.Id = "{11111111-1111-1111-1111-111111111111}";
    nic.ComponentId = "pci\\ven_8086&dev_100f";
    nic.IfIndex = 2;
    nic.Name = "eth0";
    nic.DriverDesc = "Intel PRO/1000 MT";
    nic.Mac = kMac;
    nic.OriginalNetworkAddress = kMac;
    nic.Vendor = "First Maker";
    nic.Speed = "1 Gbps";
    nic.Status = "Up, Operational";
    nic.TcpipBound = true;
    nic.DhcpEnabled = true;
    nic.LeaseObtained = "2026-11-20 05:00:00";
    nic.LeaseTerminates = "2026-11-21 05:00:00";
    nic.IpAddresses = {"192.168.1.9", "10.0.0.2"};
    nic.SubnetMasks = {"255.255.255.0", "255.0.0.0"};
    nic.Gateways = {"192.168.1.1"};
    nic.GatewayMetrics = {"20"};
    nic.DnsServers = {"1.1.1.1", "8.8.8.8", "9.9.9.9"};
    return nic;
}

// ---- the cleared panel

TEST(ClearedDetails, HaveTheFixedTexts) {
    const Details cleared;
    EXPECT_EQ(cleared.title, "Network Connection Details");
    EXPECT_EQ(cleared.labSent, "0 Bytes");
    EXPECT_EQ(cleared.labRecv, "0 Bytes");
    EXPECT_EQ(cleared.labSentSpeed, "0 Bytes/s");
    EXPECT_EQ(cleared.labRecvSpeed, "0 Bytes/s");
    EXPECT_EQ(cleared.headerIP, "IP Address (0)");
    EXPECT_EQ(cleared.headerGateway, "Gateway (0)");
    EXPECT_EQ(cleared.headerDNS, "DNS Server (0)");
    EXPECT_EQ(cleared.enableButton, "&Enable");
    EXPECT_EQ(cleared.mnuEnable, "&Enable Network Connection");
    EXPECT_EQ(cleared.mnuEnableDHCP, "Enable DHC&P");
}

TEST(ClearedDetails, AreEmptyOtherwise) {
    const Details cleared;
    for (const std::string* text :
         {&cleared.txtConnName, &cleared.txtDevName, &cleared.txtHardID, &cleared.txtConfigID,
          &cleared.txtMAC, &cleared.txtManufac, &cleared.labSpeed, &cleared.labStatus, &cleared.labTCPIP,
          &cleared.labDHCP, &cleared.labLeaseObtained, &cleared.labLeaseExpires}) {
        EXPECT_EQ(*text, "");
    }
    EXPECT_THAT(cleared.ListIP, IsEmpty());
    EXPECT_THAT(cleared.ListGateway, IsEmpty());
    EXPECT_THAT(cleared.ListDNS, IsEmpty());
}

TEST(ClearedDetails, MeanEnabling) {
    EXPECT_TRUE(Details().enables);
    EXPECT_TRUE(Details().switchesDhcpOn);
}

// ---- the filled panel

TEST(FilledDetails, OfALiveDhcpAdapterInFull) {
    Details expected;
    expected.title = "Network Connection Details";
    expected.txtConnName = "eth0";
    expected.txtDevName = "Intel PRO/1000 MT";
    expected.txtHardID = "pci\\ven_8086&dev_100f";
    expected.txtConfigID = "{11111111-1111-1111-1111-111111111111}";
    expected.txtMAC = "00-0C-29-4F-8E-35 (Original)";
    expected.txtManufac = "First Maker";
    expected.labSpeed = "1 Gbps";
    expected.labStatus = "Up, Operational";
    expected.labTCPIP = "Enabled";
    expected.labDHCP = "Enabled";
    expected.labLeaseObtained = "2026-11-20 05:00:00";
    expected.labLeaseExpires = "2026-11-21 05:00:00";
    expected.labSent = "0 Bytes";
    expected.labRecv = "0 Bytes";
    expected.labSentSpeed = "0 Bytes/s";
    expected.labRecvSpeed = "0 Bytes/s";
    expected.enableButton = "&Disable";
    expected.mnuEnable = "&Disable Network Connection";
    expected.mnuEnableDHCP = "Disable DHC&P";
    expected.enables = false;
    expected.switchesDhcpOn = false;
    expected.headerIP = "IP Address (2)";
    expected.headerGateway = "Gateway (1)";
    expected.headerDNS = "DNS Server (3)";
    expected.ListIP = {{"192.168.1.9", "255.255.255.0", 0}, {"10.0.0.2", "255.0.0.0", 1}};
    expected.ListGateway = {{"192.168.1.1", "20", 0}};
    expected.ListDNS = {{"1.1.1.1", "", 0}, {"8.8.8.8", "", 1}, {"9.9.9.9", "", 2}};

    const Details filled = FillDetails(DhcpAdapter());
    EXPECT_EQ(filled.txtMAC, expected.txtMAC);
    EXPECT_EQ(filled.mnuEnableDHCP, expected.mnuEnableDHCP);
    EXPECT_EQ(filled.ListIP, expected.ListIP);
    EXPECT_EQ(filled.ListGateway, expected.ListGateway);
    EXPECT_EQ(filled.ListDNS, expected.ListDNS);
    EXPECT_TRUE(filled == expected);
}

TEST(FilledDetails, OfAnAdapterThatIsNotLiveOfferEnabling) {
    NicInfo nic = DhcpAdapter();
    nic.IfIndex = 0;
    const Details filled = FillDetails(nic);
    EXPECT_EQ(filled.enableButton, "&Enable");
    EXPECT_EQ(filled.mnuEnable, "&Enable Network Connection");
    EXPECT_TRUE(filled.enables);
}

TEST(FilledDetails, OfADisabledAdapterWithASavedOriginal) {
    NicInfo nic;
    nic.Name = "eth1";
    nic.Status = "Disabled";
    nic.Speed = "Disabled";
    nic.OriginalNetworkAddress = kMac;
    const Details filled = FillDetails(nic);
    EXPECT_EQ(filled.txtMAC, "00-0C-29-4F-8E-35 (Original)");
    EXPECT_EQ(filled.labStatus, "Disabled");
    EXPECT_EQ(filled.labSpeed, "Disabled");
}

TEST(FilledDetails, LeaveTheRecordsSpeedAndStatusAsTheyAre) {
    NicInfo nic = DhcpAdapter();
    nic.Speed.clear();
    nic.Status.clear();
    const Details filled = FillDetails(nic);
    EXPECT_EQ(filled.labSpeed, "");
    EXPECT_EQ(filled.labStatus, "");
}

TEST(FilledDetails, WithoutTcpipSayDisabledWhateverTheRecordKnowsOfDhcp) {
    NicInfo nic = DhcpAdapter();
    nic.TcpipBound = false;
    const Details filled = FillDetails(nic);
    EXPECT_EQ(filled.labTCPIP, "Disabled");
    EXPECT_EQ(filled.labDHCP, "Disabled");
    EXPECT_EQ(filled.labLeaseObtained, "DHCP Disabled");
    EXPECT_EQ(filled.labLeaseExpires, "DHCP Disabled");
    EXPECT_EQ(filled.mnuEnableDHCP, "Enable DHC&P");
    EXPECT_TRUE(filled.switchesDhcpOn);
}

TEST(FilledDetails, WithoutTcpipStillListAddressesGatewaysAndServers) {
    NicInfo nic = DhcpAdapter();
    nic.TcpipBound = false;
    const Details filled = FillDetails(nic);
    EXPECT_EQ(filled.headerIP, "IP Address (2)");
    EXPECT_EQ(filled.headerGateway, "Gateway (1)");
    EXPECT_EQ(filled.headerDNS, "DNS Server (3)");
}

TEST(FilledDetails, WithDhcpOffHaveNoLease) {
    NicInfo nic = DhcpAdapter();
    nic.DhcpEnabled = false;
    const Details filled = FillDetails(nic);
    EXPECT_EQ(filled.labTCPIP, "Enabled");
    EXPECT_EQ(filled.labDHCP, "Disabled");
    EXPECT_EQ(filled.labLeaseObtained, "DHCP Disabled");
    EXPECT_EQ(filled.labLeaseExpires, "DHCP Disabled");
    EXPECT_EQ(filled.mnuEnableDHCP, "Enable DHC&P");
    EXPECT_TRUE(filled.switchesDhcpOn);
}

TEST(FilledDetails, ShowEmptyLeaseTimesOfALeaseNotYetObtained) {
    NicInfo nic = DhcpAdapter();
    nic.LeaseObtained.clear();
    nic.LeaseTerminates.clear();
    const Details filled = FillDetails(nic);
    EXPECT_EQ(filled.labLeaseObtained, "");
    EXPECT_EQ(filled.labLeaseExpires, "");
}

TEST(FilledDetails, SkipEmptyEntriesAndTagRowsWithTheEntrysOwnPosition) {
    NicInfo nic = DhcpAdapter();
    nic.IpAddresses = {"", "10.0.0.2", "", "10.0.0.4"};
    nic.SubnetMasks = {"255.0.0.0", "255.255.0.0", "255.255.255.0", "255.255.255.255"};
    nic.Gateways = {"", "10.0.0.1"};
    nic.GatewayMetrics = {"5", "6"};
    nic.DnsServers = {"", "", "1.1.1.1"};
    const Details filled = FillDetails(nic);
    EXPECT_THAT(filled.ListIP, ElementsAre(DetailsRow{"10.0.0.2", "255.255.0.0", 1},
                                           DetailsRow{"10.0.0.4", "255.255.255.255", 3}));
    EXPECT_EQ(filled.headerIP, "IP Address (2)");
    EXPECT_THAT(filled.ListGateway, ElementsAre(DetailsRow{"10.0.0.1", "6", 1}));
    EXPECT_EQ(filled.headerGateway, "Gateway (1)");
    EXPECT_THAT(filled.ListDNS, ElementsAre(DetailsRow{"1.1.1.1", "", 2}));
    EXPECT_EQ(filled.headerDNS, "DNS Server (1)");
}

TEST(FilledDetails, OfUnusedListsHaveNoRows) {
    const Details filled = FillDetails(NicInfo());
    EXPECT_THAT(filled.ListIP, IsEmpty());
    EXPECT_THAT(filled.ListGateway, IsEmpty());
    EXPECT_THAT(filled.ListDNS, IsEmpty());
    EXPECT_EQ(filled.headerIP, "IP Address (0)");
    EXPECT_EQ(filled.headerGateway, "Gateway (0)");
    EXPECT_EQ(filled.headerDNS, "DNS Server (0)");
}

TEST(FilledDetails, LeaveASubItemEmptyWhenItsParallelListIsShorter) {
    NicInfo nic = DhcpAdapter();
    nic.SubnetMasks = {"255.255.255.0"};
    nic.GatewayMetrics.clear();
    const Details filled = FillDetails(nic);
    EXPECT_THAT(filled.ListIP,
                ElementsAre(DetailsRow{"192.168.1.9", "255.255.255.0", 0}, DetailsRow{"10.0.0.2", "", 1}));
    EXPECT_THAT(filled.ListGateway, ElementsAre(DetailsRow{"192.168.1.1", "", 0}));
}

TEST(FilledDetails, OfABridgeNameNoVendorEvenWithoutAnAddress) {
    NicInfo nic;
    nic.Vendor = "Maker";
    nic.ComponentId = "ms_bridgemp";
    const Details filled = FillDetails(nic);
    EXPECT_EQ(filled.txtMAC, "(Network Connection Not Active)");
    EXPECT_EQ(filled.txtManufac, "MICROSOFT NETWORK BRIDGE");
    EXPECT_EQ(filled.txtHardID, "ms_bridgemp");
}

TEST(FilledDetails, NameTheVendorEvenWithoutAnAddress) {
    NicInfo nic;
    nic.Vendor = "Maker";
    EXPECT_EQ(FillDetails(nic).txtManufac, "Maker");
}

// ---- the address and its mark

struct MacCase {
    const char* situation;
    std::string mac;
    std::string networkAddress;
    std::string original;
    std::string shown;
};

void PrintTo(const MacCase& macCase, std::ostream* out) { *out << macCase.situation; }

class DetailsMac : public testing::TestWithParam<MacCase> {};

TEST_P(DetailsMac, HasItsMark) {
    NicInfo nic;
    nic.Mac = GetParam().mac;
    nic.NetworkAddress = GetParam().networkAddress;
    nic.OriginalNetworkAddress = GetParam().original;
    EXPECT_EQ(DetailsMacText(nic), GetParam().shown);
    EXPECT_EQ(FillDetails(nic).txtMAC, GetParam().shown);
}

const std::string kMacText = kMac;

INSTANTIATE_TEST_SUITE_P(
    , DetailsMac,
    testing::Values(MacCase{"LiveWithItsOverride", kMac, kMac, kOther, kMacText + " (Changed)"},
                    MacCase{"LiveWithAnOverrideThatIsTheOriginal", kMac, kMac, kMac, kMacText + " (Changed)"},
                    MacCase{"LiveWithAnotherOverride", kMac, kOther, kMac,
                            kMacText + " (Inactive, 00-12-AB-34-CD-56)"},
                    MacCase{"LiveWithAnotherOverrideAndAnotherOriginal", kMac, kOther, kThird,
                            kMacText + " (Inactive, 00-12-AB-34-CD-56)"},
                    MacCase{"LiveWithItsOriginal", kMac, "", kMac, kMacText + " (Original)"},
                    MacCase{"LiveWithAnotherOriginal", kMac, "", kOther, kMacText + " (Changed)"},
                    MacCase{"LiveWithoutKnownOriginal", kMac, "", "", kMacText + " (Changed)"},
                    MacCase{"NotLiveWithOverride", "", kOther, kMac, "00-12-AB-34-CD-56 (Changed)"},
                    MacCase{"NotLiveWithOverrideAlone", "", kOther, "", "00-12-AB-34-CD-56 (Changed)"},
                    MacCase{"NotLiveWithOriginal", "", "", kMac, kMacText + " (Original)"},
                    MacCase{"NotLiveWithNothing", "", "", "", "(Network Connection Not Active)"}),
    [](const testing::TestParamInfo<MacCase>& one) { return std::string(one.param.situation); });

TEST(ManufacturerText, OfABridgeInAnyLetterCaseIsFixed) {
    NicInfo nic;
    nic.Vendor = "Maker";
    for (const char* component : {"ms_bridgemp", "MS_BRIDGEMP", "Ms_BridgeMP"}) {
        nic.ComponentId = component;
        EXPECT_EQ(ManufacturerText(nic), "MICROSOFT NETWORK BRIDGE");
    }
    for (const char* component : {"", "ms_bridgemp2", "ms_bridge"}) {
        nic.ComponentId = component;
        EXPECT_EQ(ManufacturerText(nic), "Maker");
    }
}

}  // namespace
}  // namespace corvane
