#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fakes/Fakes.h"
#include "inventory/GetNicInfo.h"
#include "inventory/NicInfo.h"
#include "inventory/Stages.h"
#include "tests/unit/InventorySupport.h"
#include "vendors/VendorList.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr MacBytes kMac{0x00, 0x12, 0xAB, 0x0F, 0xCD, 0xFF};
constexpr char kMacText[] = "00-12-AB-0F-CD-FF";
constexpr char kOtherMac[] = "00-0C-29-4F-8E-35";
constexpr char kOriginal[] = "OriginalNetworkAddress";
constexpr std::uint32_t kIndex = 3;

/// A vendor list of these records: prefix, name, address.
VendorTable VendorsOf(const std::vector<VendorRecord>& records) {
    std::string file{static_cast<char>(records.size()), 0, 0, 0};
    for (const VendorRecord& record : records) {
        file += record.Prefix;
        for (const std::string* text : {&record.Name, &record.Address}) {
            file += static_cast<char>(text->size());
            file += '\0';
            file += *text;
        }
    }
    return VendorTable::Parse(file, "VendorNumbers.log");
}

class AdapterStatus : public testing::Test {
 protected:
    AdapterStatus() {
        Vendors() = VendorsOf({{"000C29", "VMware", "Palo Alto"},
                               {"0012AB", "First Maker", "1 Main Street"},
                               {"0012AB", "Second Maker", "2 Main Street"}});
        registry_.MakeKey(DriverKeyPath("0001"));
        nic_.Id = "{A}";
        nic_.DriverKey = "0001";
    }

    /// Reads the adapter as a live one with this row.
    const NicInfo& ReadLive(const IfRow& row = {.physAddr = kMac, .adminStatus = 1, .operStatus = 5}) {
        machine_.ipHelper->AddInterface(kIndex, "{A}", row);
        nic_.IfIndex = kIndex;
        return Read();
    }

    const NicInfo& ReadDisabled() {
        nic_.IfIndex = 0;
        return Read();
    }

    const NicInfo& Read() {
        Nics.assign(1, nic_);
        RunStage(ReadAdapterStatus);
        return Nics[0];
    }

    std::string SpeedOf(std::uint64_t speed) { return ReadLive({.physAddr = kMac, .speed = speed}).Speed; }

    /// What is saved in the driver key; nothing when there is no such value.
    std::optional<std::string> Saved() const {
        if (!registry_.HasValue(DriverKeyPath("0001"), kOriginal)) return std::nullopt;
        return registry_.Text(DriverKeyPath("0001"), kOriginal);
    }

    void Save(const std::string& address) {
        registry_.SetText(DriverKeyPath("0001"), kOriginal, address);
        nic_.OriginalNetworkAddress = address;
    }

    FakeMachine machine_;
    FakeRegistry& registry_ = *machine_.registry;
    NicInfo nic_;
};

// ---- failures

TEST_F(AdapterStatus, AFailingRowIsShownOnceForEachAdapterAndTheOthersAreRead) {
    Nics.assign(3, NicInfo());
    for (std::uint32_t i = 0; i < 3; ++i) {
        Nics[i].IfIndex = i + 1;
        Nics[i].Status = "as it was";
        machine_.ipHelper->AddInterface(i + 1, "{A}", {.physAddr = kMac, .adminStatus = 1, .operStatus = 5});
    }
    machine_.ipHelper->entryFailures = {{1, Win32Error::kInvalidParameter}, {2, Win32Error::kNotSupported}};
    machine_.ipHelper->texts[Win32Error::kInvalidParameter] = "The parameter is incorrect.\r\n";
    RunStage(ReadAdapterStatus);
    EXPECT_THAT(machine_.seat.boxes,
                ElementsAre(FakeSeat::Box{"Orvella Corvane",
                                          "DLL : IphlpApi.dll\r\n"
                                          "\r\n"
                                          "Error Code : 87\r\n"
                                          "API: GetIfEntry\r\n"
                                          "Error Description : The parameter is incorrect.\r\n"
                                          "\r\n"
                                          "\r\n"
                                          "Click OK To Continue",
                                          BoxIcon::kCritical, BoxButtons::kOk, false},
                            FakeSeat::Box{"Orvella Corvane",
                                          "DLL : IphlpApi.dll\r\n"
                                          "\r\n"
                                          "Error Code : 50\r\n"
                                          "API: GetIfEntry\r\n"
                                          "Error Description : unknown\r\n"
                                          "\r\n"
                                          "Click OK To Continue",
                                          BoxIcon::kCritical, BoxButtons::kOk, false}));
    EXPECT_EQ(Nics[0].Status, "as it was");
    EXPECT_EQ(Nics[0].Mac, "");
    EXPECT_EQ(Nics[0].Speed, "");
    EXPECT_EQ(Nics[1].Status, "as it was");
    EXPECT_EQ(Nics[2].Status, "Up, Operational");
    EXPECT_EQ(Nics[2].Mac, kMacText);
}

