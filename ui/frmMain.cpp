#include "ui/frmMain.h"

#include <array>
#include <exception>
#include <utility>

#include <wx/app.h>
#include <wx/menu.h>
#include <wx/scopeguard.h>
#include <wx/settings.h>
#include <wx/sizer.h>
#include <wx/splitter.h>

#include "inventory/NicInfo.h"
#include "platform/Platform.h"
#include "platform/Seat.h"
#include "ui/ChangeMacPanel.h"
#include "ui/CommandBar.h"
#include "ui/ControlNames.h"
#include "ui/Desktop.h"
#include "ui/DetailsPanel.h"
#include "ui/FactText.h"
#include "ui/Icons.h"
#include "ui/MainMenu.h"
#include "ui/Spacing.h"
#include "ui/TcpipPanel.h"
#include "ui/VendorBox.h"
#include "ui/WxText.h"
#include "ui/frmTray.h"

namespace corvane {

namespace {

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

    trafficTimer_.Bind(wxEVT_TIMER, [this](wxTimerEvent&) { TrafficTick(); });
    trafficTimer_.Start(kTrafficIntervalMilliseconds);
    settle_.Bind(wxEVT_TIMER, [this](wxTimerEvent&) { RefreshForChanges(); });
    changes_ = std::make_unique<ChangesWatch>([this] {
        gate_.NoteChange();
        RefreshSoon();
    });
    // After the window is on the screen: an icon in the tray is not what the user waits for.
    CallAfter([this] {
        tray_ = frmTray::Make(*this);
        ShowInTray();
    });
}

frmMain::~frmMain() {
    // What is in it tells of its focus even now.
    splitter_->Destroy();
}

void frmMain::MakeControls() {
    SetControlName(*this, "frmMain");
    SetIcons(ProgramIcons());
    SetMenuBar(MakeMainMenu());

    ground_ = MakeGround(this);
    commandBar_ = new CommandBar(ground_);
    splitter_ = new wxSplitterWindow(ground_, wxID_ANY, wxDefaultPosition, wxDefaultSize,
                                     wxSP_LIVE_UPDATE | wxSP_NOBORDER);
    list_ = RowList::Make(splitter_, *this, "Network Connections", ListColumns(), true);
    SetControlName(list_->Window(), "List");
    fDetails_ = new DetailsPanel(splitter_, *this);
    splitter_->SetMinimumPaneSize(GetCharHeight() * 5);
    splitter_->SplitHorizontally(&list_->Window(), fDetails_);

    auto* const sizer = new wxBoxSizer(wxVERTICAL);
    sizer->Add(commandBar_, 0, wxEXPAND | wxALL, kGap);
    sizer->Add(splitter_, 1, wxEXPAND);
    auto* const statusLine = new wxBoxSizer(wxHORIZONTAL);
    labDone_ = FactText::Make(ground_, "Done last");
    labCount_ = FactText::Make(ground_, "Number of connections");
    statusLine->Add(labDone_->Window(), 4, wxRIGHT, kGap);
    statusLine->Add(labCount_->Window(), 1);
    sizer->Add(statusLine, 0, wxEXPAND | wxALL, kGap);
    ground_->SetSizer(sizer);
    // The two share the height until the user moves the sash: the event of its moved position comes of other
    // changes too.
    splitter_->Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
        event.Skip();
        if (!sashMoved_) splitter_->SetSashPosition(static_cast<int>(event.GetSize().y * kListShare));
    });
    splitter_->Bind(wxEVT_SPLITTER_SASH_POS_CHANGING, [this](wxSplitterEvent& event) {
        event.Skip();
        sashMoved_ = true;
    });
    SetMinSize(FromDIP(kLeastSize));
    wxSize size = FromDIP(kWantedSize);
    size.DecTo(wxGetClientDisplayRect().GetSize());
    SetSize(size);
    Layout();
    list_->Window().SetFocus();
}

const NicInfo* frmMain::SelectedNic() const {
    const std::optional<std::size_t> adapter = connections_.Selected();
    return adapter ? &Nics.at(*adapter) : nullptr;
}

void frmMain::RefreshConnections() {
    // What happened up to now is what is going to be read.
    static_cast<void>(CurrentPlatform().changes->TakeChanges());
    gate_.ForgetChange();
    {
        refreshing_ = true;
        wxON_BLOCK_EXIT_SET(refreshing_, false);
        connections_.Refresh();
    }
    ApplyDetails();
}

void frmMain::ShowPlaceholder(const ConnectionRow& row) {
    list_->AppendRow(ShownRow(row));
    list_->Window().Update();
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
    if (tray_) tray_->ShowConnection(nic == nullptr ? "" : nic->Name, nic == nullptr ? "" : nic->Mac);
}

void frmMain::RefreshSoon() {
    if (!settle_.IsRunning()) settle_.StartOnce(kSettleMilliseconds);
}

void frmMain::TrafficTick() {
    try {
        const NicInfo* const nic = SelectedNic();
        const std::optional<TrafficMonitor::Tick> tick =
            nic == nullptr ? std::nullopt : traffic_.Read(nic->IfIndex);
        // Of what cannot be read no lamp tells.
        if (tray_) tray_->ShowRates(tick ? tick->rates : TrafficRates{});
        if (!tick) return;
        trafficTexts_ = tick->texts;
        fDetails_->FillTraffic(tick->texts);
        fDetails_->AddToGraph(tick->rates);
    } catch (const std::exception&) {
        // A tick that fails is given up quietly; the next one comes in a second.
    }
}

void frmMain::RefreshForChanges() {
    if (gate_.RefreshForChange(fDetails_->Entering(), [this] { RefreshConnections(); })) RefreshSoon();
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
        infoBar_ = new wxInfoBar(ground_);
        ground_->GetSizer()->Prepend(infoBar_, 0, wxEXPAND);
    }
    infoBar_->ShowMessage(Wx(text), wxICON_WARNING);
}

void frmMain::ShowStatus(const std::string& text) { labDone_->SetText(text); }

}  // namespace corvane
