#pragma once

#include <array>
#include <string>

#include "ui/logic/VendorEntry.h"

class wxKeyEvent;
class wxSizer;
class wxTextCtrl;
class wxWindow;

/// One row of six octet boxes `MAC`. Boxes are known by their numbers among all twelve.
namespace corvane {

class MacEntry;

class MacBoxRow {
 public:
    static constexpr int kOctets = 6;

    /// Makes boxes `first` to `first` + 5 as children of `parent`, which must outlive the row.
    MacBoxRow(wxWindow* parent, int first);

    /// The boxes with the hyphens between them.
    [[nodiscard]] wxSizer* MakeSizer(wxWindow* parent) const;

    /// From now on what happens in the boxes goes to the rules.
    void Bind(MacEntry& entry);

    [[nodiscard]] wxTextCtrl& Box(int box) const {
        return *boxes_.at(static_cast<std::size_t>(box - first_));
    }
    [[nodiscard]] bool Has(int box) const { return box >= first_ && box < first_ + kOctets; }
    void Enable(bool enable);

    // What MacBoxesView does with a box of this row.
    [[nodiscard]] std::string Text(int box) const;
    void SetText(int box, const std::string& text);
    [[nodiscard]] TextSelection Selection(int box) const;
    void Select(int box, TextSelection selection);
    void Focus(int box);

 private:
    void BindBox(int box);
    /// Whether the key was one for the entry rules.
    bool HandleArrow(int box, const wxKeyEvent& event);
    bool HandleCharacter(int box, const wxKeyEvent& event, int character);

    int first_;
    std::array<wxTextCtrl*, kOctets> boxes_{};
    MacEntry* entry_ = nullptr;
};

}  // namespace corvane
