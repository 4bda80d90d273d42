#include <regex>
#include <string>

#include "tests/unit/ActionsSupport.h"
#include "vendors/VendorList.h"

namespace corvane {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

PresetRecord HomePreset() {
    PresetRecord preset;
    preset.Name = "  At HOME ";
    preset.Flags = kPresetMac | kPresetDns;
    preset.Mac = "02-AA-BB-CC-DD-EE";
    preset.DnsServers = {"9.9.9.9"};
    return preset;
}

PresetRecord LabPreset() {
    PresetRecord preset;
    preset.Name = "Home lab";
    preset.Flags = kPresetDhcp;
    return preset;
}

TEST_F(ActionsTest, NoConnectionNameEndsWithoutAMessage) {
    EXPECT_EQ(Run("-s"), 2);
    EXPECT_EQ(Run("-h -m 021122334455 -re"), 2);
    EXPECT_EQ(Run("-n"), 2);
    EXPECT_THAT(machine.seat.diary, IsEmpty());
    EXPECT_THAT(machine.registry->diary, IsEmpty());
}

TEST_F(ActionsTest, UnknownConnectionIsReported) {
    EXPECT_EQ(Run("-n Garage 7 -h"), 3);
    EXPECT_THAT(machine.seat.boxes,
                ElementsAre(Critical("NIC Not Found- Orvella Corvane v4",
                                     "ERROR! Network connection 'Garage 7' was not found.")));
    EXPECT_THAT(machine.registry->writes, IsEmpty());
}

TEST_F(ActionsTest, UnknownConnectionInSilentModeIsNotShown) {
    EXPECT_EQ(Run("-n garage -h -s"), 3);
    EXPECT_THAT(machine.seat.diary, IsEmpty());
    EXPECT_THAT(machine.registry->writes, IsEmpty());
}

TEST_F(ActionsTest, PartOfTheNameInLowerCaseIsEnough) {
    EXPECT_EQ(Run("-n less"), 0);
    ASSERT_EQ(machine.seat.boxes.size(), 1U);
    EXPECT_THAT(machine.seat.boxes[0].text, testing::HasSubstr("'Office Wireless'"));
}

TEST_F(ActionsTest, FirstConnectionThatMatchesIsTaken) {
    EXPECT_EQ(Run("-n office"), 0);
    EXPECT_THAT(machine.seat.boxes, ElementsAre(kDone));
}

TEST_F(ActionsTest, NameWithCapitalsNeverMatches) {
    EXPECT_EQ(Run("-n Office LAN"), 3);
    EXPECT_EQ(Run("-n LAN"), 3);
    EXPECT_EQ(Run("-n office lan"), 0);
}

TEST_F(ActionsTest, VendorListIsResetBeforeTheAdaptersAreRead) {
    Vendors() = VendorTable::Parse(VendorBytes({{"021122", "Acme", ""}}), "test");
    machine.registry->SetText(DriverKeyPath("0003"), "NetworkAddress", "021122334455");
    EXPECT_EQ(Run("-n office"), 0);
    EXPECT_TRUE(Vendors().IsPlaceholder());
    EXPECT_EQ(Nics[0].Vendor, "");
}

TEST_F(ActionsTest, NoSettingWritesNothing) {
    EXPECT_EQ(Run("-n office"), 0);
    EXPECT_THAT(machine.registry->writes, IsEmpty());
}

TEST_F(ActionsTest, OptionsAreApplied) {
    EXPECT_EQ(Run("-n lan -m 02:11:22:33:44:55 -i 10.0.0.5 -g 10.0.0.1 -d 9.9.9.9,1.1.1.1"), 0);
    EXPECT_THAT(DriverWrites(), ElementsAre(NamedValue("NetworkAddress", Sz("021122334455"))));
    EXPECT_THAT(TcpipWrites(), ElementsAre(NamedValue("EnableDHCP", Dword(0)),
                                           NamedValue("IPAddress", MultiSz("10.0.0.5" + kNul + kNul)),
                                           NamedValue("SubnetMask", MultiSz("255.0.0.0" + kNul + kNul)),
                                           NamedValue("DefaultGateway", MultiSz("10.0.0.1" + kNul + kNul)),
                                           NamedValue("DefaultGatewayMetric", MultiSz("0" + kNul + kNul)),
                                           NamedValue("NameServer", Sz("9.9.9.9,1.1.1.1" + kNul))));
    EXPECT_EQ(machine.registry->writes.size(), 7U);
    EXPECT_THAT(machine.seat.boxes, ElementsAre(kDone));
}

TEST_F(ActionsTest, EmptyMacRemovesTheOverride) {
    machine.registry->SetText(DriverKeyPath("0003"), "NetworkAddress", "021122334455");
    EXPECT_EQ(Run("-n lan -m"), 0);
    EXPECT_FALSE(machine.registry->HasValue(DriverKeyPath("0003"), "NetworkAddress"));
}

TEST_F(ActionsTest, PresetReplacesEveryOtherSetting) {
    WritePresets({HomePreset()});
    EXPECT_EQ(Run("-n lan -m 021122334455 -h -i 10.0.0.5 -p at home"), 0);
    EXPECT_THAT(DriverWrites(), ElementsAre(NamedValue("NetworkAddress", Sz("02AABBCCDDEE"))));
    EXPECT_THAT(TcpipWrites(), ElementsAre(NamedValue("EnableDHCP", Dword(0)),
                                           NamedValue("NameServer", Sz("9.9.9.9" + kNul))));
}

TEST_F(ActionsTest, PresetWinsWhereverItStandsOnTheLine) {
    WritePresets({HomePreset()});
    EXPECT_EQ(Run("-p home -n lan -m 021122334455"), 0);
    EXPECT_THAT(DriverWrites(), ElementsAre(NamedValue("NetworkAddress", Sz("02AABBCCDDEE"))));
}

TEST_F(ActionsTest, FirstPresetThatMatchesIsTaken) {
    WritePresets({LabPreset(), HomePreset()});
    EXPECT_EQ(Run("-n lan -p HOME"), 0);
    EXPECT_THAT(DriverWrites(), IsEmpty());
    EXPECT_EQ(machine.registry->Value(TcpipKey(kFirstId), "EnableDHCP"), Dword(1));
}

TEST_F(ActionsTest, UnknownPresetLeavesTheOptionsWithoutAMessage) {
    WritePresets({HomePreset()});
    EXPECT_EQ(Run("-n lan -h -p garage"), 0);
    EXPECT_EQ(machine.registry->Value(TcpipKey(kFirstId), "EnableDHCP"), Dword(1));
    EXPECT_THAT(machine.seat.boxes, ElementsAre(kDone));
}

TEST_F(ActionsTest, PresetsFileOfNoPresetsLeavesTheOptions) {
    WriteBytes(folder / "presets.npf", Little(0, 4));
    EXPECT_EQ(Run("-n lan -h -p home"), 0);
    EXPECT_EQ(machine.registry->Value(TcpipKey(kFirstId), "EnableDHCP"), Dword(1));
}

TEST_F(ActionsTest, EmptyPresetNameIsNoPresetName) {
    EXPECT_EQ(Run("-n lan -h -p"), 0);
    EXPECT_EQ(machine.registry->Value(TcpipKey(kFirstId), "EnableDHCP"), Dword(1));
}

TEST_F(ActionsTest, PresetWithoutSettingsWritesNothing) {
    PresetRecord empty;
    empty.Name = "nothing";
    WritePresets({empty});
    EXPECT_EQ(Run("-n lan -h -p nothing"), 0);
    EXPECT_THAT(machine.registry->writes, IsEmpty());
}

TEST_F(ActionsTest, MissingPresetsFileEndsTheRun) {
    EXPECT_EQ(ErrorNumber("-n lan -h -p home"), RunTimeError::kFileNotFound);
    EXPECT_THAT(machine.registry->writes, IsEmpty());
}

TEST_F(ActionsTest, UnknownConnectionNeedsNoPresetsFile) { EXPECT_EQ(Run("-n garage -p home"), 3); }

TEST_F(ActionsTest, RandomMacComesFromTheVendorFile) {
    WriteVendors();
    EXPECT_EQ(Run("-n lan -r"), 0);
    const std::string address = machine.registry->Text(DriverKeyPath("0003"), "NetworkAddress");
    EXPECT_TRUE(std::regex_match(address, std::regex("00000[CD][0-9A-F]{6}"))) << address;
}

TEST_F(ActionsTest, PresetWithARandomMacLoadsTheVendorFile) {
    WriteVendors();
    PresetRecord preset = HomePreset();
    preset.Flags = kPresetMac | kPresetRandomMac;
    preset.Mac.clear();
    WritePresets({preset});
    EXPECT_EQ(Run("-n lan -p home"), 0);
    EXPECT_THAT(machine.registry->Text(DriverKeyPath("0003"), "NetworkAddress"),
                testing::StartsWith("00000"));
}

TEST_F(ActionsTest, MissingVendorFileEndsARunWithARandomMac) {
    EXPECT_EQ(ErrorNumber("-n lan -r -h -re"), RunTimeError::kFileNotFound);
    EXPECT_THAT(machine.registry->writes, IsEmpty());
    EXPECT_THAT(machine.shell->diary, IsEmpty());
}

TEST_F(ActionsTest, VendorFileIsNotNeededWhenAPresetReplacesTheRandomMac) {
    WritePresets({HomePreset()});
    EXPECT_EQ(Run("-n lan -r -p home"), 0);
}

TEST_F(ActionsTest, FailedDiscoveryIsAFailureEvenWhenTheRestIsDone) {
    machine.registry->fail = [](const std::string& operation, const std::string& subkey,
                                const std::string&) -> std::optional<Win32Error> {
        if (operation == "enum" && subkey == kClassKey) return Win32Error::kRegistryCorrupt;
        return std::nullopt;
    };
    EXPECT_EQ(Run("-n lan"), 1);
    ASSERT_EQ(machine.seat.boxes.size(), 2U);
    EXPECT_EQ(machine.seat.boxes[0].title, "Error! Cannot Read Registry");
    EXPECT_EQ(machine.seat.boxes[1], kDone);
}

TEST_F(ActionsTest, AdviceIsGivenBeforeAnythingIsWritten) {
    EXPECT_EQ(Run("-n lan -m 012233445566 -d 8.8.8"), 0);
    ASSERT_EQ(machine.seat.warnings.size(), 2U);
    EXPECT_THAT(machine.seat.warnings[0],
                testing::StartsWith("MAC address '012233445566' is stored as typed"));
    EXPECT_THAT(machine.seat.warnings[1], testing::StartsWith("DNS server '8.8.8' is stored as typed"));
    EXPECT_EQ(machine.registry->Text(DriverKeyPath("0003"), "NetworkAddress"), "012233445566");
}

TEST_F(ActionsTest, NameInTheBoxesKeepsItsBlanksAndCapitals) {
    machine.registry->SetText(ConnectionKey(kSecondId), "Name", "  My Lab ");
    EXPECT_EQ(Run("-n my lab"), 0);
    ASSERT_EQ(machine.seat.boxes.size(), 1U);
    EXPECT_EQ(machine.seat.boxes[0].text,
              "Done! Command line parameter(s) were applied to '  My Lab ' network connection successfully.");
}

TEST_F(ActionsTest, MachineWithoutAdaptersFindsNothing) {
    machine.registry->RemoveKey(kAdaptersKey + ("\\" + std::string(kFirstId)));
    machine.registry->RemoveKey(kAdaptersKey + ("\\" + std::string(kSecondId)));
    EXPECT_EQ(Run("-n office"), 3);
}

}  // namespace
}  // namespace corvane
