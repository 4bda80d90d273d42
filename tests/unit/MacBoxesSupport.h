#pragma once

#include <array>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/fakes/Fakes.h"
#include "tests/unit/CoreSupport.h"
#include "ui/logic/MacEntry.h"
#include "ui/logic/VendorEntry.h"
#include "vendors/RandomMac.h"
#include "vendors/VendorList.h"

/// A window with the octet boxes and the vendor list, in memory, and a user who types into it.
namespace corvane {

inline void PrintTo(const TextSelection& selection, std::ostream* out) {
    *out << selection.start << '+' << selection.length;
}

namespace test {

/// Of the panel and the preset editor: two rows of six.
inline constexpr int kBoxes = 12;

/// When the window reports a move of the focus that the rules asked for: systems differ.
enum class FocusReports { kNever, kAtOnce, kAfterTheKey };

/// Places of the focus that are no octet box.
inline constexpr int kNowhere = -1;
inline constexpr int kRestartCheck = 100;
inline constexpr int kVendorListBox = 101;

class BoxesModel : public MacBoxesView, public VendorBoxView {
 public:
    explicit BoxesModel(FocusReports focusReports = FocusReports::kAtOnce) : reports(focusReports) {}

    FocusReports reports;
    std::array<std::string, 12> texts;
    std::array<TextSelection, 12> selections;
    int focus = kNowhere;
    int beeps = 0;
    bool canChange = false;
    std::string vendorText;
    std::vector<std::size_t> chosen;  ///< Entries marked, in order.
    std::string typedElsewhere;       ///< What was typed while no octet box had the focus.
    /// What the rules did: "text 3 D4", "select 3 0+2", "focus 3", "focus restart check", "change on",
    /// "beep", "vendor TEXT", "chosen 5".
    std::vector<std::string> diary;

    VendorEntry vendor{*this, *this};
    MacEntry entry{*this, vendor};

    // Set-up, unseen by the rules.

    void Fill(int first, const std::vector<std::string>& octets) {
        for (const std::string& octet : octets) {
            At(texts, first) = octet;
            At(selections, first) = {static_cast<int>(octet.size()), 0};
            ++first;
        }
    }
    void Clear() {
        texts = {};
        selections = {};
    }
    /// The focus is in a box with this text and selection.
    void Stand(int box, const std::string& text, TextSelection selection) {
        Fill(box, {text});
        At(selections, box) = selection;
        focus = box;
    }

    // The user.

    /// Types into whatever has the focus at each key; "\b" is the backspace key.
    void Type(const std::string& keys) {
        for (const char key : keys) {
            if (IsBox(focus)) {
                entry.KeyPress(focus, static_cast<unsigned char>(key));
                DeliverReports();
            } else {
                typedElsewhere += key;
            }
        }
    }
    /// Presses an arrow key; whether the rules handled it. What they leave is not done here either.
    bool Arrow(BoxKey key, bool shift = false, bool control = false) {
        const bool handled = entry.KeyDown(focus, key, shift, control);
        DeliverReports();
        return handled;
    }
    void Click(int box) {
        MoveTo(box);
        At(selections, box) = {1, 0};
        entry.Clicked(box);
    }
    void Paste(const std::string& text) {
        entry.Pasted(focus, text);
        DeliverReports();
    }
    /// Moves the focus as the Tab key or another window does: always reported.
    void MoveTo(int place) {
        Move(place);
        DeliverReports();
    }

    /// The six texts of a row.
    [[nodiscard]] std::vector<std::string> Row(int first = 0) const {
        return {texts.begin() + first, texts.begin() + first + 6};
    }

    // What the rules see.

    [[nodiscard]] std::string Text(int box) const override { return texts.at(Index(box)); }
    void SetText(int box, const std::string& text) override {
        EXPECT_LE(text.size(), 2U) << "box " << box << " gets " << text;
        diary.push_back("text " + std::to_string(box) + " " + text);
        if (At(texts, box) == text) return;
        At(texts, box) = text;
        At(selections, box) = {};
        entry.Changed(box);
    }
    [[nodiscard]] TextSelection Selection(int box) const override { return selections.at(Index(box)); }
    void Select(int box, TextSelection selection) override {
        EXPECT_GE(selection.start, 0);
        EXPECT_GE(selection.length, 0);
        EXPECT_LE(selection.start + selection.length, static_cast<int>(Text(box).size())) << "box " << box;
        diary.push_back("select " + std::to_string(box) + " " + std::to_string(selection.start) + "+" +
                        std::to_string(selection.length));
        At(selections, box) = selection;
    }
    void Focus(int box) override {
        EXPECT_TRUE(IsBox(box)) << box;
        diary.push_back("focus " + std::to_string(box));
        MoveByRule(box);
    }
    void FocusRestartCheck() override {
        diary.emplace_back("focus restart check");
        MoveByRule(kRestartCheck);
    }
    void EnableChangeNow(bool enable) override {
        diary.push_back(enable ? "change on" : "change off");
        canChange = enable;
    }
    void Beep() override {
        diary.emplace_back("beep");
        ++beeps;
    }
    [[nodiscard]] std::string VendorText() const override { return vendorText; }
    void SetVendorText(const std::string& text) override {
        diary.push_back("vendor " + text);
        vendorText = text;
    }
    void MarkChosen(std::size_t number) override {
        diary.push_back("chosen " + std::to_string(number));
        chosen.push_back(number);
    }

 private:
    static bool IsBox(int place) { return place >= 0 && place < 12; }
    static std::size_t Index(int box) { return static_cast<std::size_t>(box); }
    template <typename Value>
    static Value& At(std::array<Value, 12>& values, int box) {
        return values.at(Index(box));
    }

    void MoveByRule(int place) {
        if (reports == FocusReports::kNever) {
            focus = place;
            return;
        }
        Move(place);
        if (reports == FocusReports::kAtOnce) DeliverReports();
    }
    void Move(int place) {
        if (place == focus) return;
        const int left = focus;
        focus = place;
        if (IsBox(left)) pending_.emplace_back([this, left] { entry.FocusLost(left); });
        if (IsBox(place)) pending_.emplace_back([this, place] { entry.FocusGained(place); });
        if (place == kVendorListBox) pending_.emplace_back([this] { vendor.LookUpTypedVendor(); });
    }
    void DeliverReports() {
        while (!pending_.empty()) {
            const std::function<void()> report = pending_.front();
            pending_.erase(pending_.begin());
            report();
        }
    }

    std::vector<std::function<void()>> pending_;
};

/// A user whose waiting events are what a test says.
class EventfulSeat : public FakeSeat {
 public:
    std::function<void()> onEvents;
    void LetEventsRun() override {
        FakeSeat::LetEventsRun();
        if (onEvents) onEvents();
    }
};

/// The octets that a choice fills in when the clock gives this seed.
inline std::vector<std::string> RandomOctets(std::uint32_t seed) {
    UniformRandom random(seed);
    std::vector<std::string> octets(3);
    for (std::string& octet : octets) octet = CutToOctetBox(RandomOctetText(random));
    return octets;
}

inline void LoadVendors(const std::vector<VendorLine>& lines) {
    Vendors() = VendorTable::Parse(VendorBytes(lines), "list");
}

using Octets = std::vector<std::string>;
inline const Octets kNoOctets(6);

}  // namespace test
}  // namespace corvane
