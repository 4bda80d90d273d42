#include "platform/linux/dhcp/DhcpLease.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <limits>

#include "base/Address.h"
#include "base/Text.h"
#include "platform/RegistryValues.h"

namespace corvane {

namespace {

constexpr std::size_t kLongestValue = 8192;
constexpr std::uint32_t kUdhcpcDefaultLease =
    3600;  // busybox, networking/udhcp/dhcpc.c: "using 1 hour lease".
constexpr std::uint32_t kEndlessTime = 0x7FFFFFFFU;

constexpr std::array<std::string_view, 22> kNames = {"ip",
                                                     "mask",
                                                     "subnet",
                                                     "router",
                                                     "dns",
                                                     "domain",
                                                     "lease",
                                                     "serverid",
                                                     "staticroutes",
                                                     "opt58",
                                                     "opt59",
                                                     "reason",
                                                     "new_ip_address",
                                                     "new_subnet_mask",
                                                     "new_routers",
                                                     "new_domain_name_servers",
                                                     "new_domain_name",
                                                     "new_dhcp_lease_time",
                                                     "new_dhcp_server_identifier",
                                                     "new_dhcp_renewal_time",
                                                     "new_dhcp_rebinding_time",
                                                     "new_classless_static_routes"};
/// dhclient hands option 121 out as plain numbers, under the name that its configuration gives it.
constexpr std::string_view kNumbersName = "new_rfc3442_classless_static_routes";

bool IsKnown(std::string_view name) {
    return name == kNumbersName || std::find(kNames.begin(), kNames.end(), name) != kNames.end();
}

template <class Number>
std::optional<Number> ReadNumber(std::string_view text, int base = 10) {
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

/// The pieces between runs of blanks.
std::vector<std::string> Words(std::string_view text) {
    std::vector<std::string> words = Split(text, ' ');
    std::erase(words, "");
    return words;
}

/// A prefix length that a host's address may have.
std::optional<std::uint8_t> HostPrefix(std::string_view text) {
    const std::optional<std::uint8_t> value = ReadNumber<std::uint8_t>(text);
    return value && *value >= 1 && *value <= 32 ? value : std::nullopt;
}

std::uint8_t ClassPrefix(const Ipv4Bytes& address) {
    if (address[0] < 128) return 8;
    return address[0] < 192 ? 16 : 24;
}

/// Letters, digits, "-", "_" and dots, at most 253 of them (RFC 1035, 2.3.4); blanks between several names.
std::string CheckedDomain(const std::string& text) {
    const std::string trimmed = Trim(text);
    const bool usable = trimmed.size() <= 253 && std::all_of(trimmed.begin(), trimmed.end(), [](char c) {
                            return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                                   (c >= '0' && c <= '9') || c == '-' || c == '_' || c == '.' || c == ' ';
                        });
    return usable ? trimmed : std::string();
}

/// A gateway that the field of a route may name; all zeros say that the destination is on the link.
bool IsGateway(const Ipv4Bytes& gateway) { return !HostAddressRefusal(gateway); }

/// Adds one classless route unless its parts make no sense. Host bits of the destination are cleared.
void AddClassless(const std::optional<Ipv4Bytes>& destination, const std::optional<std::uint8_t>& prefix,
                  const std::optional<Ipv4Bytes>& gateway, std::vector<LeaseRoute>& routes) {
    if (!destination || !prefix || *prefix > 32 || !gateway) return;
    const bool onLink = *gateway == Ipv4Bytes{};
    if (!onLink && !IsGateway(*gateway)) return;
    LeaseRoute route;
    route.destination = FromHostOrder(HostOrder(*destination) & HostOrder(MaskFromPrefix(*prefix)));
    route.prefix = *prefix;
    if (!onLink) route.gateway = gateway;
    routes.push_back(route);
}

/// "NET/LEN GATEWAY NET/LEN GATEWAY ...".
std::vector<LeaseRoute> ClasslessRoutes(std::string_view text) {
    std::vector<LeaseRoute> routes;
    const std::vector<std::string> words = Words(text);
    for (std::size_t i = 0; i + 1 < words.size(); i += 2) {
        const std::vector<std::string> target = Split(words[i], '/');
        if (target.size() != 2) continue;
        AddClassless(ParseIpv4(target[0]), ReadNumber<std::uint8_t>(target[1]), ParseIpv4(words[i + 1]),
                     routes);
    }
    return routes;
}

/// The option's bytes as decimal numbers: prefix length, the significant bytes of the destination, gateway
/// (RFC 3442). Nothing after a place that makes no sense can be told apart, so reading ends there.
std::vector<LeaseRoute> ClasslessNumbers(std::string_view text) {
    std::vector<std::uint8_t> bytes;
    for (const std::string& word : Words(text)) {
        const std::optional<std::uint8_t> byte = ReadNumber<std::uint8_t>(word);
        if (!byte) break;
        bytes.push_back(*byte);
    }
    std::vector<LeaseRoute> routes;
    for (std::size_t at = 0; at < bytes.size();) {
        const std::uint8_t prefix = bytes[at];
        const std::size_t significant = (static_cast<std::size_t>(prefix) + 7) / 8;
        if (prefix > 32 || at + 1 + significant + 4 > bytes.size()) break;
        Ipv4Bytes destination{};
        Ipv4Bytes gateway{};
        const auto start = bytes.begin() + static_cast<std::ptrdiff_t>(at) + 1;
        std::copy_n(start, significant, destination.begin());
        std::copy_n(start + static_cast<std::ptrdiff_t>(significant), 4, gateway.begin());
        AddClassless(destination, prefix, gateway, routes);
        at += 1 + significant + 4;
    }
    return routes;
}

/// The variables of one client under the names of what they mean.
class Variables {
 public:
    explicit Variables(const HookReport& report, bool udhcpc) : report_(report), udhcpc_(udhcpc) {}

    /// The value that udhcpc, respectively the others, call so; empty when missing.
    [[nodiscard]] std::string Get(const char* udhcpcName, const char* otherName) const {
        const auto found = report_.variables.find(udhcpc_ ? udhcpcName : otherName);
        return found == report_.variables.end() ? std::string() : found->second;
    }

    /// Seconds; udhcpc gives options that it does not know (T1, T2) in hexadecimal.
    [[nodiscard]] std::optional<std::uint32_t> Seconds(const char* udhcpcName, const char* otherName,
                                                       int udhcpcBase) const {
        return ReadNumber<std::uint32_t>(Get(udhcpcName, otherName), udhcpc_ ? udhcpcBase : 10);
    }

 private:
    const HookReport& report_;
    bool udhcpc_;
};

std::uint8_t LeasePrefix(const Variables& variables, bool udhcpc, const Ipv4Bytes& address) {
    if (udhcpc) {
        if (const auto prefix = HostPrefix(variables.Get("mask", ""))) return *prefix;
    }
    if (const auto mask = ParseIpv4(variables.Get("subnet", "new_subnet_mask"))) {
        const std::optional<std::uint8_t> prefix = PrefixFromMask(*mask);
        if (prefix && *prefix >= 1) return *prefix;
    }
    return ClassPrefix(address);
}

std::vector<LeaseRoute> LeaseRoutes(const Variables& variables) {
    std::vector<LeaseRoute> routes =
        ClasslessRoutes(variables.Get("staticroutes", "new_classless_static_routes"));
    if (routes.empty()) routes = ClasslessNumbers(variables.Get("", kNumbersName.data()));
    if (!routes.empty()) return routes;
    for (const std::string& word : Words(variables.Get("router", "new_routers"))) {
        const std::optional<Ipv4Bytes> router = ParseIpv4(word);
        if (!router || !IsGateway(*router)) continue;
        const LeaseRoute route{{}, 0, router};
        if (std::find(routes.begin(), routes.end(), route) == routes.end()) routes.push_back(route);
    }
    return routes;
}

LeaseReading ReadLease(const HookReport& report, bool udhcpc) {
    const Variables variables(report, udhcpc);
    LeaseReading reading;
    Lease& lease = reading.lease;
    reading.event = LeaseEvent::kFailed;
    const std::string addressText = variables.Get("ip", "new_ip_address");
    const std::optional<Ipv4Bytes> address = ParseIpv4(addressText);
    if (!address) {
        reading.problem = "the server offered no IPv4 address";
        return reading;
    }
    if (const Refusal refusal = HostAddressRefusal(*address)) {
        reading.problem = "the server offered " + addressText + ": " + refusal.Words();
        return reading;
    }
    lease.address = *address;
    lease.prefix = LeasePrefix(variables, udhcpc, lease.address);
    lease.seconds = variables.Seconds("lease", "new_dhcp_lease_time", 10)
                        .value_or(udhcpc ? kUdhcpcDefaultLease : kInfiniteLease);
    if (lease.seconds == 0) {
        reading.problem = "the server offered " + addressText + " for no time";
        return reading;
    }
    if (lease.seconds == kInfiniteLease) {
        lease.renewSeconds = lease.rebindSeconds = kInfiniteLease;
    } else {
        lease.renewSeconds = variables.Seconds("opt58", "new_dhcp_renewal_time", 16).value_or(0);
        lease.rebindSeconds = variables.Seconds("opt59", "new_dhcp_rebinding_time", 16).value_or(0);
        const bool ordered = 0 < lease.renewSeconds && lease.renewSeconds <= lease.rebindSeconds &&
                             lease.rebindSeconds <= lease.seconds;
        if (!ordered) {
            lease.renewSeconds = lease.seconds / 2;
            lease.rebindSeconds = static_cast<std::uint32_t>(std::uint64_t{lease.seconds} * 7 / 8);
        }
    }
    if (const auto server = ParseIpv4(variables.Get("serverid", "new_dhcp_server_identifier")))
        lease.server = server;
    lease.routes = LeaseRoutes(variables);
    for (const std::string& word : Words(variables.Get("dns", "new_domain_name_servers"))) {
        const std::optional<Ipv4Bytes> dns = ParseIpv4(word);
        const bool known =
            std::find(lease.dnsServers.begin(), lease.dnsServers.end(), word) != lease.dnsServers.end();
        if (dns && *dns != Ipv4Bytes{} && !known) lease.dnsServers.push_back(word);
    }
    lease.domain = CheckedDomain(variables.Get("domain", "new_domain_name"));
    reading.event = LeaseEvent::kBound;
    return reading;
}

bool OneOf(std::string_view text, std::initializer_list<std::string_view> list) {
    return std::find(list.begin(), list.end(), text) != list.end();
}

/// The time `seconds` after `start`, as far as a REG_DWORD goes.
RegistryValue TimeValue(std::uint32_t start, std::uint32_t seconds) {
    if (seconds == kInfiniteLease) return DwordValue(kEndlessTime);
    return DwordValue(static_cast<std::uint32_t>(
        std::min<std::uint64_t>(std::uint64_t{start} + seconds, std::numeric_limits<std::uint32_t>::max())));
}

}  // namespace

std::string EncodeReport(const std::string& token, const std::string& event, const char* const* environment) {
    std::string message = token + '\0' + event.substr(0, event.find('\0')) + '\0';
    for (const char* const* entry = environment; *entry != nullptr; ++entry) {
        const std::string_view text = *entry;
        const std::size_t equals = text.find('=');
        if (equals == std::string_view::npos || !IsKnown(text.substr(0, equals))) continue;
        if (text.size() - equals - 1 > kLongestValue) continue;
        message.append(text);
        message += '\0';
    }
    return message;
}

std::optional<HookReport> DecodeReport(std::string_view message) {
    if (message.empty() || message.back() != '\0') return std::nullopt;
    message.remove_suffix(1);
    const std::vector<std::string> texts = Split(message, '\0');
    if (texts.size() < 2 || texts[0].empty()) return std::nullopt;
    HookReport report{texts[0], texts[1], {}};
    for (std::size_t i = 2; i < texts.size(); ++i) {
        const std::size_t equals = texts[i].find('=');
        if (equals == std::string::npos) return std::nullopt;
        report.variables[texts[i].substr(0, equals)] = texts[i].substr(equals + 1);
    }
    return report;
}

LeaseReading ReadReport(const HookReport& report) {
    LeaseReading reading;
    if (!report.event.empty()) {
        if (OneOf(report.event, {"bound", "renew"})) return ReadLease(report, true);
        if (OneOf(report.event, {"deconfig", "nak"})) reading.event = LeaseEvent::kLost;
        if (report.event == "leasefail") reading.event = LeaseEvent::kFailed;
        return reading;
    }
    const auto found = report.variables.find("reason");
    const std::string reason = found == report.variables.end() ? std::string() : found->second;
    if (OneOf(reason, {"BOUND", "RENEW", "REBIND", "REBOOT"})) return ReadLease(report, false);
    if (OneOf(reason, {"EXPIRE", "NAK", "RELEASE", "STOP", "STOPPED"})) reading.event = LeaseEvent::kLost;
    // TIMEOUT offers an old lease that no server confirmed; it is not used.
    if (OneOf(reason, {"FAIL", "TIMEOUT"})) reading.event = LeaseEvent::kFailed;
    return reading;
}

std::vector<NamedValue> LeaseValues(const Lease& lease, std::uint32_t obtained) {
    std::vector<std::string> gateways;
    for (const LeaseRoute& route : lease.routes) {
        if (route.prefix == 0 && route.gateway) gateways.push_back(DottedQuad(route.gateway->data()));
    }
    const std::vector<std::string> metrics(gateways.size(), "0");
    return {
        {kDhcpIpAddressValue, TextValue(DottedQuad(lease.address.data()))},
        {kDhcpSubnetMaskValue, TextValue(DottedQuad(MaskFromPrefix(lease.prefix).data()))},
        {kDhcpServerValue, TextValue(lease.server ? DottedQuad(lease.server->data()) : std::string())},
        {kDhcpNameServerValue, TextValue(Join(lease.dnsServers, " "))},
        {kDhcpDomainValue, TextValue(lease.domain)},
        {kDhcpDefaultGatewayValue, ListValue(gateways)},
        {kDhcpDefaultGatewayMetricValue, ListValue(metrics)},
        {kLeaseValue, DwordValue(lease.seconds)},
        {kLeaseObtainedTimeValue, DwordValue(obtained)},
        {kLeaseRenewTimeValue, TimeValue(obtained, lease.renewSeconds)},
        {kLeaseRebindTimeValue, TimeValue(obtained, lease.rebindSeconds)},
        {kLeaseTerminatesTimeValue, TimeValue(obtained, lease.seconds)},
    };
}

std::vector<NamedValue> NoLeaseValues() {
    std::vector<NamedValue> values = {
        {kDhcpIpAddressValue, TextValue("0.0.0.0")}, {kDhcpSubnetMaskValue, TextValue("0.0.0.0")},
        {kDhcpNameServerValue, TextValue("")},       {kDhcpDomainValue, TextValue("")},
        {kDhcpDefaultGatewayValue, ListValue({})},   {kDhcpDefaultGatewayMetricValue, ListValue({})},
    };
    for (const char* name : {kLeaseValue, kLeaseObtainedTimeValue, kLeaseRenewTimeValue,
                             kLeaseRebindTimeValue, kLeaseTerminatesTimeValue}) {
        values.push_back({name, DwordValue(0)});
    }
    return values;
}

}  // namespace corvane
