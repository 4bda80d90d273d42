#include "mac/RestartConnection.h"
#include "tests/unit/CoreSupport.h"

namespace corvane {
namespace {

using namespace test;
using testing::ElementsAre;

/// One connection in the folder. Verbs done and waits stand in the seat's diary, so that it tells the order
/// of everything.
class RestartConnectionTest : public testing::Test {
 protected:
    RestartConnectionTest() {
        machine.shell->panel = {{"Network Connections", true, {{"Office", {"Stat&us", "Disa&ble"}}}}};
        machine.clock->onSleep = [this](std::uint32_t milliseconds) {
            diary.push_back("sleep " + std::to_string(milliseconds));
        };
        machine.shell->onVerb = [this](FakeShell::Connection& connection, const std::string& verb) {
            diary.push_back("verb " + verb);
            connection.verbs = {verb == "Disa&ble" ? "En&able" : "Disa&ble"};
        };
    }

    /// After the disable the verb "enable" is offered from the given attempt on.
    void OfferEnableAtAttempt(int attempt) {
        machine.shell->beforeVerbs = [this, attempt, calls = 0](FakeShell::Connection& connection) mutable {
            const int enableAttempt = calls++;
            if (enableAttempt > 0) connection.verbs = {enableAttempt >= attempt ? "En&able" : "Stat&us"};
        };
    }

