#include <algorithm>
#include <string>

#include <gtest/gtest.h>

#include "platform/windows/WindowsHost.h"
#include "tests/wine/contract/PlayedIpHelper.h"

/// What counts as a change from outside, on a system that changes as the test says.
namespace corvane {
namespace {

constexpr ULONG kIndex = 3;

class WindowsChangesTest : public testing::Test {
 protected:
    WindowsChangesTest() {
        IP_ADAPTER_INDEX_MAP entry{};
        entry.Index = kIndex;
        const std::wstring name = L"\\DEVICE\\TCPIP_{5A3C0F0E-1D2B-4C3A-9E8F-001122334455}";
        std::copy(name.begin(), name.end(), entry.Name);
        system_.interfaces = {entry};
        system_.addresses = {{kIndex, {192, 0, 2, 1}, 0, 0}};
        Row().dwIndex = kIndex;
        Row().dwSpeed = 100000000;
        Row().dwPhysAddrLen = 6;
        Row().dwAdminStatus = 1;
        Row().dwOperStatus = IF_OPER_STATUS_OPERATIONAL;
        EXPECT_FALSE(changes_.TakeChanges()) << "the first call begins the watch";
    }

    MIB_IFROW& Row() { return system_.rows[kIndex]; }

    /// Told once, and not again.
    void ExpectChange() {
        EXPECT_TRUE(changes_.TakeChanges());
        EXPECT_FALSE(changes_.TakeChanges());
    }

    contract::PlayedIpHelper system_;
    WindowsChanges changes_;
};

TEST_F(WindowsChangesTest, StatusSpeedAndMacAddressOfALiveInterfaceAreNoticed) {
    Row().dwOperStatus = IF_OPER_STATUS_DISCONNECTED;
    ExpectChange();
    Row().dwAdminStatus = 2;
    ExpectChange();
    Row().dwSpeed = 1000000000;
    ExpectChange();
    Row().bPhysAddr[5] = 1;
    ExpectChange();
}

TEST_F(WindowsChangesTest, CountersAreNoChange) {
    Row().dwInOctets = 1000;
    Row().dwOutOctets = 2000;
    EXPECT_FALSE(changes_.TakeChanges());
}

TEST_F(WindowsChangesTest, ARowThatCannotBeReadAnyMoreIsAChange) {
    system_.answers["GetIfEntry"] = {ERROR_INVALID_DATA, ERROR_INVALID_DATA};
    ExpectChange();
    ExpectChange();  // It can be read again.
}

TEST_F(WindowsChangesTest, InterfacesAddressesAndRoutesAreNoticed) {
    system_.addresses.push_back({kIndex, {192, 0, 2, 2}, 0, 0});
    ExpectChange();
    MIB_IPFORWARDROW route{};
    route.dwForwardIfIndex = kIndex;
    system_.routes = {route};
    ExpectChange();
    system_.routes[0].dwForwardMetric1 = 5;
    ExpectChange();
    system_.interfaces.clear();
    ExpectChange();
}

}  // namespace
}  // namespace corvane
