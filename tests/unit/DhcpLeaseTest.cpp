#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/RegistryValues.h"
#include "platform/linux/dhcp/DhcpLease.h"

namespace corvane {
namespace {

using Variables = std::map<std::string, std::string>;

const Variables kUsual = {{"ip", "10.0.0.7"},
                          {"mask", "24"},
                          {"subnet", "255.255.255.0"},
                          {"router", "10.0.0.1"},
                          {"dns", "10.0.0.2 9.9.9.9"},
                          {"domain", "example.test"},
                          {"lease", "120"},
                          {"serverid", "10.0.0.3"},
                          {"opt58", "0000003c"},
                          {"opt59", "00000069"}};

LeaseReading Udhcpc(const std::string& event, const Variables& variables) {
    return ReadReport({"1", event, variables});
}

/// The usual variables with one of them changed.
LeaseReading BoundWith(const std::string& name, const std::string& value) {
    Variables variables = kUsual;
    variables[name] = value;
    return Udhcpc("bound", variables);
}

LeaseReading BoundWithout(const std::string& name) {
    Variables variables = kUsual;
    variables.erase(name);
    return Udhcpc("bound", variables);
}

LeaseRoute Route(Ipv4Bytes destination, std::uint8_t prefix, std::optional<Ipv4Bytes> gateway) {
    return {destination, prefix, gateway};
}

RegistryValue ValueOf(const std::vector<NamedValue>& values, const std::string& name) {
    for (const NamedValue& value : values) {
        if (value.name == name) return value.value;
    }
    ADD_FAILURE() << "no value " << name;
    return {};
}

RegistryValue Bytes(std::uint32_t type, const std::string& bytes) {
    return {type, {bytes.begin(), bytes.end()}};
}

RegistryValue Dword(std::uint32_t value) { return {kRegDword, DwordBytes(value)}; }

TEST(DhcpLease, ReadsAWholeLeaseOfUdhcpc) {
    const LeaseReading reading = Udhcpc("bound", kUsual);
    EXPECT_EQ(reading.event, LeaseEvent::kBound);
    EXPECT_EQ(reading.problem, "");
    Lease expected;
    expected.address = {10, 0, 0, 7};
    expected.prefix = 24;
    expected.server = Ipv4Bytes{10, 0, 0, 3};
    expected.routes = {Route({}, 0, Ipv4Bytes{10, 0, 0, 1})};
    expected.dnsServers = {"10.0.0.2", "9.9.9.9"};
    expected.domain = "example.test";
    expected.seconds = 120;
    expected.renewSeconds = 60;
    expected.rebindSeconds = 105;
    EXPECT_EQ(reading.lease, expected);
}

TEST(DhcpLease, ReadsAWholeLeaseOfTheOtherClients) {
    const LeaseReading reading = ReadReport({"1",
                                             "",
                                             {{"reason", "RENEW"},
                                              {"new_ip_address", "192.168.5.9"},
                                              {"new_subnet_mask", "255.255.252.0"},
                                              {"new_routers", "192.168.4.1 192.168.4.2"},
                                              {"new_domain_name_servers", "192.168.4.3"},
                                              {"new_domain_name", "example.test"},
                                              {"new_dhcp_lease_time", "600"},
                                              {"new_dhcp_server_identifier", "192.168.4.1"},
                                              {"new_dhcp_renewal_time", "200"},
                                              {"new_dhcp_rebinding_time", "500"}}});
    ASSERT_EQ(reading.event, LeaseEvent::kBound);
    EXPECT_EQ(reading.lease.address, (Ipv4Bytes{192, 168, 5, 9}));
    EXPECT_EQ(reading.lease.prefix, 22);
    EXPECT_EQ(reading.lease.routes, (std::vector<LeaseRoute>{Route({}, 0, Ipv4Bytes{192, 168, 4, 1}),
                                                             Route({}, 0, Ipv4Bytes{192, 168, 4, 2})}));
    EXPECT_EQ(reading.lease.dnsServers, std::vector<std::string>{"192.168.4.3"});
    EXPECT_EQ(reading.lease.domain, "example.test");
    EXPECT_EQ(reading.lease.server, (Ipv4Bytes{192, 168, 4, 1}));
    EXPECT_EQ(reading.lease.seconds, 600U);
    EXPECT_EQ(reading.lease.renewSeconds, 200U);
    EXPECT_EQ(reading.lease.rebindSeconds, 500U);
}

TEST(DhcpLease, TellsUdhcpcsEventsApart) {
    EXPECT_EQ(Udhcpc("renew", kUsual).event, LeaseEvent::kBound);
    EXPECT_EQ(Udhcpc("deconfig", {}).event, LeaseEvent::kLost);
    EXPECT_EQ(Udhcpc("nak", {}).event, LeaseEvent::kLost);
    EXPECT_EQ(Udhcpc("leasefail", {}).event, LeaseEvent::kFailed);
    EXPECT_EQ(Udhcpc("something", kUsual).event, LeaseEvent::kNone);
}

TEST(DhcpLease, TellsTheOtherClientsReasonsApart) {
    Variables variables = {{"new_ip_address", "10.0.0.7"}, {"new_dhcp_lease_time", "60"}};
    const auto eventOf = [&](const std::string& reason) {
        variables["reason"] = reason;
        return ReadReport({"1", "", variables}).event;
    };
    for (const char* reason : {"BOUND", "RENEW", "REBIND", "REBOOT"})
        EXPECT_EQ(eventOf(reason), LeaseEvent::kBound) << reason;
    for (const char* reason : {"EXPIRE", "NAK", "RELEASE", "STOP", "STOPPED"}) {
        EXPECT_EQ(eventOf(reason), LeaseEvent::kLost) << reason;
    }
    for (const char* reason : {"FAIL", "TIMEOUT"}) EXPECT_EQ(eventOf(reason), LeaseEvent::kFailed) << reason;
    for (const char* reason : {"PREINIT", "CARRIER", "NOCARRIER", "MEDIUM", "", "bound"}) {
        EXPECT_EQ(eventOf(reason), LeaseEvent::kNone) << reason;
    }
}

TEST(DhcpLease, AReportWithoutEventAndReasonIsNothing) {
    EXPECT_EQ(ReadReport({"1", "", {}}).event, LeaseEvent::kNone);
}

TEST(DhcpLease, RefusesAddressesThatNoHostMayHave) {
    for (const char* text :
         {"0.0.0.0", "0.1.2.3", "127.0.0.1", "224.0.0.1", "239.1.2.3", "240.0.0.1", "255.255.255.255"}) {
        const LeaseReading reading = BoundWith("ip", text);
        EXPECT_EQ(reading.event, LeaseEvent::kFailed) << text;
        EXPECT_NE(reading.problem.find(text), std::string::npos) << reading.problem;
    }
}

TEST(DhcpLease, RefusesTextsThatAreNoAddress) {
    for (const char* text : {"", "10.0.0", "10.0.0.1.2", "10.0.0.256", "10.0.0.-1", " 10.0.0.1", "10.0.0.1 ",
                             "10.0.0.1;reboot", "fe80::1", "ten"}) {
        const LeaseReading reading = BoundWith("ip", text);
        EXPECT_EQ(reading.event, LeaseEvent::kFailed) << text;
        EXPECT_NE(reading.problem, "") << text;
    }
    EXPECT_EQ(BoundWithout("ip").event, LeaseEvent::kFailed);
}

TEST(DhcpLease, TakesTheMaskFromWhereItIsUsable) {
    EXPECT_EQ(BoundWith("mask", "30").lease.prefix, 30);
    EXPECT_EQ(BoundWith("mask", "32").lease.prefix, 32);
    for (const char* text : {"", "0", "33", "-1", "24x", "999999999999"}) {
        EXPECT_EQ(BoundWith("mask", text).lease.prefix, 24) << text;
    }
    Variables holes = kUsual;
    holes.erase("mask");
    holes["subnet"] = "255.0.255.0";
    EXPECT_EQ(Udhcpc("bound", holes).lease.prefix, 8) << "the class of 10.0.0.7";
}

TEST(DhcpLease, AMissingMaskIsThatOfTheClass) {
    for (const auto& [address, prefix] : std::map<std::string, int>{
             {"10.1.2.3", 8}, {"128.1.2.3", 16}, {"191.1.2.3", 16}, {"192.1.2.3", 24}}) {
        const LeaseReading reading = Udhcpc("bound", {{"ip", address}, {"lease", "60"}});
        EXPECT_EQ(reading.lease.prefix, prefix) << address;
    }
}

TEST(DhcpLease, ALifetimeOfZeroIsNoLease) {
    const LeaseReading reading = BoundWith("lease", "0");
    EXPECT_EQ(reading.event, LeaseEvent::kFailed);
    EXPECT_NE(reading.problem, "");
}

TEST(DhcpLease, AnUnusableLifetimeIsTheClientsDefault) {
    for (const char* text : {"", "soon", "-5", "4294967296", "99999999999999999999", "120s", "1e3"}) {
        const LeaseReading reading = BoundWith("lease", text);
        EXPECT_EQ(reading.event, LeaseEvent::kBound) << text;
        EXPECT_EQ(reading.lease.seconds, 3600U) << text;
    }
    EXPECT_EQ(BoundWithout("lease").lease.seconds, 3600U);
    EXPECT_EQ(ReadReport({"1", "", {{"reason", "BOUND"}, {"new_ip_address", "10.0.0.7"}}}).lease.seconds,
              kInfiniteLease);
}

TEST(DhcpLease, AnInfiniteLeaseIsNeverRenewedByTime) {
    const LeaseReading reading = BoundWith("lease", "4294967295");
    EXPECT_EQ(reading.lease.seconds, kInfiniteLease);
    EXPECT_EQ(reading.lease.renewSeconds, kInfiniteLease);
    EXPECT_EQ(reading.lease.rebindSeconds, kInfiniteLease);
}

TEST(DhcpLease, TimersThatAreMissingOrOutOfOrderAreHalfAndSevenEighths) {
    for (const auto& [name, value] :
         std::vector<std::pair<std::string, std::string>>{{"opt58", ""},
                                                          {"opt58", "zz"},
                                                          {"opt58", "00000000"},
                                                          {"opt58", "00000070"},
                                                          {"opt59", "00000079"},
                                                          {"opt59", "0000003b"},
                                                          {"opt58", "123456789"}}) {
        const LeaseReading reading = BoundWith(name, value);
        EXPECT_EQ(reading.lease.renewSeconds, 60U) << name << "=" << value;
        EXPECT_EQ(reading.lease.rebindSeconds, 105U) << name << "=" << value;
    }
    Variables huge = kUsual;
    huge["lease"] = "4294967294";
    huge.erase("opt58");
    EXPECT_EQ(Udhcpc("bound", huge).lease.rebindSeconds, 3758096382U);
}

TEST(DhcpLease, RoutersThatNoHostMayBeAreLeftOut) {
    const LeaseReading reading =
        BoundWith("router", "0.0.0.0 10.0.0.1  bad 224.0.0.1 10.0.0.1 10.0.0.9 255.255.255.255");
    EXPECT_EQ(reading.lease.routes, (std::vector<LeaseRoute>{Route({}, 0, Ipv4Bytes{10, 0, 0, 1}),
                                                             Route({}, 0, Ipv4Bytes{10, 0, 0, 9})}));
    EXPECT_TRUE(BoundWithout("router").lease.routes.empty());
    EXPECT_EQ(BoundWithout("router").event, LeaseEvent::kBound);
}

TEST(DhcpLease, ClasslessRoutesReplaceTheRouter) {
    const LeaseReading reading =
        BoundWith("staticroutes", "192.168.9.77/24 10.0.0.5 0.0.0.0/0 10.0.0.6 172.16.0.0/12 0.0.0.0");
    EXPECT_EQ(reading.lease.routes,
              (std::vector<LeaseRoute>{Route({192, 168, 9, 0}, 24, Ipv4Bytes{10, 0, 0, 5}),
                                       Route({}, 0, Ipv4Bytes{10, 0, 0, 6}),
                                       Route({172, 16, 0, 0}, 12, std::nullopt)}));
}

TEST(DhcpLease, ClasslessRoutesThatMakeNoSenseLeaveTheRouter) {
    for (const char* text :
         {"", " ", "10.0.0.0/8", "10.0.0.0/33 10.0.0.5", "10.0.0.0 10.0.0.5", "10.0.0.0/8 224.0.0.5",
          "x/8 10.0.0.5", "10.0.0.0/8/8 10.0.0.5", "10.0.0.0/-1 10.0.0.5"}) {
        EXPECT_EQ(BoundWith("staticroutes", text).lease.routes,
                  std::vector<LeaseRoute>{Route({}, 0, Ipv4Bytes{10, 0, 0, 1})})
            << text;
    }
}

TEST(DhcpLease, ReadsClasslessRoutesInTheFormsOfTheOtherClients) {
    Variables variables = {{"reason", "BOUND"}, {"new_ip_address", "10.0.0.7"}, {"new_routers", "10.0.0.1"}};
    const std::vector<LeaseRoute> expected = {Route({192, 168, 9, 0}, 24, Ipv4Bytes{10, 0, 0, 5}),
                                              Route({}, 0, Ipv4Bytes{10, 0, 0, 6})};
    variables["new_classless_static_routes"] = "192.168.9.0/24 10.0.0.5 0.0.0.0/0 10.0.0.6";
    EXPECT_EQ(ReadReport({"1", "", variables}).lease.routes, expected);
    variables.erase("new_classless_static_routes");
    variables["new_rfc3442_classless_static_routes"] = "24 192 168 9 10 0 0 5 0 10 0 0 6";
    EXPECT_EQ(ReadReport({"1", "", variables}).lease.routes, expected);
    variables["new_rfc3442_classless_static_routes"] = "24 192 168 9 10 0 0 5 0 10 0 0 6 16 1 2 3";
    EXPECT_EQ(ReadReport({"1", "", variables}).lease.routes, expected) << "a cut route at the end";
    variables["new_rfc3442_classless_static_routes"] = "33 1 2 3 4 5 10 0 0 5";
    EXPECT_EQ(ReadReport({"1", "", variables}).lease.routes,
              std::vector<LeaseRoute>{Route({}, 0, Ipv4Bytes{10, 0, 0, 1})});
}

TEST(DhcpLease, NameServersThatAreNoAddressesAreLeftOut) {
    const LeaseReading reading =
        BoundWith("dns", "10.0.0.2 $(reboot) 0.0.0.0 10.0.0.2\n8.8.8.8 9.9.9.9 10.0.0.2");
    EXPECT_EQ(reading.lease.dnsServers, (std::vector<std::string>{"10.0.0.2", "9.9.9.9"}));
}

TEST(DhcpLease, ADomainWithForeignCharactersIsNone) {
    EXPECT_EQ(BoundWith("domain", "a.test b_c.test ").lease.domain, "a.test b_c.test");
    for (const char* text : {"a.test;reboot", "a\nnameserver 6.6.6.6", "a`b`", "\xc3\xa4.test", "a/b"}) {
        EXPECT_EQ(BoundWith("domain", text).lease.domain, "") << text;
    }
    EXPECT_EQ(BoundWith("domain", std::string(253, 'a')).lease.domain.size(), 253U);
    EXPECT_EQ(BoundWith("domain", std::string(254, 'a')).lease.domain, "");
}

TEST(DhcpLease, AnUnusableServerIsNone) {
    EXPECT_FALSE(BoundWith("serverid", "x").lease.server);
    EXPECT_FALSE(BoundWithout("serverid").lease.server);
}

TEST(DhcpLease, AReportComesThroughAsItWasSent) {
    const char* const environment[] = {"PATH=/bin", "ip=10.0.0.7",    "router=", "domain=a=b",
                                       "broken",    "interface=eth0", nullptr};
    const auto report = DecodeReport(EncodeReport("77", "bound", environment));
    ASSERT_TRUE(report);
    EXPECT_EQ(*report, (HookReport{"77", "bound", {{"ip", "10.0.0.7"}, {"router", ""}, {"domain", "a=b"}}}));
}

TEST(DhcpLease, VariablesOfHostileLengthAreLeftOut) {
    const std::string longest = "dns=" + std::string(8192, '1');
    const std::string tooLong = "domain=" + std::string(8193, 'a');
    const char* const environment[] = {longest.c_str(), tooLong.c_str(), "ip=10.0.0.7", nullptr};
    const auto report = DecodeReport(EncodeReport("77", "", environment));
    ASSERT_TRUE(report);
    EXPECT_EQ(report->variables.size(), 2U);
    EXPECT_EQ(report->variables.at("dns").size(), 8192U);
}

TEST(DhcpLease, MessagesThatAreNoReportAreRefused) {
    using namespace std::string_literals;
    for (const std::string& message :
         {""s, "x"s, "77\0"s, "\0bound\0"s, "77\0bound"s, "77\0bound\0noequals\0"s}) {
        EXPECT_FALSE(DecodeReport(message)) << message;
    }
}

TEST(DhcpLease, WritesALeaseAsTheRegistryHasIt) {
    const std::vector<NamedValue> values = LeaseValues(Udhcpc("bound", kUsual).lease, 1000000000U);
    using namespace std::string_literals;
    EXPECT_EQ(ValueOf(values, "DhcpIPAddress"), Bytes(kRegSz, "10.0.0.7\0"s));
    EXPECT_EQ(ValueOf(values, "DhcpSubnetMask"), Bytes(kRegSz, "255.255.255.0\0"s));
    EXPECT_EQ(ValueOf(values, "DhcpServer"), Bytes(kRegSz, "10.0.0.3\0"s));
    EXPECT_EQ(ValueOf(values, "DhcpNameServer"), Bytes(kRegSz, "10.0.0.2 9.9.9.9\0"s));
    EXPECT_EQ(ValueOf(values, "DhcpDomain"), Bytes(kRegSz, "example.test\0"s));
    EXPECT_EQ(ValueOf(values, "DhcpDefaultGateway"), Bytes(kRegMultiSz, "10.0.0.1\0\0"s));
    EXPECT_EQ(ValueOf(values, "DhcpDefaultGatewayMetric"), Bytes(kRegMultiSz, "0\0\0"s));
    EXPECT_EQ(ValueOf(values, "Lease"), Dword(120));
    EXPECT_EQ(ValueOf(values, "LeaseObtainedTime"), Dword(1000000000U));
    EXPECT_EQ(ValueOf(values, "T1"), Dword(1000000060U));
    EXPECT_EQ(ValueOf(values, "T2"), Dword(1000000105U));
    EXPECT_EQ(ValueOf(values, "LeaseTerminatesTime"), Dword(1000000120U));
    EXPECT_EQ(values.size(), 12U);
}

TEST(DhcpLease, WritesSeveralGatewaysAndOnlyDefaultOnes) {
    using namespace std::string_literals;
    const std::vector<NamedValue> values = LeaseValues(
        BoundWith("staticroutes", "0.0.0.0/0 10.0.0.5 192.168.0.0/16 10.0.0.6 0.0.0.0/0 10.0.0.7").lease, 1);
    EXPECT_EQ(ValueOf(values, "DhcpDefaultGateway"), Bytes(kRegMultiSz,
                                                           "10.0.0.5\0"
                                                           "10.0.0.7\0\0"s));
    EXPECT_EQ(ValueOf(values, "DhcpDefaultGatewayMetric"), Bytes(kRegMultiSz,
                                                                 "0\0"
                                                                 "0\0\0"s));
}

TEST(DhcpLease, ALeaseWithLittleInItWritesEmptyValues) {
    using namespace std::string_literals;
    const std::vector<NamedValue> values =
        LeaseValues(Udhcpc("bound", {{"ip", "10.0.0.7"}, {"lease", "60"}}).lease, 1);
    EXPECT_EQ(ValueOf(values, "DhcpServer"), Bytes(kRegSz, "\0"s));
    EXPECT_EQ(ValueOf(values, "DhcpNameServer"), Bytes(kRegSz, "\0"s));
    EXPECT_EQ(ValueOf(values, "DhcpDomain"), Bytes(kRegSz, "\0"s));
    EXPECT_EQ(ValueOf(values, "DhcpDefaultGateway"), Bytes(kRegMultiSz, "\0"s));
    EXPECT_EQ(ValueOf(values, "DhcpDefaultGatewayMetric"), Bytes(kRegMultiSz, "\0"s));
}

TEST(DhcpLease, TimesStayWithinADword) {
    const std::vector<NamedValue> endless = LeaseValues(BoundWith("lease", "4294967295").lease, 1000000000U);
    EXPECT_EQ(ValueOf(endless, "LeaseTerminatesTime"), Dword(0x7FFFFFFFU));
    EXPECT_EQ(ValueOf(endless, "T1"), Dword(0x7FFFFFFFU));
    EXPECT_EQ(ValueOf(endless, "Lease"), Dword(0xFFFFFFFFU));
    const std::vector<NamedValue> late = LeaseValues(BoundWith("lease", "4294967294").lease, 1000000000U);
    EXPECT_EQ(ValueOf(late, "LeaseTerminatesTime"), Dword(0xFFFFFFFFU));
}

TEST(DhcpLease, NoLeaseIsWrittenAsZerosAndEmptyLists) {
    using namespace std::string_literals;
    const std::vector<NamedValue> values = NoLeaseValues();
    EXPECT_EQ(ValueOf(values, "DhcpIPAddress"), Bytes(kRegSz, "0.0.0.0\0"s));
    EXPECT_EQ(ValueOf(values, "DhcpSubnetMask"), Bytes(kRegSz, "0.0.0.0\0"s));
    EXPECT_EQ(ValueOf(values, "DhcpNameServer"), Bytes(kRegSz, "\0"s));
    EXPECT_EQ(ValueOf(values, "DhcpDomain"), Bytes(kRegSz, "\0"s));
    EXPECT_EQ(ValueOf(values, "DhcpDefaultGateway"), Bytes(kRegMultiSz, "\0"s));
    EXPECT_EQ(ValueOf(values, "DhcpDefaultGatewayMetric"), Bytes(kRegMultiSz, "\0"s));
    for (const char* name : {"Lease", "LeaseObtainedTime", "T1", "T2", "LeaseTerminatesTime"}) {
        EXPECT_EQ(ValueOf(values, name), Dword(0)) << name;
    }
}

}  // namespace
}  // namespace corvane
