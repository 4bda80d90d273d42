#include "tests/unit/RegistryPairSupport.h"

namespace corvane {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

class RegistryIpAddressTest : public RegistryPairTest {
 protected:
    RegistryIpAddressTest() : RegistryPairTest("IPAddress", "SubnetMask") {}
};

TEST_F(RegistryIpAddressTest, AddReplacesThePlaceholderOfADhcpAdapter) {
    Store(List({"0.0.0.0"}), List({"0.0.0.0"}));
    AddRegistryIPAddress(1, "10.0.0.5", "255.0.0.0");
    ExpectWritten("10.0.0.5" + kNul + kNul, "255.0.0.0" + kNul + kNul);
}

TEST_F(RegistryIpAddressTest, AddToAnEmptyMultiStringMakesAOneAddressList) {
    Store(List({}), List({}));
    AddRegistryIPAddress(1, "10.0.0.5", "255.0.0.0");
    ExpectWritten(List({"10.0.0.5"}), List({"255.0.0.0"}));
}

TEST_F(RegistryIpAddressTest, AddToATwoNulMultiStringMakesAOneAddressList) {
    Store(kNul + kNul, kNul + kNul);
    AddRegistryIPAddress(1, "10.0.0.5", "255.0.0.0");
    ExpectWritten(List({"10.0.0.5"}), List({"255.0.0.0"}));
}

TEST_F(RegistryIpAddressTest, AddToAValueWithoutBytesMakesAOneAddressList) {
    Store("", "");
    AddRegistryIPAddress(1, "10.0.0.5", "255.0.0.0");
    ExpectWritten(List({"10.0.0.5"}), List({"255.0.0.0"}));
}

TEST_F(RegistryIpAddressTest, AddAppendsToAList) {
    Store(List({"10.0.0.1", "10.0.0.2"}), List({"255.0.0.0", "255.255.0.0"}));
    AddRegistryIPAddress(1, "10.0.0.3", "255.255.255.0");
    ExpectWritten(List({"10.0.0.1", "10.0.0.2", "10.0.0.3"}),
                  List({"255.0.0.0", "255.255.0.0", "255.255.255.0"}));
}

TEST_F(RegistryIpAddressTest, AddOfAListedAddressChangesOnlyItsMask) {
    Store(List({"10.0.0.1", "10.0.0.2", "10.0.0.3"}), List({"255.0.0.0", "255.0.0.0", "255.0.0.0"}));
    AddRegistryIPAddress(1, "10.0.0.2", "255.255.255.0");
    ExpectWritten(List({"10.0.0.1", "10.0.0.2", "10.0.0.3"}),
                  List({"255.0.0.0", "255.255.255.0", "255.0.0.0"}));
}

TEST_F(RegistryIpAddressTest, AddOfAnAddressListedTwiceChangesBothMasks) {
    Store(List({"10.0.0.1", "10.0.0.1"}), List({"255.0.0.0", "255.0.0.0"}));
    AddRegistryIPAddress(1, "10.0.0.1", "255.255.255.0");
    ExpectWritten(List({"10.0.0.1", "10.0.0.1"}), List({"255.255.255.0", "255.255.255.0"}));
}

TEST_F(RegistryIpAddressTest, AddCutsTheListBehindAPlaceholderAtItsHead) {
    Store(List({"0.0.0.0", "10.0.0.1", "10.0.0.2"}), List({"0.0.0.0", "255.0.0.0", "255.0.0.0"}));
    AddRegistryIPAddress(1, "10.0.0.5", "255.255.0.0");
    ExpectWritten(List({"10.0.0.5"}), List({"255.255.0.0"}));
}

TEST_F(RegistryIpAddressTest, AddLosesTheNewAddressAtAPlaceholderFurtherDown) {
    Store(List({"10.0.0.1", "0.0.0.0", "10.0.0.2"}), List({"255.0.0.0", "0.0.0.0", "255.0.0.0"}));
    AddRegistryIPAddress(1, "10.0.0.5", "255.255.0.0");
    ExpectWritten(List({"10.0.0.1"}), List({"255.0.0.0"}));
}

TEST_F(RegistryIpAddressTest, AddOfAListedAddressStillStopsAtAPlaceholderBehindIt) {
    Store(List({"10.0.0.5", "0.0.0.0"}), List({"255.0.0.0", "0.0.0.0"}));
    AddRegistryIPAddress(1, "10.0.0.5", "255.255.0.0");
    ExpectWritten(List({"10.0.0.5"}), List({"255.255.0.0"}));
}

TEST_F(RegistryIpAddressTest, AddOfThePlaceholderItselfFindsItAndCutsNothing) {
    Store(List({"0.0.0.0", "10.0.0.1"}), List({"0.0.0.0", "255.0.0.0"}));
    AddRegistryIPAddress(1, "0.0.0.0", "255.255.0.0");
    ExpectWritten(List({"0.0.0.0", "10.0.0.1"}), List({"255.255.0.0", "255.0.0.0"}));
}

TEST_F(RegistryIpAddressTest, AddFillsUpAMaskListThatIsTooShort) {
    Store(List({"10.0.0.1", "10.0.0.2"}), List({"255.0.0.0"}));
    AddRegistryIPAddress(1, "10.0.0.3", "255.255.255.0");
    ExpectWritten(List({"10.0.0.1", "10.0.0.2", "10.0.0.3"}), List({"255.0.0.0", "", "255.255.255.0"}));
}

TEST_F(RegistryIpAddressTest, AddCutsAMaskListThatIsTooLong) {
    Store(List({"10.0.0.1"}), List({"255.0.0.0", "255.1.0.0", "255.2.0.0", "255.3.0.0"}));
    AddRegistryIPAddress(1, "10.0.0.3", "255.255.255.0");
    ExpectWritten(List({"10.0.0.1", "10.0.0.3"}), List({"255.0.0.0", "255.255.255.0"}));
}

TEST_F(RegistryIpAddressTest, AddTakesThePlaceholderForAnEmptyMaskList) {
    Store(List({"10.0.0.1"}), kNul);
    AddRegistryIPAddress(1, "10.0.0.2", "255.255.255.0");
    ExpectWritten(List({"10.0.0.1", "10.0.0.2"}), List({"0.0.0.0", "255.255.255.0"}));
}

TEST_F(RegistryIpAddressTest, AddToAListWithoutItsEmptyEntryKeepsTheAddresses) {
    machine.registry->SetValue(key, "IPAddress", Sz("10.0.0.1" + kNul));
    machine.registry->SetValue(key, "SubnetMask", Sz("255.0.0.0" + kNul));
    AddRegistryIPAddress(1, "10.0.0.2", "255.255.0.0");
    ExpectWritten(List({"10.0.0.1", "10.0.0.2"}), List({"255.0.0.0", "255.255.0.0"}));
}

TEST_F(RegistryIpAddressTest, AddClosesAnInnerGapByCopyingTheFollowingEntry) {
    Store(List({"10.0.0.1", "", "10.0.0.2"}), List({"255.0.0.0", "", "255.255.0.0"}));
    AddRegistryIPAddress(1, "10.0.0.3", "255.255.255.0");
    ExpectWritten(List({"10.0.0.1", "10.0.0.2", "10.0.0.2", "10.0.0.3"}),
                  List({"255.0.0.0", "255.255.0.0", "255.255.0.0", "255.255.255.0"}));
}

TEST_F(RegistryIpAddressTest, AddDoesNotFullyCloseARunOfInnerGaps) {
    Store(List({"10.0.0.1", "", "", "10.0.0.2"}), List({"255.0.0.0", "", "", "255.255.0.0"}));
    AddRegistryIPAddress(1, "10.0.0.3", "255.255.255.0");
    ExpectWritten(List({"10.0.0.1", "", "10.0.0.2", "10.0.0.2", "10.0.0.3"}),
                  List({"255.0.0.0", "", "255.255.0.0", "255.255.0.0", "255.255.255.0"}));
}

TEST_F(RegistryIpAddressTest, AddShrinksOnlyTheLastOfSeveralEmptyEntries) {
    Store("10.0.0.1" + kNul + kNul + kNul + kNul, List({"255.0.0.0", "", ""}));
    AddRegistryIPAddress(1, "10.0.0.1", "255.255.0.0");
    ExpectWritten(List({"10.0.0.1", "", ""}), List({"255.255.0.0", "", ""}));
}

TEST_F(RegistryIpAddressTest, AddReadsBothValuesBeforeItWrites) {
    Store(List({"0.0.0.0"}), List({"0.0.0.0"}));
    AddRegistryIPAddress(1, "10.0.0.5", "255.0.0.0");
    EXPECT_THAT(machine.registry->diary,
                ElementsAre("read " + key + "\\IPAddress", "read " + key + "\\SubnetMask",
                            "write " + key + "\\IPAddress", "write " + key + "\\SubnetMask"));
}

TEST_F(RegistryIpAddressTest, AddWithoutAnAddressValueShowsTheBoxAndWritesNothing) {
    machine.registry->SetMulti(key, "SubnetMask", {"0.0.0.0"});
    AddRegistryIPAddress(1, "10.0.0.5", "255.0.0.0");
    ExpectFailureBox("IPAddress", "(2) Bad Key Name");
    EXPECT_THAT(machine.registry->diary, ElementsAre("read " + key + "\\IPAddress"));
}

TEST_F(RegistryIpAddressTest, AddWithoutAMaskValueShowsTheBoxAndWritesNothing) {
    machine.registry->SetMulti(key, "IPAddress", {"0.0.0.0"});
    AddRegistryIPAddress(1, "10.0.0.5", "255.0.0.0");
    ExpectFailureBox("SubnetMask", "(2) Bad Key Name");
    EXPECT_THAT(machine.registry->writes, IsEmpty());
}

TEST_F(RegistryIpAddressTest, AddStopsAtAFailingFirstWrite) {
    Store(List({"0.0.0.0"}), List({"0.0.0.0"}));
    FailAt("write", "IPAddress", Win32Error::kAccessDenied);
    AddRegistryIPAddress(1, "10.0.0.5", "255.0.0.0");
    ExpectFailureBox("IPAddress", "(5) Access to this key is denied");
    EXPECT_THAT(machine.registry->Diary("write "), ElementsAre("write " + key + "\\IPAddress"));
}

TEST_F(RegistryIpAddressTest, AddKeepsTheAddressesWhenTheMasksCannotBeWritten) {
    Store(List({"0.0.0.0"}), List({"0.0.0.0"}));
    FailAt("write", "SubnetMask", Win32Error::kAccessDenied);
    AddRegistryIPAddress(1, "10.0.0.5", "255.0.0.0");
    ExpectFailureBox("SubnetMask", "(5) Access to this key is denied");
    EXPECT_EQ(machine.registry->Text(key, "IPAddress"), "10.0.0.5");
    EXPECT_EQ(machine.registry->Text(key, "SubnetMask"), "0.0.0.0");
}

TEST_F(RegistryIpAddressTest, AddForAnAdapterThatDoesNotExistEndsQuietly) {
    AddRegistryIPAddress(2, "10.0.0.5", "255.0.0.0");
    EXPECT_THAT(machine.registry->diary, IsEmpty());
    EXPECT_THAT(machine.seat.diary, IsEmpty());
}

TEST_F(RegistryIpAddressTest, AddOfAnEmptyTextChangesNothing) {
    Store(List({"10.0.0.1"}), List({"255.0.0.0"}));
    AddRegistryIPAddress(1, "", "255.255.0.0");
    ExpectWritten(List({"10.0.0.1"}), List({"255.0.0.0"}));
}

TEST_F(RegistryIpAddressTest, RemoveTakesAnAddressAndItsMaskOut) {
    Store(List({"10.0.0.1", "10.0.0.2", "10.0.0.3"}), List({"255.0.0.0", "255.255.0.0", "255.255.255.0"}));
    RemoveRegistryIPAddress(1, "10.0.0.2");
    ExpectWritten(List({"10.0.0.1", "10.0.0.3"}), List({"255.0.0.0", "255.255.255.0"}));
}

TEST_F(RegistryIpAddressTest, RemoveTakesEveryEntryOfTheAddressOut) {
    Store(List({"10.0.0.1", "10.0.0.2", "10.0.0.1"}), List({"255.0.0.0", "255.255.0.0", "255.255.255.0"}));
    RemoveRegistryIPAddress(1, "10.0.0.1");
    ExpectWritten(List({"10.0.0.2"}), List({"255.255.0.0"}));
}

TEST_F(RegistryIpAddressTest, RemoveOfTheOnlyAddressFallsBackToThePlaceholder) {
    Store(List({"10.0.0.1"}), List({"255.0.0.0"}));
    RemoveRegistryIPAddress(1, "10.0.0.1");
    ExpectWritten("0.0.0.0" + kNul + kNul, "0.0.0.0" + kNul + kNul);
}

TEST_F(RegistryIpAddressTest, RemoveOfAnUnknownAddressWritesTheListsAsTheyWere) {
    Store(List({"10.0.0.1"}), List({"255.0.0.0"}));
    RemoveRegistryIPAddress(1, "10.0.0.9");
    ExpectWritten(List({"10.0.0.1"}), List({"255.0.0.0"}));
}

TEST_F(RegistryIpAddressTest, RemoveTakesAMissingMaskForEmpty) {
    Store(List({"10.0.0.1", "10.0.0.2"}), List({"255.0.0.0"}));
    RemoveRegistryIPAddress(1, "10.0.0.1");
    ExpectWritten(List({"10.0.0.2"}), List({""}));
}

TEST_F(RegistryIpAddressTest, RemoveFallsBackForTheAddressesAloneWhenAMaskIsLeft) {
    Store(List({"10.0.0.1"}), List({"255.0.0.0", "255.255.0.0"}));
    RemoveRegistryIPAddress(1, "10.0.0.1");
    ExpectWritten("0.0.0.0" + kNul + kNul, "255.255.0.0" + kNul);
}

TEST_F(RegistryIpAddressTest, RemoveFallsBackForTheMasksAloneWhenAnAddressIsLeft) {
    Store("10.0.0.1" + kNul + "10.0.0.2" + kNul, List({"255.0.0.0"}));
    RemoveRegistryIPAddress(1, "10.0.0.1");
    ExpectWritten("10.0.0.2" + kNul, "0.0.0.0" + kNul + kNul);
}

TEST_F(RegistryIpAddressTest, RemoveFromAnEmptyListWritesThePlaceholder) {
    Store(kNul, kNul);
    RemoveRegistryIPAddress(1, "10.0.0.1");
    ExpectWritten("0.0.0.0" + kNul + kNul, "0.0.0.0" + kNul + kNul);
}

TEST_F(RegistryIpAddressTest, RemoveReadsBothValuesBeforeItWrites) {
    Store(List({"10.0.0.1"}), List({"255.0.0.0"}));
    RemoveRegistryIPAddress(1, "10.0.0.1");
    EXPECT_THAT(machine.registry->diary,
                ElementsAre("read " + key + "\\IPAddress", "read " + key + "\\SubnetMask",
                            "write " + key + "\\IPAddress", "write " + key + "\\SubnetMask"));
}

TEST_F(RegistryIpAddressTest, RemoveWithoutAValueShowsTheBoxAndWritesNothing) {
    RemoveRegistryIPAddress(1, "10.0.0.1");
    ExpectFailureBox("IPAddress", "(2) Bad Key Name");
    EXPECT_THAT(machine.registry->writes, IsEmpty());
}

TEST_F(RegistryIpAddressTest, RemoveStopsAtAFailingWrite) {
    Store(List({"10.0.0.1"}), List({"255.0.0.0"}));
    FailAt("write", "IPAddress", Win32Error::kAccessDenied);
    RemoveRegistryIPAddress(1, "10.0.0.1");
    ExpectFailureBox("IPAddress", "(5) Access to this key is denied");
    EXPECT_THAT(machine.registry->Diary("write "), ElementsAre("write " + key + "\\IPAddress"));
}

TEST_F(RegistryIpAddressTest, RemoveForAnAdapterThatDoesNotExistEndsQuietly) {
    RemoveRegistryIPAddress(-1, "10.0.0.5");
    EXPECT_THAT(machine.registry->diary, IsEmpty());
    EXPECT_THAT(machine.seat.diary, IsEmpty());
}

TEST_F(RegistryIpAddressTest, AddedAddressesAreRemovedAgain) {
    Store(List({"0.0.0.0"}), List({"0.0.0.0"}));
    AddRegistryIPAddress(1, "10.0.0.1", "255.0.0.0");
    AddRegistryIPAddress(1, "10.0.0.2", "255.255.0.0");
    RemoveRegistryIPAddress(1, "10.0.0.1");
    EXPECT_EQ(machine.registry->Value(key, "IPAddress"), MultiSz(List({"10.0.0.2"})));
    EXPECT_EQ(machine.registry->Value(key, "SubnetMask"), MultiSz(List({"255.255.0.0"})));
    RemoveRegistryIPAddress(1, "10.0.0.2");
    EXPECT_EQ(machine.registry->Value(key, "IPAddress"), MultiSz(List({"0.0.0.0"})));
    EXPECT_EQ(machine.registry->Value(key, "SubnetMask"), MultiSz(List({"0.0.0.0"})));
}

}  // namespace
}  // namespace corvane
