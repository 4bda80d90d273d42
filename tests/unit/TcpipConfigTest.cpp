#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fakes/Fakes.h"
#include "inventory/NicInfo.h"
#include "inventory/Stages.h"
#include "tests/unit/InventorySupport.h"

namespace corvane {
namespace {

using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using Bytes = std::vector<std::uint8_t>;
using Outcome = FakeIpHelper::Outcome;

constexpr std::uint32_t kLiveIndex = 3;

class TcpipConfig : public testing::Test {
 protected:
    TcpipConfig() {
        registry_.MakeKey(key_);
        nic_.Id = "{A}";
        nic_.TcpipBound = true;
    }

    const NicInfo& Read() {
        Nics.assign(1, nic_);
        RunStage(ReadTcpipConfig);
        return Nics[0];
    }

    const NicInfo& ReadLive() {
        nic_.IfIndex = kLiveIndex;
        return Read();
    }

    void Raw(const std::string& name, const std::string& bytes, std::uint32_t type = kRegMultiSz) {
        registry_.SetValue(key_, name, {type, {bytes.begin(), bytes.end()}});
    }

    void EnableDhcp() { registry_.SetDword(key_, "EnableDHCP", 1); }

    FakeMachine machine_;
    FakeRegistry& registry_ = *machine_.registry;
    FakeIpHelper& ipHelper_ = *machine_.ipHelper;
    const std::string key_ = "SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Parameters\\Interfaces\\{A}";
    NicInfo nic_;
};

// ---- interface metric and DHCP flag

TEST_F(TcpipConfig, TheInterfaceMetricIsFourLittleEndianBytesWhateverIsStored) {
    const std::vector<std::pair<Bytes, std::uint32_t>> table = {
        {{20, 0, 0, 0}, 20}, {{1, 2, 0, 0}, 513}, {{}, 0}, {{20}, 20}, {{20, 0, 0, 0, 9}, 20},
    };
    for (const auto& [bytes, metric] : table) {
        registry_.SetValue(key_, "InterfaceMetric", {kRegDword, bytes});
        EXPECT_EQ(Read().InterfaceMetric, metric) << testing::PrintToString(bytes);
    }
}

TEST_F(TcpipConfig, AMissingInterfaceMetricIs0) { EXPECT_EQ(Read().InterfaceMetric, 0U); }

TEST_F(TcpipConfig, OnlyTheFirstByteOfTheDhcpFlagCounts) {
    const std::vector<std::pair<Bytes, bool>> table = {
        {{1, 0, 0, 0}, true},  {{0, 0, 0, 0}, false}, {{1}, true},      {{0}, false},
        {{0, 1, 0, 0}, false}, {{255}, true},         {{'0', 0}, true}, {{}, false},
    };
    for (const auto& [bytes, enabled] : table) {
        registry_.SetBinary(key_, "EnableDHCP", bytes);
        EXPECT_EQ(Read().DhcpEnabled, enabled) << testing::PrintToString(bytes);
    }
}

TEST_F(TcpipConfig, WithoutTheFlagOrTheKeyDhcpIsOff) {
    EXPECT_FALSE(Read().DhcpEnabled);
    registry_.RemoveKey(key_);
    const NicInfo& nic = Read();
    EXPECT_FALSE(nic.DhcpEnabled);
    EXPECT_EQ(nic.InterfaceMetric, 0U);
    EXPECT_THAT(nic.DnsServers, ElementsAre(""));
    EXPECT_THAT(machine_.seat.diary, IsEmpty());
}

// ---- live addresses

TEST_F(TcpipConfig, LiveAddressesAreThoseOfTheInterfaceInTableOrder) {
    ipHelper_.addresses = {{{192, 168, 1, 9}, {255, 255, 255, 0}, kLiveIndex, 0xFFFF},
                           {{10, 0, 0, 1}, {255, 0, 0, 0}, 8, 1},
                           {{10, 0, 0, 2}, {255, 255, 0, 0}, kLiveIndex, 2}};
    const NicInfo& nic = ReadLive();
    EXPECT_THAT(nic.IpAddresses, ElementsAre("192.168.1.9", "10.0.0.2"));
    EXPECT_THAT(nic.SubnetMasks, ElementsAre("255.255.255.0", "255.255.0.0"));
    EXPECT_THAT(nic.IpRowFlags, ElementsAre(0xFFFFU, 2U));
    EXPECT_TRUE(nic.TcpipBound);
}

TEST_F(TcpipConfig, ALiveAdapterWithoutAddressesHoldsOneEmptyElementAndStaysBound) {
    registry_.SetMulti(key_, "IPAddress", {"10.9.9.9"});
    const NicInfo& nic = ReadLive();
    EXPECT_THAT(nic.IpAddresses, ElementsAre(""));
    EXPECT_THAT(nic.SubnetMasks, ElementsAre(""));
    EXPECT_THAT(nic.IpRowFlags, ElementsAre(0U));
    EXPECT_TRUE(nic.TcpipBound);
}

// ---- stored addresses

TEST_F(TcpipConfig, ADisabledAdapterShowsItsStoredAddresses) {
    ipHelper_.addresses = {{{10, 0, 0, 1}, {255, 0, 0, 0}, 0, 1}};
    registry_.SetMulti(key_, "IPAddress", {"192.168.1.9", "10.0.0.2"});
    registry_.SetMulti(key_, "SubnetMask", {"255.255.255.0", "255.0.0.0"});
    const NicInfo& nic = Read();
    EXPECT_THAT(nic.IpAddresses, ElementsAre("192.168.1.9", "10.0.0.2"));
    EXPECT_THAT(nic.SubnetMasks, ElementsAre("255.255.255.0", "255.0.0.0"));
    EXPECT_TRUE(nic.TcpipBound);
}

TEST_F(TcpipConfig, ALiveAdapterShowsItsStoredAddressesWhenTheTableCannotBeFetched) {
    ipHelper_.addresses = {{{10, 0, 0, 1}, {255, 0, 0, 0}, kLiveIndex, 1}};
    registry_.SetMulti(key_, "IPAddress", {"192.168.1.9"});
    registry_.SetMulti(key_, "SubnetMask", {"255.255.255.0"});
    for (const Outcome outcome : {Outcome::kNothingToRead, Outcome::kFailed}) {
        ipHelper_.addressesOutcome = outcome;
        EXPECT_THAT(ReadLive().IpAddresses, ElementsAre("192.168.1.9"));
    }
    EXPECT_THAT(machine_.seat.diary, IsEmpty());
}

TEST_F(TcpipConfig, WithDhcpTheStoredAddressesAreThoseOfTheLease) {
    EnableDhcp();
    registry_.SetText(key_, "DhcpIPAddress", "10.0.0.5");
    registry_.SetText(key_, "DhcpSubnetMask", "255.255.0.0");
    registry_.SetMulti(key_, "IPAddress", {"192.168.1.9"});
    registry_.SetMulti(key_, "SubnetMask", {"255.255.255.0"});
    const NicInfo& nic = Read();
    EXPECT_THAT(nic.IpAddresses, ElementsAre("10.0.0.5"));
    EXPECT_THAT(nic.SubnetMasks, ElementsAre("255.255.0.0"));
}

TEST_F(TcpipConfig, WithDhcpThereIsNoFallBackToTheStaticAddresses) {
    EnableDhcp();
    registry_.SetMulti(key_, "IPAddress", {"192.168.1.9"});
    registry_.SetMulti(key_, "SubnetMask", {"255.255.255.0"});
    const NicInfo& nic = Read();
    EXPECT_THAT(nic.IpAddresses, ElementsAre(""));
    EXPECT_FALSE(nic.TcpipBound);
}

TEST_F(TcpipConfig, WithoutDhcpTheAddressesOfAFormerLeaseAreNotShown) {
    registry_.SetText(key_, "DhcpIPAddress", "10.0.0.5");
    const NicInfo& nic = Read();
    EXPECT_THAT(nic.IpAddresses, ElementsAre(""));
    EXPECT_FALSE(nic.TcpipBound);
}

TEST_F(TcpipConfig, AnEmptyStoredAddressUnbindsTcpip) {
    for (const std::string& bytes : {""s, "\0"s, "\0\0"s}) {
        Raw("IPAddress", bytes);
        const NicInfo& nic = Read();
        EXPECT_THAT(nic.IpAddresses, ElementsAre(""));
        EXPECT_THAT(nic.SubnetMasks, ElementsAre(""));
        EXPECT_FALSE(nic.TcpipBound);
    }
}

TEST_F(TcpipConfig, AListsMissingTerminatorsAreMadeGood) {
    const std::vector<std::pair<std::string, std::vector<std::string>>> table = {
        {"10.0.0.1\0"
         "10.0.0.2\0\0"s,
         {"10.0.0.1", "10.0.0.2"}},  // as it should be
        {"10.0.0.1\0"
         "10.0.0.2\0"s,
         {"10.0.0.1", "10.0.0.2"}},  // one NUL at the end
        {"10.0.0.1\0"
         "10.0.0.25"s,
         {"10.0.0.1", "10.0.0.2"}},             // none: the last character goes
        {"10.0.0.1\0"s, {"10.0.0.1"}},          // a single text
        {"10.0.0.1\0\0\0"s, {"10.0.0.1", ""}},  // one NUL too many
        {"\0"
         "10.0.0.2\0\0"s,
         {"", "10.0.0.2"}},  // an empty first text
    };
    for (const auto& [bytes, addresses] : table) {
        Raw("IPAddress", bytes);
        const NicInfo& nic = Read();
        EXPECT_EQ(nic.IpAddresses, addresses) << testing::PrintToString(bytes);
        EXPECT_TRUE(nic.TcpipBound);
    }
}

TEST_F(TcpipConfig, StoredMasksHaveTheBoundsOfTheAddresses) {
    registry_.SetMulti(key_, "IPAddress", {"10.0.0.1", "10.0.0.2"});
    registry_.SetMulti(key_, "SubnetMask", {"255.0.0.0"});
    EXPECT_THAT(Read().SubnetMasks, ElementsAre("255.0.0.0", ""));
    registry_.SetMulti(key_, "SubnetMask", {"255.0.0.0", "255.255.0.0", "255.255.255.0"});
    EXPECT_THAT(Read().SubnetMasks, ElementsAre("255.0.0.0", "255.255.0.0"));
    registry_.RemoveValue(key_, "SubnetMask");
    EXPECT_THAT(Read().SubnetMasks, ElementsAre("", ""));
    EXPECT_THAT(Read().IpRowFlags, ElementsAre(0U, 0U));
}

// ---- gateways

IpForwardRow DefaultRoute(const Ipv4Bytes& nextHop, std::uint32_t index, std::uint32_t metric) {
    return {.destination = {}, .mask = {}, .nextHop = nextHop, .ifIndex = index, .metric1 = metric};
}

TEST_F(TcpipConfig, LiveGatewaysAreTheDefaultRoutesOfTheInterfaceInTableOrder) {
    ipHelper_.routes = {
        DefaultRoute({192, 168, 1, 254}, kLiveIndex, 20),
        DefaultRoute({10, 0, 0, 1}, 8, 1),
        DefaultRoute({192, 168, 1, 1}, kLiveIndex, 0),
        {.destination = {10, 0, 0, 0},
         .mask = {255, 0, 0, 0},
         .nextHop = {1, 1, 1, 1},
         .ifIndex = kLiveIndex},
        {.destination = {}, .mask = {128, 0, 0, 0}, .nextHop = {2, 2, 2, 2}, .ifIndex = kLiveIndex},
        {.destination = {0, 0, 0, 1}, .mask = {}, .nextHop = {3, 3, 3, 3}, .ifIndex = kLiveIndex}};
    const NicInfo& nic = ReadLive();
    EXPECT_THAT(nic.Gateways, ElementsAre("192.168.1.254", "192.168.1.1"));
    EXPECT_THAT(nic.GatewayMetrics, ElementsAre("20", "0"));
}

TEST_F(TcpipConfig, LiveMetricsOf0StayAsTheyAre) {
    registry_.SetDword(key_, "InterfaceMetric", 20);
    ipHelper_.routes = {DefaultRoute({192, 168, 1, 1}, kLiveIndex, 0)};
    EXPECT_THAT(ReadLive().GatewayMetrics, ElementsAre("0"));
}

TEST_F(TcpipConfig, ALiveAdapterWithoutDefaultRouteShowsNoGatewayAlthoughOneIsStored) {
    registry_.SetMulti(key_, "DefaultGateway", {"10.0.0.1"});
    const NicInfo& nic = ReadLive();
    EXPECT_THAT(nic.Gateways, ElementsAre(""));
    EXPECT_THAT(nic.GatewayMetrics, ElementsAre(""));
}

TEST_F(TcpipConfig, ADisabledAdapterShowsItsStoredGateways) {
    registry_.SetMulti(key_, "DefaultGateway", {"10.0.0.1", "10.0.0.2"});
    registry_.SetMulti(key_, "DefaultGatewayMetric", {"5", "10"});
    const NicInfo& nic = Read();
    EXPECT_THAT(nic.Gateways, ElementsAre("10.0.0.1", "10.0.0.2"));
    EXPECT_THAT(nic.GatewayMetrics, ElementsAre("5", "10"));
}

TEST_F(TcpipConfig, ALiveAdapterShowsItsStoredGatewaysWhenTheRoutesCannotBeFetched) {
    ipHelper_.routes = {DefaultRoute({192, 168, 1, 1}, kLiveIndex, 1)};
    ipHelper_.addresses = {{{192, 168, 1, 9}, {255, 255, 255, 0}, kLiveIndex, 1}};
    registry_.SetMulti(key_, "DefaultGateway", {"10.0.0.1"});
    registry_.SetMulti(key_, "DefaultGatewayMetric", {"7"});
    for (const Outcome outcome : {Outcome::kNothingToRead, Outcome::kFailed}) {
        ipHelper_.routesOutcome = outcome;
        const NicInfo& nic = ReadLive();
        EXPECT_THAT(nic.Gateways, ElementsAre("10.0.0.1"));
        EXPECT_THAT(nic.GatewayMetrics, ElementsAre("7"));
        EXPECT_THAT(nic.IpAddresses, ElementsAre("192.168.1.9"));
    }
    EXPECT_THAT(machine_.seat.diary, IsEmpty());
}

TEST_F(TcpipConfig, WithDhcpTheStoredGatewaysAreThoseOfTheLease) {
    EnableDhcp();
    registry_.SetMulti(key_, "DefaultGateway", {"10.0.0.1"});
    registry_.SetMulti(key_, "DefaultGatewayMetric", {"5"});
    EXPECT_THAT(Read().Gateways, ElementsAre(""));
    registry_.SetMulti(key_, "DhcpDefaultGateway", {"10.0.0.9"});
    registry_.SetMulti(key_, "DhcpDefaultGatewayMetric", {"6"});
    const NicInfo& nic = Read();
    EXPECT_THAT(nic.Gateways, ElementsAre("10.0.0.9"));
    EXPECT_THAT(nic.GatewayMetrics, ElementsAre("6"));
}

TEST_F(TcpipConfig, AStoredMetricWithoutAValueBecomesTheInterfaceMetric) {
    registry_.SetDword(key_, "InterfaceMetric", 20);
    registry_.SetMulti(key_, "DefaultGateway", {"10.0.0.1", "10.0.0.2", "10.0.0.3", "10.0.0.4"});
    registry_.SetMulti(key_, "DefaultGatewayMetric", {"0", "5", "metric"});
    EXPECT_THAT(Read().GatewayMetrics, ElementsAre("20", "5", "20", "20"));
}

TEST_F(TcpipConfig, AStoredMetricWithoutAValueIsAutomaticWhenTheInterfaceMetricIs0) {
    registry_.SetMulti(key_, "DefaultGateway", {"10.0.0.1", "10.0.0.2"});
    registry_.SetMulti(key_, "DefaultGatewayMetric", {"0"});
    EXPECT_THAT(Read().GatewayMetrics, ElementsAre("Automatic", "Automatic"));
    registry_.RemoveValue(key_, "DefaultGatewayMetric");
    EXPECT_THAT(Read().GatewayMetrics, ElementsAre("Automatic", "Automatic"));
}

TEST_F(TcpipConfig, MoreStoredMetricsThanGatewaysAreCut) {
    registry_.SetMulti(key_, "DefaultGateway", {"10.0.0.1"});
    registry_.SetMulti(key_, "DefaultGatewayMetric", {"5", "6"});
    EXPECT_THAT(Read().GatewayMetrics, ElementsAre("5"));
}

TEST_F(TcpipConfig, WithoutAStoredGatewayBothListsHoldOneEmptyElement) {
    registry_.SetDword(key_, "InterfaceMetric", 20);
    registry_.SetMulti(key_, "DefaultGatewayMetric", {"5"});
    for (const std::string& bytes : {""s, "\0"s, "\0\0"s}) {
        Raw("DefaultGateway", bytes);
        const NicInfo& nic = Read();
        EXPECT_THAT(nic.Gateways, ElementsAre(""));
        EXPECT_THAT(nic.GatewayMetrics, ElementsAre(""));
    }
}

TEST_F(TcpipConfig, AGatewayListWithoutTerminatorLosesItsLastCharacter) {
    Raw("DefaultGateway",
        "10.0.0.1\0"
        "10.0.0.25"s);
    Raw("DefaultGatewayMetric",
        "3\0"
        "41"s);
    const NicInfo& nic = Read();
    EXPECT_THAT(nic.Gateways, ElementsAre("10.0.0.1", "10.0.0.2"));
    EXPECT_THAT(nic.GatewayMetrics, ElementsAre("3", "4"));
}

// ---- DNS servers

TEST_F(TcpipConfig, StaticDnsServersAreSplitOnCommas) {
    registry_.SetText(key_, "NameServer", "1.1.1.1,8.8.8.8");
    registry_.SetText(key_, "DhcpNameServer", "9.9.9.9");
    EXPECT_THAT(Read().DnsServers, ElementsAre("1.1.1.1", "8.8.8.8"));
}

TEST_F(TcpipConfig, DnsServersOfTheLeaseAreSplitOnBlanks) {
    registry_.SetText(key_, "NameServer", "");
    registry_.SetText(key_, "DhcpNameServer", "9.9.9.9 8.8.8.8");
    EXPECT_THAT(Read().DnsServers, ElementsAre("9.9.9.9", "8.8.8.8"));
}

TEST_F(TcpipConfig, EachListOfDnsServersHasItsOwnSeparatorOnly) {
    registry_.SetText(key_, "NameServer", "1.1.1.1 8.8.8.8");
    EXPECT_THAT(Read().DnsServers, ElementsAre("1.1.1.1 8.8.8.8"));
    registry_.RemoveValue(key_, "NameServer");
    registry_.SetText(key_, "DhcpNameServer", "9.9.9.9,8.8.8.8");
    EXPECT_THAT(Read().DnsServers, ElementsAre("9.9.9.9,8.8.8.8"));
}

TEST_F(TcpipConfig, WithoutDnsServersTheListHoldsOneEmptyElement) {
    EXPECT_THAT(Read().DnsServers, ElementsAre(""));
    registry_.SetValue(key_, "NameServer", {kRegSz, {}});
    registry_.SetText(key_, "DhcpNameServer", "");
    EXPECT_THAT(Read().DnsServers, ElementsAre(""));
}

TEST_F(TcpipConfig, StaticDnsServersOfADhcpAdapterComeFirst) {
    EnableDhcp();
    registry_.SetText(key_, "NameServer", "1.1.1.1");
    registry_.SetText(key_, "DhcpNameServer", "9.9.9.9");
    EXPECT_THAT(ReadLive().DnsServers, ElementsAre("1.1.1.1"));
}

// ---- several adapters

TEST_F(TcpipConfig, TablesAreReadOnceForAllAdaptersAddressesFirst) {
    Nics.assign(5, NicInfo());
    RunStage(ReadTcpipConfig);
    EXPECT_THAT(ipHelper_.diary, ElementsAre("GetIpAddrTable", "GetIpForwardTable"));
}

TEST_F(TcpipConfig, EachAdapterGetsItsOwnValues) {
    Nics.assign(2, NicInfo());
    Nics[0].Id = "{A}";
    Nics[1].Id = "{B}";
    registry_.SetMulti(TcpipKey("{A}"), "IPAddress", {"10.0.0.1"});
    registry_.SetText(TcpipKey("{A}"), "NameServer", "1.1.1.1");
    registry_.SetMulti(TcpipKey("{B}"), "IPAddress", {"10.0.0.2"});
    RunStage(ReadTcpipConfig);
    EXPECT_THAT(Nics[0].IpAddresses, ElementsAre("10.0.0.1"));
    EXPECT_THAT(Nics[0].DnsServers, ElementsAre("1.1.1.1"));
    EXPECT_THAT(Nics[1].IpAddresses, ElementsAre("10.0.0.2"));
    EXPECT_THAT(Nics[1].DnsServers, ElementsAre(""));
}

}  // namespace
}  // namespace corvane
