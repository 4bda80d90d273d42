#include <new>
#include <optional>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "tcpip/RegistryWriters.h"
#include "tests/unit/CoreSupport.h"

namespace corvane {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

class WriteTcpipSettingsTest : public testing::Test {
 protected:
    WriteTcpipSettingsTest() {
        machine.AddAdapter(kFirstId, "Office", "0003");
        machine.AddAdapter(kSecondId, "Lab", "0007");
        Nics = {NicRecord(kFirstId, "Office", "0003"), NicRecord(kSecondId, "Lab", "0007")};
    }

    void Write(int flags) {
        WriteTcpipSettings(1, static_cast<std::uint8_t>(flags), {"10.0.0.5", "10.0.0.6"},
                           {"255.0.0.0", "255.255.0.0"}, {"10.0.0.1", "10.0.0.2"}, {"1", "20"},
                           {"8.8.8.8", "1.1.1.1"});
    }

    /// Makes the write of one value fail.
    void FailAt(const std::string& valueName, Win32Error code) {
        machine.registry->fail = [=](const std::string& operation, const std::string&,
                                     const std::string& name) -> std::optional<Win32Error> {
            if (operation == "write" && name == valueName) return code;
            return std::nullopt;
        };
    }

    [[nodiscard]] std::vector<NamedValue> Writes() const { return WritesTo(*machine.registry, key); }

    FakeMachine machine;
    const std::string key =
        "SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Parameters\\Interfaces\\" + std::string(kSecondId);
    const NamedValue ips{"IPAddress", MultiSz("10.0.0.5" + kNul + "10.0.0.6" + kNul + kNul)};
    const NamedValue masks{"SubnetMask", MultiSz("255.0.0.0" + kNul + "255.255.0.0" + kNul + kNul)};
    const NamedValue gateways{"DefaultGateway", MultiSz("10.0.0.1" + kNul + "10.0.0.2" + kNul + kNul)};
    const NamedValue metrics{"DefaultGatewayMetric", MultiSz("1" + kNul + "20" + kNul + kNul)};
    const NamedValue dns{"NameServer", Sz("8.8.8.8,1.1.1.1" + kNul)};
    const NamedValue staticAddress{"EnableDHCP", Dword(0)};
    const NamedValue dhcp{"EnableDHCP", Dword(1)};
    const NamedValue noIps{"IPAddress", MultiSz("0.0.0.0" + kNul + kNul)};
    const NamedValue noMasks{"SubnetMask", MultiSz("0.0.0.0" + kNul + kNul)};
    const NamedValue noGateways{"DefaultGateway", MultiSz(kNul)};
    const NamedValue noMetrics{"DefaultGatewayMetric", MultiSz(kNul)};
    const NamedValue noDns{"NameServer", Sz(kNul)};
};

TEST_F(WriteTcpipSettingsTest, DhcpResetsTheListsAndClearsTheDnsServers) {
    Write(1);
    EXPECT_THAT(Writes(), ElementsAre(dhcp, noIps, noMasks, noGateways, noMetrics, noDns));
    EXPECT_THAT(machine.seat.diary, IsEmpty());
}

TEST_F(WriteTcpipSettingsTest, DhcpWithDnsServersKeepsThem) {
    Write(1 + 32);
    EXPECT_THAT(Writes(), ElementsAre(dhcp, noIps, noMasks, noGateways, noMetrics, dns));
}

TEST_F(WriteTcpipSettingsTest, DhcpIgnoresTheGivenAddressesAndGateways) {
    Write(1 + 8 + 16);
    EXPECT_THAT(Writes(), ElementsAre(dhcp, noIps, noMasks, noGateways, noMetrics, noDns));
}

TEST_F(WriteTcpipSettingsTest, AddressesAlone) {
    Write(8);
    EXPECT_THAT(Writes(), ElementsAre(staticAddress, ips, masks));
}

TEST_F(WriteTcpipSettingsTest, GatewaysAlone) {
    Write(16);
    EXPECT_THAT(Writes(), ElementsAre(staticAddress, gateways, metrics));
}

TEST_F(WriteTcpipSettingsTest, DnsServersAlone) {
    Write(32);
    EXPECT_THAT(Writes(), ElementsAre(staticAddress, dns));
}

TEST_F(WriteTcpipSettingsTest, EverythingStaticInOrder) {
    Write(8 + 16 + 32);
    EXPECT_THAT(Writes(), ElementsAre(staticAddress, ips, masks, gateways, metrics, dns));
}

TEST_F(WriteTcpipSettingsTest, NoFlagTurnsDhcpOffAndLeavesTheRestAlone) {
    Write(0);
    EXPECT_THAT(Writes(), ElementsAre(staticAddress));
}

TEST_F(WriteTcpipSettingsTest, FlagsOfTheMacAddressAreNotLookedAt) {
    Write(2 + 4);
    EXPECT_THAT(Writes(), ElementsAre(staticAddress));
}

TEST_F(WriteTcpipSettingsTest, OnlyTheAdaptersOwnKeyIsWritten) {
    Write(8 + 16 + 32);
    EXPECT_EQ(machine.registry->writes.size(), Writes().size());
}

TEST_F(WriteTcpipSettingsTest, OneEntryListHasTwoNulsAtItsEnd) {
    WriteTcpipSettings(1, 8, {"10.0.0.5"}, {"255.0.0.0"}, {}, {}, {});
    EXPECT_THAT(Writes(),
                ElementsAre(staticAddress, NamedValue("IPAddress", MultiSz("10.0.0.5" + kNul + kNul)),
                            NamedValue("SubnetMask", MultiSz("255.0.0.0" + kNul + kNul))));
}

TEST_F(WriteTcpipSettingsTest, EmptyDnsListIsALoneNul) {
    WriteTcpipSettings(1, 32, {}, {}, {}, {}, {});
    EXPECT_THAT(Writes(), ElementsAre(staticAddress, noDns));
}

TEST_F(WriteTcpipSettingsTest, TextsAreWrittenAsTypedInTheCodePage) {
    WriteTcpipSettings(1, 8, {"b\u00FCro", "\u4E2D"}, {"x y", ""}, {}, {}, {});
    EXPECT_THAT(Writes(), ElementsAre(staticAddress,
                                      NamedValue("IPAddress", MultiSz("b\xFCro" + kNul + "?" + kNul + kNul)),
                                      NamedValue("SubnetMask", MultiSz("x y" + kNul + kNul + kNul))));
}

TEST_F(WriteTcpipSettingsTest, StoredListsReadBackWithAnEmptyEntryAtTheEnd) {
    Write(8);
    const std::vector<std::uint8_t> bytes = machine.registry->RawBytes(key, "IPAddress");
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()), "10.0.0.5" + kNul + "10.0.0.6" + kNul + kNul);
}

