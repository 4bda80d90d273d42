#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fakes/Fakes.h"
#include "inventory/GetNicInfo.h"
#include "inventory/NicInfo.h"
#include "inventory/Stages.h"
#include "tests/unit/InventorySupport.h"

namespace corvane {
namespace {

using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const std::string kClassPath =
    "SYSTEM\\CurrentControlSet\\Control\\Class\\{4D36E972-E325-11CE-BFC1-08002bE10318}";
const std::string kAdaptersPath = "SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Parameters\\Adapters";

FakeSeat::Box ReadErrorBox(const std::string& path, const std::string& error) {
    return {"Error! Cannot Read Registry",
            "Error while reading windows registry.\r\n"
            "\r\n"
            "Registry Path: HKEY_LOCAL_MACHINE\\" +
                path +
                "\r\n"
                "\r\n"
                "Error: " +
                error +
                "\r\n"
                "\r\n"
                "Click OK to continue",
            BoxIcon::kCritical, BoxButtons::kOk, false};
}

class AdapterRegistry : public testing::Test {
 protected:
    void FailEnumerationOf(const std::string& key, Win32Error code) {
        registry_.fail = [=](const std::string& operation, const std::string& subkey,
                             const std::string&) -> std::optional<Win32Error> {
            if (operation == "enum" && subkey == key) return code;
            return std::nullopt;
        };
    }

    /// The adapter {A} with the driver key 0001 that holds this text value.
    void AddWithValue(const std::string& name, const std::string& text) {
        machine_.AddAdapter("{A}", "eth0", "0001", {{name, text}});
        RunStage(ReadAdapterRegistry);
    }

