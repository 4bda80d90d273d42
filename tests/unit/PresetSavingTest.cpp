#include <utility>

#include "tests/unit/PresetEditorSupport.h"

namespace corvane {
namespace {

using namespace test;
using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;

/// Two addresses, a gateway and two servers, as a user entered them.
const std::vector<DetailsRow> kIpRows = {{"10.0.0.5", "255.0.0.0", 0}, {"192.168.1.9", "255.255.255.0", 1}};
const std::vector<DetailsRow> kGatewayRows = {{"10.0.0.1", "20", 0}, {"10.0.0.2", "Automatic", 1}};
const std::vector<DetailsRow> kDnsRows = {{"9.9.9.9", "", 0}, {"1.1.1.1", "", 1}};

/// What is stored of a preset that carries nothing.
PresetRecord BarePreset(const std::string& name, int flags = 0) {
    PresetRecord record = NamedPreset(name, flags);
    record.IpAddresses = {"0.0.0.0"};
    record.SubnetMasks = {"0.0.0.0"};
    record.Gateways = {""};
    record.GatewayMetrics = {""};
    record.DnsServers = {""};
    return record;
}

FakeSeat::Box Saved(const std::string& name) {
    return {"Preset Saved Successfully", "Preset '" + name + "' was saved successfully.",
            BoxIcon::kInformation, BoxButtons::kOk};
}
FakeSeat::Box OverwriteQuestion(const std::string& name) {
    return {"Overwrite Existing Preset ?",
            "Preset with name '" + name + "' already exists. Do you want to overwrite it ?",
            BoxIcon::kQuestion, BoxButtons::kYesNoCancel};
}

class PresetSavingTest : public PresetEditorTest {
 protected:
    /// The preset that is stored under a new name after the user's work.
    PresetRecord SaveAs(const std::string& name) {
        editor.Type(name);
        Save();
        return Presets().back();
    }
    void EnterLists() {
        editor.listIP.rows = kIpRows;
        editor.listGateway.rows = kGatewayRows;
        editor.listDNS.rows = kDnsRows;
    }
    [[nodiscard]] std::string FileBytes() const { return ReadBytes(folder / "presets.npf"); }
};

// ---- the name

TEST_F(PresetSavingTest, MissingNameIsAskedForAndNothingIsSaved) {
    Enter();
    Save();
    EXPECT_THAT(machine.seat.boxes,
                ElementsAre(FakeSeat::Box{"Preset Name Missing", "Please enter a name for the preset.",
                                          BoxIcon::kExclamation, BoxButtons::kOk}));
    EXPECT_THAT(diary, ElementsAre("box Preset Name Missing", "focus name"));
    EXPECT_TRUE(editor.rules.Active());
    EXPECT_EQ(Presets(), std::vector<PresetRecord>(1));
    EXPECT_THAT(folder.Names(), IsEmpty());
}

TEST_F(PresetSavingTest, NameInAnotherLetterCaseAsksToOverwrite) {
    Presets() = {DhcpPreset(), OfficePreset(), NamedPreset("Last")};
    Enter("Office");
    editor.Type("OFFICE");
    editor.Click(ckCPMAC);
    machine.seat.answers = {BoxAnswer::kYes};
    Save();
    EXPECT_THAT(machine.seat.boxes, ElementsAre(OverwriteQuestion("OFFICE"), Saved("OFFICE")));
    PresetRecord overwritten = OfficePreset();
    overwritten.Name = "OFFICE";
    overwritten.Flags = kPresetIp | kPresetGateway | kPresetDns;
    overwritten.Mac.clear();
    EXPECT_THAT(Presets(), ElementsAre(DhcpPreset(), overwritten, NamedPreset("Last")));
    EXPECT_EQ(FileBytes(), PresetBytes(Presets()));
}

TEST_F(PresetSavingTest, OverwritingLeavesNothingOfTheOldPreset) {
    Presets() = {OfficePreset()};
    Enter("Office");
    for (const PresetCheck check : {ckCPMAC, ckCPIP, ckCPGateway, ckCPDNS}) editor.Click(check);
    machine.seat.answers = {BoxAnswer::kYes};
    Save();
    EXPECT_THAT(Presets(), ElementsAre(BarePreset("Office")));
}

TEST_F(PresetSavingTest, NoOrCancelSelectsTheNameAndChangesNothing) {
    const std::vector<PresetRecord> presets = {DhcpPreset(), OfficePreset()};
    for (const BoxAnswer answer : {BoxAnswer::kNo, BoxAnswer::kCancel}) {
        Presets() = presets;
        Enter();
        editor.Type("office");
        editor.Click(ckCPDNS);
        machine.seat.answers = {answer};
        Save();
        EXPECT_THAT(diary, ElementsAre("box Overwrite Existing Preset ?", "select name"));
        EXPECT_EQ(Presets(), presets);
        EXPECT_TRUE(editor.rules.Active());
        EXPECT_THAT(editor.Ticks(), ElementsAre("ckCPMAC", "ckCPIP", "ckCPGateway"));
    }
    EXPECT_THAT(machine.seat.boxes, ElementsAre(OverwriteQuestion("office"), OverwriteQuestion("office")));
    EXPECT_THAT(folder.Names(), IsEmpty());
}

TEST_F(PresetSavingTest, NamesThatDifferByABlankAreTwo) {
    Presets() = {OfficePreset()};
    Enter();
    EXPECT_EQ(SaveAs("Office "), BarePreset("Office "));
    Enter();
    EXPECT_EQ(SaveAs(" "), BarePreset(" "));
    EXPECT_THAT(Presets(), ElementsAre(OfficePreset(), BarePreset("Office "), BarePreset(" ")));
    EXPECT_THAT(machine.seat.boxes, ElementsAre(Saved("Office "), Saved(" ")));
}

// ---- the slot

TEST_F(PresetSavingTest, FirstPresetOfAFreshListUsesTheUnusedSlot) {
    Enter();
    SaveAs("First");
    EXPECT_THAT(Presets(), ElementsAre(BarePreset("First")));
    EXPECT_EQ(FileBytes().substr(0, 4), "\x01\0\0\0"s);
}

TEST_F(PresetSavingTest, NextPresetsGoToTheEnd) {
    Presets() = {OfficePreset()};
    Enter();
    SaveAs("Second");
    Enter();
    SaveAs("Third");
    EXPECT_THAT(Presets(), ElementsAre(OfficePreset(), BarePreset("Second"), BarePreset("Third")));
    EXPECT_EQ(FileBytes().substr(0, 4), "\x03\0\0\0"s);
}

TEST_F(PresetSavingTest, UnusedSlotsAmongOthersStay) {
    Presets() = {PresetRecord(), OfficePreset(), PresetRecord()};
    Enter();
    SaveAs("New");
    EXPECT_THAT(Presets(), ElementsAre(PresetRecord(), OfficePreset(), PresetRecord(), BarePreset("New")));
}

// ---- the record

TEST_F(PresetSavingTest, FlagsTellTheTicksInEveryCombination) {
    for (unsigned ticks = 0; ticks < 1U << kPresetChecks; ++ticks) {
        Presets().assign(1, PresetRecord());
        Enter();
        for (std::size_t i = 0; i < kPresetChecks; ++i) editor.ticks[i] = (ticks >> i & 1U) != 0;
        const bool mac = editor.Ticked(ckCPMAC);
        const bool dhcp = editor.Ticked(ckCPDHCP);
        const int flags = (dhcp ? 1 : 0) + (mac ? 2 : 0) + (mac && editor.Ticked(ckCPRanMAC) ? 4 : 0) +
                          (!dhcp && editor.Ticked(ckCPIP) ? 8 : 0) +
                          (!dhcp && editor.Ticked(ckCPGateway) ? 16 : 0) + (editor.Ticked(ckCPDNS) ? 32 : 0);
        EXPECT_EQ(SaveAs("Some").Flags, flags) << testing::PrintToString(editor.Ticks());
    }
}

TEST_F(PresetSavingTest, WithoutTicksNothingOfWhatWasEnteredIsStored) {
    Enter();
    EnterLists();
    editor.FillOctets({"02", "AA", "BB", "CC", "DD", "EE"});
    EXPECT_EQ(SaveAs("Bare"), BarePreset("Bare"));
}

TEST_F(PresetSavingTest, TickedListsAreStoredInTheirOrder) {
    Enter();
    EnterLists();
    for (const PresetCheck check : {ckCPIP, ckCPGateway, ckCPDNS}) editor.Click(check);
    PresetRecord expected = NamedPreset("Lists", 8 + 16 + 32);
    expected.IpAddresses = {"10.0.0.5", "192.168.1.9"};
    expected.SubnetMasks = {"255.0.0.0", "255.255.255.0"};
    expected.Gateways = {"10.0.0.1", "10.0.0.2"};
    expected.GatewayMetrics = {"20", "Automatic"};
    expected.DnsServers = {"9.9.9.9", "1.1.1.1"};
    EXPECT_EQ(SaveAs("Lists"), expected);
}

TEST_F(PresetSavingTest, TickedListsWithoutEntriesLeaveOneElementEach) {
    Enter();
    for (const PresetCheck check : {ckCPIP, ckCPGateway, ckCPDNS}) editor.Click(check);
    EXPECT_EQ(SaveAs("Empty"), BarePreset("Empty", 8 + 16 + 32));
}

TEST_F(PresetSavingTest, DhcpStoresOneNullAddressThoughAddressesAndGatewaysWereTickedBefore) {
    Enter();
    EnterLists();
    for (const PresetCheck check : {ckCPIP, ckCPGateway, ckCPDHCP}) editor.Click(check);
    EXPECT_EQ(SaveAs("Dhcp"), BarePreset("Dhcp", 1));
}

TEST_F(PresetSavingTest, DhcpPresetCarriesDnsServersToo) {
    Enter();
    EnterLists();
    editor.Click(ckCPDHCP);
    editor.Click(ckCPDNS);
    PresetRecord expected = BarePreset("Dhcp", 1 + 32);
    expected.DnsServers = {"9.9.9.9", "1.1.1.1"};
    EXPECT_EQ(SaveAs("Dhcp"), expected);
}

TEST_F(PresetSavingTest, GivenMacIsTheOctetsOfTheEditorJoined) {
    Enter();
    editor.Click(ckCPMAC);
    editor.FillOctets({"02", "AA", "BB", "CC", "DD", "EE"});
    PresetRecord expected = BarePreset("Given", 2);
    expected.Mac = "02-AA-BB-CC-DD-EE";
    EXPECT_EQ(SaveAs("Given"), expected);
}

TEST_F(PresetSavingTest, MissingDigitsOfTheMacAreZeros) {
    Enter();
    editor.Click(ckCPMAC);
    editor.FillOctets({"02", "", "3", "CC", "", "EE"});
    EXPECT_EQ(SaveAs("Padded").Mac, "02-00-03-CC-00-EE");
}

TEST_F(PresetSavingTest, NoOctetsAtAllMeanTheOriginalMac) {
    Enter();
    editor.Click(ckCPMAC);
    EXPECT_EQ(SaveAs("None"), BarePreset("None", 2));
}

TEST_F(PresetSavingTest, OriginalMacIsAnEmptyTextWhateverTheOctets) {
    Enter();
    editor.Click(ckCPMAC);
    editor.FillOctets({"02", "AA", "BB", "CC", "DD", "EE"});
    editor.Click(ckCPDefMAC);
    EXPECT_EQ(SaveAs("Original"), BarePreset("Original", 2));
}

TEST_F(PresetSavingTest, RandomMacIsItsBitAndAnEmptyTextWhateverTheOctets) {
    Enter();
    editor.Click(ckCPMAC);
    editor.FillOctets({"02", "AA", "BB", "CC", "DD", "EE"});
    editor.Click(ckCPRanMAC);
    EXPECT_EQ(SaveAs("Random"), BarePreset("Random", 2 + 4));
}

TEST_F(PresetSavingTest, RandomMacIsNotStoredWithoutTheMacAddress) {
    Enter();
    editor.Click(ckCPMAC);
    editor.Click(ckCPRanMAC);
    editor.Click(ckCPMAC);
    EXPECT_EQ(SaveAs("Not any more"), BarePreset("Not any more"));
}

TEST_F(PresetSavingTest, WhatWasSavedFillsTheEditorAgain) {
    Enter();
    EnterLists();
    for (const PresetCheck check : {ckCPMAC, ckCPIP, ckCPGateway, ckCPDNS}) editor.Click(check);
    editor.FillOctets({"02", "AA", "BB", "CC", "DD", "EE"});
    SaveAs("Whole");
    Enter("WHOLE");
    EXPECT_THAT(editor.Ticks(), ElementsAre("ckCPMAC", "ckCPIP", "ckCPGateway", "ckCPDNS"));
    EXPECT_THAT(editor.Octets(), ElementsAre("02", "AA", "BB", "CC", "DD", "EE"));
    EXPECT_EQ(editor.listIP.rows, kIpRows);
    EXPECT_EQ(editor.listGateway.rows, kGatewayRows);
    EXPECT_EQ(editor.listDNS.rows, kDnsRows);
}

// ---- the end

TEST_F(PresetSavingTest, EditorIsLeftTheListShownAnewAndTheUserTold) {
    Presets() = {OfficePreset()};
    Enter();
    editor.onRefreshPresetsList = [this] { EXPECT_EQ(FileBytes(), PresetBytes(Presets())); };
    SaveAs("New");
    EXPECT_THAT(diary, ElementsAre("editor off", "presets list Office,New", "box Preset Saved Successfully"));
    EXPECT_THAT(machine.seat.boxes, ElementsAre(Saved("New")));
    EXPECT_FALSE(editor.rules.Active());
}

TEST_F(PresetSavingTest, FileHoldsTheSavedPresetsByteForByte) {
    Enter();
    editor.listIP.rows = kIpRows;
    editor.listGateway.rows = {{"10.0.0.1", "20", 0}};
    editor.listDNS.rows = {{"9.9.9.9", "", 0}};
    for (const PresetCheck check : {ckCPMAC, ckCPIP, ckCPGateway, ckCPDNS}) editor.Click(check);
    editor.FillOctets({"02", "AA", "BB", "CC", "DD", "EE"});
    SaveAs("B\u00fcro");
    Enter();
    editor.Click(ckCPDHCP);
    SaveAs("D");

    const std::string office =
        "\x04\0B\xFCro"s + "\x3A" + "\x11\0"s + "02-AA-BB-CC-DD-EE" + "\x01\0\x02\0\0\0\0\0\0\0"s +
        "\x08\0"s + "10.0.0.5" + "\x0B\0"s + "192.168.1.9" + "\x01\0\x02\0\0\0\0\0\0\0"s + "\x09\0"s +
        "255.0.0.0" + "\x0D\0"s + "255.255.255.0" + "\x01\0\x01\0\0\0\0\0\0\0"s + "\x08\0"s + "10.0.0.1" +
        "\x01\0\x01\0\0\0\0\0\0\0"s + "\x02\0"s + "20" + "\x01\0\x01\0\0\0\0\0\0\0"s + "\x07\0"s + "9.9.9.9";
    const std::string one = "\x01\0\x01\0\0\0\0\0\0\0"s;
    const std::string dhcp = "\x01\0D"s + "\x01" + "\0\0"s + one + "\x07\0"s + "0.0.0.0" + one + "\x07\0"s +
                             "0.0.0.0" + one + "\0\0"s + one + "\0\0"s + one + "\0\0"s;
    EXPECT_EQ(FileBytes(), "\x02\0\0\0"s + office + dhcp);
}

TEST_F(PresetSavingTest, FailedFileIsReportedOnceAndTheListInMemoryKeepsThePreset) {
    Presets() = {OfficePreset()};
    Enter();
    editor.Type("Late\u4e2d");
    editor.rules.Save(folder / "none/");
    EXPECT_THAT(diary, ElementsAre("editor off", "box Orvella Corvane", "presets list Office,Late\u4e2d"));
    EXPECT_THAT(machine.seat.boxes,
                ElementsAre(Critical("Orvella Corvane", SaveFailureText(2, "No such file or directory",
                                                                        folder / "none/presets.npf"))));
    EXPECT_THAT(Presets(), ElementsAre(OfficePreset(), BarePreset("Late\u4e2d")));
    EXPECT_FALSE(editor.rules.Active());
}

TEST_F(PresetSavingTest, NameOutsideTheCodePageWarnsOfWhatWillBeReadBack) {
    Enter();
    EXPECT_EQ(SaveAs("Caf\u00e9 \u4e2d\u6587").Name, "Caf\u00e9 \u4e2d\u6587");
    EXPECT_THAT(
        machine.seat.warnings,
        ElementsAre(
            "The name 'Caf\u00e9 \u4e2d\u6587' has characters that the presets file cannot hold: from "
            "the next start on it reads 'Caf\u00e9 ?\?'"));
    EXPECT_THAT(machine.seat.boxes, ElementsAre(Saved("Caf\u00e9 \u4e2d\u6587")));
    ReadPresets(folder / "");
    EXPECT_EQ(Presets().front().Name, "Caf\u00e9 ??");
}

TEST_F(PresetSavingTest, NameInsideTheCodePageWarnsOfNothing) {
    Enter();
    SaveAs("B\u00fcro \u20ac");
    EXPECT_THAT(machine.seat.warnings, IsEmpty());
    ReadPresets(folder / "");
    EXPECT_EQ(Presets().front().Name, "B\u00fcro \u20ac");
}

}  // namespace
}  // namespace corvane
