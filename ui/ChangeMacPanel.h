#pragma once

#include <array>
#include <functional>
#include <memory>
#include <string>

#include <wx/panel.h>

#include "ui/logic/MacChange.h"
#include "ui/logic/MacEntry.h"

class wxButton;
class wxCheckBox;
class wxStaticText;
class wxTextCtrl;

/// `fChangeMAC`: the octet boxes, the vendor box and the buttons that change an address.
namespace corvane {

class VendorBox;

class ChangeMacPanel : public wxPanel, public MacBoxesView, public ChangeMacView {
 public:
    /// Number of octet boxes in one row.
    static constexpr int kOctets = 6;

    explicit ChangeMacPanel(wxWindow* parent);
    ~ChangeMacPanel() override;

    /// What the buttons do; the panel itself changes nothing but its own boxes.
    std::function<void()> OnChangeNow;
    std::function<void()> OnOriginalMac;
    /// The panel was shown or hidden: what it lies in lays itself out anew.
    std::function<void()> OnLayout;
    std::function<void()> OnClosed;

    /// Opens the panel for a connection.
    void Open(const std::string& connectionName);
    /// Another connection was selected: its address is the one that would be changed.
    void ShowConnection(const std::string& name);
    void Close();
    [[nodiscard]] bool IsOpen() const { return IsShown(); }
    /// Escape: closes the vendor list when it is open, else the panel.
    void Escape();
    [[nodiscard]] VendorBox& Vendor() { return *vendorBox_; }

    // MacBoxesView
    [[nodiscard]] std::string Text(int box) const override;
    void SetText(int box, const std::string& text) override;
    [[nodiscard]] TextSelection Selection(int box) const override;
    void Select(int box, TextSelection selection) override;
    void Focus(int box) override;
    void FocusCheck1() override;
    void EnableCommand9(bool enable) override;
    void Beep() override;

    // ChangeMacView
    [[nodiscard]] bool Check1() const override;
    void SetCheck1(bool ticked) override;
    void ShowPanel(bool show) override;

 private:
    wxSizer* MakeBoxes();
    wxSizer* MakeButtons();
    wxButton* MakeButton(const char* label, const char* icon);
    void BindBox(int box);
    /// Whether the key was one for the entry rules.
    bool HandleArrow(int box, const wxKeyEvent& event);
    bool HandleCharacter(int box, const wxKeyEvent& event, int character);
    [[nodiscard]] wxTextCtrl& Box(int box) const { return *boxes_.at(static_cast<std::size_t>(box)); }

    wxStaticText* heading_;
    std::array<wxTextCtrl*, kOctets> boxes_{};
    std::unique_ptr<VendorBox> vendorBox_;
    wxCheckBox* check1_ = nullptr;
    wxButton* command9_ = nullptr;
    wxButton* command10_ = nullptr;
    wxButton* command8_ = nullptr;
    std::unique_ptr<VendorEntry> vendor_;
    std::unique_ptr<MacEntry> entry_;
};

}  // namespace corvane
