#include <algorithm>
#include <cstdint>
#include <cstring>
#include <deque>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "fakes/Fakes.h"
#include "inventory/GetNicInfo.h"
#include "inventory/NicInfo.h"
#include "platform/IphlpApi.h"
#include "platform/RegistryKeys.h"
#include "platform/windows/WindowsIpHelper.h"
#include "tcpip/AddressOperations.h"
#include "tests/wine/contract/PlayedIpHelper.h"

/// What the IP Helper's functions are handed, and what is made of their answers: on a system that accepts
/// changes, as Wine does not.
namespace corvane {
namespace {

using contract::PlayedIpHelper;
using Contexts = std::vector<ULONG>;
using Lines = std::vector<std::string>;
using Words = std::vector<std::uint16_t>;

constexpr Ipv4Bytes kFirst{192, 0, 2, 1};
constexpr Ipv4Bytes kSecond{192, 0, 2, 2};
constexpr Ipv4Bytes kThird{198, 51, 100, 7};
constexpr Ipv4Bytes kMask{255, 255, 255, 0};
constexpr Ipv4Bytes kGateway{192, 0, 2, 254};
constexpr std::uint32_t kIndex = 3;
constexpr char kId[] = "{5A3C0F0E-1D2B-4C3A-9E8F-001122334455}";

/// The bytes in memory order.
DWORD Dword(const Ipv4Bytes& bytes) {
    return bytes[0] | static_cast<DWORD>(bytes[1]) << 8 | static_cast<DWORD>(bytes[2]) << 16 |
           static_cast<DWORD>(bytes[3]) << 24;
}

/// Every byte of the structures.
template <class Structure>
std::vector<std::uint8_t> BytesOf(const std::vector<Structure>& structures) {
    std::vector<std::uint8_t> bytes(structures.size() * sizeof(Structure));
    if (!bytes.empty()) std::memcpy(bytes.data(), structures.data(), bytes.size());
    return bytes;
}

IP_ADAPTER_INDEX_MAP Interface(ULONG index, const std::wstring& name) {
    IP_ADAPTER_INDEX_MAP entry{};
    entry.Index = index;
    std::copy(name.begin(), name.end(), entry.Name);
    return entry;
}

/// A default route as it must be handed over: what is not named is zero.
MIB_IPFORWARDROW DefaultRoute(DWORD metric) {
    MIB_IPFORWARDROW row{};
    row.dwForwardNextHop = Dword(kGateway);
    row.dwForwardIfIndex = kIndex;
    row.dwForwardType = 4;
    row.dwForwardProto = 3;
    row.dwForwardMetric1 = metric;
    return row;
}

class WindowsIpHelperCalls : public testing::Test {
 protected:
    /// The words of the address table.
    Words ReadWords() {
        const TableRead<IpAddrRow> table = helper_->GetIpAddrTable();
        EXPECT_EQ(table.outcome, TableRead<IpAddrRow>::Outcome::kRows);
        Words words;
        for (const IpAddrRow& row : table.rows) words.push_back(row.nteContext);
        return words;
    }
    /// Has the address of each row deleted by its word; the contexts that the system was handed.
    Contexts DeleteAll() {
        system_.deleted.clear();
        for (const std::uint16_t word : ReadWords())
            EXPECT_EQ(helper_->DeleteIPAddress(word), Win32Error::kSuccess);
        return system_.deleted;
    }

