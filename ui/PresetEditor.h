#pragma once

#include <array>
#include <memory>

#include <wx/panel.h>

#include "ui/ControlNames.h"
#include "ui/logic/PresetEditing.h"

class wxCheckBox;
class wxTextCtrl;

namespace corvane {

class MacBoxRow;

/// What the preset editor tells what it lies in.
class PresetEditorHost {
 public:
    /// Another name is in the name box.
    virtual void NameChanged() = 0;
    /// A check box was clicked, and is ticked or not by now.
    virtual void CheckClicked(PresetCheck check) = 0;
    virtual void SavePressed() = 0;
    virtual void LeavePressed() = 0;

 protected:
    ~PresetEditorHost() = default;
};

/// `fCreatePreset`: the controls of the preset editor except for its lists: the name, what the preset
/// carries, the MAC address, save and leave. Hidden at first.
class PresetEditor : public wxPanel, public MacBoxesView {
 public:
    /// The host must outlive it.
    PresetEditor(wxWindow* parent, PresetEditorHost& host);
    ~PresetEditor() override;

    [[nodiscard]] wxTextCtrl& Name() { return *txtPresetName_; }
    [[nodiscard]] wxCheckBox& Check(PresetCheck check) const;
    void EnableMacBoxes(bool enable);

    // MacBoxesView, for boxes 6 to 11.
    [[nodiscard]] std::string Text(int box) const override;
    void SetText(int box, const std::string& text) override;
    [[nodiscard]] TextSelection Selection(int box) const override;
    void Select(int box, TextSelection selection) override;
    void Focus(int box) override;
    void FocusRestartCheck() override {}
    void EnableChangeNow(bool) override {}
    void Beep() override;

 private:
    /// The vendor box belongs to the other row of octets.
    class NoVendorBox;

    wxCheckBox* MakeCheck(PresetCheck check, ControlName name, const char* label);
    wxSizer* MakeButtons();

    PresetEditorHost& host_;
    wxTextCtrl* txtPresetName_ = nullptr;
    std::array<wxCheckBox*, 7> checks_{};
    std::unique_ptr<MacBoxRow> boxes_;
    std::unique_ptr<NoVendorBox> noVendor_;
    std::unique_ptr<VendorEntry> vendor_;
    std::unique_ptr<MacEntry> entry_;
};

}  // namespace corvane
