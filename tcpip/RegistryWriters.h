#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "tcpip/SettingBits.h"

/// Writers of an adapter's persistent TCP/IP settings: the values that take effect at the next start of the
/// connection. `adapter` is an index into Nics, which must be current; for one that is not in it a writer
/// does nothing. Address texts are not checked. Every writer shows a registry failure in one box and stops at
/// it, and ends quietly at an exception of its own work (std::exception: no memory for a list, for example);
/// what it wrote before stays. An exception out of the box goes on to the caller.
namespace corvane {

/// A position in Nics as the writers take it; one that they cannot be handed becomes one that is not in Nics.
constexpr std::int16_t WriterIndex(std::size_t adapter) {
    constexpr std::int16_t kNone = -1;
    return std::in_range<std::int16_t>(adapter) ? static_cast<std::int16_t>(adapter) : kNone;
}

/// With kTcpipDhcp: DHCP on, addresses and gateways reset, and the DNS list cleared unless kTcpipDns is set.
/// Without it: DHCP off - whatever else is set - and the lists whose bits are set. Masks parallel the
/// addresses, metrics the gateways.
void WriteTcpipSettings(std::int16_t adapter, std::uint8_t flags, const std::vector<std::string>& addresses,
                        const std::vector<std::string>& masks, const std::vector<std::string>& gateways,
                        const std::vector<std::string>& metrics, const std::vector<std::string>& dnsServers);

/// Adds a static address, or gives a listed one a new mask. The placeholder "0.0.0.0" is replaced, and the
/// list then cut to its first entry.
void AddRegistryIPAddress(std::int16_t adapter, const std::string& address, const std::string& mask);

/// Removes a static address; an emptied list falls back to the placeholder.
void RemoveRegistryIPAddress(std::int16_t adapter, const std::string& address);

/// Adds a gateway, or gives a listed one a new metric.
void AddRegistryGateway(std::int16_t adapter, const std::string& gateway, const std::string& metric);

/// Removes a gateway; an emptied list is an empty multi-string.
void RemoveRegistryGateway(std::int16_t adapter, const std::string& gateway);

/// Writes the DNS list, in order, and puts it in force; a resolver that cannot follow is told of as a
/// warning. WriteTcpipSettings does the same when it writes the list. Always 0.
int WriteDNSServers(std::int16_t adapter, const std::vector<std::string>& servers);

}  // namespace corvane
