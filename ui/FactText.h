#pragma once

#include <string>

#include <wx/stattext.h>

/// A text that the program shows and the user may want to copy: it can be selected, with the mouse and with
/// the keyboard, and not be changed. What does not fit ends in "..." and is whole in the tool tip.
namespace corvane {

class FactText : public wxStaticText {
 public:
    /// `name` is the accessible name.
    FactText(wxWindow* parent, const std::string& name);

    void SetText(const std::string& text);

    [[nodiscard]] bool AcceptsFocus() const override { return true; }
};

}  // namespace corvane
