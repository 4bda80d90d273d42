#include <exception>
#include <string>
#include <utility>

#include <wx/filedlg.h>
#include <wx/menu.h>

#include "inventory/NicInfo.h"
#include "platform/Seat.h"
#include "tcpip/DhcpOperations.h"
#include "ui/ChangeMacPanel.h"
#include "ui/CommandBar.h"
#include "ui/DetailsPanel.h"
#include "ui/MainMenu.h"
#include "ui/PresetsPanel.h"
#include "ui/TcpipPanel.h"
#include "ui/VendorBox.h"
#include "ui/WxText.h"
#include "ui/frmAboutUs.h"
#include "ui/frmMain.h"
#include "ui/logic/MacChange.h"
#include "ui/logic/OpenPages.h"
#include "ui/logic/ReportExport.h"

/// The commands of the main window: what menus, buttons and panels do.
namespace corvane {

void frmMain::BindCommands() {
    BindCommand(mnuRefresh, [this] {
        RefreshConnections();
        ShowStatus("The connections were read anew.");
    });
    BindCommand(mnuExportTextReportAs, [this] { ExportReport(); });
    for (const int id : {mnuShowHelp, mnuHelp}) BindCommand(id, [this] { OpenHelp(facts_.folder); });
    BindCommand(mnuOrvellaWebsite, OpenWebsite);
    BindCommand(mnuCheckUpdates, OpenUpdates);
    BindCommand(mnuDonate, OpenDonations);
    for (const int id : {mnuAboutUs, mnuRAboutUs}) BindCommand(id, [this] { ShowAbout(); });
    BindConnectionCommand(mnuChangeMAC, [this](std::size_t adapter) { OpenChangeMacPanel(adapter); });
    BindConnectionCommand(mnuEnable,
                          [this](std::size_t adapter) { EnableOrDisable(adapter, details_.enables); });
    BindConnectionCommand(mnuEnableDHCP, [this](std::size_t adapter) {
        commandBar_->EnableDhcpButton(false);
        GetMenuBar()->Enable(mnuEnableDHCP, false);
        SwitchDhcp(adapter, details_.switchesDhcpOn);
    });
    BindTcpip();
    BindPresets();
    BindConnectionCommand(mnuReleaseIP, ReleaseLease);
    BindConnectionCommand(mnuRenewIP, RenewLease);
    BindConnectionCommand(mnuInterfaceMetric, SetInterfaceMetric);
    for (const int id : {mnuExit, mnuRExit})
        Bind(
            wxEVT_MENU, [this](wxCommandEvent&) { Close(); }, id);
    Bind(wxEVT_CLOSE_WINDOW, &frmMain::OnClose, this);
    Bind(wxEVT_CHAR_HOOK, &frmMain::OnEscape, this);
    Bind(wxEVT_SYS_COLOUR_CHANGED, [this](wxSysColourChangedEvent& event) {
        event.Skip();
        OnThemeChanged();
    });
}

void frmMain::RowSelected(std::size_t row) {
    if (gate_.Busy() || refreshing_) return;
    connections_.Select(row);
}

void frmMain::RowActivated() {
    Run([this] {
        if (const auto adapter = connections_.Selected()) OpenChangeMacPanel(*adapter);
    });
}

std::optional<std::size_t> frmMain::SelectedAdapter() const { return connections_.Selected(); }

void frmMain::BindCommand(int id, std::function<void()> command) {
    const auto run = [this, command = std::move(command)](wxCommandEvent&) { Run(command); };
    Bind(wxEVT_MENU, run, id);
    Bind(wxEVT_BUTTON, run, id);
}

void frmMain::BindConnectionCommand(int id, std::function<void(std::size_t)> command) {
    BindCommand(id, [this, command = std::move(command)] {
        if (const auto adapter = connections_.Selected()) command(*adapter);
    });
}

void frmMain::Run(const std::function<void()>& command) {
    {
        const CommandGate::Scope scope(gate_);
        if (!scope) return;
        // A warning belongs to the command that it came of.
        if (infoBar_ != nullptr && infoBar_->IsShown()) infoBar_->Dismiss();
        try {
            command();
        } catch (const std::exception& error) {
            CurrentSeat().ShowBox(kApplicationTitle,
                                  std::string("The command could not be carried out to its end.") + kCrLf +
                                      kCrLf + "Description: " + error.what(),
                                  BoxIcon::kCritical, BoxButtons::kOk);
        }
    }
    UpdateCommands();
    RefreshForChanges();
}

void frmMain::OpenChangeMacPanel(std::size_t adapter) { fDetails_->ChangeMac().Open(Nics.at(adapter).Name); }

void frmMain::EntryClosed() { RefreshSoon(); }

void frmMain::ChangeMacClosed() {
    list_->Window().SetFocus();
    RefreshSoon();
}

void frmMain::BindTcpip() {
    TcpipPanel& tcpip = fDetails_->Tcpip();
    for (const int id : kListCommands) BindCommand(id, [id, &tcpip] { tcpip.RunListCommand(id); });
}

void frmMain::BindPresets() {
    PresetsPanel& presets = fDetails_->Presets();
    BindCommand(mnuCreatePreset, [this] { fDetails_->Tcpip().EditPreset(""); });
    BindCommand(mnuEditPreset, [this, &presets] {
        if (const auto entry = presets.Selected()) fDetails_->Tcpip().EditPreset(entry->name);
    });
    BindCommand(mnuDeletePreset, [this, &presets] {
        const auto entry = presets.Selected();
        if (entry && DeletePreset(*entry, facts_.folder)) presets.RefreshList();
    });
    BindConnectionCommand(mnuApplyPreset, [this, &presets](std::size_t adapter) {
        const auto entry = presets.Selected();
        if (entry)
            ApplySelectedPreset(*entry, adapter, [this](const std::string& text) { ShowStatus(text); });
    });
}

void frmMain::EditingPreset(bool editing) {
    if (editing && fDetails_->ChangeMacIsOpen()) fDetails_->ChangeMac().Close();
    list_->Window().Enable(!editing);
    if (!editing) {
        list_->Window().SetFocus();
        connections_.ShowSelected();
        RefreshSoon();
    }
    UpdateCommands();
}

void frmMain::ExportReport() {
    wxFileDialog dialog(this, kExportTitle, "", "", kExportFilter, wxFD_SAVE | wxFD_OVERWRITE_PROMPT);
    if (dialog.ShowModal() != wxID_OK) return;
    const std::string path = Utf8(dialog.GetPath());
    if (ExportTextReport(path)) ShowStatus("The report was written to '" + path + "'.");
}

void frmMain::ShowAbout() { frmAboutUs(this, facts_.osDescription).ShowModal(); }

void frmMain::ListMenuAsked() {
    if (gate_.Busy() || !connections_.Selected()) return;
    wxMenu menu;
    AddConnectionCommands(menu, details_);
    list_->Window().PopupMenu(&menu);
}

void frmMain::UpdateCommands() {
    TcpipPanel& tcpip = fDetails_->Tcpip();
    PresetsPanel& presets = fDetails_->Presets();
    const bool editing = tcpip.EditsPreset();
    const CommandStates states = editing ? CommandStates() : StatesFor(SelectedNic());
    const bool preset = !editing && presets.Selected().has_value();
    commandBar_->Update(details_, states);
    commandBar_->EnableRefresh(!editing);
    tcpip.EnableLists(states.addresses);
    presets.EnableCommands(!editing, states.preset);
    wxMenuBar& menu = *GetMenuBar();
    menu.SetLabel(mnuEnable, Wx(details_.mnuEnable) + "\tCtrl+E");
    menu.SetLabel(mnuEnableDHCP, Wx(details_.mnuEnableDHCP) + "\tCtrl+D");
    menu.Enable(mnuChangeMAC, states.changeMac);
    menu.Enable(mnuEnable, states.enable);
    menu.Enable(mnuEnableDHCP, states.dhcp);
    menu.Enable(mnuReleaseIP, states.release);
    menu.Enable(mnuRenewIP, states.renew);
    menu.Enable(mnuInterfaceMetric, states.metric);
    menu.Enable(mnuRefresh, !editing);
    menu.Enable(mnuCreatePreset, !editing);
    menu.Enable(mnuApplyPreset, preset && states.preset);
    menu.Enable(mnuEditPreset, preset);
    menu.Enable(mnuDeletePreset, preset);
}

void frmMain::UpdateListCommands() {
    const TcpipPanel& tcpip = fDetails_->Tcpip();
    for (const int id : kListCommands) GetMenuBar()->Enable(id, tcpip.ListCommandEnabled(id));
}

}  // namespace corvane
