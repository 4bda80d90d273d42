#include "tests/unit/AddressEditingSupport.h"

/// Removing IP addresses from the list `ListIP`.
namespace corvane {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

class IpRemovalTest : public LabAddressesTest {
 protected:
    void Remove(const EditingTarget& target, std::size_t row, BoxAnswer answer = BoxAnswer::kYes) {
        list.selected = row;
        machine.seat.answers = {answer};
        panel.editing.Remove(target);
    }
    void ExpectStoredAsBefore() const {
        ExpectStored({"10.0.0.5", "10.0.0.6"}, {"255.0.0.0", "255.255.0.0"});
        EXPECT_THAT(machine.registry->writes, IsEmpty());
    }

    const FakeSeat::Box question =
        Question("Remove Selected IP Address ?", "Are you sure to remove '10.0.0.5' IP address ?");
};

TEST_F(IpRemovalTest, NothingIsAskedOfAnEmptyListOrWithoutASelection) {
    for (const EditingTarget& target : {kLab, kPreset}) {
        panel.editing.Remove(target);
        ExpectListAsBefore();
    }
    list.rows.clear();
    for (const EditingTarget& target : {kLab, kPreset}) panel.editing.Remove(target);
    EXPECT_THAT(diary, IsEmpty());
    ExpectMachineUntouched();
}

TEST_F(IpRemovalTest, RemovalIsAskedAndNoAndCancelLeaveEverything) {
    for (const EditingTarget& target : {kLab, kPreset}) {
        for (const BoxAnswer answer : {BoxAnswer::kNo, BoxAnswer::kCancel}) {
            machine.seat.boxes.clear();
            Remove(target, 0, answer);
            EXPECT_THAT(machine.seat.boxes, ElementsAre(question));
        }
    }
    ExpectListAsBefore();
    EXPECT_EQ(list.selected, 0U);
    ExpectMachineUntouched();
    ExpectStoredAsBefore();
}

TEST_F(IpRemovalTest, RemovalFromAPresetIsAskedAndTakesTheRowAway) {
    Remove(kPreset, 0);
    EXPECT_THAT(machine.seat.boxes, ElementsAre(question));
    EXPECT_THAT(list.rows, ElementsAre(DetailsRow{"10.0.0.6", "255.255.0.0", 1}));
    EXPECT_EQ(list.header, "IP Address (1)");
    ExpectMachineUntouched();
    EXPECT_THAT(diary, ElementsAre("box Remove Selected IP Address ?"));
}

TEST_F(IpRemovalTest, AfterARemovalTheRowThatTookThePlaceIsSelectedElseTheLastElseNone) {
    list.rows = {{"1.0.0.1", "", 0}, {"1.0.0.2", "", 1}, {"1.0.0.3", "", 2}};
    Remove(kPreset, 1);
    EXPECT_EQ(list.rows.at(1).text, "1.0.0.3");
    EXPECT_EQ(list.selected, 1U);
    Remove(kPreset, 1);
    EXPECT_EQ(list.selected, 0U);
    Remove(kPreset, 0);
    EXPECT_EQ(list.selected, std::nullopt);
    EXPECT_EQ(list.header, "IP Address (0)");
}

TEST_F(IpRemovalTest, LiveRemovalTakesItFromTheStackByItsContextAndFromTheRegistry) {
    ipHelper->addresses = {{{10, 0, 0, 5}, {255, 0, 0, 0}, kLabIndex, 65531},
                           {{10, 0, 0, 6}, {255, 255, 0, 0}, kLabIndex, 12}};
    Remove(kLab, 0);
    EXPECT_THAT(ipHelper->diary, ElementsAre("DeleteIPAddress 65531"));
    ExpectStored({"10.0.0.6"}, {"255.255.0.0"});
    EXPECT_THAT(machine.seat.boxes, ElementsAre(question));
    EXPECT_EQ(diary, Lines({{"box Remove Selected IP Address ?"}, kAddressWrites, {"refresh"}}));
    ExpectListAsBefore();
}

TEST_F(IpRemovalTest, ContextIsThatOfTheRowsPlaceInTheRecord) {
    Nics[1].IpAddresses = {"", "10.0.0.5", "", "10.0.0.6"};
    Nics[1].IpRowFlags = {1, 2, 3, 4};
    list.rows = {{"10.0.0.5", "", 1}, {"10.0.0.6", "", 3}};
    Remove(kLab, 1);
    EXPECT_THAT(ipHelper->diary, ElementsAre("DeleteIPAddress 4"));
}

TEST_F(IpRemovalTest, RefreshThatReplacesTheRowsEndsTheRemovalInPeace) {
    ipHelper->addresses = {{{10, 0, 0, 5}, {255, 0, 0, 0}, kLabIndex, 65531}};
    machine.seat.onRefresh = [this] {
        Nics.assign(1, NicInfo());
        list.SetRows({});
    };
    Remove(kLab, 0);
    ExpectStored({"10.0.0.6"}, {"255.255.0.0"});
    EXPECT_EQ(diary.back(), "refresh");
}

TEST_F(IpRemovalTest, AdapterWithoutALiveInterfaceLosesItInTheRegistryOnly) {
    TakeLabDown();
    Remove(kLab, 1);
    EXPECT_THAT(ipHelper->diary, IsEmpty());
    ExpectStored({"10.0.0.5"}, {"255.0.0.0"});
    EXPECT_EQ(diary.back(), "refresh");
}

TEST_F(IpRemovalTest, FailedRemovalIsReportedAfterTheRegistryWasUpdatedAndNothingIsRefreshed) {
    ipHelper->refusal = Win32Error::kInvalidParameter;
    Remove(kLab, 0);
    EXPECT_THAT(machine.seat.boxes, ElementsAre(question, InvalidParameter("DeleteIPAddress")));
    ExpectStored({"10.0.0.6"}, {"255.255.0.0"});
    EXPECT_EQ(diary, Lines({{"box Remove Selected IP Address ?"}, kAddressWrites, {"box Orvella Corvane"}}));
    ExpectListAsBefore();
}

// ---- an address that the stack keeps until a restart

class StaticAddressRemovalTest : public IpRemovalTest {
 protected:
    StaticAddressRemovalTest() {
        ipHelper->refusal = Win32Error::kGenFailure;
        list.selected = 0;
    }
    void Remove(BoxAnswer restart) {
        machine.seat.answers = {BoxAnswer::kYes, restart};
        panel.editing.Remove(kLab);
    }

