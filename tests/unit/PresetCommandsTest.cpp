#include "tests/unit/PresetEditorSupport.h"
#include "tests/unit/TempFolder.h"
#include "tests/unit/WindowCommandSupport.h"
#include "ui/logic/PresetCommands.h"

namespace corvane {
namespace {

using namespace test;
using namespace std::string_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

using List = std::vector<PresetRecord>;

FakeSeat::Box DeleteQuestion(const std::string& name) {
    return Question("Delete Selected Preset ?", "Are you sure to delete '" + name + "' preset forever ?");
}

const FakeSeat::Box kApplyQuestion =
    Question("Apply Selected Preset ?",
             "Are you sure to apply the preset 'Office' to network connection 'Lab' now ?\r\n\r\nNOTE: The "
             "selected network connection must be restarted later on to apply settings. This operation may "
             "result in loss of connectivity.");
const FakeSeat::Box kRestartQuestion =
    Question("Preset Applied Successfully, Restart Connection ?",
             "Preset 'Office' was applied to network connection 'Lab' successfully.\r\n\r\nDo you want to "
             "restart/enable the selected network connection now to apply changes ?");
const FakeSeat::Box kRestarted =
    Information("Network Connection Restarted", "Network connection restarted successfully.");
const FakeSeat::Box kNotRestarted =
    Exclamation("Could Not Restart Network Connection",
                "Network Connection 'Lab' you selected is taking too much time to restart and probably the "
                "restart operation has failed.\r\n\r\nYou must manually disable and enable the network "
                "adapter 'Lab', or reboot your system to apply the changes.");

// ---- the list

class PresetsListTest : public testing::Test {
 protected:
    FakeMachine machine;
};

TEST_F(PresetsListTest, FreshListShowsNothing) { EXPECT_THAT(PresetEntries(), IsEmpty()); }

TEST_F(PresetsListTest, UnusedSlotsDoNotShowAndEntriesRememberTheirPosition) {
    Presets() = {PresetRecord(), NamedPreset("b"), PresetRecord(), NamedPreset("a"), NamedPreset(" ")};
    EXPECT_EQ(PresetEntries(), (std::vector<PresetEntry>{{"b", 1}, {"a", 3}, {" ", 4}}));
}

// ---- deleting

class DeletePresetTest : public testing::Test {
 protected:
    DeletePresetTest() { Presets() = {first, second, third}; }

    /// Deletes the entry that is shown at `row`; the user answers the question.
    bool Delete(std::size_t row, BoxAnswer answer = BoxAnswer::kYes) {
        machine.seat.answers = {answer};
        return DeletePreset(PresetEntries().at(row), folder / "");
    }
    [[nodiscard]] std::string FileBytes() const { return ReadBytes(folder / "presets.npf"); }

