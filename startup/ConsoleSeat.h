#pragma once

#include <istream>
#include <ostream>

#include "platform/Seat.h"

namespace corvane {

/// The user at a terminal. A box is its title line, its text and an empty line: information on `out`,
/// everything else on `err`. Questions are asked only when `interactive`; otherwise the answer is No, no
/// text, no choice.
class ConsoleSeat : public NullSeat {
 public:
    ConsoleSeat(std::istream& in, std::ostream& out, std::ostream& err, bool interactive)
        : in_(in), out_(out), err_(err), interactive_(interactive) {}

    BoxAnswer ShowBox(const std::string& title, const std::string& text, BoxIcon icon,
                      BoxButtons buttons) override;
    std::optional<std::string> AskText(const std::string& title, const std::string& prompt,
                                       const std::string& preset) override;
    /// A numbered list; an empty line, 0 or the end of the input cancels.
    std::optional<std::size_t> PickFolder(const std::string& title, const std::string& heading,
                                          const std::string& instruction,
                                          const std::vector<std::string>& names) override;
    void Warn(const std::string& text) override;
    void Progress(const std::string& text) override;

 private:
    std::optional<std::string> ReadLine();

    std::istream& in_;
    std::ostream& out_;
    std::ostream& err_;
    bool interactive_;
};

}  // namespace corvane
