#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <wx/bmpbndl.h>
#include <wx/dataview.h>

/// A report-style list: rows of texts under column titles, one selected row.
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

class RowList : public wxDataViewCtrl {
 public:
    /// `name` is the accessible name.
    RowList(wxWindow* parent, const std::string& name, const std::vector<ListColumn>& columns,
            bool withIcons);

    /// Replaces all rows; repaints only those that differ. The selection is not kept: select again.
    void SetRows(std::vector<ListRow> rows);
    /// Adds a row for the time until SetRows.
    void AppendRow(ListRow row);
    void SetText(std::size_t row, std::size_t column, const std::string& text);
    void SetTitle(std::size_t column, const std::string& title);

    /// Selects a row and makes it visible, without telling `OnSelect`.
    void SelectRow(std::size_t row);
    [[nodiscard]] std::optional<std::size_t> SelectedRow() const;
    [[nodiscard]] const std::vector<ListRow>& Rows() const { return rows_; }

    /// Called when the user selects a row.
    std::function<void(std::size_t row)> OnSelect;

    /// Called when the list gets the focus.
    std::function<void()> OnFocus;

    /// Height that shows `rows` rows and the titles.
    void SetVisibleRows(int rows);

    /// Draws the icons anew, after the theme changed.
    void ReloadIcons();

 private:
    class Model;

    /// For at least as many rows as there are.
    void ReplaceAndAdd(std::vector<ListRow> rows);
    void AddColumns(const std::vector<ListColumn>& columns, bool withIcons);
    const wxBitmapBundle& IconOf(const std::string& name);

    std::vector<ListRow> rows_;
    std::map<std::string, wxBitmapBundle> icons_;
    wxObjectDataPtr<Model> model_;
    bool quiet_ = false;
    bool appended_ = false;  ///< The last row is AppendRow's.
};

}  // namespace corvane