    FakeMachine machine;
    TempFolder folder;
    const PresetRecord first = OfficePreset();
    const PresetRecord second = DhcpPreset();
    const PresetRecord third = NamedPreset("Third", 32);
};

TEST_F(DeletePresetTest, NothingSelectedDoesNothing) {
    EXPECT_FALSE(DeletePreset({"", 0}, folder / ""));
    EXPECT_THAT(machine.seat.diary, IsEmpty());
    EXPECT_EQ(Presets(), (List{first, second, third}));
    EXPECT_THAT(folder.Names(), IsEmpty());
}

TEST_F(DeletePresetTest, NoOrCancelKeepsThePreset) {
    for (const BoxAnswer answer : {BoxAnswer::kNo, BoxAnswer::kCancel}) EXPECT_FALSE(Delete(1, answer));
    EXPECT_THAT(machine.seat.boxes, ElementsAre(DeleteQuestion("At home"), DeleteQuestion("At home")));
    EXPECT_EQ(Presets(), (List{first, second, third}));
    EXPECT_THAT(folder.Names(), IsEmpty());
}

TEST_F(DeletePresetTest, LaterPresetsMoveDownAndTheFileIsWritten) {
    EXPECT_TRUE(Delete(0));
    EXPECT_EQ(Presets(), (List{second, third}));
    EXPECT_EQ(FileBytes(), PresetBytes({second, third}));
    EXPECT_THAT(machine.seat.boxes, ElementsAre(DeleteQuestion("Office")));
}

TEST_F(DeletePresetTest, PresetInTheMiddleLeavesItsNeighbours) {
    EXPECT_TRUE(Delete(1));
    EXPECT_EQ(Presets(), (List{first, third}));
}

TEST_F(DeletePresetTest, LastPresetLeavesTheEarlierOnes) {
    EXPECT_TRUE(Delete(2));
    EXPECT_EQ(Presets(), (List{first, second}));
}

TEST_F(DeletePresetTest, EntryBehindUnusedSlotsIsTheOneThatGoes) {
    Presets() = {PresetRecord(), first, PresetRecord(), third};
    EXPECT_TRUE(Delete(1));
    EXPECT_EQ(Presets(), (List{PresetRecord(), first, PresetRecord()}));
}

TEST_F(DeletePresetTest, OnlyPresetLeavesAnUnusedSlot) {
    Presets() = {first};
    EXPECT_TRUE(Delete(0));
    EXPECT_EQ(Presets(), List(1));
    EXPECT_THAT(PresetEntries(), IsEmpty());
    EXPECT_EQ(FileBytes(), "\x01\0\0\0"s + std::string(15, '\0'));
}

TEST_F(DeletePresetTest, OldTailStaysInTheFileAndIsNotReadBack) {
    const std::string old = PresetBytes(Presets());
    WriteBytes(folder / "presets.npf", old);
    EXPECT_TRUE(Delete(2));
    EXPECT_EQ(FileBytes(), "\x02\0\0\0"s + old.substr(4));
    ReadPresets(folder / "");
    EXPECT_EQ(Presets(), (List{first, second}));
}

TEST_F(DeletePresetTest, FailedFileIsReportedAndThePresetIsGoneFromTheList) {
    machine.seat.answers = {BoxAnswer::kYes};
    EXPECT_TRUE(DeletePreset({"Office", 0}, folder / "none/"));
    EXPECT_THAT(machine.seat.boxes,
                ElementsAre(DeleteQuestion("Office"),
                            Critical("Orvella Corvane", SaveFailureText(2, "No such file or directory",
                                                                        folder / "none/presets.npf"))));
    EXPECT_EQ(Presets(), (List{second, third}));
}

// ---- applying

/// The preset Office, behind an unused slot and another one, goes to the connection Lab.
class ApplySelectedPresetTest : public WindowCommandTest {
 protected:
    ApplySelectedPresetTest() { Presets() = {PresetRecord(), DhcpPreset(), OfficePreset()}; }

    /// The user answers the two questions.
    void Apply(BoxAnswer apply, BoxAnswer restart = BoxAnswer::kNo) {
        machine.seat.answers = {apply, restart};
        ApplySelectedPreset({"Office", 2}, 1,
                            [this](const std::string& text) { diary.push_back("statusbar " + text); });
    }

    [[nodiscard]] std::vector<NamedValue> WritesToLab() const {
        return WritesTo(*machine.registry, TcpipKey(kSecondId));
    }

