#pragma once

#include <wx/event.h>
#include <wx/frame.h>
#include <wx/stattext.h>
#include <wx/window.h>

#include "platform/Seat.h"

/// What the toolkit leaves to the desktop's own library. Defined once per desktop (ui/gtk, ui/windows).
namespace corvane {

/// What the controls of a frame window lie on and the Tab key goes round in: the frame itself, or a panel
/// that fills it. To be called once, before anything else is put into the frame.
wxWindow* MakeGround(wxFrame* frame);

/// Ties a label to the control that was made right after it: Alt and the label's mnemonic move the focus
/// there, and the label's text is the control's accessible name.
void LabelFor(const wxStaticText* label, wxWindow* control);

/// A mnemonic of a label moves the focus to the control and does nothing else. For controls that have another
/// accessible name than their label's text.
void FocusByMnemonic(wxWindow* control);

/// Names a control that has no label of its own for those who cannot see it.
void SetAccessibleName(wxWindow* control, const wxString& name);

/// Height of a text box of one line in its present font, frame included. `best` is what the toolkit would
/// give it.
int TextBoxHeight(const wxWindow& box, int best);

/// Leaves of a text box only its text: what it lies on draws the frame. Its size follows its text size; where
/// the text would not stand in the middle of a higher box, the box gets a largest height.
void DropFrame(wxWindow* box);

/// Gives a scrolling control plain scroll bars, which take room only when they are needed. Those that fade in
/// and out over the content cost as much at the start as the control itself.
void UsePlainScrollBars(wxWindow* control);

/// The character of a key that is down, with Shift and the like taken into account; 8 for backspace, 0 for a
/// key that types nothing. Also 0 where the desktop tells characters by wxEVT_CHAR only.
int TypedCharacter(const wxKeyEvent& down);

/// Whether Ctrl or Alt make a command of a key, so that it types nothing. The two together are AltGr on some
/// desktops, and type.
bool GivesCommand(const wxKeyEvent& key);

/// Shows the desktop's own message box and waits for its answer. Without a parent it stands alone.
BoxAnswer ShowMessageBox(wxWindow* parent, const wxString& title, const wxString& text, BoxIcon icon,
                         BoxButtons buttons);

/// Paints what is due and lets timers run; keys, clicks and everything else wait, in their order.
void LetWindowsPaint();

/// While one lives, no key, click or scroll reaches any window, and those that come are dropped; windows go
/// on painting. More than one may live at a time.
class InputHold {
 public:
    InputHold();
    ~InputHold();
    InputHold(const InputHold&) = delete;
    InputHold& operator=(const InputHold&) = delete;

 private:
    void* grab_;  ///< What the desktop holds the input with.
};

}  // namespace corvane
