#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/Platform.h"
#include "tcpip/Metric.h"

/// Commands that add and remove IPv4 addresses and gateways of one record of Nics on the running stack at
/// once and, as far as they say so, in the registry for the next start of the connection. Nics must be
/// current. Failures are shown in boxes through the seat. A record without a live interface (IfIndex 0) has
/// no running stack: that step is left out and counts as done.
namespace corvane {

/// A dotted quad as it was entered. The text may be incomplete ("10.1.."); octets that are missing are 0.
struct EnteredQuad {
    std::string text;
    Ipv4Bytes octets{};
};

/// Adds an address to the running stack and, when `persistent`, to the registry. False after a refusal, which
/// has been shown; then nothing is written. Does not refresh the window.
bool AddIPAddress(std::size_t adapter, const EnteredQuad& address, const EnteredQuad& mask, bool persistent);

/// Removes an address from the running stack and, whatever comes of that, from the registry. `nteContext` is
/// the address's number in IpRowFlags. Refreshes the window when it is done; when the stack does not part
/// with an address that it did not add at run time (result 31), offers a restart and refreshes whatever the
/// answer. Any other refusal is shown, and nothing is refreshed.
void RemoveIPAddress(std::size_t adapter, const std::string& address, std::uint32_t nteContext);

/// Adds a default route and, when `persistent`, the gateway to the registry with this metric; else takes the
/// gateway out of the registry, so that one from an earlier time does not linger there. False after a
/// refusal, which has been shown; then nothing is written. Does not refresh the window.
bool AddGateway(std::size_t adapter, const EnteredQuad& gateway, std::uint32_t metric, bool persistent);

/// Removes the default route through a gateway and, whatever comes of that, the gateway from the registry.
/// Refreshes the window when it is done; a refusal is shown, and nothing is refreshed.
void RemoveGateway(std::size_t adapter, const std::string& gateway);

}  // namespace corvane