TEST_F(AdapterStatus, AFailingRowLeavesTheSavedOriginalAlone) {
    Save(kOtherMac);
    ResetOriginalMac = true;
    machine_.ipHelper->entryFailures[kIndex] = Win32Error::kInvalidParameter;
    EXPECT_EQ(ReadLive().OriginalNetworkAddress, kOtherMac);
    EXPECT_EQ(Saved(), kOtherMac);
}

// ---- address and vendor

TEST_F(AdapterStatus, TheMacIsSixUpperCasePairs) { EXPECT_EQ(ReadLive().Mac, kMacText); }

TEST_F(AdapterStatus, TheVendorIsTheFirstRecordOfThePrefixWithItsAddress) {
    EXPECT_EQ(ReadLive().Vendor, "First Maker   Address: 1 Main Street");
}

TEST_F(AdapterStatus, WithTheShortListTheVendorIsTheNameAlone) {
    ShortVendorList = true;
    EXPECT_EQ(ReadLive().Vendor, "First Maker");
}

TEST_F(AdapterStatus, AnUnknownPrefixLeavesTheVendorAsItIs) {
    nic_.Vendor = "as it was";
    EXPECT_EQ(ReadLive({.physAddr = {0x00, 0x12, 0xAC, 0, 0, 0}}).Vendor, "as it was");
}

TEST_F(AdapterStatus, WithoutAVendorListThereIsNoVendor) {
    Vendors() = VendorTable::Empty();
    EXPECT_EQ(ReadLive().Vendor, "");
}

// ---- the saved original address

TEST_F(AdapterStatus, ALiveAdapterWithoutOverrideAndSavedOriginalGetsItsMacSaved) {
    EXPECT_EQ(ReadLive().OriginalNetworkAddress, kMacText);
    ASSERT_THAT(registry_.writes, SizeIs(1));
    EXPECT_EQ(registry_.writes[0].subkey, DriverKeyPath("0001"));
    EXPECT_EQ(registry_.writes[0].name, "OriginalNetworkAddress");
    const std::string text = kMacText;
    EXPECT_EQ(registry_.writes[0].value, (RegistryValue{kRegSz, {text.begin(), text.end()}}));
}

TEST_F(AdapterStatus, ASavedOriginalIsKeptAlthoughTheMacDiffers) {
    Save(kOtherMac);
    EXPECT_EQ(ReadLive().OriginalNetworkAddress, kOtherMac);
    EXPECT_THAT(registry_.writes, IsEmpty());
    EXPECT_EQ(Saved(), kOtherMac);
}

TEST_F(AdapterStatus, AnOverrideWithoutASavedOriginalSavesNothing) {
    nic_.NetworkAddress = kMacText;
    for (const bool reset : {false, true}) {
        ResetOriginalMac = reset;
        EXPECT_EQ(ReadLive().OriginalNetworkAddress, "");
        EXPECT_THAT(registry_.writes, IsEmpty());
    }
}

TEST_F(AdapterStatus, AnOverrideKeepsTheSavedOriginal) {
    Save(kOtherMac);
    nic_.NetworkAddress = kMacText;
    EXPECT_EQ(ReadLive().OriginalNetworkAddress, kOtherMac);
    EXPECT_THAT(registry_.writes, IsEmpty());
}

TEST_F(AdapterStatus, ResettingWithAnOverrideEmptiesTheSavedOriginalHereAndInTheRegistry) {
    Save(kOtherMac);
    nic_.NetworkAddress = kMacText;
    ResetOriginalMac = true;
    EXPECT_EQ(ReadLive().OriginalNetworkAddress, "");
    ASSERT_THAT(registry_.writes, SizeIs(1));
    EXPECT_EQ(registry_.writes[0].name, "OriginalNetworkAddress");
    EXPECT_EQ(registry_.writes[0].value, (RegistryValue{kRegSz, {}}));
    EXPECT_TRUE(registry_.HasValue(DriverKeyPath("0001"), kOriginal));
    EXPECT_THAT(registry_.RawBytes(DriverKeyPath("0001"), kOriginal), IsEmpty());
}

TEST_F(AdapterStatus, ResettingWithoutAnOverrideSavesTheReportedMac) {
    Save(kOtherMac);
    ResetOriginalMac = true;
    EXPECT_EQ(ReadLive().OriginalNetworkAddress, kMacText);
    EXPECT_EQ(Saved(), kMacText);
}

