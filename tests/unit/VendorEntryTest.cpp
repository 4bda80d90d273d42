#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/RunTimeError.h"
#include "tests/unit/MacBoxesSupport.h"

namespace corvane {
namespace {

using test::BoxesModel;
using test::EventfulSeat;
using test::kVendorListBox;
using test::LoadVendors;
using test::Octets;
using test::RandomOctets;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class VendorRules : public testing::Test {
 protected:
    VendorRules() : scopedSeat_(seat) {
        machine.clock->seed = 5;
        LoadVendors({{"FFFFFF", "other", ""},
                     {"000C29", "VMware", "Palo Alto"},
                     {"000C29", "shadowed", ""},
                     {"A1B2C3", "Acme", ""}});
    }

    [[nodiscard]] std::vector<std::string> FirstThree() const {
        return {boxes.texts[0], boxes.texts[1], boxes.texts[2]};
    }
    [[nodiscard]] std::vector<std::string> LastThree() const {
        return {boxes.texts[3], boxes.texts[4], boxes.texts[5]};
    }

    FakeMachine machine;
    EventfulSeat seat;
    BoxesModel boxes;

 private:
    ScopedSeat scopedSeat_;
};

// Looking up what was typed.

TEST_F(VendorRules, TypedPrefixShowsTheFirstVendorThatHasIt) {
    boxes.focus = 0;
    boxes.Type("000C29");
    EXPECT_EQ(boxes.vendorText, "VMware   Address: Palo Alto");
    EXPECT_THAT(boxes.chosen, ElementsAre(1U));
    EXPECT_EQ(FirstThree(), (Octets{"00", "0C", "29"}));
    EXPECT_EQ(LastThree(), RandomOctets(5));
}

TEST_F(VendorRules, LookUpFollowsItsOrder) {
    boxes.Fill(0, {"00", "0C", "29"});
    boxes.vendor.LookUpTypedVendor();
    const Octets octets = RandomOctets(5);
    EXPECT_THAT(boxes.diary,
                ElementsAre("vendor Searching Wait ...", "vendor VMware   Address: Palo Alto", "chosen 1",
                            "text 0 00", "text 1 0C", "text 2 29", "text 3 " + octets[0], "change off",
                            "text 4 " + octets[1], "change off", "text 5 " + octets[2], "change on"));
}

TEST_F(VendorRules, EventsRunWhileTheSearchIsAnnounced) {
    std::vector<std::string> shown;
    seat.onEvents = [&] { shown.push_back(boxes.vendorText); };
    boxes.Fill(0, {"00", "0C", "29"});
    boxes.vendor.LookUpTypedVendor();
    EXPECT_THAT(shown, ElementsAre("Searching Wait ..."));
    EXPECT_THAT(seat.diary, ElementsAre("events"));
}

TEST_F(VendorRules, ShortListShowsTheNameAlone) {
    ShortVendorList = true;
    boxes.Fill(0, {"00", "0C", "29"});
    boxes.vendor.LookUpTypedVendor();
    EXPECT_EQ(boxes.vendorText, "VMware");
    boxes.vendor.Choose(3);
    EXPECT_EQ(boxes.vendorText, "Acme");
    machine.clock->seed = 1;
    boxes.vendor.RandomAddress();
    EXPECT_THAT(boxes.vendorText, testing::Not(HasSubstr("Address")));
}

TEST_F(VendorRules, UnknownPrefixIsNamedAndLeavesTheOtherBoxes) {
    boxes.Fill(0, {"00", "0C", "2A", "77", "", "9"});
    boxes.vendor.LookUpTypedVendor();
    EXPECT_EQ(boxes.vendorText, "Unknown Vendor (00-0C-2A)");
    EXPECT_THAT(boxes.chosen, IsEmpty());
    EXPECT_EQ(boxes.Row(), (Octets{"00", "0C", "2A", "77", "", "9"}));
}

TEST_F(VendorRules, PrefixIsCompletedBeforeItIsSearched) {
    boxes.Fill(0, {"0", "C", ""});
    boxes.vendor.LookUpTypedVendor();
    EXPECT_EQ(FirstThree(), (Octets{"00", "0C", "00"}));
    EXPECT_EQ(boxes.vendorText, "Unknown Vendor (00-0C-00)");

    boxes.vendorText.clear();
    boxes.Fill(0, {"0", "C", "29"});
    boxes.vendor.LookUpTypedVendor();
    EXPECT_EQ(boxes.vendorText, "VMware   Address: Palo Alto");

    boxes.vendorText.clear();
    boxes.Fill(0, {"", "", "1"});
    boxes.vendor.LookUpTypedVendor();
    EXPECT_EQ(boxes.vendorText, "Unknown Vendor (00-00-01)");
}

TEST_F(VendorRules, SingleZeroInTheFirstBoxIsCompletedOnTheWayToTheFourth) {
    boxes.MoveTo(0);
    boxes.Type("0");
    boxes.MoveTo(3);
    EXPECT_EQ(FirstThree(), (Octets{"00", "00", "00"}));
    EXPECT_EQ(boxes.vendorText, "Unknown Vendor (00-00-00)");
}

TEST_F(VendorRules, CaseOfTheTypedPrefixCounts) {
    boxes.Fill(0, {"00", "0c", "29"});
    boxes.vendor.LookUpTypedVendor();
    EXPECT_EQ(boxes.vendorText, "Unknown Vendor (00-0c-29)");
}

TEST_F(VendorRules, ThreeEmptyBoxesAreNotLookedUp) {
    boxes.Fill(3, {"44", "55", "66"});
    boxes.MoveTo(3);
    EXPECT_THAT(boxes.diary, IsEmpty());
    EXPECT_THAT(seat.diary, IsEmpty());
}

TEST_F(VendorRules, ShownVendorIsNotLookedUpAgainUntilThePrefixChanges) {
    boxes.focus = 0;
    boxes.Type("A1B2C3");
    const Octets octets = LastThree();
    boxes.diary.clear();
    machine.clock->seed = 77;
    for (const int box : {4, 5, 3, 4, kVendorListBox, 3}) boxes.MoveTo(box);
    EXPECT_THAT(boxes.diary, IsEmpty());
    EXPECT_EQ(LastThree(), octets);
    EXPECT_EQ(seat.diary.size(), 1U);

    boxes.MoveTo(2);
    boxes.Click(2);
    boxes.Type("C4");
    EXPECT_EQ(boxes.vendorText, "Unknown Vendor (A1-B2-C4)");
    EXPECT_EQ(LastThree(), octets);
}

TEST_F(VendorRules, UnknownVendorShownIsNotLookedUpAgain) {
    boxes.focus = 0;
    boxes.Type("123456");
    EXPECT_EQ(boxes.vendorText, "Unknown Vendor (12-34-56)");
    boxes.MoveTo(4);
    boxes.MoveTo(3);
    EXPECT_EQ(seat.diary.size(), 1U);
}

TEST_F(VendorRules, VendorListLooksUpWhenItGetsTheFocus) {
    boxes.Fill(0, {"A1", "B2", "C3"});
    boxes.MoveTo(kVendorListBox);
    EXPECT_EQ(boxes.vendorText, "Acme   Address: ");
    EXPECT_EQ(LastThree(), RandomOctets(5));
}

TEST_F(VendorRules, WithoutAListEveryPrefixIsUnknown) {
    Vendors() = VendorTable::Empty();
    boxes.Fill(0, {"00", "00", "00"});
    boxes.vendor.LookUpTypedVendor();
    EXPECT_EQ(boxes.vendorText, "Unknown Vendor (00-00-00)");
    EXPECT_EQ(LastThree(), (Octets{"", "", ""}));
}

TEST_F(VendorRules, PrefixChangedByTheEventsEndsTheSearch) {
    seat.onEvents = [&] { boxes.SetText(0, ""); };
    boxes.Fill(0, {"00", "0C", "29", "44", "55", "66"});
    boxes.vendor.LookUpTypedVendor();
    EXPECT_EQ(boxes.vendorText, "");
    EXPECT_EQ(boxes.Row(), (Octets{"", "0C", "29", "44", "55", "66"}));
}

TEST_F(VendorRules, ChoiceMadeByTheEventsStays) {
    seat.onEvents = [&] { boxes.vendor.Choose(3); };
    boxes.Fill(0, {"00", "0C", "29"});
    boxes.vendor.LookUpTypedVendor();
    EXPECT_EQ(boxes.vendorText, "Acme   Address: ");
    EXPECT_THAT(boxes.chosen, ElementsAre(3U));
    EXPECT_EQ(FirstThree(), (Octets{"A1", "B2", "C3"}));
}

TEST_F(VendorRules, FocusReportedDuringASearchBeginsNoOther) {
    seat.onEvents = [&] { boxes.entry.FocusGained(3); };
    boxes.Fill(0, {"00", "0C", "29"});
    boxes.vendor.LookUpTypedVendor();
    EXPECT_EQ(boxes.vendorText, "VMware   Address: Palo Alto");
    EXPECT_THAT(boxes.chosen, ElementsAre(1U));
}

// Choosing.

TEST_F(VendorRules, ChoiceFillsPrefixAndRandomOctets) {
    boxes.Fill(0, {"11", "22", "33", "44", "55", "66"});
    boxes.vendorText = "VMware   Address: Palo Alto";
    boxes.vendor.Choose(1);
    EXPECT_EQ(FirstThree(), (Octets{"00", "0C", "29"}));
    EXPECT_EQ(LastThree(), RandomOctets(5));
    EXPECT_EQ(boxes.vendorText, "VMware   Address: Palo Alto") << "not cleared by the boxes it fills";
    EXPECT_TRUE(boxes.canChange);
    EXPECT_THAT(seat.diary, IsEmpty());
}

TEST_F(VendorRules, ChoiceShowsItsVendorInThePlaceOfTheSearchedText) {
    boxes.vendorText = "acm";
    boxes.vendor.Choose(3);
    EXPECT_EQ(boxes.vendorText, "Acme   Address: ");
    EXPECT_THAT(boxes.chosen, ElementsAre(3U));
}

TEST_F(VendorRules, SecondOfEqualPrefixesCanBeChosen) {
    boxes.vendor.Choose(2);
    EXPECT_EQ(boxes.vendorText, "shadowed   Address: ");
    EXPECT_EQ(FirstThree(), (Octets{"00", "0C", "29"}));
}

TEST_F(VendorRules, PrefixTypedAfterAChoiceClearsTheVendorAgain) {
    boxes.vendor.Choose(3);
    boxes.MoveTo(0);
    boxes.Click(0);
    boxes.Type("7");
    EXPECT_EQ(boxes.vendorText, "");
}

TEST_F(VendorRules, EachChoiceIsSeededByTheClock) {
    boxes.vendor.Choose(1);
    const Octets first = LastThree();
    boxes.vendor.Choose(1);
    EXPECT_EQ(LastThree(), first);
    machine.clock->seed = 6;
    boxes.vendor.Choose(1);
    EXPECT_EQ(LastThree(), RandomOctets(6));
    EXPECT_NE(LastThree(), first);
}

TEST_F(VendorRules, RandomOctetsAreTwoDecimalDigits) {
    for (std::uint32_t seed = 0; seed < 300; ++seed) {
        machine.clock->seed = seed;
        boxes.vendor.Choose(0);
        for (const std::string& octet : LastThree()) {
            ASSERT_EQ(octet.size(), 2U);
            ASSERT_EQ(octet.find_first_not_of("0123456789"), std::string::npos) << octet;
        }
    }
}

TEST_F(VendorRules, PrefixWithGroupAndLocalBitsIsTakenAsItIs) {
    boxes.vendor.Choose(0);
    EXPECT_EQ(FirstThree(), (Octets{"FF", "FF", "FF"}));
}

TEST_F(VendorRules, EntryThatDoesNotExistChangesNothing) {
    boxes.vendorText = "typed";
    boxes.vendor.Choose(4);
    boxes.vendor.Choose(SIZE_MAX);
    Vendors() = VendorTable::Empty();
    boxes.vendor.Choose(0);
    EXPECT_THAT(boxes.diary, IsEmpty());
    EXPECT_THAT(seat.diary, IsEmpty());
}

// A random address.

TEST_F(VendorRules, RandomAddressTakesVendorAndOctetsFromOneSeries) {
    UniformRandom random(5);
    const std::size_t entry = DrawVendorIndex(random, 3);
    Octets octets(3);
    for (std::string& octet : octets) octet = CutToOctetBox(RandomOctetText(random));
    const std::string prefix(Vendors().Prefix(entry));

    boxes.vendorText = "another";
    boxes.vendor.RandomAddress();
    EXPECT_EQ(FirstThree(), (Octets{prefix.substr(0, 2), prefix.substr(2, 2), prefix.substr(4, 2)}));
    EXPECT_EQ(boxes.vendorText, VendorText(Vendors(), entry));
    EXPECT_EQ(LastThree(), octets);
    EXPECT_TRUE(boxes.canChange);
    EXPECT_THAT(seat.boxes, IsEmpty());
}

TEST_F(VendorRules, RandomAddressShowsTheVendorBetweenPrefixAndOctets) {
    boxes.vendor.RandomAddress();
    std::vector<std::string> order;
    for (const std::string& line : boxes.diary) {
        if (line.rfind("text ", 0) == 0) order.push_back(line.substr(0, 6));
        if (line.rfind("vendor ", 0) == 0 && line != "vendor ") order.emplace_back("vendor");
    }
    EXPECT_THAT(order, ElementsAre("text 0", "text 1", "text 2", "vendor", "text 3", "text 4", "text 5"));
}

TEST_F(VendorRules, EveryRecordComesOut) {
    std::vector<int> drawn(4);
    for (std::uint32_t seed = 0; seed < 60; ++seed) {
        machine.clock->seed = seed;
        boxes.vendor.RandomAddress();
        for (std::size_t i = 0; i < 4; ++i) drawn[i] += boxes.vendorText == VendorText(Vendors(), i) ? 1 : 0;
    }
    EXPECT_THAT(drawn, testing::Each(testing::Gt(0)));
}

TEST_F(VendorRules, RandomAddressTwiceWithTheSameSeedIsTheSame) {
    boxes.vendor.RandomAddress();
    const Octets first = boxes.Row();
    boxes.vendor.RandomAddress();
    EXPECT_EQ(boxes.Row(), first);
}

TEST_F(VendorRules, RandomAddressOfOneRecordIsThatOne) {
    LoadVendors({{"123456", "Sole", ""}});
    boxes.vendor.RandomAddress();
    EXPECT_EQ(FirstThree(), (Octets{"12", "34", "56"}));
}

TEST_F(VendorRules, RandomAddressWithoutAListSaysWhatIsMissing) {
    Vendors() = VendorTable::Empty();
    boxes.vendor.RandomAddress();
    ASSERT_EQ(seat.boxes.size(), 1U);
    EXPECT_EQ(seat.boxes[0].title, "Vendor List Is Empty");
    EXPECT_EQ(seat.boxes[0].icon, BoxIcon::kExclamation);
    EXPECT_EQ(seat.boxes[0].buttons, BoxButtons::kOk);
    EXPECT_FALSE(seat.boxes[0].unsilenced);
    EXPECT_THAT(seat.boxes[0].text, HasSubstr("no vendor list was loaded"));
    EXPECT_THAT(seat.boxes[0].text, HasSubstr("Put back the file VendorNumbers.log"));
    EXPECT_THAT(seat.boxes[0].text, HasSubstr("start it again"));
    EXPECT_THAT(boxes.diary, IsEmpty());
}

// Filling the list under the splash window.

void LoadRecords(std::size_t count) {
    LoadVendors(std::vector<test::VendorLine>(count, {"00000C", "n", "a"}));
}

std::vector<std::string> Steps(const std::vector<std::string>& percentages) {
    std::vector<std::string> steps = {"status Loading Vendor List ... "};
    for (const std::string& percentage : percentages) {
        steps.push_back("splash-progress " + percentage + "% Done");
        steps.emplace_back("events");
    }
    return steps;
}

TEST_F(VendorRules, FillingReportsTheStartAndEvery500thEntry) {
    LoadRecords(2);
    FillVendorBox();
    EXPECT_EQ(seat.diary, Steps({"0", "0"}));
    seat.diary.clear();
    LoadRecords(500);
    FillVendorBox();
    EXPECT_EQ(seat.diary, Steps({"0", "0"}));
    seat.diary.clear();
    LoadRecords(501);
    FillVendorBox();
    EXPECT_EQ(seat.diary, Steps({"0", "0", "100"}));
    seat.diary.clear();
    LoadRecords(2003);
    FillVendorBox();
    EXPECT_EQ(seat.diary, Steps({"0", "0", "25", "50", "75", "100"}));
}

TEST_F(VendorRules, PercentagesAreRoundedAndHalvesGoToTheEvenOne) {
    LoadRecords(2001 + 2000);  // 500 of 4000 are 12.5 %, 1500 are 37.5 %, 2500 are 62.5 %, 3500 are 87.5 %.
    FillVendorBox();
    EXPECT_EQ(seat.diary, Steps({"0", "0", "12", "25", "38", "50", "62", "75", "88", "100"}));
    seat.diary.clear();
    LoadRecords(1501);  // Thirds.
    FillVendorBox();
    EXPECT_EQ(seat.diary, Steps({"0", "0", "33", "67", "100"}));
}

TEST_F(VendorRules, ListOfOneRecordIsError6AfterTheFirstReport) {
    LoadRecords(1);
    int number = 0;
    std::string words;
    try {
        FillVendorBox();
    } catch (const RunTimeError& error) {
        number = error.Number();
        words = error.what();
    }
    EXPECT_EQ(number, 6);
    EXPECT_THAT(words, HasSubstr("VendorNumbers.log"));
    EXPECT_THAT(words, HasSubstr("one record"));
    EXPECT_THAT(words, HasSubstr("Put back the file"));
    EXPECT_EQ(seat.diary, Steps({"0"}));
}

TEST_F(VendorRules, FillingWithoutAListReportsTheStartOnly) {
    Vendors() = VendorTable::Empty();
    FillVendorBox();
    EXPECT_EQ(seat.diary, Steps({"0"}));
}

}  // namespace
}  // namespace corvane
