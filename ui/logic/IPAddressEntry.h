#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "ui/logic/MacEntry.h"

/// The rules of the entry control for one IPv4 address in dotted-quad form: four boxes, one per
/// octet, 0 to 3 from left to right.
namespace corvane {

/// Number of boxes.
inline constexpr int kQuadBoxes = 4;
/// Digits that a box holds at most.
inline constexpr int kQuadDigits = 3;

/// The boxes as the rules see them. Box numbers are 0 to 3.
class QuadBoxesView {
 public:
    virtual ~QuadBoxesView() = default;

    [[nodiscard]] virtual std::string BoxText(int box) const = 0;
    /// When the text is another one than before, IPAddressEntry::Changed runs for the box before this
    /// returns.
    virtual void SetBoxText(int box, const std::string& text) = 0;
    [[nodiscard]] virtual TextSelection Selection(int box) const = 0;
    virtual void Select(int box, TextSelection selection) = 0;
    /// IPAddressEntry::FocusGained runs for the box before anything is typed there.
    virtual void Focus(int box) = 0;
    virtual void Beep() = 0;
};

/// Whoever the control belongs to. What it does not care for it leaves alone.
class IPAddressEvents {
 public:
    virtual ~IPAddressEvents() = default;
    /// Raised after every change of any box, also after a rejected value was cleared.
    virtual void Change() {}
    /// Raised for every key that is let through to a box.
    virtual void Edit() {}
    /// The focus came to a box.
    virtual void Focus() {}

    /// For a control that nobody listens to.
    static IPAddressEvents& Unheard();
};

/// What the window tells about the boxes and what it does with the answers. Every event of a box goes to the
/// member of its name; the window itself has no rule. The value is read and written here too.
class IPAddressEntry {
 public:
    /// `boxes` must outlive the rules.
    explicit IPAddressEntry(QuadBoxesView& boxes) : boxes_(boxes) {}

    /// From now on events go to `events`, which must outlive the rules; until then to nobody.
    void Tell(IPAddressEvents& events) { events_ = &events; }

    /// The texts of the boxes joined by "."; empty when all of them are. A value that is not complete reads
    /// as it stands, such as "10.1..".
    [[nodiscard]] std::string Text() const;
    /// An empty text empties the boxes. A text of exactly four parts joined by "." sets each box to the
    /// numeric value of its part in decimal; any other number of parts changes nothing.
    void SetText(const std::string& text);
    /// An octet; an empty box counts as 0.
    [[nodiscard]] std::uint8_t GetNumber(int box) const;
    void SetNumber(int box, std::uint8_t value);
    /// All four octets, the first one first (network byte order).
    [[nodiscard]] std::array<std::uint8_t, kQuadBoxes> Octets() const;

    /// A character was typed: its code (8 = backspace, 3, 22, 24, 26 = Ctrl+C, V, X, Z). True: the box
    /// handles it as usual; false: done here, the window drops it. Keys without a character, Tab, Enter and
    /// Escape are not for the rules.
    bool KeyPress(int box, int character);

    /// An arrow key is down. True: done here, the window drops the key; false: the box handles it.
    bool KeyDown(int box, BoxKey key, bool shift, bool control);

    /// The text of a box changed, by the user or by SetBoxText with another text. One that is no number from
    /// 0 to 255 of at most three digits is emptied with a beep.
    void Changed(int box);

    void FocusGained(int box);
    void FocusLost(int box);

    /// A text is pasted into a box. A whole dotted quad fills all four boxes and moves the focus to the last
    /// one, its text selected. Up to three digits replace the selection, or go in at the caret, where there
    /// is room for them. Blanks, tabs and line ends around it do not count. Anything else beeps and changes
    /// nothing.
    void Pasted(int box, const std::string& text);

 private:
    void Dot(int box);
    bool Backspace(int box);
    bool Digit(int box, int character);
    void PasteDigits(int box, const std::string& digits);

    QuadBoxesView& boxes_;
    IPAddressEvents* events_ = &IPAddressEvents::Unheard();
    std::uint16_t pendingKey_ =
        0;  ///< The key that overflowed a box, for the next box when it gets the focus.
};

}  // namespace corvane
