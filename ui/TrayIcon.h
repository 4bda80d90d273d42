#pragma once

#include <memory>
#include <string>

class wxIcon;
class wxMenu;
class wxWindow;

namespace corvane {

/// What the icon in the tray asks of whoever it belongs to.
class TrayIconHost {
 public:
    /// The icon was clicked.
    virtual void ShowOrHide() = 0;
    /// The program was asked to come to the front.
    virtual void ShowWindow() = 0;
    /// The icon's menu is asked for; it handles its commands itself and belongs to the icon. Nothing: there
    /// is none now.
    virtual wxMenu* MakeMenu() = 0;

 protected:
    ~TrayIconHost() = default;
};

/// An icon in the desktop's tray, from the first picture that it shows until it is destroyed. Made of what
/// the desktop has for that (ui/gtk, ui/windows).
class TrayIcon {
 public:
    /// Nothing where the desktop has no tray. `window` is the program's main window; it and the host
    /// must outlive the icon.
    static std::unique_ptr<TrayIcon> Make(const wxWindow& window, TrayIconHost& host);
    virtual ~TrayIcon() = default;
    TrayIcon(const TrayIcon&) = delete;
    TrayIcon& operator=(const TrayIcon&) = delete;

    /// Width and height of its pictures, in pixels.
    [[nodiscard]] virtual int PictureSize() const = 0;
    virtual void Show(const wxIcon& picture, const std::string& tip) = 0;

 protected:
    TrayIcon() = default;
};

}  // namespace corvane
