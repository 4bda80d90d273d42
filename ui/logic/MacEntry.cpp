#include "ui/logic/MacEntry.h"

#include <cstddef>
#include <optional>
#include <utility>

#include "base/Text.h"
#include "ui/logic/TypedText.h"

namespace corvane {

namespace {

constexpr int kBoxesOfRow = 6;
constexpr int kLastAppliedBox = 5;
constexpr int kLastPrefixBox = 2;
constexpr std::size_t kOctetLength = 2;
constexpr int kNoBox = -1;

bool IsFirstOfRow(int box) { return box % kBoxesOfRow == 0; }
bool IsLastOfRow(int box) { return box % kBoxesOfRow == kBoxesOfRow - 1; }

bool IsSeparator(int character) { return character == ':' || character == '-' || character == '.'; }

/// The digit in upper case; nothing for any other character.
std::optional<char> HexDigit(int character) {
    if (character >= 'a' && character <= 'z') character += 'A' - 'a';
    const bool digit = (character >= '0' && character <= '9') || (character >= 'A' && character <= 'F');
    if (!digit) return std::nullopt;
    return static_cast<char>(character);
}

bool AreHexDigits(const std::string& text) {
    for (const char c : text) {
        if (!HexDigit(c)) return false;
    }
    return true;
}

/// What stands between separators, when the text has one kind of them and else only hexadecimal digits; else
/// nothing.
std::vector<std::string> GroupsOf(const std::string& text) {
    const std::size_t at = text.find_first_of(":-. ");
    std::vector<std::string> groups = at == std::string::npos ? std::vector{text} : Split(text, text[at]);
    for (const std::string& group : groups) {
        if (!AreHexDigits(group)) return {};
    }
    return groups;
}

/// The six octets of an address, two upper-case digits each; empty when the text is none.
std::vector<std::string> OctetsOf(const std::string& text) {
    const std::vector<std::string> groups = GroupsOf(ToUpper(text));
    std::vector<std::string> octets;
    if (groups.size() == kBoxesOfRow) {
        for (const std::string& group : groups) {
            if (group.empty() || group.size() > kOctetLength) return {};
            octets.push_back(group.size() < kOctetLength ? "0" + group : group);
        }
        return octets;
    }
    // Several octets to a group, as many in each.
    const std::string digits = Join(groups, "");
    if (digits.size() != kBoxesOfRow * kOctetLength) return {};
    const std::size_t digitsOfGroup = digits.size() / groups.size();
    for (const std::string& group : groups) {
        if (group.size() != digitsOfGroup || group.size() % kOctetLength != 0) return {};
    }
    for (std::size_t i = 0; i < digits.size(); i += kOctetLength)
        octets.push_back(digits.substr(i, kOctetLength));
    return octets;
}

/// What a box keeps of a text that did not come by its keys (dropped by the mouse, from an input method): its
/// first two hexadecimal digits.
std::string KeptOfText(const std::string& text) {
    std::string octet;
    for (const char c : text) {
        const std::optional<char> digit = HexDigit(c);
        if (digit && octet.size() < kOctetLength) octet += *digit;
    }
    return octet;
}

}  // namespace

std::string WithoutMargins(const std::string& text) {
    constexpr char kMargins[] = " \t\r\n";
    const std::size_t first = text.find_first_not_of(kMargins);
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(kMargins) - first + 1);
}

void MacEntry::KeyPress(int box, int character) {
    const std::optional<char> digit = HexDigit(character);
    const bool separator = IsSeparator(character);
    if (!digit && !separator && character != kBackspace) return;

    const bool arrived = std::exchange(arrivedIn_, kNoBox) == box;
    if (digit) {
        Digit(box, *digit);
    } else if (!separator) {
        Backspace(box);
    } else if (!arrived) {
        Separator(box);
    }
}

void MacEntry::Separator(int box) {
    if (!IsLastOfRow(box)) {
        GoTo(box + 1);
        return;
    }
    boxes_.Beep();
    if (box == kLastAppliedBox) boxes_.FocusRestartCheck();
}

void MacEntry::Backspace(int box) {
    const TextSelection selection = boxes_.Selection(box);
    if (selection.length != 0) {
        // The selection is removed for the key, which then goes on to the box and erases what the box would.
        ReplaceSelection(box, "");
        EraseBeforeCaret(box);
    } else if (selection.start != 0) {
        EraseBeforeCaret(box);
    } else if (IsFirstOfRow(box)) {
        boxes_.Beep();
    } else {
        GoTo(box - 1);
        PutCaret(box - 1, LengthOf(boxes_.Text(box - 1)));
    }
}

void MacEntry::Digit(int box, char digit) {
    const TextSelection selection = boxes_.Selection(box);
    if (boxes_.Text(box).size() >= kOctetLength && selection.length == 0) {
        DigitBeyondFullBox(box, digit);
        return;
    }
    const bool completes = selection == TextSelection{1, 0};
    ReplaceSelection(box, std::string(1, digit));
    if (!completes) return;
    if (box == kLastAppliedBox) {
        boxes_.FocusRestartCheck();
    } else if (!IsLastOfRow(box)) {
        GoTo(box + 1);
        SelectAll(box + 1);
        arrivedIn_ = box + 1;
    }
}

