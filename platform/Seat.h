#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

/// The seam to the user. Lower layers never open a window or print: they ask the seat. Bodies: the console's,
/// the window's, the tests'.
namespace corvane {

enum class BoxIcon { kCritical, kExclamation, kInformation, kQuestion };
enum class BoxButtons { kOk, kYesNoCancel };
enum class BoxAnswer { kOk, kYes, kNo, kCancel };

/// Title of the boxes that have no title of their own.
inline constexpr char kApplicationTitle[] = "Orvella Corvane";

/// Line end inside the texts of boxes, reports and help.
inline constexpr char kCrLf[] = "\r\n";

class Seat {
 public:
    virtual ~Seat() = default;

    /// Shows a box and waits for its answer. Text lines are joined by CR LF. A seat that cannot ask answers
    /// kNo.
    virtual BoxAnswer ShowBox(const std::string& title, const std::string& text, BoxIcon icon,
                              BoxButtons buttons) = 0;

    /// Same, for the two boxes that are shown in silent mode too.
    virtual void ShowUnsilencedBox(const std::string& title, const std::string& text, BoxIcon icon) {
        ShowBox(title, text, icon, BoxButtons::kOk);
    }

    /// Asks for one line of text; nothing when cancelled.
    virtual std::optional<std::string> AskText(const std::string& title, const std::string& prompt,
                                               const std::string& preset) = 0;

    /// Lets the user pick one of `names`; its position, or nothing when cancelled.
    virtual std::optional<std::size_t> PickFolder(const std::string& title, const std::string& heading,
                                                  const std::string& instruction,
                                                  const std::vector<std::string>& names) = 0;

    /// Something that the user should know at once but that stops nothing. One sentence, no line end.
    virtual void Warn(const std::string& text) = 0;

    /// What a long operation is doing now. Shown only to somebody who watches.
    virtual void Progress(const std::string& text) = 0;

    /// Progress in the selected row of the connection list; sub-items count from 1.
    virtual void RowProgress(int subItem, const std::string& text) = 0;

    virtual void ShowSplash() = 0;
    virtual void SplashSystem(const std::string& text) = 0;
    virtual void SplashStatus(const std::string& text) = 0;
    virtual void SplashProgress(const std::string& text) = 0;

    virtual void LetEventsRun() = 0;

    /// Reads the adapters anew and shows them, where there is a window.
    virtual void Refresh() = 0;
};

/// Does nothing, answers No. For programs and layers without a user.
class NullSeat : public Seat {
 public:
    BoxAnswer ShowBox(const std::string&, const std::string&, BoxIcon, BoxButtons buttons) override {
        return buttons == BoxButtons::kOk ? BoxAnswer::kOk : BoxAnswer::kNo;
    }
    std::optional<std::string> AskText(const std::string&, const std::string&, const std::string&) override {
        return std::nullopt;
    }
    std::optional<std::size_t> PickFolder(const std::string&, const std::string&, const std::string&,
                                          const std::vector<std::string>&) override {
        return std::nullopt;
    }
    void Warn(const std::string&) override {}
    void Progress(const std::string&) override {}
    void RowProgress(int, const std::string&) override {}
    void ShowSplash() override {}
    void SplashSystem(const std::string&) override {}
    void SplashStatus(const std::string&) override {}
    void SplashProgress(const std::string&) override {}
    void LetEventsRun() override {}
    void Refresh() override {}
};

/// The installed seat; a NullSeat until a program installs its own.
Seat& CurrentSeat();
/// Installs `seat` (not owned) and returns the former one.
Seat* InstallSeat(Seat* seat);

/// Installs a seat for a scope and puts the former one back.
class ScopedSeat {
 public:
    explicit ScopedSeat(Seat& seat) : former_(InstallSeat(&seat)) {}
    ~ScopedSeat() { InstallSeat(former_); }
    ScopedSeat(const ScopedSeat&) = delete;
    ScopedSeat& operator=(const ScopedSeat&) = delete;

 private:
    Seat* former_;
};

/// Shows what was done, with OK.
inline void ShowInformation(const std::string& title, const std::string& text) {
    CurrentSeat().ShowBox(title, text, BoxIcon::kInformation, BoxButtons::kOk);
}

/// Asks with Yes, No and Cancel. True for Yes alone.
inline bool UserSaysYes(const std::string& title, const std::string& question) {
    return CurrentSeat().ShowBox(title, question, BoxIcon::kQuestion, BoxButtons::kYesNoCancel) ==
           BoxAnswer::kYes;
}

/// Leaves only `text` in the selected row of the connection list, where its status stands, and paints it.
inline void BeginRowProgress(const std::string& text) {
    Seat& seat = CurrentSeat();
    seat.RowProgress(1, "");
    seat.RowProgress(2, "");
    seat.RowProgress(3, text);
    seat.RowProgress(4, " ");
    seat.LetEventsRun();
}

}  // namespace corvane
