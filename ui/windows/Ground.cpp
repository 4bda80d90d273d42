#include "ui/windows/Ground.h"

#include <algorithm>
#include <vector>

#include <wx/button.h>
#include <wx/checkbox.h>
#include <wx/stattext.h>

#include "platform/windows/Windows.h"

namespace corvane {

namespace {

/// The letter after the ampersand of a label, in upper case; 0 when there is none.
wxChar LetterOf(const wxString& label) {
    for (std::size_t i = 0; i + 1 < label.length(); ++i) {
        if (label[i] != '&') continue;
        if (label[i + 1] != '&') return static_cast<wxChar>(wxToupper(label[i + 1]));
        ++i;
    }
    return 0;
}

/// The control that was made right after a label.
wxWindow* LabelledBy(const wxWindow& label) {
    wxWindow* const control = label.GetNextSibling();
    return control != nullptr && control->AcceptsFocusRecursively() ? control : nullptr;
}

/// The control that a window's letter stands for; nullptr when it has another letter or none.
wxWindow* TargetOf(wxWindow& window, wxChar letter) {
    const bool label = dynamic_cast<wxStaticText*>(&window) != nullptr;
    const bool pressed =
        dynamic_cast<wxButton*>(&window) != nullptr || dynamic_cast<wxCheckBox*>(&window) != nullptr;
    if ((!label && !pressed) || LetterOf(window.GetLabel()) != letter) return nullptr;
    wxWindow* const target = label ? LabelledBy(window) : &window;
    return target != nullptr && target->IsEnabled() ? target : nullptr;
}

/// The controls below a window that are in sight and have a letter, in the order of the Tab key.
void Collect(const wxWindow& parent, wxChar letter, std::vector<wxWindow*>& targets) {
    for (wxWindow* const child : parent.GetChildren()) {
        if (!child->IsShown()) continue;
        if (wxWindow* const target = TargetOf(*child, letter)) targets.push_back(target);
        Collect(*child, letter, targets);
    }
}

}  // namespace

bool Ground::MSWTranslateMessage(WXMSG* message) {
    if (message->message == WM_SYSCHAR && Follow(static_cast<wchar_t>(message->wParam))) return true;
    return wxPanel::MSWTranslateMessage(message);
}

bool Ground::Follow(wchar_t letter) {
    std::vector<wxWindow*> targets;
    Collect(*this, static_cast<wxChar>(wxToupper(letter)), targets);
    if (targets.empty()) return false;
    auto next = std::find_if(targets.begin(), targets.end(), [](const wxWindow* target) {
        return target == FindFocus() || target->IsDescendant(FindFocus());
    });
    if (next == targets.end() || ++next == targets.end()) next = targets.begin();
    wxWindow& target = **next;
    const bool pressed =
        dynamic_cast<wxButton*>(&target) != nullptr || dynamic_cast<wxCheckBox*>(&target) != nullptr;
    target.SetFocusFromKbd();
    if (pressed && targets.size() == 1) PostMessageW(target.GetHWND(), BM_CLICK, 0, 0);
    return true;
}

}  // namespace corvane
