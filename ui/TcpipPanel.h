#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <wx/panel.h>

#include "ui/AddressListBox.h"
#include "ui/logic/Details.h"
#include "ui/logic/PresetEditing.h"

class wxFlexGridSizer;

namespace corvane {

class AddDNSPanel;
class AddGatewayPanel;
class AddIPPanel;
class FactText;
class PresetEditor;

/// The TCP/IP set-up of the selected connection: its state, its lists of addresses, gateways and DNS servers
/// with their entry panels; or, in its place, the preset editor with the same lists.
class TcpipPanel : public wxPanel, private PresetEditorView {
 public:
    explicit TcpipPanel(wxWindow* parent);
    ~TcpipPanel() override;

    /// Runs a command, one at a time.
    std::function<void(const std::function<void()>& command)> Run;
    /// What editing works on now.
    std::function<EditingTarget()> Target;
    /// The panel's size has changed: what it lies in lays itself out anew.
    std::function<void()> OnLayout;
    /// An entry panel was closed.
    std::function<void()> OnClosed;
    /// The lists' commands were enabled or disabled.
    std::function<void()> OnCommands;
    /// A list got the focus.
    std::function<void(const wxWindow& list)> OnListFocus;
    /// An entry panel was opened.
    std::function<void(const wxWindow& panel)> OnPanel;
    /// Editing mode was entered or left: the connection's details and commands follow.
    std::function<void(bool editing)> OnEditing;
    /// The presets are other ones than before.
    std::function<void()> OnPresets;
    /// Folder of the presets file, ending in the separator.
    std::string programFolder;

    /// Shows a connection's settings; nothing in editing mode. Another connection's rows lose the selection.
    void Fill(const Details& details, bool sameConnection);
    /// Whether the lists can be edited, outside editing mode.
    void EnableLists(bool enable);
    /// Runs one of the lists' commands (ui/MainMenu.h). True if `command` is one of them.
    bool RunListCommand(int command);
    [[nodiscard]] bool ListCommandEnabled(int command) const;

    [[nodiscard]] bool PanelIsOpen() const;
    /// Escape: closes the entry panel that is open. False when there is none.
    bool Escape();

    [[nodiscard]] bool EditsPreset() const { return presets_.Active(); }
    void EditPreset(const std::string& name) { presets_.Enter(name); }

 private:
    // PresetEditorView
    void ShowEditor(bool editing) override;
    std::string PresetName() const override;
    void SetPresetName(const std::string& name) override;
    void FocusPresetName() override;
    void SelectPresetName() override;
    bool Ticked(PresetCheck check) const override;
    void SetTicked(PresetCheck check, bool ticked) override;
    void EnableCheck(PresetCheck check, bool enable) override;
    MacBoxesView& MacBoxes() override;
    void EnableMacBoxes(bool enable) override;
    AddressListView& ListIP() override { return *listIP_; }
    AddressListView& ListGateway() override { return *listGateway_; }
    AddressListView& ListDNS() override { return *listDNS_; }
    void EnableListCommands(PresetCheck list, bool enable) override;
    void RefreshPresetsList() override;

    wxSizer* MakeFacts();
    std::unique_ptr<AddressListBox> MakeList(const AddressListKind& kind);
    [[nodiscard]] std::vector<EntryPanel*> OpenPanels() const;
    /// Puts an entry panel below its list and ties it to the editing of that list.
    void AddPanel(EntryPanel* panel, AddressListBox& list, std::function<void(const EditingTarget&)> add);
    AddIPPanel& IPPanel();
    AddGatewayPanel& GatewayPanel();
    AddDNSPanel& DNSPanel();
    PresetEditor& Editor();
    void LayOut();

    wxPanel* facts_ = nullptr;
    FactText* labTCPIP_ = nullptr;
    FactText* labDHCP_ = nullptr;
    FactText* labLeaseObtained_ = nullptr;
    FactText* labLeaseExpires_ = nullptr;
    std::unique_ptr<AddressListBox> listIP_;
    std::unique_ptr<AddressListBox> listGateway_;
    std::unique_ptr<AddressListBox> listDNS_;
    // Made when they are asked for the first time.
    AddIPPanel* fAddIP_ = nullptr;
    AddGatewayPanel* fAddGateway_ = nullptr;
    AddDNSPanel* fAddDNS_ = nullptr;
    PresetEditor* editor_ = nullptr;
    PresetEditing presets_{*this};
};

}  // namespace corvane
