#include <regex>
#include <set>
#include <string>

#include "presets/ApplyPreset.h"
#include "tests/unit/CoreSupport.h"
#include "vendors/VendorList.h"

namespace corvane {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

class ApplyPresetTest : public testing::Test {
 protected:
    ApplyPresetTest() {
        machine.AddAdapter(kFirstId, "Office", "0003");
        machine.AddAdapter(kSecondId, "Lab", "0007");
        NicInfo lab = NicRecord(kSecondId, "Lab", "0007");
        lab.NetworkAddress = "02-11-22-33-44-55";
        lab.OriginalNetworkAddress = "00-0C-29-AA-BB-CC";
        Nics = {NicRecord(kFirstId, "Office", "0003"), lab};
        machine.registry->SetText(driverKey, "NetworkAddress", "021122334455");
        preset.IpAddresses = {"10.0.0.5"};
        preset.SubnetMasks = {"255.0.0.0"};
        preset.Gateways = {"10.0.0.1"};
        preset.GatewayMetrics = {"3"};
        preset.DnsServers = {"9.9.9.9", "1.1.1.1"};
    }

    void Apply(int flags, const std::string& mac = "") {
        preset.Flags = static_cast<std::uint8_t>(flags);
        preset.Mac = mac;
        ApplyPreset(1, preset);
    }

    /// A random address that is written with the given clock seed.
    std::string RandomAddress(std::uint32_t seed) {
        machine.clock->seed = seed;
        Apply(kPresetMac | kPresetRandomMac);
        return machine.registry->Text(driverKey, "NetworkAddress");
    }

