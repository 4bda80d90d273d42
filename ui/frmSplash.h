#pragma once

#include <wx/frame.h>

#include "ui/ProgramPicture.h"

/// `frmSplash`: what is seen while the program loads. It draws its labels itself: it is there for a moment
/// only.
namespace corvane {

class frmSplash : public wxFrame {
 public:
    frmSplash();

    /// Whether it has been seen: painted at least once.
    [[nodiscard]] bool Painted() const { return painted_; }

    void SetSystem(const wxString& text);
    void SetStatus(const wxString& text);
    void SetProgress(const wxString& text);

 private:
    void Set(wxString& label, const wxString& text);
    void OnPaint();

    ProgramPicture picture_;
    wxString labSystem_;
    wxString labStatus_;
    wxString labProgress_;
    bool painted_ = false;
};

}  // namespace corvane
