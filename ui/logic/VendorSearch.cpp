#include <algorithm>
#include <array>
#include <string_view>

#include "base/RunTimeError.h"
#include "base/Text.h"
#include "platform/CodePage.h"
#include "ui/logic/VendorEntry.h"
#include "vendors/VendorList.h"

namespace corvane {

namespace {

/// Lower case of each byte of the code page; only the ASCII letters have one.
constexpr std::array<char, 256> kLowerCase = [] {
    std::array<char, 256> lower{};
    for (int i = 0; i < 256; ++i)
        lower[static_cast<std::size_t>(i)] = static_cast<char>(i >= 'A' && i <= 'Z' ? i - 'A' + 'a' : i);
    return lower;
}();

char Lower(char c) { return kLowerCase[static_cast<unsigned char>(c)]; }

/// A word as the table's bytes are compared with it: in the code page and in lower case.
struct Word {
    std::string text;
    std::string prefix;  ///< The six digits when it may be a vendor's prefix, else empty.
};

std::string PrefixIn(const std::string& word) {
    std::string digits = Without(Without(word, ':'), '-');
    const bool prefix =
        digits.size() == 6 && digits.find_first_not_of("0123456789abcdef") == std::string::npos;
    return prefix ? digits : "";
}

std::vector<Word> WordsOf(const std::string& codePageText) {
    std::vector<Word> words;
    for (const std::string& text : Split(ToLower(codePageText), ' ')) {
        if (!text.empty()) words.push_back({text, PrefixIn(text)});
    }
    return words;
}

/// Whether every entry shows the word, since it is part of the label before the address.
bool IsInEveryEntry(const Word& word) {
    return !ShortVendorList && ToLower(kAddressLabel).find(word.text) != std::string::npos;
}

bool Contains(std::string_view text, std::string_view lowerWord) {
    return std::search(text.begin(), text.end(), lowerWord.begin(), lowerWord.end(),
                       [](char c, char lower) { return Lower(c) == lower; }) != text.end();
}

bool Matches(const VendorTable& table, std::size_t entry, const Word& word) {
    if (Contains(table.NameBytes(entry), word.text)) return true;
    if (!ShortVendorList && Contains(table.AddressBytes(entry), word.text)) return true;
    return !word.prefix.empty() && Contains(table.Prefix(entry), word.prefix);
}

bool MatchesAll(const VendorTable& table, std::size_t entry, const std::vector<Word>& words) {
    return std::all_of(words.begin(), words.end(),
                       [&](const Word& word) { return Matches(table, entry, word); });
}

std::size_t EntryCount() { return Vendors().IsPlaceholder() ? 0 : Vendors().Size(); }

}  // namespace

void VendorSearch::Find(const std::string& text) {
    const std::string codePageText = ToCodePage(text);
    std::vector<Word> words = WordsOf(codePageText);
    const bool hasPrefix =
        std::any_of(words.begin(), words.end(), [](const Word& word) { return !word.prefix.empty(); });
    const bool searchesOn = !all_ && text.starts_with(text_) && !hasPrefix;
    text_ = text;

    std::erase_if(words, IsInEveryEntry);
    all_ = words.empty();
    if (all_) {
        matches_.clear();
        return;
    }
    // No entry has a character that the code page has not.
    if (FromCodePage(codePageText) != text) {
        matches_.clear();
        return;
    }
    const VendorTable& table = Vendors();
    if (searchesOn) {
        std::erase_if(matches_, [&](std::uint32_t entry) { return !MatchesAll(table, entry, words); });
        return;
    }
    matches_.clear();
    for (std::size_t entry = 0; entry < EntryCount(); ++entry) {
        if (MatchesAll(table, entry, words)) matches_.push_back(static_cast<std::uint32_t>(entry));
    }
}

std::size_t VendorSearch::Size() const { return all_ ? EntryCount() : matches_.size(); }

std::size_t VendorSearch::EntryAt(std::size_t row) const {
    if (row >= Size()) {
        throw RunTimeError(RunTimeError::kSubscriptOutOfRange,
                           "The search has no match " + std::to_string(row) + "; choose one of the " +
                               std::to_string(Size()) + " that it has.");
    }
    return all_ ? row : matches_[row];
}

std::optional<std::size_t> VendorSearch::RowOf(std::size_t entry) const {
    if (all_) return entry < EntryCount() ? std::optional(entry) : std::nullopt;
    const auto found = std::lower_bound(matches_.begin(), matches_.end(), entry);
    if (found == matches_.end() || *found != entry) return std::nullopt;
    return static_cast<std::size_t>(found - matches_.begin());
}

}  // namespace corvane
