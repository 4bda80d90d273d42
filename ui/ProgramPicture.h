#pragma once

#include <wx/bmpbndl.h>
#include <wx/dc.h>
#include <wx/window.h>

/// The program's picture with its name and version, of the splash window and the about box.
namespace corvane {

class ProgramPicture {
 public:
    ProgramPicture();

    /// Its size in a window.
    [[nodiscard]] static wxSize Size(const wxWindow& window);
    void Draw(wxDC& dc, const wxWindow& window) const;

 private:
    wxBitmapBundle picture_;
};

}  // namespace corvane
