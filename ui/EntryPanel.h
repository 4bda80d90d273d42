#pragma once

#include <functional>
#include <string>

#include <wx/panel.h>

class wxBoxSizer;
class wxButton;
class wxStaticText;

namespace corvane {

/// A panel in which something is entered for a list: a caption, controls, a button that adds and one that
/// closes it. Hidden at first. While the focus is in it, Enter presses its add button.
class EntryPanel : public wxPanel {
 public:
    EntryPanel(wxWindow* parent, const std::string& caption, const std::string& addLabel);
    ~EntryPanel() override;

    /// The add button was pressed.
    std::function<void()> OnAdd;
    /// The panel is going to be shown.
    std::function<void()> OnOpen;
    /// The panel was shown or hidden: what it lies in lays itself out anew.
    std::function<void()> OnLayout;
    /// The panel was closed, by its button or by Escape.
    std::function<void()> OnClosed;

    void Open();
    /// Closes it without telling OnClosed; nothing when it is closed.
    void Dismiss();
    void Close();
    [[nodiscard]] bool IsOpen() const { return IsShown(); }
    void MakeDefault();

 protected:
    /// The caption, and what the panel puts below it.
    wxStaticText* caption_;
    wxBoxSizer* content_;

 private:
    wxButton* add_;
    wxButton* close_;
};

}  // namespace corvane
