#include <set>

#include <gtest/gtest.h>

#include "platform/windows/AddressContexts.h"

namespace corvane {
namespace {

constexpr Ipv4Bytes kFirst{192, 0, 2, 1};
constexpr Ipv4Bytes kSecond{192, 0, 2, 2};

class AddressContextsTest : public testing::Test {
 protected:
    AddressContexts contexts_;
};

TEST_F(AddressContextsTest, ARowsOwnWordIsKeptWhereItIsTheContext) {
    contexts_.Renew({{{3, kFirst}, 0x1234}});
    EXPECT_EQ(contexts_.WordFor({3, kFirst}, 0x1234), 0x1234);
    EXPECT_EQ(contexts_.ContextOf(0x1234), 0x1234U);
}

TEST_F(AddressContextsTest, AnEmptyWordIsReplacedByOneThatStandsForTheContext) {
    contexts_.Renew({{{3, kFirst}, 0x0500A8C0}});
    const std::uint16_t word = contexts_.WordFor({3, kFirst}, 0);
    EXPECT_NE(word, 0);
    EXPECT_EQ(contexts_.ContextOf(word), 0x0500A8C0U);
}

TEST_F(AddressContextsTest, AContextThatFitsIntoSixteenBitsButIsNotTheWordIsFoundToo) {
    contexts_.Renew({{{3, kFirst}, 7}});
    const std::uint16_t word = contexts_.WordFor({3, kFirst}, 0);
    EXPECT_NE(word, 7) << "7 is the context itself and must not stand for another";
    EXPECT_EQ(contexts_.ContextOf(word), 7U);
}

TEST_F(AddressContextsTest, TheSameAddressGetsTheSameWordAndOthersGetOthers) {
    contexts_.Renew({{{3, kFirst}, 0x10000}, {{3, kSecond}, 0x20000}, {{4, kFirst}, 0x30000}});
    const std::uint16_t first = contexts_.WordFor({3, kFirst}, 0);
    const std::uint16_t second = contexts_.WordFor({3, kSecond}, 0);
    const std::uint16_t other = contexts_.WordFor({4, kFirst}, 0);
    EXPECT_EQ(std::set({first, second, other}).size(), 3U);
    EXPECT_EQ(contexts_.WordFor({3, kFirst}, 0), first);
    EXPECT_EQ(contexts_.ContextOf(second), 0x20000U);
    EXPECT_EQ(contexts_.ContextOf(other), 0x30000U);
}

TEST_F(AddressContextsTest, AWordNeverStandsForTwoContexts) {
    // The numbers that would be handed out first are contexts of other addresses.
    contexts_.Renew({{{3, kFirst}, 1}, {{3, kSecond}, 2}, {{4, kFirst}, 0x30000}});
    const std::uint16_t word = contexts_.WordFor({4, kFirst}, 0);
    EXPECT_GT(word, 2);
    EXPECT_EQ(contexts_.WordFor({3, kFirst}, 1), 1);
    EXPECT_EQ(contexts_.ContextOf(1), 1U);
    EXPECT_EQ(contexts_.ContextOf(2), 2U);
}

TEST_F(AddressContextsTest, AnAddressThatTheSystemTellsNoContextOfKeepsItsWord) {
    contexts_.Renew({});
    EXPECT_EQ(contexts_.WordFor({3, kFirst}, 9), 9);
    EXPECT_EQ(contexts_.ContextOf(9), 9U);
}

TEST_F(AddressContextsTest, AContextThatTheSystemHasJustMadeIsTakenAsItIs) {
    contexts_.Renew({{{3, kFirst}, 0x10000}});
    const std::uint16_t word = contexts_.WordFor({3, kFirst}, 0);
    contexts_.Made(word);
    EXPECT_EQ(contexts_.ContextOf(word), word);
}

TEST_F(AddressContextsTest, ANewReadingForgetsTheFormerOne) {
    contexts_.Renew({{{3, kFirst}, 0x10000}});
    const std::uint16_t word = contexts_.WordFor({3, kFirst}, 0);
    contexts_.Renew({{{3, kFirst}, 0x20000}});
    EXPECT_EQ(contexts_.WordFor({3, kFirst}, 0), word);
    EXPECT_EQ(contexts_.ContextOf(word), 0x20000U);
}

}  // namespace
}  // namespace corvane
