#include "ui/frmMain.h"

#include <array>
#include <exception>
#include <utility>

#include <wx/app.h>
#include <wx/filedlg.h>
#include <wx/infobar.h>
#include <wx/menu.h>
#include <wx/settings.h>
#include <wx/sizer.h>
#include <wx/splitter.h>

#include "inventory/NicInfo.h"
#include "platform/Platform.h"
#include "platform/Seat.h"
#include "tcpip/DhcpOperations.h"
#include "ui/ChangeMacPanel.h"
#include "ui/CommandBar.h"
#include "ui/DetailsPanel.h"
#include "ui/FactText.h"
#include "ui/Icons.h"
#include "ui/MainMenu.h"
#include "ui/PresetsPanel.h"
#include "ui/RowList.h"
#include "ui/TcpipPanel.h"
#include "ui/VendorBox.h"
#include "ui/WxText.h"
#include "ui/frmAboutUs.h"
#include "ui/frmTray.h"
#include "ui/logic/MacChange.h"
#include "ui/logic/OpenPages.h"
#include "ui/logic/ReportExport.h"

namespace corvane {

namespace {

constexpr int kGap = 6;
/// Events of one change come in groups; a refresh waits for the rest of the group.
constexpr int kSettleMilliseconds = 200;
/// The list's part of the height.
constexpr double kListShare = 0.28;
/// What is wanted and the least, in pixels at the normal scale.
const wxSize kWantedSize(1120, 840);
const wxSize kLeastSize(560, 420);

std::vector<ListColumn> ListColumns() {
    static constexpr std::array kWidths = {24, 9, 19, 22, 12};
    std::vector<ListColumn> columns;
    for (std::size_t i = 0; i < kConnectionColumns.size(); ++i) {
        columns.push_back({kConnectionColumns[i], kWidths[i]});
    }
    return columns;
}

ListRow ShownRow(const ConnectionRow& row) {
    return {{row.texts.begin(), row.texts.end()}, row.tag ? StateIcon(Nics.at(*row.tag)) : ""};
}

}  // namespace

frmMain::frmMain(ProgramFacts facts)
    : wxFrame(nullptr, wxID_ANY, Wx(kApplicationTitle)), facts_(std::move(facts)) {
    MakeControls();
    BindCommands();
    FillVendorBox();
    RefreshConnections();

    timer1_.Bind(wxEVT_TIMER, [this](wxTimerEvent&) { Timer1Tick(); });
    timer1_.Start(kTrafficIntervalMilliseconds);
    settle_.Bind(wxEVT_TIMER, [this](wxTimerEvent&) { RefreshForChanges(); });
    changes_ = std::make_unique<ChangesWatch>([this] {
        gate_.NoteChange();
        if (!settle_.IsRunning()) settle_.StartOnce(kSettleMilliseconds);
    });
    // After the window is on the screen: an icon in the tray is not what the user waits for.
    CallAfter([this] {
        tray_ = frmTray::Make(*this);
        ShowInTray();
    });
}

frmMain::~frmMain() = default;

void frmMain::MakeControls() {
    SetIcons(ProgramIcons());
    SetMenuBar(MakeMainMenu());

    commandBar_ = new CommandBar(this);
    splitter_ = new wxSplitterWindow(this, wxID_ANY, wxDefaultPosition, wxDefaultSize,
                                     wxSP_LIVE_UPDATE | wxSP_NOBORDER);
    list_ = new RowList(splitter_, "Network Connections", ListColumns(), true);
    fDetails_ = new DetailsPanel(splitter_);
    splitter_->SetMinimumPaneSize(GetCharHeight() * 5);
    splitter_->SplitHorizontally(list_, fDetails_);

    auto* const sizer = new wxBoxSizer(wxVERTICAL);
    sizer->Add(commandBar_, 0, wxEXPAND | wxALL, kGap);
    sizer->Add(splitter_, 1, wxEXPAND);
    auto* const statusLine = new wxBoxSizer(wxHORIZONTAL);
    labDone_ = new FactText(this, "Done last");
    labCount_ = new FactText(this, "Number of connections");
    statusLine->Add(labDone_, 4, wxRIGHT, kGap);
    statusLine->Add(labCount_, 1);
    sizer->Add(statusLine, 0, wxEXPAND | wxALL, kGap);
    SetSizer(sizer);
    SetMinSize(FromDIP(kLeastSize));
    wxSize size = FromDIP(kWantedSize);
    size.DecTo(wxGetClientDisplayRect().GetSize());
    SetSize(size);
    Layout();
    // The two share the height until the user moves the sash.
    splitter_->Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
        event.Skip();
        if (!sashMoved_) splitter_->SetSashPosition(static_cast<int>(event.GetSize().y * kListShare));
    });
    splitter_->Bind(wxEVT_SPLITTER_SASH_POS_CHANGED, [this](wxSplitterEvent& event) {
        event.Skip();
        sashMoved_ = true;
    });
    list_->SetFocus();
}

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
                          [this](std::size_t adapter) { EnableOrDisable(adapter, details_.mnuEnable); });
    BindConnectionCommand(mnuEnableDHCP, [this](std::size_t adapter) {
        commandBar_->EnableDhcpButton(false);
        GetMenuBar()->Enable(mnuEnableDHCP, false);
        SwitchDhcp(adapter, details_.mnuEnableDHCP == kEnableDhcpCaption);
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

    list_->OnSelect = [this](std::size_t row) { OnSelected(row); };
    list_->Bind(wxEVT_DATAVIEW_ITEM_ACTIVATED, [this](wxDataViewEvent&) {
        Run([this] {
            if (const auto adapter = connections_.Selected()) OpenChangeMacPanel(*adapter);
        });
    });
    // The mouse tells the one, the keyboard's menu key and Shift+F10 the other.
    list_->Bind(wxEVT_DATAVIEW_ITEM_CONTEXT_MENU, [this](wxDataViewEvent&) { ShowContextMenu(); });
    list_->Bind(wxEVT_CONTEXT_MENU, [this](wxContextMenuEvent&) { ShowContextMenu(); });
}

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

const NicInfo* frmMain::SelectedNic() const {
    const std::optional<std::size_t> adapter = connections_.Selected();
    return adapter ? &Nics.at(*adapter) : nullptr;
}

void frmMain::RefreshConnections() {
    // What happened up to now is what is going to be read.
    static_cast<void>(CurrentPlatform().changes->TakeChanges());
    gate_.ForgetChange();
    refreshing_ = true;
    connections_.Refresh();
    refreshing_ = false;
    ApplyDetails();
}

void frmMain::ShowPlaceholder(const ConnectionRow& row) {
    list_->AppendRow(ShownRow(row));
    list_->Update();
}

void frmMain::ShowRows(const std::vector<ConnectionRow>& rows) {
    std::vector<ListRow> shown;
    shown.reserve(rows.size());
    std::size_t connections = 0;
    for (const ConnectionRow& row : rows) {
        shown.push_back(ShownRow(row));
        if (row.tag) ++connections;
    }
    list_->SetRows(std::move(shown));
    labCount_->SetText(std::to_string(connections) + (connections == 1 ? " connection" : " connections"));
}

void frmMain::SelectRow(std::size_t row) { list_->SelectRow(row); }

void frmMain::ShowDetails(const Details& details) {
    details_ = details;
    // A refresh clears the panel and fills it; only what comes of it is shown, so nothing flickers.
    if (!refreshing_) ApplyDetails();
}

void frmMain::ApplyDetails() {
    const NicInfo* const nic = SelectedNic();
    const std::string id = nic == nullptr ? std::string() : nic->Id;
    const bool same = id == shownId_;
    if (!same) {
        shownId_ = id;
        traffic_.Reset();
        trafficTexts_.reset();
        fDetails_->ClearGraph();
    }
    if (trafficTexts_) {
        details_.labSent = trafficTexts_->labSent;
        details_.labRecv = trafficTexts_->labRecv;
        details_.labSentSpeed = trafficTexts_->labSentSpeed;
        details_.labRecvSpeed = trafficTexts_->labRecvSpeed;
    }
    fDetails_->Fill(details_, same);
    UpdateCommands();
    ShowInTray();
    if (nic != nullptr && fDetails_->ChangeMacIsOpen()) fDetails_->ChangeMac().ShowConnection(nic->Name);
}

void frmMain::ShowInTray() {
    const NicInfo* const nic = SelectedNic();
    if (tray_ && nic != nullptr) tray_->ShowConnection(nic->Name, nic->Mac);
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

void frmMain::OnSelected(std::size_t row) {
    if (gate_.Busy() || refreshing_) return;
    connections_.Select(row);
}

void frmMain::OpenChangeMacPanel(std::size_t adapter) {
    ChangeMacPanel& panel = fDetails_->ChangeMac();
    if (!panel.OnChangeNow) BindChangeMac(panel);
    panel.Open(Nics.at(adapter).Name);
}

void frmMain::BindChangeMac(ChangeMacPanel& panel) {
    const auto onSelected = [this](auto command) {
        Run([this, command] {
            if (const auto adapter = connections_.Selected()) command(*adapter);
        });
    };
    panel.OnChangeNow = [&panel, onSelected] {
        onSelected([&panel](std::size_t adapter) { ChangeNow(adapter, panel, panel); });
    };
    panel.OnOriginalMac = [&panel, onSelected] {
        onSelected([&panel](std::size_t adapter) { OriginalMac(adapter, panel, panel.Vendor(), panel); });
    };
    panel.OnClosed = [this] {
        list_->SetFocus();
        RefreshSoon();
    };
}

void frmMain::RefreshSoon() {
    if (!settle_.IsRunning()) settle_.StartOnce(kSettleMilliseconds);
}

void frmMain::BindTcpip() {
    TcpipPanel& tcpip = fDetails_->Tcpip();
    tcpip.Run = [this](const std::function<void()>& command) { Run(command); };
    tcpip.Target = [this, &tcpip] { return EditingTarget{connections_.Selected(), !tcpip.EditsPreset()}; };
    tcpip.OnClosed = [this] { RefreshSoon(); };
    tcpip.OnEditing = [this](bool editing) { EditingPreset(editing); };
    tcpip.OnPresets = [this] { fDetails_->Presets().RefreshList(); };
    tcpip.OnCommands = [this] { UpdateListCommands(); };
    tcpip.programFolder = facts_.folder;
    for (const int id : kListCommands) BindCommand(id, [id, &tcpip] { tcpip.RunListCommand(id); });
}

void frmMain::BindPresets() {
    PresetsPanel& presets = fDetails_->Presets();
    presets.OnSelect = [this] { UpdateCommands(); };
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
    list_->Enable(!editing);
    if (!editing) {
        list_->SetFocus();
        ApplyDetails();
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

void frmMain::ShowContextMenu() {
    if (gate_.Busy() || !connections_.Selected()) return;
    wxMenu menu;
    AddConnectionCommands(menu, details_);
    list_->PopupMenu(&menu);
}

void frmMain::Timer1Tick() {
    try {
        const NicInfo* const nic = SelectedNic();
        if (nic == nullptr) return;
        const std::optional<TrafficMonitor::Tick> tick = traffic_.Read(nic->IfIndex);
        if (!tick) return;
        trafficTexts_ = tick->texts;
        fDetails_->FillTraffic(tick->texts);
        fDetails_->AddToGraph(tick->rates);
        if (tray_) tray_->ShowRates(tick->rates);
    } catch (const std::exception&) {
        // A tick that fails is given up quietly; the next one comes in a second.
    }
}

void frmMain::RefreshForChanges() {
    if (gate_.TakeChange(fDetails_->Entering())) RefreshConnections();
}

void frmMain::OnEscape(wxKeyEvent& event) {
    if (event.GetKeyCode() != WXK_ESCAPE || !fDetails_->Escape()) event.Skip();
}

void frmMain::OnClose(wxCloseEvent& event) {
    // A command that waits finishes first; its connection would stay half restarted otherwise.
    if (gate_.Busy() && event.CanVeto()) {
        event.Veto();
        return;
    }
    changes_.reset();
    tray_.reset();
    Destroy();
}

void frmMain::OnThemeChanged() {
    list_->ReloadIcons();
    UpdateCommands();
}

void frmMain::ShowRowProgress(int subItem, const std::string& text) {
    if (const auto row = connections_.SelectedRow())
        list_->SetText(*row, static_cast<std::size_t>(subItem), text);
}

void frmMain::ShowWarning(const std::string& text) {
    if (infoBar_ == nullptr) {
        infoBar_ = new wxInfoBar(this);
        GetSizer()->Prepend(infoBar_, 0, wxEXPAND);
    }
    infoBar_->ShowMessage(Wx(text), wxICON_WARNING);
}

void frmMain::ShowStatus(const std::string& text) { labDone_->SetText(text); }

}  // namespace corvane
