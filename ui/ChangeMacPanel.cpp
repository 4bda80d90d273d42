#include "ui/ChangeMacPanel.h"

#include <wx/button.h>
#include <wx/checkbox.h>
#include <wx/sizer.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>
#include <wx/utils.h>
#include <wx/wrapsizer.h>

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
    check1_ = new wxCheckBox(this, wxID_ANY, "Automatically Restart Network Connection To Apply Changes");

    auto* const sizer = new wxBoxSizer(wxVERTICAL);
    sizer->Add(heading_, 0, wxEXPAND | wxBOTTOM, kGap);
    sizer->Add(grid, 0, wxEXPAND | wxBOTTOM, kGap);
    sizer->Add(check1_, 0, wxBOTTOM, kGap);
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
    command9_ = MakeButton("Change Now !", "apply");
    command10_ = MakeButton("&Original MAC", "original_mac");
    command8_ = MakeButton("Random &MAC Address", "random");
    auto* const close = new wxButton(this, wxID_ANY, "Close");
    command9_->Bind(wxEVT_BUTTON,
                    [this](wxCommandEvent&) { RunForSelected(&ChangeMacPanel::ChangeAddress); });
    command10_->Bind(wxEVT_BUTTON,
                     [this](wxCommandEvent&) { RunForSelected(&ChangeMacPanel::RestoreAddress); });
    command8_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { vendor_->RandomAddress(); });
    close->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { Close(); });
    auto* const row = new wxWrapSizer(wxHORIZONTAL, wxREMOVE_LEADING_SPACES);
    for (wxButton* const button : {command9_, command10_, command8_, close}) {
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
void ChangeMacPanel::FocusCheck1() { check1_->SetFocus(); }
void ChangeMacPanel::EnableCommand9(bool enable) { command9_->Enable(enable); }
void ChangeMacPanel::Beep() { wxBell(); }
bool ChangeMacPanel::Check1() const { return check1_->GetValue(); }
void ChangeMacPanel::SetCheck1(bool ticked) { check1_->SetValue(ticked); }

void ChangeMacPanel::ShowPanel(bool show) {
    if (show) command9_->SetDefault();
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
