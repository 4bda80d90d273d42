#include "ui/PresetsPanel.h"

#include <algorithm>

#include <wx/button.h>
#include <wx/sizer.h>

#include "ui/ControlNames.h"
#include "ui/Icons.h"
#include "ui/MainMenu.h"
#include "ui/PanelHosts.h"
#include "ui/Spacing.h"
#include "ui/WxText.h"

namespace corvane {

namespace {

constexpr int kVisibleRows = 3;

}  // namespace

PresetsPanel::PresetsPanel(wxWindow* parent, WindowHost& window, DetailsHost& details)
    : wxPanel(parent),
      window_(window),
      details_(details),
      presetsList_(RowList::Make(this, *this, "Presets", {{"Presets", 30}}, false)),
      apply_(MakeButton(mnuApplyPreset, "Appl&y", "preset_apply",
                        "Apply the selected preset to the selected connection")),
      edit_(MakeButton(mnuEditPreset, "Ed&it", "preset_edit", "Change the selected preset")),
      delete_(MakeButton(mnuDeletePreset, "Delete", "preset_delete", "Delete the selected preset (Del)")) {
    SetControlName(presetsList_->Window(), "PresetsList");
    SetControlName(*apply_, "Command20");
    SetControlName(*delete_, "Command22");
    presetsList_->SetVisibleRows(kVisibleRows);
    presetsList_->Window().Bind(wxEVT_CHAR_HOOK, [this](wxKeyEvent& event) {
        const int key = event.GetKeyCode();
        if ((key == WXK_DELETE || key == WXK_NUMPAD_DELETE) && !event.HasAnyModifiers()) {
            Send(*delete_);
        } else {
            event.Skip();
        }
    });
    auto* const buttons = new wxBoxSizer(wxVERTICAL);
    for (wxButton* const button : {apply_, edit_, delete_})
        buttons->Add(button, 0, wxEXPAND | wxBOTTOM, kTightGap);
    auto* const sizer = new wxBoxSizer(wxHORIZONTAL);
    sizer->Add(&presetsList_->Window(), 1, wxEXPAND | wxRIGHT, kTightGap);
    sizer->Add(buttons);
    SetSizer(sizer);
    RefreshList();
}

PresetsPanel::~PresetsPanel() {
    // The list tells of its focus even now.
    DestroyChildren();
}

void PresetsPanel::RowSelected(std::size_t) { window_.UpdateCommands(); }
void PresetsPanel::ListFocused() { details_.ListFocused(presetsList_->Window()); }
void PresetsPanel::RowActivated() { Send(*edit_); }

void PresetsPanel::Send(const wxButton& button) {
    if (!button.IsEnabled()) return;
    wxCommandEvent chosen(wxEVT_MENU, button.GetId());
    ProcessWindowEvent(chosen);
}

wxButton* PresetsPanel::MakeButton(int command, const char* label, const char* icon, const char* tip) {
    auto* const button = new wxButton(this, command, label);
    button->SetBitmap(Icon(icon));
    button->SetToolTip(tip);
    return button;
}

void PresetsPanel::RefreshList() {
    const std::optional<PresetEntry> before = Selected();
    entries_ = PresetEntries();
    std::vector<ListRow> rows;
    for (const PresetEntry& entry : entries_) rows.push_back({{entry.name}, ""});
    presetsList_->SetRows(std::move(rows));
    const auto same = std::find_if(entries_.begin(), entries_.end(), [&](const PresetEntry& entry) {
        return before && entry.name == before->name;
    });
    if (same == entries_.end()) {
        presetsList_->ClearSelection();
    } else {
        presetsList_->SelectRow(static_cast<std::size_t>(same - entries_.begin()));
    }
}

std::optional<PresetEntry> PresetsPanel::Selected() const {
    const std::optional<std::size_t> row = presetsList_->SelectedRow();
    if (!row || *row >= entries_.size()) return std::nullopt;
    return entries_[*row];
}

void PresetsPanel::EnableCommands(bool usable, bool applicable) {
    const bool selected = Selected().has_value();
    presetsList_->Window().Enable(usable);
    apply_->Enable(applicable && selected);
    edit_->Enable(usable && selected);
    delete_->Enable(usable && selected);
}

}  // namespace corvane
