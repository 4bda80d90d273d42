#include "ui/VendorBox.h"

#include <utility>

#include <wx/bmpbuttn.h>
#include <wx/sizer.h>
#include <wx/textctrl.h>

#include "ui/ControlNames.h"
#include "ui/Desktop.h"
#include "ui/Icons.h"
#include "ui/WxText.h"

namespace corvane {

VendorBox::VendorBox(wxWindow* parent, VendorBoxHost& host)
    : host_(host),
      edit_(new wxTextCtrl(parent, wxID_ANY, "", wxDefaultPosition, wxDefaultSize, wxTE_PROCESS_ENTER)),
      button_(new wxBitmapButton(parent, wxID_ANY, Icon("down"))) {
    SetControlName(*edit_, "VendorList");
    button_->SetToolTip("Show the list of vendors");
    SetAccessibleName(button_, "Show the list of vendors");

    edit_->Bind(wxEVT_TEXT, [this](wxCommandEvent&) {
        // Only the user's typing comes here; a text that is set comes by ChangeValue.
        if (!ListShown()) OpenList();
        list_->Search(Utf8(edit_->GetValue()));
    });
    edit_->Bind(wxEVT_KEY_DOWN, &VendorBox::OnKey, this);
    edit_->Bind(wxEVT_TEXT_ENTER, [this](wxCommandEvent& event) {
        if (!ListShown()) event.Skip();
    });
    edit_->Bind(wxEVT_SET_FOCUS, [this](wxFocusEvent& event) {
        event.Skip();
        host_.VendorBoxFocused();
    });
    edit_->Bind(wxEVT_KILL_FOCUS, [this](wxFocusEvent& event) {
        event.Skip();
        CloseList();
    });
    // The button takes the focus and so closes the list before it is pressed.
    button_->Bind(wxEVT_LEFT_DOWN, [this](wxMouseEvent& event) {
        event.Skip();
        closes_ = ListShown();
    });
    button_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) {
        const bool open = !std::exchange(closes_, false) && !ListShown();
        edit_->SetFocus();
        edit_->SelectAll();
        if (open) {
            OpenList();
        } else {
            CloseList();
        }
    });
}

wxSizer* VendorBox::MakeSizer() {
    auto* const sizer = new wxBoxSizer(wxHORIZONTAL);
    sizer->Add(edit_, 1, wxEXPAND);
    sizer->Add(button_, 0, wxEXPAND);
    return sizer;
}

std::string VendorBox::VendorText() const { return Utf8(edit_->GetValue()); }

void VendorBox::SetVendorText(const std::string& text) {
    edit_->ChangeValue(Wx(text));
    chosen_.reset();
}

void VendorBox::MarkChosen(std::size_t entry) { chosen_ = entry; }

bool VendorBox::ListShown() const { return list_ != nullptr && list_->IsShown(); }

void VendorBox::OpenList() {
    if (list_ == nullptr) list_ = new VendorDropDown(edit_, *this);
    list_->Open(*edit_, "", chosen_);
}

bool VendorBox::CloseList() {
    if (!ListShown()) return false;
    list_->Hide();
    return true;
}

void VendorBox::Choose(std::size_t row) {
    const std::size_t entry = list_->EntryAt(row);
    CloseList();
    host_.VendorChosen(entry);
    edit_->SelectAll();
}

void VendorBox::OnKey(wxKeyEvent& event) {
    const int key = event.GetKeyCode();
    if (!ListShown()) {
        const bool opens = key == WXK_F4 || key == WXK_DOWN;
        if (opens) {
            OpenList();
        } else {
            event.Skip();
        }
        return;
    }
    switch (key) {
        case WXK_DOWN:
            list_->Move(1);
            return;
        case WXK_UP:
            list_->Move(-1);
            return;
        case WXK_PAGEDOWN:
            list_->Move(list_->PageRows());
            return;
        case WXK_PAGEUP:
            list_->Move(-list_->PageRows());
            return;
        case WXK_RETURN:
        case WXK_NUMPAD_ENTER:
            if (const auto row = list_->Marked()) Choose(*row);
            return;
        default:
            event.Skip();
            return;
    }
}

}  // namespace corvane
