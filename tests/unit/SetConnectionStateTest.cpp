#include "mac/SetConnectionState.h"
#include "tests/unit/CoreSupport.h"

namespace corvane {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

class SetConnectionStateTest : public testing::Test {
 protected:
    FakeMachine machine;
    std::vector<FakeShell::PanelItem>& panel = machine.shell->panel;
    std::vector<std::string>& verbsDone = machine.shell->diary;
};

TEST_F(SetConnectionStateTest, DisableInvokesTheDisableVerb) {
    panel = {{"Network Connections", true, {{"Office", {"Stat&us", "Disa&ble", "Rena&me"}}}}};
    EXPECT_EQ(SetConnectionState("Office", false, false), StateResult::kDone);
    EXPECT_THAT(verbsDone, ElementsAre("verb Disa&ble of Office"));
    EXPECT_THAT(machine.seat.diary, IsEmpty());
}

TEST_F(SetConnectionStateTest, EnableInvokesTheEnableVerb) {
    panel = {{"Network Connections", true, {{"Office", {"En&able", "Rena&me"}}}}};
    EXPECT_EQ(SetConnectionState("Office", true, false), StateResult::kDone);
    EXPECT_THAT(verbsDone, ElementsAre("verb En&able of Office"));
}

TEST_F(SetConnectionStateTest, ResultsHaveTheNumbersOfTheContract) {
    EXPECT_EQ(static_cast<int>(StateResult::kDone), 0);
    EXPECT_EQ(static_cast<int>(StateResult::kDialogShown), 1);
    EXPECT_EQ(static_cast<int>(StateResult::kGivenUp), 2);
    EXPECT_EQ(static_cast<int>(StateResult::kNoVerb), 3);
}

TEST_F(SetConnectionStateTest, AmpersandsAndCaseOfTheFolderNameDoNotCount) {
    panel = {{"NETWORK &Connections", true, {{"Office", {"Disa&ble"}}}}};
    EXPECT_EQ(SetConnectionState("Office", false, false), StateResult::kDone);
}

TEST_F(SetConnectionStateTest, DialUpFolderNameIsKnown) {
    panel = {{"Network and Dial-up Connections", true, {{"Office", {"Disa&ble"}}}}};
    EXPECT_EQ(SetConnectionState("Office", false, false), StateResult::kDone);
}

TEST_F(SetConnectionStateTest, RememberedFolderNameIsKnown) {
    NetworkFolderName = "netzwerkverbindungen";
    panel = {{"Printers", true, {}}, {"&Netzwerkverbindungen", true, {{"Office", {"Disa&ble"}}}}};
    EXPECT_EQ(SetConnectionState("Office", false, false), StateResult::kDone);
}

TEST_F(SetConnectionStateTest, RememberedFolderBeforeABuiltInOneWins) {
    NetworkFolderName = "netzwerkverbindungen";
    panel = {{"Netzwerkverbindungen", true, {{"Office", {"Disable"}}}},
             {"Network Connections", true, {{"Office", {"Disa&ble"}}}}};
    EXPECT_EQ(SetConnectionState("Office", false, false), StateResult::kDone);
    EXPECT_THAT(verbsDone, ElementsAre("verb Disable of Office"));
}

TEST_F(SetConnectionStateTest, BuiltInFolderBeforeTheRememberedOneWins) {
    NetworkFolderName = "netzwerkverbindungen";
    panel = {{"Network Connections", true, {{"Office", {"Disa&ble"}}}},
             {"Netzwerkverbindungen", true, {{"Office", {"Disable"}}}}};
    EXPECT_EQ(SetConnectionState("Office", false, false), StateResult::kDone);
    EXPECT_THAT(verbsDone, ElementsAre("verb Disa&ble of Office"));
}

TEST_F(SetConnectionStateTest, FolderNameMustMatchWhole) {
    panel = {{"My Network Connections", true, {{"Office", {"Disa&ble"}}}}};
    EXPECT_EQ(SetConnectionState("Office", false, false), StateResult::kDialogShown);
    EXPECT_THAT(verbsDone, IsEmpty());
}

TEST_F(SetConnectionStateTest, CaseOfTheConnectionNameDoesNotCount) {
    panel = {{"Network Connections", true, {{"OFFICE lan", {"Disa&ble"}}}}};
    EXPECT_EQ(SetConnectionState("office LAN", false, false), StateResult::kDone);
}

TEST_F(SetConnectionStateTest, AmpersandsInConnectionNamesAreKept) {
    panel = {{"Network Connections", true, {{"R&D", {"Stat&us"}}, {"RD", {"Disa&ble"}}}}};
    EXPECT_EQ(SetConnectionState("RD", false, false), StateResult::kDone);
    EXPECT_EQ(SetConnectionState("R&D", false, false), StateResult::kNoVerb);
}

TEST_F(SetConnectionStateTest, FirstConnectionOfTheNameIsTaken) {
    panel = {{"Network Connections", true, {{"Office", {"Disa&ble"}}, {"OFFICE", {"Disa&ble"}}}}};
    EXPECT_EQ(SetConnectionState("office", false, false), StateResult::kDone);
    EXPECT_THAT(verbsDone, ElementsAre("verb Disa&ble of Office"));
}

TEST_F(SetConnectionStateTest, FirstVerbOfTheNameIsInvoked) {
    panel = {{"Network Connections", true, {{"Office", {"DISABLE", "Disa&ble"}}}}};
    EXPECT_EQ(SetConnectionState("Office", false, false), StateResult::kDone);
    EXPECT_THAT(verbsDone, ElementsAre("verb DISABLE of Office"));
}

TEST_F(SetConnectionStateTest, EnabledConnectionOffersNoEnableVerb) {
    panel = {{"Network Connections", true, {{"Office", {"Stat&us", "Disa&ble"}}}}};
    EXPECT_EQ(SetConnectionState("Office", true, false), StateResult::kNoVerb);
    EXPECT_THAT(verbsDone, IsEmpty());
    EXPECT_THAT(machine.seat.diary, IsEmpty());
}

TEST_F(SetConnectionStateTest, ConnectionWithoutVerbsOffersNone) {
    panel = {{"Network Connections", true, {{"Office", {}}}}};
    EXPECT_EQ(SetConnectionState("Office", false, false), StateResult::kNoVerb);
}

TEST_F(SetConnectionStateTest, ConnectionThatIsNotThereIsAskedAbout) {
    panel = {{"Network Connections", true, {{"Lab", {"Disa&ble"}}}}};
    machine.seat.answers = {BoxAnswer::kNo};
    EXPECT_EQ(SetConnectionState("Office", false, false), StateResult::kGivenUp);
    const FakeSeat::Box question = {
        "Unable To Locate Network Connection",
        "Error! Could not locate network connection 'Office' to be enabled/disabled. Please, enable/disable "
        "your network connection manually. This may happen if the 'Network Connections' or 'Network and "
        "dial-up connections' folder is not found by Orvella Corvane.\r\n\r\nDo you want to manually browse "
        "and set the network connection folder in control pannel ?",
        BoxIcon::kExclamation, BoxButtons::kYesNoCancel};
    EXPECT_THAT(machine.seat.boxes, ElementsAre(question));
    EXPECT_THAT(machine.seat.diary, ElementsAre("box Unable To Locate Network Connection"));
}

TEST_F(SetConnectionStateTest, AnswerCancelGivesUpToo) {
    machine.seat.answers = {BoxAnswer::kCancel};
    EXPECT_EQ(SetConnectionState("Office", false, false), StateResult::kGivenUp);
    EXPECT_THAT(machine.seat.diary, ElementsAre("box Unable To Locate Network Connection"));
}

TEST_F(SetConnectionStateTest, AnswerYesOpensTheFolderDialog) {
    machine.seat.answers = {BoxAnswer::kYes};
    EXPECT_EQ(SetConnectionState("Office", false, false), StateResult::kDialogShown);
    EXPECT_THAT(machine.seat.diary,
                ElementsAre("box Unable To Locate Network Connection", "pick Browse Network Folder"));
}

TEST_F(SetConnectionStateTest, MissingFolderOpensTheDialogWithoutAQuestion) {
    panel = {{"&Printers", true, {}}, {"Mouse", false, {}}, {"&Fonts && Types", true, {}}};
    EXPECT_EQ(SetConnectionState("Office", false, false), StateResult::kDialogShown);
    EXPECT_THAT(machine.seat.boxes, IsEmpty());
    EXPECT_THAT(machine.seat.offeredFolders, ElementsAre("Printers", "Fonts  Types"));
}

TEST_F(SetConnectionStateTest, DialogGetsTheEnableFlag) {
    panel = {{"Verbindungen", true, {{"Office", {"En&able"}}}}};
    machine.seat.folderChoice = 0;
    EXPECT_EQ(SetConnectionState("Office", true, false), StateResult::kDialogShown);
    EXPECT_THAT(verbsDone, ElementsAre("verb En&able of Office"));
}

TEST_F(SetConnectionStateTest, DialogGetsTheRestartFlag) {
    panel = {{"Verbindungen", true, {{"Office", {"Disa&ble"}}}}};
    machine.seat.folderChoice = 0;
    EXPECT_EQ(SetConnectionState("Office", false, true), StateResult::kDialogShown);
    EXPECT_THAT(verbsDone, ElementsAre("verb Disa&ble of Office", "verb En&able of Office"));
}

class ShellFailureTest : public SetConnectionStateTest, public testing::WithParamInterface<const char*> {};

TEST_P(ShellFailureTest, IsShownOnceAndGivesUp) {
    panel = {{"Network Connections", true, {{"Office", {"Disa&ble"}}}}};
    machine.shell->failingCall = GetParam();
    machine.shell->failureText = "The RPC server is unavailable.";
    EXPECT_EQ(SetConnectionState("Office", false, false), StateResult::kGivenUp);
    EXPECT_THAT(
        machine.seat.boxes,
        ElementsAre(Critical("Orvella Corvane",
                             "Error! There was an error while accessing shell32.dll\r\n\r\nDescription: The "
                             "RPC server is unavailable.")));
    EXPECT_THAT(machine.seat.diary, ElementsAre("box Orvella Corvane"));
}

INSTANTIATE_TEST_SUITE_P(At, ShellFailureTest,
                         testing::Values("ControlPanelItems", "FolderItems", "ItemVerbs", "DoVerb"),
                         [](const auto& call) { return std::string(call.param); });

}  // namespace
}  // namespace corvane
