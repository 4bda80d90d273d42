#include <cstdint>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fakes/Fakes.h"
#include "inventory/GetNicInfo.h"

namespace corvane {
namespace {

using namespace std::string_literals;

constexpr char kZoneKey[] = "SYSTEM\\CurrentControlSet\\Control\\TimeZoneInformation";
const std::string kZonesKey = "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Time Zones";

class TimeZoneOffset : public testing::Test {
 protected:
    std::string OffsetOf(const std::string& display) {
        registry_.SetText(kZoneKey, "StandardName", "Zone");
        registry_.SetText(kZonesKey + "\\Zone", "Display", display);
        return GetTimeZoneOffsetText();
    }

    FakeMachine machine_;
    FakeRegistry& registry_ = *machine_.registry;
};

TEST_F(TimeZoneOffset, IsWhatStandsBetweenTheFifthCharacterAndTheBracket) {
    EXPECT_EQ(OffsetOf("(GMT+05:30) Chennai"), "+05:30");
    EXPECT_EQ(OffsetOf("(GMT-08:00) Pacific Time (US & Canada)"), "-08:00");
    EXPECT_EQ(OffsetOf("(UTC+01:00) Berlin"), "+01:00");
}

TEST_F(TimeZoneOffset, IsEmptyForTheZoneOfGreenwich) { EXPECT_EQ(OffsetOf("(GMT) Casablanca"), ""); }

TEST_F(TimeZoneOffset, ABracketBeforeTheFifthCharacterDoesNotCount) { EXPECT_EQ(OffsetOf("()))+1)x"), "+1"); }

TEST_F(TimeZoneOffset, IsEmptyWithoutABracket) {
    for (const char* display : {"(GMT+05:30 Chennai", "", "(GMT", "(G", ")"})
        EXPECT_EQ(OffsetOf(display), "") << display;
}

TEST_F(TimeZoneOffset, IsEmptyWithoutAStandardName) {
    EXPECT_EQ(GetTimeZoneOffsetText(), "");
    registry_.MakeKey(kZoneKey);
    EXPECT_EQ(GetTimeZoneOffsetText(), "");
    registry_.SetValue(kZoneKey, "StandardName", {kRegSz, {}});
    EXPECT_EQ(GetTimeZoneOffsetText(), "");
    registry_.SetText(kZoneKey, "StandardName", "");
    EXPECT_EQ(GetTimeZoneOffsetText(), "");
}

TEST_F(TimeZoneOffset, AnEmptyStandardNameDoesNotReadTheListOfZones) {
    registry_.SetText(kZonesKey, "Display", "(GMT+01:00) Of no zone");
    registry_.SetText(kZoneKey, "StandardName", "");
    EXPECT_EQ(GetTimeZoneOffsetText(), "");
    EXPECT_THAT(registry_.diary, testing::ElementsAre("read "s + kZoneKey + "\\StandardName"));
}

TEST_F(TimeZoneOffset, IsEmptyForAnUnknownZoneOrOneWithoutADisplayName) {
    registry_.SetText(kZoneKey, "StandardName", "Zone");
    EXPECT_EQ(GetTimeZoneOffsetText(), "");
    registry_.MakeKey(kZonesKey + "\\Zone");
    EXPECT_EQ(GetTimeZoneOffsetText(), "");
    registry_.SetValue(kZonesKey + "\\Zone", "Display", {kRegSz, {}});
    EXPECT_EQ(GetTimeZoneOffsetText(), "");
}

TEST_F(TimeZoneOffset, NulsAnywhereInTheValuesAreDropped) {
    const std::string name = "Zo\0ne\0\0"s;
    const std::string display = "(GM\0T+05\0:30) Chennai"s;
    registry_.SetBinary(kZoneKey, "StandardName", {name.begin(), name.end()});
    registry_.SetBinary(kZonesKey + "\\Zone", "Display", {display.begin(), display.end()});
    EXPECT_EQ(GetTimeZoneOffsetText(), "+05:30");
}

TEST_F(TimeZoneOffset, NamesAreTextOfTheSingleByteCodePage) {
    registry_.SetText(kZoneKey, "StandardName", "Mitteleurop\u00E4ische Zeit");
    registry_.SetText(kZonesKey + "\\Mitteleurop\u00E4ische Zeit", "Display", "(GMT+01:00) Z\u00FCrich");
    EXPECT_EQ(GetTimeZoneOffsetText(), "+01:00");
}

}  // namespace
}  // namespace corvane
