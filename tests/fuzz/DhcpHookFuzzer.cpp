#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "base/Address.h"
#include "base/Text.h"
#include "platform/Registry.h"
#include "platform/linux/dhcp/DhcpLease.h"
#include "tests/fuzz/Require.h"
#include "tests/fuzz/Targets.h"

namespace corvane::fuzz {

namespace {

constexpr std::size_t kLongestValue = 8192;

bool Contains(std::string_view bytes, const std::string& text) {
    return bytes.find(text) != std::string::npos;
}

void RequireSound(const LeaseRoute& route) {
    Require(route.prefix <= 32, "a route has a prefix length");
    Require((HostOrder(route.destination) & ~HostOrder(MaskFromPrefix(route.prefix))) == 0,
            "a route's destination has no host bits");
    Require(!route.gateway || !HostAddressRefusal(*route.gateway), "a route's gateway is a host");
}

void RequireSound(const Lease& lease, std::string_view bytes) {
    Require(!HostAddressRefusal(lease.address), "a lease's address is one that a host may have");
    Require(lease.prefix >= 1 && lease.prefix <= 32, "a lease has a prefix length");
    Require(lease.seconds >= 1, "a lease lasts");
    Require(lease.renewSeconds <= lease.rebindSeconds && lease.rebindSeconds <= lease.seconds,
            "a lease's times are in order");
    for (const LeaseRoute& route : lease.routes) RequireSound(route);
    for (const std::string& server : lease.dnsServers) {
        const std::optional<Ipv4Bytes> address = ParseIpv4(server);
        Require(address && *address != Ipv4Bytes{}, "a name server is an address");
        Require(Contains(bytes, server), "no name server is invented");
    }
    Require(std::set(lease.dnsServers.begin(), lease.dnsServers.end()).size() == lease.dnsServers.size(),
            "no name server is there twice");
    Require(lease.domain.size() <= 253 && Contains(bytes, lease.domain), "no domain is invented");
    Require(lease.domain.find_first_of("\n\r\t;#\"'") == std::string::npos,
            "a domain is one word after another");
}

/// Each value of a type as the registry keeps it.
void RequireSound(const std::vector<NamedValue>& values) {
    for (const NamedValue& named : values) {
        const std::vector<std::uint8_t>& bytes = named.value.data;
        const auto nuls = std::count(bytes.begin(), bytes.end(), 0);
        if (named.value.type == kRegDword) Require(bytes.size() == 4, "a number has four bytes");
        if (named.value.type == kRegSz) Require(nuls == 1 && bytes.back() == 0, "a text ends once");
        if (named.value.type == kRegMultiSz) Require(nuls >= 1 && bytes.back() == 0, "a list ends");
    }
}

bool SameReading(const LeaseReading& one, const LeaseReading& other) {
    return one.event == other.event && one.lease == other.lease && one.problem == other.problem;
}

/// What the hook would send for these variables.
std::string Encoded(const HookReport& report) {
    std::vector<std::string> texts;
    for (const auto& [name, value] : report.variables) texts.push_back(name + "=" + value);
    std::vector<const char*> environment;
    for (const std::string& text : texts) environment.push_back(text.c_str());
    environment.push_back(nullptr);
    return EncodeReport(report.token, report.event, environment.data());
}

void RequireSameAfterEncoding(const HookReport& report, const LeaseReading& reading) {
    const std::optional<HookReport> again = DecodeReport(Encoded(report));
    Require(again && again->token == report.token && again->event == report.event,
            "a sent report is understood");
    bool longOnes = false;
    for (const auto& [name, value] : report.variables) longOnes |= value.size() > kLongestValue;
    for (const auto& [name, value] : again->variables) {
        const auto found = report.variables.find(name);
        Require(found != report.variables.end() && found->second == value, "no variable is invented");
    }
    Require(longOnes || SameReading(ReadReport(*again), reading), "a sent report reads the same");
}

}  // namespace

bool CheckDhcpHook(std::string_view bytes) {
    const std::optional<HookReport> report = DecodeReport(bytes);
    if (!report) return false;
    Require(!report->token.empty(), "a report has a token");
    const LeaseReading reading = ReadReport(*report);
    Require(reading.problem.empty() || reading.event == LeaseEvent::kFailed, "a problem is a failure");
    if (reading.event == LeaseEvent::kBound) {
        RequireSound(reading.lease, bytes);
        RequireSound(LeaseValues(reading.lease, 1000000000U));
    }
    RequireSameAfterEncoding(*report, reading);
    return reading.event == LeaseEvent::kBound;
}

}  // namespace corvane::fuzz
