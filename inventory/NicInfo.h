#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/Text.h"
#include "platform/RegistryKeys.h"

namespace corvane {

/// One network adapter. Text lists always hold at least one element; an unused one holds a single empty text.
struct NicInfo {
    std::string Id;               ///< GUID text, braces included.
    std::string ComponentId;      ///< Hardware id; "ms_bridgemp" marks the network bridge.
    std::uint32_t IfIndex = 0;    ///< IP Helper interface index; 0 = no live interface.
    std::string Name;             ///< Connection name as the user sees it.
    std::string DriverDesc;       ///< The adapter's model.
    std::string NetworkAddress;   ///< Override in the driver key, six pairs joined by "-"; empty when none.
    std::string Speed;            ///< Such as "100 Mbps".
    std::string DriverKey;        ///< Driver subkey, four digits such as "0007".
    bool TcpipBound = false;      ///< TCP/IP is bound to the adapter.
    std::string Mac;              ///< Current address, six pairs joined by "-".
    bool DhcpEnabled = false;     ///< DHCP is on.
    std::string LeaseObtained;    ///< When the lease was obtained, as display text.
    std::string LeaseTerminates;  ///< When the lease expires, as display text.
    std::vector<std::string> IpAddresses{""};
    std::vector<std::uint32_t> IpRowFlags{0};  ///< Per address, its NTE context.
    std::vector<std::string> SubnetMasks{""};  ///< Parallel to IpAddresses.
    std::vector<std::string> Gateways{""};
    std::vector<std::string> GatewayMetrics{""};  ///< Parallel to Gateways.
    std::vector<std::string> DnsServers{""};      ///< In order of preference.
    std::string Status;                           ///< Such as "Up, Operational" or "Disabled".
    std::uint32_t InterfaceMetric = 0;            ///< 0 = automatic.
    std::string OriginalNetworkAddress;  ///< Manufacturer's address as saved, six pairs joined by "-".
    std::string Vendor;                  ///< Vendor of the address's first three octets.
};

/// ComponentId of the network bridge, in lower case.
inline constexpr char kBridgeComponentId[] = "ms_bridgemp";

/// Whether a record is a network bridge, in whatever case its ComponentId is written.
inline bool IsNetworkBridge(const NicInfo& nic) { return ToLower(nic.ComponentId) == kBridgeComponentId; }

/// The adapters as last read by RefreshNicInfo, never half read; at least one element (an empty record when
/// there are no adapters). A record's position is the adapter's row in the connection list.
inline std::vector<NicInfo> Nics(1);

/// Discards saved original addresses while the adapters are read (switch -ro).
inline bool ResetOriginalMac = false;

}  // namespace corvane