TEST_F(WriteTcpipSettingsTest, AdapterThatDoesNotExistEndsQuietly) {
    WriteTcpipSettings(2, 1, {}, {}, {}, {}, {});
    WriteTcpipSettings(-1, 1, {}, {}, {}, {}, {});
    EXPECT_THAT(machine.registry->diary, IsEmpty());
    EXPECT_THAT(machine.seat.diary, IsEmpty());
}

TEST_F(WriteTcpipSettingsTest, PositionThatIsTooLargeForAWriterIsNoAdapter) {
    EXPECT_EQ(WriterIndex(1), 1);
    EXPECT_EQ(WriterIndex(32767), 32767);
    EXPECT_EQ(WriterIndex(32768), -1);
    EXPECT_EQ(WriterIndex(65537), -1);
}

TEST_F(WriteTcpipSettingsTest, ExceptionOfTheWorkEndsItQuietly) {
    machine.registry->fail = [](const std::string&, const std::string&,
                                const std::string& name) -> std::optional<Win32Error> {
        if (name == "SubnetMask") throw std::bad_alloc();
        return std::nullopt;
    };
    Write(8);
    EXPECT_THAT(Writes(), ElementsAre(staticAddress, ips, masks));
    EXPECT_THAT(machine.seat.diary, IsEmpty());
}

TEST_F(WriteTcpipSettingsTest, WhatIsNoExceptionOfTheWorkGoesOn) {
    machine.registry->fail = [](const std::string&, const std::string&,
                                const std::string&) -> std::optional<Win32Error> { throw 7; };
    EXPECT_THROW(Write(8), int);

    struct ClosingSeat : NullSeat {
        BoxAnswer ShowBox(const std::string&, const std::string&, BoxIcon, BoxButtons) override {
            throw std::runtime_error("the box cannot be shown");
        }
    } seat;
    const ScopedSeat installed(seat);
    FailAt("IPAddress", Win32Error::kAccessDenied);
    EXPECT_THROW(Write(8), std::runtime_error);
}