TEST_F(AdapterStatus, ResettingWritesNothingWhenTheSavedOriginalIsTheReportedMac) {
    Save(kMacText);
    ResetOriginalMac = true;
    EXPECT_EQ(ReadLive().OriginalNetworkAddress, kMacText);
    EXPECT_THAT(registry_.writes, IsEmpty());
}

TEST_F(AdapterStatus, AWriteWithoutRightsIsNotShownAndTheRecordStillKnowsTheOriginal) {
    registry_.readOnly = true;
    const NicInfo& nic = ReadLive();
    EXPECT_EQ(nic.OriginalNetworkAddress, kMacText);
    EXPECT_EQ(nic.Status, "Up, Operational");
    EXPECT_EQ(Saved(), std::nullopt);
    EXPECT_THAT(machine_.seat.diary, IsEmpty());
}

TEST_F(AdapterStatus, AnAdapterWithoutADriverKeyWritesAndDeletesNothing) {
    nic_.DriverKey.clear();
    EXPECT_EQ(ReadLive().OriginalNetworkAddress, kMacText);
    ResetOriginalMac = true;
    ReadDisabled();
    EXPECT_THAT(registry_.diary, IsEmpty());
}

TEST_F(AdapterStatus, WhatWasSavedIsReadBackByTheNextRefresh) {
    machine_.AddAdapter("{A}", "eth0", "0001");
    machine_.ipHelper->AddInterface(kIndex, "{A}", {.physAddr = kMac});
    RefreshNicInfo();
    registry_.SetText(DriverKeyPath("0001"), "NetworkAddress", "02AABBCCDDEE");
    machine_.ipHelper->rows[kIndex].physAddr = {0x02, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE};
    RefreshNicInfo();
    EXPECT_EQ(Nics.at(0).Mac, "02-AA-BB-CC-DD-EE");
    EXPECT_EQ(Nics.at(0).NetworkAddress, "02-AA-BB-CC-DD-EE");
    EXPECT_EQ(Nics.at(0).OriginalNetworkAddress, kMacText);
}

// ---- status

TEST_F(AdapterStatus, TheStatusJoinsAdministrativeAndOperationalState) {
    const std::vector<std::pair<std::uint32_t, std::string>> admin = {{1, "Up"}, {2, "Down"}, {3, "Testing"}};
    const std::vector<std::pair<std::uint32_t, std::string>> oper = {
        {0, ", Non Operational"}, {1, ", Unreachable"}, {2, ", Disconnected"},
        {3, ", Connecting"},      {4, ", Connected"},   {5, ", Operational"}};
    for (const auto& [adminStatus, first] : admin) {
        for (const auto& [operStatus, second] : oper) {
            EXPECT_EQ(
                ReadLive({.physAddr = kMac, .adminStatus = adminStatus, .operStatus = operStatus}).Status,
                first + second);
        }
    }
}

TEST_F(AdapterStatus, AnUnknownAdministrativeStateLeavesTheStatusAsItIs) {
    nic_.Status = "As it was";
    for (const std::uint32_t adminStatus : {0U, 4U, 0xFFFFFFFFU}) {
        EXPECT_EQ(ReadLive({.physAddr = kMac, .adminStatus = adminStatus, .operStatus = 5}).Status,
                  "As it was, Operational");
    }
}

TEST_F(AdapterStatus, AnUnknownOperationalStateAddsNothing) {
    for (const std::uint32_t operStatus : {6U, 0xFFFFFFFFU})
        EXPECT_EQ(ReadLive({.physAddr = kMac, .adminStatus = 1, .operStatus = operStatus}).Status, "Up");
}

// ---- speed

TEST_F(AdapterStatus, SpeedsAreDividedToTheirUnit) {
    const std::vector<std::pair<std::uint64_t, std::string>> table = {
        {1000, "1 Kbps"},          {2500, "2.5 Kbps"},       {56000, "56 Kbps"},
        {999000, "999 Kbps"},      {1000000, "1 Mbps"},      {10000000, "10 Mbps"},
        {11000000, "11 Mbps"},     {54000000, "54 Mbps"},    {100000000, "100 Mbps"},
        {866700000, "866.7 Mbps"}, {1000000000, "1 Gbps"},   {2500000000, "2.5 Gbps"},
        {4294967295, "4.29 Gbps"}, {10000000000, "10 Gbps"},
    };
    for (const auto& [speed, text] : table) EXPECT_EQ(SpeedOf(speed), text) << speed;
}

TEST_F(AdapterStatus, SpeedsAreRoundedToTwoDecimals) {
    EXPECT_EQ(SpeedOf(1234567), "1.23 Mbps");
    EXPECT_EQ(SpeedOf(1236000), "1.24 Mbps");
    EXPECT_EQ(SpeedOf(1000001), "1 Mbps");
}