    const std::string labDriverKey = DriverKeyPath("0007");
    const std::vector<std::string> applied = {"box Apply Selected Preset ?",
                                              "statusbar Applying Preset ...",
                                              "events",
                                              "write NetworkAddress",
                                              "write EnableDHCP",
                                              "write IPAddress",
                                              "write SubnetMask",
                                              "write DefaultGateway",
                                              "write DefaultGatewayMetric",
                                              "write NameServer",
                                              "statusbar Preset Applied",
                                              "box Preset Applied Successfully, Restart Connection ?"};
};

TEST_F(ApplySelectedPresetTest, NoOrCancelDoesNothing) {
    for (const BoxAnswer answer : {BoxAnswer::kNo, BoxAnswer::kCancel}) Apply(answer);
    EXPECT_THAT(machine.seat.boxes, ElementsAre(kApplyQuestion, kApplyQuestion));
    EXPECT_THAT(diary, ElementsAre("box Apply Selected Preset ?", "box Apply Selected Preset ?"));
    EXPECT_THAT(machine.registry->writes, IsEmpty());
}

TEST_F(ApplySelectedPresetTest, YesTwiceAppliesRestartsReportsAndRefreshes) {
    Apply(BoxAnswer::kYes, BoxAnswer::kYes);
    EXPECT_EQ(diary, Lines({applied, kRestartOfLab, {"box Network Connection Restarted", "refresh"}}));
    EXPECT_THAT(machine.seat.boxes, ElementsAre(kApplyQuestion, kRestartQuestion, kRestarted));
}

TEST_F(ApplySelectedPresetTest, WithoutARestartTheWindowIsRefreshed) {
    for (const BoxAnswer answer : {BoxAnswer::kNo, BoxAnswer::kCancel}) {
        diary.clear();
        machine.seat.boxes.clear();
        Apply(BoxAnswer::kYes, answer);
        EXPECT_EQ(diary, Lines({applied, {"refresh"}}));
        EXPECT_THAT(machine.seat.boxes, ElementsAre(kApplyQuestion, kRestartQuestion));
    }
    EXPECT_THAT(machine.shell->diary, IsEmpty());
}

TEST_F(ApplySelectedPresetTest, SettingsOfTheEntrysPresetGoToTheSelectedConnection) {
    Apply(BoxAnswer::kYes);
    EXPECT_THAT(WritesTo(*machine.registry, labDriverKey),
                ElementsAre(NamedValue("NetworkAddress", Sz("000C2912ABFF"))));
    EXPECT_THAT(
        WritesToLab(),
        ElementsAre(NamedValue("EnableDHCP", Dword(0)),
                    NamedValue("IPAddress", MultiSz("192.168.1.10" + kNul + "10.0.0.7" + kNul + kNul)),
                    NamedValue("SubnetMask", MultiSz("255.255.255.0" + kNul + "255.0.0.0" + kNul + kNul)),
                    NamedValue("DefaultGateway", MultiSz("192.168.1.1" + kNul + kNul)),
                    NamedValue("DefaultGatewayMetric", MultiSz("20" + kNul + kNul)),
                    NamedValue("NameServer", Sz("192.168.1.1,9.9.9.9" + kNul))));
    EXPECT_EQ(machine.registry->writes.size(), 7U);
}

TEST_F(ApplySelectedPresetTest, MacThatIsTheConfiguredOverrideChangesNoMac) {
    Nics[1].NetworkAddress = "00-0C-29-12-AB-FF";
    machine.registry->SetText(labDriverKey, "NetworkAddress", "000C2912ABFF");
    Apply(BoxAnswer::kYes);
    EXPECT_THAT(diary, Not(Contains("write NetworkAddress")));
    EXPECT_EQ(machine.registry->Text(labDriverKey, "NetworkAddress"), "000C2912ABFF");
}

TEST_F(ApplySelectedPresetTest, MacThatIsTheSavedOriginalRemovesTheOverride) {
    Nics[1].NetworkAddress = "02-11-22-33-44-55";
    Nics[1].OriginalNetworkAddress = "00-0C-29-12-AB-FF";
    machine.registry->SetText(labDriverKey, "NetworkAddress", "021122334455");
    Apply(BoxAnswer::kYes);
    EXPECT_FALSE(machine.registry->HasValue(labDriverKey, "NetworkAddress"));
}

TEST_F(ApplySelectedPresetTest, DhcpPresetAppliesNoneOfItsAddresses) {
    Presets()[2] = DhcpPreset();
    Presets()[2].IpAddresses = {"10.0.0.5"};
    Apply(BoxAnswer::kYes);
    EXPECT_EQ(machine.registry->Value(TcpipKey(kSecondId), "EnableDHCP"), Dword(1));
    EXPECT_EQ(machine.registry->Value(TcpipKey(kSecondId), "IPAddress"), MultiSz("0.0.0.0" + kNul + kNul));
    EXPECT_THAT(WritesTo(*machine.registry, labDriverKey), IsEmpty());
}

TEST_F(ApplySelectedPresetTest, FailedRestartIsReportedAndTheSettingsStay) {
    OfferEnableAtAttempt(3);
    Apply(BoxAnswer::kYes, BoxAnswer::kYes);
    EXPECT_THAT(machine.seat.boxes, ElementsAre(kApplyQuestion, kRestartQuestion, kNotRestarted));
    EXPECT_THAT(diary, Contains("row 3 Restart Failed (Attempt 3)"));
    ASSERT_GE(diary.size(), 2U);
    EXPECT_EQ(diary[diary.size() - 2], "box Could Not Restart Network Connection");
    EXPECT_EQ(diary.back(), "refresh");
    EXPECT_EQ(machine.registry->Text(labDriverKey, "NetworkAddress"), "000C2912ABFF");
    EXPECT_EQ(WritesToLab().size(), 6U);
}

TEST_F(ApplySelectedPresetTest, FailureToDisableIsReportedTheSameWay) {
    SetLabVerbs({"Stat&us"});
    machine.shell->failingCall = "ItemVerbs";
    Apply(BoxAnswer::kYes, BoxAnswer::kYes);
    EXPECT_THAT(diary, Contains("row 3 Disabling Attempt Failed"));
    ASSERT_FALSE(machine.seat.boxes.empty());
    EXPECT_EQ(machine.seat.boxes.back(), kNotRestarted);
    EXPECT_EQ(diary.back(), "refresh");
}

TEST_F(ApplySelectedPresetTest, AdaptersReadAnewDuringTheRestartLeaveTheNamesInTheReport) {
    LoseFolderAndAdapters();
    OfferEnableAtAttempt(3);
    Apply(BoxAnswer::kYes, BoxAnswer::kYes);
    EXPECT_EQ(Nics[1].Name, "");
    EXPECT_EQ(machine.seat.boxes.back(), kNotRestarted);
}

TEST_F(ApplySelectedPresetTest, ShortcomingsOfThePresetAreToldAtOnceBeforeItIsApplied) {
    Nics[1].DhcpEnabled = true;
    Presets()[2].SubnetMasks = {"255.255.255.0", "255.0.255.0"};
    Presets()[2].DnsServers = {"9.9.9"};
    Apply(BoxAnswer::kYes);
    EXPECT_THAT(
        machine.seat.warnings,
        ElementsAre("DHCP is turned off on 'Lab' because the preset does not turn it on; tick DHCP in the "
                    "preset to keep it. Subnet mask '255.0.255.0' is stored as typed but cannot take "
                    "effect: a mask is one bits followed by zero bits, such as 255.255.255.0. DNS server "
                    "'9.9.9' is stored as typed but cannot take effect: it is not four numbers 0 to 255 "
                    "joined by '.'"));
    ASSERT_GE(diary.size(), 3U);
    EXPECT_EQ(diary[1], "warn " + machine.seat.warnings[0]);
    EXPECT_EQ(diary[2], "statusbar Applying Preset ...");
    EXPECT_EQ(WritesToLab().size(), 6U);
}

TEST_F(ApplySelectedPresetTest, RefusedPresetIsNotAdvisedOn) {
    Presets()[2].DnsServers = {"9.9.9"};
    Apply(BoxAnswer::kNo);
    EXPECT_THAT(machine.seat.warnings, IsEmpty());
}

TEST_F(ApplySelectedPresetTest, FailedWriteIsShownAndTheRestartStillOffered) {
    FailAt("NetworkAddress", Win32Error::kAccessDenied);
    Apply(BoxAnswer::kYes);
    ASSERT_EQ(machine.seat.boxes.size(), 3U);
    EXPECT_EQ(machine.seat.boxes[1].icon, BoxIcon::kCritical);
    EXPECT_EQ(machine.seat.boxes[2], kRestartQuestion);
    EXPECT_EQ(WritesToLab().size(), 6U);
}

}  // namespace
}  // namespace corvane
