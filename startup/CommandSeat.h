#pragma once

#include "platform/Seat.h"

namespace corvane {

/// The seat of a command-line run: passes on to `inner`, or shows nothing in silent mode, and remembers
/// whether anything was reported as failed.
class CommandSeat : public Seat {
 public:
    CommandSeat(Seat& inner, bool silent) : inner_(inner), silent_(silent) {}

    /// True once a box with the critical icon was due, shown or not, or one with the exclamation icon whose
    /// way out the user did not take.
    [[nodiscard]] bool SawFailure() const { return sawFailure_; }

    BoxAnswer ShowBox(const std::string& title, const std::string& text, BoxIcon icon,
                      BoxButtons buttons) override {
        BoxAnswer answer = buttons == BoxButtons::kOk ? BoxAnswer::kOk : BoxAnswer::kNo;
        if (!silent_) answer = inner_.ShowBox(title, text, icon, buttons);
        const bool refusal = icon == BoxIcon::kExclamation && answer != BoxAnswer::kYes;
        if (icon == BoxIcon::kCritical || refusal) sawFailure_ = true;
        return answer;
    }
    void ShowUnsilencedBox(const std::string& title, const std::string& text, BoxIcon icon) override {
        if (icon == BoxIcon::kCritical) sawFailure_ = true;
        inner_.ShowUnsilencedBox(title, text, icon);
    }
    std::optional<std::string> AskText(const std::string& title, const std::string& prompt,
                                       const std::string& preset) override {
        return silent_ ? std::nullopt : inner_.AskText(title, prompt, preset);
    }
    std::optional<std::size_t> PickFolder(const std::string& title, const std::string& heading,
                                          const std::string& instruction,
                                          const std::vector<std::string>& names) override {
        return silent_ ? std::nullopt : inner_.PickFolder(title, heading, instruction, names);
    }
    void Warn(const std::string& text) override {
        if (!silent_) inner_.Warn(text);
    }
    void Progress(const std::string& text) override {
        if (!silent_) inner_.Progress(text);
    }
    void RowProgress(int subItem, const std::string& text) override { inner_.RowProgress(subItem, text); }
    void ShowSplash() override { inner_.ShowSplash(); }
    void SplashSystem(const std::string& text) override { inner_.SplashSystem(text); }
    void SplashStatus(const std::string& text) override { inner_.SplashStatus(text); }
    void SplashProgress(const std::string& text) override { inner_.SplashProgress(text); }
    void LetEventsRun() override { inner_.LetEventsRun(); }
    void Refresh() override { inner_.Refresh(); }

 private:
    Seat& inner_;
    bool silent_;
    bool sawFailure_ = false;
};

}  // namespace corvane
