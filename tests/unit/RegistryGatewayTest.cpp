#include "tests/unit/RegistryPairSupport.h"

namespace corvane {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

class RegistryGatewayTest : public RegistryPairTest {
 protected:
    RegistryGatewayTest() : RegistryPairTest("DefaultGateway", "DefaultGatewayMetric") {}
};

TEST_F(RegistryGatewayTest, AddToAnEmptyListOverwritesTheBlank) {
    Store(kNul, kNul);
    AddRegistryGateway(1, "10.0.0.1", "5");
    ExpectWritten("10.0.0.1" + kNul + kNul, "5" + kNul + kNul);
}

TEST_F(RegistryGatewayTest, AddToATwoNulMultiStringMakesAOneEntryList) {
    Store(kNul + kNul, kNul + kNul);
    AddRegistryGateway(1, "10.0.0.1", "5");
    ExpectWritten(List({"10.0.0.1"}), List({"5"}));
}

TEST_F(RegistryGatewayTest, AddToAValueWithoutBytesMakesAOneEntryList) {
    Store("", "");
    AddRegistryGateway(1, "10.0.0.1", "5");
    ExpectWritten(List({"10.0.0.1"}), List({"5"}));
}

TEST_F(RegistryGatewayTest, AddAppendsToAList) {
    Store(List({"10.0.0.1", "10.0.0.2"}), List({"1", "2"}));
    AddRegistryGateway(1, "10.0.0.3", "3");
    ExpectWritten(List({"10.0.0.1", "10.0.0.2", "10.0.0.3"}), List({"1", "2", "3"}));
}

TEST_F(RegistryGatewayTest, AddOfAListedGatewayChangesOnlyItsMetric) {
    Store(List({"10.0.0.1", "10.0.0.2"}), List({"1", "2"}));
    AddRegistryGateway(1, "10.0.0.1", "30");
    ExpectWritten(List({"10.0.0.1", "10.0.0.2"}), List({"30", "2"}));
}

TEST_F(RegistryGatewayTest, ThePlaceholderOfAddressesIsAnOrdinaryEntry) {
    Store(List({"0.0.0.0", "10.0.0.2"}), List({"1", "2"}));
    AddRegistryGateway(1, "10.0.0.3", "3");
    ExpectWritten(List({"0.0.0.0", "10.0.0.2", "10.0.0.3"}), List({"1", "2", "3"}));
}

TEST_F(RegistryGatewayTest, AddTakesABlankForAnEmptyMetricList) {
    Store(List({"10.0.0.1"}), kNul);
    AddRegistryGateway(1, "10.0.0.2", "7");
    ExpectWritten(List({"10.0.0.1", "10.0.0.2"}), List({" ", "7"}));
}

TEST_F(RegistryGatewayTest, AddToAListWithoutItsEmptyEntryKeepsTheGateways) {
    machine.registry->SetValue(key, "DefaultGateway", Sz("10.0.0.1" + kNul));
    machine.registry->SetValue(key, "DefaultGatewayMetric", Sz("1" + kNul));
    AddRegistryGateway(1, "10.0.0.2", "2");
    ExpectWritten(List({"10.0.0.1", "10.0.0.2"}), List({"1", "2"}));
}

TEST_F(RegistryGatewayTest, AddClosesAGapAndShrinksTheListsByOne) {
    Store(List({"10.0.0.1", "", "10.0.0.2"}), List({"1", "", "2"}));
    AddRegistryGateway(1, "10.0.0.3", "3");
    // The gap takes a copy of its follower and the last entry, the new gateway, falls off.
    ExpectWritten(List({"10.0.0.1", "10.0.0.2", "10.0.0.2"}), List({"1", "2", "2"}));
}

TEST_F(RegistryGatewayTest, AddStopsTidyingWhenItReachesTheNewLastEntry) {
    Store(List({"10.0.0.1", ""}), List({"1", ""}));
    AddRegistryGateway(1, "10.0.0.3", "3");
    // The gap at position 1 takes the new gateway, which stood behind it, and is then the last entry.
    ExpectWritten(List({"10.0.0.1", "10.0.0.3"}), List({"1", "3"}));
}

TEST_F(RegistryGatewayTest, AddReadsBothValuesBeforeItWrites) {
    Store(kNul, kNul);
    AddRegistryGateway(1, "10.0.0.1", "5");
    EXPECT_THAT(machine.registry->diary,
                ElementsAre("read " + key + "\\DefaultGateway", "read " + key + "\\DefaultGatewayMetric",
                            "write " + key + "\\DefaultGateway", "write " + key + "\\DefaultGatewayMetric"));
}

TEST_F(RegistryGatewayTest, AddWithoutAValueShowsTheBoxAndWritesNothing) {
    AddRegistryGateway(1, "10.0.0.1", "5");
    ExpectFailureBox("DefaultGateway", "(2) Bad Key Name");
    EXPECT_THAT(machine.registry->writes, IsEmpty());
}

TEST_F(RegistryGatewayTest, AddWithoutAMetricValueShowsTheBoxAndWritesNothing) {
    machine.registry->SetMulti(key, "DefaultGateway", {"10.0.0.1"});
    AddRegistryGateway(1, "10.0.0.2", "5");
    ExpectFailureBox("DefaultGatewayMetric", "(2) Bad Key Name");
    EXPECT_THAT(machine.registry->writes, IsEmpty());
}

TEST_F(RegistryGatewayTest, AddKeepsTheGatewaysWhenTheMetricsCannotBeWritten) {
    Store(kNul, kNul);
    FailAt("write", "DefaultGatewayMetric", Win32Error::kCantWrite);
    AddRegistryGateway(1, "10.0.0.1", "5");
    ExpectFailureBox("DefaultGatewayMetric", "(1013) Can't Write Key");
    EXPECT_EQ(machine.registry->Text(key, "DefaultGateway"), "10.0.0.1");
}

TEST_F(RegistryGatewayTest, AddForAnAdapterThatDoesNotExistEndsQuietly) {
    AddRegistryGateway(2, "10.0.0.1", "5");
    EXPECT_THAT(machine.registry->diary, IsEmpty());
    EXPECT_THAT(machine.seat.diary, IsEmpty());
}

TEST_F(RegistryGatewayTest, RemoveTakesAGatewayAndItsMetricOut) {
    Store(List({"10.0.0.1", "10.0.0.2", "10.0.0.3"}), List({"1", "2", "3"}));
    RemoveRegistryGateway(1, "10.0.0.2");
    ExpectWritten(List({"10.0.0.1", "10.0.0.3"}), List({"1", "3"}));
}

TEST_F(RegistryGatewayTest, RemoveOfTheOnlyGatewayLeavesALoneNul) {
    Store(List({"10.0.0.1"}), List({"1"}));
    RemoveRegistryGateway(1, "10.0.0.1");
    ExpectWritten(kNul, kNul);
}

TEST_F(RegistryGatewayTest, RemoveFromAnEmptyListLeavesItEmpty) {
    Store(kNul, kNul);
    RemoveRegistryGateway(1, "10.0.0.1");
    ExpectWritten(kNul, kNul);
}

TEST_F(RegistryGatewayTest, RemoveTakesAMissingMetricForEmpty) {
    Store(List({"10.0.0.1", "10.0.0.2"}), List({"1"}));
    RemoveRegistryGateway(1, "10.0.0.1");
    ExpectWritten(List({"10.0.0.2"}), List({""}));
}

TEST_F(RegistryGatewayTest, RemoveReadsBothValuesBeforeItWrites) {
    Store(List({"10.0.0.1"}), List({"1"}));
    RemoveRegistryGateway(1, "10.0.0.1");
    EXPECT_THAT(machine.registry->diary,
                ElementsAre("read " + key + "\\DefaultGateway", "read " + key + "\\DefaultGatewayMetric",
                            "write " + key + "\\DefaultGateway", "write " + key + "\\DefaultGatewayMetric"));
}

TEST_F(RegistryGatewayTest, RemoveWithoutAValueShowsTheBoxAndWritesNothing) {
    RemoveRegistryGateway(1, "10.0.0.1");
    ExpectFailureBox("DefaultGateway", "(2) Bad Key Name");
    EXPECT_THAT(machine.registry->writes, IsEmpty());
}

TEST_F(RegistryGatewayTest, RemoveStopsAtAFailingWrite) {
    Store(List({"10.0.0.1"}), List({"1"}));
    FailAt("write", "DefaultGateway", Win32Error::kAccessDenied);
    RemoveRegistryGateway(1, "10.0.0.1");
    ExpectFailureBox("DefaultGateway", "(5) Access to this key is denied");
    EXPECT_THAT(machine.registry->Diary("write "), ElementsAre("write " + key + "\\DefaultGateway"));
}

TEST_F(RegistryGatewayTest, RemoveForAnAdapterThatDoesNotExistEndsQuietly) {
    RemoveRegistryGateway(-1, "10.0.0.1");
    EXPECT_THAT(machine.registry->diary, IsEmpty());
    EXPECT_THAT(machine.seat.diary, IsEmpty());
}

}  // namespace
}  // namespace corvane