void MacEntry::DigitBeyondFullBox(int box, char digit) {
    if (box == kLastAppliedBox) {
        boxes_.FocusRestartCheck();
    } else if (IsLastOfRow(box)) {
        boxes_.Beep();
    } else {
        GoTo(box + 1);
        boxes_.SetText(box + 1, std::string(1, digit));
        PutCaret(box + 1, 1);
    }
}

bool MacEntry::KeyDown(int box, BoxKey key, bool shift, bool control) {
    arrivedIn_ = kNoBox;
    if (shift && !control) return false;
    const bool wholeBoxes = control && !shift;
    const int caret = boxes_.Selection(box).start;
    if (key == BoxKey::kLeft) {
        if (!wholeBoxes && caret != 0) return false;
        if (IsFirstOfRow(box)) return false;
    } else {
        if (!wholeBoxes && caret < LengthOf(boxes_.Text(box))) return false;
        if (IsLastOfRow(box)) return false;
    }

    const int target = key == BoxKey::kLeft ? box - 1 : box + 1;
    GoTo(target);
    if (wholeBoxes) {
        SelectAll(target);
    } else {
        PutCaret(target, key == BoxKey::kLeft ? LengthOf(boxes_.Text(target)) : 0);
    }
    return true;
}

void MacEntry::Changed(int box) {
    const std::string text = boxes_.Text(box);
    const std::string octet = KeptOfText(text);
    if (octet != text) {
        boxes_.Beep();
        boxes_.SetText(box, octet);  // Comes back here.
        return;
    }
    if (box <= kLastPrefixBox) vendor_.PrefixChanged();
    bool complete = true;
    for (int i = 0; i <= kLastAppliedBox; ++i) complete = complete && boxes_.Text(i).size() >= kOctetLength;
    boxes_.EnableChangeNow(complete);
}

void MacEntry::Clicked(int box) {
    arrivedIn_ = kNoBox;
    SelectAll(box);
}

void MacEntry::FocusGained(int box) {
    if (box > kLastPrefixBox) vendor_.LookUpTypedVendor();
}

void MacEntry::FocusLost(int box) {
    if (box == arrivedIn_) arrivedIn_ = kNoBox;
    const std::string text = boxes_.Text(box);
    if (text.size() == 1) boxes_.SetText(box, "0" + text);
}

void MacEntry::Pasted(int box, const std::string& text) {
    const std::string content = WithoutMargins(text);
    const std::vector<std::string> octets = OctetsOf(content);
    if (!octets.empty()) {
        FillRow(box - box % kBoxesOfRow, octets);
    } else if (!content.empty() && content.size() <= kOctetLength && AreHexDigits(content)) {
        boxes_.SetText(box, ToUpper(content));
        PutCaret(box, LengthOf(content));
    } else {
        boxes_.Beep();
        return;
    }
    arrivedIn_ = kNoBox;
}

void MacEntry::FillRow(int first, const std::vector<std::string>& octets) {
    const auto fill = [&](int from, int to) {
        for (int i = from; i <= to; ++i) boxes_.SetText(first + i, octets[static_cast<std::size_t>(i)]);
    };
    const int last = first + kBoxesOfRow - 1;
    fill(0, kLastPrefixBox);
    // Entering the last box may look up the vendor of the new prefix, which fills the rest with random
    // octets.
    GoTo(last);
    fill(kLastPrefixBox + 1, kBoxesOfRow - 1);
    PutCaret(last, LengthOf(boxes_.Text(last)));
}

void MacEntry::ReplaceSelection(int box, const std::string& text) {
    const TextSelection selection = boxes_.Selection(box);
    std::string content = boxes_.Text(box);
    content.replace(static_cast<std::size_t>(selection.start), static_cast<std::size_t>(selection.length),
                    text);
    boxes_.SetText(box, content);
    PutCaret(box, selection.start + LengthOf(text));
}

void MacEntry::EraseBeforeCaret(int box) {
    const int caret = boxes_.Selection(box).start;
    if (caret == 0) return;
    std::string content = boxes_.Text(box);
    content.erase(static_cast<std::size_t>(caret - 1), 1);
    boxes_.SetText(box, content);
    PutCaret(box, caret - 1);
}

void MacEntry::GoTo(int box) {
    boxes_.Focus(box);
    FocusGained(box);
}

void MacEntry::SelectAll(int box) { boxes_.Select(box, {0, LengthOf(boxes_.Text(box))}); }

void MacEntry::PutCaret(int box, int position) { boxes_.Select(box, {position, 0}); }

void NormaliseOctets(MacBoxesView& boxes, int first, int last) {
    for (int box = first; box <= last; ++box) {
        const std::string text = boxes.Text(box);
        if (text.size() < kOctetLength)
            boxes.SetText(box, std::string(kOctetLength - text.size(), '0') + text);
    }
}

std::string JoinMacText(const MacBoxesView& boxes, const std::string& separator, int first) {
    std::vector<std::string> texts;
    for (int box = first; box < first + kBoxesOfRow; ++box) texts.push_back(boxes.Text(box));
    return Join(texts, separator);
}

}  // namespace corvane
