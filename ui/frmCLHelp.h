#pragma once

#include <string>

#include <wx/dialog.h>

/// `frmCLHelp`: the usage text of the command line in a window.
namespace corvane {

class frmCLHelp : public wxDialog {
 public:
    explicit frmCLHelp(const std::string& text);
};

}  // namespace corvane
