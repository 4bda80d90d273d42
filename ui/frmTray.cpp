#include "ui/frmTray.h"

#include <wx/menu.h>

#include "ui/Icons.h"
#include "ui/MainMenu.h"
#include "ui/frmMain.h"

namespace corvane {

namespace {

/// How often the lamps light up, and for how long.
constexpr int kLightUpMilliseconds = 500;
constexpr int kPutOutMilliseconds = 250;

}  // namespace

std::unique_ptr<frmTray> frmTray::Make(frmMain& window) {
    std::unique_ptr<frmTray> tray(new frmTray(window));
    return tray->icon_ ? std::move(tray) : nullptr;
}

frmTray::frmTray(frmMain& window) : window_(window), tip_(TrayTip("")), icon_(TrayIcon::Make(window, *this)) {
    if (!icon_) return;
    static constexpr std::array kNames = {"tray_idle", "tray_sending", "tray_receiving", "tray_both"};
    const int size = icon_->PictureSize();
    for (std::size_t i = 0; i < frames_.size(); ++i) {
        frames_[i] = Icon(kNames[i], size).GetIcon(wxSize(size, size));
    }
    icon_->Show(frames_[0], tip_);
    lightUp_.Bind(wxEVT_TIMER, [this](wxTimerEvent&) {
        if (active_ == TrayFrame::kIdle) return;
        ShowFrame(active_);
        putOut_.StartOnce(kPutOutMilliseconds);
    });
    putOut_.Bind(wxEVT_TIMER, [this](wxTimerEvent&) { ShowFrame(TrayFrame::kIdle); });
    lightUp_.Start(kLightUpMilliseconds);
}

void frmTray::ShowConnection(const std::string& name, const std::string& mac) {
    const std::string tip = TrayTip(TrayTipFor(name, mac));
    if (tip == tip_) return;
    tip_ = tip;
    icon_->Show(frames_.at(static_cast<std::size_t>(shown_)), tip_);
}

void frmTray::ShowRates(const TrafficRates& rates) { active_ = TrayFrameFor(rates); }

void frmTray::ShowFrame(TrayFrame frame) {
    if (frame == shown_) return;
    shown_ = frame;
    icon_->Show(frames_.at(static_cast<std::size_t>(frame)), tip_);
}

wxMenu* frmTray::MakeMenu() {
    if (dialogs_.Any()) return nullptr;
    auto* const menu = new wxMenu;
    AddTrayCommands(*menu);
    menu->Bind(wxEVT_MENU, [this](wxCommandEvent& event) {
        if (event.GetId() == mnuShowHide) {
            ShowOrHide();
        } else {
            window_.ProcessWindowEvent(event);
        }
    });
    return menu;
}

void frmTray::ShowOrHide() {
    if (dialogs_.Any()) return;
    if (TrayClick(window_.IsShown(), window_.IsIconized()) == TrayAction::kHide) {
        window_.Hide();
    } else {
        ShowWindow();
    }
}

void frmTray::ShowWindow() {
    if (dialogs_.Any()) return;
    window_.Iconize(false);
    window_.Show();
    window_.Raise();
}

}  // namespace corvane