    PlayedIpHelper system_;
    std::shared_ptr<WindowsIpHelper> helper_ = std::make_shared<WindowsIpHelper>();
};

// ---- contexts of addresses ----

TEST_F(WindowsIpHelperCalls, WhereTheRowsWordIsTheContextItIsHandedOverAsItIs) {
    system_.addresses = {{3, kFirst, 2, 2}, {3, kSecond, 0x8001, 0x8001}, {4, kThird, 0xFFFF, 0xFFFF}};
    EXPECT_EQ(ReadWords(), (Words{2, 0x8001, 0xFFFF}));
    EXPECT_EQ(DeleteAll(), (Contexts{2, 0x8001, 0xFFFF}));
}

TEST_F(WindowsIpHelperCalls, WhereTheRowsHaveNoWordTheContextIsTheAdapters) {
    system_.addresses = {{3, kFirst, 0, 0x0102A8C0},
                         {3, kSecond, 0, 1},
                         {3, kThird, 0, 0xFFFF0002},
                         {4, kFirst, 0, 0x0202A8C0}};
    EXPECT_EQ(DeleteAll(), (Contexts{0x0102A8C0, 1, 0xFFFF0002, 0x0202A8C0}));
}

TEST_F(WindowsIpHelperCalls, AWordThatIsPartOfTheContextOnlyIsNotHandedOver) {
    system_.addresses = {{3, kFirst, 5, 0x00050005}, {3, kSecond, 6, 6}};
    EXPECT_EQ(DeleteAll(), (Contexts{0x00050005, 6}));
}

TEST_F(WindowsIpHelperCalls, WithoutAContextInTheAdaptersTableTheRowsWordIsHandedOver) {
    system_.addresses = {{3, kFirst, 9, 0}, {3, kSecond, 0, 0x10000}};
    EXPECT_EQ(DeleteAll(), (Contexts{9, 0x10000}));
}

TEST_F(WindowsIpHelperCalls, WithoutAnAdaptersTableTheRowsWordIsHandedOver) {
    system_.addresses = {{3, kFirst, 9, 0x10000}, {3, kSecond, 10, 10}};
    for (const std::deque<DWORD>& answers :
         {std::deque<DWORD>{ERROR_NO_DATA}, {ERROR_NOT_SUPPORTED}, {NO_ERROR, ERROR_INVALID_DATA}}) {
        system_.answers["GetAdaptersInfo"] = answers;
        EXPECT_EQ(ReadWords(), (Words{9, 10}));
        EXPECT_EQ(helper_->DeleteIPAddress(9), Win32Error::kSuccess);
    }
    EXPECT_EQ(system_.deleted, (Contexts{9, 9, 9}));
}

TEST_F(WindowsIpHelperCalls, ContextsAreThoseOfTheLatestReading) {
    system_.addresses = {{3, kFirst, 0, 0x10000}};
    EXPECT_EQ(DeleteAll(), Contexts{0x10000});
    system_.addresses = {{3, kFirst, 0, 0x20000}};
    EXPECT_EQ(DeleteAll(), Contexts{0x20000});
}

TEST_F(WindowsIpHelperCalls, AnAddressIsAddedAsItLiesInMemoryAndDeletedByTheContextThatWasAnswered) {
    system_.contextOfAdded = 0x0A0B0C0D;
    std::uint32_t context = 0;
    EXPECT_EQ(helper_->AddIPAddress(kFirst, kMask, kIndex, context), Win32Error::kSuccess);
    EXPECT_EQ(system_.added, (std::vector<PlayedIpHelper::Added>{{Dword(kFirst), Dword(kMask), kIndex}}));
    EXPECT_EQ(context, 0x0A0B0C0DU);
    EXPECT_EQ(helper_->DeleteIPAddress(context), Win32Error::kSuccess);
    EXPECT_EQ(system_.deleted, Contexts{0x0A0B0C0D});
}

TEST_F(WindowsIpHelperCalls, AnAnsweredContextIsItselfWhateverStoodForOthersBefore) {
    system_.addresses = {{3, kFirst, 0, 0x10000}};
    const std::uint16_t word = ReadWords().at(0);
    system_.contextOfAdded = word;
    std::uint32_t context = 0;
    EXPECT_EQ(helper_->AddIPAddress(kSecond, kMask, kIndex, context), Win32Error::kSuccess);
    EXPECT_EQ(helper_->DeleteIPAddress(context), Win32Error::kSuccess);
    EXPECT_EQ(system_.deleted, Contexts{word});
}

TEST_F(WindowsIpHelperCalls, WhatTheSystemSaysOfAnAddressIsHandedBack) {
    system_.answers = {{"AddIPAddress", {5010}}, {"DeleteIPAddress", {31}}};
    system_.contextOfAdded = 7;
    std::uint32_t context = 99;
    EXPECT_EQ(helper_->AddIPAddress(kFirst, kMask, kIndex, context), Win32Error::kObjectAlreadyExists);
    EXPECT_EQ(context, 99U);
    EXPECT_EQ(helper_->DeleteIPAddress(1), Win32Error::kGenFailure);
}

// ---- tables ----

TEST_F(WindowsIpHelperCalls, TablesAreAskedForTheirSizeFirstAndForRowsInOrder) {
    system_.interfaces = {Interface(3, L"\\DEVICE\\TCPIP_{A}")};
    system_.addresses = {{3, kFirst, 9, 9}};
    system_.routes = {DefaultRoute(20)};
    const std::string adapters = std::to_string(sizeof(IP_ADAPTER_INFO));
    helper_->GetInterfaceInfo();
    helper_->GetIpAddrTable();
    helper_->GetIpForwardTable();
    EXPECT_EQ(system_.reads, (Lines{"GetInterfaceInfo: size", "GetInterfaceInfo: 264 bytes",
                                    "GetIpAddrTable sorted: size", "GetIpAddrTable sorted: 28 bytes",
                                    "GetAdaptersInfo: size", "GetAdaptersInfo: " + adapters + " bytes",
                                    "GetIpForwardTable sorted: size", "GetIpForwardTable sorted: 60 bytes"}));
}

TEST_F(WindowsIpHelperCalls, ATableThatGrowsAfterItsSizeWasToldIsAskedForAgain) {
    system_.addresses = {{3, kFirst, 9, 9}};
    system_.afterSize = [this] {
        system_.addresses.push_back({3, kSecond, 10, 10});
        system_.afterSize = nullptr;
    };
    EXPECT_EQ(ReadWords(), (Words{9, 10}));
    system_.reads.resize(3);
    EXPECT_EQ(system_.reads, (Lines{"GetIpAddrTable sorted: size", "GetIpAddrTable sorted: 28 bytes",
                                    "GetIpAddrTable sorted: 52 bytes"}));
}

TEST_F(WindowsIpHelperCalls, WhatATableReadComesToIsToldApart) {
    using Outcome = TableRead<IpForwardRow>::Outcome;
    system_.answers["GetIpForwardTable"] = {ERROR_NO_DATA};
    EXPECT_EQ(helper_->GetIpForwardTable().outcome, Outcome::kNothingToRead);
    EXPECT_EQ(system_.reads, Lines{"GetIpForwardTable sorted: size"});
    system_.answers["GetIpForwardTable"] = {ERROR_INSUFFICIENT_BUFFER, ERROR_NOT_SUPPORTED};
    const TableRead<IpForwardRow> failed = helper_->GetIpForwardTable();
    EXPECT_EQ(failed.outcome, Outcome::kFailed);
    EXPECT_EQ(failed.code, Win32Error::kNotSupported);
}

// ---- through the program's own operations ----

/// A connection with a live interface, on the played system.
class WindowsIpHelperOperations : public WindowsIpHelperCalls {
 protected:
    WindowsIpHelperOperations() {
        CurrentPlatform().ipHelper = helper_;
        machine_.AddAdapter(kId, "LAN", "0007");
        const std::string id = kId;
        system_.interfaces = {Interface(7, L"\\DEVICE\\TCPIP_{OTHER}"),
                              Interface(kIndex, L"\\DEVICE\\TCPIP_" + std::wstring(id.begin(), id.end()))};
        system_.addresses = {{kIndex, kFirst, 0, 0x0102A8C0}, {kIndex, kSecond, 0, 0x0202A8C0}};
        machine_.registry->SetMulti(TcpipKey(kId), "IPAddress", {"192.0.2.1", "192.0.2.2"});
        machine_.registry->SetMulti(TcpipKey(kId), "SubnetMask", {"255.255.255.0", "255.255.255.0"});
        machine_.registry->SetMulti(TcpipKey(kId), "DefaultGateway", {"192.0.2.254"});
        machine_.registry->SetMulti(TcpipKey(kId), "DefaultGatewayMetric", {"20"});
        RefreshNicInfo();
    }

