#include "tests/unit/ActionsSupport.h"

namespace corvane {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

class ActionOutcomesTest : public ActionsTest {};

TEST_F(ActionOutcomesTest, DisableReportsSuccess) {
    EXPECT_EQ(Run("-n lan -di"), 0);
    EXPECT_THAT(machine.seat.boxes,
                ElementsAre(Information("Disabled - Orvella Corvane v4",
                                        "Network connection 'Office LAN' was disabled successfully."),
                            kDone));
    EXPECT_THAT(machine.seat.diary,
                ElementsAre("progress Disabling 'Office LAN' ...", "verb Disa&ble of Office LAN",
                            "box Disabled - Orvella Corvane v4", "box Done - Orvella Corvane v4"));
}

TEST_F(ActionOutcomesTest, DisableReportsFailureAndGoesOn) {
    machine.shell->failingCall = "DoVerb";
    EXPECT_EQ(Run("-n lan -di"), 1);
    ASSERT_EQ(machine.seat.boxes.size(), 3U);
    EXPECT_EQ(machine.seat.boxes[0].title, "Orvella Corvane");
    EXPECT_EQ(machine.seat.boxes[1],
              Critical("Disable Attempt Failed - Orvella Corvane v4",
                       "ERROR ! Network connection 'Office LAN' was not disabled successfully."));
    EXPECT_EQ(machine.seat.boxes[2], kDone);
}

TEST_F(ActionOutcomesTest, RestartReportsSuccess) {
    EXPECT_EQ(Run("-n lan -re"), 0);
    EXPECT_THAT(machine.seat.boxes,
                ElementsAre(Information("Restarted - Orvella Corvane v4",
                                        "Network connection 'Office LAN' was restarted successfully."),
                            kDone));
    EXPECT_THAT(
        machine.seat.diary,
        ElementsAre("progress Restarting 'Office LAN' (about 10 seconds) ...", "verb Disa&ble of Office LAN",
                    "sleep 5000", "verb En&able of Office LAN", "events", "sleep 5000",
                    "box Restarted - Orvella Corvane v4", "box Done - Orvella Corvane v4"));
}

TEST_F(ActionOutcomesTest, RestartReportsFailureAndGoesOn) {
    machine.shell->beforeVerbs = [](FakeShell::Connection& connection) { connection.verbs.clear(); };
    EXPECT_EQ(Run("-n lan -re"), 1);
    EXPECT_THAT(
        machine.seat.boxes,
        ElementsAre(Critical("Restarted Attempt Failed - Orvella Corvane v4",
                             "ERROR ! Network connection 'Office LAN' was not restarted successfully."),
                    kDone));
}

TEST_F(ActionOutcomesTest, ReleaseReportsSuccess) {
    machine.ipHelper->AddInterface(5, kFirstId);
    EXPECT_EQ(Run("-n lan -rl"), 0);
    EXPECT_THAT(machine.ipHelper->diary,
                testing::Contains("IpReleaseAddress 5 \\DEVICE\\TCPIP_" + std::string(kFirstId)));
    EXPECT_THAT(
        machine.seat.boxes,
        ElementsAre(
            Information(
                "IP Released - Orvella Corvane v4",
                "IP Release operation was performed on network connection 'Office LAN' successfully."),
            kDone));
}

TEST_F(ActionOutcomesTest, ReleaseReportsFailureAndGoesOn) {
    machine.ipHelper->AddInterface(5, kFirstId);
    machine.ipHelper->releaseResult = Win32Error::kNotSupported;
    machine.ipHelper->texts[Win32Error::kNotSupported] = "The request is not supported.\r\n";
    EXPECT_EQ(Run("-n lan -rl"), 1);
    EXPECT_THAT(
        machine.seat.boxes,
        ElementsAre(Critical("Orvella Corvane",
                             "DLL : IphlpApi.dll\r\n\r\nError Code : 50\r\nAPI: IPReleaseAddress\r\nError "
                             "Description : The request is not supported.\r\n\r\n\r\nClick OK To Continue"),
                    Critical("IP Release Attempt Failed - Orvella Corvane v4",
                             "ERROR ! IP Release operation on network connection 'Office LAN' failed."),
                    kDone));
}

TEST_F(ActionOutcomesTest, RenewReportsSuccess) {
    machine.ipHelper->AddInterface(5, kFirstId);
    EXPECT_EQ(Run("-n lan -rn"), 0);
    EXPECT_THAT(machine.ipHelper->diary,
                testing::Contains("IpRenewAddress 5 \\DEVICE\\TCPIP_" + std::string(kFirstId)));
    EXPECT_THAT(
        machine.seat.boxes,
        ElementsAre(
            Information("IP Renewed - Orvella Corvane v4",
                        "IP Renew operation was performed on network connection 'Office LAN' successfully."),
            kDone));
}

TEST_F(ActionOutcomesTest, RenewReportsFailureAndGoesOn) {
    machine.ipHelper->AddInterface(5, kFirstId);
    machine.ipHelper->renewResult = Win32Error::kSemTimeout;
    EXPECT_EQ(Run("-n lan -rn"), 1);
    EXPECT_THAT(
        machine.seat.boxes,
        ElementsAre(Critical("Orvella Corvane",
                             "DLL : IphlpApi.dll\r\n\r\nError Code : 121\r\nAPI: IPRenewAddress\r\nError "
                             "Description : unknown\r\n\r\nClick OK To Continue"),
                    Critical("IP Renew Attempt Failed - Orvella Corvane v4",
                             "ERROR ! IP Renew operation on network connection 'Office LAN' failed."),
                    kDone));
}

TEST_F(ActionOutcomesTest, ReleaseOfAConnectionWithoutAnInterfaceSucceeds) {
    EXPECT_EQ(Run("-n lan -rl"), 0);
    ASSERT_EQ(machine.seat.boxes.size(), 2U);
    EXPECT_EQ(machine.seat.boxes[0].title, "IP Released - Orvella Corvane v4");
}

TEST_F(ActionOutcomesTest, StepsRunInTheirOwnOrder) {
    EXPECT_EQ(Run("-rn -rl -re -di -h -n lan"), 0);
    std::vector<std::string> titles;
    for (const FakeSeat::Box& box : machine.seat.boxes) titles.push_back(box.title);
    EXPECT_THAT(titles, ElementsAre("Disabled - Orvella Corvane v4", "Restarted - Orvella Corvane v4",
                                    "IP Released - Orvella Corvane v4", "IP Renewed - Orvella Corvane v4",
                                    "Done - Orvella Corvane v4"));
}

TEST_F(ActionOutcomesTest, SettingsAreWrittenBeforeTheRestart) {
    machine.shell->onVerb = [this](FakeShell::Connection&, const std::string&) {
        EXPECT_EQ(machine.registry->Value(TcpipKey(kFirstId), "EnableDHCP"), Dword(1));
        EXPECT_EQ(machine.registry->Text(DriverKeyPath("0003"), "NetworkAddress"), "021122334455");
    };
    EXPECT_EQ(Run("-n lan -m 021122334455 -h -di"), 0);
    EXPECT_THAT(machine.shell->diary, ElementsAre("verb Disa&ble of Office LAN"));
}

TEST_F(ActionOutcomesTest, EveryStepRunsAfterFailedOnesAndDoneIsStillShown) {
    machine.registry->readOnly = true;
    machine.shell->failingCall = "DoVerb";
    EXPECT_EQ(Run("-n lan -m 021122334455 -h -di -re -rl -rn"), 1);
    std::vector<std::string> titles;
    for (const FakeSeat::Box& box : machine.seat.boxes) {
        titles.push_back(box.title);
        EXPECT_EQ(box.buttons, BoxButtons::kOk) << box.title;
    }
    EXPECT_THAT(titles, ElementsAre("Error! Cannot Write Registry", "Error! Cannot Write Registry",
                                    "Orvella Corvane", "Disable Attempt Failed - Orvella Corvane v4",
                                    "Orvella Corvane", "Restarted Attempt Failed - Orvella Corvane v4",
                                    "IP Released - Orvella Corvane v4", "IP Renewed - Orvella Corvane v4",
                                    "Done - Orvella Corvane v4"));
}

TEST_F(ActionOutcomesTest, SilentModeShowsNothingOfASuccess) {
    EXPECT_EQ(Run("-s -n lan -m 021122334455 -h -di -re -rl -rn"), 0);
    EXPECT_THAT(machine.seat.boxes, IsEmpty());
    EXPECT_THAT(machine.seat.progress, IsEmpty());
    EXPECT_EQ(machine.registry->Text(DriverKeyPath("0003"), "NetworkAddress"), "021122334455");
    EXPECT_EQ(machine.shell->diary.size(), 2U);
}

TEST_F(ActionOutcomesTest, SilentModeSuppressesTheBoxesOfLowerLayersToo) {
    machine.registry->readOnly = true;
    machine.shell->failingCall = "DoVerb";
    machine.ipHelper->AddInterface(5, kFirstId);
    machine.ipHelper->releaseResult = Win32Error::kNotSupported;
    EXPECT_EQ(Run("-s -n lan -m 013322 -i 1 -di -re -rl"), 1);
    EXPECT_THAT(machine.seat.boxes, IsEmpty());
    EXPECT_THAT(machine.seat.warnings, IsEmpty());
}

TEST_F(ActionOutcomesTest, SilentModeAnswersTheFolderQuestionsNo) {
    machine.shell->panel = {{"Network Connections", true, {}}};
    machine.seat.answers = {BoxAnswer::kYes, BoxAnswer::kYes};
    machine.seat.folderChoice = 0;
    EXPECT_EQ(Run("-s -n lan -di"), 1);
    machine.shell->panel = {{"Printers", true, {}}};
    EXPECT_EQ(Run("-s -n lan -di"), 1);
    EXPECT_THAT(machine.seat.diary, IsEmpty());
}

}  // namespace
}  // namespace corvane
