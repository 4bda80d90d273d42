#include "ui/RowList.h"

#include <map>
#include <utility>

#include <gtk/gtk.h>
#include <wx/bmpbndl.h>
#include <wx/dataview.h>

#include "ui/Desktop.h"
#include "ui/Icons.h"
#include "ui/WxText.h"
#include "ui/gtk/Callback.h"

namespace corvane {

namespace {

/// Puts the cursor of a list, from which the arrow keys go on, on a row; that selects it too.
void MoveCursor(wxDataViewCtrl* list, int row) {
    GtkTreePath* const path = gtk_tree_path_new_from_indices(row, -1);
    gtk_tree_view_set_cursor(GTK_TREE_VIEW(list->GtkGetTreeView()), path, nullptr, FALSE);
    gtk_tree_path_free(path);
}

class DataViewRowList : public wxDataViewCtrl, public RowList {
 public:
    DataViewRowList(wxWindow* parent, RowListHost& host, const std::string& name,
                    const std::vector<ListColumn>& columns, bool withIcons);

    [[nodiscard]] wxWindow& Window() override { return *this; }
    void SetRows(std::vector<ListRow> rows) override;
    void AppendRow(ListRow row) override;
    void SetText(std::size_t row, std::size_t column, const std::string& text) override;
    void SetTitle(std::size_t column, const std::string& title) override;
    void SelectRow(std::size_t row) override;
    void ClearSelection() override { UnselectAll(); }
    [[nodiscard]] std::optional<std::size_t> SelectedRow() const override;
    void SetVisibleRows(int rows) override;
    void ReloadIcons() override;

 private:
    class Model;

    void BindEvents();
    /// For at least as many rows as there are.
    void ReplaceAndAdd(std::vector<ListRow> rows);
    void AddColumns(const std::vector<ListColumn>& columns, bool withIcons);
    const wxBitmapBundle& IconOf(const std::string& name);

    RowListHost& host_;
    std::vector<ListRow> rows_;
    std::map<std::string, wxBitmapBundle> icons_;
    wxObjectDataPtr<Model> model_;
    bool quiet_ = false;
    bool appended_ = false;  ///< The last row is AppendRow's.
};

/// The rows as the control asks for them.
class DataViewRowList::Model : public wxDataViewVirtualListModel {
 public:
    explicit Model(DataViewRowList& list) : list_(list) {}

    void GetValueByRow(wxVariant& value, unsigned row, unsigned column) const override {
        RunCallback([&] {
            const ListRow& shown = list_.rows_.at(row);
            const wxString text = Wx(shown.texts.at(column));
            if (column == 0 && GetColumnType(0) == "wxDataViewIconText") {
                value << wxDataViewIconText(text, list_.IconOf(shown.icon));
            } else {
                value = text;
            }
        });
    }
    bool SetValueByRow(const wxVariant&, unsigned, unsigned) override { return false; }
    wxString GetColumnType(unsigned column) const override {
        return column == 0 && withIcons ? "wxDataViewIconText" : "string";
    }

    bool withIcons = false;

