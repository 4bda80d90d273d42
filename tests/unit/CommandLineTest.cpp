#include "startup/CommandLine.h"
#include "tests/unit/CoreSupport.h"

namespace corvane {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;
using Outcome = CommandLine::Outcome;

CommandLine Parsed(const std::string& text) {
    const CommandLine line = ParseCommandLine(text);
    EXPECT_EQ(line.outcome, Outcome::kParsed) << text;
    return line;
}

std::string InvalidName(const std::string& text) {
    const CommandLine line = ParseCommandLine(text);
    EXPECT_EQ(line.outcome, Outcome::kInvalidParameter) << text;
    return line.invalidName;
}

TEST(CommandLineTest, NoArgumentsAskForTheWindow) {
    const CommandLine line = ParseCommandLine("");
    EXPECT_EQ(line.outcome, Outcome::kNone);
    EXPECT_TRUE(line.WantsWindow());
}

TEST(CommandLineTest, HelpFormsAreTakenExactly) {
    for (const std::string form : {"-help", "help", "/help", "?", "/?", "/", "-"}) {
        EXPECT_EQ(ParseCommandLine(form).outcome, Outcome::kHelp) << form;
        EXPECT_FALSE(ParseCommandLine(form).WantsWindow()) << form;
    }
}

TEST(CommandLineTest, HelpInCapitalsOrBesideABlankIsInvalid) {
    EXPECT_EQ(InvalidName("-HELP"), "HELP");
    EXPECT_EQ(InvalidName("/Help"), "Help");
    EXPECT_EQ(InvalidName("-help "), "help");
    EXPECT_EQ(InvalidName(" -help"), "help");
    EXPECT_EQ(InvalidName("-?"), "?");
    EXPECT_EQ(InvalidName("- "), "");
    EXPECT_EQ(InvalidName("--help"), "");
}

TEST(CommandLineTest, TextBeforeTheFirstDashIsIgnored) {
    EXPECT_EQ(Parsed("anything at all -s").silent, true);
    EXPECT_EQ(Parsed("HELP").connectionName, "");
    EXPECT_FALSE(Parsed("? ").WantsWindow());
    EXPECT_FALSE(Parsed(" ").WantsWindow());
}

TEST(CommandLineTest, ConnectionNameKeepsItsCaseAndInnerBlanks) {
    EXPECT_EQ(Parsed("-n   Local Area  Connection   -s").connectionName, "Local Area  Connection");
}

TEST(CommandLineTest, OptionNamesMayBeInCapitals) {
    const CommandLine line = Parsed("-N Office -RE -Di -rL -RN -S -H -SV -rO");
    EXPECT_EQ(line.connectionName, "Office");
    EXPECT_TRUE(line.restart && line.disable && line.release && line.renew && line.silent);
    EXPECT_TRUE(line.shortVendorList && line.resetOriginalMac);
    EXPECT_EQ(line.record.Flags, 1);
}

TEST(CommandLineTest, SlashStandsForADash) {
    const CommandLine line = Parsed("/n Office /re");
    EXPECT_EQ(line.connectionName, "Office");
    EXPECT_TRUE(line.restart);
}

TEST(CommandLineTest, DashInAConnectionNameCutsIt) { EXPECT_EQ(InvalidName("-n wi-fi"), "fi"); }

TEST(CommandLineTest, SlashInAConnectionNameCutsIt) { EXPECT_EQ(InvalidName("-n a/b c"), "b"); }

TEST(CommandLineTest, OptionWithoutAValueHasAnEmptyOne) {
    EXPECT_EQ(Parsed("-n").connectionName, "");
    EXPECT_EQ(Parsed("-n Office -n").connectionName, "");
}

TEST(CommandLineTest, LaterConnectionNameReplacesTheEarlier) {
    EXPECT_EQ(Parsed("-n Office -n Lab").connectionName, "Lab");
}

TEST(CommandLineTest, OnlyBlanksSeparateNameAndValue) { EXPECT_EQ(InvalidName("-n\tOffice"), "n\tOffice"); }

TEST(CommandLineTest, OptionNamesAreNotShortened) {
    EXPECT_EQ(InvalidName("-nOffice"), "nOffice");
    EXPECT_EQ(InvalidName("-ren"), "ren");
    EXPECT_EQ(InvalidName("-restart x"), "restart");
}

TEST(CommandLineTest, InvalidNameIsGivenAsTyped) {
    EXPECT_EQ(InvalidName("-n Office -FooBar baz -s"), "FooBar");
}

TEST(CommandLineTest, FirstInvalidNameIsTheOne) { EXPECT_EQ(InvalidName("-x -y"), "x"); }

TEST(CommandLineTest, MacLosesItsColons) {
    const CommandLine line = Parsed("-m 00:11:22:aA:bB:cC");
    EXPECT_EQ(line.record.Mac, "001122aAbBcC");
    EXPECT_EQ(line.record.Flags, 2);
}

TEST(CommandLineTest, MacWithoutSeparatorsStays) {
    EXPECT_EQ(Parsed("-m 001122334455").record.Mac, "001122334455");
}

TEST(CommandLineTest, MacWithoutAValueAsksForTheOriginal) {
    EXPECT_EQ(Parsed("-m").record.Mac, "");
    EXPECT_EQ(Parsed("-m").record.Flags, 2);
}

TEST(CommandLineTest, MacWithHyphensIsCutAtThem) {
    EXPECT_EQ(InvalidName("-n x -m 00-11-22-33-44-55"), "11");
}

TEST(CommandLineTest, RandomMacSetsTwoBitsAndNoText) {
    const CommandLine line = Parsed("-r");
    EXPECT_EQ(line.record.Mac, "");
    EXPECT_EQ(line.record.Flags, 6);
}

TEST(CommandLineTest, RandomAfterAGivenMacEmptiesIt) {
    const CommandLine line = Parsed("-m 001122334455 -r");
    EXPECT_EQ(line.record.Mac, "");
    EXPECT_EQ(line.record.Flags, 6);
}

TEST(CommandLineTest, GivenMacAfterRandomKeepsTheRandomBit) {
    const CommandLine line = Parsed("-r -m 001122334455");
    EXPECT_EQ(line.record.Mac, "001122334455");
    EXPECT_EQ(line.record.Flags, 6);
}

TEST(CommandLineTest, DhcpSetsItsBit) { EXPECT_EQ(Parsed("-h").record.Flags, 1); }

TEST(CommandLineTest, FlagBitsAddUp) {
    EXPECT_EQ(Parsed("-h -m -r -i 1.2.3.4 -g 1.2.3.1 -d 9.9.9.9").record.Flags, 63);
}

TEST(CommandLineTest, AddressesAndMasksAreSplit) {
    const CommandLine line = Parsed("-i 10.0.0.5, 10.0.0.6 : 255.0.0.0 , 255.255.0.0");
    EXPECT_THAT(line.record.IpAddresses.Items, ElementsAre("10.0.0.5", "10.0.0.6"));
    EXPECT_THAT(line.record.SubnetMasks.Items, ElementsAre("255.0.0.0", "255.255.0.0"));
    EXPECT_EQ(line.record.Flags, 8);
}

TEST(CommandLineTest, AddressWithoutAMaskGetsTheOneOfClassA) {
    const CommandLine line = Parsed("-i 10.0.0.5");
    EXPECT_THAT(line.record.IpAddresses.Items, ElementsAre("10.0.0.5"));
    EXPECT_THAT(line.record.SubnetMasks.Items, ElementsAre("255.0.0.0"));
}

TEST(CommandLineTest, SecondOfTwoAddressesWithOneMaskGetsTheOneOfClassA) {
    const CommandLine line = Parsed("-i 10.0.0.5,10.0.0.6:255.255.0.0");
    EXPECT_THAT(line.record.SubnetMasks.Items, ElementsAre("255.255.0.0", "255.0.0.0"));
}

TEST(CommandLineTest, EmptyMaskBetweenTwoIsReplaced) {
    const CommandLine line = Parsed("-i 10.0.0.5,10.0.0.6,10.0.0.7:255.255.0.0,,255.255.255.0");
    EXPECT_THAT(line.record.SubnetMasks.Items, ElementsAre("255.255.0.0", "255.0.0.0", "255.255.255.0"));
}

TEST(CommandLineTest, MasksTooManyAreDropped) {
    EXPECT_THAT(Parsed("-i 10.0.0.5:255.0.0.0,255.255.0.0").record.SubnetMasks.Items,
                ElementsAre("255.0.0.0"));
}

TEST(CommandLineTest, PartsBehindTheSecondColonAreDropped) {
    const CommandLine line = Parsed("-i 10.0.0.5:255.255.0.0:1.1.1.1");
    EXPECT_THAT(line.record.IpAddresses.Items, ElementsAre("10.0.0.5"));
    EXPECT_THAT(line.record.SubnetMasks.Items, ElementsAre("255.255.0.0"));
}

TEST(CommandLineTest, EmptyAddressesBetweenCommasAreKept) {
    const CommandLine line = Parsed("-i ,10.0.0.5");
    EXPECT_THAT(line.record.IpAddresses.Items, ElementsAre("", "10.0.0.5"));
    EXPECT_THAT(line.record.SubnetMasks.Items, ElementsAre("255.0.0.0", "255.0.0.0"));
}

TEST(CommandLineTest, AddressesWithoutAValueAreAnEmptyList) {
    const CommandLine line = Parsed("-i");
    EXPECT_THAT(line.record.IpAddresses.Items, IsEmpty());
    EXPECT_THAT(line.record.SubnetMasks.Items, IsEmpty());
    EXPECT_EQ(line.record.Flags, 8);
}

TEST(CommandLineTest, MasksWithoutAddressesStayAsGiven) {
    const CommandLine line = Parsed("-i :255.0.0.0,");
    EXPECT_THAT(line.record.IpAddresses.Items, IsEmpty());
    EXPECT_THAT(line.record.SubnetMasks.Items, ElementsAre("255.0.0.0", ""));
}

TEST(CommandLineTest, LaterAddressesReplaceTheEarlier) {
    const CommandLine line = Parsed("-i 10.0.0.5,10.0.0.6:255.255.0.0 -i 10.0.0.7");
    EXPECT_THAT(line.record.IpAddresses.Items, ElementsAre("10.0.0.7"));
    EXPECT_THAT(line.record.SubnetMasks.Items, ElementsAre("255.0.0.0"));
}

TEST(CommandLineTest, GatewaysAndMetricsAreSplit) {
    const CommandLine line = Parsed("-g 10.0.0.1, 10.0.0.2 : 5");
    EXPECT_THAT(line.record.Gateways.Items, ElementsAre("10.0.0.1", "10.0.0.2"));
    EXPECT_THAT(line.record.GatewayMetrics.Items, ElementsAre("5", "0"));
    EXPECT_EQ(line.record.Flags, 16);
}

TEST(CommandLineTest, GatewayWithoutAMetricGetsZero) {
    EXPECT_THAT(Parsed("-g 10.0.0.1").record.GatewayMetrics.Items, ElementsAre("0"));
}

TEST(CommandLineTest, MetricsWithoutGatewaysStayAsGiven) {
    const CommandLine line = Parsed("-g :7");
    EXPECT_THAT(line.record.Gateways.Items, IsEmpty());
    EXPECT_THAT(line.record.GatewayMetrics.Items, ElementsAre("7"));
}

TEST(CommandLineTest, DnsServersAreSplitWithoutBlanks) {
    const CommandLine line = Parsed("-d 8.8.8.8 , 1.1.1.1,,9.9.9.9");
    EXPECT_THAT(line.record.DnsServers.Items, ElementsAre("8.8.8.8", "1.1.1.1", "", "9.9.9.9"));
    EXPECT_EQ(line.record.Flags, 32);
}

TEST(CommandLineTest, DnsServersWithoutAValueAreAnEmptyList) {
    EXPECT_THAT(Parsed("-d").record.DnsServers.Items, IsEmpty());
    EXPECT_EQ(Parsed("-d").record.Flags, 32);
}

TEST(CommandLineTest, PresetNameIsLowerCased) {
    EXPECT_EQ(Parsed("-p  At HOME ").presetName, "at home");
    EXPECT_EQ(Parsed("-p").presetName, "");
}

TEST(CommandLineTest, RecordsNameIsNotSetByOptions) {
    EXPECT_EQ(Parsed("-n Office -p Home -m 001122334455").record.Name, "");
}

TEST(CommandLineTest, SwitchesSetNothingElse) {
    const CommandLine line = Parsed("-s -re -di -rl -rn");
    EXPECT_TRUE(line.silent && line.restart && line.disable && line.release && line.renew);
    EXPECT_FALSE(line.shortVendorList || line.resetOriginalMac || line.WantsWindow());
    EXPECT_EQ(line.record, PresetRecord());
}

TEST(CommandLineTest, EachSwitchIsItsOwn) {
    EXPECT_TRUE(Parsed("-s").silent);
    EXPECT_TRUE(Parsed("-re").restart);
    EXPECT_TRUE(Parsed("-di").disable);
    EXPECT_TRUE(Parsed("-rl").release);
    EXPECT_TRUE(Parsed("-rn").renew);
    EXPECT_FALSE(Parsed("-re").disable || Parsed("-re").release || Parsed("-re").renew ||
                 Parsed("-re").silent);
}

TEST(CommandLineTest, ShortListAndResetAskForTheWindow) {
    EXPECT_TRUE(Parsed("-sv").WantsWindow());
    EXPECT_TRUE(Parsed("-sv").shortVendorList);
    EXPECT_TRUE(Parsed("-ro -n Office -re").WantsWindow());
    EXPECT_TRUE(Parsed("-ro").resetOriginalMac);
    EXPECT_FALSE(Parsed("-n Office -re").WantsWindow());
    EXPECT_FALSE(ParseCommandLine("-sv -x").WantsWindow());
}

TEST(CommandLineTest, BytesAbove127PassThrough) {
    EXPECT_EQ(Parsed("-n B\u00FCro").connectionName, "B\u00FCro");
    EXPECT_EQ(Parsed("-p B\u00DCRO").presetName, "b\u00DCro");
    EXPECT_EQ(InvalidName("-\u00FC"), "\u00FC");
}

TEST(CommandLineTest, HelpTextIsTheUsageLineAndOneLineForEachOption) {
    EXPECT_EQ(CommandLineHelp(),
              "nicx -n network_connection_name   [-m mac_address / -r]   [-h]   "
              "[-i ip_address_1[,ip_address_2...] :subnet_mask_1[,subnet_mask_2...]]   "
              "[-g gateway_1[,gateway_2...] :metric_1[,metric_2...]]   [-d dns_server_1[,dns_server_2...]]   "
              "[-p preset_name]   [-s]   [-re]   [-di]   [-rn]   [-rl]   [-sv]   [-ro]\r\n"
              "\r\n"
              "-n    Specifies name of the network connection/adapter (NIC). Name may be complete or partial "
              "or just a part of it.\r\n"
              "-m    Specifies a MAC address. Blank MAC address implies original MAC address of the NIC.\r\n"
              "-r    Specifies to use a random MAC address from manufacturers list.\r\n"
              "-h    Enables DHCP and removes previous IP addresses and Gateways.\r\n"
              "-rl   Releases DHCP server assigned IP address.\r\n"
              "-Rn   Renews IP address lease from DHCP server.\r\n"
              "-i    Changes IP address. IP address list is comma separated, subnet masks list is comma "
              "separated. Both IP addresses and subnet masks lists are separated using a colon ':'\r\n"
              "-g    Changes Gateway address. Gateway addresses list is comma separated, metrics list is "
              "comma separated. Both Gateway addresses and metric lists separated using a colon ':'\r\n"
              "-d    Changes DNS server address. DNS server address list is comma separated.\r\n"
              "-s    Silent mode. Do not show any message window.\r\n"
              "-re   Restarts network connection/adapter.\r\n"
              "-di   Disable network connection/adapter.\r\n"
              "-p    Specifies name of a preset saved earlier to be used. Preset name may be complete or "
              "partial or just a part of it. This parameter over powers all other network settings.\r\n"
              "-sv   Loads short vendor list which makes NICX load faster. This parameter over powers all "
              "other parameters.\r\n"
              "-ro   Resets the original MAC address info saved in registry by NICX. Use this only if "
              "original MAC address saved is wrong. This parameter over powers all other parameters.\r\n"
              "-help Displays this help message.\r\n"
              "\r\n"
              "Click OK to Continue");
}

}  // namespace
}  // namespace corvane
