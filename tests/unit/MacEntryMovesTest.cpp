#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/MacBoxesSupport.h"

/// Arrow keys and pasted texts in the octet boxes.
namespace corvane {
namespace {

using test::BoxesModel;
using test::FocusReports;
using test::kBoxes;
using test::kNoOctets;
using test::LoadVendors;
using test::Octets;
using testing::ElementsAre;
using testing::IsEmpty;

class MacEntryMoves : public testing::Test {
 protected:
    /// Whether the rules handled the key, in a box with the text "AB" between two boxes with "CD".
    bool Press(int box, TextSelection selection, BoxKey key, bool shift = false, bool control = false) {
        for (int other = 0; other < kBoxes; ++other) boxes.Stand(other, "CD", {1, 0});
        boxes.Stand(box, "AB", selection);
        boxes.diary.clear();
        return boxes.Arrow(key, shift, control);
    }
    TextSelection SelectionOf(int box) { return boxes.Selection(box); }

    FakeMachine machine;
    BoxesModel boxes{FocusReports::kNever};
};

TEST_F(MacEntryMoves, LeftAtTheStartGoesToTheEndOfTheBoxBefore) {
    for (int box = 0; box < kBoxes; ++box) {
        const bool first = box == 0 || box == 6;
        EXPECT_EQ(Press(box, {0, 0}, BoxKey::kLeft), !first) << box;
        EXPECT_EQ(boxes.focus, first ? box : box - 1);
        if (first) {
            EXPECT_THAT(boxes.diary, IsEmpty());
        } else {
            EXPECT_EQ(SelectionOf(box - 1), (TextSelection{2, 0}));
        }
    }
}

TEST_F(MacEntryMoves, RightAtTheEndGoesToTheStartOfTheNextBox) {
    for (int box = 0; box < kBoxes; ++box) {
        const bool last = box == 5 || box == 11;
        EXPECT_EQ(Press(box, {2, 0}, BoxKey::kRight), !last) << box;
        EXPECT_EQ(boxes.focus, last ? box : box + 1);
        if (last) {
            EXPECT_THAT(boxes.diary, IsEmpty());
        } else {
            EXPECT_EQ(SelectionOf(box + 1), (TextSelection{0, 0}));
        }
    }
}

TEST_F(MacEntryMoves, ArrowInsideTheTextIsTheBoxesOwn) {
    for (const int caret : {1, 2}) {
        EXPECT_FALSE(Press(3, {caret, 0}, BoxKey::kLeft));
        EXPECT_THAT(boxes.diary, IsEmpty());
    }
    for (const int caret : {0, 1}) {
        EXPECT_FALSE(Press(3, {caret, 0}, BoxKey::kRight));
        EXPECT_THAT(boxes.diary, IsEmpty());
    }
}

TEST_F(MacEntryMoves, StartOfTheSelectionCountsAsTheCaret) {
    EXPECT_TRUE(Press(3, {0, 2}, BoxKey::kLeft));
    EXPECT_EQ(boxes.focus, 2);
    EXPECT_FALSE(Press(3, {1, 1}, BoxKey::kLeft));
    EXPECT_FALSE(Press(3, {0, 2}, BoxKey::kRight));
    EXPECT_FALSE(Press(3, {1, 1}, BoxKey::kRight));
}

TEST_F(MacEntryMoves, ArrowLeavesAnEmptyBoxEitherWay) {
    boxes.Stand(3, "", {});
    EXPECT_TRUE(boxes.Arrow(BoxKey::kLeft));
    EXPECT_EQ(boxes.focus, 2);
    boxes.Stand(3, "", {});
    EXPECT_TRUE(boxes.Arrow(BoxKey::kRight));
    EXPECT_EQ(boxes.focus, 4);
}

TEST_F(MacEntryMoves, ControlLeftSelectsTheWholeBoxBeforeFromAnyPlace) {
    for (int box = 0; box < kBoxes; ++box) {
        for (const TextSelection selection : {TextSelection{0, 0}, {1, 0}, {2, 0}, {0, 2}}) {
            const bool first = box == 0 || box == 6;
            EXPECT_EQ(Press(box, selection, BoxKey::kLeft, false, true), !first);
            EXPECT_EQ(boxes.focus, first ? box : box - 1);
            if (first) {
                EXPECT_THAT(boxes.diary, IsEmpty());
            } else {
                EXPECT_EQ(SelectionOf(box - 1), (TextSelection{0, 2}));
            }
        }
    }
}

TEST_F(MacEntryMoves, ControlRightSelectsTheWholeNextBoxFromAnyPlace) {
    for (int box = 0; box < kBoxes; ++box) {
        for (const TextSelection selection : {TextSelection{0, 0}, {1, 0}, {2, 0}, {0, 2}}) {
            const bool last = box == 5 || box == 11;
            EXPECT_EQ(Press(box, selection, BoxKey::kRight, false, true), !last);
            EXPECT_EQ(boxes.focus, last ? box : box + 1);
            if (last) {
                EXPECT_THAT(boxes.diary, IsEmpty());
            } else {
                EXPECT_EQ(SelectionOf(box + 1), (TextSelection{0, 2}));
            }
        }
    }
}

TEST_F(MacEntryMoves, ShiftAloneIsTheBoxesOwn) {
    EXPECT_FALSE(Press(3, {0, 0}, BoxKey::kLeft, true));
    EXPECT_FALSE(Press(3, {2, 0}, BoxKey::kRight, true));
    EXPECT_EQ(boxes.focus, 3);
    EXPECT_THAT(boxes.diary, IsEmpty());
}

TEST_F(MacEntryMoves, ShiftWithControlMovesAsAPlainArrow) {
    EXPECT_FALSE(Press(3, {1, 0}, BoxKey::kLeft, true, true));
    EXPECT_FALSE(Press(3, {1, 0}, BoxKey::kRight, true, true));
    EXPECT_TRUE(Press(3, {0, 0}, BoxKey::kLeft, true, true));
    EXPECT_EQ(SelectionOf(2), (TextSelection{2, 0}));
    EXPECT_TRUE(Press(3, {2, 0}, BoxKey::kRight, true, true));
    EXPECT_EQ(SelectionOf(4), (TextSelection{0, 0}));
}

TEST_F(MacEntryMoves, ArrowIntoTheFourthBoxLooksUpTheVendorBeforeItSelects) {
    LoadVendors({{"A1B2C3", "Acme", ""}, {"FFFFFF", "other", ""}});
    boxes.Fill(0, {"A1", "B2"});
    boxes.Stand(2, "C3", {2, 0});
    EXPECT_TRUE(boxes.Arrow(BoxKey::kRight, false, true));
    EXPECT_EQ(boxes.vendorText, "Acme   Address: ");
    EXPECT_EQ(boxes.texts[3].size(), 2U);
    EXPECT_EQ(SelectionOf(3), (TextSelection{0, 2}));
}

// Pasting.

class PastedAddress : public testing::TestWithParam<FocusReports> {};

INSTANTIATE_TEST_SUITE_P(Windows, PastedAddress,
                         testing::Values(FocusReports::kNever, FocusReports::kAtOnce,
                                         FocusReports::kAfterTheKey));

TEST_P(PastedAddress, FillsTheRowWhateverItsSeparators) {
    const FakeMachine machine;
    for (const std::string text :
         {"000C294F8E35", "000c294f8e35", "00:0c:29:4f:8e:35", "00-0C-29-4F-8E-35", "00.0c.29.4f.8e.35",
          "00 0c 29 4f 8e 35", "0:c:29:4f:8e:35", "000c.294f.8e35", "000c:294f:8e35", "000C29-4F8E35",
          " 00:0c:29:4f:8e:35\r\n", "\t000C294F8E35 "}) {
        for (const int box : {0, 3, 5}) {
            BoxesModel boxes(GetParam());
            boxes.focus = box;
            boxes.Paste(text);
            EXPECT_EQ(boxes.Row(), (Octets{"00", "0C", "29", "4F", "8E", "35"})) << text;
            EXPECT_EQ(boxes.Row(6), kNoOctets);
            EXPECT_EQ(boxes.focus, 5);
            EXPECT_EQ(boxes.selections[5], (TextSelection{2, 0}));
            EXPECT_EQ(boxes.vendorText, "Unknown Vendor (00-0C-29)");
            EXPECT_TRUE(boxes.canChange);
            EXPECT_EQ(boxes.beeps, 0);
        }
    }
}

TEST_P(PastedAddress, FillsTheSecondRowFromAnyOfItsBoxes) {
    const FakeMachine machine;
    for (const int box : {6, 8, 11}) {
        BoxesModel boxes(GetParam());
        boxes.focus = box;
        boxes.Paste("1:2:3:4:5:6");
        EXPECT_EQ(boxes.Row(6), (Octets{"01", "02", "03", "04", "05", "06"}));
        EXPECT_EQ(boxes.Row(), kNoOctets);
        EXPECT_EQ(boxes.focus, 11);
        EXPECT_EQ(boxes.vendorText, "");
    }
}

TEST_P(PastedAddress, KeepsItsLastOctetsWhenItsVendorIsKnown) {
    FakeMachine machine;
    LoadVendors({{"000C29", "VMware", "Palo Alto"}, {"FFFFFF", "other", ""}});
    for (int box = 0; box < 6; ++box) {
        BoxesModel boxes(GetParam());
        boxes.Stand(box, "7", {1, 0});
        boxes.Paste("00:0C:29:4F:8E:35");
        EXPECT_EQ(boxes.Row(), (Octets{"00", "0C", "29", "4F", "8E", "35"}));
        EXPECT_EQ(boxes.vendorText, "VMware   Address: Palo Alto");
        boxes.MoveTo(3);
        boxes.MoveTo(4);
        EXPECT_EQ(boxes.Row(), (Octets{"00", "0C", "29", "4F", "8E", "35"}));
    }
}

TEST_F(MacEntryMoves, PastedDigitsFillTheirBox) {
    for (int box = 0; box < kBoxes; ++box) {
        boxes.Stand(box, "CD", {1, 0});
        boxes.Paste("a");
        EXPECT_EQ(boxes.Text(box), "A");
        EXPECT_EQ(SelectionOf(box), (TextSelection{1, 0}));
        boxes.Paste(" 7f\n");
        EXPECT_EQ(boxes.Text(box), "7F");
        EXPECT_EQ(SelectionOf(box), (TextSelection{2, 0}));
        EXPECT_EQ(boxes.focus, box);
    }
    EXPECT_EQ(boxes.beeps, 0);
}

TEST_F(MacEntryMoves, AnythingElsePastedBeepsAndChangesNothing) {
    for (const std::string text : {"",
                                   " \r\n",
                                   "g",
                                   "0g",
                                   "ABC",
                                   "000C29",
                                   "00:0C:29",
                                   "000C294F8E3",
                                   "000C294F8E355",
                                   "000C294F8E3G",
                                   "00:0C:29:4F:8E",
                                   "00:0C:29:4F:8E:35:",
                                   ":00:0C:29:4F:8E:35",
                                   "00:0C:29:4F:8E:35:01",
                                   "00::0C:29:4F:8E:35",
                                   "00:0C:29:4F:8E:",
                                   "000:C2:94:F8:E3:5",
                                   "00:0C-29:4F-8E:35",
                                   "00,0C,29,4F,8E,35",
                                   "0:0:0:C:2:9:4:F:8:E:3:5",
                                   "000:C29:4F8:E35",
                                   "0:00C294F8E35",
                                   "000C29  4F8E35",
                                   "00:0C:29:4F:8E:3G",
                                   "0x",
                                   "-1",
                                   ":",
                                   "\xC3\xA9"}) {
        for (const int box : {2, 8}) {
            boxes.Stand(box, "AB", {1, 0});
            boxes.diary.clear();
            boxes.Paste(text);
            EXPECT_THAT(boxes.diary, ElementsAre("beep")) << text;
            EXPECT_EQ(boxes.focus, box);
        }
    }
}

}  // namespace
}  // namespace corvane