    FakeMachine machine_;
    FakeRegistry& registry_ = *machine_.registry;
};

std::vector<std::string> Ids() {
    std::vector<std::string> ids;
    for (const NicInfo& nic : Nics) ids.push_back(nic.Id);
    return ids;
}

// ---- which adapters there are

TEST_F(AdapterRegistry, OnlySubkeysThatBeginWithABraceAreAdapters) {
    for (const char* name : {"NdisWanIp", "{A}"}) registry_.MakeKey(kAdaptersPath + "\\" + name);
    RefreshNicInfo();
    EXPECT_THAT(Ids(), ElementsAre("{A}"));
}

TEST_F(AdapterRegistry, RecordsStandInTheOrderOfTheSubkeys) {
    for (const char* name : {"{C}", "{A}", "ms_ndis", "{B}"}) registry_.MakeKey(kAdaptersPath + "\\" + name);
    RefreshNicInfo();
    EXPECT_THAT(Ids(), ElementsAre("{A}", "{B}", "{C}"));
}

TEST_F(AdapterRegistry, WithoutAdapterSubkeysThereIsOneRecordWithNothingRead) {
    RefreshNicInfo();
    ASSERT_THAT(Nics, SizeIs(1));
    const NicInfo& nic = Nics[0];
    EXPECT_EQ(nic.Id + nic.ComponentId + nic.Name + nic.DriverDesc + nic.NetworkAddress + nic.Speed +
                  nic.DriverKey + nic.Mac + nic.LeaseObtained + nic.LeaseTerminates +
                  nic.OriginalNetworkAddress + nic.Vendor,
              "");
    EXPECT_EQ(nic.IfIndex, 0U);
    EXPECT_EQ(nic.InterfaceMetric, 0U);
    EXPECT_FALSE(nic.TcpipBound);
    EXPECT_FALSE(nic.DhcpEnabled);
    EXPECT_THAT(nic.IpAddresses, ElementsAre(""));
    EXPECT_THAT(nic.SubnetMasks, ElementsAre(""));
    EXPECT_THAT(nic.IpRowFlags, ElementsAre(0U));
    EXPECT_THAT(nic.Gateways, ElementsAre(""));
    EXPECT_THAT(nic.GatewayMetrics, ElementsAre(""));
    EXPECT_THAT(nic.DnsServers, ElementsAre(""));
    EXPECT_THAT(machine_.seat.boxes, IsEmpty());
}

TEST_F(AdapterRegistry, WithoutAdapterSubkeysNothingMoreIsReadInTheFirstStage) {
    RunStage(ReadAdapterRegistry);
    EXPECT_THAT(registry_.diary, ElementsAre("enum " + kAdaptersPath));
}

TEST_F(AdapterRegistry, SubkeysThatAreNoAdaptersLeaveTheSingleEmptyRecord) {
    registry_.MakeKey(kAdaptersPath + "\\NdisWanIp");
    registry_.SetText(kClassPath + "\\Properties", "DriverDesc", "no adapter");
    RefreshNicInfo();
    EXPECT_THAT(Ids(), ElementsAre(""));
    EXPECT_EQ(Nics[0].DriverKey, "");
    EXPECT_EQ(Nics[0].DriverDesc, "");
}

TEST_F(AdapterRegistry, ARefreshForgetsWhatWasThere) {
    machine_.AddAdapter("{A}", "eth0", "0001", {{"NetworkAddress", "0012AB34CD56"}});
    machine_.AddAdapter("{B}", "eth1", "0002");
    RefreshNicInfo();
    ASSERT_THAT(Ids(), ElementsAre("{A}", "{B}"));
    registry_.RemoveKey(kAdaptersPath + "\\{B}");
    registry_.RemoveValue(DriverKeyPath("0001"), "NetworkAddress");
    RefreshNicInfo();
    EXPECT_THAT(Ids(), ElementsAre("{A}"));
    EXPECT_EQ(Nics[0].NetworkAddress, "");
}

TEST_F(AdapterRegistry, AMissingAdaptersKeyIsShownAndEndsTheStage) {
    registry_.RemoveKey(kAdaptersPath);
    RunStage(ReadAdapterRegistry);
    EXPECT_THAT(machine_.seat.boxes, ElementsAre(ReadErrorBox(kAdaptersPath, "(2) Bad Key Name")));
    EXPECT_THAT(Ids(), ElementsAre(""));
    EXPECT_THAT(registry_.diary, ElementsAre("enum " + kAdaptersPath));
}

TEST_F(AdapterRegistry, AfterTheBoxAboutTheAdaptersKeyTheLaterStagesStillRun) {
    machine_.AddAdapter("{A}", "eth0", "0001");
    FailEnumerationOf(kAdaptersPath, Win32Error::kAccessDenied);
    RefreshNicInfo();
    EXPECT_THAT(machine_.seat.boxes,
                ElementsAre(ReadErrorBox(kAdaptersPath, "(5) Access to this key is denied")));
    EXPECT_THAT(Ids(), ElementsAre(""));
    EXPECT_THAT(machine_.ipHelper->diary,
                ElementsAre("GetInterfaceInfo", "GetIpAddrTable", "GetIpForwardTable"));
}

// ---- names

TEST_F(AdapterRegistry, TheNameComesFromTheConnectionKey) {
    registry_.MakeKey(kAdaptersPath + "\\{A}");
    registry_.SetText(
        "SYSTEM\\CurrentControlSet\\Control\\Network\\{4D36E972-E325-11CE-BFC1-08002BE10318}\\{A}"
        "\\Connection",
        "Name", "Verbindung f\u00FCr B\u00FCro");
    RunStage(ReadAdapterRegistry);
    EXPECT_EQ(Nics[0].Name, "Verbindung f\u00FCr B\u00FCro");
}

TEST_F(AdapterRegistry, WithoutAConnectionKeyTheNameIsEmptyAndNothingIsShown) {
    machine_.AddAdapter("{A}", "eth0", "0001");
    registry_.RemoveKey(ConnectionKey("{A}"));
    RunStage(ReadAdapterRegistry);
    EXPECT_EQ(Nics[0].Name, "");
    EXPECT_THAT(machine_.seat.boxes, IsEmpty());
}

TEST_F(AdapterRegistry, ANameDoesNotCarryOverToTheNextRecord) {
    machine_.AddAdapter("{A}", "eth0", "0001");
    registry_.MakeKey(kAdaptersPath + "\\{B}");
    RunStage(ReadAdapterRegistry);
    EXPECT_EQ(Nics[0].Name, "eth0");
    EXPECT_EQ(Nics[1].Name, "");
}

// ---- driver keys

TEST_F(AdapterRegistry, DriverKeyValuesGoToTheRecordOfItsId) {
    machine_.AddAdapter("{A}", "eth0", "0007", {{"DriverDesc", "Model A"}, {"ComponentId", "pci\\a"}});
    machine_.AddAdapter("{B}", "eth1", "0003", {{"DriverDesc", "Model B"}, {"ComponentId", "pci\\b"}});
    RunStage(ReadAdapterRegistry);
    EXPECT_EQ(Nics[0].DriverKey, "0007");
    EXPECT_EQ(Nics[0].DriverDesc, "Model A");
    EXPECT_EQ(Nics[0].ComponentId, "pci\\a");
    EXPECT_EQ(Nics[1].DriverKey, "0003");
    EXPECT_EQ(Nics[1].DriverDesc, "Model B");
    EXPECT_EQ(Nics[1].ComponentId, "pci\\b");
}

TEST_F(AdapterRegistry, TheClassKeyIsReadUnderItsMixedCaseName) {
    machine_.AddAdapter("{A}", "eth0", "0001");
    RunStage(ReadAdapterRegistry);
    EXPECT_THAT(registry_.diary, testing::Contains("enum " + kClassPath));
    EXPECT_THAT(registry_.diary, testing::Contains("read " + kClassPath + "\\0001\\NetCfgInstanceId"));
}

TEST_F(AdapterRegistry, AClassSubkeyWithoutAnInstanceIdIsSkipped) {
    machine_.AddAdapter("{A}", "eth0", "0001", {{"DriverDesc", "Model"}});
    registry_.SetText(kClassPath + "\\Properties", "DriverDesc", "no adapter");
    registry_.SetText(kClassPath + "\\0002", "NetCfgInstanceId", "");
    RunStage(ReadAdapterRegistry);
    EXPECT_EQ(Nics[0].DriverKey, "0001");
    EXPECT_EQ(Nics[0].DriverDesc, "Model");
    EXPECT_THAT(registry_.diary,
                testing::Not(testing::Contains("read " + kClassPath + "\\Properties\\DriverDesc")));
}

TEST_F(AdapterRegistry, AClassSubkeyOfAnotherAdapterIsSkipped) {
    machine_.AddAdapter("{A}", "eth0", "0001");
    registry_.SetText(kClassPath + "\\0002", "NetCfgInstanceId", "{Z}");
    RunStage(ReadAdapterRegistry);
    EXPECT_EQ(Nics[0].DriverKey, "0001");
    EXPECT_THAT(registry_.diary,
                testing::Not(testing::Contains("read " + kClassPath + "\\0002\\DriverDesc")));
}

TEST_F(AdapterRegistry, AnInstanceIdInAnotherLetterCaseDoesNotMatch) {
    registry_.MakeKey(kAdaptersPath + "\\{AB}");
    registry_.SetText(DriverKeyPath("0001"), "NetCfgInstanceId", "{ab}");
    RunStage(ReadAdapterRegistry);
    EXPECT_EQ(Nics[0].DriverKey, "");
}

TEST_F(AdapterRegistry, OfTwoClassSubkeysOfOneAdapterTheLaterWins) {
    machine_.AddAdapter("{A}", "eth0", "0001",
                        {{"DriverDesc", "Old"}, {"ComponentId", "old"}, {"NetworkAddress", "0012AB34CD56"}});
    machine_.AddAdapter("{A}", "eth0", "0002", {{"DriverDesc", "New"}, {"NetworkAddress", "00AABBCCDDEE"}});
    RunStage(ReadAdapterRegistry);
    ASSERT_THAT(Nics, SizeIs(1));
    EXPECT_EQ(Nics[0].DriverKey, "0002");
    EXPECT_EQ(Nics[0].DriverDesc, "New");
    EXPECT_EQ(Nics[0].ComponentId, "");
    EXPECT_EQ(Nics[0].NetworkAddress, "00-AA-BB-CC-DD-EE");
}

TEST_F(AdapterRegistry, MissingDriverValuesAreEmptyAndNothingIsShown) {
    machine_.AddAdapter("{A}", "eth0", "0001");
    RunStage(ReadAdapterRegistry);
    EXPECT_EQ(Nics[0].DriverKey, "0001");
    EXPECT_EQ(Nics[0].DriverDesc, "");
    EXPECT_EQ(Nics[0].ComponentId, "");
    EXPECT_EQ(Nics[0].NetworkAddress, "");
    EXPECT_EQ(Nics[0].OriginalNetworkAddress, "");
    EXPECT_THAT(machine_.seat.boxes, IsEmpty());
}

TEST_F(AdapterRegistry, AFailingClassEnumerationIsShownAndBindingsAreStillRead) {
    machine_.AddAdapter("{A}", "eth0", "0001");
    FailEnumerationOf(kClassPath, Win32Error::kRegistryCorrupt);
    RunStage(ReadAdapterRegistry);
    EXPECT_THAT(machine_.seat.boxes,
                ElementsAre(ReadErrorBox(kClassPath, "(1015) The Registry Database is corrupt!")));
    EXPECT_EQ(Nics[0].Name, "eth0");
    EXPECT_THAT(registry_.diary, testing::Each(testing::Not(testing::HasSubstr("NetCfgInstanceId"))));
    EXPECT_EQ(Nics[0].DriverKey, "");
    EXPECT_TRUE(Nics[0].TcpipBound);
}

TEST_F(AdapterRegistry, AnEmptyClassKeyIsNoError) {
    registry_.MakeKey(kAdaptersPath + "\\{A}");
    RunStage(ReadAdapterRegistry);
    EXPECT_THAT(Ids(), ElementsAre("{A}"));
    EXPECT_THAT(registry_.diary, testing::Each(testing::Not(testing::HasSubstr("NetCfgInstanceId"))));
    EXPECT_EQ(Nics[0].DriverKey, "");
    EXPECT_THAT(machine_.seat.boxes, IsEmpty());
}

// ---- addresses

TEST_F(AdapterRegistry, AnOverrideIsShownAsSixUpperCasePairs) {
    AddWithValue("NetworkAddress", "0012ab34cd56");
    EXPECT_EQ(Nics[0].NetworkAddress, "00-12-AB-34-CD-56");
}

TEST_F(AdapterRegistry, AnOverrideOf10Or11CharactersIsIgnored) {
    AddWithValue("NetworkAddress", "0012ab34cd");
    EXPECT_EQ(Nics[0].NetworkAddress, "");
    AddWithValue("NetworkAddress", "0012ab34cd5");
    EXPECT_EQ(Nics[0].NetworkAddress, "");
}

TEST_F(AdapterRegistry, AnOverrideOf14CharactersKeepsTheFirstTwelve) {
    AddWithValue("NetworkAddress", "0012ab34cd5678");
    EXPECT_EQ(Nics[0].NetworkAddress, "00-12-AB-34-CD-56");
}

TEST_F(AdapterRegistry, AnOverrideStoredWithDashesIsCutIntoPairsAsItStands) {
    AddWithValue("NetworkAddress", "00-12-ab-34-cd-56");
    EXPECT_EQ(Nics[0].NetworkAddress, "00--1-2--AB--3-4-");
}

TEST_F(AdapterRegistry, AnOverrideStoredWithoutATerminatorLosesItsLastDigitAndIsIgnored) {
    machine_.AddAdapter("{A}", "eth0", "0001");
    const std::string digits = "0012AB34CD56";
    registry_.SetValue(DriverKeyPath("0001"), "NetworkAddress", {kRegSz, {digits.begin(), digits.end()}});
    RunStage(ReadAdapterRegistry);
    EXPECT_EQ(Nics[0].NetworkAddress, "");
}

TEST_F(AdapterRegistry, AnOverrideOfAnotherTypeIsReadAsText) {
    machine_.AddAdapter("{A}", "eth0", "0001");
    const std::string bytes = "0012AB34CD56\0"s;
    registry_.SetBinary(DriverKeyPath("0001"), "NetworkAddress", {bytes.begin(), bytes.end()});
    RunStage(ReadAdapterRegistry);
    EXPECT_EQ(Nics[0].NetworkAddress, "00-12-AB-34-CD-56");
}

TEST_F(AdapterRegistry, EmptyAddressValuesAreIgnored) {
    machine_.AddAdapter("{A}", "eth0", "0001", {{"NetworkAddress", ""}});
    registry_.SetValue(DriverKeyPath("0001"), "OriginalNetworkAddress", {kRegSz, {}});
    RunStage(ReadAdapterRegistry);
    EXPECT_EQ(Nics[0].NetworkAddress, "");
    EXPECT_EQ(Nics[0].OriginalNetworkAddress, "");
}

TEST_F(AdapterRegistry, AddressLengthsCountCharactersAndNotTheBytesOfUtf8) {
    machine_.AddAdapter(
        "{A}", "eth0", "0001",
        {{"NetworkAddress", "\u00E4\u00E434567890"}, {"OriginalNetworkAddress", "\u00E4\u00E434567890"}});
    machine_.AddAdapter("{B}", "eth1", "0002", {{"NetworkAddress", "0\u00E43456789012"}});
    RunStage(ReadAdapterRegistry);
    EXPECT_EQ(Nics[0].NetworkAddress, "");
    EXPECT_EQ(Nics[0].OriginalNetworkAddress, "");
    EXPECT_EQ(Nics[1].NetworkAddress, "0\u00E4-34-56-78-90-12");
}

TEST_F(AdapterRegistry, ASavedOriginalIsUpperCaseAndOtherwiseUnchanged) {
    AddWithValue("OriginalNetworkAddress", "00-0c-29-4f-8e-35");
    EXPECT_EQ(Nics[0].OriginalNetworkAddress, "00-0C-29-4F-8E-35");
    AddWithValue("OriginalNetworkAddress", "000c294f8e35");
    EXPECT_EQ(Nics[0].OriginalNetworkAddress, "000C294F8E35");
}

TEST_F(AdapterRegistry, ASavedOriginalOf11CharactersIsIgnored) {
    AddWithValue("OriginalNetworkAddress", "00-0c-29-4f");
    EXPECT_EQ(Nics[0].OriginalNetworkAddress, "");
}

// ---- binding to TCP/IP

class AdapterBinding : public AdapterRegistry {
 protected:
    /// {A} and {B} with this "Bind" value.
    void Bind(const std::string& bytes) {
        for (const char* id : {"{A}", "{B}"}) registry_.MakeKey(kAdaptersPath + "\\" + id);
        registry_.SetValue("SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Linkage", "Bind",
                           {kRegMultiSz, {bytes.begin(), bytes.end()}});
        RunStage(ReadAdapterRegistry);
    }
};

TEST_F(AdapterBinding, ListedDevicesAreBound) {
    Bind("\\Device\\{B}\0\0"s);
    EXPECT_FALSE(Nics[0].TcpipBound);
    EXPECT_TRUE(Nics[1].TcpipBound);
}

TEST_F(AdapterBinding, EmptyPiecesAndOtherDevicesAreSkipped) {
    Bind("\0\\Device\\NdisWanIp\0\0\\Device\\{A}\0\0"s);
    EXPECT_TRUE(Nics[0].TcpipBound);
    EXPECT_FALSE(Nics[1].TcpipBound);
}

TEST_F(AdapterBinding, APieceMustBeEqualToTheLetter) {
    Bind(
        "\\DEVICE\\{A}\0\\Device\\{a}\0\\Device\\{A}x\0{A}\0 \\Device\\{A}\0\\Device\\{A\0\\Device\\{B}\0\0"s);
    EXPECT_FALSE(Nics[0].TcpipBound);
    EXPECT_TRUE(Nics[1].TcpipBound);
}

TEST_F(AdapterBinding, AListWithOneNulAtItsEndIsReadWhole) {
    Bind("\\Device\\{A}\0\\Device\\{B}\0"s);
    EXPECT_TRUE(Nics[0].TcpipBound);
    EXPECT_TRUE(Nics[1].TcpipBound);
}

TEST_F(AdapterBinding, AListWithoutATerminatorLosesItsLastCharacter) {
    Bind("\\Device\\{A}\0\\Device\\{B}"s);
    EXPECT_TRUE(Nics[0].TcpipBound);
    EXPECT_FALSE(Nics[1].TcpipBound);
}

TEST_F(AdapterBinding, AnEmptyListBindsNothing) {
    for (const std::string& bytes : {""s, "\0"s, "\0\0"s}) {
        Bind(bytes);
        EXPECT_FALSE(Nics[0].TcpipBound);
        EXPECT_FALSE(Nics[1].TcpipBound);
    }
}

TEST_F(AdapterBinding, WithoutALinkageKeyNothingIsBoundOrShown) {
    registry_.MakeKey(kAdaptersPath + "\\{A}");
    RunStage(ReadAdapterRegistry);
    EXPECT_FALSE(Nics[0].TcpipBound);
    EXPECT_THAT(machine_.seat.boxes, IsEmpty());
}

}  // namespace
}  // namespace corvane
