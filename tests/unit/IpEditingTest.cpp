#include "tests/unit/AddressEditingSupport.h"

/// Opening the panel `fAddIP` and adding IP addresses with it.
namespace corvane {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

const std::vector<std::string> kIpPanelReady = {"focus IPAddress", "default Add IP"};

class IpEditingTest : public LabAddressesTest {
 protected:
    void Add(const EditingTarget& target, const std::string& address, const std::string& mask) {
        panel.SetAddressAndMask(address, mask);
        panel.editing.Add(target);
    }
};

// ---- opening

TEST_F(IpEditingTest, PanelIsEmptiedShownGivenItsDefaultButtonAndTheFocus) {
    panel.SetAddressAndMask("10.0.0.7", "");
    panel.TypeCidr("20");
    panel.editing.Open();
    EXPECT_THAT(diary, ElementsAre("show [] [] []", "default Add IP", "focus IPAddress"));
    EXPECT_THAT(panel.Texts(), ElementsAre("", "", ""));
    EXPECT_EQ(panel.beeps, 0);
}

TEST_F(IpEditingTest, OpeningChangesNeitherTheListNorTheMachine) {
    panel.editing.Open();
    ExpectListAsBefore();
    ExpectMachineUntouched();
}

// ---- adding, live

TEST_F(IpEditingTest, AddressThatIsNotPersistentIsAddedToTheStackAlone) {
    Add(kLab, "10.0.0.7", "255.255.255.0");
    ASSERT_EQ(ipHelper->addresses.size(), 1U);
    const IpAddrRow& added = ipHelper->addresses[0];
    EXPECT_EQ(added.address, (Ipv4Bytes{10, 0, 0, 7}));
    EXPECT_EQ(added.mask, (Ipv4Bytes{255, 255, 255, 0}));
    EXPECT_EQ(added.index, kLabIndex);
    EXPECT_THAT(machine.registry->diary, IsEmpty());
    EXPECT_EQ(diary, Lines({{"refresh"}, kIpPanelReady}));
}

TEST_F(IpEditingTest, PersistentAddressIsAddedToTheStackAndWritten) {
    panel.persistent = true;
    Add(kLab, "10.0.0.7", "255.255.255.0");
    EXPECT_EQ(ipHelper->addresses.size(), 1U);
    ExpectStored({"10.0.0.5", "10.0.0.6", "10.0.0.7"}, {"255.0.0.0", "255.255.0.0", "255.255.255.0"});
    EXPECT_EQ(diary, Lines({kAddressWrites, {"refresh"}, kIpPanelReady}));
}

TEST_F(IpEditingTest, BoxesAreEmptyWhenTheWindowIsRefreshedAfterTheAdd) {
    std::vector<std::string> texts;
    machine.seat.onRefresh = [&] { texts = panel.Texts(); };
    panel.TypeCidr("20");
    panel.address.entry.SetText("10.0.0.7");
    panel.editing.Add(kLab);
    EXPECT_THAT(texts, ElementsAre("", "", ""));
    EXPECT_EQ(ipHelper->addresses.at(0).mask, (Ipv4Bytes{255, 255, 240, 0}));
}

TEST_F(IpEditingTest, LiveAddLeavesTheListToTheRefresh) {
    Add(kLab, "10.0.0.7", "255.255.255.0");
    ExpectListAsBefore();
}

TEST_F(IpEditingTest, AdapterWithoutALiveInterfaceGetsAPersistentAddressInTheRegistryAndNoErrorIsReported) {
    TakeLabDown();
    panel.persistent = true;
    Add(kLab, "10.0.0.7", "255.255.255.0");
    EXPECT_THAT(ipHelper->diary, IsEmpty());
    ExpectStored({"10.0.0.5", "10.0.0.6", "10.0.0.7"}, {"255.0.0.0", "255.255.0.0", "255.255.255.0"});
    EXPECT_EQ(diary, Lines({kAddressWrites, {"refresh"}, kIpPanelReady}));
    EXPECT_THAT(panel.Texts(), ElementsAre("", "", ""));
}

TEST_F(IpEditingTest, AdapterWithoutALiveInterfaceAndAnAddressThatIsNotPersistentCountAsSuccess) {
    TakeLabDown();
    Add(kLab, "10.0.0.7", "255.255.255.0");
    ExpectMachineUntouched();
    EXPECT_EQ(diary, Lines({{"refresh"}, kIpPanelReady}));
    EXPECT_THAT(panel.Texts(), ElementsAre("", "", ""));
}

TEST_F(IpEditingTest, RefusedAddIsReportedWritesNothingAndLeavesTheBoxes) {
    ipHelper->refusal = Win32Error::kObjectAlreadyExists;
    panel.persistent = true;
    panel.cidr = "24";
    Add(kLab, "10.0.0.5", "255.255.255.0");
    EXPECT_THAT(machine.seat.boxes, ElementsAre(RefusalBox(5010, "AddIPAddress", "unknown")));
    EXPECT_EQ(diary, Lines({{"box Orvella Corvane"}, kIpPanelReady}));
    EXPECT_THAT(panel.Texts(), ElementsAre("10.0.0.5", "255.255.255.0", "24"));
    EXPECT_THAT(machine.registry->diary, IsEmpty());
    ExpectListAsBefore();
}

TEST_F(IpEditingTest, EmptyAddressIsWrittenAsZeros) {
    TakeLabDown();
    panel.persistent = true;
    Add(kLab, "", "255.255.255.0");
    ExpectStored({"10.0.0.5", "10.0.0.6", "0.0.0.0"}, {"255.0.0.0", "255.255.0.0", "255.255.255.0"});
}

TEST_F(IpEditingTest, EmptyAddressIsAskedOfTheStackAsZerosAndStandsInTheBoxAfterTheRefusal) {
    Add(kLab, "", "255.255.255.0");
    EXPECT_THAT(ipHelper->diary, ElementsAre("AddIPAddress 3"));
    EXPECT_THAT(machine.seat.boxes, ElementsAre(InvalidParameter("AddIPAddress")));
    EXPECT_THAT(panel.Texts(), ElementsAre("0.0.0.0", "255.255.255.0", ""));
    EXPECT_THAT(machine.seat.warnings,
                ElementsAre("IP address '0.0.0.0' cannot be used: addresses that begin with 0 mean 'this "
                            "network'"));
}

TEST_F(IpEditingTest, RefusedAddressThatNoHostMayHaveIsExplainedAfterTheBox) {
    ipHelper->refusal = Win32Error::kInvalidParameter;
    Add(kLab, "224.0.0.1", "255.255.255.0");
    const std::string sentence =
        "IP address '224.0.0.1' cannot be used: addresses from 224.0.0.0 to 239.255.255.255 are multicast "
        "groups";
    EXPECT_EQ(diary, Lines({{"box Orvella Corvane", "warn " + sentence}, kIpPanelReady}));
}

TEST_F(IpEditingTest, RefusedMaskWithHolesOrOfZeroIsExplained) {
    ipHelper->refusal = Win32Error::kInvalidParameter;
    for (const std::string mask : {"255.0.255.0", "0.0.0.0", "", "255.255.255.100"}) {
        machine.seat.warnings.clear();
        Add(kLab, "10.0.0.7", mask);
        EXPECT_THAT(machine.seat.warnings,
                    ElementsAre("Subnet mask '" + mask +
                                "' cannot be used: a mask is one bits followed by zero bits, such as "
                                "255.255.255.0"));
        EXPECT_EQ(panel.mask.entry.Text(), mask);
    }
}

TEST_F(IpEditingTest, RefusalOfBothIsExplainedByTheAddressAlone) {
    ipHelper->refusal = Win32Error::kInvalidParameter;
    Add(kLab, "127.0.0.1", "0.0.0.0");
    EXPECT_THAT(machine.seat.warnings,
                ElementsAre("IP address '127.0.0.1' cannot be used: addresses that begin with 127 are the "
                            "host's loopback"));
}

TEST_F(IpEditingTest, RefusalOfGoodTextsIsNotExplained) {
    ipHelper->refusal = Win32Error::kInvalidParameter;
    Add(kLab, "10.0.0.7", "255.255.255.0");
    EXPECT_THAT(machine.seat.warnings, IsEmpty());
}

TEST_F(IpEditingTest, IncompletePersistentAddressIsStoredAsTypedAndWarnedOf) {
    panel.persistent = true;
    panel.address.texts = {"10", "1", "", ""};
    panel.mask.entry.SetText("255.255.255.0");
    panel.editing.Add(kLab);
    EXPECT_EQ(ipHelper->addresses.at(0).address, (Ipv4Bytes{10, 1, 0, 0}));
    ExpectStored({"10.0.0.5", "10.0.0.6", "10.1.."}, {"255.0.0.0", "255.255.0.0", "255.255.255.0"});
    EXPECT_THAT(machine.seat.warnings,
                ElementsAre("IP address '10.1..' is stored as typed but cannot take effect: it is not four "
                            "numbers 0 to 255 joined by '.'"));
    EXPECT_THAT(panel.Texts(), ElementsAre("", "", ""));
}

TEST_F(IpEditingTest, AddressAndMaskThatCannotTakeEffectAreWarnedOfTogether) {
    TakeLabDown();
    panel.persistent = true;
    Add(kLab, "240.0.0.1", "255.0.255.0");
    ExpectStored({"10.0.0.5", "10.0.0.6", "240.0.0.1"}, {"255.0.0.0", "255.255.0.0", "255.0.255.0"});
    EXPECT_THAT(
        machine.seat.warnings,
        ElementsAre("IP address '240.0.0.1' is stored as typed but cannot take effect: addresses from "
                    "240.0.0.0 up are reserved or broadcast. Subnet mask '255.0.255.0' is stored as "
                    "typed but cannot take effect: a mask is one bits followed by zero bits, such as "
                    "255.255.255.0"));
    EXPECT_THAT(machine.seat.boxes, IsEmpty());
}

TEST_F(IpEditingTest, WhatIsNotStoredIsNotWarnedOf) {
    panel.address.texts = {"10", "1", "", ""};
    panel.mask.entry.SetText("255.255.255.0");
    panel.editing.Add(kLab);
    EXPECT_THAT(machine.seat.warnings, IsEmpty());
    EXPECT_THAT(machine.registry->diary, IsEmpty());
}

TEST_F(IpEditingTest, GoodPersistentAddressIsNotWarnedOf) {
    panel.persistent = true;
    Add(kLab, "10.0.0.7", "255.255.255.0");
    EXPECT_THAT(machine.seat.warnings, IsEmpty());
}

TEST_F(IpEditingTest, RegistryFailureAfterTheLiveAddIsShownAndTheAddIsDone) {
    machine.registry->RemoveValue(kLabKey, "IPAddress");
    panel.persistent = true;
    Add(kLab, "10.0.0.7", "255.255.255.0");
    EXPECT_EQ(diary, Lines({{"box Error! Cannot Read/Write Registry", "refresh"}, kIpPanelReady}));
    EXPECT_THAT(panel.Texts(), ElementsAre("", "", ""));
}

TEST_F(IpEditingTest, WithoutAConnectionNothingIsAdded) {
    panel.persistent = true;
    Add(kNoConnection, "10.0.0.7", "255.255.255.0");
    ExpectMachineUntouched();
    ExpectListAsBefore();
    EXPECT_EQ(diary, kIpPanelReady);
}

// ---- adding, to a preset

TEST_F(IpEditingTest, AddressOfAPresetIsAddedAsTheLastRowCountedAndSelected) {
    panel.persistent = true;
    panel.cidr = "24";
    Add(kPreset, "10.0.0.7", "255.255.255.0");
    ASSERT_EQ(list.rows.size(), 3U);
    EXPECT_EQ(list.rows[2].text, "10.0.0.7");
    EXPECT_EQ(list.rows[2].subItem, "255.255.255.0");
    EXPECT_EQ(list.header, "IP Address (3)");
    EXPECT_EQ(list.selected, 2U);
    EXPECT_THAT(panel.Texts(), ElementsAre("", "", ""));
    ExpectMachineUntouched();
    EXPECT_EQ(diary, kIpPanelReady);
}

TEST_F(IpEditingTest, AddressThatThePresetHasGetsTheNewMaskOnly) {
    Add(kPreset, "10.0.0.5", "255.255.255.0");
    EXPECT_THAT(list.rows, ElementsAre(DetailsRow{"10.0.0.5", "255.255.255.0", 0},
                                       DetailsRow{"10.0.0.6", "255.255.0.0", 1}));
    EXPECT_EQ(list.header, "IP Address (2)");
    EXPECT_EQ(list.selected, 0U);
    EXPECT_THAT(panel.Texts(), ElementsAre("", "", ""));
}

TEST_F(IpEditingTest, EmptyAddressAndMaskAreARowOfZerosWithoutAMask) {
    list.rows.clear();
    Add(kPreset, "", "");
    EXPECT_THAT(list.rows, ElementsAre(DetailsRow{"0.0.0.0", "", 0}));
    EXPECT_EQ(list.header, "IP Address (1)");
}

TEST_F(IpEditingTest, AnyAddressMayBeInAPreset) {
    list.rows.clear();
    Add(kPreset, "255.255.255.255", "0.255.0.255");
    EXPECT_THAT(list.rows, ElementsAre(DetailsRow{"255.255.255.255", "0.255.0.255", 0}));
    EXPECT_EQ(diary, kIpPanelReady);
}

TEST_F(IpEditingTest, PresetNeedsNoConnection) {
    Add({.adapter = std::nullopt, .live = false}, "10.0.0.7", "255.0.0.0");
    EXPECT_EQ(list.header, "IP Address (3)");
}

}  // namespace
}  // namespace corvane
