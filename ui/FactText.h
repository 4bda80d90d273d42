#pragma once

#include <string>

class wxWindow;

namespace corvane {

/// A text that the program shows and the user may want to copy: it can be selected, with the mouse and with
/// the keyboard, and not be changed. What does not fit is cut, and whole in the tool tip. Made of the
/// desktop's own control for that (ui/gtk, ui/windows).
class FactText {
 public:
    /// Makes one that goes with its parent. `name` is the accessible name.
    static FactText* Make(wxWindow* parent, const std::string& name);
    FactText(const FactText&) = delete;
    FactText& operator=(const FactText&) = delete;

    /// The control, for layouts.
    [[nodiscard]] virtual wxWindow* Window() = 0;

    virtual void SetText(const std::string& text) = 0;

 protected:
    FactText() = default;
    ~FactText() = default;
};

}  // namespace corvane
