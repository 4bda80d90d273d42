#pragma once

#include <optional>
#include <vector>

#include <wx/panel.h>

#include "ui/RowList.h"
#include "ui/logic/PresetCommands.h"

class wxButton;

namespace corvane {

class DetailsHost;
class WindowHost;

/// `PresetsList` with the buttons that apply, edit and delete the selected preset (menu commands, see
/// ui/MainMenu.h).
class PresetsPanel : public wxPanel, private RowListHost {
 public:
    PresetsPanel(wxWindow* parent, WindowHost& window, DetailsHost& details);
    ~PresetsPanel() override;

    /// Shows the presets as they are now; the one that was selected stays selected if it is still there.
    void RefreshList();
    [[nodiscard]] std::optional<PresetEntry> Selected() const;
    /// Whether the list can be used, and a preset be applied.
    void EnableCommands(bool usable, bool applicable);

 private:
    // RowListHost
    void RowSelected(std::size_t row) override;
    void ListFocused() override;
    void RowActivated() override;

    /// Sends the command of a button, as long as it is enabled.
    void Send(const wxButton& button);
    wxButton* MakeButton(int command, const char* label, const char* icon, const char* tip);

    WindowHost& window_;
    DetailsHost& details_;
    std::vector<PresetEntry> entries_;
    RowList* presetsList_;
    wxButton* apply_;
    wxButton* edit_;
    wxButton* delete_;
};

}  // namespace corvane
