#pragma once

/// The stages of RefreshNicInfo, in the order in which it runs them. Each walks Nics and fills more of its
/// fields.
namespace corvane {

/// Which adapters exist, their names, driver keys, overrides, saved addresses and TCP/IP bindings.
void ReadAdapterRegistry();

/// The interface index of each adapter that has a live interface.
void MatchInterfaceIndexes();

/// Status, speed, current address, vendor; keeps the saved manufacturer's address up to date.
void ReadAdapterStatus();

/// DHCP state, lease times, addresses, masks, gateways, metrics, DNS servers.
void ReadTcpipConfig();

}  // namespace corvane
