#include <string>

#include <gtest/gtest.h>

#include "tests/unit/QuadBoxesSupport.h"

/// Keys typed into the boxes of an IPv4 address, on every kind of window.
namespace corvane {
namespace {

using test::FocusReports;
using test::kBackspace;
using test::QuadBoxes;
using test::Texts;

class QuadKeys : public testing::TestWithParam<FocusReports> {
 protected:
    QuadBoxes boxes{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Windows, QuadKeys,
                         testing::Values(FocusReports::kAtOnce, FocusReports::kAfterTheKey));

TEST_P(QuadKeys, SevenDigitsIntoAnEmptyControlFillTwoBoxesAndGoOnInTheThird) {
    boxes.MoveTo(0);
    boxes.Type("1921681");
    EXPECT_EQ(boxes.texts, (Texts{"192", "168", "1", ""}));
    EXPECT_EQ(boxes.focus, 2);
    EXPECT_EQ(boxes.selections[2], (TextSelection{1, 0}));
    EXPECT_EQ(boxes.beeps, 0);
}

TEST_P(QuadKeys, WholeAddressIsTypedWithDots) {
    boxes.MoveTo(0);
    boxes.Type("192.168.0.17");
    EXPECT_EQ(boxes.entry.Text(), "192.168.0.17");
    EXPECT_EQ(boxes.focus, 3);
    EXPECT_EQ(boxes.beeps, 0);
    EXPECT_EQ(boxes.edits, 9);
}

TEST_P(QuadKeys, WholeAddressIsTypedWithoutDots) {
    boxes.MoveTo(0);
    boxes.Type("192168100200");
    EXPECT_EQ(boxes.entry.Text(), "192.168.100.200");
    EXPECT_EQ(boxes.beeps, 0);
}

TEST_P(QuadKeys, SecondAddressOverTheFirstReplacesIt) {
    boxes.entry.SetText("255.255.255.0");
    boxes.MoveTo(0);
    boxes.Type("10.20.30.40");
    EXPECT_EQ(boxes.entry.Text(), "10.20.30.40");
}

TEST_P(QuadKeys, DotGoesToTheNextBoxAndIsNotInserted) {
    for (int box = 0; box < 3; ++box) {
        for (const std::string text : {"", "7", "192"}) {
            boxes.Stand(box, text, {0, 0});
            EXPECT_FALSE(boxes.Press('.'));
            EXPECT_EQ(boxes.focus, box + 1);
            EXPECT_EQ(boxes.BoxText(box), text);
        }
    }
    EXPECT_EQ(boxes.beeps, 0);
    EXPECT_EQ(boxes.edits, 0);
}

TEST_P(QuadKeys, DotInTheLastBoxBeeps) {
    boxes.Stand(3, "7", {0, 1});
    EXPECT_FALSE(boxes.Press('.'));
    EXPECT_EQ(boxes.beeps, 1);
    EXPECT_EQ(boxes.focus, 3);
    EXPECT_EQ(boxes.texts[3], "7");
    EXPECT_EQ(boxes.edits, 0);
}

TEST_P(QuadKeys, BackspaceDeletesTheSelectedTextOnly) {
    struct Case {
        TextSelection selection;
        std::string left;
    };
    for (int box = 0; box < 4; ++box) {
        for (const Case& c : {Case{{0, 3}, ""}, {{1, 1}, "13"}, {{1, 2}, "1"}, {{0, 2}, "3"}}) {
            boxes.Stand(box, "123", c.selection);
            boxes.Forget();
            EXPECT_FALSE(boxes.Press(kBackspace));
            EXPECT_EQ(boxes.BoxText(box), c.left);
            EXPECT_EQ(boxes.Selection(box), (TextSelection{c.selection.start, 0}));
            EXPECT_EQ(boxes.focus, box);
            EXPECT_EQ(boxes.changeEvents, 1);
            EXPECT_EQ(boxes.edits, 0) << "the box gets no key";
        }
    }
    EXPECT_EQ(boxes.beeps, 0);
}

TEST_P(QuadKeys, BackspaceBehindADigitIsLetThrough) {
    for (int box = 0; box < 4; ++box) {
        boxes.Stand(box, "123", {3, 0});
        boxes.Forget();
        EXPECT_TRUE(boxes.Press(kBackspace)) << "also in a full box";
        EXPECT_EQ(boxes.BoxText(box), "12");
        boxes.Stand(box, "12", {1, 0});
        EXPECT_TRUE(boxes.Press(kBackspace));
        EXPECT_EQ(boxes.BoxText(box), "2");
        EXPECT_EQ(boxes.focus, box);
        EXPECT_EQ(boxes.edits, 2);
    }
    EXPECT_EQ(boxes.beeps, 0);
}

TEST_P(QuadKeys, BackspaceAtTheStartGoesToTheBoxBeforeAndDeletesNothing) {
    for (int box = 1; box < 4; ++box) {
        for (const std::string text : {"", "7", "192"}) {
            boxes.entry.SetText("10.11.12.13");
            boxes.Stand(box, text, {0, 0});
            const Texts before = boxes.texts;
            EXPECT_FALSE(boxes.Press(kBackspace));
            EXPECT_EQ(boxes.focus, box - 1);
            EXPECT_EQ(boxes.texts, before);
            EXPECT_EQ(boxes.Selection(box - 1), (TextSelection{0, 2}));
        }
    }
    EXPECT_EQ(boxes.beeps, 0);
    EXPECT_EQ(boxes.edits, 0);
}

TEST_P(QuadKeys, BackspaceAtTheStartOfTheFirstBoxBeeps) {
    for (const std::string text : {"", "7", "192"}) {
        boxes.Stand(0, text, {0, 0});
        boxes.Forget();
        EXPECT_FALSE(boxes.Press(kBackspace));
        EXPECT_EQ(boxes.beeps, 1);
        EXPECT_EQ(boxes.focus, 0);
        EXPECT_EQ(boxes.texts[0], text);
        EXPECT_EQ(boxes.edits, 0);
    }
}

TEST_P(QuadKeys, EditingKeysPassEvenIntoAFullBox) {
    for (const int key : {3, 22, 24, 26}) {
        for (int box = 0; box < 4; ++box) {
            for (const TextSelection selection : {TextSelection{3, 0}, {0, 0}, {0, 3}}) {
                boxes.Stand(box, "192", selection);
                boxes.Forget();
                EXPECT_TRUE(boxes.Press(key)) << key;
                EXPECT_EQ(boxes.edits, 1);
                EXPECT_EQ(boxes.focus, box);
                EXPECT_EQ(boxes.beeps, 0);
            }
        }
    }
}

TEST_P(QuadKeys, EditingKeyInAFullBoxIsNotTypedIntoTheNext) {
    boxes.Stand(0, "192", {3, 0});
    boxes.Press(22);
    boxes.MoveTo(1);
    EXPECT_EQ(boxes.texts[1], "");
}

TEST_P(QuadKeys, DigitsPass) {
    for (int box = 0; box < 4; ++box) {
        for (char digit = '0'; digit <= '9'; ++digit) {
            boxes.Stand(box, "", {});
            boxes.Forget();
            EXPECT_TRUE(boxes.Press(digit));
            EXPECT_EQ(boxes.BoxText(box), std::string(1, digit));
            EXPECT_EQ(boxes.edits, 1);
        }
    }
}

TEST_P(QuadKeys, AllOtherKeysAreDiscarded) {
    for (int key = 1; key < 0x700; ++key) {
        const bool meant = (key >= '0' && key <= '9') || key == '.' || key == kBackspace || key == 3 ||
                           key == 22 || key == 24 || key == 26;
        if (meant) continue;
        for (const std::string text : {"", "192"}) {
            boxes.Stand(1, text, {static_cast<int>(text.size()), 0});
            EXPECT_FALSE(boxes.Press(key)) << key;
            EXPECT_EQ(boxes.texts[1], text) << key;
            EXPECT_EQ(boxes.focus, 1) << key;
        }
    }
    EXPECT_EQ(boxes.edits, 0);
    EXPECT_EQ(boxes.beeps, 0);
}

TEST_P(QuadKeys, DigitBeyondAFullBoxGoesIntoTheNext) {
    for (int box = 0; box < 3; ++box) {
        for (const int caret : {0, 1, 3}) {
            for (const std::string next : {"", "4", "77", "255"}) {
                boxes.Stand(box + 1, next, {0, 0});
                boxes.Stand(box, "192", {caret, 0});
                boxes.Forget();
                EXPECT_FALSE(boxes.Press('4'));
                EXPECT_EQ(boxes.BoxText(box), "192");
                EXPECT_EQ(boxes.BoxText(box + 1), "4") << "instead of " << next;
                EXPECT_EQ(boxes.focus, box + 1);
                EXPECT_EQ(boxes.Selection(box + 1), (TextSelection{1, 0}));
                EXPECT_EQ(boxes.edits, 0) << "no box is let have the key";
                EXPECT_EQ(boxes.beeps, 0);
            }
        }
    }
}

TEST_P(QuadKeys, DigitBeyondTheFullLastBoxBeeps) {
    boxes.Stand(3, "192", {3, 0});
    EXPECT_FALSE(boxes.Press('4'));
    EXPECT_EQ(boxes.beeps, 1);
    EXPECT_EQ(boxes.texts[3], "192");
    EXPECT_EQ(boxes.focus, 3);
    EXPECT_EQ(boxes.edits, 0);
    boxes.MoveTo(2);
    EXPECT_EQ(boxes.texts[2], "") << "the key is not kept for another box";
}

TEST_P(QuadKeys, DigitOverASelectionStaysInAFullBox) {
    for (int box = 0; box < 4; ++box) {
        boxes.Stand(box, "192", {1, 1});
        EXPECT_TRUE(boxes.Press('4'));
        EXPECT_EQ(boxes.BoxText(box), "142");
        EXPECT_EQ(boxes.focus, box);
    }
    EXPECT_EQ(boxes.beeps, 0);
}

TEST_P(QuadKeys, KeptDigitIsTypedOnce) {
    boxes.Stand(0, "192", {3, 0});
    boxes.Type("4");
    boxes.MoveTo(3);
    EXPECT_EQ(boxes.texts, (Texts{"192", "4", "", ""}));
}

}  // namespace
}  // namespace corvane
