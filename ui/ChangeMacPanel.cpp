#include "ui/ChangeMacPanel.h"

#include <wx/button.h>
#include <wx/checkbox.h>
#include <wx/clipbrd.h>
#include <wx/sizer.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>
#include <wx/utils.h>
#include <wx/wrapsizer.h>

#include "ui/Desktop.h"
#include "ui/Icons.h"
#include "ui/VendorBox.h"
#include "ui/WxText.h"

namespace corvane {

namespace {

constexpr int kGap = 6;

std::string ClipboardText() {
    wxTextDataObject data;
    const wxClipboardLocker locker;
    if (!locker || !wxTheClipboard->GetData(data)) return {};
    return Utf8(data.GetText());
}

}  // namespace

ChangeMacPanel::ChangeMacPanel(wxWindow* parent)
    : wxPanel(parent),
      heading_(new wxStaticText(this, wxID_ANY, "Change MAC Address", wxDefaultPosition, wxDefaultSize,
                                wxST_ELLIPSIZE_END)) {
    heading_->SetFont(heading_->GetFont().Bold());
    auto* const grid = new wxFlexGridSizer(2, kGap, kGap);
    grid->AddGrowableCol(1);
    auto* const addressLabel = new wxStaticText(this, wxID_ANY, "New MAC &Address:");
    grid->Add(addressLabel, 0, wxALIGN_CENTER_VERTICAL);
    grid->Add(MakeBoxes());
    auto* const vendorLabel = new wxStaticText(this, wxID_ANY, "&Vendor:");
    grid->Add(vendorLabel, 0, wxALIGN_CENTER_VERTICAL);
    vendorBox_ = std::make_unique<VendorBox>(this);
    grid->Add(vendorBox_->MakeSizer(), 0, wxEXPAND);
    vendor_ = std::make_unique<VendorEntry>(*this, *vendorBox_);
    entry_ = std::make_unique<MacEntry>(*this, *vendor_);
    check1_ = new wxCheckBox(this, wxID_ANY, "Automatically Restart Network Connection To Apply Changes");

    auto* const sizer = new wxBoxSizer(wxVERTICAL);
    sizer->Add(heading_, 0, wxEXPAND | wxBOTTOM, kGap);
    sizer->Add(grid, 0, wxEXPAND | wxBOTTOM, kGap);
    sizer->Add(check1_, 0, wxBOTTOM, kGap);
    sizer->Add(MakeButtons(), 0, wxEXPAND);
    SetSizer(sizer);

    LabelFor(addressLabel, boxes_.front());
    for (int box = 0; box < kOctets; ++box) {
        SetAccessibleName(&Box(box), wxString::Format("MAC address, octet %d of %d", box + 1, kOctets));
        BindBox(box);
    }
    LabelFor(vendorLabel, vendorBox_->Edit());
    vendorBox_->OnChoice = [this](std::size_t chosen) { vendor_->Choose(chosen); };
    vendorBox_->OnFocus = [this] { vendor_->LookUpTypedVendor(); };
    Hide();
}

ChangeMacPanel::~ChangeMacPanel() = default;

wxSizer* ChangeMacPanel::MakeBoxes() {
    auto* const row = new wxBoxSizer(wxHORIZONTAL);
    for (int box = 0; box < kOctets; ++box) {
        if (box > 0) row->Add(new wxStaticText(this, wxID_ANY, "-"), 0, wxALIGN_CENTER | wxLEFT | wxRIGHT, 2);
        auto* const text = new wxTextCtrl(this, wxID_ANY, "", wxDefaultPosition, wxDefaultSize, wxTE_CENTRE);
        text->SetMaxLength(2);
        text->SetFont(
            wxFont(wxFontInfo(text->GetFont().GetFractionalPointSize()).Family(wxFONTFAMILY_TELETYPE)));
        text->SetInitialSize(text->GetSizeFromTextSize(text->GetTextExtent("MM").x));
        boxes_[static_cast<std::size_t>(box)] = text;
        row->Add(text);
    }
    return row;
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
    command9_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { OnChangeNow(); });
    command10_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { OnOriginalMac(); });
    command8_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { vendor_->RandomAddress(); });
    close->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { Close(); });
    auto* const row = new wxWrapSizer(wxHORIZONTAL, wxREMOVE_LEADING_SPACES);
    for (wxButton* const button : {command9_, command10_, command8_, close}) {
        row->Add(button, 0, wxRIGHT | wxBOTTOM, kGap);
    }
    return row;
}

