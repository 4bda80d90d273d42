#include "tests/unit/MacBoxesSupport.h"
#include "tests/unit/WindowCommandSupport.h"
#include "ui/logic/MacChange.h"

namespace corvane {
namespace {

using namespace test;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr char kLabDriverKey[] =
    "SYSTEM\\CurrentControlSet\\Control\\Class\\{4D36E972-E325-11CE-BFC1-08002bE10318}\\0007";
constexpr char kNoteRestart[] =
    "NOTE: You have SELECTED option to automatically restart network connection to apply changes. In the "
    "process of enabling and disabling network connection, you will lose connectivity for few seconds. If "
    "network connection is disabled, it will be enabled automatically.";
constexpr char kNoteManual[] =
    "NOTE: You have NOT SELECTED option to automatically restart network connection to apply changes. You "
    "will "
    "have to manually apply changes by enabling and disabling the network connection once, or by restarting "
    "your computer.";

FakeSeat::Box ChangeQuestion(const std::string& address, const std::string& note) {
    return Question("Change MAC Address ?",
                    "Are you sure to change MAC address of network connection 'Lab' to '" + address +
                        "' ?\r\n\r\n" + note);
}
FakeSeat::Box Changed() {
    return Information("MAC Address Changed Successfully", "MAC Address was changed successfully.");
}
FakeSeat::Box Saved() {
    return Information(
        "MAC Address Changes Saved Successfully",
        "MAC Address changes were saved successfully. You must manually disable and enable the "
        "network adapter 'Lab', or reboot your system to apply the changes.");
}
FakeSeat::Box NotRestarted() {
    return Exclamation(
        "Could Not Restart Network Connection",
        "Network Connection 'Lab' you selected is taking too much time to restart and probably "
        "the restart operation has failed. But the MAC Address changes were saved "
        "successfully.\r\n\r\nYou must manually disable and enable the network adapter 'Lab', or "
        "reboot your system to apply the changes.");
}
FakeSeat::Box BridgeRefused() {
    return Exclamation(
        "Cannot Change MAC Address Of Network Bridge",
        "MAC Address of windows Network Bridge cannot be changed. Network Bridge will use original "
        "MAC address (assigned by the manufacturer) of the first network adapter added in the "
        "bridge, with the first octet of MAC address as value 0x02");
}

/// The panel with its boxes. Showing and hiding stands in the diary of the boxes and in that of the user.
class FakePanel : public BoxesModel, public ChangeMacView {
 public:
    explicit FakePanel(std::vector<std::string>& userDiary) : userDiary_(userDiary) {}

    bool restart = true;

    [[nodiscard]] bool RestartTicked() const override { return restart; }
    void TickRestart(bool ticked) override { restart = ticked; }
    void ShowPanel(bool show) override {
        diary.emplace_back(show ? "show panel" : "hide panel");
        userDiary_.push_back(diary.back());
    }

 private:
    std::vector<std::string>& userDiary_;
};

class MacChangeTest : public WindowCommandTest {
 protected:
    MacChangeTest() {
        panel.Fill(0, {"00", "0C", "29", "4F", "8E", "35"});
        panel.vendorText = "Some Maker";
        panel.canChange = true;
    }

    void Change() { ChangeNow(1, panel, panel); }
    void Original() { OriginalMac(1, panel, panel, panel); }
    void StoreOverride() { machine.registry->SetText(kLabDriverKey, "NetworkAddress", "001122334455"); }
    void ExpectNothingDone() const {
        EXPECT_THAT(machine.registry->writes, IsEmpty());
        EXPECT_THAT(machine.shell->diary, IsEmpty());
        EXPECT_THAT(diary, Not(Contains("hide panel")));
        EXPECT_THAT(diary, Not(Contains("refresh")));
    }