    FakeMachine machine;
    PresetRecord preset;
    const std::string driverKey = DriverKeyPath("0007");
    const std::string tcpipKey = TcpipKey(kSecondId);
};

TEST_F(ApplyPresetTest, MacIsWrittenWithoutItsSeparators) {
    Apply(kPresetMac, "02-AA-BB-CC-DD-EE");
    EXPECT_THAT(WritesTo(*machine.registry, driverKey),
                ElementsAre(NamedValue("NetworkAddress", Sz("02AABBCCDDEE"))));
}

TEST_F(ApplyPresetTest, MacOfTheCommandLineIsWrittenAsItIs) {
    Apply(kPresetMac, "02aabbccddee");
    EXPECT_THAT(WritesTo(*machine.registry, driverKey),
                ElementsAre(NamedValue("NetworkAddress", Sz("02aabbccddee"))));
}

TEST_F(ApplyPresetTest, MacThatIsTheConfiguredOverrideChangesNothing) {
    Apply(kPresetMac, "02-11-22-33-44-55");
    EXPECT_THAT(machine.registry->diary, ElementsAre("write " + tcpipKey + "\\EnableDHCP"));
}

TEST_F(ApplyPresetTest, MacThatIsTheSavedOriginalRemovesTheOverride) {
    Apply(kPresetMac, "00-0C-29-AA-BB-CC");
    EXPECT_FALSE(machine.registry->HasValue(driverKey, "NetworkAddress"));
    EXPECT_THAT(WritesTo(*machine.registry, driverKey), IsEmpty());
}

TEST_F(ApplyPresetTest, EmptyMacRemovesTheOverride) {
    Apply(kPresetMac, "");
    EXPECT_FALSE(machine.registry->HasValue(driverKey, "NetworkAddress"));
}

TEST_F(ApplyPresetTest, EmptyMacWithoutAnOverrideChangesNothing) {
    Nics[1].NetworkAddress.clear();
    machine.registry->RemoveValue(driverKey, "NetworkAddress");
    Apply(kPresetMac, "");
    EXPECT_THAT(machine.registry->diary, ElementsAre("write " + tcpipKey + "\\EnableDHCP"));
}

TEST_F(ApplyPresetTest, MacIsComparedInItsSpelling) {
    Apply(kPresetMac, "021122334455");
    EXPECT_THAT(WritesTo(*machine.registry, driverKey),
                ElementsAre(NamedValue("NetworkAddress", Sz("021122334455"))));
}

TEST_F(ApplyPresetTest, MacWithoutItsBitIsNotLookedAt) {
    Apply(0, "02-AA-BB-CC-DD-EE");
    EXPECT_THAT(WritesTo(*machine.registry, driverKey), IsEmpty());
}

TEST_F(ApplyPresetTest, RandomBitAloneWritesNoMac) {
    Vendors() = VendorTable::Parse(VendorBytes({{"00000C", "Cisco", ""}}), "test");
    Apply(kPresetRandomMac);
    EXPECT_THAT(WritesTo(*machine.registry, driverKey), IsEmpty());
}

TEST_F(ApplyPresetTest, RandomMacHasAPrefixOfTheVendorListAndThreeOctetsMore) {
    Vendors() = VendorTable::Parse(VendorBytes({{"00000C", "Cisco", ""}}), "test");
    const std::string address = RandomAddress(1);
    EXPECT_TRUE(std::regex_match(address, std::regex("00000C[0-9A-F]{6}"))) << address;
}

TEST_F(ApplyPresetTest, RandomMacIsDrawnAnewForEachSeed) {
    Vendors() = VendorTable::Parse(
        VendorBytes({{"00000C", "Cisco", ""}, {"000C29", "VMware", ""}, {"AABBCC", "Acme", ""}}), "test");
    std::set<std::string> prefixes;
    std::set<std::string> addresses;
    for (std::uint32_t seed = 1; seed <= 50; ++seed) {
        const std::string address = RandomAddress(seed);
        ASSERT_EQ(address.size(), 12U);
        prefixes.insert(address.substr(0, 6));
        addresses.insert(address);
    }
    EXPECT_EQ(prefixes, (std::set<std::string>{"00000C", "000C29", "AABBCC"}));
    EXPECT_EQ(addresses.size(), 50U);
}

TEST_F(ApplyPresetTest, RandomMacComesFromTheSeedOfTheClock) {
    Vendors() = VendorTable::Parse(VendorBytes({{"00000C", "Cisco", ""}}), "test");
    const std::string first = RandomAddress(7);
    EXPECT_NE(RandomAddress(8), first);
    EXPECT_EQ(RandomAddress(7), first);
}

TEST_F(ApplyPresetTest, RandomBitOverrulesAGivenMac) {
    Vendors() = VendorTable::Parse(VendorBytes({{"00000C", "Cisco", ""}}), "test");
    Apply(kPresetMac | kPresetRandomMac, "02-AA-BB-CC-DD-EE");
    EXPECT_THAT(machine.registry->Text(driverKey, "NetworkAddress"), testing::StartsWith("00000C"));
}

TEST_F(ApplyPresetTest, MacIsWrittenBeforeTheTcpipSettings) {
    Apply(kPresetMac | kPresetIp, "02-AA-BB-CC-DD-EE");
    EXPECT_THAT(machine.registry->diary,
                ElementsAre("write " + driverKey + "\\NetworkAddress", "write " + tcpipKey + "\\EnableDHCP",
                            "write " + tcpipKey + "\\IPAddress", "write " + tcpipKey + "\\SubnetMask"));
}

TEST_F(ApplyPresetTest, TcpipSettingsAreWrittenAsFarAsTheirBitsAreSet) {
    Apply(kPresetIp | kPresetGateway | kPresetDns);
    EXPECT_THAT(WritesTo(*machine.registry, tcpipKey),
                ElementsAre(NamedValue("EnableDHCP", Dword(0)),
                            NamedValue("IPAddress", MultiSz("10.0.0.5" + kNul + kNul)),
                            NamedValue("SubnetMask", MultiSz("255.0.0.0" + kNul + kNul)),
                            NamedValue("DefaultGateway", MultiSz("10.0.0.1" + kNul + kNul)),
                            NamedValue("DefaultGatewayMetric", MultiSz("3" + kNul + kNul)),
                            NamedValue("NameServer", Sz("9.9.9.9,1.1.1.1" + kNul))));
}

TEST_F(ApplyPresetTest, DhcpPresetNeverAppliesItsAddresses) {
    Apply(kPresetDhcp);
    EXPECT_EQ(machine.registry->Value(tcpipKey, "IPAddress"), MultiSz("0.0.0.0" + kNul + kNul));
    EXPECT_EQ(machine.registry->Value(tcpipKey, "NameServer"), Sz(kNul));
}

TEST_F(ApplyPresetTest, TcpipSettingsAreWrittenAfterAFailedMac) {
    machine.registry->fail = [](const std::string& operation, const std::string&,
                                const std::string& name) -> std::optional<Win32Error> {
        if (operation == "write" && name == "NetworkAddress") return Win32Error::kAccessDenied;
        return std::nullopt;
    };
    Apply(kPresetMac | kPresetDhcp, "02-AA-BB-CC-DD-EE");
    ASSERT_EQ(machine.seat.boxes.size(), 1U);
    EXPECT_EQ(machine.registry->Value(tcpipKey, "EnableDHCP"), Dword(1));
}

TEST_F(ApplyPresetTest, NothingIsRestarted) {
    Apply(kPresetMac | kPresetDhcp, "02-AA-BB-CC-DD-EE");
    EXPECT_THAT(machine.shell->diary, IsEmpty());
    EXPECT_THAT(machine.clock->sleeps, IsEmpty());
    EXPECT_THAT(machine.seat.diary, IsEmpty());
}

}  // namespace
}  // namespace corvane
