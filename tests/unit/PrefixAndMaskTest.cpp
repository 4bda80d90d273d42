#include <array>
#include <cstdint>
#include <utility>

#include "tests/unit/AddressEditingSupport.h"

/// Mask and prefix length of the panel `fAddIP` follow each other.
namespace corvane {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

class PrefixAndMaskTest : public AddressEditingTest {
 protected:
    IpPanel panel{diary, list};
};

// ---- the prefix length leads

TEST_F(PrefixAndMaskTest, TypedPrefixGivesItsMask) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"0", "0.0.0.0"},          {"1", "128.0.0.0"},        {"2", "192.0.0.0"},
        {"3", "224.0.0.0"},        {"4", "240.0.0.0"},        {"5", "248.0.0.0"},
        {"6", "252.0.0.0"},        {"7", "254.0.0.0"},        {"8", "255.0.0.0"},
        {"9", "255.128.0.0"},      {"15", "255.254.0.0"},     {"16", "255.255.0.0"},
        {"20", "255.255.240.0"},   {"24", "255.255.255.0"},   {"25", "255.255.255.128"},
        {"31", "255.255.255.254"}, {"32", "255.255.255.255"},
    };
    for (const auto& [prefix, mask] : cases) {
        panel.TypeCidr(prefix);
        EXPECT_EQ(panel.mask.entry.Text(), mask) << prefix;
        EXPECT_EQ(panel.cidr, prefix);
    }
    EXPECT_EQ(panel.beeps, 0);
    EXPECT_EQ(panel.mask.beeps, 0);
}

TEST_F(PrefixAndMaskTest, MaskThatFollowsDoesNotChangeThePrefixInReturn) {
    panel.TypeCidr("020");
    EXPECT_EQ(panel.cidr, "020");
    EXPECT_EQ(panel.mask.entry.Text(), "255.255.240.0");
    EXPECT_THAT(panel.cidrSet, IsEmpty());
}

TEST_F(PrefixAndMaskTest, MaskIsEmptiedAndThenFilledFromTheLeft) {
    std::vector<std::string> states;
    panel.mask.entry.SetText("1.2.3.4");
    panel.mask.listener.change = [&] { states.push_back(panel.mask.entry.Text()); };
    panel.TypeCidr("9");
    EXPECT_THAT(states, ElementsAre(".2.3.4", "..3.4", "...4", "", "255...", "255.128..", "255.128.0.",
                                    "255.128.0.0"));
}

TEST_F(PrefixAndMaskTest, PrefixOf33BeepsIsEmptiedAndAsAnEmptyTextMakesTheMaskZero) {
    panel.TypeCidr("33");
    EXPECT_EQ(panel.cidr, "");
    EXPECT_EQ(panel.beeps, 1);
    EXPECT_EQ(panel.mask.entry.Text(), "0.0.0.0");
    EXPECT_THAT(panel.cidrSet, ElementsAre(""));
}

TEST_F(PrefixAndMaskTest, NumberOutsideTheRangeBeepsAndIsEmptied) {
    for (const std::string prefix : {"33", "40", "99", "-1", "-7"}) {
        panel.beeps = 0;
        panel.TypeCidr(prefix);
        EXPECT_EQ(panel.cidr, "") << prefix;
        EXPECT_EQ(panel.beeps, 1) << prefix;
        EXPECT_EQ(panel.mask.entry.Text(), "0.0.0.0") << prefix;
    }
}

TEST_F(PrefixAndMaskTest, NumberBetweenMinusOneAndZeroAndOneBelow33Count) {
    panel.TypeCidr("-.5");
    EXPECT_EQ(panel.mask.entry.Text(), "0.0.0.0");
    EXPECT_EQ(panel.cidr, "-.5");
    panel.TypeCidr("32.9");
    EXPECT_EQ(panel.mask.entry.Text(), "255.255.255.255");
    EXPECT_EQ(panel.cidr, "32.9");
    EXPECT_EQ(panel.beeps, 0);
}

TEST_F(PrefixAndMaskTest, TextThatIsNoNumberCountsAsZeroAndStays) {
    for (const std::string text : {"abc", "x24", "/", " "}) {
        panel.TypeCidr("20");
        panel.TypeCidr(text);
        EXPECT_EQ(panel.mask.entry.Text(), "0.0.0.0") << text;
        EXPECT_EQ(panel.cidr, text);
    }
    EXPECT_EQ(panel.beeps, 0);
}

TEST_F(PrefixAndMaskTest, PrefixThatTheUserEmptiesMakesTheMaskZeroWithoutABeep) {
    panel.TypeCidr("20");
    panel.DeleteCidr();
    EXPECT_EQ(panel.mask.entry.Text(), "0.0.0.0");
    EXPECT_EQ(panel.beeps, 0);
}

// ---- the mask leads

TEST_F(PrefixAndMaskTest, TypedMaskGivesItsPrefix) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"0.0.0.0", "0"},          {"128.0.0.0", "1"},        {"192.0.0.0", "2"},
        {"224.0.0.0", "3"},        {"240.0.0.0", "4"},        {"248.0.0.0", "5"},
        {"252.0.0.0", "6"},        {"254.0.0.0", "7"},        {"255.0.0.0", "8"},
        {"255.255.240.0", "20"},   {"255.255.255.0", "24"},   {"255.255.255.128", "25"},
        {"255.255.255.254", "31"}, {"255.255.255.255", "32"},
    };
    for (const auto& [mask, prefix] : cases) {
        panel.TypeMask(mask);
        EXPECT_EQ(panel.cidr, prefix) << mask;
        EXPECT_EQ(panel.mask.entry.Text(), mask);
    }
    EXPECT_EQ(panel.beeps, 0);
}

