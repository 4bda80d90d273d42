#include <cstdint>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fakes/Fakes.h"
#include "ui/logic/Traffic.h"

namespace corvane {

// Readable failures.
static void PrintTo(const TrafficTexts& texts, std::ostream* out) {
    *out << '[' << texts.labSent << "] [" << texts.labRecv << "] [" << texts.labSentSpeed << "] ["
         << texts.labRecvSpeed << ']';
}
static void PrintTo(const TrafficRates& rates, std::ostream* out) {
    *out << rates.sent << " / " << rates.received;
}

namespace {

using testing::ElementsAre;
using testing::SizeIs;

constexpr double kKB = 1024;
constexpr double kMB = 1024 * kKB;
constexpr double kGB = 1024 * kMB;

// ---- FormatBytes

TEST(FormatBytes, Below1000IsBytesInTheShortestForm) {
    EXPECT_EQ(FormatBytes(0), "0 Bytes");
    EXPECT_EQ(FormatBytes(1), "1 Bytes");
    EXPECT_EQ(FormatBytes(1.5), "1.5 Bytes");
    EXPECT_EQ(FormatBytes(0.125), "0.125 Bytes");
    EXPECT_EQ(FormatBytes(999), "999 Bytes");
    EXPECT_EQ(FormatBytes(999.5), "999.5 Bytes");
}

TEST(FormatBytes, ScalesFrom1000InStepsOf1024) {
    EXPECT_EQ(FormatBytes(1000), "0.98 KB");
    EXPECT_EQ(FormatBytes(1023), "1 KB");
    EXPECT_EQ(FormatBytes(1024), "1 KB");
    EXPECT_EQ(FormatBytes(1536), "1.5 KB");
    EXPECT_EQ(FormatBytes(1000 * kKB), "0.98 MB");
    EXPECT_EQ(FormatBytes(kMB), "1 MB");
    EXPECT_EQ(FormatBytes(1000 * kMB), "0.98 GB");
    EXPECT_EQ(FormatBytes(kGB), "1 GB");
    EXPECT_EQ(FormatBytes(4294967295.0), "4 GB");
}

TEST(FormatBytes, TestsTheValueAndNotItsRoundedText) {
    EXPECT_EQ(FormatBytes(1000 * kKB - 1), "1000 KB");
    EXPECT_EQ(FormatBytes(1000 * kMB - 1), "1000 MB");
}

TEST(FormatBytes, GoesOnFromTheValueAndNotFromItsRoundedText) {
    // 1152 KB are 1.125 MB, a tie. Four bytes more are above it, though not when they are rounded off before.
    EXPECT_EQ(FormatBytes(1152 * kKB), "1.12 MB");
    EXPECT_EQ(FormatBytes(1152 * kKB + 4), "1.13 MB");
}

TEST(FormatBytes, RoundsToTwoDecimalsATieToTheEvenOne) {
    EXPECT_EQ(FormatBytes(1.234 * kKB), "1.23 KB");
    EXPECT_EQ(FormatBytes(1.236 * kKB), "1.24 KB");
    EXPECT_EQ(FormatBytes(1.125 * kKB), "1.12 KB");
    EXPECT_EQ(FormatBytes(1.375 * kKB), "1.38 KB");
}

TEST(FormatBytes, HasNothingAboveGigabytes) { EXPECT_EQ(FormatBytes(5000 * kGB), "5000 GB"); }

TEST(FormatBytes, LeavesNegativeValuesAsBytes) {
    EXPECT_EQ(FormatBytes(-1), "-1 Bytes");
    EXPECT_EQ(FormatBytes(-4294967295.0), "-4294967295 Bytes");
}

// ---- one tick

class Traffic : public testing::Test {
 protected:
    void Counters(std::uint32_t sent, std::uint32_t received) {
        IfRow& row = machine_.ipHelper->rows[3];
        row.outOctets = sent;
        row.inOctets = received;
    }

