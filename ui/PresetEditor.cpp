#include "ui/PresetEditor.h"

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
#include "ui/Spacing.h"
#include "ui/TextBox.h"
#include "ui/logic/MacEntry.h"

namespace corvane {

namespace {

constexpr int kFirstBox = 6;

}  // namespace

class PresetEditor::NoVendorBox : public VendorBoxView {
 public:
    [[nodiscard]] std::string VendorText() const override { return {}; }
    void SetVendorText(const std::string&) override {}
    void MarkChosen(std::size_t) override {}
};

PresetEditor::PresetEditor(wxWindow* parent, PresetEditorHost& host) : wxPanel(parent), host_(host) {
    SetControlName(*this, "fCreatePreset");
    auto* const title = new wxStaticText(this, wxID_ANY, "Create / Edit Configuration Preset");
    title->SetFont(title->GetFont().Bold());
    auto* const label = new wxStaticText(this, wxID_ANY, "&Name:");
    txtPresetName_ = Named("txtPresetName", MakeTextBox(this, 0));
    LabelFor(label, txtPresetName_);
    SetAccessibleName(txtPresetName_, "Preset name");
    auto* const name = new wxBoxSizer(wxHORIZONTAL);
    name->Add(label, 0, wxALIGN_CENTER_VERTICAL | wxRIGHT, kGap);
    name->Add(txtPresetName_, 1);

    auto* const mac = new wxBoxSizer(wxHORIZONTAL);
    mac->Add(MakeCheck(PresetCheck::ckCPMAC, "ckCPMAC", "&MAC Address"), 0, wxALIGN_CENTER_VERTICAL | wxRIGHT,
             kGap);
    boxes_ = std::make_unique<MacBoxRow>(this, kFirstBox);
    mac->Add(boxes_->MakeSizer(this), 0, wxALIGN_CENTER_VERTICAL);
    auto* const options = new wxWrapSizer(wxHORIZONTAL, wxREMOVE_LEADING_SPACES);
    options->Add(MakeCheck(PresetCheck::ckCPRanMAC, "ckCPRanMAC", "&Random MAC"), 0, wxRIGHT, 2 * kGap);
    options->Add(MakeCheck(PresetCheck::ckCPDefMAC, "ckCPDefMAC", "&Original MAC"));
    auto* const tcpip = new wxWrapSizer(wxHORIZONTAL, wxREMOVE_LEADING_SPACES);
    tcpip->Add(MakeCheck(PresetCheck::ckCPDHCP, "ckCPDHCP", "&DHCP"), 0, wxRIGHT, 2 * kGap);
    tcpip->Add(MakeCheck(PresetCheck::ckCPIP, "ckCPIP", "&IP Addresses"), 0, wxRIGHT, 2 * kGap);
    tcpip->Add(MakeCheck(PresetCheck::ckCPGateway, "ckCPGateway", "&Gateways"), 0, wxRIGHT, 2 * kGap);
    tcpip->Add(MakeCheck(PresetCheck::ckCPDNS, "ckCPDNS", "DNS Ser&vers"));

    auto* const sizer = new wxBoxSizer(wxVERTICAL);
    sizer->Add(title, 0, wxBOTTOM, kGap);
    sizer->Add(name, 0, wxEXPAND | wxBOTTOM, kGap);
    sizer->Add(mac, 0, wxBOTTOM, kGap / 2);
    auto* const indented = new wxBoxSizer(wxHORIZONTAL);
    indented->AddSpacer(4 * kGap);
    indented->Add(options, 1);
    sizer->Add(indented, 0, wxEXPAND | wxBOTTOM, kGap);
    sizer->Add(tcpip, 0, wxEXPAND | wxBOTTOM, kGap);
    sizer->Add(MakeButtons(), 0, wxEXPAND);
    SetSizer(sizer);

    noVendor_ = std::make_unique<NoVendorBox>();
    vendor_ = std::make_unique<VendorEntry>(*this, *noVendor_);
    entry_ = std::make_unique<MacEntry>(*this, *vendor_);
    boxes_->Bind(*entry_);
    txtPresetName_->Bind(wxEVT_TEXT, [this](wxCommandEvent&) { host_.NameChanged(); });
    Hide();
}

PresetEditor::~PresetEditor() {
    // The boxes report a lost focus to the rules even now.
    DestroyChildren();
}

wxCheckBox* PresetEditor::MakeCheck(PresetCheck check, ControlName name, const char* label) {
    auto* const box = Named(name, new wxCheckBox(this, wxID_ANY, label));
    box->Bind(wxEVT_CHECKBOX, [this, check](wxCommandEvent&) { host_.CheckClicked(check); });
    checks_.at(static_cast<std::size_t>(check)) = box;
    return box;
}

wxSizer* PresetEditor::MakeButtons() {
    auto* const save = Named("Command24", new wxButton(this, wxID_ANY, "Save &Preset"));
    save->SetBitmap(Icon("apply"));
    auto* const leave = Named("Command23", new wxButton(this, wxID_ANY, "&Leave"));
    save->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { host_.SavePressed(); });
    leave->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { host_.LeavePressed(); });
    Bind(wxEVT_CHILD_FOCUS, [save](wxChildFocusEvent& event) {
        event.Skip();
        save->SetDefault();
    });
    auto* const row = new wxBoxSizer(wxHORIZONTAL);
    row->Add(save, 0, wxRIGHT, kGap);
    row->Add(leave);
    return row;
}

wxCheckBox& PresetEditor::Check(PresetCheck check) const {
    return *checks_.at(static_cast<std::size_t>(check));
}

void PresetEditor::EnableMacBoxes(bool enable) { boxes_->Enable(enable); }

std::string PresetEditor::Text(int box) const {
    // The rules look at the other row too, which belongs to the panel that changes an address at once.
    return boxes_->Has(box) ? boxes_->Text(box) : std::string();
}

void PresetEditor::SetText(int box, const std::string& text) { boxes_->SetText(box, text); }
TextSelection PresetEditor::Selection(int box) const { return boxes_->Selection(box); }
void PresetEditor::Select(int box, TextSelection selection) { boxes_->Select(box, selection); }
void PresetEditor::Focus(int box) { boxes_->Focus(box); }
void PresetEditor::Beep() { wxBell(); }

}  // namespace corvane