    const std::vector<std::string> asked = Lines(
        {{"box Remove Selected IP Address ?"}, kAddressWrites, {"box Restart Network Connection Now ?"}});
    const FakeSeat::Box restartQuestion =
        Question("Restart Network Connection Now ?",
                 "You must restart the selected network connection in order to remove the IP address "
                 "'10.0.0.5'\r\n\r\nAre you sure to restart network connection 'Lab' now ?\r\n\r\nWARNING : "
                 "There will be loss of network connectivity while the network connection restarts.");
};

TEST_F(StaticAddressRemovalTest, NoAndCancelToTheRestartRefreshOnly) {
    for (const BoxAnswer answer : {BoxAnswer::kNo, BoxAnswer::kCancel}) {
        diary.clear();
        machine.seat.boxes.clear();
        Remove(answer);
        EXPECT_THAT(machine.seat.boxes, ElementsAre(question, restartQuestion));
        EXPECT_EQ(diary, Lines({asked, {"refresh"}}));
    }
    ExpectStored({"10.0.0.6"}, {"255.255.0.0"});
}

TEST_F(StaticAddressRemovalTest, YesRestartsTheConnectionSaysSoAndRefreshes) {
    Remove(BoxAnswer::kYes);
    EXPECT_EQ(diary, Lines({asked, kRestartOfLab, {"box Network Connection Restarted", "refresh"}}));
    EXPECT_THAT(machine.seat.boxes, ElementsAre(question, restartQuestion,
                                                Information("Network Connection Restarted",
                                                            "Network connection restarted successfully.")));
}

TEST_F(StaticAddressRemovalTest, FailedRestartSaysNothingMoreAndRefreshes) {
    OfferEnableAtAttempt(3);
    Remove(BoxAnswer::kYes);
    EXPECT_THAT(machine.seat.boxes, ElementsAre(question, restartQuestion));
    EXPECT_EQ(diary.back(), "refresh");
}

}  // namespace
}  // namespace corvane
