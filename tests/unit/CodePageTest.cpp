#include <string>

#include <gtest/gtest.h>

#include "base/Text.h"
#include "platform/CodePage.h"

namespace corvane {
namespace {

std::string EveryByte() {
    std::string bytes;
    for (int i = 0; i < 256; ++i) bytes += static_cast<char>(i);
    return bytes;
}

TEST(CodePage, EveryByteSurvivesTheWayToUtf8AndBack) {
    EXPECT_EQ(ToCodePage(FromCodePage(EveryByte())), EveryByte());
}

TEST(CodePage, AsciiIsTheSameOnBothSides) {
    const std::string text = "\\DEVICE\\TCPIP_{4D36E972-E325-11CE-BFC1-08002BE10318} ~";
    EXPECT_EQ(ToCodePage(text), text);
    EXPECT_EQ(FromCodePage(text), text);
}

TEST(CodePage, EmptyTextStaysEmpty) {
    EXPECT_EQ(ToCodePage(""), "");
    EXPECT_EQ(FromCodePage(""), "");
}

TEST(CodePage, NulPassesThrough) {
    const std::string text("a\0b\0\0c", 6);
    EXPECT_EQ(ToCodePage(text), text);
    EXPECT_EQ(FromCodePage(text), text);
}

TEST(CodePage, UpperHalfIsLatin1AboveA0) {
    EXPECT_EQ(ToCodePage("\u00A0\u00C4\u00DF\u00FC\u00FF"), "\xA0\xC4\xDF\xFC\xFF");
    EXPECT_EQ(FromCodePage("\xA0\xC4\xDF\xFC\xFF"), "\u00A0\u00C4\u00DF\u00FC\u00FF");
}

TEST(CodePage, TwentySevenBytesBelowA0AreTypographicSigns) {
    const std::string utf8 =
        "\u20AC\u201A\u0192\u201E\u2026\u2020\u2021\u02C6\u2030\u0160\u2039\u0152\u017D"
        "\u2018\u2019\u201C\u201D\u2022\u2013\u2014\u02DC\u2122\u0161\u203A\u0153\u017E\u0178";
    const std::string bytes =
        "\x80\x82\x83\x84\x85\x86\x87\x88\x89\x8A\x8B\x8C\x8E"
        "\x91\x92\x93\x94\x95\x96\x97\x98\x99\x9A\x9B\x9C\x9E\x9F";
    EXPECT_EQ(ToCodePage(utf8), bytes);
    EXPECT_EQ(FromCodePage(bytes), utf8);
}

TEST(CodePage, FiveOpenBytesAreC1Controls) {
    const std::string bytes = "\x81\x8D\x8F\x90\x9D";
    EXPECT_EQ(FromCodePage(bytes), "\xC2\x81\xC2\x8D\xC2\x8F\xC2\x90\xC2\x9D");
    EXPECT_EQ(ToCodePage("\xC2\x81\xC2\x8D\xC2\x8F\xC2\x90\xC2\x9D"), bytes);
}

TEST(CodePage, OtherC1ControlsAreNotInIt) { EXPECT_EQ(ToCodePage("\xC2\x80\xC2\x9F"), "??"); }

TEST(CodePage, CharactersOutsideBecomeOneQuestionMarkEach) {
    EXPECT_EQ(ToCodePage("a\u0142b\u4E2Dc\U0001F600d"), "a?b?c?d");
}

TEST(CodePage, EachInvalidByteBecomesAQuestionMark) {
    EXPECT_EQ(ToCodePage("a\x80z"), "a?z");
    EXPECT_EQ(ToCodePage("a\xFF\xFEz"), "a??z");
    EXPECT_EQ(ToCodePage("\xE2\x82z"), "??z");          // cut in the middle
    EXPECT_EQ(ToCodePage("z\xF0\x9F\x98"), "z???");     // cut at the end
    EXPECT_EQ(ToCodePage("\xC0\xAF"), "??");            // overlong "/"
    EXPECT_EQ(ToCodePage("\xE0\x82\xA9"), "???");       // overlong
    EXPECT_EQ(ToCodePage("\xF0\x80\x82\xA9"), "????");  // overlong
    EXPECT_EQ(ToCodePage("\xED\xA0\x80"), "???");       // surrogate
    EXPECT_EQ(ToCodePage("\xF4\x90\x80\x80"), "????");  // above U+10FFFF
}

TEST(CodePage, LettersAtEveryPlaceOfALongTextAreConverted) {
    // The conversion takes ASCII in blocks: a letter at each distance from a block's start must be seen.
    for (std::size_t length = 1; length <= 40; ++length) {
        for (std::size_t place = 0; place < length; ++place) {
            std::string bytes(length, 'x');
            bytes[place] = '\xE9';
            std::string utf8(place, 'x');
            utf8 += "\u00E9" + std::string(length - place - 1, 'x');
            ASSERT_EQ(FromCodePage(bytes), utf8);
            ASSERT_EQ(ToCodePage(utf8), bytes);
        }
    }
}

}  // namespace
}  // namespace corvane
