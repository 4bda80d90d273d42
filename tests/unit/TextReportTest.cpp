#include <string>

#include <gtest/gtest.h>

#include "base/Text.h"
#include "fakes/Fakes.h"
#include "inventory/NicInfo.h"
#include "platform/CodePage.h"
#include "ui/logic/TextReport.h"

namespace corvane {
namespace {

constexpr char kHeader[] =
    "Orvella Corvane v4.5 By Ollory\r\n"
    "=================================================\r\n"
    "\r\n"
    "Date: Friday, November 20, 2026   16:30:00\r\n"
    "\r\n"
    "Text Report-\r\n"
    "============\r\n"
    "\r\n";

NicInfo StaticAdapter() {
    NicInfo nic;
    nic.Id = "{11111111-1111-1111-1111-111111111111}";
    nic.ComponentId = "pci\\ven_8086&dev_100f";
    nic.IfIndex = 2;
    nic.Name = "eth0";
    nic.DriverDesc = "Intel PRO/1000 MT";
    nic.NetworkAddress = "00-12-AB-34-CD-56";
    nic.Mac = "00-12-AB-34-CD-56";
    nic.OriginalNetworkAddress = "00-0C-29-4F-8E-35";
    nic.Vendor = "First Maker   Address: 1 Main Street";
    nic.Speed = "1 Gbps";
    nic.Status = "Up, Operational";
    nic.TcpipBound = true;
    nic.LeaseObtained = "not shown";
    nic.LeaseTerminates = "not shown";
    nic.IpAddresses = {"192.168.1.9", "10.0.0.2"};
    nic.SubnetMasks = {"255.255.255.0", ""};
    nic.Gateways = {"192.168.1.1", "192.168.1.2"};
    nic.GatewayMetrics = {"20", "Automatic"};
    nic.DnsServers = {"1.1.1.1", "8.8.8.8"};
    return nic;
}

NicInfo DhcpAdapter() {
    NicInfo nic;
    nic.Id = "{22222222-2222-2222-2222-222222222222}";
    nic.ComponentId = "usb\\vid_0b95";
    nic.IfIndex = 3;
    nic.Name = "wlan0 f\u00FCr G\u00E4ste";
    nic.DriverDesc = "AX88179";
    nic.Mac = "00-24-9B-01-02-03";
    nic.OriginalNetworkAddress = "00-24-9B-01-02-03";
    nic.Speed = "000249B";
    nic.Status = "Up, Disconnected";
    nic.TcpipBound = true;
    nic.DhcpEnabled = true;
    nic.LeaseObtained = "2026-11-20 05:00:00";
    nic.LeaseTerminates = "2026-11-21 05:00:00";
    nic.IpAddresses = {"10.0.0.5"};
    nic.SubnetMasks = {"255.0.0.0"};
    return nic;
}

NicInfo DisabledAdapter() {
    NicInfo nic;
    nic.Id = "{33333333-3333-3333-3333-333333333333}";
    nic.Name = "eth2";
    nic.Vendor = "not shown";
    nic.Status = "Disabled";
    nic.DhcpEnabled = true;
    nic.LeaseObtained = "not shown";
    nic.IpAddresses = {"10.9.9.9"};
    nic.SubnetMasks = {"255.0.0.0"};
    nic.Gateways = {"10.9.9.1"};
    nic.GatewayMetrics = {"1"};
    nic.DnsServers = {"9.9.9.9"};
    return nic;
}

NicInfo BridgeAdapter() {
    NicInfo nic;
    nic.Id = "{44444444-4444-4444-4444-444444444444}";
    nic.ComponentId = "MS_BridgeMP";
    nic.IfIndex = 5;
    nic.Name = "br0";
    nic.DriverDesc = "MAC Bridge Miniport";
    nic.NetworkAddress = "02-AA-BB-CC-DD-EE";
    nic.Mac = "02-00-00-00-00-01";
    nic.Vendor = "not shown";
    nic.Speed = "10 Mbps";
    nic.Status = "Down, Non Operational";
    nic.TcpipBound = true;
    return nic;
}

class Report : public testing::Test {
 protected:
    FakeMachine machine_;
};

TEST_F(Report, OfEveryKindOfAdapterByteForByte) {
    NicInfo unnamed = StaticAdapter();
    unnamed.Name.clear();
    Nics = {StaticAdapter(), unnamed, DhcpAdapter(), DisabledAdapter(), BridgeAdapter()};
    EXPECT_EQ(TextReport(), std::string(kHeader) +
                                "Interface #1\r\n"
                                "=============\r\n"
                                "\r\n"
                                "Connection Name..........eth0\r\n"
                                "Device Name..............Intel PRO/1000 MT\r\n"
                                "Hardware ID..............pci\\ven_8086&dev_100f\r\n"
                                "Configuration ID.........{11111111-1111-1111-1111-111111111111}\r\n"
                                "MAC Address..............00-12-AB-34-CD-56 (Changed)\r\n"
                                "Manufacturer.............First Maker   Address: 1 Main Street\r\n"
                                "Speed....................1 Gbps\r\n"
                                "Link Status..............Up, Operational\r\n"
                                "TCP/IP...................Enabled\r\n"
                                "DHCP.....................Disabled\r\n"
                                "IP Address...............192.168.1.9\r\n"
                                "Subnet Mask..............255.255.255.0\r\n"
                                "IP Address...............10.0.0.2\r\n"
                                "Subnet Mask..............0.0.0.0\r\n"
                                "Gateway..................192.168.1.1\r\n"
                                "Metric...................20\r\n"
                                "Gateway..................192.168.1.2\r\n"
                                "Metric...................Automatic\r\n"
                                "DNS Server...............1.1.1.1\r\n"
                                "DNS Server...............8.8.8.8\r\n"
                                "\r\n"
                                "\r\n"
                                "Interface #2\r\n"
                                "=============\r\n"
                                "\r\n"
                                "Connection Name..........wlan0 f\u00FCr G\u00E4ste\r\n"
                                "Device Name..............AX88179\r\n"
                                "Hardware ID..............usb\\vid_0b95\r\n"
                                "Configuration ID.........{22222222-2222-2222-2222-222222222222}\r\n"
                                "MAC Address..............00-24-9B-01-02-03\r\n"
                                "Manufacturer.............\r\n"
                                "Speed....................000249B\r\n"
                                "Link Status..............Up, Disconnected\r\n"
                                "TCP/IP...................Enabled\r\n"
                                "DHCP.....................Enabled\r\n"
                                "Lease Obtained...........2026-11-20 05:00:00\r\n"
                                "Lease Expires............2026-11-21 05:00:00\r\n"
                                "IP Address...............10.0.0.5\r\n"
                                "Subnet Mask..............255.0.0.0\r\n"
                                "Gateway..................\r\n"
                                "Metric...................\r\n"
                                "DNS Server...............\r\n"
                                "\r\n"
                                "\r\n"
                                "Interface #3\r\n"
                                "=============\r\n"
                                "\r\n"
                                "Connection Name..........eth2\r\n"
                                "Device Name..............\r\n"
                                "Hardware ID..............\r\n"
                                "Configuration ID.........{33333333-3333-3333-3333-333333333333}\r\n"
                                "MAC Address..............(Network Connection Not Active)\r\n"
                                "Manufacturer.............\r\n"
                                "Speed....................\r\n"
                                "Link Status..............Disabled\r\n"
                                "TCP/IP...................Disabled\r\n"
                                "DHCP.....................Disabled\r\n"
                                "\r\n"
                                "\r\n"
                                "Interface #4\r\n"
                                "=============\r\n"
                                "\r\n"
                                "Connection Name..........br0\r\n"
                                "Device Name..............MAC Bridge Miniport\r\n"
                                "Hardware ID..............MS_BridgeMP\r\n"
                                "Configuration ID.........{44444444-4444-4444-4444-444444444444}\r\n"
                                "MAC Address..............02-00-00-00-00-01 (Inactive, 02-AA-BB-CC-DD-EE)\r\n"
                                "Manufacturer.............MICROSOFT NETWORK BRIDGE\r\n"
                                "Speed....................10 Mbps\r\n"
                                "Link Status..............Down, Non Operational\r\n"
                                "TCP/IP...................Enabled\r\n"
                                "DHCP.....................Disabled\r\n"
                                "IP Address...............\r\n"
                                "Subnet Mask..............0.0.0.0\r\n"
                                "Gateway..................\r\n"
                                "Metric...................\r\n"
                                "DNS Server...............\r\n"
                                "\r\n"
                                "\r\n"
                                "\r\n"
                                "EOF\r\n");
}

TEST_F(Report, WithoutAdaptersIsTheHeaderAnEmptyLineAndEof) {
    EXPECT_EQ(TextReport(), std::string(kHeader) + "\r\nEOF\r\n");
}

TEST_F(Report, QueriesNothingAnew) {
    Nics = {StaticAdapter()};
    EXPECT_NE(TextReport(), "");
    EXPECT_TRUE(machine_.registry->diary.empty());
    EXPECT_TRUE(machine_.ipHelper->diary.empty());
    EXPECT_TRUE(machine_.seat.diary.empty());
}

TEST_F(Report, IsDatedWithTwoDigitDayAndTimeOnATwentyFourHourClock) {
    machine_.clock->now = {
        .year = 2027, .month = 1, .day = 3, .weekday = 0, .hour = 0, .minute = 5, .second = 9};
    EXPECT_NE(TextReport().find("\r\nDate: Sunday, January 03, 2027   00:05:09\r\n"), std::string::npos);
    machine_.clock->now = {
        .year = 2026, .month = 12, .day = 26, .weekday = 6, .hour = 23, .minute = 59, .second = 0};
    EXPECT_NE(TextReport().find("\r\nDate: Saturday, December 26, 2026   23:59:00\r\n"), std::string::npos);
}

TEST_F(Report, NamesEveryMonthAndWeekdayInFull) {
    const char* const months[] = {"January", "February", "March",     "April",   "May",      "June",
                                  "July",    "August",   "September", "October", "November", "December"};
    const char* const weekdays[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                    "Thursday", "Friday", "Saturday"};
    for (int i = 0; i < 12; ++i) {
        machine_.clock->now = {.year = 2026, .month = i + 1, .day = 1, .weekday = i % 7};
        const std::string date =
            std::string("Date: ") + weekdays[i % 7] + ", " + months[i] + " 01, 2026   00:00:00\r\n";
        EXPECT_NE(TextReport().find(date), std::string::npos) << date;
    }
}

TEST_F(Report, AnAddressBeyondTheListOfMasksGetsTheZeroMask) {
    NicInfo nic = StaticAdapter();
    nic.SubnetMasks = {"255.255.255.0"};
    Nics = {nic};
    EXPECT_NE(
        InterfaceSection(0).find("IP Address...............10.0.0.2\r\nSubnet Mask..............0.0.0.0\r\n"),
        std::string::npos);
}

TEST_F(Report, ConvertsToTheCodePageWithoutLosingLineEnds) {
    Nics = {DhcpAdapter()};
    const std::string bytes = ToCodePage(TextReport());
    EXPECT_NE(bytes.find("Connection Name..........wlan0 f\xFCr G\xE4ste\r\n"), std::string::npos);
}

// ---- MAC text and manufacturer

NicInfo WithAddresses(const std::string& mac, const std::string& override, const std::string& original) {
    NicInfo nic;
    nic.Mac = mac;
    nic.NetworkAddress = override;
    nic.OriginalNetworkAddress = original;
    return nic;
}

TEST(ReportMacText, FollowsFromTheThreeAddresses) {
    EXPECT_EQ(ReportMacText(WithAddresses("00-01", "", "00-03")), "00-01");
    EXPECT_EQ(ReportMacText(WithAddresses("00-01", "00-02", "00-03")), "00-01 (Inactive, 00-02)");
    EXPECT_EQ(ReportMacText(WithAddresses("00-01", "00-01", "00-03")), "00-01 (Changed)");
    EXPECT_EQ(ReportMacText(WithAddresses("", "00-02", "00-03")), "00-02 (Changed)");
    EXPECT_EQ(ReportMacText(WithAddresses("", "", "00-03")), "00-03");
    EXPECT_EQ(ReportMacText(WithAddresses("", "", "")), "(Network Connection Not Active)");
}

TEST(ReportManufacturer, IsTheVendorWheneverAnAddressIsKnown) {
    for (NicInfo nic :
         {WithAddresses("00-01", "", ""), WithAddresses("", "00-02", ""), WithAddresses("", "", "00-03")}) {
        nic.Vendor = "Maker";
        EXPECT_EQ(ReportManufacturer(nic), "Maker");
    }
}

TEST(ReportManufacturer, IsEmptyWithoutAnAddressForABridgeToo) {
    NicInfo nic;
    nic.Vendor = "Maker";
    EXPECT_EQ(ReportManufacturer(nic), "");
    nic.ComponentId = "ms_bridgemp";
    EXPECT_EQ(ReportManufacturer(nic), "");
}

TEST(ReportManufacturer, OfABridgeInAnyLetterCaseIsFixed) {
    NicInfo nic = WithAddresses("00-01", "", "");
    nic.Vendor = "Maker";
    for (const char* component : {"ms_bridgemp", "MS_BRIDGEMP", "Ms_BridgeMP"}) {
        nic.ComponentId = component;
        EXPECT_EQ(ReportManufacturer(nic), "MICROSOFT NETWORK BRIDGE");
    }
    nic.ComponentId = "ms_bridgemp2";
    EXPECT_EQ(ReportManufacturer(nic), "Maker");
}

}  // namespace
}  // namespace corvane
