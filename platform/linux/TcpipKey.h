#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/Netlink.h"
#include "platform/linux/RegistryStore.h"

/// What the registry says about a link's IPv4 set-up, in the kernel's terms.
namespace corvane {

/// "EnableDHCP" of the link's TCP/IP key: its first byte is not zero.
bool UsesDhcp(RegistryStore& store, const std::string& linkId);

/// The static set-up of a link's TCP/IP key. `refused` holds a sentence for each entry that no host can have.
struct StaticSetup {
    std::vector<KernelAddress> addresses;
    std::vector<KernelRoute> defaultRoutes;
    std::vector<std::string> refused;
};

/// Reads "IPAddress", "SubnetMask" ("255.0.0.0" where one is missing), "DefaultGateway",
/// "DefaultGatewayMetric" (one of 0, or none, gives "InterfaceMetric") of a link. The placeholder "0.0.0.0",
/// empty entries and repeated addresses are left out.
StaticSetup ReadStaticSetup(RegistryStore& store, const std::string& linkId, std::uint32_t linkIndex);

/// The override "NetworkAddress" of a driver key: its text without NULs, or nothing when there is no value.
std::optional<std::string> ReadOverride(RegistryStore& store, const std::string& driverKey);

}  // namespace corvane
