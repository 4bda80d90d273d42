#include <optional>
#include <ostream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/ConnectionRowSupport.h"
#include "tests/unit/CoreSupport.h"
#include "ui/logic/ConnectionList.h"

namespace corvane {

namespace {

using test::kMac;
using test::kNotFoundRow;
using test::kOther;
using test::kThird;
using test::NicRecord;
using testing::ElementsAre;
using testing::SizeIs;

// ---- the columns

TEST(ConnectionColumns, HaveTheirTitles) {
    EXPECT_THAT(kConnectionColumns,
                ElementsAre(std::string("Network Connections"), std::string("Changed"),
                            std::string("MAC Address"), std::string("Link Status"), std::string("Speed")));
}

// ---- "Changed" and the address

struct AddressCase {
    const char* situation;
    std::string original;
    std::string networkAddress;
    std::string mac;
    std::string changed;
    std::string shown;
};

void PrintTo(const AddressCase& addressCase, std::ostream* out) { *out << addressCase.situation; }

class ListAddress : public testing::TestWithParam<AddressCase> {};

TEST_P(ListAddress, FollowsFromTheThreeAddresses) {
    NicInfo nic = NicRecord("{A}", "eth0", "0001");
    nic.OriginalNetworkAddress = GetParam().original;
    nic.NetworkAddress = GetParam().networkAddress;
    nic.Mac = GetParam().mac;
    EXPECT_EQ(ChangedText(nic), GetParam().changed);
    EXPECT_EQ(ListMacText(nic), GetParam().shown);
}

INSTANTIATE_TEST_SUITE_P(
    , ListAddress,
    testing::Values(AddressCase{"LiveWithItsOriginal", kMac, "", kMac, "No", kMac},
                    AddressCase{"LiveWithItsOriginalAndAWaitingOverride", kMac, kOther, kMac, "No", kMac},
                    AddressCase{"LiveWithItsOverride", kMac, kOther, kOther, "Yes", kOther},
                    AddressCase{"LiveWithAThirdAddress", kMac, kOther, kThird, "Yes", kThird},
                    AddressCase{"LiveWithAnotherAddressAndNoOverride", kMac, "", kOther, "Yes", kOther},
                    AddressCase{"NotLiveWithOverride", kMac, kOther, "", "Yes", kOther},
                    AddressCase{"NotLiveWithItsOriginalAsOverride", kMac, kMac, "", "Yes", kMac},
                    AddressCase{"NotLiveWithOriginalAlone", kMac, "", "", "No", kMac},
                    AddressCase{"OriginalUnknownAndNothingElse", "", "", "", "No", ""},
                    AddressCase{"OriginalUnknownLive", "", "", kMac, "No", kMac},
                    AddressCase{"OriginalUnknownLiveWithItsOverride", "", kOther, kOther, "Yes", kOther},
                    AddressCase{"OriginalUnknownLiveWithAWaitingOverride", "", kOther, kMac, "No", kMac},
                    AddressCase{"OriginalUnknownNotLiveWithOverride", "", kOther, "", "Yes", kOther}),
    [](const testing::TestParamInfo<AddressCase>& one) { return std::string(one.param.situation); });

// ---- the rows

class ConnectionRowsTest : public testing::Test {
 protected:
    FakeMachine machine_;
};

TEST_F(ConnectionRowsTest, OfARecordAreItsNameAndFourSubItems) {
    NicInfo nic = NicRecord("{A}", "eth0", "0001");
    nic.OriginalNetworkAddress = kMac;
    nic.NetworkAddress = kOther;
    nic.Mac = kOther;
    nic.Status = "Up, Operational";
    nic.Speed = "1 Gbps";
    Nics = {nic};
    EXPECT_THAT(ConnectionRows(),
                ElementsAre(ConnectionRow{{"eth0", "Yes", kOther, "Up, Operational", "1 Gbps"}, 0}));
    EXPECT_EQ(Nics[0].Speed, "1 Gbps");
}

TEST_F(ConnectionRowsTest, LeaveOutRecordsWithoutNameAndKeepRecordNumbers) {
    Nics = {NicRecord("{A}", "", "0001"), NicRecord("{B}", "eth1", "0002"), NicRecord("{C}", "", "0003"),
            NicRecord("{D}", "eth3", "0004")};
    EXPECT_THAT(ConnectionRows(), ElementsAre(ConnectionRow{{"eth1", "No", "", "", ""}, 1},
                                              ConnectionRow{{"eth3", "No", "", "", ""}, 3}));
}

TEST_F(ConnectionRowsTest, ChangeNoRecord) {
    Nics = {NicRecord("{A}", "eth0", "0001")};
    EXPECT_THAT(ConnectionRows(), SizeIs(1));
    EXPECT_EQ(Nics[0].Speed, "");
}

TEST_F(ConnectionRowsTest, ShowTheSpeedThatWasNamedForRecordsWithoutOne) {
    Nics = {NicRecord("{A}", "", "0001"), NicRecord("{B}", "eth1", "0002"), NicRecord("{C}", "eth2", "0003")};
    Nics[2].Speed = "1 Gbps";
    NameMissingSpeeds();
    EXPECT_EQ(Nics[0].Speed, "");
    EXPECT_THAT(ConnectionRows(), ElementsAre(ConnectionRow{{"eth1", "No", "", "", "Disabled"}, 1},
                                              ConnectionRow{{"eth2", "No", "", "", "1 Gbps"}, 2}));
}

TEST_F(ConnectionRowsTest, OfADisabledAdapterWithASavedOriginal) {
    NicInfo nic = NicRecord("{A}", "eth0", "0001");
    nic.OriginalNetworkAddress = kMac;
    nic.Status = "Disabled";
    Nics = {nic};
    NameMissingSpeeds();
    EXPECT_THAT(ConnectionRows(),
                ElementsAre(ConnectionRow{{"eth0", "No", kMac, "Disabled", "Disabled"}, 0}));
}

TEST_F(ConnectionRowsTest, WithoutAnyNameAreTheOneThatSaysSo) {
    EXPECT_THAT(ConnectionRows(), ElementsAre(kNotFoundRow));
    Nics = {NicRecord("{A}", "", "0001"), NicRecord("{B}", "", "0002")};
    EXPECT_THAT(ConnectionRows(), ElementsAre(kNotFoundRow));
}

}  // namespace
}  // namespace corvane
