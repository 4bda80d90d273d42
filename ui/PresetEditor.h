#pragma once

#include <array>
#include <functional>
#include <memory>

#include <wx/panel.h>

#include "ui/logic/PresetEditing.h"

class wxCheckBox;
class wxTextCtrl;

namespace corvane {

class MacBoxRow;

/// The controls of the preset editor except for its lists: the name, what the preset carries, the MAC
/// address, save and leave. Hidden at first.
class PresetEditor : public wxPanel, public MacBoxesView {
 public:
    explicit PresetEditor(wxWindow* parent);
    ~PresetEditor() override;

    std::function<void()> OnName;
    std::function<void(PresetCheck check)> OnCheck;
    /// `Command24` and `Command23`.
    std::function<void()> OnSave;
    std::function<void()> OnLeave;

    [[nodiscard]] wxTextCtrl& Name() { return *txtPresetName_; }
    [[nodiscard]] wxCheckBox& Check(PresetCheck check) const;
    void EnableMacBoxes(bool enable);

    // MacBoxesView, for boxes 6 to 11.
    [[nodiscard]] std::string Text(int box) const override;
    void SetText(int box, const std::string& text) override;
    [[nodiscard]] TextSelection Selection(int box) const override;
    void Select(int box, TextSelection selection) override;
    void Focus(int box) override;
    void FocusCheck1() override {}
    void EnableCommand9(bool) override {}
    void Beep() override;

 private:
    /// The vendor box belongs to the other row of octets.
    class NoVendorBox;

    wxCheckBox* MakeCheck(PresetCheck check, const char* label);
    wxSizer* MakeButtons();

    wxTextCtrl* txtPresetName_ = nullptr;
    std::array<wxCheckBox*, 7> checks_{};
    std::unique_ptr<MacBoxRow> boxes_;
    std::unique_ptr<NoVendorBox> noVendor_;
    std::unique_ptr<VendorEntry> vendor_;
    std::unique_ptr<MacEntry> entry_;
};

}  // namespace corvane
