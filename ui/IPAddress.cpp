#include "ui/IPAddress.h"

#include <algorithm>
#include <utility>

#include <wx/dcclient.h>
#include <wx/renderer.h>
#include <wx/settings.h>
#include <wx/textctrl.h>
#include <wx/utils.h>

#include "ui/ControlNames.h"
#include "ui/Desktop.h"
#include "ui/TextBox.h"
#include "ui/WxText.h"

namespace corvane {

namespace {

/// Room between the frame and what is in it, in pixels at the normal scale.
constexpr int kPadding = 4;

/// The code of a key that edits with Ctrl, as the rules know it; 0 for the commands of the menus.
int EditingKey(const wxKeyEvent& down) {
    const int key = down.GetKeyCode();
    const bool edits = !down.AltDown() && (key == 'C' || key == 'V' || key == 'X' || key == 'Z');
    return edits ? key - 'A' + 1 : 0;
}

}  // namespace

wxClassInfo IPAddress::ms_classInfo(wxT("NICX.IPAddress"), &wxPanel::ms_classInfo, nullptr,
                                    static_cast<int>(sizeof(IPAddress)),
                                    []() -> wxObject* { return new IPAddress; });

IPAddress::~IPAddress() {
    // The boxes report a lost focus to the rules even now.
    DestroyChildren();
}

IPAddress* IPAddress::Make(wxWindow* parent, const wxString& name, IPAddressEvents& events) {
    auto* const control = static_cast<IPAddress*>(wxCreateDynamicObject(kProgrammaticId));
    control->Create(parent, name, events);
    return control;
}

bool IPAddress::Create(wxWindow* parent, const wxString& name, IPAddressEvents& events) {
    if (!wxPanel::Create(parent)) return false;
    events_ = &events;
    entry_.Tell(events);
    for (int box = 0; box < kQuadBoxes; ++box) {
        wxTextCtrl* const text = Named("Text1", MakeDigitBox(this, kQuadDigits, wxTE_CENTRE | wxBORDER_NONE));
        SetAccessibleName(text, wxString::Format("%s, octet %d of %d", name, box + 1, kQuadBoxes));
        boxes_[static_cast<std::size_t>(box)] = text;
        DropFrame(text);
        BindBox(box);
    }
    LayBoxes();
    Bind(wxEVT_PAINT, [this](wxPaintEvent&) { OnPaint(); });
    Bind(wxEVT_SIZE, [this](wxSizeEvent&) {
        // The size is fixed.
        if (GetSize() != size_) SetSize(size_);
    });
    return true;
}

void IPAddress::LayBoxes() {
    const int padding = FromDIP(kPadding);
    const int dot = GetTextExtent(".").x + padding;
    int x = padding;
    int height = 0;
    for (wxTextCtrl* const box : boxes_) {
        const wxSize size = box->GetMinSize();
        const int own = box->GetMaxHeight() > 0 ? std::min(box->GetMaxHeight(), size.y) : size.y;
        box->SetSize(x, padding / 2 + (size.y - own) / 2, size.x, own);
        x += size.x + dot;
        height = size.y;
    }
    size_ = wxSize(x - dot + padding, height + padding);
    SetMinSize(size_);
    SetMaxSize(size_);
    SetSize(size_);
}

bool IPAddress::TakesKey(int box, const wxKeyEvent& event) {
    const int key = event.GetKeyCode();
    if (key == WXK_LEFT || key == WXK_RIGHT) {
        return !event.AltDown() && entry_.KeyDown(box, key == WXK_LEFT ? BoxKey::kLeft : BoxKey::kRight,
                                                  event.ShiftDown(), event.ControlDown());
    }
    letThrough_ = 0;
    if (GivesCommand(event)) {
        const int character = EditingKey(event);
        return character != 0 && !entry_.KeyPress(box, character);
    }
    const int character = TypedCharacter(event);
    if (TakesCharacter(box, character)) return true;
    letThrough_ = character;
    return false;
}

bool IPAddress::TakesCharacter(int box, int character) {
    return IsTyped(character) && !entry_.KeyPress(box, character);
}

void IPAddress::BindBox(int box) {
    wxTextCtrl& text = Box(box);
    // Where an input method deletes a selected text before it asks whether a character is wanted, keys are
    // taken before it sees them.
    text.Bind(wxEVT_KEY_DOWN, [this, box](wxKeyEvent& event) { event.Skip(!TakesKey(box, event)); });
    text.Bind(wxEVT_CHAR, [this, box](wxKeyEvent& event) {
        // What the key going down did not tell, on some desktops all that is typed.
        const int character = event.GetUnicodeKey();  // NOLINT(bugprone-signed-char-misuse): wchar_t
        const bool asked = character == std::exchange(letThrough_, 0);
        event.Skip(GivesCommand(event) || asked || !TakesCharacter(box, character));
    });
    text.Bind(wxEVT_TEXT, [this, box](wxCommandEvent&) { entry_.Changed(box); });
    text.Bind(wxEVT_TEXT_PASTE, [this, box](wxClipboardTextEvent&) { entry_.Pasted(box, ClipboardText()); });
    text.Bind(wxEVT_LEFT_DOWN, [this, box, &text](wxMouseEvent& event) {
        event.Skip();
        // A click that brings the focus places the caret behind the focus event.
        if (text.HasFocus()) return;
        text.CallAfter([this, box, &text] {
            if (text.HasFocus()) entry_.FocusGained(box);
        });
    });
    text.Bind(wxEVT_SET_FOCUS, [this, box](wxFocusEvent& event) {
        event.Skip();
        if (std::exchange(toldFocus_, -1) != box) entry_.FocusGained(box);
        Refresh();
        events_->Focus();
    });
    text.Bind(wxEVT_KILL_FOCUS, [this, box](wxFocusEvent& event) {
        event.Skip();
        entry_.FocusLost(box);
        Refresh();
    });
}

void IPAddress::OnPaint() {
    wxPaintDC dc(this);
    const wxWindow* const focused = FindFocus();
    const bool hasFocus = focused != nullptr && focused->GetParent() == this;
    wxRendererNative::Get().DrawTextCtrl(this, dc, GetClientRect(),
                                         hasFocus ? wxCONTROL_FOCUSED : wxCONTROL_NONE);
    dc.SetFont(GetFont());
    dc.SetTextForeground(wxSystemSettings::GetColour(wxSYS_COLOUR_WINDOWTEXT));
    for (int box = 0; box + 1 < kQuadBoxes; ++box) {
        const wxRect left = Box(box).GetRect();
        const wxRect gap(left.GetRight() + 1, left.y, Box(box + 1).GetRect().x - left.GetRight() - 1,
                         left.height);
        dc.DrawLabel(".", gap, wxALIGN_CENTER);
    }
}

void IPAddress::SetFocus() { Focus(0); }

std::string IPAddress::BoxText(int box) const { return Utf8(Box(box).GetValue()); }

void IPAddress::SetBoxText(int box, const std::string& text) {
    if (BoxText(box) == text) return;
    Box(box).ChangeValue(Wx(text));
    entry_.Changed(box);
}

TextSelection IPAddress::Selection(int box) const { return SelectionOf(Box(box)); }
void IPAddress::Select(int box, TextSelection selection) { SelectIn(Box(box), selection); }

void IPAddress::Focus(int box) {
    if (!Box(box).HasFocus()) toldFocus_ = box;
    Box(box).SetFocus();
    // The toolkit selects the whole text behind its own event.
    entry_.FocusGained(box);
}

void IPAddress::Beep() { wxBell(); }

}  // namespace corvane