bool ChangeMacPanel::HandleArrow(int box, const wxKeyEvent& event) {
    const int key = event.GetKeyCode();
    if (key != WXK_LEFT && key != WXK_RIGHT) return false;
    return entry_->KeyDown(box, key == WXK_LEFT ? BoxKey::kLeft : BoxKey::kRight, event.ShiftDown(),
                           event.ControlDown());
}

bool ChangeMacPanel::HandleCharacter(int box, const wxKeyEvent& event, int character) {
    const bool typed = character == WXK_BACK || (character >= WXK_SPACE && character != WXK_DELETE);
    if (!typed || event.ControlDown() || event.AltDown()) return false;
    entry_->KeyPress(box, character);
    return true;
}

void ChangeMacPanel::BindBox(int box) {
    wxTextCtrl& text = Box(box);
    // Keys are taken before the toolkit's input method sees them, which deletes a selected text before it
    // asks whether the character is wanted.
    text.Bind(wxEVT_KEY_DOWN, [this, box](wxKeyEvent& event) {
        if (!HandleArrow(box, event) && !HandleCharacter(box, event, TypedCharacter(event))) event.Skip();
    });
    // What an input method has composed.
    text.Bind(wxEVT_CHAR, [this, box](wxKeyEvent& event) {
        if (!HandleCharacter(box, event, event.GetUnicodeKey())) event.Skip();
    });
    text.Bind(wxEVT_TEXT, [this, box](wxCommandEvent&) { entry_->Changed(box); });
    text.Bind(wxEVT_TEXT_PASTE, [this, box](wxClipboardTextEvent&) { entry_->Pasted(box, ClipboardText()); });
    text.Bind(wxEVT_LEFT_UP, [this, box](wxMouseEvent& event) {
        event.Skip();
        // After the box itself is done with the click.
        CallAfter([this, box] { entry_->Clicked(box); });
    });
    text.Bind(wxEVT_SET_FOCUS, [this, box](wxFocusEvent& event) {
        event.Skip();
        entry_->FocusGained(box);
    });
    text.Bind(wxEVT_KILL_FOCUS, [this, box](wxFocusEvent& event) {
        event.Skip();
        entry_->FocusLost(box);
    });
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

std::string ChangeMacPanel::Text(int box) const { return Utf8(Box(box).GetValue()); }

void ChangeMacPanel::SetText(int box, const std::string& text) {
    if (Text(box) == text) return;
    Box(box).ChangeValue(Wx(text));
    entry_->Changed(box);
}

TextSelection ChangeMacPanel::Selection(int box) const {
    long from = 0;
    long to = 0;
    Box(box).GetSelection(&from, &to);
    if (from == to) return {static_cast<int>(Box(box).GetInsertionPoint()), 0};
    return {static_cast<int>(from), static_cast<int>(to - from)};
}

void ChangeMacPanel::Select(int box, TextSelection selection) {
    if (selection.length == 0) {
        Box(box).SetInsertionPoint(selection.start);
    } else {
        Box(box).SetSelection(selection.start, selection.start + selection.length);
    }
}

void ChangeMacPanel::Focus(int box) { Box(box).SetFocus(); }
void ChangeMacPanel::FocusCheck1() { check1_->SetFocus(); }
void ChangeMacPanel::EnableCommand9(bool enable) { command9_->Enable(enable); }
void ChangeMacPanel::Beep() { wxBell(); }
bool ChangeMacPanel::Check1() const { return check1_->GetValue(); }
void ChangeMacPanel::SetCheck1(bool ticked) { check1_->SetValue(ticked); }

void ChangeMacPanel::ShowPanel(bool show) {
    if (show) command9_->SetDefault();
    Show(show);
    if (OnLayout) OnLayout();
    if (!show && OnClosed) OnClosed();
}

}  // namespace corvane
