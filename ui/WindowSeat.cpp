#include "ui/WindowSeat.h"

#include <wx/app.h>
#include <wx/evtloop.h>
#include <wx/textdlg.h>
#include <wx/timer.h>

#include "ui/Desktop.h"
#include "ui/WxText.h"
#include "ui/frmBrowseNetFolder.h"
#include "ui/frmMain.h"
#include "ui/frmSplash.h"

namespace corvane {

namespace {

/// The first line of a text.
std::string FirstLine(const std::string& text) { return text.substr(0, text.find_first_of("\r\n")); }

}  // namespace

WindowSeat::WindowSeat() = default;

WindowSeat::~WindowSeat() { UnloadSplash(); }

wxWindow* WindowSeat::Parent() const {
    if (window_ != nullptr && window_->IsShown()) return window_;
    return splash_;
}

BoxAnswer WindowSeat::ShowBox(const std::string& title, const std::string& text, BoxIcon icon,
                              BoxButtons buttons) {
    const BoxAnswer answer = ShowMessageBox(Parent(), Wx(title), Wx(text), icon, buttons);
    if (window_ != nullptr && buttons == BoxButtons::kOk) window_->ShowStatus(FirstLine(text));
    return answer;
}

std::optional<std::string> WindowSeat::AskText(const std::string& title, const std::string& prompt,
                                               const std::string& preset) {
    wxTextEntryDialog dialog(Parent(), Wx(prompt), Wx(title), Wx(preset));
    if (dialog.ShowModal() != wxID_OK) return std::nullopt;
    return Utf8(dialog.GetValue());
}

std::optional<std::size_t> WindowSeat::PickFolder(const std::string& title, const std::string& heading,
                                                  const std::string& instruction,
                                                  const std::vector<std::string>& names) {
    frmBrowseNetFolder dialog(Parent(), title, heading, instruction, names);
    return dialog.ShowModal() == wxID_OK ? dialog.Choice() : std::nullopt;
}

void WindowSeat::Warn(const std::string& text) {
    if (window_ != nullptr) {
        window_->ShowWarning(text);
    } else {
        ShowBox(kApplicationTitle, text, BoxIcon::kExclamation, BoxButtons::kOk);
    }
}

void WindowSeat::Progress(const std::string& text) {
    if (window_ != nullptr) window_->ShowStatus(text);
}

void WindowSeat::RowProgress(int subItem, const std::string& text) {
    if (window_ != nullptr) window_->ShowRowProgress(subItem, text);
}

frmSplash& WindowSeat::Splash() {
    if (splash_ == nullptr) splash_ = new frmSplash;
    return *splash_;
}

void WindowSeat::ShowSplash() {
    // A window that is gone before it was painted is only a flicker. A display that paints nothing is not
    // waited for.
    static constexpr auto kPatience = std::chrono::milliseconds(100);
    Splash().Show();
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    while (!Splash().Painted() && std::chrono::steady_clock::now() < deadline) LetWindowsPaint();
}
void WindowSeat::SplashSystem(const std::string& text) { Splash().SetSystem(Wx(text)); }
void WindowSeat::SplashStatus(const std::string& text) {
    Splash().SetStatus(Wx(text));
    splashChanged_ = true;
}
void WindowSeat::SplashProgress(const std::string& text) { Splash().SetProgress(Wx(text)); }

void WindowSeat::UnloadSplash() {
    if (splash_ == nullptr) return;
    splash_->Destroy();
    splash_ = nullptr;
}

void WindowSeat::LetEventsRun() {
    // Nobody can see the progress change more often than this, and loading is not to wait for its painting.
    static constexpr auto kProgressInterval = std::chrono::milliseconds(40);
    if (splash_ != nullptr && window_ == nullptr) {
        const auto now = std::chrono::steady_clock::now();
        if (!splashChanged_ && now - lastSplashPainting_ < kProgressInterval) return;
        lastSplashPainting_ = now;
        splashChanged_ = false;
        splash_->Update();
    }
    LetWindowsPaint();
}

void WindowSeat::Refresh() {
    if (window_ != nullptr) window_->RefreshConnections();
}

void WindowClock::Sleep(std::uint32_t milliseconds) {
    const InputHold hold;
    wxGUIEventLoop loop;
    wxTimer timer;
    timer.Bind(wxEVT_TIMER, [&loop](wxTimerEvent&) { loop.Exit(); });
    timer.StartOnce(static_cast<int>(milliseconds));
    loop.Run();
}

}  // namespace corvane
