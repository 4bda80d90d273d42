#pragma once

#include <array>
#include <memory>
#include <string>

#include <wx/icon.h>
#include <wx/modalhook.h>
#include <wx/timer.h>

#include "ui/TrayIcon.h"
#include "ui/logic/Traffic.h"
#include "ui/logic/Tray.h"

/// `frmTray`: the icon in the tray, which lights up with the traffic, and its menu.
namespace corvane {

class frmMain;

/// Knows of the dialogs that wait for the user. The toolkit disables the windows behind them, but not one
/// that is hidden, and not the icon.
class OpenDialogs : private wxModalDialogHook {
 public:
    OpenDialogs() { Register(); }

    [[nodiscard]] bool Any() const { return count_ > 0; }

 private:
    int Enter(wxDialog*) override {
        ++count_;
        return wxID_NONE;
    }
    void Exit(wxDialog*) override { --count_; }

    int count_ = 0;
};

class frmTray : private TrayIconHost {
 public:
    /// Nothing where the desktop has no tray.
    static std::unique_ptr<frmTray> Make(frmMain& window);

    /// The connection that the tip names.
    void ShowConnection(const std::string& name, const std::string& mac);
    /// Rates of the latest tick.
    void ShowRates(const TrafficRates& rates);

 private:
    explicit frmTray(frmMain& window);

    // TrayIconHost
    void ShowOrHide() override;
    void ShowWindow() override;
    wxMenu* MakeMenu() override;

    void ShowFrame(TrayFrame frame);

    frmMain& window_;
    OpenDialogs dialogs_;  ///< They have the user's attention first.
    std::string tip_;
    std::array<wxIcon, 4> frames_;  ///< One for each TrayFrame.
    TrayFrame shown_ = TrayFrame::kIdle;
    TrayFrame active_ = TrayFrame::kIdle;  ///< Of the latest tick.
    wxTimer lightUp_;                      ///< Lights the lamps of the latest tick up.
    wxTimer putOut_;                       ///< Puts them out again, so that lasting traffic blinks.
    std::unique_ptr<TrayIcon> icon_;       ///< Nothing where the desktop has no tray.
};

}  // namespace corvane