    /// The texts of a tick with these counters.
    TrafficTexts TextsOf(std::uint32_t sent, std::uint32_t received) {
        Counters(sent, received);
        const std::optional<TrafficMonitor::Tick> tick = monitor_.Read(3);
        return tick ? tick->texts : TrafficTexts{"no tick", "", "", ""};
    }

    /// The rates of a tick with these counters.
    TrafficRates RatesOf(std::uint32_t sent, std::uint32_t received) {
        Counters(sent, received);
        const std::optional<TrafficMonitor::Tick> tick = monitor_.Read(3);
        return tick ? tick->rates : TrafficRates{-0.5, -0.5};
    }

    FakeMachine machine_;
    TrafficMonitor monitor_;
};

TEST_F(Traffic, TicksOnceASecond) { EXPECT_EQ(kTrafficIntervalMilliseconds, 1000); }

TEST_F(Traffic, ReadsTheInterfaceOnceATick) {
    Counters(1, 1);
    EXPECT_TRUE(monitor_.Read(3).has_value());
    EXPECT_TRUE(monitor_.Read(3).has_value());
    EXPECT_THAT(machine_.ipHelper->diary, ElementsAre("GetIfEntry 3", "GetIfEntry 3"));
}

TEST_F(Traffic, ScalesACountInBracketsOnlyAbove1000) {
    EXPECT_EQ(TextsOf(999, 0).labSent, "999 Bytes");
    EXPECT_EQ(TextsOf(1000, 0).labSent, "1000 Bytes");
    EXPECT_EQ(TextsOf(1001, 0).labSent, "1001 Bytes (0.98 KB)");
    EXPECT_EQ(TextsOf(1024 * 1024, 0).labSent, "1048576 Bytes (1 MB)");
    EXPECT_EQ(TextsOf(0, 999).labRecv, "999 Bytes");
    EXPECT_EQ(TextsOf(0, 1000).labRecv, "1000 Bytes");
    EXPECT_EQ(TextsOf(0, 1001).labRecv, "1001 Bytes (0.98 KB)");
    EXPECT_EQ(TextsOf(0, 1024 * 1024).labRecv, "1048576 Bytes (1 MB)");
}

TEST_F(Traffic, CountsAreUnsigned) {
    EXPECT_EQ(TextsOf(0x80000000U, 0xFFFFFFFFU),
              (TrafficTexts{"2147483648 Bytes (2 GB)", "4294967295 Bytes (4 GB)", "0 Bytes/s", "0 Bytes/s"}));
}

TEST_F(Traffic, RatesOfTheFirstTickAreZero) {
    EXPECT_EQ(TextsOf(5000, 7000),
              (TrafficTexts{"5000 Bytes (4.88 KB)", "7000 Bytes (6.84 KB)", "0 Bytes/s", "0 Bytes/s"}));
    EXPECT_EQ(RatesOf(5000, 7000), (TrafficRates{0, 0}));
}

TEST_F(Traffic, RatesAreDifferencesOfSuccessiveReadings) {
    TextsOf(5000, 7000);
    EXPECT_EQ(TextsOf(5300, 9048),
              (TrafficTexts{"5300 Bytes (5.18 KB)", "9048 Bytes (8.84 KB)", "300 Bytes/s", "2 KB/s"}));
    EXPECT_EQ(RatesOf(5301, 9050), (TrafficRates{1, 2}));
}

TEST_F(Traffic, ARateOf1000IsScaled) {
    TextsOf(1, 1);
    EXPECT_EQ(TextsOf(1001, 1000).labSentSpeed, "0.98 KB/s");
    EXPECT_EQ(TextsOf(1001, 2000).labRecvSpeed, "0.98 KB/s");
}

TEST_F(Traffic, ACountOfZeroBeforeGivesNoRateForThatDirectionOnly) {
    TextsOf(0, 50);
    EXPECT_EQ(RatesOf(10, 60), (TrafficRates{0, 10}));
    EXPECT_EQ(RatesOf(30, 0), (TrafficRates{20, -60}));
    EXPECT_EQ(RatesOf(31, 9), (TrafficRates{1, 0}));
}

TEST_F(Traffic, AWrappedCounterShowsANegativeRate) {
    TextsOf(4294967295U, 4294967000U);
    EXPECT_EQ(TextsOf(99, 704),
              (TrafficTexts{"99 Bytes", "704 Bytes", "-4294967196 Bytes/s", "-4294966296 Bytes/s"}));
    EXPECT_EQ(RatesOf(100, 706), (TrafficRates{1, 2}));
}

TEST_F(Traffic, AFailedReadingShowsNothing) {
    TextsOf(5000, 7000);
    machine_.ipHelper->entryFailures[3] = Win32Error::kGenFailure;
    EXPECT_FALSE(monitor_.Read(3).has_value());
    EXPECT_TRUE(machine_.seat.diary.empty());
}

TEST_F(Traffic, TheFirstGoodReadingAfterAFailedOneHasNoRates) {
    TextsOf(5000, 7000);
    machine_.ipHelper->entryFailures[3] = Win32Error::kGenFailure;
    EXPECT_FALSE(monitor_.Read(3).has_value());
    machine_.ipHelper->entryFailures.clear();
    EXPECT_EQ(TextsOf(5001, 7001),
              (TrafficTexts{"5001 Bytes (4.88 KB)", "7001 Bytes (6.84 KB)", "0 Bytes/s", "0 Bytes/s"}));
    EXPECT_EQ(RatesOf(5004, 7006), (TrafficRates{3, 5}));
}

/// Fills the row before it fails.
class HalfReadIpHelper : public FakeIpHelper {
 public:
    Win32Error GetIfEntry(std::uint32_t, IfRow& row) override {
        row.outOctets = 5000;
        row.inOctets = 7000;
        return Win32Error::kGenFailure;
    }
};

TEST_F(Traffic, WhatAFailedReadingFilledInIsNotRemembered) {
    TextsOf(4000, 6000);
    const auto working = std::exchange(CurrentPlatform().ipHelper, std::make_shared<HalfReadIpHelper>());
    EXPECT_FALSE(monitor_.Read(3).has_value());
    CurrentPlatform().ipHelper = working;
    EXPECT_EQ(RatesOf(5100, 7100), (TrafficRates{0, 0}));
}

TEST_F(Traffic, AnUnknownInterfaceAndIndexZeroCannotBeRead) {
    TextsOf(5000, 7000);
    EXPECT_FALSE(monitor_.Read(9).has_value());
    EXPECT_EQ(RatesOf(5001, 7001), (TrafficRates{0, 0}));
    EXPECT_FALSE(monitor_.Read(0).has_value());
    EXPECT_EQ(RatesOf(5002, 7002), (TrafficRates{0, 0}));
}

TEST_F(Traffic, AnotherConnectionStartsWithoutRatesAfterAReset) {
    TextsOf(5000, 7000);
    machine_.ipHelper->rows[4].outOctets = 90;
    machine_.ipHelper->rows[4].inOctets = 80;
    monitor_.Reset();
    const std::optional<TrafficMonitor::Tick> tick = monitor_.Read(4);
    ASSERT_TRUE(tick.has_value());
    EXPECT_EQ(tick->texts, (TrafficTexts{"90 Bytes", "80 Bytes", "0 Bytes/s", "0 Bytes/s"}));
    EXPECT_EQ(tick->rates, (TrafficRates{0, 0}));
}

TEST_F(Traffic, WithoutAResetThePreviousCountsAreThoseOfTheMonitorWhateverTheInterface) {
    TextsOf(5000, 7000);
    machine_.ipHelper->rows[4].outOctets = 5010;
    machine_.ipHelper->rows[4].inOctets = 6990;
    const std::optional<TrafficMonitor::Tick> tick = monitor_.Read(4);
    ASSERT_TRUE(tick.has_value());
    EXPECT_EQ(tick->rates, (TrafficRates{10, -10}));
}

// ---- the history and its scale

TEST(TrafficHistory, KeepsTheRatesOfTwoMinutesInTheirOrder) {
    TrafficHistory history;
    for (int i = 0; i < 120; ++i) history.Add({static_cast<double>(i), static_cast<double>(1000 + i)});
    ASSERT_THAT(history.Ticks(), SizeIs(120));
    EXPECT_EQ(history.Ticks().front(), (TrafficRates{0, 1000}));
    EXPECT_EQ(history.Ticks().back(), (TrafficRates{119, 1119}));
    history.Add({120, 1120});
    ASSERT_THAT(history.Ticks(), SizeIs(120));
    EXPECT_EQ(history.Ticks().front(), (TrafficRates{1, 1001}));
    EXPECT_EQ(history.Ticks().back(), (TrafficRates{120, 1120}));
}

TEST(TrafficHistory, CountsANegativeRateAsZero) {
    TrafficHistory history;
    history.Add({-4294967000.0, 5});
    history.Add({6, -1});
    EXPECT_THAT(history.Ticks(), ElementsAre(TrafficRates{0, 5}, TrafficRates{6, 0}));
}

TEST(TrafficHistory, IsEmptyAtFirstAndAfterClearing) {
    TrafficHistory history;
    EXPECT_THAT(history.Ticks(), SizeIs(0));
    history.Add({5 * kMB, 0});
    history.Clear();
    EXPECT_THAT(history.Ticks(), SizeIs(0));
    EXPECT_EQ(history.ScaleTop(), kKB);
}

double TopFor(double rate) {
    TrafficHistory history;
    history.Add({rate, 0});
    return history.ScaleTop();
}

TEST(TrafficScale, IsAtLeastOneKilobyte) {
    EXPECT_EQ(TrafficHistory().ScaleTop(), kKB);
    EXPECT_EQ(TopFor(0), kKB);
    EXPECT_EQ(TopFor(-5000), kKB);
    EXPECT_EQ(TopFor(1), kKB);
}

TEST(TrafficScale, TakesTheNextRoundValueOnlyWhenARateIsAboveIt) {
    std::vector<double> tops;
    for (const double unit : {kKB, kMB, kGB}) {
        for (const double steps : {1, 2, 5, 10, 20, 50, 100, 200, 500}) tops.push_back(steps * unit);
    }
    for (std::size_t i = 0; i < tops.size(); ++i) {
        EXPECT_EQ(TopFor(tops[i]), tops[i]);
        if (i + 1 < tops.size()) {
            EXPECT_EQ(TopFor(tops[i] + 1), tops[i + 1]);
        }
    }
}

TEST(TrafficScale, IsARoundNumberAsTheGraphWritesIt) {
    EXPECT_EQ(FormatBytes(TopFor(3 * kKB)), "5 KB");
    EXPECT_EQ(FormatBytes(TopFor(500 * kKB)), "500 KB");
    EXPECT_EQ(FormatBytes(TopFor(500 * kKB + 1)), "1 MB");
    EXPECT_EQ(FormatBytes(TopFor(1000 * kKB)), "1 MB");
    EXPECT_EQ(FormatBytes(TopFor(125e6)), "200 MB");
    EXPECT_EQ(FormatBytes(TopFor(4294967295.0)), "5 GB");
}

TEST(TrafficScale, CoversARateBeyondItsSteps) { EXPECT_EQ(TopFor(700 * kGB), 700 * kGB); }

TEST(TrafficScale, GoesByTheHighestRateOfBothDirectionsAndAllTicksKept) {
    TrafficHistory history;
    history.Add({3 * kMB, 1 * kKB});
    history.Add({1, 2});
    EXPECT_EQ(history.ScaleTop(), 5 * kMB);
    history.Add({4, 15 * kMB});
    history.Add({5, 6});
    EXPECT_EQ(history.ScaleTop(), 20 * kMB);
    for (std::size_t i = 0; i < TrafficHistory::kTicks; ++i) history.Add({1, 1});
    EXPECT_EQ(history.ScaleTop(), kKB);
}

}  // namespace
}  // namespace corvane
