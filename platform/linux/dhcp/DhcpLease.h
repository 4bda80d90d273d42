#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Platform.h"
#include "platform/linux/registry/RegistryStore.h"

/// What DHCP clients tell their hook, and what the registry says of a lease. No system call is made here.
/// Every text comes from the network and is checked.
namespace corvane {

/// A call of the hook as it was made.
struct HookReport {
    std::string token;  ///< Tells hook processes apart; the answer carries it back.
    std::string
        event;  ///< The hook's first argument (udhcpc); empty for clients that use the variable `reason`.
    std::map<std::string, std::string> variables;

    bool operator==(const HookReport&) const = default;
};

/// The report as one message: NUL-separated texts. Only variables that ReadReport looks at are taken from
/// `environment` (null-terminated, "NAME=value"), and none longer than 8192 bytes.
std::string EncodeReport(const std::string& token, const std::string& event, const char* const* environment);

/// Nothing for a message that EncodeReport does not make.
std::optional<HookReport> DecodeReport(std::string_view message);

/// The lifetime that means "without end" (RFC 2131, 3.3).
inline constexpr std::uint32_t kInfiniteLease = 0xFFFFFFFFU;

struct LeaseRoute {
    Ipv4Bytes destination{};
    std::uint8_t prefix = 0;
    std::optional<Ipv4Bytes> gateway;  ///< Nothing: the destination is on the link itself.

    bool operator==(const LeaseRoute&) const = default;
};

struct Lease {
    Ipv4Bytes address{};
    std::uint8_t prefix = 0;
    std::optional<Ipv4Bytes> server;
    /// Default and other routes in the server's order. When it sent classless static routes, its routers are
    /// not among them (RFC 3442).
    std::vector<LeaseRoute> routes;
    std::vector<std::string> dnsServers;  ///< IPv4 addresses.
    std::string domain;                   ///< Empty when none or unusable.
    std::uint32_t seconds = 0;            ///< From 1; kInfiniteLease.
    std::uint32_t renewSeconds = 0;       ///< T1.
    std::uint32_t rebindSeconds = 0;      ///< T2.

    bool operator==(const Lease&) const = default;
};

enum class LeaseEvent {
    kNone,    ///< Nothing to do.
    kBound,   ///< There is a lease, new or renewed.
    kLost,    ///< There is no lease any longer, or not yet.
    kFailed,  ///< As kLost; in addition the client gave up asking for now.
};

struct LeaseReading {
    LeaseEvent event = LeaseEvent::kNone;
    Lease lease;          ///< For kBound.
    std::string problem;  ///< Why an offered lease cannot be used (event kFailed), in words.
};

/// Reads a report of udhcpc (event and its variables), dhcpcd or dhclient (`reason` and `new_*`). An address
/// that no host may have, or a lifetime of zero, is a failure; other unusable variables count as missing.
/// Defaults: the mask of the address class (RFC 791), T1 half and T2 seven eighths of the lifetime (RFC
/// 2131, 4.4.5), a lifetime of one hour from udhcpc, which reckons with that itself then, and without end
/// from the others.
LeaseReading ReadReport(const HookReport& report);

/// The lease as values of the link's TCP/IP key: DhcpIPAddress, DhcpSubnetMask, DhcpServer, DhcpNameServer
/// (blank-separated), DhcpDomain (REG_SZ); DhcpDefaultGateway, DhcpDefaultGatewayMetric (REG_MULTI_SZ; a DHCP
/// server sends no metrics, so each is "0", automatic); Lease (seconds), LeaseObtainedTime, T1, T2,
/// LeaseTerminatesTime (seconds since 1970, UTC; 0x7FFFFFFF for a lease without end; REG_DWORD). `obtained`
/// is the time of the lease.
std::vector<NamedValue> LeaseValues(const Lease& lease, std::uint32_t obtained);

/// The values of a link without lease: "0.0.0.0" as address and mask, empty gateways, metrics, name servers
/// and domain, and zero times. DhcpServer is left as the last server.
std::vector<NamedValue> NoLeaseValues();

}  // namespace corvane