 private:
    DataViewRowList& list_;
};

DataViewRowList::DataViewRowList(wxWindow* parent, RowListHost& host, const std::string& name,
                                 const std::vector<ListColumn>& columns, bool withIcons)
    : wxDataViewCtrl(parent, wxID_ANY, wxDefaultPosition, wxSize(200, 100), wxDV_SINGLE | wxDV_ROW_LINES),
      host_(host),
      model_(new Model(*this)) {
    model_->withIcons = withIcons;
    AssociateModel(model_.get());
    AddColumns(columns, withIcons);
    SetAccessibleName(this, Wx(name));
    UsePlainScrollBars(this);
    BindEvents();
}

void DataViewRowList::BindEvents() {
    GetMainWindow()->Bind(wxEVT_SET_FOCUS, [this](wxFocusEvent& event) {
        event.Skip();
        host_.ListFocused();
    });
    Bind(wxEVT_DATAVIEW_SELECTION_CHANGED, [this](wxDataViewEvent& event) {
        event.Skip();
        const std::optional<std::size_t> row = SelectedRow();
        if (!quiet_ && row) host_.RowSelected(*row);
    });
    Bind(wxEVT_DATAVIEW_ITEM_ACTIVATED, [this](wxDataViewEvent&) { host_.RowActivated(); });
    // The mouse tells the one, the keyboard's menu key and Shift+F10 the other.
    Bind(wxEVT_DATAVIEW_ITEM_CONTEXT_MENU, [this](wxDataViewEvent&) { host_.ListMenuAsked(); });
    Bind(wxEVT_CONTEXT_MENU, [this](wxContextMenuEvent&) { host_.ListMenuAsked(); });
}

void DataViewRowList::AddColumns(const std::vector<ListColumn>& columns, bool withIcons) {
    const int characterWidth = GetCharWidth();
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const wxString title = Wx(columns[i].title);
        const int width = (columns[i].widthInCharacters + 2) * characterWidth;
        const auto column = static_cast<unsigned>(i);
        if (i == 0 && withIcons) {
            AppendIconTextColumn(title, column, wxDATAVIEW_CELL_INERT, width, wxALIGN_LEFT,
                                 wxDATAVIEW_COL_RESIZABLE);
        } else {
            AppendTextColumn(title, column, wxDATAVIEW_CELL_INERT, width, wxALIGN_LEFT,
                             wxDATAVIEW_COL_RESIZABLE);
        }
    }
}

void DataViewRowList::SetRows(std::vector<ListRow> rows) {
    quiet_ = true;
    if (std::exchange(appended_, false)) {
        rows_.pop_back();
        model_->RowDeleted(static_cast<unsigned>(rows_.size()));
    }
    if (rows.size() < rows_.size()) {
        // The toolkit loses the current row when rows go from under it, so it begins anew.
        rows_ = std::move(rows);
        model_->Reset(static_cast<unsigned>(rows_.size()));
    } else {
        ReplaceAndAdd(std::move(rows));
    }
    quiet_ = false;
}

void DataViewRowList::ReplaceAndAdd(std::vector<ListRow> rows) {
    const std::size_t kept = rows_.size();
    for (std::size_t i = 0; i < kept; ++i) {
        if (rows_[i] == rows[i]) continue;
        rows_[i] = std::move(rows[i]);
        model_->RowChanged(static_cast<unsigned>(i));
    }
    for (std::size_t i = kept; i < rows.size(); ++i) {
        rows_.push_back(std::move(rows[i]));
        model_->RowAppended();
    }
}

void DataViewRowList::AppendRow(ListRow row) {
    rows_.push_back(std::move(row));
    model_->RowAppended();
    appended_ = true;
}

void DataViewRowList::SetText(std::size_t row, std::size_t column, const std::string& text) {
    rows_.at(row).texts.at(column) = text;
    model_->RowChanged(static_cast<unsigned>(row));
}

void DataViewRowList::SetTitle(std::size_t column, const std::string& title) {
    const wxString text = Wx(title);
    wxDataViewColumn* const shown = GetColumn(static_cast<unsigned>(column));
    if (shown->GetTitle() != text) shown->SetTitle(text);
}

void DataViewRowList::SelectRow(std::size_t row) {
    const wxDataViewItem item = model_->GetItem(static_cast<unsigned>(row));
    const bool selected = SelectedRow() == row;
    // Also when it is selected: the arrow keys go on from the current row, which removed rows can have parted
    // from the selected one.
    quiet_ = true;
    MoveCursor(this, static_cast<int>(row));
    Select(item);
    if (!selected) EnsureVisible(item);
    quiet_ = false;
}

std::optional<std::size_t> DataViewRowList::SelectedRow() const {
    const wxDataViewItem item = GetSelection();
    if (!item.IsOk()) return std::nullopt;
    return static_cast<std::size_t>(model_->GetRow(item));
}

void DataViewRowList::SetVisibleRows(int rows) {
    // A row and the titles with the room that the toolkit gives them.
    const int row = GetCharHeight() + FromDIP(4);
    const int titles = GetCharHeight() + FromDIP(14);
    SetMinSize(wxSize(-1, row * rows + titles));
}

const wxBitmapBundle& DataViewRowList::IconOf(const std::string& name) {
    const auto [place, isNew] = icons_.try_emplace(name);
    if (isNew && !name.empty()) place->second = Icon(name);
    return place->second;
}

void DataViewRowList::ReloadIcons() {
    icons_.clear();
    for (std::size_t i = 0; i < rows_.size(); ++i) model_->RowChanged(static_cast<unsigned>(i));
}

}  // namespace

RowList* RowList::Make(wxWindow* parent, RowListHost& host, const std::string& name,
                       const std::vector<ListColumn>& columns, bool withIcons) {
    return new DataViewRowList(parent, host, name, columns, withIcons);
}

}  // namespace corvane
