#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/QuadBoxesSupport.h"

/// The value of the entry control for one IPv4 address and what raises its Change.
namespace corvane {
namespace {

using test::kBackspace;
using test::QuadBoxes;
using test::Texts;
using testing::ElementsAre;
using testing::IsEmpty;

// The value.

class QuadValue : public testing::Test {
 protected:
    QuadBoxes boxes;
};

TEST_F(QuadValue, TextJoinsTheBoxesInOrder) {
    boxes.texts = {"10", "0", "200", "3"};
    EXPECT_EQ(boxes.entry.Text(), "10.0.200.3");
}

TEST_F(QuadValue, TextOfAnEmptyControlIsEmpty) { EXPECT_EQ(boxes.entry.Text(), ""); }

TEST_F(QuadValue, TextOfAPartlyFilledControlKeepsItsDots) {
    boxes.texts = {"10", "1", "", ""};
    EXPECT_EQ(boxes.entry.Text(), "10.1..");
    boxes.texts = {"", "", "", "7"};
    EXPECT_EQ(boxes.entry.Text(), "...7");
}

TEST_F(QuadValue, EmptyTextEmptiesAllBoxes) {
    boxes.texts = {"10", "0", "", "3"};
    boxes.entry.SetText("");
    EXPECT_EQ(boxes.texts, Texts());
    EXPECT_THAT(boxes.changes, ElementsAre(".0..3", "...3", ""));
    EXPECT_EQ(boxes.beeps, 0);
}

TEST_F(QuadValue, TextOfFourPartsSetsTheBoxes) {
    boxes.entry.SetText("192.168.0.255");
    EXPECT_EQ(boxes.texts, (Texts{"192", "168", "0", "255"}));
    EXPECT_EQ(boxes.beeps, 0);
}

TEST_F(QuadValue, PartsAreSetByTheirNumericValue) {
    boxes.entry.SetText("010.000.001. 7x");
    EXPECT_EQ(boxes.texts, (Texts{"10", "0", "1", "7"}));
    boxes.entry.SetText("a..2 5.1e2");
    EXPECT_EQ(boxes.texts, (Texts{"0", "0", "25", "100"}));
    EXPECT_EQ(boxes.beeps, 0);
}

TEST_F(QuadValue, AnyOtherNumberOfPartsChangesNothing) {
    boxes.texts = {"1", "2", "", "4"};
    for (const std::string text :
         {"10", "10.0", "10.0.0", "10.0.0.0.0", "1.2.3.4.", " ", ".", "....", "1,2,3,4"}) {
        boxes.entry.SetText(text);
        EXPECT_EQ(boxes.texts, (Texts{"1", "2", "", "4"})) << text;
    }
    EXPECT_THAT(boxes.changes, IsEmpty());
    EXPECT_EQ(boxes.beeps, 0);
}

TEST_F(QuadValue, PartOutOfRangeEmptiesItsBoxWithABeep) {
    for (const std::string part : {"256", "300", "1000", "-1", "1e60", "4294967297"}) {
        boxes.entry.SetText("9.9.9.9");
        boxes.Forget();
        boxes.entry.SetText("1." + part + ".3.255");
        EXPECT_EQ(boxes.texts, (Texts{"1", "", "3", "255"})) << part;
        EXPECT_EQ(boxes.beeps, 1) << part;
    }
}

TEST_F(QuadValue, GetNumberReadsTheOctetOfABox) {
    boxes.texts = {"255", "0", "007", "42"};
    EXPECT_EQ(boxes.entry.GetNumber(0), 255);
    EXPECT_EQ(boxes.entry.GetNumber(1), 0);
    EXPECT_EQ(boxes.entry.GetNumber(2), 7);
    EXPECT_EQ(boxes.entry.GetNumber(3), 42);
}

TEST_F(QuadValue, GetNumberOfAnEmptyBoxIsZero) {
    boxes.texts = {"255", "", "255", "255"};
    EXPECT_EQ(boxes.entry.GetNumber(1), 0);
}

TEST_F(QuadValue, GetNumberIsTheNearestOctetWhateverTheBoxHolds) {
    boxes.texts = {"1.6", "1.4", "999", "-1"};
    EXPECT_THAT(boxes.entry.Octets(), ElementsAre(2, 1, 255, 0));
}

TEST_F(QuadValue, OctetsAreInNetworkByteOrder) {
    boxes.texts = {"192", "168", "", "7"};
    EXPECT_THAT(boxes.entry.Octets(), ElementsAre(192, 168, 0, 7));
}

TEST_F(QuadValue, SetNumberSetsOneBox) {
    boxes.texts = {"1", "2", "3", "4"};
    boxes.entry.SetNumber(1, 255);
    boxes.entry.SetNumber(3, 0);
    EXPECT_EQ(boxes.texts, (Texts{"1", "255", "3", "0"}));
    EXPECT_THAT(boxes.changes, ElementsAre("1.255.3.4", "1.255.3.0"));
}

// Change.

TEST_F(QuadValue, ChangeIsRaisedForEveryBoxAndEveryChange) {
    boxes.MoveTo(0);
    boxes.Type("12.3.4.5");
    boxes.Type({kBackspace});
    EXPECT_THAT(boxes.changes, ElementsAre("1...", "12...", "12.3..", "12.3.4.", "12.3.4.5", "12.3.4."));
}

TEST_F(QuadValue, ChangeIsNotRaisedForAValueSetOnceMore) {
    boxes.entry.SetText("10.0.0.1");
    boxes.Forget();
    boxes.entry.SetText("10.0.0.1");
    boxes.entry.SetNumber(0, 10);
    EXPECT_THAT(boxes.changes, IsEmpty());
}

TEST_F(QuadValue, NobodyNeedsToListen) {
    boxes.entry.Tell(IPAddressEvents::Unheard());
    boxes.MoveTo(0);
    boxes.Type("300");
    EXPECT_EQ(boxes.texts, Texts());
    EXPECT_EQ(boxes.beeps, 1);
}

TEST_F(QuadValue, ListenerMayEmptyTheControl) {
    boxes.listener.change = [&] { boxes.entry.SetText(""); };
    boxes.Stand(0, "192", {3, 0});
    boxes.Type("4");
    EXPECT_EQ(boxes.focus, 1);
    EXPECT_EQ(boxes.texts, Texts());
    boxes.Stand(2, "192", {1, 1});
    boxes.Type({kBackspace});
    EXPECT_EQ(boxes.texts, Texts());
    EXPECT_EQ(boxes.selections[2], (TextSelection{0, 0}));
}

TEST_F(QuadValue, Typing300BeepsAndEmptiesTheBox) {
    for (int box = 0; box < 4; ++box) {
        boxes.MoveTo(box);
        boxes.Forget();
        boxes.Type("30");
        EXPECT_EQ(boxes.beeps, 0);
        boxes.Type("0");
        EXPECT_EQ(boxes.BoxText(box), "");
        EXPECT_EQ(boxes.beeps, 1);
        EXPECT_EQ(boxes.focus, box);
        EXPECT_EQ(boxes.edits, 3);
        boxes.Type("7");
        EXPECT_EQ(boxes.BoxText(box), "7");
        boxes.SetBoxText(box, "");
    }
}

TEST_F(QuadValue, RejectedValueIsNeverSeenInAChange) {
    boxes.texts = {"10", "", "", ""};
    boxes.MoveTo(1);
    boxes.Type("300");
    EXPECT_EQ(boxes.changeEvents, 4) << "three keys and the emptying";
    EXPECT_THAT(boxes.changes, ElementsAre("10.3..", "10.30..", "10...", "10..."));
}

TEST_F(QuadValue, TextThatIsNoOctetIsRejectedWhereverItComesFrom) {
    for (const std::string text :
         {"256", "300", "999", "1000", "0255", "0000", "-1", "+5",  "-",        "a",          "1a",
          "12b", "0x7", "1.5", ".",    " 7",   "7 ",   " ",  "1e1", "\xC2\xB2", "192.168.0.1"}) {
        boxes.Forget();
        boxes.Drop(2, text);
        EXPECT_EQ(boxes.BoxText(2), "") << text;
        EXPECT_EQ(boxes.beeps, 1) << text;
        EXPECT_EQ(boxes.changes.back(), "") << text;
    }
}

TEST_F(QuadValue, EveryOctetIsAccepted) {
    for (int octet = 0; octet < 256; ++octet) {
        boxes.Drop(2, std::to_string(octet));
        EXPECT_EQ(boxes.entry.GetNumber(2), octet);
    }
    for (const std::string text : {"", "00", "007", "000"}) {
        boxes.Drop(2, text);
        EXPECT_EQ(boxes.BoxText(2), text);
    }
    EXPECT_EQ(boxes.beeps, 0);
}

}  // namespace
}  // namespace corvane
