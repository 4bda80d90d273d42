#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "base/Text.h"
#include "tests/unit/AddressListSupport.h"
#include "tests/unit/CoreSupport.h"
#include "tests/unit/PresetsSupport.h"
#include "tests/unit/TempFolder.h"
#include "ui/logic/PresetCommands.h"
#include "ui/logic/PresetEditing.h"

/// The editor for presets in memory, and a user who works with it.
namespace corvane {

inline void PrintTo(const PresetRecord& record, std::ostream* out) {
    *out << "name [" << record.Name << "] flags " << static_cast<int>(record.Flags) << " mac [" << record.Mac
         << ']';
    for (const PresetList* list : {&record.IpAddresses, &record.SubnetMasks, &record.Gateways,
                                   &record.GatewayMetrics, &record.DnsServers}) {
        *out << (list->Allocated ? " {" : " none{") << Join(list->Items, ",") << '}';
    }
}

namespace test {

using enum PresetCheck;

inline constexpr std::size_t kPresetChecks = 7;

/// The octet boxes without any rule of typing.
class PlainBoxes : public MacBoxesView {
 public:
    std::array<std::string, 12> texts;

    [[nodiscard]] std::string Text(int box) const override { return texts.at(static_cast<std::size_t>(box)); }
    void SetText(int box, const std::string& text) override {
        EXPECT_GE(box, 6) << "not a box of the editor";
        EXPECT_LE(text.size(), 2U) << "box " << box << " gets " << text;
        texts.at(static_cast<std::size_t>(box)) = text;
    }
    [[nodiscard]] TextSelection Selection(int) const override { return {}; }
    void Select(int, TextSelection) override { ADD_FAILURE() << "selects in a box"; }
    void Focus(int) override { ADD_FAILURE() << "moves the focus to a box"; }
    void FocusRestartCheck() override { ADD_FAILURE() << "moves the focus to the other panel"; }
    void EnableChangeNow(bool) override { ADD_FAILURE() << "changes a button of the other panel"; }
    void Beep() override { ADD_FAILURE() << "beeps"; }
};

class EditorModel : public PresetEditorView {
 public:
    /// `userDiary` gets "editor on", "editor off", "focus name", "select name" and "presets list A,B".
    explicit EditorModel(std::vector<std::string>& userDiary) : diary(userDiary) { enabled.fill(true); }

    std::vector<std::string>& diary;
    std::string name;
    std::array<bool, kPresetChecks> ticks{};
    std::array<bool, kPresetChecks> enabled{};
    std::array<bool, kPresetChecks> listCommands{};
    bool boxesEnabled = false;
    PlainBoxes boxes;
    FakeAddressList listIP;
    FakeAddressList listGateway;
    FakeAddressList listDNS;
    std::function<void()> onRefreshPresetsList;

    PresetEditing rules{*this};

    // The user.

    void Type(const std::string& text) { SetPresetName(text); }
    void Click(PresetCheck check) {
        EXPECT_TRUE(enabled[At(check)]) << kNames[At(check)] << " cannot be clicked";
        ticks[At(check)] = !ticks[At(check)];
        rules.Clicked(check);
    }
    void FillOctets(const std::array<std::string, 6>& octets) {
        for (std::size_t i = 0; i < octets.size(); ++i) boxes.texts[6 + i] = octets[i];
    }

    // What is seen, as names of check boxes in their order.

    [[nodiscard]] std::vector<std::string> Ticks() const { return NamesOf(ticks, true); }
    [[nodiscard]] std::vector<std::string> Disabled() const { return NamesOf(enabled, false); }
    /// The lists that can be edited.
    [[nodiscard]] std::vector<std::string> Editable() const { return NamesOf(listCommands, true); }
    /// The editor's octets.
    [[nodiscard]] std::vector<std::string> Octets() const {
        return {boxes.texts.begin() + 6, boxes.texts.end()};
    }

    // What the rules see.

    void ShowEditor(bool editing) override { diary.emplace_back(editing ? "editor on" : "editor off"); }
    [[nodiscard]] std::string PresetName() const override { return name; }
    void SetPresetName(const std::string& text) override {
        if (text == name) return;
        name = text;
        rules.NameChanged();
    }
    void FocusPresetName() override { diary.emplace_back("focus name"); }
    void SelectPresetName() override { diary.emplace_back("select name"); }
    [[nodiscard]] bool Ticked(PresetCheck check) const override { return ticks[At(check)]; }
    void SetTicked(PresetCheck check, bool ticked) override { ticks[At(check)] = ticked; }
    void EnableCheck(PresetCheck check, bool enable) override { enabled[At(check)] = enable; }
    [[nodiscard]] MacBoxesView& MacBoxes() override { return boxes; }
    void EnableMacBoxes(bool enable) override { boxesEnabled = enable; }
    [[nodiscard]] AddressListView& ListIP() override { return listIP; }
    [[nodiscard]] AddressListView& ListGateway() override { return listGateway; }
    [[nodiscard]] AddressListView& ListDNS() override { return listDNS; }
    void EnableListCommands(PresetCheck list, bool enable) override {
        EXPECT_TRUE(list == ckCPIP || list == ckCPGateway || list == ckCPDNS);
        listCommands[At(list)] = enable;
    }
    void RefreshPresetsList() override {
        std::vector<std::string> shown;
        for (const PresetEntry& entry : PresetEntries()) shown.push_back(entry.name);
        diary.push_back("presets list " + Join(shown, ","));
        if (onRefreshPresetsList) onRefreshPresetsList();
    }

 private:
    static constexpr std::array<const char*, kPresetChecks> kNames = {
        "ckCPMAC", "ckCPRanMAC", "ckCPDefMAC", "ckCPDHCP", "ckCPIP", "ckCPGateway", "ckCPDNS"};

    static std::size_t At(PresetCheck check) { return static_cast<std::size_t>(check); }
    static std::vector<std::string> NamesOf(const std::array<bool, kPresetChecks>& states, bool wanted) {
        std::vector<std::string> names;
        for (std::size_t i = 0; i < states.size(); ++i) {
            if (states[i] == wanted) names.emplace_back(kNames[i]);
        }
        return names;
    }
};

inline PresetRecord NamedPreset(const std::string& name, int flags = 0) {
    PresetRecord record;
    record.Name = name;
    record.Flags = static_cast<std::uint8_t>(flags);
    return record;
}

inline const std::vector<std::string> kEmptyOctets(6);

/// An editor that shows the state after some work, and a folder for the file.
class PresetEditorTest : public testing::Test {
 protected:
    PresetEditorTest() {
        editor.ticks.fill(true);
        editor.boxes.texts = {"00", "0C", "29", "4F", "8E", "35", "A0", "A1", "A2", "A3", "A4", "A5"};
        editor.listIP.rows = {{"172.16.0.1", "255.255.0.0", 0}};
        editor.listGateway.rows = {{"172.16.0.9", "7", 0}};
        editor.listDNS.rows = {{"172.16.0.8", "", 0}};
    }

    /// Enters editing mode; the diary begins after it.
    void Enter(const std::string& name = "") {
        editor.rules.Enter(name);
        diary.clear();
    }
    void Save() { editor.rules.Save(folder / ""); }

    FakeMachine machine;
    TempFolder folder;
    std::vector<std::string>& diary = machine.seat.diary;
    EditorModel editor{diary};
};

}  // namespace test
}  // namespace corvane
