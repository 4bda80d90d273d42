#include <string>

#include <gtest/gtest.h>

#include "ui/logic/Tray.h"

namespace corvane {
namespace {

const std::string kPrefix = "Orvella Corvane v4.5 - ";
constexpr std::size_t kRoom = 41;  // Behind the prefix.

TEST(TrayTip, IsTheFixedPrefixAndTheText) {
    EXPECT_EQ(TrayTip("eth0, 00-0C-29-4F-8E-35"), "Orvella Corvane v4.5 - eth0, 00-0C-29-4F-8E-35");
    EXPECT_EQ(TrayTip(""), "Orvella Corvane v4.5 - ");
}

TEST(TrayTip, IsCutTo64WithoutAnyMark) {
    const std::string fits(kRoom, 'a');
    EXPECT_EQ(TrayTip(fits), kPrefix + fits);
    EXPECT_EQ(TrayTip(fits).size(), 64U);
    EXPECT_EQ(TrayTip(fits.substr(1)), kPrefix + fits.substr(1));
    EXPECT_EQ(TrayTip(fits + "b"), kPrefix + fits);
    EXPECT_EQ(TrayTip(fits + std::string(1000, 'b')), kPrefix + fits);
}

TEST(TrayTip, CountsCharactersAndNotTheirBytes) {
    for (const std::string character : {"\u00E4", "\u20AC", "\U0001F5A7"}) {
        std::string fits;
        for (std::size_t i = 0; i < kRoom; ++i) fits += character;
        EXPECT_EQ(TrayTip(fits), kPrefix + fits);
        EXPECT_EQ(TrayTip(fits + "b"), kPrefix + fits);
        EXPECT_EQ(TrayTip(fits + character + character), kPrefix + fits);
        EXPECT_EQ(TrayTip("a" + fits), kPrefix + "a" + fits.substr(character.size()));
    }
}

TEST(TrayTipFor, IsTheNameAndTheAddressIfAny) {
    EXPECT_EQ(TrayTipFor("eth0", "00-0C-29-4F-8E-35"), "eth0, 00-0C-29-4F-8E-35");
    EXPECT_EQ(TrayTipFor("eth0", ""), "eth0");
}

TEST(TrayTipFor, NoConnectionSaysSo) { EXPECT_EQ(TrayTipFor("", ""), "NIC Not Found"); }

TEST(TrayFrame, ShowsTheDirectionsWithTraffic) {
    EXPECT_EQ(TrayFrameFor({0, 0}), TrayFrame::kIdle);
    EXPECT_EQ(TrayFrameFor({1, 0}), TrayFrame::kSending);
    EXPECT_EQ(TrayFrameFor({0, 1}), TrayFrame::kReceiving);
    EXPECT_EQ(TrayFrameFor({1, 1}), TrayFrame::kBoth);
}

TEST(TrayFrame, AWrappedCounterIsTrafficToo) {
    EXPECT_EQ(TrayFrameFor({-4294967000.0, 0}), TrayFrame::kSending);
    EXPECT_EQ(TrayFrameFor({0, -1}), TrayFrame::kReceiving);
    EXPECT_EQ(TrayFrameFor({-1, -1}), TrayFrame::kBoth);
}

TEST(TrayClick, HidesAWindowThatCanBeSeen) {
    EXPECT_EQ(TrayClick(true, false), TrayAction::kHide);
    EXPECT_EQ(TrayClick(true, true), TrayAction::kShow);
    EXPECT_EQ(TrayClick(false, false), TrayAction::kShow);
    EXPECT_EQ(TrayClick(false, true), TrayAction::kShow);
}

}  // namespace
}  // namespace corvane
