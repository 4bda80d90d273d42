#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fakes/Fakes.h"
#include "platform/IphlpApi.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Outcome = FakeIpHelper::Outcome;

class IphlpApi : public testing::Test {
 protected:
    FakeMachine machine_;
    FakeIpHelper& ipHelper_ = *machine_.ipHelper;
};

TEST_F(IphlpApi, ErrorWithCode0ShowsNothing) {
    ipHelper_.texts[Win32Error::kSuccess] = "The operation completed successfully.\r\n";
    IphlpApiError(Win32Error::kSuccess, "GetIfEntry");
    EXPECT_THAT(machine_.seat.diary, IsEmpty());
}

TEST_F(IphlpApi, ErrorBoxHoldsTheSystemTextWithItsOwnLineBreak) {
    ipHelper_.texts[Win32Error::kAccessDenied] = "Access is denied.\r\n";
    IphlpApiError(Win32Error::kAccessDenied, "AddIPAddress");
    EXPECT_THAT(machine_.seat.boxes, ElementsAre(FakeSeat::Box{"Orvella Corvane",
                                                               "DLL : IphlpApi.dll\r\n"
                                                               "\r\n"
                                                               "Error Code : 5\r\n"
                                                               "API: AddIPAddress\r\n"
                                                               "Error Description : Access is denied.\r\n"
                                                               "\r\n"
                                                               "\r\n"
                                                               "Click OK To Continue",
                                                               BoxIcon::kCritical, BoxButtons::kOk, false}));
}

TEST_F(IphlpApi, ErrorWithoutASystemTextIsUnknown) {
    IphlpApiError(static_cast<Win32Error>(70001), "GetInterfaceInfo");
    EXPECT_THAT(machine_.seat.boxes, ElementsAre(FakeSeat::Box{"Orvella Corvane",
                                                               "DLL : IphlpApi.dll\r\n"
                                                               "\r\n"
                                                               "Error Code : 70001\r\n"
                                                               "API: GetInterfaceInfo\r\n"
                                                               "Error Description : unknown\r\n"
                                                               "\r\n"
                                                               "Click OK To Continue",
                                                               BoxIcon::kCritical, BoxButtons::kOk, false}));
}

TEST_F(IphlpApi, ReleaseActsOnTheEntryOfTheIndex) {
    ipHelper_.AddInterface(3, "{A}");
    ipHelper_.AddInterface(5, "{B}");
    EXPECT_EQ(ReleaseByIndex(5), Win32Error::kSuccess);
    EXPECT_THAT(ipHelper_.diary, ElementsAre("GetInterfaceInfo", "IpReleaseAddress 5 \\DEVICE\\TCPIP_{B}"));
}

TEST_F(IphlpApi, RenewActsOnTheEntryOfTheIndex) {
    ipHelper_.AddInterface(3, "{A}");
    ipHelper_.AddInterface(5, "{B}");
    EXPECT_EQ(RenewByIndex(3), Win32Error::kSuccess);
    EXPECT_THAT(ipHelper_.diary, ElementsAre("GetInterfaceInfo", "IpRenewAddress 3 \\DEVICE\\TCPIP_{A}"));
}

TEST_F(IphlpApi, TheFirstEntryOfAnIndexIsTheOneActedOn) {
    ipHelper_.AddInterface(3, "{A}");
    ipHelper_.AddInterface(3, "{B}");
    EXPECT_EQ(RenewByIndex(3), Win32Error::kSuccess);
    EXPECT_EQ(ipHelper_.diary.back(), "IpRenewAddress 3 \\DEVICE\\TCPIP_{A}");
}

TEST_F(IphlpApi, TheResultOfTheLeaseCallIsReturnedAndNotShown) {
    ipHelper_.AddInterface(3, "{A}");
    ipHelper_.releaseResult = Win32Error::kNotSupported;
    ipHelper_.renewResult = Win32Error::kSemTimeout;
    EXPECT_EQ(ReleaseByIndex(3), Win32Error::kNotSupported);
    EXPECT_EQ(RenewByIndex(3), Win32Error::kSemTimeout);
    EXPECT_THAT(machine_.seat.diary, IsEmpty());
}

TEST_F(IphlpApi, AnIndexThatIsNotListedGives0AndShowsNothing) {
    ipHelper_.AddInterface(3, "{A}");
    ipHelper_.releaseResult = ipHelper_.renewResult = Win32Error::kGenFailure;
    EXPECT_EQ(ReleaseByIndex(4), Win32Error::kSuccess);
    EXPECT_EQ(RenewByIndex(4), Win32Error::kSuccess);
    EXPECT_THAT(ipHelper_.diary, ElementsAre("GetInterfaceInfo", "GetInterfaceInfo"));
    EXPECT_THAT(machine_.seat.diary, IsEmpty());
}

TEST_F(IphlpApi, WithoutATableLeaseCallsGive0AndShowNothing) {
    ipHelper_.AddInterface(3, "{A}");
    ipHelper_.releaseResult = ipHelper_.renewResult = Win32Error::kGenFailure;
    for (const Outcome outcome : {Outcome::kNothingToRead, Outcome::kFailed}) {
        ipHelper_.interfacesOutcome = outcome;
        EXPECT_EQ(ReleaseByIndex(3), Win32Error::kSuccess);
        EXPECT_EQ(RenewByIndex(3), Win32Error::kSuccess);
    }
    EXPECT_THAT(ipHelper_.diary, testing::Each("GetInterfaceInfo"));
    EXPECT_THAT(machine_.seat.diary, IsEmpty());
}

}  // namespace
}  // namespace corvane
