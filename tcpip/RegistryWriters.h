#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// Writers of an adapter's persistent TCP/IP settings: the values that take effect at the next start of the
/// connection. `adapter` is an index into Nics, which must be current. Address texts are not checked. Every
/// writer shows its own failure in one box and stops at it; what it wrote before stays.
namespace corvane {

/// Bits of the flags byte that WriteTcpipSettings reads.
inline constexpr std::uint8_t kTcpipDhcp = 1;
inline constexpr std::uint8_t kTcpipAddresses = 8;
inline constexpr std::uint8_t kTcpipGateways = 16;
inline constexpr std::uint8_t kTcpipDns = 32;

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

/// Writes the DNS list, in order. Always 0.
int WriteDNSServers(std::int16_t adapter, const std::vector<std::string>& servers);

}  // namespace corvane
