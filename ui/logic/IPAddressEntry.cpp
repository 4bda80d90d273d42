#include "ui/logic/IPAddressEntry.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

#include "base/Text.h"
#include "ui/logic/TypedText.h"

namespace corvane {

namespace {

constexpr int kLastBox = kQuadBoxes - 1;
constexpr double kLargestOctet = 255;
constexpr int kControlC = 3;
constexpr int kControlV = 22;
constexpr int kControlX = 24;
constexpr int kControlZ = 26;

bool IsDigit(int character) { return character >= '0' && character <= '9'; }

bool IsEditingKey(int character) {
    return character == kControlC || character == kControlV || character == kControlX ||
           character == kControlZ;
}

/// Whether the text is up to three digits, none included.
bool AreDigitsOfABox(const std::string& text) {
    return text.size() <= kQuadDigits && std::all_of(text.begin(), text.end(), IsDigit);
}

/// Whether a box may hold the text.
bool IsOctetOrEmpty(const std::string& text) {
    return AreDigitsOfABox(text) && NumericValue(text) <= kLargestOctet;
}

bool IsWholeQuad(const std::string& text) {
    const std::vector<std::string> parts = Split(text, '.');
    return parts.size() == kQuadBoxes && std::all_of(parts.begin(), parts.end(), [](const std::string& part) {
               return !part.empty() && IsOctetOrEmpty(part);
           });
}

std::string WithSelectionReplaced(std::string text, TextSelection selection, const std::string& by) {
    text.replace(static_cast<std::size_t>(selection.start), static_cast<std::size_t>(selection.length), by);
    return text;
}

void SelectAll(QuadBoxesView& boxes, int box) { boxes.Select(box, {0, LengthOf(boxes.BoxText(box))}); }

/// After a change: the change may have been rejected, and the text is then shorter than the caret's place.
void PutCaret(QuadBoxesView& boxes, int box, int position) {
    boxes.Select(box, {std::min(position, LengthOf(boxes.BoxText(box))), 0});
}

}  // namespace

IPAddressEvents& IPAddressEvents::Unheard() {
    static IPAddressEvents unheard;
    return unheard;
}

std::string IPAddressEntry::Text() const {
    std::vector<std::string> texts;
    for (int box = 0; box < kQuadBoxes; ++box) texts.push_back(boxes_.BoxText(box));
    const std::string joined = Join(texts, ".");
    return joined == "..." ? "" : joined;
}

void IPAddressEntry::SetText(const std::string& text) {
    if (text.empty()) {
        for (int box = 0; box < kQuadBoxes; ++box) boxes_.SetBoxText(box, "");
        return;
    }
    const std::vector<std::string> parts = Split(text, '.');
    if (parts.size() != kQuadBoxes) return;
    for (int box = 0; box < kQuadBoxes; ++box) {
        // All that is out of range is rejected alike, and a longer number might not fit into the box.
        const double value = NumericValue(parts[static_cast<std::size_t>(box)]);
        boxes_.SetBoxText(box, ShortestDecimal(std::clamp(value, -1.0, kLargestOctet + 1), 0));
    }
}

std::uint8_t IPAddressEntry::GetNumber(int box) const {
    const double value = std::nearbyint(NumericValue(boxes_.BoxText(box)));
    return static_cast<std::uint8_t>(std::clamp(value, 0.0, kLargestOctet));
}

void IPAddressEntry::SetNumber(int box, std::uint8_t value) { boxes_.SetBoxText(box, std::to_string(value)); }

std::array<std::uint8_t, kQuadBoxes> IPAddressEntry::Octets() const {
    std::array<std::uint8_t, kQuadBoxes> octets{};
    for (int box = 0; box < kQuadBoxes; ++box) octets[static_cast<std::size_t>(box)] = GetNumber(box);
    return octets;
}

bool IPAddressEntry::KeyPress(int box, int character) {
    if (character == '.') {
        Dot(box);
        return false;
    }
    bool letThrough = IsEditingKey(character);
    if (character == kBackspace) letThrough = Backspace(box);
    if (IsDigit(character)) letThrough = Digit(box, character);
    if (letThrough) events_->Edit();
    return letThrough;
}

void IPAddressEntry::Dot(int box) {
    if (box == kLastBox) {
        boxes_.Beep();
    } else {
        boxes_.Focus(box + 1);
    }
}

bool IPAddressEntry::Backspace(int box) {
    const TextSelection selection = boxes_.Selection(box);
    if (selection.length != 0) {
        boxes_.SetBoxText(box, WithSelectionReplaced(boxes_.BoxText(box), selection, ""));
        PutCaret(boxes_, box, selection.start);
        return false;
    }
    if (selection.start != 0) return true;
    if (box == 0) {
        boxes_.Beep();
    } else {
        boxes_.Focus(box - 1);
    }
    return false;
}

bool IPAddressEntry::Digit(int box, int character) {
    const bool full = boxes_.BoxText(box).size() >= kQuadDigits && boxes_.Selection(box).length == 0;
    if (!full) return true;
    if (box == kLastBox) {
        boxes_.Beep();
    } else {
        pendingKey_ = static_cast<std::uint16_t>(character);
        boxes_.Focus(box + 1);
    }
    return false;
}

bool IPAddressEntry::KeyDown(int box, BoxKey key, bool shift, bool control) {
    if (shift) return false;
    const int caret = boxes_.Selection(box).start;
    if (key == BoxKey::kLeft) {
        if (caret != 0 || box == 0) return false;
        boxes_.Focus(box - 1);
    } else {
        if (!control && caret < LengthOf(boxes_.BoxText(box))) return false;
        if (box == kLastBox) return false;
        boxes_.Focus(box + 1);
    }
    return true;
}

void IPAddressEntry::Changed(int box) {
    if (!IsOctetOrEmpty(boxes_.BoxText(box))) {
        boxes_.Beep();
        boxes_.SetBoxText(box, "");  // A change of its own, which comes here too.
    }
    events_->Change();
}

void IPAddressEntry::FocusGained(int box) {
    const std::uint16_t key = std::exchange(pendingKey_, std::uint16_t{0});
    if (key == 0) {
        SelectAll(boxes_, box);
        return;
    }
    boxes_.SetBoxText(box, std::string(1, static_cast<char>(key)));
    PutCaret(boxes_, box, 1);
}

void IPAddressEntry::FocusLost(int box) {
    const std::string text = boxes_.BoxText(box);
    if (text.size() < 2 || text.front() != '0') return;
    // The last digit stays, whatever it is.
    boxes_.SetBoxText(box, text.substr(std::min(text.find_first_not_of('0'), text.size() - 1)));
}

void IPAddressEntry::Pasted(int box, const std::string& text) {
    const std::string content = WithoutMargins(text);
    if (IsWholeQuad(content)) {
        SetText(content);
        boxes_.Focus(kLastBox);
        SelectAll(boxes_, kLastBox);  // The focus may have been there before.
    } else if (!content.empty() && AreDigitsOfABox(content)) {
        PasteDigits(box, content);
    } else {
        boxes_.Beep();
    }
}

void IPAddressEntry::PasteDigits(int box, const std::string& digits) {
    const TextSelection selection = boxes_.Selection(box);
    const std::string content = WithSelectionReplaced(boxes_.BoxText(box), selection, digits);
    if (content.size() > kQuadDigits) {
        boxes_.Beep();
        return;
    }
    boxes_.SetBoxText(box, content);
    PutCaret(boxes_, box, selection.start + LengthOf(digits));
}

}  // namespace corvane
