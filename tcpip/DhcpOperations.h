#pragma once

#include <cstddef>
#include <string>

/// DHCP and metric commands on one record of Nics. Each asks and reports through the seat and refreshes the
/// window where something changed. Nics must be current.
namespace corvane {

/// The button and menu item "Enable DHCP" or "Disable DHCP": switches it on or off. Either way the lists of
/// addresses, masks and gateways are reset in the registry; name servers stay. Offers a restart.
void SwitchDhcp(std::size_t adapter, bool enable);

/// The button and menu item that release the lease: asks, and gives the lease back.
void ReleaseLease(std::size_t adapter);

/// The button and menu item that renew the lease: asks, and renews the lease.
void RenewLease(std::size_t adapter);

/// The menu item for the interface metric: asks for a metric and writes it. "0" deletes the value (automatic
/// metric), an empty answer ends it. Any other answer is written as a number: 0 when it is none, rounded to
/// the nearest whole one (ties to even), one outside a DWORD's range as the range's nearer end. Offers a
/// restart.
void SetInterfaceMetric(std::size_t adapter);

}  // namespace corvane
