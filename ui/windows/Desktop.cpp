#include "ui/Desktop.h"

#include <array>
#include <cstddef>

#include <wx/access.h>

#include "platform/windows/Windows.h"
#include "ui/windows/Ground.h"
#include "ui/windows/Input.h"

namespace corvane {

namespace {

/// Names a control; all else is told by the system's own object for it.
class NamedAccessible : public wxAccessible {
 public:
    explicit NamedAccessible(wxWindow* control) : wxAccessible(control) {}

    wxAccStatus GetName(int child, wxString* name) override {
        if (child != wxACC_SELF) return wxACC_NOT_IMPLEMENTED;
        *name = name_;
        return wxACC_OK;
    }
    void SetName(const wxString& name) { name_ = name; }

 private:
    wxString name_;
};

}  // namespace

// A frame has the colour of a workspace, and is none of the windows that the Tab key goes round in.
wxWindow* MakeGround(wxFrame* frame) { return new Ground(frame); }

// The ground of a frame, and in a dialogue the system, move the focus to the control that was made right
// after the label.
void FocusByMnemonic(wxWindow*) {}

void LabelFor(const wxStaticText* label, wxWindow* control) {
    SetAccessibleName(control, label->GetLabelText());
}

void SetAccessibleName(wxWindow* control, const wxString& name) {
    auto* accessible = dynamic_cast<NamedAccessible*>(control->GetAccessible());
    if (accessible == nullptr) {
        accessible = new NamedAccessible(control);
        control->SetAccessible(accessible);
    }
    accessible->SetName(name);
}

int TextBoxHeight(const wxWindow& box, int best) {
    // The system puts the text at the top of a box, so one with a frame is as high as the text needs.
    static constexpr int kMargins = 6;
    return box.HasFlag(wxBORDER_NONE) ? box.GetCharHeight() + box.FromDIP(kMargins) : best;
}

void DropFrame(wxWindow* box) {
    box->SetWindowStyle((box->GetWindowStyle() & ~wxBORDER_MASK) | wxBORDER_NONE);
    box->SetMaxSize(wxSize(-1, box->GetCharHeight()));
}

// The system has no others.
void UsePlainScrollBars(wxWindow*) {}

bool GivesCommand(const wxKeyEvent& key) { return key.ControlDown() != key.AltDown(); }

// The system sends the character after the key, and nothing is done to the text before it is there.
int TypedCharacter(const wxKeyEvent&) { return 0; }

BoxAnswer ShowMessageBox(wxWindow* parent, const wxString& title, const wxString& text, BoxIcon icon,
                         BoxButtons buttons) {
    UINT style = buttons == BoxButtons::kOk ? MB_OK : MB_YESNOCANCEL;
    switch (icon) {
        case BoxIcon::kCritical:
            style |= MB_ICONERROR;
            break;
        case BoxIcon::kExclamation:
            style |= MB_ICONEXCLAMATION;
            break;
        case BoxIcon::kInformation:
            style |= MB_ICONINFORMATION;
            break;
        case BoxIcon::kQuestion:
            style |= MB_ICONQUESTION;
            break;
    }
    const HWND owner = parent == nullptr ? nullptr : static_cast<HWND>(parent->GetHWND());
    if (owner == nullptr) style |= MB_TASKMODAL | MB_SETFOREGROUND;
    switch (MessageBoxW(owner, text.wc_str(), title.wc_str(), style)) {
        case IDOK:
            return BoxAnswer::kOk;
        case IDYES:
            return BoxAnswer::kYes;
        case IDNO:
            return BoxAnswer::kNo;
        default:
            return BoxAnswer::kCancel;
    }
}

void LetWindowsPaint() {
    // The toolkit's own way takes all other messages out of the queue and puts them back without their
    // windows, so that keys are lost. A window that is never done with its painting is not waited for.
    static constexpr int kMostMessages = 200;
    MSG message;
    for (int i = 0; i < kMostMessages; ++i) {
        if (PeekMessageW(&message, nullptr, WM_PAINT, WM_PAINT, PM_REMOVE) == 0 &&
            PeekMessageW(&message, nullptr, WM_TIMER, WM_TIMER, PM_REMOVE) == 0) {
            return;
        }
        DispatchMessageW(&message);
    }
}

namespace {

/// The hooks of all holds: the first one sets them, the last one takes them away.
struct Hooks {
    int holds = 0;
    HHOOK keyboard = nullptr;
    HHOOK mouse = nullptr;
} hooks;

/// Drops every key, respectively everything of the mouse, on its way out of the thread's queue.
LRESULT CALLBACK DropInput(int code, WPARAM word, LPARAM data) {
    return code < 0 ? CallNextHookEx(nullptr, code, word, data) : 1;
}

}  // namespace

bool InputIsHeld() { return hooks.holds > 0; }

InputHold::InputHold() : grab_(nullptr) {
    if (hooks.holds++ > 0) return;
    const DWORD thread = GetCurrentThreadId();
    hooks.keyboard = SetWindowsHookExW(WH_KEYBOARD, DropInput, nullptr, thread);
    hooks.mouse = SetWindowsHookExW(WH_MOUSE, DropInput, nullptr, thread);
}

InputHold::~InputHold() {
    if (--hooks.holds > 0) return;
    UnhookWindowsHookEx(hooks.keyboard);
    UnhookWindowsHookEx(hooks.mouse);
}

}  // namespace corvane
