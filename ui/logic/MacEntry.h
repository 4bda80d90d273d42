#pragma once

#include <string>
#include <vector>

#include "ui/logic/VendorEntry.h"

/// The typing rules of the octet boxes: one box per octet, boxes 0 to 5 the address that is applied, 6
/// to 11 the second row, which obeys the same keyboard rules.
namespace corvane {

/// The arrow keys that move between boxes.
enum class BoxKey { kLeft, kRight };

/// What the window tells about the boxes and what it does with the answers. Every event of box `box` (0 to
/// 11) goes to the member of its name; the window itself has no rule.
class MacEntry {
 public:
    /// Both must outlive the rules.
    MacEntry(MacBoxesView& boxes, VendorEntry& vendor) : boxes_(boxes), vendor_(vendor) {}

    /// A character was typed: its code (8 = backspace). All that is to happen is done through the view; the
    /// window drops the key itself in every case.
    ///
    /// ":", "-" and "." go to the next box. The one right after a digit that filled its box, and so has gone
    /// there already, is the separator between the two and does no more.
    void KeyPress(int box, int character);

    /// An arrow key is down. True: done here, the window drops the key; false: the box handles it, also where
    /// the row ends.
    bool KeyDown(int box, BoxKey key, bool shift, bool control);

    /// The text of a box changed, by the user or by SetText with another text. What is no hexadecimal digit,
    /// or one too many, and did not come by a key (dropped by the mouse, from an input method) is taken out
    /// with a beep.
    void Changed(int box);

    void Clicked(int box);
    void FocusGained(int box);
    void FocusLost(int box);

    /// A text is pasted into a box. An address of six octets with ":", "-", "." or blanks between them or
    /// none (0:c:29:4f:8e:35 with one-digit octets, 000c.294f.8e35, 000C294F8E35) fills the whole row of the
    /// box and moves the focus to its last box; up to two hexadecimal digits fill the box. Blanks, tabs and
    /// line ends around it do not count. Anything else beeps and changes nothing.
    void Pasted(int box, const std::string& text);

 private:
    void Separator(int box);
    void Backspace(int box);
    void Digit(int box, char digit);
    void DigitBeyondFullBox(int box, char digit);
    void FillRow(int first, const std::vector<std::string>& octets);

    void ReplaceSelection(int box, const std::string& text);
    void EraseBeforeCaret(int box);
    /// The focus moves to another box: its event comes before anything is selected there.
    void GoTo(int box);
    void SelectAll(int box);
    void PutCaret(int box, int position);

    MacBoxesView& boxes_;
    VendorEntry& vendor_;
    int arrivedIn_ = -1;  ///< The box that the digit typed last moved the focus to; -1: nothing of the kind.
};

/// A pasted text without the blanks, tabs and line ends around it.
std::string WithoutMargins(const std::string& text);

/// Boxes `first` to `last`: an empty one becomes "00", one with a single character gets a leading "0".
void NormaliseOctets(MacBoxesView& boxes, int first, int last);

/// The texts of the six boxes from `first` on, joined.
std::string JoinMacText(const MacBoxesView& boxes, const std::string& separator, int first = 0);

}  // namespace corvane
