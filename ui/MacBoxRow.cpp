#include "ui/MacBoxRow.h"

#include <wx/sizer.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

#include "ui/ControlNames.h"
#include "ui/Desktop.h"
#include "ui/TextBox.h"
#include "ui/WxText.h"
#include "ui/logic/MacEntry.h"

namespace corvane {

MacBoxRow::MacBoxRow(wxWindow* parent, int first) : first_(first) {
    for (int octet = 0; octet < kOctets; ++octet) {
        wxTextCtrl* const box = Named("MAC", MakeDigitBox(parent, 2, wxTE_CENTRE));
        SetAccessibleName(box, wxString::Format("MAC address, octet %d of %d", octet + 1, kOctets));
        boxes_[static_cast<std::size_t>(octet)] = box;
    }
}

wxSizer* MacBoxRow::MakeSizer(wxWindow* parent) const {
    auto* const row = new wxBoxSizer(wxHORIZONTAL);
    for (wxTextCtrl* const box : boxes_) {
        if (box != boxes_.front())
            row->Add(new wxStaticText(parent, wxID_ANY, "-"), 0, wxALIGN_CENTER | wxLEFT | wxRIGHT, 2);
        row->Add(box);
    }
    return row;
}

void MacBoxRow::Bind(MacEntry& entry) {
    entry_ = &entry;
    for (int box = first_; box < first_ + kOctets; ++box) BindBox(box);
}

bool MacBoxRow::HandleArrow(int box, const wxKeyEvent& event) {
    const int key = event.GetKeyCode();
    if (key != WXK_LEFT && key != WXK_RIGHT) return false;
    return entry_->KeyDown(box, key == WXK_LEFT ? BoxKey::kLeft : BoxKey::kRight, event.ShiftDown(),
                           event.ControlDown());
}

bool MacBoxRow::HandleCharacter(int box, const wxKeyEvent& event, int character) {
    if (!IsTyped(character) || GivesCommand(event)) return false;
    entry_->KeyPress(box, character);
    return true;
}

void MacBoxRow::BindBox(int box) {
    wxTextCtrl& text = Box(box);
    // Where an input method deletes a selected text before it asks whether a character is wanted, keys are
    // taken before it sees them.
    text.Bind(wxEVT_KEY_DOWN, [this, box](wxKeyEvent& event) {
        if (!HandleArrow(box, event) && !HandleCharacter(box, event, TypedCharacter(event))) event.Skip();
    });
    // What the key going down did not tell, on some desktops all that is typed.
    text.Bind(wxEVT_CHAR, [this, box](wxKeyEvent& event) {
        if (!HandleCharacter(box, event, event.GetUnicodeKey())) event.Skip();
    });
    text.Bind(wxEVT_TEXT, [this, box](wxCommandEvent&) { entry_->Changed(box); });
    text.Bind(wxEVT_TEXT_PASTE, [this, box](wxClipboardTextEvent&) { entry_->Pasted(box, ClipboardText()); });
    text.Bind(wxEVT_LEFT_UP, [this, box, &text](wxMouseEvent& event) {
        event.Skip();
        // After the box itself is done with the click.
        text.CallAfter([this, box] { entry_->Clicked(box); });
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

void MacBoxRow::Enable(bool enable) {
    for (wxTextCtrl* const box : boxes_) box->Enable(enable);
}

std::string MacBoxRow::Text(int box) const { return Utf8(Box(box).GetValue()); }

void MacBoxRow::SetText(int box, const std::string& text) {
    if (Text(box) == text) return;
    Box(box).ChangeValue(Wx(text));
    entry_->Changed(box);
}

TextSelection MacBoxRow::Selection(int box) const { return SelectionOf(Box(box)); }
void MacBoxRow::Select(int box, TextSelection selection) { SelectIn(Box(box), selection); }
void MacBoxRow::Focus(int box) { Box(box).SetFocusFromKbd(); }

}  // namespace corvane
