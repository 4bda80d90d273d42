#include "ui/ChangeMacPanel.h"

#include <wx/button.h>
#include <wx/checkbox.h>
#include <wx/sizer.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>
#include <wx/utils.h>
#include <wx/wrapsizer.h>

#include "ui/ControlNames.h"
#include "ui/Desktop.h"
#include "ui/Icons.h"
#include "ui/MacBoxRow.h"
#include "ui/PanelHosts.h"
#include "ui/Spacing.h"
#include "ui/WxText.h"

namespace corvane {

ChangeMacPanel::ChangeMacPanel(wxWindow* parent, WindowHost& window, DetailsHost& details)
    : wxPanel(parent),
      window_(window),
      details_(details),
      heading_(new wxStaticText(this, wxID_ANY, "Change MAC Address", wxDefaultPosition, wxDefaultSize,
                                wxST_ELLIPSIZE_END)) {
    SetControlName(*this, "fChangeMAC");
    heading_->SetFont(heading_->GetFont().Bold());
    auto* const grid = new wxFlexGridSizer(2, kGap, kGap);
    grid->AddGrowableCol(1);
    auto* const addressLabel = new wxStaticText(this, wxID_ANY, "New MAC &Address:");
    grid->Add(addressLabel, 0, wxALIGN_CENTER_VERTICAL);
    boxes_ = std::make_unique<MacBoxRow>(this, 0);
    grid->Add(boxes_->MakeSizer(this));
    auto* const vendorLabel = new wxStaticText(this, wxID_ANY, "&Vendor:");
    grid->Add(vendorLabel, 0, wxALIGN_CENTER_VERTICAL);
    vendorBox_ = std::make_unique<VendorBox>(this, static_cast<VendorBoxHost&>(*this));
    grid->Add(vendorBox_->MakeSizer(), 0, wxEXPAND);
    MacBoxesView& boxes = *this;
    vendor_ = std::make_unique<VendorEntry>(boxes, *vendorBox_);
    entry_ = std::make_unique<MacEntry>(boxes, *vendor_);
    restart_ = Named("Check1", new wxCheckBox(this, wxID_ANY,
                                              "Automatically Restart Network Connection To Apply Changes"));

    auto* const sizer = new wxBoxSizer(wxVERTICAL);
    sizer->Add(heading_, 0, wxEXPAND | wxBOTTOM, kGap);
    sizer->Add(grid, 0, wxEXPAND | wxBOTTOM, kGap);
    sizer->Add(restart_, 0, wxBOTTOM, kGap);
    sizer->Add(MakeButtons(), 0, wxEXPAND);
    SetSizer(sizer);

    FocusByMnemonic(&boxes_->Box(0));
    boxes_->Bind(*entry_);
    LabelFor(vendorLabel, vendorBox_->Edit());
    Hide();
}

ChangeMacPanel::~ChangeMacPanel() {
    // The boxes report a lost focus to the rules even now.
    DestroyChildren();
}

wxButton* ChangeMacPanel::MakeButton(const char* label, const char* icon) {
    auto* const button = new wxButton(this, wxID_ANY, label);
    button->SetBitmap(Icon(icon));
    return button;
}

wxSizer* ChangeMacPanel::MakeButtons() {
    changeNow_ = Named("Command9", MakeButton("Change Now !", "apply"));
    originalMac_ = Named("Command10", MakeButton("&Original MAC", "original_mac"));
    randomMac_ = Named("Command8", MakeButton("Random &MAC Address", "random"));
    auto* const close = new wxButton(this, wxID_ANY, "Close");
    changeNow_->Bind(wxEVT_BUTTON,
                     [this](wxCommandEvent&) { RunForSelected(&ChangeMacPanel::ChangeAddress); });
    originalMac_->Bind(wxEVT_BUTTON,
                       [this](wxCommandEvent&) { RunForSelected(&ChangeMacPanel::RestoreAddress); });
    randomMac_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { vendor_->RandomAddress(); });
    close->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { Close(); });
    auto* const row = new wxWrapSizer(wxHORIZONTAL, wxREMOVE_LEADING_SPACES);
    for (wxButton* const button : {changeNow_, originalMac_, randomMac_, close}) {
        row->Add(button, 0, wxRIGHT | wxBOTTOM, kGap);
    }
    return row;
}

void ChangeMacPanel::ShowConnection(const std::string& name) {
    heading_->SetLabelText(Wx("Change MAC Address Of '" + name + "'"));
}

void ChangeMacPanel::Open(const std::string& connectionName) {
    ShowConnection(connectionName);
    OpenChangeMac(*this, *vendorBox_, *this);
}

void ChangeMacPanel::Close() { ShowPanel(false); }

void ChangeMacPanel::Escape() {
    if (!vendorBox_->CloseList()) Close();
}

std::string ChangeMacPanel::Text(int box) const { return boxes_->Text(box); }
void ChangeMacPanel::SetText(int box, const std::string& text) { boxes_->SetText(box, text); }
TextSelection ChangeMacPanel::Selection(int box) const { return boxes_->Selection(box); }
void ChangeMacPanel::Select(int box, TextSelection selection) { boxes_->Select(box, selection); }
void ChangeMacPanel::Focus(int box) { boxes_->Focus(box); }
void ChangeMacPanel::FocusRestartCheck() { restart_->SetFocus(); }
void ChangeMacPanel::EnableChangeNow(bool enable) { changeNow_->Enable(enable); }
void ChangeMacPanel::Beep() { wxBell(); }
bool ChangeMacPanel::RestartTicked() const { return restart_->GetValue(); }
void ChangeMacPanel::TickRestart(bool ticked) { restart_->SetValue(ticked); }

void ChangeMacPanel::ShowPanel(bool show) {
    if (show) changeNow_->SetDefault();
    Show(show);
    details_.Rearrange();
    if (!show) window_.ChangeMacClosed();
}

void ChangeMacPanel::VendorChosen(std::size_t entry) { vendor_->Choose(entry); }
void ChangeMacPanel::VendorBoxFocused() { vendor_->LookUpTypedVendor(); }

void ChangeMacPanel::RunForSelected(void (ChangeMacPanel::*command)(std::size_t adapter)) {
    window_.Run([this, command] {
        if (const auto adapter = window_.SelectedAdapter()) (this->*command)(*adapter);
    });
}

void ChangeMacPanel::ChangeAddress(std::size_t adapter) { ChangeNow(adapter, *this, *this); }
void ChangeMacPanel::RestoreAddress(std::size_t adapter) { OriginalMac(adapter, *this, *vendorBox_, *this); }

}  // namespace corvane
