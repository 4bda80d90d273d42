#pragma once

#include <functional>
#include <memory>
#include <string>

class wxIcon;
class wxMenu;
class wxWindow;

namespace corvane {

/// What the icon in the tray asks of its owner.
struct TrayEvents {
    /// The icon was clicked.
    std::function<void()> onClick;
    /// The program was asked to come to the front.
    std::function<void()> onActivate;
    /// The icon's menu is asked for; it handles its commands itself and belongs to the icon. Nothing: there
    /// is none now.
    std::function<wxMenu*()> makeMenu;
};

/// An icon in the desktop's tray, from the first picture that it shows until it is destroyed. Made of what
/// the desktop has for that (ui/gtk, ui/windows).
class TrayIcon {
 public:
    /// Nothing where the desktop has no tray. `window` is the program's main window.
    static std::unique_ptr<TrayIcon> Make(const wxWindow& window, TrayEvents events);
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
