#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/QuadBoxesSupport.h"

/// Focus, arrow keys and pasted texts in the boxes of an IPv4 address.
namespace corvane {
namespace {

using test::FocusReports;
using test::kNowhere;
using test::QuadBoxes;
using test::Texts;
using testing::IsEmpty;

class QuadMoves : public testing::TestWithParam<FocusReports> {
 protected:
    QuadBoxes boxes{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Windows, QuadMoves,
                         testing::Values(FocusReports::kAtOnce, FocusReports::kAfterTheKey));

// Focus.

TEST_P(QuadMoves, EnteringABoxSelectsItsWholeText) {
    for (int box = 0; box < 4; ++box) {
        for (const std::string text : {"", "7", "192"}) {
            boxes.Stand(box, text, {0, 0});
            boxes.MoveTo(kNowhere);
            boxes.MoveTo(box);
            EXPECT_EQ(boxes.Selection(box), (TextSelection{0, static_cast<int>(text.size())}));
            EXPECT_EQ(boxes.BoxText(box), text);
        }
    }
    EXPECT_THAT(boxes.changes, IsEmpty());
}

TEST_P(QuadMoves, LeavingABoxStripsItsLeadingZeros) {
    struct Case {
        std::string text;
        std::string left;
    };
    for (int box = 0; box < 4; ++box) {
        for (const Case& c : {Case{"007", "7"},
                              {"000", "0"},
                              {"00", "0"},
                              {"0", "0"},
                              {"010", "10"},
                              {"05", "5"},
                              {"100", "100"},
                              {"70", "70"},
                              {"", ""}}) {
            boxes.Stand(box, c.text, {0, 0});
            boxes.Forget();
            boxes.MoveTo(kNowhere);
            EXPECT_EQ(boxes.BoxText(box), c.left) << c.text;
            EXPECT_EQ(boxes.changes.size(), c.text == c.left ? 0U : 1U) << c.text;
        }
    }
    EXPECT_EQ(boxes.beeps, 0);
}

TEST_P(QuadMoves, DigitBeyondThreeZerosLeavesOneZero) {
    boxes.MoveTo(0);
    boxes.Type("0001");
    EXPECT_EQ(boxes.texts, (Texts{"0", "1", "", ""}));
}

// Arrow keys.

TEST_P(QuadMoves, RightAtTheEndGoesToTheNextBoxAndSelectsItsText) {
    for (int box = 0; box < 3; ++box) {
        boxes.Stand(box + 1, "44", {0, 0});
        boxes.Stand(box, "123", {3, 0});
        EXPECT_TRUE(boxes.Arrow(BoxKey::kRight));
        EXPECT_EQ(boxes.focus, box + 1);
        EXPECT_EQ(boxes.Selection(box + 1), (TextSelection{0, 2}));
    }
}

TEST_P(QuadMoves, LeftAtTheStartGoesToTheBoxBeforeAndSelectsItsText) {
    for (int box = 1; box < 4; ++box) {
        for (const bool control : {false, true}) {
            boxes.Stand(box - 1, "44", {0, 0});
            boxes.Stand(box, "123", {0, 0});
            EXPECT_TRUE(boxes.Arrow(BoxKey::kLeft, false, control));
            EXPECT_EQ(boxes.focus, box - 1);
            EXPECT_EQ(boxes.Selection(box - 1), (TextSelection{0, 2}));
        }
    }
}

TEST_P(QuadMoves, ControlRightGoesToTheNextBoxFromAnyPlace) {
    for (int box = 0; box < 3; ++box) {
        for (const TextSelection selection : {TextSelection{0, 0}, {1, 0}, {3, 0}, {0, 3}}) {
            boxes.Stand(box, "123", selection);
            EXPECT_TRUE(boxes.Arrow(BoxKey::kRight, false, true));
            EXPECT_EQ(boxes.focus, box + 1);
        }
    }
}

TEST_P(QuadMoves, ArrowInsideTheTextIsTheBoxesOwn) {
    for (const int caret : {0, 1, 2}) {
        boxes.Stand(1, "123", {caret, 0});
        EXPECT_FALSE(boxes.Arrow(BoxKey::kRight));
        EXPECT_EQ(boxes.focus, 1);
    }
    for (const int caret : {1, 2, 3}) {
        for (const bool control : {false, true}) {
            boxes.Stand(1, "123", {caret, 0});
            EXPECT_FALSE(boxes.Arrow(BoxKey::kLeft, false, control));
            EXPECT_EQ(boxes.focus, 1);
        }
    }
}

TEST_P(QuadMoves, StartOfTheSelectionCountsAsTheCaret) {
    boxes.Stand(1, "123", {0, 3});
    EXPECT_FALSE(boxes.Arrow(BoxKey::kRight));
    EXPECT_EQ(boxes.selections[1], (TextSelection{3, 0}));
    boxes.Stand(1, "123", {1, 2});
    EXPECT_FALSE(boxes.Arrow(BoxKey::kRight));
    boxes.Stand(1, "123", {1, 2});
    EXPECT_FALSE(boxes.Arrow(BoxKey::kLeft));
    EXPECT_EQ(boxes.focus, 1);
    boxes.Stand(1, "123", {0, 3});
    EXPECT_TRUE(boxes.Arrow(BoxKey::kLeft));
    EXPECT_EQ(boxes.focus, 0);
}

TEST_P(QuadMoves, ArrowsDoNotLeaveTheControl) {
    for (const bool control : {false, true}) {
        boxes.Stand(3, "123", {3, 0});
        EXPECT_FALSE(boxes.Arrow(BoxKey::kRight, false, control));
        EXPECT_EQ(boxes.focus, 3);
        boxes.Stand(0, "123", {0, 0});
        EXPECT_FALSE(boxes.Arrow(BoxKey::kLeft, false, control));
        EXPECT_EQ(boxes.focus, 0);
    }
    EXPECT_EQ(boxes.beeps, 0);
}

TEST_P(QuadMoves, ShiftLeavesTheArrowsToTheBox) {
    for (const bool control : {false, true}) {
        boxes.Stand(1, "123", {3, 0});
        EXPECT_FALSE(boxes.Arrow(BoxKey::kRight, true, control));
        boxes.Stand(1, "123", {0, 0});
        EXPECT_FALSE(boxes.Arrow(BoxKey::kLeft, true, control));
        EXPECT_EQ(boxes.focus, 1);
    }
}

TEST_P(QuadMoves, ArrowsPassEmptyBoxes) {
    boxes.MoveTo(0);
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(boxes.Arrow(BoxKey::kRight));
    EXPECT_EQ(boxes.focus, 3);
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(boxes.Arrow(BoxKey::kLeft));
    EXPECT_EQ(boxes.focus, 0);
}

// Pasting.

TEST_P(QuadMoves, PastedQuadFillsAllBoxesFromAnyOfThem) {
    for (const std::string text : {"192.168.0.17", " 192.168.0.17\r\n", "\t192.168.000.017 "}) {
        for (int box = 0; box < 4; ++box) {
            boxes.entry.SetText("1.2.3.4");
            boxes.Stand(box, "123", {1, 1});
            boxes.Paste(text);
            EXPECT_EQ(boxes.texts, (Texts{"192", "168", "0", "17"})) << text;
            EXPECT_EQ(boxes.focus, 3);
            EXPECT_EQ(boxes.selections[3], (TextSelection{0, 2}));
        }
    }
    EXPECT_EQ(boxes.beeps, 0);
    EXPECT_EQ(boxes.edits, 0);
}

TEST_P(QuadMoves, PastedDigitsReplaceTheSelectionOrGoInAtTheCaret) {
    struct Case {
        std::string text;
        TextSelection selection;
        std::string pasted;
        std::string result;
        int caret;
    };
    for (int box = 0; box < 4; ++box) {
        for (const Case& c : {Case{"", {0, 0}, "192", "192", 3},
                              {"12", {0, 2}, "7", "7", 1},
                              {"192", {0, 3}, "10", "10", 2},
                              {"13", {1, 0}, "2", "123", 2},
                              {"123", {1, 1}, "0", "103", 2},
                              {"1", {0, 0}, " 1\n", "11", 1},
                              {"23", {0, 0}, "1", "123", 1}}) {
            boxes.Stand(box, c.text, c.selection);
            boxes.Paste(c.pasted);
            EXPECT_EQ(boxes.BoxText(box), c.result);
            EXPECT_EQ(boxes.Selection(box), (TextSelection{c.caret, 0})) << c.result;
            EXPECT_EQ(boxes.focus, box);
        }
    }
    EXPECT_EQ(boxes.beeps, 0);
}

TEST_P(QuadMoves, PastedDigitsOutOfRangeEmptyTheBox) {
    boxes.Stand(1, "25", {2, 0});
    boxes.Paste("6");
    EXPECT_EQ(boxes.texts[1], "");
    EXPECT_EQ(boxes.selections[1], (TextSelection{0, 0}));
    EXPECT_EQ(boxes.beeps, 1);
}

TEST_P(QuadMoves, AnythingElsePastedBeepsAndChangesNothing) {
    for (const std::string text :
         {"",         " \r\n",      "a",           "1a",         "-1",         "1234",
          "12",       "10.0",       "10.0.0",      "10.0.0.0.0", "10.0.0.",    ".10.0.0",
          "10..0.0",  "10.0.0.256", "10.0.0.0007", "10.0.0.-1",  "10.0.0.1/8", "10. 0.0.1",
          "10,0,0,1", "1 2",        "a.b.c.d",     "...",        "\xC3\xA9"}) {
        boxes.entry.SetText("1.2.3.4");
        boxes.Stand(2, "12", {1, 0});
        boxes.Forget();
        boxes.Paste(text);
        EXPECT_EQ(boxes.texts, (Texts{"1", "2", "12", "4"})) << text;
        EXPECT_EQ(boxes.selections[2], (TextSelection{1, 0})) << text;
        EXPECT_EQ(boxes.beeps, 1) << text;
        EXPECT_EQ(boxes.focus, 2) << text;
        EXPECT_THAT(boxes.changes, IsEmpty()) << text;
    }
}

}  // namespace
}  // namespace corvane
