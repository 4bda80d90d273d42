#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// Where the vendor list meets the octet boxes: looking up a typed prefix, choosing a vendor, a random
/// address.
namespace corvane {

class UniformRandom;

/// Part of a box's text. Without a length it is the caret.
struct TextSelection {
    int start = 0;
    int length = 0;

    bool operator==(const TextSelection&) const = default;
};

/// The octet boxes, 0 to 11, and what stands around them. Texts are at most two characters.
class MacBoxesView {
 public:
    virtual ~MacBoxesView() = default;

    [[nodiscard]] virtual std::string Text(int box) const = 0;
    /// When the text is another one than before, the box's change event runs before this returns.
    virtual void SetText(int box, const std::string& text) = 0;
    [[nodiscard]] virtual TextSelection Selection(int box) const = 0;
    virtual void Select(int box, TextSelection selection) = 0;
    virtual void Focus(int box) = 0;
    /// To "Automatically Restart Network Connection To Apply Changes".
    virtual void FocusRestartCheck() = 0;
    virtual void EnableChangeNow(bool enable) = 0;
    virtual void Beep() = 0;
};

/// The box with the vendors: a list of one entry for each vendor record, in the same order, with an edit
/// part.
class VendorBoxView {
 public:
    virtual ~VendorBoxView() = default;

    /// The text of the edit part.
    [[nodiscard]] virtual std::string VendorText() const = 0;
    virtual void SetVendorText(const std::string& text) = 0;
    /// Makes an entry the list's chosen one without telling anybody; the edit part keeps its text.
    virtual void MarkChosen(std::size_t entry) = 0;
};

class VendorEntry {
 public:
    /// Both must outlive the rules.
    VendorEntry(MacBoxesView& boxes, VendorBoxView& vendorList) : boxes_(boxes), vendorList_(vendorList) {}

    /// One of boxes 0 to 2 changed: the vendor shown no longer applies, unless a choice fills the boxes now.
    void PrefixChanged();

    /// Shows the vendor of boxes 0 to 2 when none is shown and one of them has a text. A vendor that is found
    /// is chosen, so boxes 3 to 5 get random octets. For boxes 3 and beyond, and for the vendors' box, when
    /// they get the focus. Lets events run; what they put in the place of the text "Searching Wait ..."
    /// stays, and the search ends there.
    void LookUpTypedVendor();

    /// The user chose an entry: the edit part shows it, boxes 0 to 2 get its prefix, boxes 3 to 5 random
    /// octets. An entry that does not exist, and the table that stands for none, change nothing.
    void Choose(std::size_t entry);

    /// "Random MAC Address": the prefix of a random vendor and random octets. Without a vendor list it says
    /// so in a box and changes nothing.
    void RandomAddress();

 private:
    void FillPrefix(std::size_t entry);
    void FillRandomOctets(UniformRandom& random);

    MacBoxesView& boxes_;
    VendorBoxView& vendorList_;
    bool busy_ = false;  ///< A choice fills the boxes.
};

/// The entries that contain every word of a text that the user typed in the vendors' box, upper or lower case
/// alike (ASCII letters), in the order of the table. A word of six hexadecimal digits (":" and "-" left out)
/// also matches an entry's prefix. An empty text matches all. Looks at the table's texts in place: what is
/// kept are positions, so the table must stay the same. The table that stands for none has no entries.
class VendorSearch {
 public:
    /// Searches anew. Searching on from a text to one that begins with it looks only at what matched before,
    /// unless a word has become a prefix, which matches entries that its beginning did not.
    void Find(const std::string& text);

    [[nodiscard]] std::size_t Size() const;
    /// Position in the vendor table of the match number `row`; RunTimeError kSubscriptOutOfRange when there
    /// is no such match.
    [[nodiscard]] std::size_t EntryAt(std::size_t row) const;
    /// The match number of an entry, or nothing.
    [[nodiscard]] std::optional<std::size_t> RowOf(std::size_t entry) const;

 private:
    std::string text_;
    bool all_ = true;                     ///< Every entry matches; matches_ is not used.
    std::vector<std::uint32_t> matches_;  ///< Ascending.
};

/// Tells the splash window how far the filling of the vendors' box is: "0% Done" and so on at every 500th
/// entry, letting events run. The list reads its texts from the vendor table when it shows them, so there is
/// nothing else to fill. Throws RunTimeError kOverflow for a list of exactly one entry, whose share is 0 of
/// 0; the table that stands for none has no entry and passes.
void FillVendorBox();

}  // namespace corvane
