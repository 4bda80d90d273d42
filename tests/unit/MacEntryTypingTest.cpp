#include <functional>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/MacBoxesSupport.h"

/// Addresses typed into the octet boxes, with separators and without.
namespace corvane {
namespace {

using test::BoxesModel;
using test::FocusReports;
using test::kNoOctets;
using test::kNowhere;
using test::kRestartCheck;
using test::LoadVendors;
using test::Octets;
using testing::ElementsAre;

// Whole addresses. On every kind of window, with a vendor that is in the list and one that is not.

struct Window {
    FocusReports reports;
    bool knownVendor;
};

class TypedAddress : public testing::TestWithParam<Window> {
 protected:
    TypedAddress() : boxes(GetParam().reports) {
        machine.clock->seed = 11;
        if (GetParam().knownVendor) {
            LoadVendors({{"FFFFFF", "other", ""}, {"A1B2C3", "Acme", "Here"}, {"000C29", "VMware", ""}});
        } else {
            LoadVendors({{"FFFFFF", "other", ""}, {"FFFFFE", "another", ""}});
        }
        boxes.focus = 0;
    }

    FakeMachine machine;
    BoxesModel boxes;
};

INSTANTIATE_TEST_SUITE_P(
    Windows, TypedAddress,
    testing::Values(Window{FocusReports::kNever, true}, Window{FocusReports::kNever, false},
                    Window{FocusReports::kAtOnce, true}, Window{FocusReports::kAtOnce, false},
                    Window{FocusReports::kAfterTheKey, true}, Window{FocusReports::kAfterTheKey, false}));

TEST_P(TypedAddress, TwelveDigitsFillTheRowAndEndOnTheRestartCheck) {
    boxes.Type("a1b2c3d4e5f6");
    EXPECT_EQ(boxes.Row(), (Octets{"A1", "B2", "C3", "D4", "E5", "F6"}));
    EXPECT_EQ(boxes.focus, kRestartCheck);
    EXPECT_TRUE(boxes.canChange);
    EXPECT_EQ(boxes.vendorText,
              GetParam().knownVendor ? "Acme   Address: Here" : "Unknown Vendor (A1-B2-C3)");
    EXPECT_EQ(boxes.beeps, 0);
    EXPECT_EQ(boxes.typedElsewhere, "");
}

TEST_P(TypedAddress, SecondAddressOverTheFirstReplacesIt) {
    boxes.Type("001122334455");
    boxes.MoveTo(0);
    boxes.Click(0);
    boxes.Type("a1b2c3d4e5f6");
    EXPECT_EQ(boxes.Row(), (Octets{"A1", "B2", "C3", "D4", "E5", "F6"}));
    EXPECT_EQ(boxes.focus, kRestartCheck);
}

TEST_P(TypedAddress, PrefixWithSeparatorsFillsThreeBoxes) {
    for (const std::string text : {"00:0c:29", "00-0c-29", "00.0c.29"}) {
        boxes.Clear();
        boxes.MoveTo(0);
        boxes.Type(text);
        EXPECT_EQ((Octets{boxes.texts[0], boxes.texts[1], boxes.texts[2]}), (Octets{"00", "0C", "29"}))
            << text;
        EXPECT_EQ(boxes.focus, 3) << text;
        EXPECT_EQ(boxes.vendorText,
                  GetParam().knownVendor ? "VMware   Address: " : "Unknown Vendor (00-0C-29)");
    }
    EXPECT_EQ(boxes.beeps, 0);
}

TEST_P(TypedAddress, WholeAddressWithSeparatorsFillsTheRow) {
    for (const std::string text : {"a1:b2:c3:d4:e5:f6", "A1-B2-C3-D4-E5-F6", "a1b2.c3d4.e5f6"}) {
        boxes.Clear();
        boxes.MoveTo(0);
        boxes.Type(text);
        EXPECT_EQ(boxes.Row(), (Octets{"A1", "B2", "C3", "D4", "E5", "F6"})) << text;
        EXPECT_EQ(boxes.focus, kRestartCheck) << text;
    }
    EXPECT_EQ(boxes.beeps, 0);
}

TEST_P(TypedAddress, SecondRowFillsInTheSameWayAndKeepsTheFocus) {
    boxes.MoveTo(6);
    boxes.Type("a1:b2c3:d4e5:f6");
    EXPECT_EQ(boxes.Row(6), (Octets{"A1", "B2", "C3", "D4", "E5", "F6"}));
    EXPECT_EQ(boxes.Row(), kNoOctets);
    EXPECT_EQ(boxes.focus, 11);
    EXPECT_EQ(boxes.vendorText, "");
    EXPECT_FALSE(boxes.canChange);
    EXPECT_EQ(boxes.beeps, 0);
}

TEST_P(TypedAddress, OctetsOfOneDigitAreCompletedWhereTheWindowReportsTheFocus) {
    boxes.Type("1:c:29:4:8e:5");
    if (GetParam().reports != FocusReports::kNever) {
        boxes.MoveTo(kRestartCheck);
        EXPECT_EQ(boxes.Row(), (Octets{"01", "0C", "29", "04", "8E", "05"}));
    } else {
        // The look-up completes the first three.
        EXPECT_EQ(boxes.Row(), (Octets{"01", "0C", "29", "4", "8E", "5"}));
    }
}

TEST_P(TypedAddress, EnteringTheFourthBoxSelectsAllOfItsText) {
    boxes.Fill(3, {"77"});
    boxes.Type("a1b2c3");
    EXPECT_EQ(boxes.focus, 3);
    EXPECT_EQ(boxes.selections[3], (TextSelection{0, 2}));
    EXPECT_EQ(boxes.texts[3], GetParam().knownVendor ? test::RandomOctets(11)[0] : "77");
}

TEST_P(TypedAddress, DigitBeyondTheThirdBoxIsNotLostToTheLookUp) {
    boxes.Fill(0, {"A1", "B2"});
    boxes.Stand(2, "C3", {2, 0});
    boxes.Type("d4");
    EXPECT_EQ(boxes.texts[3], "D4");
    EXPECT_EQ(boxes.focus, 4);
    EXPECT_EQ(boxes.vendorText,
              GetParam().knownVendor ? "Acme   Address: Here" : "Unknown Vendor (A1-B2-C3)");
}

TEST_P(TypedAddress, SeparatorIntoTheFourthBoxLooksTheVendorUp) {
    boxes.Fill(0, {"A1", "B2"});
    boxes.Stand(2, "C3", {2, 0});
    boxes.Type(":");
    EXPECT_EQ(boxes.focus, 3);
    EXPECT_EQ(boxes.vendorText,
              GetParam().knownVendor ? "Acme   Address: Here" : "Unknown Vendor (A1-B2-C3)");
}

// Separators.

class SeparatorKey : public testing::Test {
 protected:
    FakeMachine machine;
    BoxesModel boxes;
};

TEST_F(SeparatorKey, SeparatorGoesToTheNextBoxAndEntersNone) {
    for (const char separator : {':', '-', '.'}) {
        for (int box = 0; box < 12; ++box) {
            if (box == 5 || box == 11) continue;
            const auto next = static_cast<std::size_t>(box) + 1;
            boxes.Stand(box, "AB", {2, 0});
            boxes.Fill(box + 1, {"CD"});
            boxes.selections[next] = {1, 1};
            boxes.entry.KeyPress(box, separator);
            EXPECT_EQ(boxes.focus, box + 1);
            EXPECT_EQ(boxes.texts[next - 1], "AB");
            EXPECT_EQ(boxes.texts[next], "CD");
            EXPECT_EQ(boxes.selections[next], (TextSelection{1, 1})) << "a separator selects nothing";
        }
    }
    EXPECT_EQ(boxes.beeps, 0);
}

TEST_F(SeparatorKey, SeparatorInTheLastBoxOfARowBeeps) {
    for (const char separator : {':', '-', '.'}) {
        boxes.diary.clear();
        boxes.Stand(5, "AB", {0, 2});
        boxes.entry.KeyPress(5, separator);
        EXPECT_THAT(boxes.diary, ElementsAre("beep", "focus restart check"));
        boxes.diary.clear();
        boxes.Stand(11, "AB", {0, 2});
        boxes.entry.KeyPress(11, separator);
        EXPECT_THAT(boxes.diary, ElementsAre("beep"));
        EXPECT_EQ(boxes.focus, 11);
    }
}

TEST_F(SeparatorKey, OnlyTheFirstSeparatorAfterAnOctetIsTheOneBetweenTheTwo) {
    boxes.focus = 0;
    boxes.Type("00::2");
    EXPECT_EQ((Octets{boxes.texts[0], boxes.texts[1], boxes.texts[2]}), (Octets{"00", "", "2"}));
}

TEST_F(SeparatorKey, SeparatorAfterAnythingElseGoesOn) {
    const auto focusAfterSeparator = [&](const std::function<void()>& before) {
        boxes.Clear();
        boxes.MoveTo(kNowhere);
        boxes.MoveTo(0);
        boxes.Type("00");
        before();
        boxes.Type(":");
        return boxes.focus;
    };
    EXPECT_EQ(focusAfterSeparator([] {}), 1);
    EXPECT_EQ(focusAfterSeparator([&] { boxes.Type("g "); }), 1) << "a character that does nothing";
    EXPECT_EQ(focusAfterSeparator([&] { boxes.Click(1); }), 2);
    EXPECT_EQ(focusAfterSeparator([&] { boxes.Type("7"); }), 2);
    EXPECT_EQ(focusAfterSeparator([&] { boxes.Type("7\b"); }), 2);
    EXPECT_EQ(focusAfterSeparator([&] { boxes.Type("\b"); }), 1) << "back in box 0";
    EXPECT_EQ(focusAfterSeparator([&] { boxes.Paste("7"); }), 2);
    EXPECT_EQ(focusAfterSeparator([&] {
                  boxes.MoveTo(0);
                  boxes.MoveTo(1);
              }),
              2);
    EXPECT_EQ(focusAfterSeparator([&] { boxes.Arrow(BoxKey::kRight, true); }), 2);
}

TEST_F(SeparatorKey, OnlyTheBoxThatTheDigitWentToWaitsForOne) {
    boxes.reports = FocusReports::kNever;
    boxes.focus = 0;
    boxes.Type("00");
    boxes.Stand(3, "", {});
    boxes.Type(":");
    EXPECT_EQ(boxes.focus, 4);
}

TEST_F(SeparatorKey, SameDigitTypedAgainIsADigitTyped) {
    boxes.Fill(1, {"7"});
    boxes.focus = 0;
    boxes.Type("007:");
    EXPECT_EQ(boxes.texts[1], "07");
    EXPECT_EQ(boxes.focus, 2);
}

}  // namespace
}  // namespace corvane
