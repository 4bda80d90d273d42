#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "ui/ControlNames.h"
#include "ui/EntryPanel.h"
#include "ui/RowList.h"
#include "ui/logic/AddressList.h"

class wxBoxSizer;
class wxButton;
class wxKeyEvent;
class wxSizer;
class wxWindow;

namespace corvane {

/// What differs between the three lists of addresses.
struct AddressListKind {
    ControlName control;
    const char* name;    ///< Title of the first column, and the accessible name.
    const char* second;  ///< Title of the second column; empty for none.
    int visibleRows;     ///< Rows that show without scrolling.
    int addCommand;      ///< Identifiers of the commands (ui/MainMenu.h).
    int removeCommand;
    int upCommand = 0;  ///< 0: the list has no order of its own.
    int downCommand = 0;
    const char* addTip;
    const char* removeTip;
};

/// Whoever an AddressListBox belongs to.
class AddressListHost {
 public:
    /// The buttons of a list were enabled or disabled.
    virtual void ListCommandsChanged() = 0;
    virtual void ListFocused(const wxWindow& list) = 0;

 protected:
    ~AddressListHost() = default;
};

/// One of the lists `ListIP`, `ListGateway`, `ListDNS` with its buttons beside it and room for its entry
/// panel below it. Buttons and keys (a digit adds, Delete removes, Alt+Up and Alt+Down move) send the
/// commands, as menu events, as long as they are enabled.
class AddressListBox : public AddressListView, private RowListHost {
 public:
    /// The host must outlive it.
    AddressListBox(wxWindow* parent, AddressListHost& host, const AddressListKind& kind);
    ~AddressListBox() override;

    /// The list, its buttons, its panel. To be added once.
    [[nodiscard]] wxSizer* Sizer() const;
    [[nodiscard]] RowList& List() const { return *list_; }
    /// Puts the entry panel below the list.
    void AddPanel(EntryPanel* panel);

    /// Shows rows and a header; the row with the text that was selected, else the one in its place, stays
    /// selected when `keepSelection`.
    void Fill(const std::vector<DetailsRow>& rows, const std::string& header, bool keepSelection);

    /// Whether the list may be edited; what needs a selected row needs that too.
    void EnableCommands(bool enable);

    /// Whether one of the list's own commands can be given now.
    [[nodiscard]] bool CommandEnabled(int command) const;

    // AddressListView
    [[nodiscard]] const std::vector<DetailsRow>& Rows() const override { return rows_; }
    void SetRows(const std::vector<DetailsRow>& rows) override;
    void SetHeader(const std::string& text) override;
    [[nodiscard]] std::optional<std::size_t> SelectedRow() const override;
    void SelectRow(std::size_t row) override;

 private:
    // RowListHost
    void RowSelected(std::size_t row) override;
    void ListFocused() override;
    void ListMenuAsked() override;

    wxButton* AddButton(wxWindow* parent, wxSizer* sizer, int command, const char* icon, const char* tip);
    void BindKeys();
    /// The command that a key stands for; 0 for none.
    [[nodiscard]] int CommandOf(const wxKeyEvent& event) const;
    void UpdateButtons();
    /// The button of a command; nullptr for another list's.
    [[nodiscard]] wxButton* ButtonOf(int command) const;

    AddressListHost& host_;
    AddressListKind kind_;
    std::vector<DetailsRow> rows_;
    bool enabled_ = false;
    RowList* list_;
    wxBoxSizer* sizer_;
    std::vector<wxButton*> buttons_;  ///< In the tab order.
};

}  // namespace corvane
