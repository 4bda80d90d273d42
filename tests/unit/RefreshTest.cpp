#include <cstddef>
#include <cstdint>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fakes/Fakes.h"
#include "inventory/GetNicInfo.h"
#include "inventory/NicInfo.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

TEST(Refresh, RunsTheFourStagesInTheirOrder) {
    FakeMachine machine;
    machine.AddAdapter("{A}", "eth0", "0001");
    machine.ipHelper->AddInterface(3, "{A}");
    RefreshNicInfo();
    EXPECT_THAT(machine.ipHelper->diary,
                ElementsAre("GetInterfaceInfo", "GetIfEntry 3", "GetIpAddrTable", "GetIpForwardTable"));
    EXPECT_EQ(machine.registry->diary.front(),
              "enum SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Parameters\\Adapters");
    EXPECT_EQ(machine.registry->diary.back(), "read " + TcpipKey("{A}") + "\\DhcpNameServer");
}

/// Registry steps of a refresh of this many live DHCP adapters, each with its own override and address.
std::size_t StepsOfARefresh(std::size_t adapters) {
    FakeMachine machine;
    for (std::size_t i = 0; i < adapters; ++i) {
        const std::string number = std::to_string(1000 + i);
        const std::string id = "{" + number + "}";
        const auto index = static_cast<std::uint32_t>(i + 1);
        machine.AddAdapter(id, "eth" + number, number, {{"NetworkAddress", "00112233" + number}});
        machine.registry->SetBinary(TcpipKey(id), "EnableDHCP", {1});
        machine.ipHelper->AddInterface(index, id);
        machine.ipHelper->addresses.push_back({{10, 0, 0, 1}, {255, 0, 0, 0}, index, 1});
    }
    RefreshNicInfo();
    EXPECT_THAT(Nics, SizeIs(adapters));
    for (const char* table : {"GetInterfaceInfo", "GetIpAddrTable", "GetIpForwardTable"})
        EXPECT_THAT(machine.ipHelper->diary, testing::Contains(table).Times(1));
    EXPECT_THAT(machine.ipHelper->diary, SizeIs(3 + adapters));
    return machine.registry->diary.size();
}

TEST(Refresh, RegistryReadsGrowByTheSameSmallNumberPerAdapterAndTablesAreReadOnce) {
    const std::size_t one = StepsOfARefresh(1);
    const std::size_t hundred = StepsOfARefresh(100);
    const std::size_t twoHundred = StepsOfARefresh(200);
    const std::size_t perAdapter = (hundred - one) / 99;
    EXPECT_EQ(hundred, one + 99 * perAdapter);
    EXPECT_EQ(twoHundred, one + 199 * perAdapter);
    EXPECT_LE(perAdapter, 16U);
    EXPECT_LE(one, 20U);
}

}  // namespace
}  // namespace corvane