    /// What the user was told.
    Lines Boxes() {
        Lines texts;
        for (const FakeSeat::Box& box : machine_.seat.boxes) texts.push_back(box.text);
        return texts;
    }

    void AddTheGateway(std::uint32_t metric) {
        accepted_ = AddGateway(0, {"192.0.2.254", kGateway}, metric, false);
    }

    FakeMachine machine_;
    bool accepted_ = false;
};

TEST_F(WindowsIpHelperOperations, AnAddressIsRemovedByTheContextThatItsAdapterTells) {
    ASSERT_EQ(Nics.at(0).IfIndex, kIndex);
    ASSERT_EQ(Nics.at(0).IpAddresses, (Lines{"192.0.2.1", "192.0.2.2"}));
    RemoveIPAddress(0, "192.0.2.2", Nics.at(0).IpRowFlags.at(1));
    EXPECT_EQ(system_.deleted, Contexts{0x0202A8C0});
    RemoveIPAddress(0, "192.0.2.1", Nics.at(0).IpRowFlags.at(0));
    EXPECT_EQ(system_.deleted, (Contexts{0x0202A8C0, 0x0102A8C0}));
    EXPECT_EQ(Boxes(), Lines());
}

TEST_F(WindowsIpHelperOperations, AnAddressIsAddedToTheInterfaceOfTheConnection) {
    EXPECT_TRUE(AddIPAddress(0, {"198.51.100.7", kThird}, {"255.255.255.0", kMask}, false));
    EXPECT_EQ(system_.added, (std::vector<PlayedIpHelper::Added>{{Dword(kThird), Dword(kMask), kIndex}}));
}

TEST_F(WindowsIpHelperOperations, AGatewayIsADefaultRouteWithNothingElseInIt) {
    AddTheGateway(20);
    EXPECT_TRUE(accepted_);
    EXPECT_EQ(BytesOf(system_.routesMade), BytesOf(std::vector{DefaultRoute(20)}));
    RemoveGateway(0, "192.0.2.254");
    EXPECT_EQ(BytesOf(system_.routesDeleted), BytesOf(std::vector{DefaultRoute(0)}));
    EXPECT_EQ(Boxes(), Lines());
}

TEST_F(WindowsIpHelperOperations, AMetricBelowTheInterfacesOwnThatIsRefusedIsRaisedToIt) {
    system_.answers["CreateIpForwardEntry"] = {ERROR_BAD_ARGUMENTS};
    system_.metrics = {{2, 50}, {kIndex, 25}, {7, 75}};
    AddTheGateway(20);
    EXPECT_TRUE(accepted_);
    EXPECT_EQ(BytesOf(system_.routesMade), BytesOf(std::vector{DefaultRoute(20), DefaultRoute(25)}));
    EXPECT_EQ(system_.metricTables, 0) << "the table is freed";
    EXPECT_EQ(Boxes(), Lines());
}

TEST_F(WindowsIpHelperOperations, ARaisedMetricThatIsRefusedTooIsAnError) {
    system_.answers["CreateIpForwardEntry"] = {ERROR_BAD_ARGUMENTS, 5010};
    system_.metrics = {{kIndex, 25}};
    IpForwardRow row;
    row.ifIndex = kIndex;
    EXPECT_EQ(helper_->CreateIpForwardEntry(row), Win32Error::kObjectAlreadyExists);
    EXPECT_EQ(system_.routesMade.size(), 2U);
}

TEST_F(WindowsIpHelperOperations, ARefusalForAnotherReasonIsFinal) {
    const auto refused = [&](DWORD code) {
        system_.answers["CreateIpForwardEntry"] = {code};
        system_.routesMade.clear();
        IpForwardRow row;
        row.ifIndex = kIndex;
        row.metric1 = 25;
        EXPECT_EQ(Number(helper_->CreateIpForwardEntry(row)), code);
        EXPECT_EQ(system_.routesMade.size(), 1U);
        EXPECT_EQ(system_.metricTables, 0);
    };
    refused(ERROR_BAD_ARGUMENTS);  // The interface is not in the table.
    system_.metrics = {{kIndex, 25}};
    refused(ERROR_BAD_ARGUMENTS);  // The metric is high enough.
    system_.metrics = {{kIndex, 26}};
    refused(ERROR_INVALID_PARAMETER);
    system_.answers["GetIpInterfaceTable"] = {ERROR_NOT_SUPPORTED};
    refused(ERROR_BAD_ARGUMENTS);
}

TEST_F(WindowsIpHelperOperations, LeasesAreReleasedAndRenewedWithTheEntryOfTheInterface) {
    const std::vector<IP_ADAPTER_INDEX_MAP> entry = {system_.interfaces.at(1)};
    EXPECT_EQ(ReleaseByIndex(kIndex), Win32Error::kSuccess);
    EXPECT_EQ(BytesOf(system_.released), BytesOf(entry));
    EXPECT_TRUE(system_.renewed.empty());
    system_.answers["IpRenewAddress"] = {ERROR_SEM_TIMEOUT};
    EXPECT_EQ(RenewByIndex(kIndex), Win32Error::kSemTimeout);
    EXPECT_EQ(BytesOf(system_.renewed), BytesOf(entry));
    EXPECT_EQ(system_.released.size(), 1U);
}

TEST_F(WindowsIpHelperOperations, TheNameOfAnEntryMayFillItsPlaceAndHaveAnyLetters) {
    std::wstring name = L"\\DEVICE\\TCPIP_{\u00E4\u20AC\u4E2D\U0001F600";
    name.resize(MAX_ADAPTER_NAME - 1, L'x');
    system_.interfaces = {Interface(kIndex, name)};
    EXPECT_EQ(ReleaseByIndex(kIndex), Win32Error::kSuccess);
    EXPECT_EQ(BytesOf(system_.released), BytesOf(system_.interfaces));
}

TEST_F(WindowsIpHelperOperations, AnInterfaceThatIsNotListedHasNothingReleased) {
    EXPECT_EQ(ReleaseByIndex(99), Win32Error::kSuccess);
    EXPECT_EQ(RenewByIndex(99), Win32Error::kSuccess);
    EXPECT_TRUE(system_.released.empty() && system_.renewed.empty());
}

}  // namespace
}  // namespace corvane
