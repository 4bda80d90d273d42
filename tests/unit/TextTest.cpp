#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/Text.h"

namespace corvane {
namespace {

using namespace std::string_literals;
using testing::ElementsAre;

TEST(LetterCase, OnlyAsciiLettersChange) {
    EXPECT_EQ(ToUpper("0012ab-{az}\u00FC"), "0012AB-{AZ}\u00FC");
    EXPECT_EQ(ToLower("MS_BridgeMP [AZ]\u00DC"), "ms_bridgemp [az]\u00DC");
}

TEST(LetterCase, NeighboursOfTheLettersStay) {
    EXPECT_EQ(ToUpper("@[`{"), "@[`{");
    EXPECT_EQ(ToLower("@[`{"), "@[`{");
}

TEST(LetterCase, NulsAndEmptyTextsStay) {
    EXPECT_EQ(ToUpper("a\0b"s), "A\0B"s);
    EXPECT_EQ(ToLower(""), "");
}

TEST(Trim, TakesBlanksAtBothEndsOnly) {
    EXPECT_EQ(Trim("  a b  "), "a b");
    EXPECT_EQ(Trim("a"), "a");
    EXPECT_EQ(Trim("\ta\n"), "\ta\n");
}

TEST(Trim, ATextOfBlanksBecomesEmpty) {
    EXPECT_EQ(Trim("   "), "");
    EXPECT_EQ(Trim(""), "");
}

TEST(Without, DropsEveryOccurrence) {
    EXPECT_EQ(Without("00-0C-29", '-'), "000C29");
    EXPECT_EQ(Without("\0a\0\0b\0"s, '\0'), "ab");
    EXPECT_EQ(Without("---", '-'), "");
}

TEST(Split, GivesEmptyPiecesToo) {
    EXPECT_THAT(Split("a,,b,", ','), ElementsAre("a", "", "b", ""));
    EXPECT_THAT(Split("a\0b\0"s, '\0'), ElementsAre("a", "b", ""));
}

TEST(Split, ATextWithoutSeparatorIsOnePiece) {
    EXPECT_THAT(Split("abc", ','), ElementsAre("abc"));
    EXPECT_THAT(Split("", ','), ElementsAre(""));
}

TEST(Join, PutsTheSeparatorBetweenThePieces) {
    EXPECT_EQ(Join({"a", "", "b"}, ", "), "a, , b");
    EXPECT_EQ(Join({"a"}, ", "), "a");
    EXPECT_EQ(Join({}, ", "), "");
}

TEST(NumericValue, ReadsTheNumberAtTheStart) {
    const std::vector<std::pair<std::string, double>> table = {
        {"20", 20},    {"  20", 20},   {"2 0", 20},   {"+5", 5},         {"-5", -5},
        {"1.5x", 1.5}, {".5", 0.5},    {"-.5", -0.5}, {"10 metric", 10}, {"1e3", 1000},
        {"1e", 1},     {"1.2.3", 1.2}, {"007", 7},
    };
    for (const auto& [text, number] : table) EXPECT_DOUBLE_EQ(NumericValue(text), number) << text;
}

TEST(NumericValue, IsZeroWithoutANumber) {
    for (const char* text :
         {"", " ", "metric", "-", "+", ".", "inf", "-inf", "nan", "+-5", "--5", "x1", "1e999"})
        EXPECT_EQ(NumericValue(text), 0) << text;
}

TEST(NumericValue, StopsAtANul) {
    EXPECT_EQ(NumericValue("12\0"
                           "3"s),
              12);
}

TEST(ShortestDecimal, DropsZerosBehindThePoint) {
    EXPECT_EQ(ShortestDecimal(100, 2), "100");
    EXPECT_EQ(ShortestDecimal(2.5, 2), "2.5");
    EXPECT_EQ(ShortestDecimal(2.25, 2), "2.25");
    EXPECT_EQ(ShortestDecimal(0, 2), "0");
}

TEST(ShortestDecimal, KeepsZerosBeforeThePoint) {
    EXPECT_EQ(ShortestDecimal(1000, 0), "1000");
    EXPECT_EQ(ShortestDecimal(10, 2), "10");
}

TEST(ShortestDecimal, RoundsToTheNearest) {
    EXPECT_EQ(ShortestDecimal(1.234, 2), "1.23");
    EXPECT_EQ(ShortestDecimal(1.236, 2), "1.24");
    EXPECT_EQ(ShortestDecimal(999.999, 2), "1000");
    EXPECT_EQ(ShortestDecimal(-1.236, 2), "-1.24");
}

TEST(ShortestDecimal, ATieGoesToTheEvenDigit) {
    EXPECT_EQ(ShortestDecimal(1.125, 2), "1.12");
    EXPECT_EQ(ShortestDecimal(1.375, 2), "1.38");
}

TEST(ShortestDecimal, ANegativeThatRoundsToZeroHasNoSign) { EXPECT_EQ(ShortestDecimal(-0.001, 2), "0"); }

TEST(ShortestDecimal, HasNoExponentBelow1e15) {
    EXPECT_EQ(ShortestDecimal(999999999999999.0, 0), "999999999999999");
    EXPECT_EQ(ShortestDecimal(100000000000000.0, 9), "100000000000000");
    EXPECT_EQ(ShortestDecimal(0.000000001, 9), "0.000000001");
}

TEST(ByteToHex2, IsUpperCaseWithALeadingZeroBelow16) {
    EXPECT_EQ(ByteToHex2(0), "00");
    EXPECT_EQ(ByteToHex2(10), "0A");
    EXPECT_EQ(ByteToHex2(15), "0F");
    EXPECT_EQ(ByteToHex2(16), "10");
    EXPECT_EQ(ByteToHex2(255), "FF");
}

TEST(DottedQuad, TakesTheBytesInMemoryOrder) {
    const std::array<std::uint8_t, 4> address{192, 168, 0, 255};
    EXPECT_EQ(DottedQuad(address.data()), "192.168.0.255");
}

}  // namespace
}  // namespace corvane
