#pragma once

#include <string>

#include <wx/event.h>
#include <wx/stattext.h>
#include <wx/window.h>

class wxDataViewCtrl;

/// What the toolkit leaves to the desktop's own library. Defined once per desktop (ui/gtk).
namespace corvane {

/// The threads of the desktop's own libraries share one heap from now on, since they hardly need any: half a
/// mebibyte less. To be called before the toolkit is started.
void ShareHeap();

/// From now on a display that goes away ends the program with `words` on standard error and `exitCode`. To be
/// called when the toolkit has been started.
void EndWhenDisplayIsLost(const std::string& words, int exitCode);

/// Keeps the desktop library's complaints about layouts before the first size off standard error; all other
/// messages go there.
void DropLayoutMessages();

/// Ties a label to the control that was made right after it: Alt and the label's mnemonic move the focus
/// there, and the label's text is the control's accessible name.
void LabelFor(const wxStaticText* label, wxWindow* control);

/// A mnemonic of a label moves the focus to the control and does nothing else. For controls that have another
/// accessible name than their label's text.
void FocusByMnemonic(wxWindow* control);

/// Names a control that has no label of its own for those who cannot see it.
void SetAccessibleName(wxWindow* control, const wxString& name);

/// Leaves of a text box only its text: what it lies on draws the frame. Its size follows its text size.
void DropFrame(wxWindow* box);

/// Gives a scrolling control plain scroll bars, which take room only when they are needed. Those that fade in
/// and out over the content cost as much at the start as the control itself.
void UsePlainScrollBars(wxWindow* control);

/// Puts the cursor of a list, from which the arrow keys go on, on a row; that selects it too.
void MoveCursor(wxDataViewCtrl* list, int row);

/// The character of a key that is down, with Shift and the like taken into account; 8 for backspace, 0 for a
/// key that types nothing.
int TypedCharacter(const wxKeyEvent& down);

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
