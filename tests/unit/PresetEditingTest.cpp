#include "tests/unit/PresetEditorSupport.h"

namespace corvane {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

using Rows = std::vector<DetailsRow>;

/// Entering, the check boxes and the name.
class PresetEditingTest : public PresetEditorTest {
 protected:
    void ExpectEmptyEditor() {
        EXPECT_THAT(editor.Ticks(), IsEmpty());
        EXPECT_EQ(editor.Octets(), kEmptyOctets);
        EXPECT_THAT(editor.listIP.rows, IsEmpty());
        EXPECT_THAT(editor.listGateway.rows, IsEmpty());
        EXPECT_THAT(editor.listDNS.rows, IsEmpty());
        EXPECT_EQ(editor.listIP.header, "IP Address (0)");
        EXPECT_EQ(editor.listGateway.header, "Gateway (0)");
        EXPECT_EQ(editor.listDNS.header, "DNS Server (0)");
        EXPECT_THAT(editor.Disabled(), ElementsAre("ckCPRanMAC", "ckCPDefMAC"));
        EXPECT_FALSE(editor.boxesEnabled);
        EXPECT_THAT(editor.Editable(), IsEmpty());
    }

    /// Enters and types the name of a preset that is only that.
    void Fill(const PresetRecord& preset) {
        Presets() = {preset};
        Enter();
        editor.Type(preset.Name);
    }
};

// ---- entering and leaving

TEST_F(PresetEditingTest, NothingIsEditedAtFirst) { EXPECT_FALSE(editor.rules.Active()); }

TEST_F(PresetEditingTest, EnteringShowsAnEmptyEditorWithTheFocusInTheName) {
    editor.name = "Old";
    editor.rules.Enter();
    EXPECT_TRUE(editor.rules.Active());
    EXPECT_THAT(diary, ElementsAre("editor on", "focus name"));
    EXPECT_EQ(editor.name, "");
    ExpectEmptyEditor();
}

TEST_F(PresetEditingTest, EnteringLeavesTheBoxesOfTheOtherPanel) {
    Enter();
    EXPECT_THAT((std::vector(editor.boxes.texts.begin(), editor.boxes.texts.begin() + 6)),
                ElementsAre("00", "0C", "29", "4F", "8E", "35"));
}

TEST_F(PresetEditingTest, EnteringWithTheNameOfAPresetShowsIt) {
    Presets() = {OfficePreset()};
    editor.rules.Enter("Office");
    EXPECT_EQ(editor.name, "Office");
    EXPECT_THAT(editor.Ticks(), ElementsAre("ckCPMAC", "ckCPIP", "ckCPGateway", "ckCPDNS"));
    EXPECT_THAT(diary, ElementsAre("editor on", "focus name"));
}

TEST_F(PresetEditingTest, EnteringAgainWithTheSameNameShowsThePresetAnew) {
    Presets() = {OfficePreset()};
    Enter("Office");
    editor.Click(ckCPDNS);
    editor.listIP.rows.clear();
    editor.rules.Leave();
    Enter("Office");
    EXPECT_THAT(editor.Ticks(), ElementsAre("ckCPMAC", "ckCPIP", "ckCPGateway", "ckCPDNS"));
    EXPECT_EQ(editor.listIP.rows.size(), 2U);
}

TEST_F(PresetEditingTest, EnteringWithANameThatNoPresetHasKeepsTheNameAlone) {
    Presets() = {OfficePreset()};
    Enter("Garage");
    EXPECT_EQ(editor.name, "Garage");
    ExpectEmptyEditor();
}

TEST_F(PresetEditingTest, LeavingKeepsNothing) {
    Presets() = {OfficePreset()};
    Enter("Office");
    editor.Type("Elsewhere");
    editor.Click(ckCPDNS);
    editor.rules.Leave();
    EXPECT_FALSE(editor.rules.Active());
    EXPECT_THAT(diary, ElementsAre("editor off"));
    EXPECT_EQ(Presets(), std::vector{OfficePreset()});
    EXPECT_THAT(folder.Names(), IsEmpty());
}

// ---- check boxes

TEST_F(PresetEditingTest, DhcpExcludesAddressesAndGateways) {
    Enter();
    editor.Click(ckCPMAC);
    editor.Click(ckCPDHCP);
    EXPECT_THAT(editor.Disabled(), ElementsAre("ckCPIP", "ckCPGateway"));
    editor.Click(ckCPDHCP);
    EXPECT_THAT(editor.Disabled(), IsEmpty());
}

TEST_F(PresetEditingTest, ListsThatDhcpExcludesCannotBeEditedMeanwhile) {
    Enter();
    for (const PresetCheck list : {ckCPIP, ckCPGateway, ckCPDNS}) editor.Click(list);
    editor.Click(ckCPDHCP);
    EXPECT_THAT(editor.Editable(), ElementsAre("ckCPDNS"));
    EXPECT_THAT(editor.Ticks(), ElementsAre("ckCPDHCP", "ckCPIP", "ckCPGateway", "ckCPDNS"));
    editor.Click(ckCPDHCP);
    EXPECT_THAT(editor.Editable(), ElementsAre("ckCPIP", "ckCPGateway", "ckCPDNS"));
}

TEST_F(PresetEditingTest, MacAddressHasItsOptionsAndOctetsWhileItIsTicked) {
    Enter();
    editor.Click(ckCPMAC);
    EXPECT_THAT(editor.Disabled(), IsEmpty());
    EXPECT_TRUE(editor.boxesEnabled);
    editor.Click(ckCPMAC);
    EXPECT_THAT(editor.Disabled(), ElementsAre("ckCPRanMAC", "ckCPDefMAC"));
    EXPECT_FALSE(editor.boxesEnabled);
}

TEST_F(PresetEditingTest, RandomMacNeedsNoOctets) {
    Enter();
    editor.Click(ckCPMAC);
    editor.Click(ckCPRanMAC);
    EXPECT_FALSE(editor.boxesEnabled);
    editor.Click(ckCPRanMAC);
    EXPECT_TRUE(editor.boxesEnabled);
}

TEST_F(PresetEditingTest, OriginalMacNeedsNoOctets) {
    Enter();
    editor.Click(ckCPMAC);
    editor.Click(ckCPDefMAC);
    EXPECT_FALSE(editor.boxesEnabled);
    editor.Click(ckCPDefMAC);
    EXPECT_TRUE(editor.boxesEnabled);
}

TEST_F(PresetEditingTest, RandomAndOriginalMacExcludeEachOther) {
    Enter();
    editor.Click(ckCPMAC);
    editor.Click(ckCPRanMAC);
    editor.Click(ckCPDefMAC);
    EXPECT_THAT(editor.Ticks(), ElementsAre("ckCPMAC", "ckCPDefMAC"));
    editor.Click(ckCPRanMAC);
    EXPECT_THAT(editor.Ticks(), ElementsAre("ckCPMAC", "ckCPRanMAC"));
    EXPECT_FALSE(editor.boxesEnabled);
    EXPECT_THAT(editor.Disabled(), IsEmpty());
}

TEST_F(PresetEditingTest, OptionOfTheMacAddressStaysWhileItIsNotTicked) {
    Enter();
    editor.Click(ckCPMAC);
    editor.Click(ckCPRanMAC);
    editor.Click(ckCPMAC);
    EXPECT_THAT(editor.Disabled(), ElementsAre("ckCPRanMAC", "ckCPDefMAC"));
    editor.Click(ckCPMAC);
    EXPECT_THAT(editor.Ticks(), ElementsAre("ckCPMAC", "ckCPRanMAC"));
    EXPECT_FALSE(editor.boxesEnabled);
}

TEST_F(PresetEditingTest, EachListIsEditedWhileItsBoxIsTicked) {
    Enter();
    const std::pair<PresetCheck, std::string> lists[] = {
        {ckCPIP, "ckCPIP"}, {ckCPGateway, "ckCPGateway"}, {ckCPDNS, "ckCPDNS"}};
    for (const auto& [list, name] : lists) {
        editor.Click(list);
        EXPECT_THAT(editor.Editable(), ElementsAre(name));
        editor.Click(list);
        EXPECT_THAT(editor.Editable(), IsEmpty()) << name;
    }
}

// ---- the name

TEST_F(PresetEditingTest, NameOfAPresetFillsTheEditor) {
    Presets() = {DhcpPreset(), OfficePreset()};
    Enter();
    editor.Type("Office");
    EXPECT_THAT(editor.Ticks(), ElementsAre("ckCPMAC", "ckCPIP", "ckCPGateway", "ckCPDNS"));
    EXPECT_THAT(editor.Octets(), ElementsAre("00", "0C", "29", "12", "AB", "FF"));
    EXPECT_EQ(editor.listIP.rows, (Rows{{"192.168.1.10", "255.255.255.0", 0}, {"10.0.0.7", "255.0.0.0", 1}}));
    EXPECT_EQ(editor.listGateway.rows, (Rows{{"192.168.1.1", "20", 0}}));
    EXPECT_EQ(editor.listDNS.rows, (Rows{{"192.168.1.1", "", 0}, {"9.9.9.9", "", 1}}));
    EXPECT_EQ(editor.listIP.header, "IP Address (2)");
    EXPECT_EQ(editor.listGateway.header, "Gateway (1)");
    EXPECT_EQ(editor.listDNS.header, "DNS Server (2)");
}

TEST_F(PresetEditingTest, LetterCaseOfTheNameDoesNotMatterAndStaysAsTyped) {
    Presets() = {OfficePreset()};
    Enter();
    editor.Type("oFFICE");
    EXPECT_THAT(editor.Ticks(), ElementsAre("ckCPMAC", "ckCPIP", "ckCPGateway", "ckCPDNS"));
    EXPECT_EQ(editor.name, "oFFICE");
}

TEST_F(PresetEditingTest, WholeNamesAreComparedWithTheirBlanks) {
    Presets() = {OfficePreset()};
    Enter();
    for (const char* name : {"Offic", "Office ", " Office", "Office2"}) {
        editor.Type(name);
        EXPECT_THAT(editor.Ticks(), IsEmpty()) << name;
    }
}

TEST_F(PresetEditingTest, EachBitTicksItsBox) {
    const std::pair<int, std::string> boxes[] = {
        {1, "ckCPDHCP"}, {8, "ckCPIP"}, {16, "ckCPGateway"}, {32, "ckCPDNS"}};
    for (const auto& [bit, box] : boxes) {
        Fill(NamedPreset("One", bit));
        EXPECT_THAT(editor.Ticks(), ElementsAre(box));
        Enter();
    }
}

TEST_F(PresetEditingTest, MacOfThePresetIsSplitIntoTheOctetBoxes) {
    PresetRecord preset = NamedPreset("Mac", 2);
    preset.Mac = "02-AA-BB-CC-DD-EE";
    Fill(preset);
    EXPECT_THAT(editor.Ticks(), ElementsAre("ckCPMAC"));
    EXPECT_THAT(editor.Octets(), ElementsAre("02", "AA", "BB", "CC", "DD", "EE"));
    EXPECT_TRUE(editor.boxesEnabled);
    EXPECT_THAT(editor.Disabled(), IsEmpty());
}

TEST_F(PresetEditingTest, MacWithFewerOrMoreOctetsFillsTheBoxesThatThereAre) {
    PresetRecord preset = NamedPreset("Mac", 2);
    preset.Mac = "02-AA";
    Fill(preset);
    EXPECT_THAT(editor.Octets(), ElementsAre("02", "AA", "", "", "", ""));
    preset.Mac = "02-AA-BB-CC-DD-EE-FF-11";
    Fill(preset);
    EXPECT_THAT(editor.Octets(), ElementsAre("02", "AA", "BB", "CC", "DD", "EE"));
}

TEST_F(PresetEditingTest, EmptyMacOfThePresetTicksOriginal) {
    Fill(NamedPreset("Original", 2));
    EXPECT_THAT(editor.Ticks(), ElementsAre("ckCPMAC", "ckCPDefMAC"));
    EXPECT_EQ(editor.Octets(), kEmptyOctets);
    EXPECT_FALSE(editor.boxesEnabled);
}

TEST_F(PresetEditingTest, RandomBitOfThePresetTicksRandomWhateverItsMac) {
    PresetRecord preset = NamedPreset("Random", 2 + 4);
    for (const char* mac : {"", "02-AA-BB-CC-DD-EE"}) {
        preset.Mac = mac;
        Fill(preset);
        EXPECT_THAT(editor.Ticks(), ElementsAre("ckCPMAC", "ckCPRanMAC"));
        EXPECT_EQ(editor.Octets(), kEmptyOctets);
        EXPECT_FALSE(editor.boxesEnabled);
    }
}

TEST_F(PresetEditingTest, RandomBitAndMacCountOnlyWithTheBitOfTheMacAddress) {
    PresetRecord preset = NamedPreset("Odd", 4);
    preset.Mac = "02-AA-BB-CC-DD-EE";
    Fill(preset);
    ExpectEmptyEditor();
}

TEST_F(PresetEditingTest, EmptyEntriesOfThePresetAreSkippedWithTheirNeighbours) {
    PresetRecord preset = NamedPreset("Gaps", 8 + 16 + 32);
    preset.IpAddresses = {"", "10.0.0.5", "", "10.0.0.6"};
    preset.SubnetMasks = {"1.1.1.1", "255.0.0.0", "2.2.2.2", "255.255.0.0"};
    preset.Gateways = {"10.0.0.1", "", "10.0.0.2"};
    preset.GatewayMetrics = {"3", "4", "5"};
    preset.DnsServers = {"", "9.9.9.9", ""};
    Fill(preset);
    EXPECT_EQ(editor.listIP.rows, (Rows{{"10.0.0.5", "255.0.0.0", 1}, {"10.0.0.6", "255.255.0.0", 3}}));
    EXPECT_EQ(editor.listGateway.rows, (Rows{{"10.0.0.1", "3", 0}, {"10.0.0.2", "5", 2}}));
    EXPECT_EQ(editor.listDNS.rows, (Rows{{"9.9.9.9", "", 1}}));
    EXPECT_EQ(editor.listIP.header, "IP Address (2)");
}

TEST_F(PresetEditingTest, MissingMasksAndMetricsShowAsEmptyTexts) {
    PresetRecord preset = NamedPreset("Short", 8 + 16);
    preset.IpAddresses = {"10.0.0.5", "10.0.0.6"};
    preset.SubnetMasks = {"255.0.0.0"};
    preset.Gateways = {"10.0.0.1"};
    Fill(preset);
    EXPECT_EQ(editor.listIP.rows, (Rows{{"10.0.0.5", "255.0.0.0", 0}, {"10.0.0.6", "", 1}}));
    EXPECT_EQ(editor.listGateway.rows, (Rows{{"10.0.0.1", "", 0}}));
}

TEST_F(PresetEditingTest, ListsAreShownWhateverTheBits) {
    PresetRecord preset = OfficePreset();
    preset.Flags = 0;
    Fill(preset);
    EXPECT_THAT(editor.Ticks(), IsEmpty());
    EXPECT_EQ(editor.listIP.rows.size(), 2U);
    EXPECT_EQ(editor.listGateway.rows.size(), 1U);
    EXPECT_EQ(editor.listDNS.rows.size(), 2U);
    EXPECT_THAT(editor.Editable(), IsEmpty());
}

TEST_F(PresetEditingTest, DhcpPresetExcludesAddressesAndShowsTheOneItStores) {
    Fill(DhcpPreset());
    EXPECT_THAT(editor.Ticks(), ElementsAre("ckCPDHCP"));
    EXPECT_THAT(editor.Disabled(), ElementsAre("ckCPRanMAC", "ckCPDefMAC", "ckCPIP", "ckCPGateway"));
    EXPECT_EQ(editor.listIP.rows, (Rows{{"0.0.0.0", "0.0.0.0", 0}}));
    EXPECT_THAT(editor.listGateway.rows, IsEmpty());
    EXPECT_THAT(editor.listDNS.rows, IsEmpty());
}

TEST_F(PresetEditingTest, ListsOfTheFilledEditorCanBeEditedAsTicked) {
    Fill(OfficePreset());
    EXPECT_THAT(editor.Editable(), ElementsAre("ckCPIP", "ckCPGateway", "ckCPDNS"));
}

TEST_F(PresetEditingTest, NothingOfTheFormerPresetStays) {
    Presets() = {OfficePreset(), NamedPreset("Bare", 32)};
    Enter("Office");
    editor.Type("Bare");
    EXPECT_THAT(editor.Ticks(), ElementsAre("ckCPDNS"));
    EXPECT_EQ(editor.Octets(), kEmptyOctets);
    EXPECT_THAT(editor.listIP.rows, IsEmpty());
    EXPECT_THAT(editor.listGateway.rows, IsEmpty());
    EXPECT_THAT(editor.listDNS.rows, IsEmpty());
    EXPECT_EQ(editor.name, "Bare");
}

TEST_F(PresetEditingTest, AnotherNameKeepsWhatWasEntered) {
    Presets() = {OfficePreset()};
    Enter("Office");
    editor.Type("Office 2");
    EXPECT_THAT(editor.Ticks(), ElementsAre("ckCPMAC", "ckCPIP", "ckCPGateway", "ckCPDNS"));
    EXPECT_EQ(editor.listIP.rows.size(), 2U);
}

TEST_F(PresetEditingTest, EmptyNameIsNotThatOfAnUnusedSlot) {
    Presets() = {PresetRecord(), OfficePreset()};
    Enter("Office");
    editor.Type("");
    EXPECT_THAT(editor.Ticks(), ElementsAre("ckCPMAC", "ckCPIP", "ckCPGateway", "ckCPDNS"));
    EXPECT_EQ(editor.listIP.rows.size(), 2U);
}

TEST_F(PresetEditingTest, NameFillsNothingOutsideEditing) {
    Presets() = {OfficePreset(), DhcpPreset()};
    Enter("Office");
    editor.rules.Leave();
    editor.Type("At home");
    EXPECT_THAT(editor.Ticks(), ElementsAre("ckCPMAC", "ckCPIP", "ckCPGateway", "ckCPDNS"));
}

}  // namespace
}  // namespace corvane
