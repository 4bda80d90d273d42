#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "presets/PresetRecord.h"
#include "ui/logic/AddressList.h"
#include "ui/logic/VendorEntry.h"

/// The editing mode for presets: naming one, ticking what it carries, entering it, saving it.
namespace corvane {

/// The check boxes of the editor, named after what they stand for.
enum class PresetCheck : std::uint8_t {
    ckCPMAC,
    ckCPRanMAC,
    ckCPDefMAC,
    ckCPDHCP,
    ckCPIP,
    ckCPGateway,
    ckCPDNS
};

/// The editor in the window. Ticking by SetTicked tells nobody.
class PresetEditorView {
 public:
    virtual ~PresetEditorView() = default;
    /// Switches the TCP/IP panel between the connection's settings and the editor. While the editor is shown,
    /// the list of connections and everything that changes a connection is disabled.
    virtual void ShowEditor(bool editing) = 0;
    /// The box of the preset's name. When the text is another one than before, PresetEditing::NameChanged
    /// runs before SetPresetName returns.
    [[nodiscard]] virtual std::string PresetName() const = 0;
    virtual void SetPresetName(const std::string& name) = 0;
    virtual void FocusPresetName() = 0;
    /// Focuses it and selects its text.
    virtual void SelectPresetName() = 0;
    [[nodiscard]] virtual bool Ticked(PresetCheck check) const = 0;
    virtual void SetTicked(PresetCheck check, bool ticked) = 0;
    virtual void EnableCheck(PresetCheck check, bool enable) = 0;
    /// The octet boxes, of which the editor's are numbers 6 to 11.
    [[nodiscard]] virtual MacBoxesView& MacBoxes() = 0;
    virtual void EnableMacBoxes(bool enable) = 0;
    [[nodiscard]] virtual AddressListView& ListIP() = 0;
    [[nodiscard]] virtual AddressListView& ListGateway() = 0;
    [[nodiscard]] virtual AddressListView& ListDNS() = 0;
    /// The commands that add to, remove from and order the list of ckCPIP, ckCPGateway or ckCPDNS.
    virtual void EnableListCommands(PresetCheck list, bool enable) = 0;
    /// Shows the names of Presets() in the list of presets.
    virtual void RefreshPresetsList() = 0;
};

class PresetEditing {
 public:
    /// `editor` must outlive this.
    explicit PresetEditing(PresetEditorView& editor) : editor_(editor) {}

    [[nodiscard]] bool Active() const { return active_; }

    /// The button and menu item that create or edit a preset: enters editing mode with an empty editor, or
    /// one filled from the preset of that name.
    void Enter(const std::string& name = "");

    /// "Leave": leaves editing mode; nothing is kept.
    void Leave();

    /// The name changed: the name of a preset, in any letter case, fills the editor from it.
    void NameChanged();

    /// A check box was clicked. DHCP excludes addresses and gateways; the options of the MAC address need
    /// ckCPMAC and exclude each other and the octet boxes; each list is edited while its box is ticked.
    void Clicked(PresetCheck check);

    /// "Save Preset": saves under the name that was entered, after a question when a preset has that name in
    /// any letter case. Leaves editing mode, writes the presets file and reports. A file that cannot be
    /// written has been reported in a box; the list in memory keeps the preset.
    void Save(const std::string& programFolder);

 private:
    void Reset();
    void Fill(const PresetRecord& preset);
    void FillMac(const std::string& mac);
    void UpdateEnabled();
    /// The preset's position, made if it is new; nothing when the user does not want it overwritten.
    [[nodiscard]] std::optional<std::size_t> Slot(const std::string& name);
    [[nodiscard]] PresetRecord Record(const std::string& name) const;
    [[nodiscard]] std::string EnteredMac() const;

    PresetEditorView& editor_;
    bool active_ = false;
};

}  // namespace corvane
