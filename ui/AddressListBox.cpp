#include "ui/AddressListBox.h"

#include <algorithm>

#include <wx/bmpbuttn.h>
#include <wx/menu.h>
#include <wx/sizer.h>

#include "ui/Desktop.h"
#include "ui/Icons.h"
#include "ui/Spacing.h"
#include "ui/WxText.h"

namespace corvane {

namespace {

std::vector<ListColumn> Columns(const AddressListKind& kind) {
    std::vector<ListColumn> columns{{kind.name, 18}};
    if (*kind.second != '\0') columns.push_back({kind.second, 16});
    return columns;
}

}  // namespace

AddressListBox::AddressListBox(wxWindow* parent, AddressListHost& host, const AddressListKind& kind)
    : host_(host),
      kind_(kind),
      list_(RowList::Make(parent, *this, kind.name, Columns(kind), false)),
      sizer_(new wxBoxSizer(wxVERTICAL)) {
    SetControlName(list_->Window(), kind.control);
    list_->SetVisibleRows(kind.visibleRows);
    auto* const grid = new wxGridSizer(kind.upCommand == 0 ? 1 : 2, kTightGap, kTightGap);
    AddButton(parent, grid, kind.addCommand, "add", kind.addTip);
    if (kind.upCommand != 0) {
        Named("Command12", AddButton(parent, grid, kind.upCommand, "up", "One up DNS Server priority"));
    }
    AddButton(parent, grid, kind.removeCommand, "remove", kind.removeTip);
    if (kind.downCommand != 0) {
        Named("Command13", AddButton(parent, grid, kind.downCommand, "down", "One down DNS Server priority"));
    }
    auto* const row = new wxBoxSizer(wxHORIZONTAL);
    row->Add(&list_->Window(), 1, wxEXPAND | wxRIGHT, kTightGap);
    row->Add(grid);
    sizer_->Add(row, 1, wxEXPAND);
    BindKeys();
}

AddressListBox::~AddressListBox() = default;

wxSizer* AddressListBox::Sizer() const { return sizer_; }

wxButton* AddressListBox::AddButton(wxWindow* parent, wxSizer* sizer, int command, const char* icon,
                                    const char* tip) {
    auto* const button = new wxBitmapButton(parent, command, Icon(icon));
    button->SetToolTip(tip);
    SetAccessibleName(button, tip);
    sizer->Add(button);
    buttons_.push_back(button);
    return button;
}

void AddressListBox::AddPanel(EntryPanel* panel) {
    sizer_->Add(panel, 0, wxEXPAND | wxTOP | wxBOTTOM, 2 * kTightGap);
    // Right behind the list's own controls in the tab order.
    panel->MoveAfterInTabOrder(buttons_.back());
}

int AddressListBox::CommandOf(const wxKeyEvent& event) const {
    const int key = event.GetKeyCode();
    if (event.AltDown()) {
        if (key == WXK_UP) return kind_.upCommand;
        return key == WXK_DOWN ? kind_.downCommand : 0;
    }
    if (event.HasAnyModifiers()) return 0;
    if ((key >= '0' && key <= '9') || (key >= WXK_NUMPAD0 && key <= WXK_NUMPAD9)) return kind_.addCommand;
    return key == WXK_DELETE || key == WXK_NUMPAD_DELETE ? kind_.removeCommand : 0;
}

void AddressListBox::BindKeys() {
    list_->Window().Bind(wxEVT_CHAR_HOOK, [this](wxKeyEvent& event) {
        const int command = CommandOf(event);
        if (command == 0) {
            event.Skip();
        } else if (CommandEnabled(command)) {
            wxCommandEvent chosen(wxEVT_MENU, command);
            list_->Window().ProcessWindowEvent(chosen);
        }
    });
}

void AddressListBox::RowSelected(std::size_t) { UpdateButtons(); }

void AddressListBox::ListFocused() { host_.ListFocused(list_->Window()); }

void AddressListBox::ListMenuAsked() {
    wxMenu menu;
    for (const wxButton* const button : buttons_) {
        menu.Append(button->GetId(), button->GetToolTipText())->Enable(button->IsEnabled());
    }
    list_->Window().PopupMenu(&menu);
}

void AddressListBox::Fill(const std::vector<DetailsRow>& rows, const std::string& header,
                          bool keepSelection) {
    const std::optional<std::size_t> before = keepSelection ? SelectedRow() : std::nullopt;
    const std::string text = before ? rows_[*before].text : std::string();
    SetRows(rows);
    SetHeader(header);
    if (before && !rows.empty()) {
        SelectRow(FindRow(*this, text).value_or(std::min(*before, rows.size() - 1)));
    } else {
        list_->ClearSelection();
        UpdateButtons();
    }
}

wxButton* AddressListBox::ButtonOf(int command) const {
    const auto button = std::find_if(buttons_.begin(), buttons_.end(), [command](const wxButton* candidate) {
        return candidate->GetId() == command;
    });
    return button == buttons_.end() ? nullptr : *button;
}

bool AddressListBox::CommandEnabled(int command) const {
    const wxButton* const button = ButtonOf(command);
    return button != nullptr && button->IsEnabled();
}

void AddressListBox::EnableCommands(bool enable) {
    enabled_ = enable;
    UpdateButtons();
}

void AddressListBox::UpdateButtons() {
    const std::optional<std::size_t> row = SelectedRow();
    for (wxButton* const button : buttons_) {
        const int command = button->GetId();
        bool possible = enabled_;
        if (command != kind_.addCommand) possible = possible && row.has_value();
        if (command == kind_.upCommand) possible = possible && *row > 0;
        if (command == kind_.downCommand) possible = possible && *row + 1 < rows_.size();
        // The button that was pressed may be the one: the keys go on in the list.
        if (!possible && button->HasFocus()) list_->Window().SetFocus();
        button->Enable(possible);
    }
    host_.ListCommandsChanged();
}

void AddressListBox::SetRows(const std::vector<DetailsRow>& rows) {
    rows_ = rows;
    std::vector<ListRow> shown;
    shown.reserve(rows.size());
    for (const DetailsRow& row : rows) {
        shown.push_back(
            {*kind_.second == '\0' ? std::vector{row.text} : std::vector{row.text, row.subItem}, ""});
    }
    list_->SetRows(std::move(shown));
    UpdateButtons();
}

void AddressListBox::SetHeader(const std::string& text) { list_->SetTitle(0, text); }

std::optional<std::size_t> AddressListBox::SelectedRow() const {
    const std::optional<std::size_t> row = list_->SelectedRow();
    return row && *row < rows_.size() ? row : std::nullopt;
}

void AddressListBox::SelectRow(std::size_t row) {
    list_->SelectRow(row);
    UpdateButtons();
}

}  // namespace corvane
