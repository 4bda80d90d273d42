#include <cmath>
#include <limits>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "base/RunTimeError.h"
#include "vendors/RandomMac.h"

namespace corvane {
namespace {

/// A table of records with the numbers from 0 as prefixes.
VendorTable NumberedTable(std::size_t size) {
    std::string bytes;
    for (int i = 0; i < 4; ++i) bytes += static_cast<char>((size >> (8 * i)) & 0xFF);
    for (std::size_t i = 0; i < size; ++i) {
        char prefix[17];
        std::snprintf(prefix, sizeof prefix, "%06zX", i);
        bytes += prefix + std::string(4, '\0');
    }
    return VendorTable::Parse(bytes, "list");
}

int ErrorNumber(const auto& action) {
    try {
        action();
    } catch (const RunTimeError& error) {
        return error.Number();
    }
    return 0;
}

/// What the next draw of the rule "times 10000, rounded, ties to even" gives.
std::size_t NextDraw(UniformRandom& random) {
    return static_cast<std::size_t>(std::lrint(random.Next() * 10000));
}

TEST(UniformRandom, IsWithinZeroAndOneAndSpread) {
    UniformRandom random(1);
    int low = 0;
    for (int i = 0; i < 100000; ++i) {
        const double value = random.Next();
        ASSERT_GE(value, 0.0);
        ASSERT_LT(value, 1.0);
        if (value < 0.25) ++low;
    }
    EXPECT_NEAR(low, 25000, 1000);
}

TEST(UniformRandom, SameSeedSameNumbersOtherSeedOthers) {
    UniformRandom one(42);
    UniformRandom same(42);
    UniformRandom other(43);
    const double value = one.Next();
    EXPECT_EQ(value, same.Next());
    EXPECT_NE(value, other.Next());
}

TEST(DrawVendorIndex, TakesTheFirstDrawThatIsNotAboveTheUpperBound) {
    for (std::uint32_t seed = 0; seed < 50; ++seed) {
        UniformRandom random(seed);
        UniformRandom expected(seed);
        std::size_t draw = NextDraw(expected);
        while (draw > 99) draw = NextDraw(expected);
        EXPECT_EQ(DrawVendorIndex(random, 99), draw) << "seed " << seed;
        EXPECT_EQ(random.Next(), expected.Next()) << "as many numbers drawn, seed " << seed;
    }
}

TEST(DrawVendorIndex, EveryIndexOfASmallTableComesOut) {
    UniformRandom random(7);
    std::set<std::size_t> drawn;
    for (int i = 0; i < 200; ++i) drawn.insert(DrawVendorIndex(random, 4));
    EXPECT_EQ(drawn, (std::set<std::size_t>{0, 1, 2, 3, 4}));
}

TEST(DrawVendorIndex, TableOfOneRecordGivesItsOnlyIndex) {
    UniformRandom random(7);
    EXPECT_EQ(DrawVendorIndex(random, 0), 0U);
}

TEST(DrawVendorIndex, OfALargeTableOnlyTheFirst10001AreDrawn) {
    UniformRandom random(3);
    std::size_t smallest = 10000;
    std::size_t largest = 0;
    for (int i = 0; i < 500000; ++i) {
        const std::size_t index = DrawVendorIndex(random, 32000);
        smallest = std::min(smallest, index);
        largest = std::max(largest, index);
    }
    EXPECT_EQ(smallest, 0U);
    EXPECT_EQ(largest, 10000U);
}

TEST(DrawVendorIndex, EmptyTableIsError9InsteadOfAnEndlessLoop) {
    UniformRandom random(7);
    const std::size_t upperBoundOfNothing = std::size_t{0} - 1;
    EXPECT_EQ(ErrorNumber([&] { DrawVendorIndex(random, upperBoundOfNothing); }), 9);
}

TEST(RandomOctetText, IsTheDrawAnd255InDecimalWithALeadingZeroBelowTen) {
    bool padded = false;
    bool three = false;
    UniformRandom random(11);
    UniformRandom expected(11);
    for (int i = 0; i < 20000; ++i) {
        const std::size_t value = NextDraw(expected) & 255;
        const std::string text = RandomOctetText(random);
        std::string decimal = std::to_string(value);
        if (value < 10) decimal.insert(decimal.begin(), '0');
        ASSERT_EQ(text, decimal);
        padded = padded || value == 7;
        three = three || value == 173;
    }
    EXPECT_TRUE(padded && three) << "the draws must have held the values that matter";
}

TEST(RandomOctetText, TheBoxKeepsTheFirstTwoDigits) {
    EXPECT_EQ(CutToOctetBox("173"), "17");
    EXPECT_EQ(CutToOctetBox("42"), "42");
    EXPECT_EQ(CutToOctetBox("07"), "07");
    EXPECT_EQ(CutToOctetBox("7"), "7");
    EXPECT_EQ(CutToOctetBox(""), "");
}

TEST(RandomPresetMac, IsAPrefixOfTheTableAndSixUpperCaseDigits) {
    const VendorTable table = NumberedTable(300);
    UniformRandom random(5);
    for (int i = 0; i < 1000; ++i) {
        const std::string address = RandomPresetMac(random, table);
        ASSERT_EQ(address.size(), 12U);
        ASSERT_EQ(address.find_first_not_of("0123456789ABCDEF"), std::string::npos) << address;
        ASSERT_NE(table.FindVendor(address.substr(0, 6)), std::nullopt) << address;
    }
}

TEST(RandomPresetMac, EveryVendorAndEveryByteComesOut) {
    const VendorTable table = NumberedTable(20);
    UniformRandom random(5);
    std::set<std::string> prefixes;
    std::set<std::string> bytes[3];
    for (int i = 0; i < 5000; ++i) {
        const std::string address = RandomPresetMac(random, table);
        prefixes.insert(address.substr(0, 6));
        for (std::size_t k = 0; k < 3; ++k) bytes[k].insert(address.substr(6 + 2 * k, 2));
    }
    EXPECT_EQ(prefixes.size(), 20U);
    for (const auto& each : bytes) EXPECT_EQ(each.size(), 256U);
}

TEST(RandomPresetMac, VendorsBeyondThe10001stAreDrawnToo) {
    const VendorTable table = NumberedTable(32000);
    UniformRandom random(9);
    std::size_t late = 0;
    for (int i = 0; i < 1000; ++i) {
        if (*table.FindVendor(RandomPresetMac(random, table).substr(0, 6)) > 10000) ++late;
    }
    EXPECT_GT(late, 600U);
    EXPECT_LT(late, 780U);
}

TEST(RandomPresetMac, PrefixKeepsTheCaseOfTheFile) {
    const std::string bytes = std::string("\1\0\0\0", 4) + "00aabb" + std::string(4, '\0');
    UniformRandom random(5);
    EXPECT_EQ(RandomPresetMac(random, VendorTable::Parse(bytes, "list")).substr(0, 6), "00aabb");
}

TEST(RandomPresetMac, SameSeedGivesTheSameAddress) {
    const VendorTable table = NumberedTable(300);
    UniformRandom one(77);
    UniformRandom two(77);
    EXPECT_EQ(RandomPresetMac(one, table), RandomPresetMac(two, table));
}

TEST(RandomPresetMac, WithoutALoadedListIsError9) {
    UniformRandom random(5);
    EXPECT_EQ(ErrorNumber([&] { RandomPresetMac(random, VendorTable::Empty()); }), 9);
}

}  // namespace
}  // namespace corvane
