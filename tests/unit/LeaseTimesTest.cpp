#include <cstdint>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fakes/Fakes.h"
#include "inventory/NicInfo.h"
#include "inventory/Stages.h"
#include "tests/unit/InventorySupport.h"

namespace corvane {
namespace {

using namespace std::string_literals;

class LeaseTimes : public testing::Test {
 protected:
    LeaseTimes() { registry_.MakeKey(key_); }

    const NicInfo& Read() {
        Nics.assign(1, NicInfo());
        Nics[0].Id = "{A}";
        RunStage(ReadTcpipConfig);
        return Nics[0];
    }

    void SetZone(const std::string& display) {
        registry_.SetText(kTimeZoneKey, "StandardName", "Zone");
        registry_.SetText(kTimeZonesKey + "\\Zone"s, "Display", display);
    }

    void EnableDhcp() { registry_.SetDword(key_, "EnableDHCP", 1); }

    /// The time at which a lease obtained `seconds` after 1970 is shown under this zone.
    std::string Obtained(std::uint32_t seconds, const std::string& display) {
        SetZone(display);
        EnableDhcp();
        registry_.SetDword(key_, "LeaseObtainedTime", seconds);
        return Read().LeaseObtained;
    }

    FakeMachine machine_;
    FakeRegistry& registry_ = *machine_.registry;
    const std::string key_ = "SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Parameters\\Interfaces\\{A}";
};

TEST_F(LeaseTimes, AreNotReadWithoutDhcp) {
    registry_.SetDword(key_, "LeaseObtainedTime", 1);
    registry_.SetDword(key_, "LeaseTerminatesTime", 1);
    const NicInfo& nic = Read();
    EXPECT_EQ(nic.LeaseObtained, "");
    EXPECT_EQ(nic.LeaseTerminates, "");
    EXPECT_THAT(registry_.diary, testing::Not(testing::Contains("read " + key_ + "\\LeaseObtainedTime")));
}

TEST_F(LeaseTimes, BothValuesGoToTheirFields) {
    SetZone("(GMT) Casablanca");
    EnableDhcp();
    registry_.SetDword(key_, "LeaseObtainedTime", 1000000000);
    registry_.SetDword(key_, "LeaseTerminatesTime", 1000086400);
    const NicInfo& nic = Read();
    EXPECT_EQ(nic.LeaseObtained, "2001-09-09 01:46:40 GMT");
    EXPECT_EQ(nic.LeaseTerminates, "2001-09-10 01:46:40 GMT");
}

TEST_F(LeaseTimes, APositiveOffsetIsAdded) {
    EXPECT_EQ(Obtained(0, "(GMT+05:30) Chennai"), "1970-01-01 05:30:00");
}

TEST_F(LeaseTimes, ANegativeOffsetIsSubtractedAlsoBefore1970) {
    EXPECT_EQ(Obtained(1000000000, "(GMT-08:00) Pacific Time"), "2001-09-08 17:46:40");
    EXPECT_EQ(Obtained(0, "(GMT-08:00) Pacific Time"), "1969-12-31 16:00:00");
}

TEST_F(LeaseTimes, WithoutAnOffsetTheTimeIsMarkedGmt) {
    EXPECT_EQ(Obtained(0, "(GMT) Casablanca"), "1970-01-01 00:00:00 GMT");
}

TEST_F(LeaseTimes, WithoutATimeZoneTheTimeIsMarkedGmt) {
    EnableDhcp();
    registry_.SetDword(key_, "LeaseObtainedTime", 59);
    EXPECT_EQ(Read().LeaseObtained, "1970-01-01 00:00:59 GMT");
}

TEST_F(LeaseTimes, AnOffsetWithoutASignNeitherShiftsNorMarks) {
    EXPECT_EQ(Obtained(0, "(GMT 05:30) Nowhere"), "1970-01-01 00:00:00");
}

TEST_F(LeaseTimes, AnOffsetOfHoursAloneShiftsByHours) {
    EXPECT_EQ(Obtained(0, "(GMT+5) Nowhere"), "1970-01-01 05:00:00");
}

TEST_F(LeaseTimes, AnOffsetThatIsNoTimeOfDayShiftsNothing) {
    for (const char* offset :
         {"+", "+x:y", "+24:00", "+05:60", "+99999999999999999999:00", "+1e300:00", "--5:00"})
        EXPECT_EQ(Obtained(0, "(GMT"s + offset + ") Nowhere"), "1970-01-01 00:00:00") << offset;
}

TEST_F(LeaseTimes, TheNumberOfSecondsIsUnsigned) {
    EXPECT_EQ(Obtained(0x80000000U, "(GMT) Casablanca"), "2038-01-19 03:14:08 GMT");
    EXPECT_EQ(Obtained(0xFFFFFFFFU, "(GMT) Casablanca"), "2106-02-07 06:28:15 GMT");
}

TEST_F(LeaseTimes, ALeapDayIsShown) {
    EXPECT_EQ(Obtained(951782400, "(GMT) Casablanca"), "2000-02-29 00:00:00 GMT");
}

TEST_F(LeaseTimes, MissingShortAndLongValuesAreCutOrFilledToFourBytes) {
    EnableDhcp();
    registry_.SetBinary(key_, "LeaseObtainedTime", {60});
    EXPECT_EQ(Read().LeaseObtained, "1970-01-01 00:01:00 GMT");
    EXPECT_EQ(Read().LeaseTerminates, "1970-01-01 00:00:00 GMT");
    registry_.SetBinary(key_, "LeaseObtainedTime", {});
    registry_.SetBinary(key_, "LeaseTerminatesTime", {60, 0, 0, 0, 1});
    EXPECT_EQ(Read().LeaseObtained, "1970-01-01 00:00:00 GMT");
    EXPECT_EQ(Read().LeaseTerminates, "1970-01-01 00:01:00 GMT");
}

}  // namespace
}  // namespace corvane
