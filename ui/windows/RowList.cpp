#include "ui/RowList.h"

#include <algorithm>
#include <utility>

#include <wx/listctrl.h>
#include <wx/msw/wrapcctl.h>

#include "ui/Desktop.h"
#include "ui/Icons.h"
#include "ui/WxText.h"

namespace corvane {

namespace {

constexpr long kSelected = wxLIST_STATE_SELECTED | wxLIST_STATE_FOCUSED;

/// The common list view, which asks for the texts of the rows that it paints.
class ListViewRowList : public wxListCtrl, public RowList {
 public:
    ListViewRowList(wxWindow* parent, RowListHost& host, const std::string& name,
                    const std::vector<ListColumn>& columns);

    [[nodiscard]] wxWindow& Window() override { return *this; }
    void SetRows(std::vector<ListRow> rows) override;
    void AppendRow(ListRow row) override;
    void SetText(std::size_t row, std::size_t column, const std::string& text) override;
    void SetTitle(std::size_t column, const std::string& title) override;
    void SelectRow(std::size_t row) override;
    void ClearSelection() override;
    [[nodiscard]] std::optional<std::size_t> SelectedRow() const override;
    void SetVisibleRows(int rows) override;
    void ReloadIcons() override;

 private:
    [[nodiscard]] wxString OnGetItemText(long row, long column) const override;
    [[nodiscard]] int OnGetItemImage(long row) const override;
    void BindEvents();
    /// Tells the control how many rows there are.
    void ShowCount(std::size_t rows);
    void Select(long row);
    /// A selected row stays selected, wherever the user clicks.
    void KeepSelection();
    /// The last column takes the room that the others leave.
    void WidenLastColumn();
    /// Makes the drawing of an icon known to the control.
    void AddIcon(const std::string& name);

    RowListHost& host_;
    std::vector<ListRow> rows_;
    std::vector<std::string> icons_;  ///< In the order of the control's images.
    std::optional<std::size_t> selected_;
    int lastColumnCharacters_;  ///< The least that it has room for.
    bool quiet_ = false;
};

ListViewRowList::ListViewRowList(wxWindow* parent, RowListHost& host, const std::string& name,
                                 const std::vector<ListColumn>& columns)
    : wxListCtrl(parent, wxID_ANY, wxDefaultPosition, wxSize(200, 100),
                 wxLC_REPORT | wxLC_SINGLE_SEL | wxLC_VIRTUAL),
      host_(host),
      lastColumnCharacters_(columns.back().widthInCharacters) {
    // Columns stay in their order, as they are titled for.
    ListView_SetExtendedListViewStyleEx(GetHWND(), LVS_EX_HEADERDRAGDROP, 0);
    for (const ListColumn& column : columns) {
        AppendColumn(Wx(column.title), wxLIST_FORMAT_LEFT, (column.widthInCharacters + 2) * GetCharWidth());
    }
    SetAccessibleName(this, Wx(name));
    BindEvents();
}

void ListViewRowList::BindEvents() {
    Bind(wxEVT_SET_FOCUS, [this](wxFocusEvent& event) {
        event.Skip();
        host_.ListFocused();
    });
    Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
        event.Skip();
        WidenLastColumn();
    });
    Bind(wxEVT_LIST_ITEM_SELECTED, [this](wxListEvent& event) {
        event.Skip();
        if (quiet_) return;
        selected_ = SelectedRow();
        if (selected_) host_.RowSelected(*selected_);
    });
    Bind(wxEVT_LIST_ITEM_DESELECTED, [this](wxListEvent& event) {
        event.Skip();
        // When the control is done: another row may be selected right away.
        if (!quiet_) CallAfter([this] { KeepSelection(); });
    });
    Bind(wxEVT_LIST_ITEM_ACTIVATED, [this](wxListEvent&) { host_.RowActivated(); });
    Bind(wxEVT_CONTEXT_MENU, [this](wxContextMenuEvent&) { host_.ListMenuAsked(); });
}

wxString ListViewRowList::OnGetItemText(long row, long column) const {
    return Wx(rows_.at(static_cast<std::size_t>(row)).texts.at(static_cast<std::size_t>(column)));
}

int ListViewRowList::OnGetItemImage(long row) const {
    const auto icon = std::find(icons_.begin(), icons_.end(), rows_.at(static_cast<std::size_t>(row)).icon);
    return icon == icons_.end() ? -1 : static_cast<int>(icon - icons_.begin());
}

