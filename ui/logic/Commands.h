#pragma once

#include <string>

#include "inventory/NicInfo.h"

/// Which commands can be given for the selected connection, and what its picture is.
namespace corvane {

struct CommandStates {
    bool changeMac = false;
    bool enable = false;  ///< Enable or disable, whichever the connection offers.
    bool dhcp = false;
    bool release = false;
    bool renew = false;
    bool metric = false;
    bool addresses = false;  ///< Adding and removing addresses, gateways and DNS servers.
    bool preset = false;     ///< Applying one.

    bool operator==(const CommandStates&) const = default;
};

/// The commands for a record; none of them without one. What belongs to TCP/IP needs TCP/IP; a lease can be
/// released or renewed where DHCP is on and the connection enabled.
CommandStates StatesFor(const NicInfo* nic);

/// Name of the drawing that stands for the connection's state: "link_disabled", "link_up" or "link_down".
std::string StateIcon(const NicInfo& nic);

}  // namespace corvane