TEST_F(PrefixAndMaskTest, PrefixFollowsTheMaskOctetByOctet) {
    panel.TypeMask("255.255.255.128");
    // A box that is empty counts as 0; 2, 25, 1 and 12 begin no mask.
    EXPECT_THAT(panel.cidrSet, ElementsAre("8", "16", "24", "25"));
}

TEST_F(PrefixAndMaskTest, PrefixThatFollowsDoesNotChangeTheMaskInReturn) {
    panel.TypeMask("255.0.255.0");
    EXPECT_EQ(panel.mask.entry.Text(), "255.0.255.0");
    EXPECT_EQ(panel.mask.changeEvents, 8) << "more than the eight digits that were typed";
}

TEST_F(PrefixAndMaskTest, OctetsAfterTheFirstOneBelow255AreNotLookedAt) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"255.0.255.0", "8"}, {"0.255.255.255", "0"}, {"255.255.128.77", "17"}};
    for (const auto& [mask, prefix] : cases) {
        panel.TypeMask(mask);
        EXPECT_EQ(panel.cidr, prefix) << mask;
    }
}

TEST_F(PrefixAndMaskTest, OctetThatIsNoStartOfAMaskLeavesThePrefixAsItWas) {
    panel.TypeMask("255.255.255.0");
    panel.cidrSet.clear();
    panel.TypeMask("255.255.255.100");
    EXPECT_EQ(panel.cidr, "24");
    panel.cidr = "as it was";
    for (const std::uint8_t octet : std::array<std::uint8_t, 7>{100, 1, 64, 127, 129, 193, 253}) {
        panel.mask.entry.SetNumber(3, octet);
        EXPECT_EQ(panel.cidr, "as it was") << static_cast<int>(octet);
    }
}

TEST_F(PrefixAndMaskTest, MaskThatTheUserEmptiesGivesThePrefixZero) {
    panel.TypeMask("255");
    panel.mask.Drop(0, "");
    EXPECT_EQ(panel.cidr, "0");
    EXPECT_EQ(panel.mask.entry.Text(), "");
}

// ---- who leads

TEST_F(PrefixAndMaskTest, BeforeEitherHadTheFocusThePrefixLeads) {
    panel.mask.entry.SetText("255.0.0.0");
    EXPECT_EQ(panel.cidr, "");
    panel.SetCidr("20");
    EXPECT_EQ(panel.mask.entry.Text(), "255.255.240.0");
}

TEST_F(PrefixAndMaskTest, MaskLeadsFromItsFocusOn) {
    panel.TypeCidr("20");
    panel.editing.MaskFocused();
    panel.mask.entry.SetText("255.0.0.0");
    EXPECT_EQ(panel.cidr, "8");
    panel.SetCidr("25");
    EXPECT_EQ(panel.mask.entry.Text(), "255.0.0.0");
}

TEST_F(PrefixAndMaskTest, PrefixLeadsFromItsFocusOn) {
    panel.TypeMask("255.0.0.0");
    panel.TypeCidr("20");
    EXPECT_EQ(panel.mask.entry.Text(), "255.255.240.0");
    panel.mask.entry.SetText("255.255.255.0");
    EXPECT_EQ(panel.cidr, "20");
}

TEST_F(PrefixAndMaskTest, FocusAloneChangesNeither) {
    panel.mask.entry.SetText("255.0.0.0");
    panel.editing.MaskFocused();
    panel.editing.CidrFocused();
    EXPECT_THAT(panel.Texts(), ElementsAre("", "255.0.0.0", ""));
}

TEST_F(PrefixAndMaskTest, PanelThatIsOpenedAnewLetsTheSameOneLead) {
    panel.editing.MaskFocused();
    panel.editing.Open();
    panel.mask.entry.SetText("255.0.0.0");
    EXPECT_EQ(panel.cidr, "8");
}

TEST_F(PrefixAndMaskTest, EmptyingTheBoxesWhileTheMaskLeadsPutsNoPrefixBack) {
    panel.TypeMask("255.255.255.0");
    panel.cidrSet.clear();
    panel.editing.Open();
    EXPECT_THAT(panel.Texts(), ElementsAre("", "", ""));
    EXPECT_THAT(panel.cidrSet, ElementsAre(""));
}

TEST_F(PrefixAndMaskTest, EmptyingTheBoxesWhileThePrefixLeadsMakesNoMaskOnTheWay) {
    panel.TypeCidr("20");
    panel.mask.Forget();
    panel.editing.Open();
    EXPECT_THAT(panel.Texts(), ElementsAre("", "", ""));
    EXPECT_EQ(panel.mask.changeEvents, 4) << "more than the four boxes that were emptied";
}

TEST_F(PrefixAndMaskTest, AfterTheBoxesWereEmptiedTheTwoFollowEachOtherAgain) {
    panel.TypeMask("255.255.255.0");
    panel.SetAddressAndMask("10.0.0.7", "255.255.255.0");
    panel.editing.Add(kPreset);
    panel.TypeMask("255.0.0.0");
    EXPECT_EQ(panel.cidr, "8");
    panel.TypeCidr("20");
    EXPECT_EQ(panel.mask.entry.Text(), "255.255.240.0");
}

}  // namespace
}  // namespace corvane
