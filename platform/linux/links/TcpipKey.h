#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/kernel/Netlink.h"
#include "platform/linux/registry/RegistryStore.h"

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

/// The addresses that the program added to a link's running stack: the value "RunTimeIPAddress" of its TCP/IP
/// key, such as "10.0.0.5/24". They are no part of the set-up that the store takes over from the kernel, so
/// that a restart does not bring them back. A note ends when the program deletes the address, when the link
/// is enabled anew, and with the kernel's object.
inline constexpr char kRunTimeAddresses[] = "RunTimeIPAddress";

std::vector<std::string> ReadRunTimeAddresses(RegistryStore& store, const std::string& linkId);
std::vector<std::string> ReadRunTimeAddresses(RegistryStore::Editor& editor, const std::string& linkId);
bool IsRunTimeAddress(const std::vector<std::string>& notes, const KernelAddress& address);

/// Parts of the editor's transaction.
Win32Error NoteRunTimeAddress(RegistryStore::Editor& editor, const std::string& linkId,
                              const KernelAddress& address);
Win32Error ForgetRunTimeAddress(RegistryStore::Editor& editor, const std::string& linkId,
                                const KernelAddress& address);

/// The override "NetworkAddress" of a driver key: its text without NULs, or nothing when there is no value.
std::optional<std::string> ReadOverride(RegistryStore& store, const std::string& driverKey);

}  // namespace corvane
