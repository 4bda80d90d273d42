#include "ui/windows/SysTray.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "base/Text.h"
#include "platform/CodePage.h"
#include "platform/windows/Windows.h"

namespace corvane {

namespace {

constexpr UINT kCallbackMessage = 2025;
/// Sent by whoever starts or calls for the program, in the manner of the system's own message of that number
/// (WM_ACTIVATE).
constexpr LPARAM kActivateCode = WM_ACTIVATE;
/// The name under which a form's window knows its icon.
constexpr char kProperty[] = "Corvane.SysTray";
/// Length of the tip in the first version of the record, its closing NUL included.
constexpr std::size_t kTipSize = 64;

/// The text's start that fits, with a NUL, into `size` bytes; no character is torn.
std::string Fitting(const std::string& text, std::size_t size) {
    const char* end = text.c_str();
    while (*end != '\0') {
        const char* const next = CharNextExA(CP_ACP, end, 0);
        if (static_cast<std::size_t>(next - text.c_str()) >= size) break;
        end = next;
    }
    return {text.c_str(), end};
}

}  // namespace

/// The form's window with its icon.
class SysTray::Window {
 public:
    Window(HWND form, HICON icon, std::function<void(TrayRequest)> onRequest)
        : form_(form),
          onRequest_(std::move(onRequest)),
          taskbarCreated_(RegisterWindowMessageW(L"TaskbarCreated")) {
        // The first version of the record is all that is needed, and every shell understands it. Its size is
        // 88 bytes in a program of 32 bits, and what the headers say with the wider handles of 64.
        data_.cbSize = NOTIFYICONDATAA_V1_SIZE;
        data_.hWnd = form;
        data_.uID = 1;
        data_.uFlags = NIF_MESSAGE | NIF_ICON | NIF_TIP;
        data_.uCallbackMessage = kCallbackMessage;
        data_.hIcon = icon;
        // The taskbar runs with fewer rights than this program, so its message has to be let in.
        ChangeWindowMessageFilterEx(form_, taskbarCreated_, MSGFLT_ALLOW, nullptr);
        SetPropA(form_, kProperty, this);
        former_ = SetProcedure(&Window::Procedure);
        Add();
    }

    ~Window() {
        Shell_NotifyIconA(NIM_DELETE, &data_);
        SetProcedure(former_);
        RemovePropA(form_, kProperty);
    }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    void SetTip(const std::string& text) {
        const std::string tip = Fitting(ToCodePage(text), kTipSize);
        std::fill_n(data_.szTip, kTipSize, '\0');
        std::copy(tip.begin(), tip.end(), data_.szTip);
        Modify();
    }

    void ChangeIcon(HICON icon) {
        data_.hIcon = icon;
        Modify();
    }

 private:
    /// Sets the procedure of the form's window; returns the one before.
    WNDPROC SetProcedure(WNDPROC procedure) {
        // Both ways between a procedure and its number: there is no other way to say it.
        const auto number = reinterpret_cast<LONG_PTR>(procedure);
        return reinterpret_cast<WNDPROC>(SetWindowLongPtrA(form_, GWLP_WNDPROC, number));
    }

    // Where there is no taskbar yet, or one that does not answer, there is no icon until the taskbar is made.
    void Add() { Shell_NotifyIconA(NIM_ADD, &data_); }
    void Modify() { Shell_NotifyIconA(NIM_MODIFY, &data_); }

    void OnCallback(LPARAM code) {
        if (code == WM_LBUTTONUP) onRequest_(TrayRequest::kClick);
        if (code == WM_RBUTTONUP) onRequest_(TrayRequest::kMenu);
        if (code == kActivateCode) onRequest_(TrayRequest::kActivate);
    }

    static LRESULT CALLBACK Procedure(HWND form, UINT message, WPARAM word, LPARAM data) {
        auto* const self = static_cast<Window*>(GetPropA(form, kProperty));
        const WNDPROC former = self->former_;
        if (message == kCallbackMessage && IsWindowEnabled(form) != FALSE) self->OnCallback(data);
        if (message == self->taskbarCreated_) self->Add();
        return CallWindowProcA(former, form, message, word, data);
    }

    HWND form_;
    std::function<void(TrayRequest)> onRequest_;
    UINT taskbarCreated_;
    WNDPROC former_ = nullptr;
    NOTIFYICONDATAA data_{};
};

SysTray::SysTray() = default;
SysTray::~SysTray() = default;

void SysTray::AddIcon(void* form, void* icon, std::function<void(TrayRequest)> onRequest) {
    window_ =
        std::make_unique<Window>(static_cast<HWND>(form), static_cast<HICON>(icon), std::move(onRequest));
}

void SysTray::RemoveIcon() { window_.reset(); }
void SysTray::SetTip(const std::string& text) { window_->SetTip(text); }
void SysTray::ChangeIcon(void* icon) { window_->ChangeIcon(static_cast<HICON>(icon)); }

}  // namespace corvane
