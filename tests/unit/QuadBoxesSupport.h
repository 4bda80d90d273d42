#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ui/logic/IPAddressEntry.h"

/// A window with the entry control for one IPv4 address, in memory, and a user who types into it.
namespace corvane {

inline void PrintTo(const TextSelection& selection, std::ostream* out) {
    *out << selection.start << '+' << selection.length;
}

namespace test {

inline constexpr int kNowhere = -1;
inline constexpr char kBackspace = 8;

using Texts = std::array<std::string, 4>;

/// When the window reports a move of the focus that the rules asked for: systems differ.
enum class FocusReports { kAtOnce, kAfterTheKey };

/// What a test does at the control's events; at first nothing.
struct QuadListener : IPAddressEvents {
    void Change() override { change(); }
    void Edit() override { edit(); }

    std::function<void()> change = [] {};
    std::function<void()> edit = [] {};
};

/// Four text boxes in memory. A text that is set puts the caret to the start.
class QuadBoxes : public QuadBoxesView {
 public:
    explicit QuadBoxes(FocusReports focusReports = FocusReports::kAtOnce) : reports(focusReports) {
        listener.change = [this] { changes.push_back(entry.Text()); };
        listener.edit = [this] { ++edits; };
        entry.Tell(listener);
    }

    FocusReports reports;
    Texts texts;
    std::array<TextSelection, 4> selections;
    int focus = kNowhere;
    int beeps = 0;
    int edits = 0;
    int changeEvents = 0;              ///< Change events of the boxes themselves.
    std::vector<std::string> changes;  ///< The whole text at each Change.

    QuadListener listener;
    IPAddressEntry entry{*this};

    // Set-up, unseen by the rules.

    /// The focus is in a box with this text and selection.
    void Stand(int box, const std::string& text, TextSelection selection) {
        texts.at(At(box)) = text;
        selections.at(At(box)) = selection;
        focus = box;
    }
    void Forget() {
        beeps = edits = changeEvents = 0;
        changes.clear();
    }

    // The user.

    /// Types into whatever box has the focus at each key.
    void Type(const std::string& keys) {
        for (const char key : keys) Press(static_cast<unsigned char>(key));
    }
    /// Whether the key was let through to the box.
    bool Press(int character) {
        const int box = focus;
        const bool letThrough = entry.KeyPress(box, character);
        if (letThrough) Handle(box, character);
        DeliverReports();
        return letThrough;
    }
    /// Whether the rules handled the key. Without them the caret moves in the box.
    bool Arrow(BoxKey key, bool shift = false, bool control = false) {
        const int box = focus;
        const bool handled = entry.KeyDown(box, key, shift, control);
        if (!handled && !shift && !control) MoveCaret(box, key);
        DeliverReports();
        return handled;
    }
    void MoveTo(int place) {
        Move(place);
        DeliverReports();
    }
    /// A text that did not come by the keys.
    void Drop(int box, const std::string& text) { ChangeText(box, text, static_cast<int>(text.size())); }
    void Paste(const std::string& text) {
        entry.Pasted(focus, text);
        DeliverReports();
    }

    // What the rules see.

    [[nodiscard]] std::string BoxText(int box) const override { return texts.at(At(box)); }
    void SetBoxText(int box, const std::string& text) override {
        EXPECT_LE(text.size(), 3U) << "box " << box << " gets " << text;
        if (texts.at(At(box)) != text) ChangeText(box, text, 0);
    }
    [[nodiscard]] TextSelection Selection(int box) const override { return selections.at(At(box)); }
    void Select(int box, TextSelection selection) override {
        EXPECT_GE(selection.start, 0);
        EXPECT_GE(selection.length, 0);
        EXPECT_LE(selection.start + selection.length, static_cast<int>(BoxText(box).size()));
        selections.at(At(box)) = selection;
    }
    void Focus(int box) override {
        ASSERT_GE(box, 0);
        ASSERT_LE(box, 3);
        Move(box);
        if (reports == FocusReports::kAtOnce) DeliverReports();
    }
    void Beep() override { ++beeps; }

 private:
    static std::size_t At(int box) { return static_cast<std::size_t>(box); }

    void ChangeText(int box, const std::string& text, int caret) {
        texts.at(At(box)) = text;
        selections.at(At(box)) = {caret, 0};
        ++changeEvents;
        ASSERT_LT(changeEvents, 1000) << "changes without end";
        entry.Changed(box);
    }
    /// What a text box does with a key of its own. The clipboard and undo are not modelled.
    void Handle(int box, int character) {
        auto [start, length] = Selection(box);
        std::string text = BoxText(box);
        if (character == kBackspace) {
            ASSERT_EQ(length, 0);
            ASSERT_GT(start, 0);
            ChangeText(box, text.erase(At(start) - 1, 1), start - 1);
        } else if (character >= ' ') {
            text.replace(At(start), At(length), 1, static_cast<char>(character));
            ChangeText(box, text, start + 1);
            // The change may have taken the text away.
            const int end = static_cast<int>(BoxText(box).size());
            selections.at(At(box)) = {std::min(start + 1, end), 0};
        }
    }
    void MoveCaret(int box, BoxKey key) {
        const auto [start, length] = Selection(box);
        const int end = static_cast<int>(BoxText(box).size());
        if (length != 0) {
            Select(box, {key == BoxKey::kLeft ? start : start + length, 0});
        } else {
            Select(box, {key == BoxKey::kLeft ? std::max(start - 1, 0) : std::min(start + 1, end), 0});
        }
    }
    void Move(int place) {
        if (place == focus) return;
        const int left = focus;
        focus = place;
        if (left != kNowhere) pending_.emplace_back([this, left] { entry.FocusLost(left); });
        if (place != kNowhere) pending_.emplace_back([this, place] { entry.FocusGained(place); });
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

}  // namespace test
}  // namespace corvane
