#include "presets/Advice.h"
#include "tests/unit/CoreSupport.h"

namespace corvane {
namespace {

using namespace test;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

std::vector<std::string> Of(const PresetRecord& record, bool dhcpEnabled = false) {
    NicInfo nic = NicRecord(kFirstId, "Office", "0003");
    nic.DhcpEnabled = dhcpEnabled;
    return Advice(nic, record, "-h was not given; give -h to keep it");
}

PresetRecord Mac(const std::string& text) {
    PresetRecord record;
    record.Flags = kPresetMac;
    record.Mac = text;
    return record;
}

PresetRecord Addresses(const std::vector<std::string>& addresses, const std::vector<std::string>& masks) {
    PresetRecord record;
    record.Flags = kPresetIp;
    record.IpAddresses = addresses;
    record.SubnetMasks = masks;
    return record;
}

PresetRecord Gateways(const std::vector<std::string>& gateways, const std::vector<std::string>& metrics) {
    PresetRecord record;
    record.Flags = kPresetGateway;
    record.Gateways = gateways;
    record.GatewayMetrics = metrics;
    return record;
}

TEST(AdviceTest, GoodSettingsNeedNone) {
    PresetRecord record = Addresses({"192.168.1.10"}, {"255.255.255.0"});
    record.Flags = kPresetMac | kPresetIp | kPresetGateway | kPresetDns;
    record.Mac = "020011223344";
    record.Gateways = {"192.168.1.1"};
    record.GatewayMetrics = {"0"};
    record.DnsServers = {"9.9.9.9"};
    EXPECT_THAT(Of(record), IsEmpty());
}

TEST(AdviceTest, MacOfAPresetMayHaveItsSeparators) { EXPECT_THAT(Of(Mac("02-00-11-22-33-44")), IsEmpty()); }

TEST(AdviceTest, OriginalMacNeedsNone) { EXPECT_THAT(Of(Mac("")), IsEmpty()); }

TEST(AdviceTest, GroupAddressCannotTakeEffect) {
    EXPECT_THAT(
        Of(Mac("010011223344")),
        ElementsAre(AllOf(StartsWith("MAC address '010011223344' is stored as typed but cannot take effect"),
                          HasSubstr("multicast"))));
}

TEST(AdviceTest, ZeroAddressCannotTakeEffect) {
    EXPECT_THAT(Of(Mac("000000000000")), ElementsAre(HasSubstr("all zeros")));
}

TEST(AdviceTest, MacThatIsNoneCannotTakeEffect) {
    for (const std::string text : {"02001122334", "02001122334G", "0200112233445", "x"})
        EXPECT_THAT(Of(Mac(text)), ElementsAre(HasSubstr("not made of twelve hexadecimal digits"))) << text;
}

TEST(AdviceTest, RandomMacIsNotLookedAt) {
    PresetRecord record = Mac("x");
    record.Flags |= kPresetRandomMac;
    EXPECT_THAT(Of(record), IsEmpty());
}

TEST(AdviceTest, ListsWithoutTheirBitsAreNotLookedAt) {
    PresetRecord record = Mac("020011223344");
    record.IpAddresses = record.SubnetMasks = record.Gateways = record.GatewayMetrics =
        record.DnsServers = {"x"};
    EXPECT_THAT(Of(record), IsEmpty());
}

TEST(AdviceTest, DhcpThatIsTurnedOffIsMentioned) {
    EXPECT_THAT(Of(Mac("020011223344"), true),
                ElementsAre("DHCP is turned off on 'Office' because -h was not given; give -h to keep it"));
}

TEST(AdviceTest, DhcpThatIsKeptIsNot) {
    PresetRecord record = Mac("020011223344");
    record.Flags |= kPresetDhcp;
    EXPECT_THAT(Of(record, true), IsEmpty());
    EXPECT_THAT(Of(PresetRecord(), true), IsEmpty());
}

TEST(AdviceTest, AddressThatNoHostMayHave) {
    for (const std::string text : {"0.0.0.0", "127.0.0.1", "224.0.0.1", "255.255.255.255"})
        EXPECT_THAT(Of(Addresses({text}, {"255.0.0.0"})),
                    ElementsAre(StartsWith("IP address '" + text + "' is")));
}

TEST(AdviceTest, AddressThatIsNone) {
    for (const std::string text :
         {"", "10.0.0", "10.0.0.256", "10.0.0.1.2", "a.b.c.d", "10.0.0.-1", "10. 0.0.1"})
        EXPECT_THAT(Of(Addresses({text}, {"255.0.0.0"})), ElementsAre(HasSubstr("four numbers 0 to 255")))
            << text;
}

TEST(AdviceTest, MaskThatIsNone) {
    for (const std::string text : {"", "255.0.255.0", "0.0.0.0", "255.255.255", "0.0.0.255", "x"})
        EXPECT_THAT(Of(Addresses({"10.0.0.1"}, {text})),
                    ElementsAre(StartsWith("subnet mask '" + text + "' is")))
            << text;
}

TEST(AdviceTest, EveryBadEntryHasItsSentence) {
    EXPECT_THAT(Of(Addresses({"10.0.0.1", "x", "y"}, {"255.0.0.0", "z", "255.0.0.0"})),
                ElementsAre(StartsWith("IP address 'x'"), StartsWith("IP address 'y'"),
                            StartsWith("subnet mask 'z'")));
}

TEST(AdviceTest, GatewayThatIsNone) {
    EXPECT_THAT(Of(Gateways({"10.0.0"}, {"1"})),
                ElementsAre(StartsWith("gateway '10.0.0' is stored as typed")));
}

TEST(AdviceTest, MetricThatIsNone) {
    for (const std::string text : {"", "x", "-1", "1.5", "4294967296", "99999999999999999999", " 1"})
        EXPECT_THAT(Of(Gateways({"10.0.0.1"}, {text})), ElementsAre(StartsWith("metric '" + text + "' is")))
            << text;
}

TEST(AdviceTest, MetricAtItsBounds) {
    EXPECT_THAT(Of(Gateways({"10.0.0.1", "10.0.0.2"}, {"0", "4294967295"})), IsEmpty());
}

TEST(AdviceTest, GatewayOutsideTheGivenNetworks) {
    PresetRecord record = Addresses({"192.168.1.10", "10.0.0.5"}, {"255.255.255.0", "255.0.0.0"});
    record.Flags |= kPresetGateway;
    record.Gateways = {"192.168.2.1", "10.9.9.9"};
    record.GatewayMetrics = {"1", "1"};
    EXPECT_THAT(Of(record),
                ElementsAre("gateway '192.168.2.1' is in the network of none of the given addresses: it "
                            "cannot take effect"));
}

TEST(AdviceTest, GatewayWithoutGivenAddressesIsNotMeasured) {
    EXPECT_THAT(Of(Gateways({"192.168.2.1"}, {"1"})), IsEmpty());
}

TEST(AdviceTest, DhcpIgnoresAddressesAndGateways) {
    PresetRecord record = Addresses({"x"}, {"x"});
    record.Flags = kPresetDhcp | kPresetIp | kPresetGateway;
    record.Gateways = {"x"};
    record.GatewayMetrics = {"x"};
    EXPECT_THAT(Of(record), IsEmpty());
}

TEST(AdviceTest, DnsServersAreLookedAtWithDhcpToo) {
    PresetRecord record;
    record.Flags = kPresetDhcp | kPresetDns;
    record.DnsServers = {"9.9.9.9", "dns.example"};
    EXPECT_THAT(Of(record), ElementsAre(StartsWith("DNS server 'dns.example' is stored as typed")));
}

TEST(AdviceTest, ADnsServerOnTheMachineItselfIsFine) {
    PresetRecord record;
    record.Flags = kPresetDhcp | kPresetDns;
    record.DnsServers = {"127.0.0.53"};
    EXPECT_THAT(Of(record), IsEmpty());
}

TEST(AdviceTest, EmptyListsOfAPresetAreFine) {
    PresetRecord record;
    record.Flags = kPresetIp | kPresetGateway | kPresetDns;
    record.IpAddresses = {"192.168.1.5"};
    record.SubnetMasks = {"255.255.255.0"};
    record.Gateways = {""};
    record.GatewayMetrics = {""};
    record.DnsServers = {""};
    EXPECT_THAT(Of(record), IsEmpty());
    record.Gateways = {};
    EXPECT_THAT(Of(record), ElementsAre(StartsWith("metric ''")));
}

TEST(AdviceTest, AnAutomaticMetricIsFine) {
    EXPECT_THAT(Of(Gateways({"192.168.1.1"}, {"Automatic"})), IsEmpty());
}

}  // namespace
}  // namespace corvane
