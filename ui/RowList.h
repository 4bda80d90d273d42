#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

class wxWindow;

/// A report-style list: rows of texts under column titles, one selected row. Made of the desktop's own list
/// control (ui/gtk, ui/windows).
namespace corvane {

struct ListColumn {
    std::string title;
    int widthInCharacters;
};

struct ListRow {
    std::vector<std::string> texts;  ///< One for each column.
    std::string icon;  ///< Name of a drawing (ui/Icons.h) in front of the first text; empty for none.

    bool operator==(const ListRow&) const = default;
};

/// Whoever a list belongs to. What it does not care for it leaves alone.
class RowListHost {
 public:
    /// The user selected a row.
    virtual void RowSelected(std::size_t row) = 0;
    /// The list got the focus.
    virtual void ListFocused() {}
    /// A row was double-clicked, or Enter was pressed on it.
    virtual void RowActivated() {}
    /// The list's menu is asked for, with the mouse or with the keyboard.
    virtual void ListMenuAsked() {}

 protected:
    ~RowListHost() = default;
};

class RowList {
 public:
    /// Makes one that goes with its parent; the host must outlive it. `name` is the accessible name.
    static RowList* Make(wxWindow* parent, RowListHost& host, const std::string& name,
                         const std::vector<ListColumn>& columns, bool withIcons);
    RowList(const RowList&) = delete;
    RowList& operator=(const RowList&) = delete;

    /// The control, for layouts, focus and keys.
    [[nodiscard]] virtual wxWindow& Window() = 0;

    /// Replaces all rows; repaints only those that differ. The selection is not kept: select again.
    virtual void SetRows(std::vector<ListRow> rows) = 0;
    /// Adds a row for the time until SetRows.
    virtual void AppendRow(ListRow row) = 0;
    virtual void SetText(std::size_t row, std::size_t column, const std::string& text) = 0;
    virtual void SetTitle(std::size_t column, const std::string& title) = 0;

    /// Selects a row and makes it visible, without telling the host.
    virtual void SelectRow(std::size_t row) = 0;
    /// No row is selected any more, without telling the host.
    virtual void ClearSelection() = 0;
    [[nodiscard]] virtual std::optional<std::size_t> SelectedRow() const = 0;

    /// Height that shows `rows` rows and the titles.
    virtual void SetVisibleRows(int rows) = 0;

    /// Draws the icons anew, after the theme changed.
    virtual void ReloadIcons() = 0;

 protected:
    RowList() = default;
    ~RowList() = default;
};

}  // namespace corvane