TEST_F(WriteTcpipSettingsTest, MissingKeyFailsAtTheFirstValue) {
    machine.registry->RemoveKey(key);
    Write(1);
    EXPECT_THAT(machine.registry->diary, ElementsAre("write " + key + "\\EnableDHCP"));
    EXPECT_THAT(machine.seat.boxes,
                ElementsAre(Critical("Error! Cannot Write Registry",
                                     "Error while writing in windows registry.\r\n\r\nRegistry Path: "
                                     "HKEY_LOCAL_MACHINE\\" +
                                         key +
                                         "\\EnableDHCP\r\n\r\nError: (2) Bad Key Name\r\n\r\nClick OK to "
                                         "continue")));
}

struct FailureCase {
    int flags;
    std::string valueName;
    std::vector<std::string> tried;  ///< Names up to the failing one.
};

void PrintTo(const FailureCase& failure, std::ostream* out) {
    *out << failure.flags << " " << failure.valueName;
}

class WriteTcpipFailureTest : public WriteTcpipSettingsTest,
                              public testing::WithParamInterface<FailureCase> {};

TEST_P(WriteTcpipFailureTest, EndsTheRoutineWithOneBoxAndKeepsWhatWasWritten) {
    const FailureCase& failure = GetParam();
    FailAt(failure.valueName, Win32Error::kAccessDenied);
    Write(failure.flags);
    std::vector<std::string> lines;
    for (const std::string& name : failure.tried) {
        lines.push_back("write " + key + "\\" + name);
        EXPECT_EQ(machine.registry->HasValue(key, name), name != failure.valueName) << name;
    }
    EXPECT_EQ(machine.registry->diary, lines);
    EXPECT_THAT(machine.seat.boxes,
                ElementsAre(Critical("Error! Cannot Write Registry",
                                     "Error while writing in windows registry.\r\n\r\nRegistry Path: "
                                     "HKEY_LOCAL_MACHINE\\" +
                                         key + "\\" + failure.valueName +
                                         "\r\n\r\nError: (5) Access to this key is denied\r\n\r\nClick OK to "
                                         "continue")));
}

INSTANTIATE_TEST_SUITE_P(
    At, WriteTcpipFailureTest,
    testing::Values(
        FailureCase{1, "EnableDHCP", {"EnableDHCP"}},
        FailureCase{1, "IPAddress", {"EnableDHCP", "IPAddress"}},
        FailureCase{1, "SubnetMask", {"EnableDHCP", "IPAddress", "SubnetMask"}},
        FailureCase{1, "DefaultGateway", {"EnableDHCP", "IPAddress", "SubnetMask", "DefaultGateway"}},
        FailureCase{1,
                    "DefaultGatewayMetric",
                    {"EnableDHCP", "IPAddress", "SubnetMask", "DefaultGateway", "DefaultGatewayMetric"}},
        FailureCase{1,
                    "NameServer",
                    {"EnableDHCP", "IPAddress", "SubnetMask", "DefaultGateway", "DefaultGatewayMetric",
                     "NameServer"}},
        FailureCase{56, "EnableDHCP", {"EnableDHCP"}},
        FailureCase{56, "IPAddress", {"EnableDHCP", "IPAddress"}},
        FailureCase{56, "SubnetMask", {"EnableDHCP", "IPAddress", "SubnetMask"}},
        FailureCase{56, "DefaultGateway", {"EnableDHCP", "IPAddress", "SubnetMask", "DefaultGateway"}},
        FailureCase{56,
                    "DefaultGatewayMetric",
                    {"EnableDHCP", "IPAddress", "SubnetMask", "DefaultGateway", "DefaultGatewayMetric"}},
        FailureCase{56,
                    "NameServer",
                    {"EnableDHCP", "IPAddress", "SubnetMask", "DefaultGateway", "DefaultGatewayMetric",
                     "NameServer"}}),
    [](const auto& failure) {
        return failure.param.valueName + (failure.param.flags == 1 ? "WithDhcp" : "Static");
    });

}  // namespace
}  // namespace corvane
