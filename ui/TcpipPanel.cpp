#include "ui/TcpipPanel.h"

#include <algorithm>
#include <utility>

#include <wx/checkbox.h>
#include <wx/sizer.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

#include "ui/AddressPanels.h"
#include "ui/Facts.h"
#include "ui/MainMenu.h"
#include "ui/PanelHosts.h"
#include "ui/Spacing.h"
#include "ui/WxText.h"

namespace corvane {

namespace {

constexpr AddressListKind kIpList{.control = "ListIP",
                                  .name = kIpTitle,
                                  .second = "Subnet Mask",
                                  .visibleRows = 3,
                                  .addCommand = mnuAddIPAddress,
                                  .removeCommand = mnuRemoveIPAddress,
                                  .addTip = "Add IP Address",
                                  .removeTip = "Remove IP Address"};
constexpr AddressListKind kGatewayList{.control = "ListGateway",
                                       .name = kGatewayTitle,
                                       .second = "Metric",
                                       .visibleRows = 2,
                                       .addCommand = mnuAddGateway,
                                       .removeCommand = mnuRemoveGateway,
                                       .addTip = "Add Gateway",
                                       .removeTip = "Remove Gateway"};
constexpr AddressListKind kDnsList{.control = "ListDNS",
                                   .name = kDnsTitle,
                                   .second = "",
                                   .visibleRows = 2,
                                   .addCommand = mnuAddDNSServer,
                                   .removeCommand = mnuRemoveDNSServer,
                                   .upCommand = mnuDNSServerUp,
                                   .downCommand = mnuDNSServerDown,
                                   .addTip = "Add DNS Server",
                                   .removeTip = "Remove DNS Server"};

}  // namespace

TcpipPanel::TcpipPanel(wxWindow* parent, WindowHost& window, DetailsHost& details)
    : wxPanel(parent), window_(window), details_(details) {
    auto* const sizer = new wxBoxSizer(wxVERTICAL);
    sizer->Add(MakeFacts(), 0, wxEXPAND);
    SetSizer(sizer);
    listIP_ = MakeList(kIpList);
    listGateway_ = MakeList(kGatewayList);
    listDNS_ = MakeList(kDnsList);
}

TcpipPanel::~TcpipPanel() {
    // What is in it reports to the rules even now.
    DestroyChildren();
}

wxSizer* TcpipPanel::MakeFacts() {
    facts_ = new wxPanel(this);
    auto* const grid = new wxFlexGridSizer(2, 1, 2 * kGap);
    grid->AddGrowableCol(1);
    labTCPIP_ = AddFact(facts_, grid, "labTCPIP", "TCP/IP:");
    labDHCP_ = AddFact(facts_, grid, "labDHCP", "DHCP:");
    labLeaseObtained_ = AddFact(facts_, grid, "labLeaseObtained", "Lease Obtained:");
    labLeaseExpires_ = AddFact(facts_, grid, "labLeaseExpires", "Lease Expires:");
    facts_->SetSizer(grid);
    auto* const sizer = new wxBoxSizer(wxVERTICAL);
    sizer->Add(facts_, 0, wxEXPAND);
    return sizer;
}

std::unique_ptr<AddressListBox> TcpipPanel::MakeList(const AddressListKind& kind) {
    auto list = std::make_unique<AddressListBox>(this, static_cast<AddressListHost&>(*this), kind);
    GetSizer()->Add(list->Sizer(), kind.visibleRows, wxEXPAND | wxTOP, kGap);
    return list;
}

void TcpipPanel::Fill(const Details& details, bool sameConnection) {
    labTCPIP_->SetText(details.labTCPIP);
    labDHCP_->SetText(details.labDHCP);
    labLeaseObtained_->SetText(details.labLeaseObtained);
    labLeaseExpires_->SetText(details.labLeaseExpires);
    if (EditsPreset()) return;
    listIP_->Fill(details.ListIP, details.headerIP, sameConnection);
    listGateway_->Fill(details.ListGateway, details.headerGateway, sameConnection);
    listDNS_->Fill(details.ListDNS, details.headerDNS, sameConnection);
}

void TcpipPanel::EnableLists(bool enable) {
    if (EditsPreset()) return;
    for (AddressListBox* const list : {listIP_.get(), listGateway_.get(), listDNS_.get()})
        list->EnableCommands(enable);
}

bool TcpipPanel::ListCommandEnabled(int command) const {
    return listIP_->CommandEnabled(command) || listGateway_->CommandEnabled(command) ||
           listDNS_->CommandEnabled(command);
}

bool TcpipPanel::RunListCommand(int command) {
    const EditingTarget target = Target();
    switch (command) {
        case mnuAddIPAddress:
            IPPanel().Editing().Open();
            return true;
        case mnuRemoveIPAddress:
            IPPanel().Editing().Remove(target);
            return true;
        case mnuAddGateway:
            GatewayPanel().Editing().Open();
            return true;
        case mnuRemoveGateway:
            GatewayPanel().Editing().Remove(target);
            return true;
        case mnuAddDNSServer:
            DNSPanel().Editing().Open();
            return true;
        case mnuRemoveDNSServer:
            DNSPanel().Editing().Remove(target);
            return true;
        case mnuDNSServerUp:
            DNSPanel().Editing().MoveUp(target);
            return true;
        case mnuDNSServerDown:
            DNSPanel().Editing().MoveDown(target);
            return true;
        default:
            return false;
    }
}

std::vector<EntryPanel*> TcpipPanel::OpenPanels() const {
    std::vector<EntryPanel*> open;
    for (EntryPanel* const panel : std::initializer_list<EntryPanel*>{fAddIP_, fAddGateway_, fAddDNS_}) {
        if (panel != nullptr && panel->IsOpen()) open.push_back(panel);
    }
    return open;
}

bool TcpipPanel::PanelIsOpen() const { return !OpenPanels().empty(); }

bool TcpipPanel::Escape() {
    const std::vector<EntryPanel*> open = OpenPanels();
    for (EntryPanel* const panel : open) panel->Close();
    return !open.empty();
}

AddressListBox& TcpipPanel::ListOf(const EntryPanel& panel) const {
    if (&panel == fAddIP_) return *listIP_;
    return &panel == fAddGateway_ ? *listGateway_ : *listDNS_;
}

AddIPPanel& TcpipPanel::IPPanel() {
    if (fAddIP_ == nullptr) {
        fAddIP_ = new AddIPPanel(this, *this, *listIP_);
        listIP_->AddPanel(fAddIP_);
    }
    return *fAddIP_;
}

AddGatewayPanel& TcpipPanel::GatewayPanel() {
    if (fAddGateway_ == nullptr) {
        fAddGateway_ = new AddGatewayPanel(this, *this, *listGateway_);
        listGateway_->AddPanel(fAddGateway_);
    }
    return *fAddGateway_;
}

AddDNSPanel& TcpipPanel::DNSPanel() {
    if (fAddDNS_ == nullptr) {
        fAddDNS_ = new AddDNSPanel(this, *this, *listDNS_);
        listDNS_->AddPanel(fAddDNS_);
    }
    return *fAddDNS_;
}

PresetEditor& TcpipPanel::Editor() {
    if (editor_ != nullptr) return *editor_;
    editor_ = new PresetEditor(this, *this);
    editor_->MoveBeforeInTabOrder(facts_);
    GetSizer()->Prepend(editor_, 0, wxEXPAND | wxBOTTOM, kGap);
    return *editor_;
}

void TcpipPanel::ListCommandsChanged() { window_.UpdateListCommands(); }
void TcpipPanel::ListFocused(const wxWindow& list) { details_.ListFocused(list); }

void TcpipPanel::Run(const std::function<void()>& command) { window_.Run(command); }
EditingTarget TcpipPanel::Target() const { return {window_.SelectedAdapter(), !EditsPreset()}; }

void TcpipPanel::PanelOpens(const EntryPanel& panel) {
    for (EntryPanel* const other : OpenPanels()) {
        if (other != &panel) other->Dismiss();
    }
}

void TcpipPanel::PanelShown(const EntryPanel& panel) {
    LayOut();
    if (panel.IsOpen()) details_.ShowPart(panel);
}

void TcpipPanel::PanelClosed(const EntryPanel& panel) {
    ListOf(panel).List().Window().SetFocus();
    window_.EntryClosed();
}

void TcpipPanel::NameChanged() { presets_.NameChanged(); }
void TcpipPanel::CheckClicked(PresetCheck check) { presets_.Clicked(check); }
void TcpipPanel::SavePressed() {
    Run([this] { presets_.Save(window_.PresetsFolder()); });
}
void TcpipPanel::LeavePressed() { presets_.Leave(); }

void TcpipPanel::LayOut() {
    // The lists share the height that is left, in the proportion of their rows, unless one of them has a
    // panel: its share would make the others too large.
    const bool share = OpenPanels().empty();
    for (const auto& [list, rows] : {std::pair(listIP_.get(), kIpList.visibleRows),
                                     std::pair(listGateway_.get(), kGatewayList.visibleRows),
                                     std::pair(listDNS_.get(), kDnsList.visibleRows)}) {
        GetSizer()->GetItem(list->Sizer())->SetProportion(share ? rows : 0);
    }
    InvalidateBestSize();
    details_.Rearrange();
}

void TcpipPanel::ShowEditor(bool editing) {
    for (EntryPanel* const panel : OpenPanels()) panel->Dismiss();
    Editor().Show(editing);
    facts_->Show(!editing);
    LayOut();
    window_.EditingPreset(editing);
}

std::string TcpipPanel::PresetName() const { return Utf8(editor_->Name().GetValue()); }

void TcpipPanel::SetPresetName(const std::string& name) {
    if (PresetName() != name) editor_->Name().SetValue(Wx(name));
}

void TcpipPanel::FocusPresetName() { editor_->Name().SetFocusFromKbd(); }

void TcpipPanel::SelectPresetName() {
    FocusPresetName();
    editor_->Name().SelectAll();
}

bool TcpipPanel::Ticked(PresetCheck check) const { return editor_->Check(check).GetValue(); }
void TcpipPanel::SetTicked(PresetCheck check, bool ticked) { editor_->Check(check).SetValue(ticked); }
void TcpipPanel::EnableCheck(PresetCheck check, bool enable) { editor_->Check(check).Enable(enable); }
MacBoxesView& TcpipPanel::MacBoxes() { return *editor_; }
void TcpipPanel::EnableMacBoxes(bool enable) { editor_->EnableMacBoxes(enable); }

void TcpipPanel::EnableListCommands(PresetCheck list, bool enable) {
    const auto set = [enable](AddressListBox& box, EntryPanel* panel) {
        box.EnableCommands(enable);
        if (!enable && panel != nullptr) panel->Dismiss();
    };
    if (list == PresetCheck::ckCPIP) set(*listIP_, fAddIP_);
    if (list == PresetCheck::ckCPGateway) set(*listGateway_, fAddGateway_);
    if (list == PresetCheck::ckCPDNS) set(*listDNS_, fAddDNS_);
}

void TcpipPanel::RefreshPresetsList() { details_.PresetsChanged(); }

}  // namespace corvane