    FakeMachine machine;
    std::vector<std::string>& diary = machine.seat.diary;
};

TEST_F(RestartConnectionTest, DisablesWaitsEnablesAndWaitsAgain) {
    EXPECT_TRUE(RestartConnection("Office", false, false));
    EXPECT_THAT(diary, ElementsAre("row 1 ", "row 2 ", "row 3 Disabling ...", "row 4  ", "events",
                                   "verb Disa&ble", "sleep 5000", "row 3 Enabling (Attempt 1) ...", "events",
                                   "verb En&able", "events", "sleep 5000"));
}

TEST_F(RestartConnectionTest, QuietLeavesOutTheProgressTexts) {
    EXPECT_TRUE(RestartConnection("Office", true, false));
    EXPECT_THAT(diary, ElementsAre("verb Disa&ble", "sleep 5000", "verb En&able", "events", "sleep 5000"));
}

TEST_F(RestartConnectionTest, DisableOnlyStopsAfterTheDisableWithoutAWait) {
    EXPECT_TRUE(RestartConnection("Office", false, true));
    EXPECT_THAT(diary,
                ElementsAre("row 1 ", "row 2 ", "row 3 Disabling ...", "row 4  ", "events", "verb Disa&ble"));
}

TEST_F(RestartConnectionTest, DisableOnlyOfADisabledConnectionSucceedsWithoutAWait) {
    machine.shell->panel[0].connections[0].verbs = {"En&able"};
    EXPECT_TRUE(RestartConnection("Office", true, true));
    EXPECT_THAT(diary, testing::IsEmpty());
}

TEST_F(RestartConnectionTest, DisabledConnectionIsEnabledWithoutTheWaitAfterTheDisable) {
    machine.shell->panel[0].connections[0].verbs = {"En&able"};
    EXPECT_TRUE(RestartConnection("Office", true, false));
    EXPECT_THAT(diary, ElementsAre("verb En&able", "events", "sleep 5000"));
}

TEST_F(RestartConnectionTest, DialogAtTheDisableStepIsAFailedDisable) {
    machine.shell->panel = {{"Printers", true, {}}};
    EXPECT_FALSE(RestartConnection("Office", false, false));
    EXPECT_THAT(diary, ElementsAre("row 1 ", "row 2 ", "row 3 Disabling ...", "row 4  ", "events",
                                   "pick Browse Network Folder", "row 3 Disabling Attempt Failed"));
}

TEST_F(RestartConnectionTest, ShellFailureAtTheDisableStepIsAFailedDisable) {
    machine.shell->failingCall = "DoVerb";
    EXPECT_FALSE(RestartConnection("Office", false, false));
    EXPECT_THAT(diary, ElementsAre("row 1 ", "row 2 ", "row 3 Disabling ...", "row 4  ", "events",
                                   "box Orvella Corvane", "row 3 Disabling Attempt Failed"));
}

TEST_F(RestartConnectionTest, QuietFailedDisableWritesNoProgress) {
    machine.shell->failingCall = "DoVerb";
    EXPECT_FALSE(RestartConnection("Office", true, false));
    EXPECT_THAT(diary, ElementsAre("box Orvella Corvane"));
}

TEST_F(RestartConnectionTest, FailedDisableFailsDisableOnlyToo) {
    machine.shell->failingCall = "DoVerb";
    EXPECT_FALSE(RestartConnection("Office", true, true));
}

TEST_F(RestartConnectionTest, EnableOfferedAtTheSecondAttemptSucceeds) {
    OfferEnableAtAttempt(2);
    EXPECT_TRUE(RestartConnection("Office", false, false));
    EXPECT_THAT(diary, ElementsAre("row 1 ", "row 2 ", "row 3 Disabling ...", "row 4  ", "events",
                                   "verb Disa&ble", "sleep 5000", "row 3 Enabling (Attempt 1) ...", "events",
                                   "sleep 5000", "row 3 Enabling (Attempt 2) ...", "events", "verb En&able",
                                   "events", "sleep 5000"));
}

TEST_F(RestartConnectionTest, EnableThatSucceedsAtTheThirdAttemptIsReportedAsFailed) {
    OfferEnableAtAttempt(3);
    EXPECT_FALSE(RestartConnection("Office", false, false));
    EXPECT_THAT(diary, ElementsAre("row 1 ", "row 2 ", "row 3 Disabling ...", "row 4  ", "events",
                                   "verb Disa&ble", "sleep 5000", "row 3 Enabling (Attempt 1) ...", "events",
                                   "sleep 5000", "row 3 Enabling (Attempt 2) ...", "events", "sleep 5000",
                                   "row 3 Enabling (Attempt 3) ...", "events", "verb En&able",
                                   "row 3 Restart Failed (Attempt 3)"));
}

TEST_F(RestartConnectionTest, EnableThatIsNeverOfferedIsGivenUpAfterThreeAttempts) {
    OfferEnableAtAttempt(100);
    EXPECT_FALSE(RestartConnection("Office", false, false));
    EXPECT_EQ(machine.clock->sleeps, std::vector<std::uint32_t>(3, 5000));
    EXPECT_EQ(diary.back(), "row 3 Restart Failed (Attempt 3)");
    EXPECT_THAT(machine.seat.boxes, testing::IsEmpty());
}

TEST_F(RestartConnectionTest, QuietGivingUpWritesNoProgress) {
    OfferEnableAtAttempt(100);
    EXPECT_FALSE(RestartConnection("Office", true, false));
    EXPECT_THAT(diary, ElementsAre("verb Disa&ble", "sleep 5000", "sleep 5000", "sleep 5000"));
}

TEST_F(RestartConnectionTest, ShellFailureAtTheFirstEnableCountsAsSuccess) {
    machine.clock->onSleep = [this](std::uint32_t) { machine.shell->failingCall = "DoVerb"; };
    EXPECT_TRUE(RestartConnection("Office", true, false));
    ASSERT_EQ(machine.seat.boxes.size(), 1U);
    EXPECT_EQ(machine.seat.boxes[0].icon, BoxIcon::kCritical);
    EXPECT_EQ(machine.clock->sleeps.size(), 2U);
}

TEST_F(RestartConnectionTest, ShellFailureAtTheThirdEnableIsReportedAsFailed) {
    OfferEnableAtAttempt(3);
    machine.shell->onVerb = [this](FakeShell::Connection&, const std::string&) {
        machine.shell->failingCall = "DoVerb";
    };
    EXPECT_FALSE(RestartConnection("Office", true, false));
    EXPECT_EQ(machine.seat.boxes.size(), 1U);
    EXPECT_EQ(machine.clock->sleeps.size(), 3U);
}

TEST_F(RestartConnectionTest, DialogAtTheDisableStepRestartsByItselfAndTheCallerIsToldOfAFailure) {
    machine.shell->panel[0].name = "Verbindungen";
    machine.seat.folderChoice = 0;
    EXPECT_FALSE(RestartConnection("Office", true, false));
    EXPECT_THAT(diary, ElementsAre("pick Browse Network Folder", "row 1 ", "row 2 ", "row 3 Disabling ...",
                                   "row 4  ", "events", "verb Disa&ble", "sleep 5000",
                                   "row 3 Enabling (Attempt 1) ...", "events", "verb En&able", "events",
                                   "sleep 5000", "box Network Connection Restarted", "refresh"));
}

TEST_F(RestartConnectionTest, DialogAtTheEnableStepEnablesAndDoesNotRestartAnew) {
    machine.shell->onVerb = [this](FakeShell::Connection& connection, const std::string& verb) {
        diary.push_back("verb " + verb);
        connection.verbs = {verb == "Disa&ble" ? "En&able" : "Disa&ble"};
        machine.shell->panel[0].name = "Verbindungen";
    };
    machine.seat.folderChoice = 0;
    EXPECT_TRUE(RestartConnection("Office", true, false));
    EXPECT_THAT(diary,
                ElementsAre("verb Disa&ble", "sleep 5000", "pick Browse Network Folder", "row 1 ", "row 2 ",
                            "row 3 Enabling ...", "row 4  ", "events", "verb En&able", "sleep 5000",
                            "box Network Connection Enabled", "refresh", "events", "sleep 5000"));
}

}  // namespace
}  // namespace corvane
