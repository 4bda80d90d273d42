#include "ui/frmTray.h"

#include <wx/menu.h>

#include "ui/Icons.h"
#include "ui/MainMenu.h"
#include "ui/WxText.h"
#include "ui/frmMain.h"

namespace corvane {

namespace {

constexpr int kIconSize = 24;
/// How often the lamps light up, and for how long.
constexpr int kTimer2Milliseconds = 500;
constexpr int kTimer3Milliseconds = 250;

}  // namespace

std::unique_ptr<frmTray> frmTray::Make(frmMain& window) {
    if (!wxTaskBarIcon::IsAvailable()) return nullptr;
    return std::unique_ptr<frmTray>(new frmTray(window));
}

frmTray::frmTray(frmMain& window) : window_(window), tip_(TrayTip("")) {
    static constexpr std::array kNames = {"tray_idle", "tray_sending", "tray_receiving", "tray_both"};
    for (std::size_t i = 0; i < frames_.size(); ++i) {
        frames_[i] = Icon(kNames[i], kIconSize).GetIcon(wxSize(kIconSize, kIconSize));
    }
    SetIcon(frames_[0], Wx(tip_));
    Bind(wxEVT_TASKBAR_LEFT_DOWN, [this](wxTaskBarIconEvent&) { ShowOrHide(); });
    timer2_.Bind(wxEVT_TIMER, [this](wxTimerEvent&) {
        if (active_ == TrayFrame::kIdle) return;
        ShowFrame(active_);
        timer3_.StartOnce(kTimer3Milliseconds);
    });
    timer3_.Bind(wxEVT_TIMER, [this](wxTimerEvent&) { ShowFrame(TrayFrame::kIdle); });
    timer2_.Start(kTimer2Milliseconds);
}

frmTray::~frmTray() { RemoveIcon(); }

void frmTray::ShowConnection(const std::string& name, const std::string& mac) {
    const std::string tip = TrayTip(TrayTipFor(name, mac));
    if (tip == tip_) return;
    tip_ = tip;
    SetIcon(frames_.at(static_cast<std::size_t>(shown_)), Wx(tip_));
}

void frmTray::ShowRates(const TrafficRates& rates) { active_ = TrayFrameFor(rates); }

void frmTray::ShowFrame(TrayFrame frame) {
    if (frame == shown_) return;
    shown_ = frame;
    SetIcon(frames_.at(static_cast<std::size_t>(frame)), Wx(tip_));
}

wxMenu* frmTray::CreatePopupMenu() {
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
    if (TrayClick(window_.IsShown(), window_.IsIconized()) == TrayAction::kHide) {
        window_.Hide();
        return;
    }
    window_.Iconize(false);
    window_.Show();
    window_.Raise();
}

}  // namespace corvane