TEST_F(AdapterStatus, ASpeedThatRoundsUpToAThousandKeepsItsUnit) { EXPECT_EQ(SpeedOf(999999), "1000 Kbps"); }

TEST_F(AdapterStatus, NoSpeedIsDividedMoreThanThreeTimes) { EXPECT_EQ(SpeedOf(1600000000000), "1600 Gbps"); }

TEST_F(AdapterStatus, ASpeedBelowAThousandIsFollowedByTheVendorPrefix) {
    EXPECT_EQ(SpeedOf(0), "00012AB");
    EXPECT_EQ(SpeedOf(999), "9990012AB");
}

TEST_F(AdapterStatus, ThePrefixBehindASlowSpeedDoesNotNeedAKnownVendor) {
    EXPECT_EQ(ReadLive({.physAddr = {0xFE, 0xDC, 0xBA, 1, 2, 3}, .speed = 7}).Speed, "7FEDCBA");
}

// ---- adapters without a live interface

TEST_F(AdapterStatus, AnAdapterWithoutAnInterfaceIsDisabledWithoutMacAndSpeed) {
    const NicInfo& nic = ReadDisabled();
    EXPECT_EQ(nic.Status, "Disabled");
    EXPECT_EQ(nic.Mac, "");
    EXPECT_EQ(nic.Speed, "");
    EXPECT_EQ(nic.Vendor, "");
    EXPECT_THAT(machine_.ipHelper->diary, IsEmpty());
    EXPECT_THAT(registry_.diary, IsEmpty());
}

TEST_F(AdapterStatus, TheVendorOfADisabledAdapterComesFromItsOverride) {
    nic_.NetworkAddress = kMacText;
    nic_.OriginalNetworkAddress = kOtherMac;
    EXPECT_EQ(ReadDisabled().Vendor, "First Maker   Address: 1 Main Street");
}

TEST_F(AdapterStatus, WithoutAnOverrideTheVendorOfADisabledAdapterComesFromTheSavedOriginal) {
    nic_.OriginalNetworkAddress = kOtherMac;
    EXPECT_EQ(ReadDisabled().Vendor, "VMware   Address: Palo Alto");
    ShortVendorList = true;
    EXPECT_EQ(ReadDisabled().Vendor, "VMware");
}

TEST_F(AdapterStatus, ASavedOriginalWithoutDashesGivesAnotherPrefix) {
    // Characters 1-2, 4-5 and 7-8 of the stored text make the prefix, whatever stands between them.
    nic_.OriginalNetworkAddress = "00x0Cx29xxxx";
    EXPECT_EQ(ReadDisabled().Vendor, "VMware   Address: Palo Alto");
    nic_.OriginalNetworkAddress = "000C294F8E35";
    EXPECT_EQ(ReadDisabled().Vendor, "");
}

TEST_F(AdapterStatus, AnUnknownOverrideDoesNotFallBackToTheOriginal) {
    nic_.NetworkAddress = "02-AA-BB-CC-DD-EE";
    nic_.OriginalNetworkAddress = kOtherMac;
    EXPECT_EQ(ReadDisabled().Vendor, "");
}

TEST_F(AdapterStatus, ResettingADisabledAdapterDeletesTheSavedOriginal) {
    Save(kOtherMac);
    ResetOriginalMac = true;
    const NicInfo& nic = ReadDisabled();
    EXPECT_EQ(nic.OriginalNetworkAddress, "");
    EXPECT_EQ(nic.Vendor, "");
    EXPECT_EQ(Saved(), std::nullopt);
    EXPECT_THAT(registry_.diary, ElementsAre("delete " + DriverKeyPath("0001") + "\\OriginalNetworkAddress"));
}

TEST_F(AdapterStatus, ResettingADisabledAdapterKeepsTheVendorOfItsOverride) {
    Save(kOtherMac);
    nic_.NetworkAddress = kMacText;
    ResetOriginalMac = true;
    EXPECT_EQ(ReadDisabled().Vendor, "First Maker   Address: 1 Main Street");
}

TEST_F(AdapterStatus, WithoutResettingADisabledAdapterKeepsItsSavedOriginal) {
    Save(kOtherMac);
    EXPECT_EQ(ReadDisabled().OriginalNetworkAddress, kOtherMac);
    EXPECT_EQ(Saved(), kOtherMac);
}

TEST_F(AdapterStatus, AFailingDeletionIsNotShown) {
    Save(kOtherMac);
    ResetOriginalMac = true;
    registry_.readOnly = true;
    EXPECT_EQ(ReadDisabled().OriginalNetworkAddress, "");
    EXPECT_THAT(machine_.seat.diary, IsEmpty());
}

}  // namespace
}  // namespace corvane
