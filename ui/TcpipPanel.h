#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <wx/panel.h>

#include "ui/AddressListBox.h"
#include "ui/PresetEditor.h"
#include "ui/logic/Details.h"
#include "ui/logic/PresetEditing.h"

class wxFlexGridSizer;

namespace corvane {

class AddDNSPanel;
class AddGatewayPanel;
class AddIPPanel;
class DetailsHost;
class FactText;
class WindowHost;

/// The TCP/IP set-up of the selected connection: its state, its lists of addresses, gateways and DNS servers
/// with their entry panels; or, in its place, the preset editor with the same lists.
class TcpipPanel : public wxPanel,
                   private PresetEditorView,
                   private AddressListHost,
                   private EntryPanelHost,
                   private PresetEditorHost {
 public:
    TcpipPanel(wxWindow* parent, WindowHost& window, DetailsHost& details);
    ~TcpipPanel() override;

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

    // AddressListHost
    void ListCommandsChanged() override;
    void ListFocused(const wxWindow& list) override;

    // EntryPanelHost
    void Run(const std::function<void()>& command) override;
    [[nodiscard]] EditingTarget Target() const override;
    void PanelOpens(const EntryPanel& panel) override;
    void PanelShown(const EntryPanel& panel) override;
    void PanelClosed(const EntryPanel& panel) override;

    // PresetEditorHost
    void NameChanged() override;
    void CheckClicked(PresetCheck check) override;
    void SavePressed() override;
    void LeavePressed() override;

    wxSizer* MakeFacts();
    std::unique_ptr<AddressListBox> MakeList(const AddressListKind& kind);
    [[nodiscard]] std::vector<EntryPanel*> OpenPanels() const;
    /// The list that a panel enters something for.
    [[nodiscard]] AddressListBox& ListOf(const EntryPanel& panel) const;
    AddIPPanel& IPPanel();
    AddGatewayPanel& GatewayPanel();
    AddDNSPanel& DNSPanel();
    PresetEditor& Editor();
    void LayOut();

    WindowHost& window_;
    DetailsHost& details_;
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
