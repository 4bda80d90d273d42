#pragma once

#include <functional>
#include <optional>
#include <vector>

#include <wx/panel.h>

#include "ui/logic/PresetCommands.h"

class wxButton;

namespace corvane {

class RowList;

/// `PresetsList` with the buttons that apply, edit and delete the selected preset (menu commands, see
/// ui/MainMenu.h).
class PresetsPanel : public wxPanel {
 public:
    explicit PresetsPanel(wxWindow* parent);

    /// The user selected another preset.
    std::function<void()> OnSelect;
    /// The list got the focus.
    std::function<void(const wxWindow& list)> OnListFocus;

    /// Shows the presets as they are now; the one that was selected stays selected if it is still there.
    void RefreshList();
    [[nodiscard]] std::optional<PresetEntry> Selected() const;
    /// Whether the list can be used, and a preset be applied.
    void EnableCommands(bool usable, bool applicable);

 private:
    wxButton* MakeButton(int command, const char* label, const char* icon, const char* tip);

    std::vector<PresetEntry> entries_;
    RowList* presetsList_;
    wxButton* command20_;  ///< Apply.
    wxButton* edit_;
    wxButton* command22_;  ///< Delete.
};

}  // namespace corvane
