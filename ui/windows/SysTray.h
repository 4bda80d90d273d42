#pragma once

#include <functional>
#include <memory>
#include <string>

/// The calls for the icon in the notification area (Shell_NotifyIconA).
namespace corvane {

/// What the icon's messages ask for.
enum class TrayRequest { kClick, kMenu, kActivate };

class SysTray {
 public:
    SysTray();
    /// Removes the icon.
    ~SysTray();
    SysTray(const SysTray&) = delete;
    SysTray& operator=(const SysTray&) = delete;

    /// Adds the icon for a form, given by its window's handle (HWND), and a picture (HICON). From now on the
    /// icon's messages, which come through the form's window, call `onRequest` while the form is enabled. The
    /// icon is added anew whenever the taskbar is. To be called once.
    void AddIcon(void* form, void* icon, std::function<void(TrayRequest)> onRequest);
    void RemoveIcon();
    /// Shows a text (UTF-8) at the icon: its first 63 characters in the system's code page.
    void SetTip(const std::string& text);
    /// Shows another picture (HICON), which must live until the next one is shown or the icon is removed.
    void ChangeIcon(void* icon);

 private:
    class Window;

    std::unique_ptr<Window> window_;
};

}  // namespace corvane
