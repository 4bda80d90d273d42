#pragma once

#include <string>

#include <wx/stattext.h>
#include <wx/window.h>

/// What the toolkit leaves to the desktop's own library. Defined once per desktop (ui/gtk).
namespace corvane {

/// From now on a display that goes away ends the program with `words` on standard error and `exitCode`. To be
/// called when the toolkit has been started.
void EndWhenDisplayIsLost(const std::string& words, int exitCode);

/// Ties a label to the control that was made right after it: Alt and the label's mnemonic move the focus
/// there, and the label's text is the control's accessible name.
void LabelFor(const wxStaticText* label, wxWindow* control);

/// Names a control that has no label of its own for those who cannot see it.
void SetAccessibleName(wxWindow* control, const wxString& name);

/// Gives a scrolling control plain scroll bars, which take room only when they are needed. Those that fade in and
/// out over the content cost as much at the start as the control itself.
void UsePlainScrollBars(wxWindow* control);

/// While one lives, no key, click or scroll reaches any window, and those that come are dropped; windows go
/// on painting.
class InputHold {
 public:
    InputHold();
    ~InputHold();
    InputHold(const InputHold&) = delete;
    InputHold& operator=(const InputHold&) = delete;

 private:
    void* grab_;
};

}  // namespace corvane
