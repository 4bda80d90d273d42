#pragma once

#include <chrono>
#include <memory>

#include "platform/Platform.h"
#include "platform/Seat.h"

class wxWindow;

/// The seat of the window program, and the clock that lets its windows paint.
namespace corvane {

class frmMain;
class frmSplash;

class WindowSeat : public Seat {
 public:
    WindowSeat();
    ~WindowSeat() override;

    /// The main window, which shows row progress, warnings and refreshes; nullptr when there is none (any
    /// more).
    void SetMainWindow(frmMain* window) { window_ = window; }
    void UnloadSplash();

    BoxAnswer ShowBox(const std::string& title, const std::string& text, BoxIcon icon,
                      BoxButtons buttons) override;
    std::optional<std::string> AskText(const std::string& title, const std::string& prompt,
                                       const std::string& preset) override;
    std::optional<std::size_t> PickFolder(const std::string& title, const std::string& heading,
                                          const std::string& instruction,
                                          const std::vector<std::string>& names) override;
    /// In the main window's bar; without one in a box.
    void Warn(const std::string& text) override;
    void Progress(const std::string& text) override;
    void RowProgress(int subItem, const std::string& text) override;
    void ShowSplash() override;
    void SplashSystem(const std::string& text) override;
    void SplashStatus(const std::string& text) override;
    void SplashProgress(const std::string& text) override;
    /// Paints and lets timers run; keys and clicks wait.
    void LetEventsRun() override;
    void Refresh() override;

 private:
    [[nodiscard]] wxWindow* Parent() const;
    frmSplash& Splash();

    frmMain* window_ = nullptr;
    frmSplash* splash_ = nullptr;
    std::chrono::steady_clock::time_point lastSplashPainting_;
    bool splashChanged_ = false;  ///< More than its progress.
};

/// The system's clock, except that a sleep holds keys and clicks back and goes on painting.
class WindowClock : public ClockApi {
 public:
    explicit WindowClock(std::shared_ptr<ClockApi> system) : system_(std::move(system)) {}

    void Sleep(std::uint32_t milliseconds) override;
    DateTime LocalTime() override { return system_->LocalTime(); }
    std::uint32_t Seed() override { return system_->Seed(); }

 private:
    std::shared_ptr<ClockApi> system_;
};

}  // namespace corvane