void ListViewRowList::SetRows(std::vector<ListRow> rows) {
    const std::size_t before = rows_.size();
    // The control may ask for the texts of its rows at any moment, so it never has more of them than there
    // are.
    if (rows.size() < before) ShowCount(rows.size());
    std::swap(rows_, rows);
    if (rows_.size() > before) ShowCount(rows_.size());
    for (const ListRow& row : rows_) AddIcon(row.icon);
    // What lies below the last row is no row's, and so not painted by asking for rows.
    if (rows_.size() < before) Refresh();
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        if (i >= before || !(rows[i] == rows_[i])) RefreshItem(static_cast<long>(i));
    }
}

void ListViewRowList::ShowCount(std::size_t rows) {
    quiet_ = true;
    SetItemCount(static_cast<long>(rows));
    quiet_ = false;
}

void ListViewRowList::AppendRow(ListRow row) {
    AddIcon(row.icon);
    rows_.push_back(std::move(row));
    ShowCount(rows_.size());
    RefreshItem(static_cast<long>(rows_.size()) - 1);
}

void ListViewRowList::SetText(std::size_t row, std::size_t column, const std::string& text) {
    std::string& shown = rows_.at(row).texts.at(column);
    if (shown == text) return;
    shown = text;
    RefreshItem(static_cast<long>(row));
}

void ListViewRowList::SetTitle(std::size_t column, const std::string& title) {
    const auto place = static_cast<int>(column);
    const wxString text = Wx(title);
    wxListItem item;
    item.SetMask(wxLIST_MASK_TEXT);
    GetColumn(place, item);
    if (item.GetText() == text) return;
    item.SetMask(wxLIST_MASK_TEXT);
    item.SetText(text);
    SetColumn(place, item);
}

void ListViewRowList::Select(long row) {
    quiet_ = true;
    SetItemState(row, kSelected, kSelected);
    quiet_ = false;
}

void ListViewRowList::SelectRow(std::size_t row) {
    const bool selected = SelectedRow() == row;
    selected_ = row;
    Select(static_cast<long>(row));
    if (!selected) EnsureVisible(static_cast<long>(row));
}

void ListViewRowList::ClearSelection() {
    selected_.reset();
    const std::optional<std::size_t> row = SelectedRow();
    if (!row) return;
    quiet_ = true;
    SetItemState(static_cast<long>(*row), 0, wxLIST_STATE_SELECTED);
    quiet_ = false;
}

void ListViewRowList::KeepSelection() {
    if (!SelectedRow() && selected_ && *selected_ < rows_.size()) Select(static_cast<long>(*selected_));
}

std::optional<std::size_t> ListViewRowList::SelectedRow() const {
    const long row = GetNextItem(-1, wxLIST_NEXT_ALL, wxLIST_STATE_SELECTED);
    if (row < 0 || static_cast<std::size_t>(row) >= rows_.size()) return std::nullopt;
    return static_cast<std::size_t>(row);
}

void ListViewRowList::SetVisibleRows(int rows) {
    const DWORD size = ListView_ApproximateViewRect(GetHWND(), -1, -1, rows);
    SetMinSize(wxSize(-1, HIWORD(size) + GetSize().y - GetClientSize().y));
}

void ListViewRowList::WidenLastColumn() {
    const int last = GetColumnCount() - 1;
    int room = GetClientSize().x;
    for (int column = 0; column < last; ++column) room -= GetColumnWidth(column);
    const int least = (lastColumnCharacters_ + 2) * GetCharWidth();
    if (const int width = std::max(room, least); GetColumnWidth(last) != width) SetColumnWidth(last, width);
}

void ListViewRowList::AddIcon(const std::string& name) {
    if (name.empty() || std::find(icons_.begin(), icons_.end(), name) != icons_.end()) return;
    icons_.push_back(name);
    ReloadIcons();
}

void ListViewRowList::ReloadIcons() {
    wxVector<wxBitmapBundle> images;
    for (const std::string& name : icons_) images.push_back(Icon(name));
    SetSmallImages(images);
    Refresh();
}

}  // namespace

RowList* RowList::Make(wxWindow* parent, RowListHost& host, const std::string& name,
                       const std::vector<ListColumn>& columns, bool) {
    return new ListViewRowList(parent, host, name, columns);
}

}  // namespace corvane
