#pragma once

#include <string>

#include <wx/dialog.h>

/// `frmAboutUs`: the about box.
namespace corvane {

class frmAboutUs : public wxDialog {
 public:
    frmAboutUs(wxWindow* parent, const std::string& osDescription);
};

}  // namespace corvane
