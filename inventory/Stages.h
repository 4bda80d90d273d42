#pragma once

#include <string>
#include <vector>

#include "base/Win32Error.h"
#include "inventory/NicInfo.h"

/// The stages of RefreshNicInfo, in the order in which it runs them. Each walks the adapters found so far and
/// fills more of their fields. None shows anything: a box lets timers run, which may start a refresh of their
/// own.
namespace corvane {

/// A call that failed, for the user to be told.
struct FailedRead {
    enum class Source { kRegistry, kIpHelper };
    Source source;
    std::string name;  ///< Path of the key, respectively name of the call.
    Win32Error code;
};

/// What a refresh has found, aside from Nics until it is complete.
struct Discovery {
    std::vector<NicInfo> adapters{NicInfo()};  ///< At least one; the first is empty when there are none.
    std::vector<FailedRead> failures;          ///< In the order in which they happened.
};

/// Which adapters exist, their names, driver keys, overrides, saved addresses and TCP/IP bindings. `found` is
/// a fresh one.
void ReadAdapterRegistry(Discovery& found);

/// The interface index of each adapter that has a live interface.
void MatchInterfaceIndexes(Discovery& found);

/// Status, speed, current address, vendor; keeps the saved manufacturer's address up to date.
void ReadAdapterStatus(Discovery& found);

/// DHCP state, lease times, addresses, masks, gateways, metrics, DNS servers.
void ReadTcpipConfig(Discovery& found);

/// Replaces Nics by what was found, then shows the failures' boxes. The boxes may start another refresh:
/// Nics then holds what that one found.
void Publish(Discovery found);

}  // namespace corvane
