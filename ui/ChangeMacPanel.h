#pragma once

#include <memory>
#include <string>

#include <wx/panel.h>

#include "ui/VendorBox.h"
#include "ui/logic/MacChange.h"
#include "ui/logic/MacEntry.h"

class wxButton;
class wxCheckBox;
class wxStaticText;

/// `fChangeMAC`: the octet boxes, the vendor box and the buttons that change an address.
namespace corvane {

class DetailsHost;
class MacBoxRow;
class WindowHost;

class ChangeMacPanel : public wxPanel, private MacBoxesView, private ChangeMacView, private VendorBoxHost {
 public:
    ChangeMacPanel(wxWindow* parent, WindowHost& window, DetailsHost& details);
    ~ChangeMacPanel() override;

    /// Opens the panel for a connection.
    void Open(const std::string& connectionName);
    /// Another connection was selected: its address is the one that would be changed.
    void ShowConnection(const std::string& name);
    void Close();
    [[nodiscard]] bool IsOpen() const { return IsShown(); }
    /// Escape: closes the vendor list when it is open, else the panel.
    void Escape();

 private:
    // MacBoxesView
    [[nodiscard]] std::string Text(int box) const override;
    void SetText(int box, const std::string& text) override;
    [[nodiscard]] TextSelection Selection(int box) const override;
    void Select(int box, TextSelection selection) override;
    void Focus(int box) override;
    void FocusRestartCheck() override;
    void EnableChangeNow(bool enable) override;
    void Beep() override;

    // ChangeMacView
    [[nodiscard]] bool RestartTicked() const override;
    void TickRestart(bool ticked) override;
    void ShowPanel(bool show) override;

    // VendorBoxHost
    void VendorChosen(std::size_t entry) override;
    void VendorBoxFocused() override;

    /// Runs a command for the selected connection; nothing without one.
    void RunForSelected(void (ChangeMacPanel::*command)(std::size_t adapter));
    void ChangeAddress(std::size_t adapter);
    void RestoreAddress(std::size_t adapter);
    wxSizer* MakeButtons();
    wxButton* MakeButton(const char* label, const char* icon);

    WindowHost& window_;
    DetailsHost& details_;
    wxStaticText* heading_;
    std::unique_ptr<MacBoxRow> boxes_;
    std::unique_ptr<VendorBox> vendorBox_;
    wxCheckBox* restart_ = nullptr;
    wxButton* changeNow_ = nullptr;
    wxButton* originalMac_ = nullptr;
    wxButton* randomMac_ = nullptr;
    std::unique_ptr<VendorEntry> vendor_;
    std::unique_ptr<MacEntry> entry_;
};

}  // namespace corvane
