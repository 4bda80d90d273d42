#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <wx/dialog.h>

class wxListBox;

/// `frmBrowseNetFolder`: lets the user point at the Network Connections folder.
namespace corvane {

class frmBrowseNetFolder : public wxDialog {
 public:
    frmBrowseNetFolder(wxWindow* parent, const std::string& title, const std::string& heading,
                       const std::string& instruction, const std::vector<std::string>& names);

    /// The entry that is selected in the list; nothing when none is.
    [[nodiscard]] std::optional<std::size_t> Choice() const;

 private:
    wxListBox* folders_;
};

}  // namespace corvane
