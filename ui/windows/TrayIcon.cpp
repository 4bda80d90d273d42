#include "ui/TrayIcon.h"

#include <utility>

#include <wx/frame.h>
#include <wx/icon.h>
#include <wx/menu.h>
#include <wx/settings.h>

#include "platform/windows/Windows.h"
#include "ui/windows/Input.h"
#include "ui/windows/SysTray.h"

namespace corvane {

namespace {

/// The icon of a form that is never shown.
class FormTrayIcon : public TrayIcon {
 public:
    FormTrayIcon(const wxWindow& window, TrayIconHost& host)
        : window_(window),
          host_(host),
          form_(new wxFrame(nullptr, wxID_ANY, "frmTray", wxDefaultPosition, wxDefaultSize,
                            wxFRAME_NO_TASKBAR)) {
        // Whoever closes all windows of the program means the main window.
        form_->Bind(wxEVT_CLOSE_WINDOW, [](wxCloseEvent& event) { event.Veto(); });
    }
    ~FormTrayIcon() override {
        tray_.RemoveIcon();
        form_->DeletePendingEvents();
        // Its menu may be what ends the program, and is at work still.
        form_->Destroy();
    }

    [[nodiscard]] int PictureSize() const override {
        return wxSystemSettings::GetMetric(wxSYS_SMALLICON_X, form_);
    }

    void Show(const wxIcon& picture, const std::string& tip) override {
        const wxIcon former = std::exchange(picture_, picture);
        if (former.IsOk()) {
            tray_.ChangeIcon(picture_.GetHandle());
        } else {
            tray_.AddIcon(form_->GetHandle(), picture_.GetHandle(), [this](TrayRequest request) {
                // Not in the middle of the message: the menu may be what ends the icon.
                form_->CallAfter([this, request] { Answer(request); });
            });
        }
        if (tip_ != tip || !former.IsOk()) tray_.SetTip(tip);
        tip_ = tip;
    }

 private:
    void Answer(TrayRequest request) {
        // A box that is open, or a command that waits, has the user's attention first.
        if (InputIsHeld() || IsWindowEnabled(window_.GetHWND()) == FALSE) return;
        switch (request) {
            case TrayRequest::kClick:
                host_.ShowOrHide();
                return;
            case TrayRequest::kActivate:
                host_.ShowWindow();
                return;
            case TrayRequest::kMenu:
                ShowMenu();
                return;
        }
    }

    void ShowMenu() {
        const std::unique_ptr<wxMenu> menu(host_.MakeMenu());
        if (menu == nullptr) return;
        const HWND form = form_->GetHWND();
        const HWND before = GetForegroundWindow();
        // Otherwise the menu would stay open when the user clicks elsewhere; the message makes the switch
        // take effect (see TrackPopupMenu).
        SetForegroundWindow(form);
        form_->PopupMenu(menu.get());
        PostMessageW(form, WM_NULL, 0, 0);
        if (GetForegroundWindow() == form && before != nullptr) SetForegroundWindow(before);
    }

    const wxWindow& window_;
    TrayIconHost& host_;
    wxFrame* form_;
    wxIcon picture_;
    std::string tip_;
    SysTray tray_;
};

}  // namespace

std::unique_ptr<TrayIcon> TrayIcon::Make(const wxWindow& window, TrayIconHost& host) {
    return std::make_unique<FormTrayIcon>(window, host);
}

}  // namespace corvane