    FakePanel panel{diary};
};

// ---- opening the panel

TEST_F(MacChangeTest, OpeningEmptiesTheFirstRowAndTheVendorAndTicksTheRestart) {
    panel.restart = false;
    panel.Fill(6, {"AB", "", "", "", "", "CD"});
    OpenChangeMac(panel, panel, panel);
    EXPECT_EQ(panel.Row(), kNoOctets);
    EXPECT_EQ(panel.vendorText, "");
    EXPECT_TRUE(panel.restart);
    EXPECT_FALSE(panel.canChange);
    EXPECT_EQ(panel.focus, 0);
    EXPECT_EQ(panel.Row(6), (Octets{"AB", "", "", "", "", "CD"}));
}

TEST_F(MacChangeTest, OpeningWithEmptyBoxesDisablesTheChangeAndClearsTheVendorToo) {
    panel.Fill(0, kNoOctets);
    OpenChangeMac(panel, panel, panel);
    EXPECT_FALSE(panel.canChange);
    EXPECT_EQ(panel.vendorText, "");
}

TEST_F(MacChangeTest, FocusIsSetWhenThePanelIsThereToTakeIt) {
    OpenChangeMac(panel, panel, panel);
    ASSERT_GE(panel.diary.size(), 2U);
    EXPECT_EQ(panel.diary[panel.diary.size() - 2], "show panel");
    EXPECT_EQ(panel.diary.back(), "focus 0");
}

// ---- the whole way

TEST_F(MacChangeTest, YesWritesHidesThePanelRestartsReportsAndRefreshes) {
    machine.seat.answers = {BoxAnswer::kYes};
    Change();
    EXPECT_EQ(diary, Lines({{"box Change MAC Address ?", "write NetworkAddress", "hide panel"},
                            kRestartOfLab,
                            {"box MAC Address Changed Successfully", "refresh"}}));
    EXPECT_THAT(machine.seat.boxes,
                ElementsAre(ChangeQuestion("00-0C-29-4F-8E-35", kNoteRestart), Changed()));
    EXPECT_THAT(WritesTo(*machine.registry, kLabDriverKey),
                ElementsAre(NamedValue("NetworkAddress", Sz("000C294F8E35"))));
    EXPECT_EQ(machine.registry->writes.size(), 1U);
}

TEST_F(MacChangeTest, WithoutTheTickItIsSavedAndNothingIsRestarted) {
    panel.restart = false;
    machine.seat.answers = {BoxAnswer::kYes};
    Change();
    EXPECT_THAT(diary, ElementsAre("box Change MAC Address ?", "write NetworkAddress", "hide panel",
                                   "box MAC Address Changes Saved Successfully", "refresh"));
    EXPECT_THAT(machine.seat.boxes, ElementsAre(ChangeQuestion("00-0C-29-4F-8E-35", kNoteManual), Saved()));
    EXPECT_EQ(machine.registry->Text(kLabDriverKey, "NetworkAddress"), "000C294F8E35");
}

TEST_F(MacChangeTest, PartlyFilledBoxesAreCompletedWithZeros) {
    panel.Fill(0, {"0A", "", "3", "44", "55", "66"});
    machine.seat.answers = {BoxAnswer::kYes};
    Change();
    EXPECT_EQ(panel.Row(), (Octets{"0A", "00", "03", "44", "55", "66"}));
    EXPECT_EQ(machine.seat.boxes.at(0), ChangeQuestion("0A-00-03-44-55-66", kNoteRestart));
    EXPECT_EQ(machine.registry->Text(kLabDriverKey, "NetworkAddress"), "0A0003445566");
}

TEST_F(MacChangeTest, OneCharacterInTheLastBoxMakesAnAddressOfIt) {
    panel.Fill(0, {"", "", "", "", "", "7"});
    machine.seat.answers = {BoxAnswer::kYes};
    Change();
    EXPECT_EQ(machine.seat.boxes.at(0), ChangeQuestion("00-00-00-00-00-07", kNoteRestart));
    EXPECT_EQ(machine.registry->Text(kLabDriverKey, "NetworkAddress"), "000000000007");
}

TEST_F(MacChangeTest, SecondRowHasNoPartInIt) {
    panel.texts[6] = "A";
    machine.seat.answers = {BoxAnswer::kYes};
    Change();
    EXPECT_EQ(panel.texts[6], "A");
    EXPECT_EQ(panel.texts[7], "");
    EXPECT_EQ(machine.registry->Text(kLabDriverKey, "NetworkAddress"), "000C294F8E35");
}

TEST_F(MacChangeTest, SixEmptyBoxesMeanTheOriginalAddressWhateverTheSecondRowHolds) {
    panel.Fill(0, kNoOctets);
    panel.texts[6] = "AB";
    StoreOverride();
    machine.seat.answers = {BoxAnswer::kYes};
    Change();
    EXPECT_EQ(panel.Row(), kNoOctets);
    EXPECT_EQ(machine.seat.boxes.at(0),
              ChangeQuestion("ORIGINAL MAC ADDRESS ASSIGNED BY MANUFACTURER", kNoteRestart));
    EXPECT_FALSE(machine.registry->HasValue(kLabDriverKey, "NetworkAddress"));
}

// ---- what ends it early

TEST_F(MacChangeTest, NoAndCancelLeaveEverythingAndThePanelStaysOpen) {
    for (const BoxAnswer answer : {BoxAnswer::kNo, BoxAnswer::kCancel}) {
        machine.seat.answers = {answer};
        Change();
    }
    EXPECT_THAT(diary, ElementsAre("box Change MAC Address ?", "box Change MAC Address ?"));
    ExpectNothingDone();
}

TEST_F(MacChangeTest, BridgeInAnyLetterCaseIsRefusedWithoutAQuestion) {
    machine.seat.answers = {BoxAnswer::kYes};
    for (const char* component : {"ms_bridgemp", "MS_BRIDGEMP", "Ms_BridgeMP"}) {
        Nics[1].ComponentId = component;
        machine.seat.boxes.clear();
        Change();
        EXPECT_THAT(machine.seat.boxes, ElementsAre(BridgeRefused())) << component;
    }
    ExpectNothingDone();
}

TEST_F(MacChangeTest, BoxesArePaddedBeforeABridgeIsRefused) {
    panel.Fill(0, {"1", "", "", "", "", ""});
    Nics[1].ComponentId = "ms_bridgemp";
    Change();
    EXPECT_EQ(panel.Row(), (Octets{"01", "00", "00", "00", "00", "00"}));
}

TEST_F(MacChangeTest, OtherAdapterBesideABridgeIsNotRefused) {
    Nics[0].ComponentId = "ms_bridgemp";
    Nics[1].ComponentId = "ms_bridgemp2";
    Change();
    EXPECT_THAT(diary, ElementsAre("box Change MAC Address ?"));
}

TEST_F(MacChangeTest, FailedWriteIsShownAndEndsItWithThePanelOpen) {
    FailAt("NetworkAddress", Win32Error::kAccessDenied);
    machine.seat.answers = {BoxAnswer::kYes};
    Change();
    EXPECT_THAT(diary, ElementsAre("box Change MAC Address ?", "write NetworkAddress",
                                   "box Error! Cannot Write Registry"));
    EXPECT_EQ(machine.seat.boxes.at(1), WriteFailure(std::string(kLabDriverKey) + "\\NetworkAddress",
                                                     "(5) Access to this key is denied"));
}

// ---- the restart fails

TEST_F(MacChangeTest, EnableOfferedOnlyAtTheThirdAttemptIsReportedAsAFailedRestart) {
    OfferEnableAtAttempt(3);
    machine.seat.answers = {BoxAnswer::kYes};
    Change();
    EXPECT_THAT(machine.seat.boxes,
                ElementsAre(ChangeQuestion("00-0C-29-4F-8E-35", kNoteRestart), NotRestarted()));
    EXPECT_THAT(diary, Contains("row 3 Restart Failed (Attempt 3)"));
    EXPECT_THAT(diary, Contains("hide panel"));
    EXPECT_EQ(diary.back(), "refresh");
    EXPECT_EQ(machine.registry->Text(kLabDriverKey, "NetworkAddress"), "000C294F8E35");
}

TEST_F(MacChangeTest, FailedDisableIsReportedAsAFailedRestart) {
    machine.shell->failingCall = "DoVerb";
    machine.seat.answers = {BoxAnswer::kYes};
    Change();
    ASSERT_EQ(machine.seat.boxes.size(), 3U);
    EXPECT_EQ(machine.seat.boxes[1].title, "Orvella Corvane");
    EXPECT_EQ(machine.seat.boxes[2], NotRestarted());
    EXPECT_THAT(diary, Contains("row 3 Disabling Attempt Failed"));
    EXPECT_EQ(diary.back(), "refresh");
}

TEST_F(MacChangeTest, DisabledConnectionIsEnabledByTheRestart) {
    SetLabVerbs({"En&able"});
    machine.seat.answers = {BoxAnswer::kYes};
    Change();
    EXPECT_THAT(diary, Contains("verb En&able of Lab"));
    EXPECT_THAT(diary, Not(Contains("verb Disa&ble of Lab")));
    EXPECT_EQ(machine.seat.boxes.back(), Changed());
}

TEST_F(MacChangeTest, ReportNamesTheConnectionAlsoWhenTheFolderDialogReadOtherAdapters) {
    LoseFolderAndAdapters();
    machine.seat.answers = {BoxAnswer::kYes};
    Change();
    EXPECT_EQ(machine.seat.boxes.back(), NotRestarted());
}

// ---- the original address

TEST_F(MacChangeTest, OriginalEmptiesTheFirstRowAndTheVendorEvenWhenTheAnswerIsNo) {
    panel.texts[6] = "AB";
    Original();
    EXPECT_EQ(panel.Row(), kNoOctets);
    EXPECT_EQ(panel.vendorText, "");
    EXPECT_EQ(panel.texts[6], "AB");
    EXPECT_THAT(machine.seat.boxes,
                ElementsAre(ChangeQuestion("ORIGINAL MAC ADDRESS ASSIGNED BY MANUFACTURER", kNoteRestart)));
    ExpectNothingDone();
}

TEST_F(MacChangeTest, OriginalDeletesTheOverrideAndRestarts) {
    StoreOverride();
    machine.seat.answers = {BoxAnswer::kYes};
    Original();
    EXPECT_EQ(diary, Lines({{"box Change MAC Address ?", "delete NetworkAddress", "hide panel"},
                            kRestartOfLab,
                            {"box MAC Address Changed Successfully", "refresh"}}));
    EXPECT_FALSE(machine.registry->HasValue(kLabDriverKey, "NetworkAddress"));
}

TEST_F(MacChangeTest, OriginalWithoutAnOverrideDeletesNothingAndSucceeds) {
    machine.seat.answers = {BoxAnswer::kYes};
    Original();
    EXPECT_EQ(diary, Lines({{"box Change MAC Address ?", "hide panel"},
                            kRestartOfLab,
                            {"box MAC Address Changed Successfully", "refresh"}}));
    EXPECT_EQ(machine.seat.boxes.at(0),
              ChangeQuestion("ORIGINAL MAC ADDRESS ASSIGNED BY MANUFACTURER", kNoteRestart));
}

TEST_F(MacChangeTest, OriginalWithAFailedDeletionIsShownAndNothingIsRestarted) {
    StoreOverride();
    FailAt("NetworkAddress", Win32Error::kAccessDenied);
    machine.seat.answers = {BoxAnswer::kYes};
    Original();
    EXPECT_THAT(diary, ElementsAre("box Change MAC Address ?", "delete NetworkAddress",
                                   "box Error! Cannot Write Registry"));
}

TEST_F(MacChangeTest, OriginalOfABridgeIsRefused) {
    Nics[1].ComponentId = "ms_bridgemp";
    StoreOverride();
    Original();
    EXPECT_THAT(machine.seat.boxes, ElementsAre(BridgeRefused()));
    EXPECT_TRUE(machine.registry->HasValue(kLabDriverKey, "NetworkAddress"));
}

}  // namespace
}  // namespace corvane
