#include "ui/TextBox.h"

#include <wx/clipbrd.h>
#include <wx/defs.h>
#include <wx/textctrl.h>

#include "ui/Desktop.h"
#include "ui/WxText.h"

namespace corvane {

namespace {

void SetRoom(wxTextCtrl& box, int characters) {
    const wxString widest('M', static_cast<std::size_t>(characters));
    wxSize size = characters == 0 ? box.GetBestSize() : box.GetSizeFromTextSize(box.GetTextExtent(widest).x);
    size.y = TextBoxHeight(box, size.y);
    box.SetInitialSize(size);
}

}  // namespace

wxTextCtrl* MakeTextBox(wxWindow* parent, int characters, long style) {
    auto* const box = new wxTextCtrl(parent, wxID_ANY, "", wxDefaultPosition, wxDefaultSize, style);
    SetRoom(*box, characters);
    return box;
}

wxTextCtrl* MakeDigitBox(wxWindow* parent, int digits, long style) {
    wxTextCtrl* const box = MakeTextBox(parent, 0, style);
    box->SetMaxLength(static_cast<unsigned long>(digits));
    box->SetFont(wxFont(wxFontInfo(box->GetFont().GetFractionalPointSize()).Family(wxFONTFAMILY_TELETYPE)));
    SetRoom(*box, digits);
    return box;
}

TextSelection SelectionOf(const wxTextCtrl& box) {
    long from = 0;
    long to = 0;
    box.GetSelection(&from, &to);
    if (from == to) return {static_cast<int>(box.GetInsertionPoint()), 0};
    return {static_cast<int>(from), static_cast<int>(to - from)};
}

void SelectIn(wxTextCtrl& box, TextSelection selection) {
    if (selection.length == 0) {
        box.SetInsertionPoint(selection.start);
    } else {
        box.SetSelection(selection.start, selection.start + selection.length);
    }
}

bool IsTyped(int character) {
    return character == WXK_BACK || (character >= WXK_SPACE && character != WXK_DELETE);
}

std::string ClipboardText() {
    wxTextDataObject data;
    const wxClipboardLocker locker;
    if (!locker || !wxTheClipboard->GetData(data)) return {};
    return Utf8(data.GetText());
}

}  // namespace corvane
