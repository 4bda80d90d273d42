#include "ui/RowList.h"

#include <utility>

#include "ui/Desktop.h"
#include "ui/Icons.h"
#include "ui/WxText.h"

namespace corvane {

/// The rows as the control asks for them.
class RowList::Model : public wxDataViewVirtualListModel {
 public:
    explicit Model(RowList& list) : list_(list) {}

    void GetValueByRow(wxVariant& value, unsigned row, unsigned column) const override {
        const ListRow& shown = list_.rows_.at(row);
        const wxString text = Wx(shown.texts.at(column));
        if (column == 0 && GetColumnType(0) == "wxDataViewIconText") {
            value << wxDataViewIconText(text, list_.IconOf(shown.icon));
        } else {
            value = text;
        }
    }
    bool SetValueByRow(const wxVariant&, unsigned, unsigned) override { return false; }
    wxString GetColumnType(unsigned column) const override {
        return column == 0 && withIcons ? "wxDataViewIconText" : "string";
    }

    bool withIcons = false;

 private:
    RowList& list_;
};

RowList::RowList(wxWindow* parent, const std::string& name, const std::vector<ListColumn>& columns,
                 bool withIcons)
    : wxDataViewCtrl(parent, wxID_ANY, wxDefaultPosition, wxSize(200, 100), wxDV_SINGLE | wxDV_ROW_LINES),
      model_(new Model(*this)) {
    model_->withIcons = withIcons;
    AssociateModel(model_.get());
    AddColumns(columns, withIcons);
    SetAccessibleName(this, Wx(name));
    UsePlainScrollBars(this);
    GetMainWindow()->Bind(wxEVT_SET_FOCUS, [this](wxFocusEvent& event) {
        event.Skip();
        if (OnFocus) OnFocus();
    });
    Bind(wxEVT_DATAVIEW_SELECTION_CHANGED, [this](wxDataViewEvent& event) {
        event.Skip();
        const std::optional<std::size_t> row = SelectedRow();
        if (!quiet_ && row && OnSelect) OnSelect(*row);
    });
}

void RowList::AddColumns(const std::vector<ListColumn>& columns, bool withIcons) {
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

void RowList::SetRows(std::vector<ListRow> rows) {
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

void RowList::ReplaceAndAdd(std::vector<ListRow> rows) {
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

void RowList::AppendRow(ListRow row) {
    rows_.push_back(std::move(row));
    model_->RowAppended();
    appended_ = true;
}

void RowList::SetText(std::size_t row, std::size_t column, const std::string& text) {
    rows_.at(row).texts.at(column) = text;
    model_->RowChanged(static_cast<unsigned>(row));
}

void RowList::SetTitle(std::size_t column, const std::string& title) {
    const wxString text = Wx(title);
    wxDataViewColumn* const shown = GetColumn(static_cast<unsigned>(column));
    if (shown->GetTitle() != text) shown->SetTitle(text);
}

void RowList::SelectRow(std::size_t row) {
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

std::optional<std::size_t> RowList::SelectedRow() const {
    const wxDataViewItem item = GetSelection();
    if (!item.IsOk()) return std::nullopt;
    return static_cast<std::size_t>(model_->GetRow(item));
}

void RowList::SetVisibleRows(int rows) {
    // A row and the titles with the room that the toolkit gives them.
    const int row = GetCharHeight() + FromDIP(4);
    const int titles = GetCharHeight() + FromDIP(14);
    SetMinSize(wxSize(-1, row * rows + titles));
}

const wxBitmapBundle& RowList::IconOf(const std::string& name) {
    const auto [place, isNew] = icons_.try_emplace(name);
    if (isNew && !name.empty()) place->second = Icon(name);
    return place->second;
}

void RowList::ReloadIcons() {
    icons_.clear();
    for (std::size_t i = 0; i < rows_.size(); ++i) model_->RowChanged(static_cast<unsigned>(i));
}

}  // namespace corvane
