#include <cctype>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/RunTimeError.h"
#include "base/Text.h"
#include "support/Paths.h"
#include "tests/unit/MacBoxesSupport.h"

namespace corvane {
namespace {

using test::LoadVendors;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::size_t> Entries(const VendorSearch& search) {
    std::vector<std::size_t> entries;
    for (std::size_t row = 0; row < search.Size(); ++row) entries.push_back(search.EntryAt(row));
    return entries;
}

std::vector<std::size_t> Found(const std::string& text) {
    VendorSearch search;
    search.Find(text);
    return Entries(search);
}

class VendorSearchRules : public testing::Test {
 protected:
    VendorSearchRules() {
        // Names and addresses in the code page.
        LoadVendors({{"000C29", "VMware, Inc.", "Palo Alto CA"},
                     {"00000C", "Cisco Systems", "San Jose CA"},
                     {"A1B2C3", "", ""},
                     {"000C29", "M\xFCller GmbH", "K\xF6ln"},
                     {"FFFFFF", "what? 000c2", "in 000c29 Lane"}});
    }

    FakeMachine machine;
};

TEST_F(VendorSearchRules, EmptyTextAndBlanksMatchAll) {
    EXPECT_THAT(Entries(VendorSearch()), ElementsAre(0U, 1U, 2U, 3U, 4U));
    EXPECT_THAT(Found(""), ElementsAre(0U, 1U, 2U, 3U, 4U));
    EXPECT_THAT(Found("   "), ElementsAre(0U, 1U, 2U, 3U, 4U));
}

TEST_F(VendorSearchRules, WordInNameOrAddressMatchesInEitherCase) {
    EXPECT_THAT(Found("ware"), ElementsAre(0U));
    EXPECT_THAT(Found("VMWARE"), ElementsAre(0U));
    EXPECT_THAT(Found("jOSE"), ElementsAre(1U));
    EXPECT_THAT(Found("CA"), ElementsAre(0U, 1U));
    EXPECT_THAT(Found("nothing"), IsEmpty());
}

TEST_F(VendorSearchRules, EveryWordMustBeThereInAnyOrderAndPlace) {
    EXPECT_THAT(Found("ca vm"), ElementsAre(0U));
    EXPECT_THAT(Found("  alto   palo "), ElementsAre(0U));
    EXPECT_THAT(Found("vmware san"), IsEmpty());
    EXPECT_THAT(Found("systemssan"), IsEmpty()) << "a word does not run from the name into the address";
}

TEST_F(VendorSearchRules, WholeTextOfAnEntryFindsIt) {
    for (std::size_t i = 0; i < Vendors().Size(); ++i)
        EXPECT_THAT(Found(VendorText(Vendors(), i)), testing::Contains(i));
    EXPECT_THAT(Found(VendorText(Vendors(), 1)), ElementsAre(1U));
}

TEST_F(VendorSearchRules, LabelOfTheAddressIsPartOfEachEntry) {
    EXPECT_THAT(Found("Address:"), ElementsAre(0U, 1U, 2U, 3U, 4U));
    EXPECT_THAT(Found("address: cisco"), ElementsAre(1U));
    EXPECT_THAT(Found("address:x"), IsEmpty());
}

TEST_F(VendorSearchRules, ShortListIsSearchedByNamesOnly) {
    ShortVendorList = true;
    EXPECT_THAT(Found("ca"), IsEmpty());
    EXPECT_THAT(Found("address:"), IsEmpty());
    EXPECT_THAT(Found("ware"), ElementsAre(0U));
    EXPECT_THAT(Found("a1b2c3"), ElementsAre(2U));
    EXPECT_THAT(Found(" a1b2c3  "), ElementsAre(2U)) << "blanks are no word, also where the name is empty";
    EXPECT_THAT(Found("000c29"), ElementsAre(0U, 3U));
}

TEST_F(VendorSearchRules, SixDigitsMatchAPrefixToo) {
    for (const std::string text : {"000C29", "000c29", "00:0c:29", "00-0C-29", "000c-29"})
        EXPECT_THAT(Found(text), testing::IsSupersetOf({0U, 3U})) << text;
    EXPECT_THAT(Found("000C29"), ElementsAre(0U, 3U, 4U)) << "the last one has it in its address";
    EXPECT_THAT(Found("00:0c:29"), ElementsAre(0U, 3U));
    EXPECT_THAT(Found("00:0c:29 ware"), ElementsAre(0U));
    EXPECT_THAT(Found("000C2"), ElementsAre(4U));
    EXPECT_THAT(Found("000C291"), IsEmpty());
    EXPECT_THAT(Found("00.0c.29"), IsEmpty());
}

TEST_F(VendorSearchRules, LettersBeyondAsciiMatchAsTheyAre) {
    EXPECT_THAT(Found("m\u00FCller"), ElementsAre(3U));
    EXPECT_THAT(Found("M\u00FCLLER"), ElementsAre(3U));
    EXPECT_THAT(Found("M\u00DCLLER"), IsEmpty());
    EXPECT_THAT(Found("k\u00F6ln"), ElementsAre(3U));
}

TEST_F(VendorSearchRules, CharacterThatNoEntryCanHaveMatchesNone) {
    EXPECT_THAT(Found("?"), ElementsAre(4U));
    EXPECT_THAT(Found("\u4E2D"), IsEmpty());
    EXPECT_THAT(Found("what\u4E2D"), IsEmpty());
    EXPECT_THAT(Found("\xFF"), IsEmpty());
}

TEST_F(VendorSearchRules, RowsAndEntriesLeadToEachOther) {
    VendorSearch search;
    EXPECT_EQ(search.RowOf(4), 4U);
    EXPECT_EQ(search.RowOf(5), std::nullopt);
    search.Find("gmbh");
    EXPECT_EQ(search.Size(), 1U);
    EXPECT_EQ(search.EntryAt(0), 3U);
    EXPECT_EQ(search.RowOf(3), 0U);
    EXPECT_EQ(search.RowOf(2), std::nullopt);
    EXPECT_EQ(search.RowOf(4), std::nullopt);
    search.Find("000c29");
    EXPECT_EQ(search.RowOf(4), 2U);
}

TEST_F(VendorSearchRules, MatchThatDoesNotExistIsError9) {
    VendorSearch search;
    const auto number = [&](std::size_t row) {
        try {
            (void)search.EntryAt(row);
        } catch (const RunTimeError& error) {
            return error.Number();
        }
        return 0;
    };
    EXPECT_EQ(number(4), 0);
    EXPECT_EQ(number(5), 9);
    search.Find("gmbh");
    EXPECT_EQ(number(0), 0);
    EXPECT_EQ(number(1), 9);
    EXPECT_EQ(number(SIZE_MAX), 9);
}

TEST_F(VendorSearchRules, WithoutAListThereIsNoEntry) {
    Vendors() = VendorTable::Empty();
    VendorSearch search;
    EXPECT_EQ(search.Size(), 0U);
    EXPECT_EQ(search.RowOf(0), std::nullopt);
    for (const std::string text : {"", "a", "address:", "000000", "x"}) {
        search.Find(text);
        EXPECT_EQ(search.Size(), 0U) << text;
        EXPECT_EQ(search.RowOf(0), std::nullopt);
    }
}

TEST_F(VendorSearchRules, TypingOnAndErasingGiveWhatASearchAnewGives) {
    VendorSearch search;
    for (const std::string text :
         {"0",      "00",     "00:",        "00:0c:2",  "00:0c:29", "00:0c:29 w", "00:0c:29",   "00:0c:2",
          "000c2",  "000c29", "000c29 ",    "000c29 m", "000c291",  "c",          "ca",         "ca v",
          "ca vm",  "a",      "address: v", "x",        "ca",       "",           "what\u4E2D", "what",
          "what ?", "\u4E2D", "",           " ",        " c"}) {
        search.Find(text);
        EXPECT_EQ(Entries(search), Found(text)) << '"' << text << '"';
    }
}

// The list that the build made, against the plainest search there can be.

std::vector<std::string> WordsOf(const std::string& text) {
    std::vector<std::string> words;
    for (const std::string& word : Split(ToLower(text), ' ')) {
        if (!word.empty()) words.push_back(word);
    }
    return words;
}

bool Shows(const std::string& visible, const std::string& prefix, const std::string& word) {
    if (visible.find(word) != std::string::npos) return true;
    const std::string digits = Without(Without(word, ':'), '-');
    for (const char digit : digits) {
        if (std::isxdigit(static_cast<unsigned char>(digit)) == 0) return false;
    }
    return digits.size() == 6 && ToLower(prefix) == digits;
}

TEST(VendorSearchOfTheRegistry, AgreesWithAPlainSearchAtEveryKeystroke) {
    const FakeMachine machine;
    Vendors() = LoadVendorList(CORVANE_BIN_DIR "/");
    ASSERT_GT(Vendors().Size(), 30000U);
    for (const bool shortList : {false, true}) {
        ShortVendorList = shortList;
        std::vector<std::string> visible;
        for (std::size_t i = 0; i < Vendors().Size(); ++i)
            visible.push_back(ToLower(VendorText(Vendors(), i)));
        for (const std::string whole : {"vmware inc", "00:0c:29 CA", "000c29", "gmbh d-8", "zz:"}) {
            VendorSearch search;
            for (std::size_t length = 1; length <= whole.size(); ++length) {
                const std::string text = whole.substr(0, length);
                std::vector<std::size_t> expected;
                for (std::size_t i = 0; i < visible.size(); ++i) {
                    bool all = true;
                    for (const std::string& word : WordsOf(text))
                        all = all && Shows(visible[i], std::string(Vendors().Prefix(i)), word);
                    if (all) expected.push_back(i);
                }
                search.Find(text);
                ASSERT_EQ(Entries(search), expected) << text;
            }
        }
    }
}

}  // namespace
}  // namespace corvane
