#include <cstdint>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fakes/Fakes.h"
#include "inventory/GetNicInfo.h"
#include "inventory/NicInfo.h"
#include "inventory/Stages.h"
#include "tests/unit/InventorySupport.h"

namespace corvane {
namespace {

using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using Outcome = FakeIpHelper::Outcome;

class InterfaceIndex : public testing::Test {
 protected:
    /// Indexes of records with these Ids, in their order.
    std::vector<std::uint32_t> IndexesOf(const std::vector<std::string>& ids) {
        Nics.assign(ids.size(), NicInfo());
        for (std::size_t i = 0; i < ids.size(); ++i) Nics[i].Id = ids[i];
        RunStage(MatchInterfaceIndexes);
        std::vector<std::uint32_t> indexes;
        for (const NicInfo& nic : Nics) indexes.push_back(nic.IfIndex);
        return indexes;
    }

    FakeMachine machine_;
    FakeIpHelper& ipHelper_ = *machine_.ipHelper;
};

TEST_F(InterfaceIndex, EachEntryGoesToTheRecordOfItsId) {
    ipHelper_.interfaces = {{7, "\\DEVICE\\TCPIP_{B}"}, {9, "\\DEVICE\\TCPIP_{A}"}};
    EXPECT_THAT(IndexesOf({"{A}", "{B}", "{C}"}), ElementsAre(9U, 7U, 0U));
}

TEST_F(InterfaceIndex, TheDevicePartMustMatchToTheLetter) {
    ipHelper_.interfaces = {
        {3, "\\Device\\Tcpip_{A}"}, {4, "\\DEVICE\\TCPIP{A}"}, {5, "{A}"}, {6, " \\DEVICE\\TCPIP_{A}"}};
    EXPECT_THAT(IndexesOf({"{A}"}), ElementsAre(0U));
}

TEST_F(InterfaceIndex, TheIdMustMatchToTheLetter) {
    ipHelper_.interfaces = {
        {3, "\\DEVICE\\TCPIP_{ab}"}, {4, "\\DEVICE\\TCPIP_{A"}, {5, "\\DEVICE\\TCPIP_"}, {6, ""}};
    EXPECT_THAT(IndexesOf({"{AB}"}), ElementsAre(0U));
}

TEST_F(InterfaceIndex, ANameThatGoesOnBehindTheIdMatches) {
    ipHelper_.interfaces = {{3, "\\DEVICE\\TCPIP_{A}-more"}};
    EXPECT_THAT(IndexesOf({"{A}"}), ElementsAre(3U));
}

TEST_F(InterfaceIndex, OfTwoRecordsThatMatchTheFirstGetsTheIndex) {
    ipHelper_.interfaces = {{3, "\\DEVICE\\TCPIP_{A}B"}};
    EXPECT_THAT(IndexesOf({"{A}", "{A}B"}), ElementsAre(3U, 0U));
    EXPECT_THAT(IndexesOf({"{A}B", "{A}"}), ElementsAre(3U, 0U));
    EXPECT_THAT(IndexesOf({"{A}", "{A}"}), ElementsAre(3U, 0U));
}

TEST_F(InterfaceIndex, OfTwoEntriesOfOneRecordTheLaterWins) {
    ipHelper_.interfaces = {{3, "\\DEVICE\\TCPIP_{A}"}, {8, "\\DEVICE\\TCPIP_{A}"}};
    EXPECT_THAT(IndexesOf({"{A}"}), ElementsAre(8U));
}

TEST_F(InterfaceIndex, NulsInANameAreDropped) {
    ipHelper_.interfaces = {{3, "\\DEVICE\\\0TCPIP_{A}\0\0\0"s}};
    EXPECT_THAT(IndexesOf({"{A}"}), ElementsAre(3U));
}

TEST_F(InterfaceIndex, TheEmptyRecordOfAMachineWithoutAdaptersGetsNoIndex) {
    ipHelper_.interfaces = {{3, "\\DEVICE\\TCPIP_{A}"}};
    EXPECT_THAT(IndexesOf({""}), ElementsAre(0U));
}

TEST_F(InterfaceIndex, NothingToReadIsSilentAndLeavesEveryIndexAt0) {
    ipHelper_.interfaces = {{3, "\\DEVICE\\TCPIP_{A}"}};
    ipHelper_.interfacesOutcome = Outcome::kNothingToRead;
    EXPECT_THAT(IndexesOf({"{A}"}), ElementsAre(0U));
    EXPECT_THAT(machine_.seat.diary, IsEmpty());
}

TEST_F(InterfaceIndex, AFailingFetchIsShownOnceAndLeavesEveryAdapterDisabled) {
    for (const char* id : {"{A}", "{B}"}) {
        machine_.AddAdapter(id, "eth"s + id, "000"s + id[1]);
        ipHelper_.AddInterface(3, id);
    }
    ipHelper_.interfacesOutcome = Outcome::kFailed;
    ipHelper_.tableFailure = Win32Error::kGenFailure;
    ipHelper_.texts[Win32Error::kGenFailure] = "A device is not functioning.\r\n";
    RefreshNicInfo();
    EXPECT_THAT(machine_.seat.boxes,
                ElementsAre(FakeSeat::Box{"Orvella Corvane",
                                          "DLL : IphlpApi.dll\r\n"
                                          "\r\n"
                                          "Error Code : 31\r\n"
                                          "API: GetInterfaceInfo\r\n"
                                          "Error Description : A device is not functioning.\r\n"
                                          "\r\n"
                                          "\r\n"
                                          "Click OK To Continue",
                                          BoxIcon::kCritical, BoxButtons::kOk, false}));
    for (const NicInfo& nic : Nics) {
        EXPECT_EQ(nic.IfIndex, 0U);
        EXPECT_EQ(nic.Status, "Disabled");
    }
}

TEST_F(InterfaceIndex, AnEmptyTableIsNoError) {
    EXPECT_THAT(IndexesOf({"{A}"}), ElementsAre(0U));
    EXPECT_THAT(machine_.seat.diary, IsEmpty());
}

}  // namespace
}  // namespace corvane
