#pragma once

#include <wx/panel.h>

namespace corvane {

/// The panel that fills a frame window and bears its controls, those in panels of their own included. Alt and
/// a control's letter work wherever in it the focus is: the system's dialogue manager would look in the panel
/// that has the focus only. A button's or box's letter presses it, a label's moves the focus to the control
/// that was made right after the label; a letter that several of them have moves the focus from one to the
/// next.
class Ground : public wxPanel {
 public:
    explicit Ground(wxWindow* frame) : wxPanel(frame) {}

 private:
    bool MSWTranslateMessage(WXMSG* message) override;
    bool Follow(wchar_t letter);
};

}  // namespace corvane
