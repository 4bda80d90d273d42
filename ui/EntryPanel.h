#pragma once

#include <functional>

#include <wx/panel.h>

#include "ui/ControlNames.h"
#include "ui/logic/AddressList.h"

class wxBoxSizer;
class wxButton;
class wxStaticText;

namespace corvane {

class EntryPanel;

/// What an entry panel asks of what it lies in.
class EntryPanelHost {
 public:
    /// Runs a command, one at a time: nothing while another runs.
    virtual void Run(const std::function<void()>& command) = 0;
    /// What editing works on now.
    [[nodiscard]] virtual EditingTarget Target() const = 0;
    /// A panel is going to be shown.
    virtual void PanelOpens(const EntryPanel& panel) = 0;
    /// A panel was shown or hidden.
    virtual void PanelShown(const EntryPanel& panel) = 0;
    /// A panel was closed, by its button or by Escape.
    virtual void PanelClosed(const EntryPanel& panel) = 0;

 protected:
    ~EntryPanelHost() = default;
};

/// What differs between the entry panels, their content apart.
struct EntryPanelKind {
    ControlName panel;
    ControlName add;
    ControlName close;
    const char* caption;
    const char* addLabel;
};

/// A panel in which something is entered for a list: a caption, controls, a button that adds and one that
/// closes it. Hidden at first. While the focus is in it, Enter presses its add button.
class EntryPanel : public wxPanel {
 public:
    /// The host must outlive it.
    EntryPanel(wxWindow* parent, EntryPanelHost& host, const EntryPanelKind& kind);
    ~EntryPanel() override;

    void Open();
    /// Closes it without telling that it was closed; nothing when it is.
    void Dismiss();
    void Close();
    [[nodiscard]] bool IsOpen() const { return IsShown(); }
    void MakeDefault();

 protected:
    /// The add button was pressed: adds what was entered.
    virtual void Add(const EditingTarget& target) = 0;

    EntryPanelHost& host_;
    /// The caption, and what the panel puts below it.
    wxStaticText* caption_;
    wxBoxSizer* content_;

 private:
    wxButton* add_;
    wxButton* close_;
};

}  // namespace corvane
