#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/Text.h"
#include "tests/unit/MacBoxesSupport.h"

namespace corvane {
namespace {

using test::BoxesModel;
using test::FocusReports;
using test::kBoxes;
using test::kNoOctets;
using test::kNowhere;
using test::kRestartCheck;
using test::LoadVendors;
using test::Octets;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kBackspace = 8;

bool IsFirst(int box) { return box == 0 || box == 6; }
bool IsLast(int box) { return box == 5 || box == 11; }

class MacEntryRules : public testing::Test {
 protected:
    FakeMachine machine;
    BoxesModel boxes;
};

// Which characters count.

TEST_F(MacEntryRules, OtherCharactersDoNothingAndDoNotBeep) {
    const std::string meant = "0123456789abcdefABCDEF:-.\b";
    for (const std::string text : {"", "A", "AB"}) {
        for (int box = 0; box < kBoxes; ++box) {
            boxes.Stand(box, text, {0, static_cast<int>(text.size())});
            for (int character = -1; character < 700; ++character) {
                if (character >= 0 && character < 128 &&
                    meant.find(static_cast<char>(character)) != std::string::npos)
                    continue;
                boxes.entry.KeyPress(box, character);
            }
        }
    }
    EXPECT_THAT(boxes.diary, IsEmpty());
}

TEST_F(MacEntryRules, LettersBecomeUpperCase) {
    for (const std::string digits : {"0123456789", "abcdef", "ABCDEF"}) {
        for (const char digit : digits) {
            boxes.Stand(4, "", {});
            boxes.entry.KeyPress(4, digit);
            EXPECT_EQ(boxes.texts[4], ToUpper(std::string(1, digit)));
            EXPECT_EQ(boxes.selections[4], (TextSelection{1, 0}));
            EXPECT_EQ(boxes.focus, 4);
        }
    }
}

// A digit in a box with room.

TEST_F(MacEntryRules, FirstDigitStaysInItsBox) {
    for (int box = 0; box < kBoxes; ++box) {
        boxes.Stand(box, "", {});
        boxes.entry.KeyPress(box, 'a');
        EXPECT_EQ(boxes.texts[static_cast<std::size_t>(box)], "A");
        EXPECT_EQ(boxes.selections[static_cast<std::size_t>(box)], (TextSelection{1, 0}));
        EXPECT_EQ(boxes.focus, box);
        boxes.Fill(box, {""});
    }
}

TEST_F(MacEntryRules, DigitThatCompletesTheOctetGoesOn) {
    boxes.reports = FocusReports::kNever;
    for (int box = 0; box < kBoxes; ++box) {
        const auto at = static_cast<std::size_t>(box);
        boxes.Clear();
        boxes.Stand(box, "A", {1, 0});
        if (!IsLast(box)) {
            boxes.Fill(box + 1, {"CD"});
            boxes.selections[at + 1] = {1, 1};
        }
        boxes.entry.KeyPress(box, 'b');
        EXPECT_EQ(boxes.texts[at], "AB");
        if (box == 5) {
            EXPECT_EQ(boxes.focus, kRestartCheck);
        } else if (box == 11) {
            EXPECT_EQ(boxes.focus, 11);
            EXPECT_EQ(boxes.selections[at], (TextSelection{2, 0}));
        } else {
            EXPECT_EQ(boxes.focus, box + 1);
            EXPECT_EQ(boxes.texts[at + 1], "CD");
            EXPECT_EQ(boxes.selections[at + 1], (TextSelection{0, 2}));
        }
    }
    EXPECT_EQ(boxes.beeps, 0);
}

TEST_F(MacEntryRules, DigitBeforeTheOnlyOneStaysInItsBox) {
    boxes.Stand(1, "B", {0, 0});
    boxes.Type("a");
    EXPECT_EQ(boxes.texts[1], "AB");
    EXPECT_EQ(boxes.selections[1], (TextSelection{1, 0}));
    EXPECT_EQ(boxes.focus, 1);
}

TEST_F(MacEntryRules, DigitOverTheOnlyOneReplacesItAndStays) {
    boxes.Stand(1, "B", {0, 1});
    boxes.Type("a");
    EXPECT_EQ(boxes.texts[1], "A");
    EXPECT_EQ(boxes.selections[1], (TextSelection{1, 0}));
    EXPECT_EQ(boxes.focus, 1);
}

// A digit in a full box.

TEST_F(MacEntryRules, DigitInAFullBoxReplacesTheSelectionAndStays) {
    struct Case {
        TextSelection selection;
        std::string text;
        int caret;
    };
    for (const Case& c : {Case{{0, 2}, "C", 1}, Case{{0, 1}, "CB", 1}, Case{{1, 1}, "AC", 2}}) {
        for (int box = 0; box < kBoxes; ++box) {
            const auto at = static_cast<std::size_t>(box);
            boxes.Stand(box, "AB", c.selection);
            boxes.entry.KeyPress(box, 'c');
            EXPECT_EQ(boxes.texts[at], c.text);
            EXPECT_EQ(boxes.selections[at], (TextSelection{c.caret, 0}));
            EXPECT_EQ(boxes.focus, box);
        }
    }
    EXPECT_EQ(boxes.beeps, 0);
}

TEST_F(MacEntryRules, DigitInAFullBoxWithoutSelectionBeginsTheNextBox) {
    boxes.reports = FocusReports::kNever;
    for (int box = 0; box < kBoxes; ++box) {
        for (int caret = 0; caret <= 2; ++caret) {
            const auto at = static_cast<std::size_t>(box);
            boxes.beeps = 0;
            if (!IsLast(box)) boxes.Fill(box + 1, {"CD"});
            boxes.Stand(box, "AB", {caret, 0});
            boxes.entry.KeyPress(box, 'e');
            EXPECT_EQ(boxes.texts[at], "AB");
            EXPECT_EQ(boxes.beeps, box == 11 ? 1 : 0);
            if (box == 5) {
                EXPECT_EQ(boxes.focus, kRestartCheck);
            } else if (box == 11) {
                EXPECT_EQ(boxes.focus, 11);
                EXPECT_EQ(boxes.selections[at], (TextSelection{caret, 0}));
            } else {
                EXPECT_EQ(boxes.focus, box + 1);
                EXPECT_EQ(boxes.texts[at + 1], "E");
                EXPECT_EQ(boxes.selections[at + 1], (TextSelection{1, 0}));
            }
        }
    }
}

// Backspace.

TEST_F(MacEntryRules, BackspaceErasesTheCharacterBeforeTheCaret) {
    for (int box = 0; box < kBoxes; ++box) {
        const auto at = static_cast<std::size_t>(box);
        boxes.Stand(box, "AB", {2, 0});
        boxes.entry.KeyPress(box, kBackspace);
        EXPECT_EQ(boxes.texts[at], "A");
        EXPECT_EQ(boxes.selections[at], (TextSelection{1, 0}));
        boxes.Stand(box, "AB", {1, 0});
        boxes.entry.KeyPress(box, kBackspace);
        EXPECT_EQ(boxes.texts[at], "B");
        EXPECT_EQ(boxes.selections[at], (TextSelection{0, 0}));
        EXPECT_EQ(boxes.focus, box);
    }
    EXPECT_EQ(boxes.beeps, 0);
}

TEST_F(MacEntryRules, BackspaceOnASelectionAlsoErasesTheCharacterBeforeIt) {
    struct Case {
        TextSelection selection;
        std::string left;
    };
    for (const Case& c : {Case{{0, 2}, ""}, Case{{1, 1}, ""}, Case{{0, 1}, "B"}}) {
        for (int box = 0; box < kBoxes; ++box) {
            const auto at = static_cast<std::size_t>(box);
            boxes.Stand(box, "AB", c.selection);
            boxes.entry.KeyPress(box, kBackspace);
            EXPECT_EQ(boxes.texts[at], c.left);
            EXPECT_EQ(boxes.selections[at], (TextSelection{0, 0}));
            EXPECT_EQ(boxes.focus, box);
        }
    }
    EXPECT_EQ(boxes.beeps, 0);
}

TEST_F(MacEntryRules, BackspaceAtTheStartGoesToTheEndOfTheBoxBefore) {
    for (const std::string before : {"", "C", "CD"}) {
        for (int box = 0; box < kBoxes; ++box) {
            if (IsFirst(box)) continue;
            boxes.Clear();
            boxes.Stand(box, "AB", {0, 0});
            boxes.Fill(box - 1, {before});
            boxes.selections[static_cast<std::size_t>(box) - 1] = {0, 0};
            boxes.entry.KeyPress(box, kBackspace);
            EXPECT_EQ(boxes.focus, box - 1);
            EXPECT_EQ(boxes.texts[static_cast<std::size_t>(box)], "AB");
            EXPECT_EQ(boxes.texts[static_cast<std::size_t>(box) - 1], before);
            EXPECT_EQ(boxes.selections[static_cast<std::size_t>(box) - 1],
                      (TextSelection{static_cast<int>(before.size()), 0}));
        }
    }
    EXPECT_EQ(boxes.beeps, 0);
}

TEST_F(MacEntryRules, BackspaceAtTheStartOfARowBeeps) {
    for (const int box : {0, 6}) {
        boxes.diary.clear();
        boxes.Stand(box, "AB", {0, 0});
        boxes.entry.KeyPress(box, kBackspace);
        EXPECT_THAT(boxes.diary, ElementsAre("beep"));
        EXPECT_EQ(boxes.focus, box);
    }
}

// What follows a change, a click and the focus.

TEST_F(MacEntryRules, ChangeOfAPrefixBoxClearsTheVendorText) {
    for (int box = 0; box < kBoxes; ++box) {
        boxes.vendorText = "Acme";
        boxes.entry.Changed(box);
        EXPECT_EQ(boxes.vendorText, box < 3 ? "" : "Acme") << box;
    }
}

TEST_F(MacEntryRules, ChangingNeedsSixFullBoxes) {
    boxes.Fill(0, {"00", "11", "22", "33", "44"});
    boxes.focus = 5;
    boxes.entry.Changed(4);
    EXPECT_FALSE(boxes.canChange);
    boxes.Type("5");
    EXPECT_FALSE(boxes.canChange);
    boxes.Type("5");
    EXPECT_TRUE(boxes.canChange);
    for (int box = 0; box < 6; ++box) {
        for (const std::string text : {"", "7"}) {
            boxes.SetText(box, text);
            EXPECT_FALSE(boxes.canChange) << "box " << box << " holds " << text;
        }
        boxes.SetText(box, "77");
        EXPECT_TRUE(boxes.canChange);
    }
    boxes.SetText(6, "");
    boxes.SetText(6, "0");
    EXPECT_TRUE(boxes.canChange) << "the second row plays no part";
}

TEST_F(MacEntryRules, ClickSelectsTheWholeText) {
    for (const std::string text : {"", "A", "AB"}) {
        for (int box = 0; box < kBoxes; ++box) {
            boxes.Stand(box, text, {0, 0});
            boxes.entry.Clicked(box);
            EXPECT_EQ(boxes.selections[static_cast<std::size_t>(box)],
                      (TextSelection{0, static_cast<int>(text.size())}));
        }
    }
}

TEST_F(MacEntryRules, SingleCharacterGetsALeadingZeroWhenTheFocusLeaves) {
    for (int box = 0; box < kBoxes; ++box) {
        boxes.Stand(box, "7", {1, 0});
        boxes.MoveTo(kNowhere);
        EXPECT_EQ(boxes.texts[static_cast<std::size_t>(box)], "07");
        boxes.Fill(box, {""});
    }
    boxes.diary.clear();
    for (const std::string text : {"", "AB"}) {
        boxes.Stand(4, text, {0, 0});
        boxes.MoveTo(kNowhere);
        EXPECT_EQ(boxes.texts[4], text);
    }
    EXPECT_THAT(boxes.diary, IsEmpty());
}

TEST_F(MacEntryRules, BoxesAboveTheThirdLookUpTheVendorWhenTheyGetTheFocus) {
    for (int box = 0; box < kBoxes; ++box) {
        boxes.vendorText.clear();
        boxes.Fill(0, {"A1", "B2", "C3"});
        boxes.entry.FocusGained(box);
        EXPECT_EQ(boxes.vendorText, box > 2 ? "Unknown Vendor (A1-B2-C3)" : "") << box;
    }
}

TEST_F(MacEntryRules, FocusReportedTwiceChangesNothingMore) {
    LoadVendors({{"A1B2C3", "Acme", ""}, {"FFFFFF", "other", ""}});
    boxes.Fill(0, {"A1", "B2", "C"});
    boxes.texts[2] = "C3";
    boxes.entry.FocusGained(3);
    const auto texts = boxes.texts;
    ASSERT_EQ(boxes.vendorText, "Acme   Address: ");
    boxes.Fill(4, {"7"});
    boxes.entry.FocusLost(4);
    boxes.diary.clear();
    machine.clock->seed = 99;
    boxes.entry.FocusGained(3);
    boxes.entry.FocusLost(4);
    EXPECT_THAT(boxes.diary, IsEmpty());
    EXPECT_EQ(boxes.texts[3], texts[3]);
    EXPECT_EQ(boxes.texts[4], "07");
}

// Helpers of the commands.

TEST_F(MacEntryRules, ADroppedTextKeepsItsFirstTwoDigitsOnly) {
    for (const auto& [dropped, kept] : std::vector<std::pair<std::string, std::string>>{
             {"zz", ""}, {"g1", "1"}, {"a1b", "A1"}, {" 7", "7"}, {"\xC3\xA9", ""}}) {
        boxes.beeps = 0;
        boxes.texts.at(3) = dropped;
        boxes.entry.Changed(3);
        EXPECT_EQ(boxes.Text(3), kept) << dropped;
        EXPECT_EQ(boxes.beeps, 1) << dropped;
    }
}

TEST_F(MacEntryRules, NormaliseOctetsCompletesTheBoxesOfItsRange) {
    boxes.Fill(0, {"", "7", "AB", "", "C", ""});
    NormaliseOctets(boxes, 1, 4);
    EXPECT_EQ(boxes.Row(), (Octets{"", "07", "AB", "00", "0C", ""}));
    NormaliseOctets(boxes, 0, 5);
    EXPECT_EQ(boxes.Row(), (Octets{"00", "07", "AB", "00", "0C", "00"}));
    EXPECT_EQ(boxes.Row(6), kNoOctets);
}

TEST_F(MacEntryRules, JoinMacTextJoinsTheSixTextsOfARow) {
    boxes.Fill(0, {"00", "0C", "29", "4F", "8E", "35"});
    boxes.Fill(6, {"", "1", "22", "", "", "6"});
    EXPECT_EQ(JoinMacText(boxes, "-"), "00-0C-29-4F-8E-35");
    EXPECT_EQ(JoinMacText(boxes, ""), "000C294F8E35");
    EXPECT_EQ(JoinMacText(boxes, ":", 6), ":1:22:::6");
}

}  // namespace
}  // namespace corvane
