#include "tcpip/AddressOperations.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "base/Text.h"
#include "inventory/NicInfo.h"
#include "platform/IphlpApi.h"
#include "platform/Seat.h"
#include "tcpip/OfferRestart.h"
#include "tcpip/RegistryWriters.h"

namespace corvane {

namespace {

/// The numeric value of a quad's part; the nearer end for one that no octet can hold.
std::uint8_t OctetFrom(const std::string& part) {
    return static_cast<std::uint8_t>(std::clamp(std::nearbyint(NumericValue(part)), 0.0, 255.0));
}

/// Takes any text: missing octets are 0, parts after the fourth do not count.
Ipv4Bytes OctetsOf(const std::string& quad) {
    std::vector<std::string> parts = Split(quad, '.');
    Ipv4Bytes octets{};
    parts.resize(octets.size());
    std::transform(parts.begin(), parts.end(), octets.begin(), OctetFrom);
    return octets;
}

IpForwardRow DefaultRoute(std::uint32_t ifIndex, const Ipv4Bytes& gateway, std::uint32_t metric) {
    static constexpr std::uint32_t kIndirect = 4;
    static constexpr std::uint32_t kNetworkManagement = 3;
    IpForwardRow row;
    row.nextHop = gateway;
    row.ifIndex = ifIndex;
    row.type = kIndirect;
    row.proto = kNetworkManagement;
    row.metric1 = metric;
    return row;
}

/// Shows a refusal.
bool Succeeded(Win32Error result, const std::string& apiName) {
    IphlpApiError(result, apiName);
    return Ok(result);
}

}  // namespace

bool AddIPAddress(std::size_t adapter, const EnteredQuad& address, const EnteredQuad& mask, bool persistent) {
    if (const std::uint32_t ifIndex = Nics.at(adapter).IfIndex; ifIndex != 0) {
        std::uint32_t nteContext = 0;  // Not kept: the refresh reads it with the address.
        const Win32Error result =
            CurrentPlatform().ipHelper->AddIPAddress(address.octets, mask.octets, ifIndex, nteContext);
        if (!Succeeded(result, "AddIPAddress")) return false;
    }
    if (persistent) AddRegistryIPAddress(WriterIndex(adapter), address.text, mask.text);
    return true;
}

void RemoveIPAddress(std::size_t adapter, const std::string& address, std::uint32_t nteContext) {
    const bool live = Nics.at(adapter).IfIndex != 0;
    const Win32Error result =
        live ? CurrentPlatform().ipHelper->DeleteIPAddress(nteContext) : Win32Error::kSuccess;
    RemoveRegistryIPAddress(WriterIndex(adapter), address);
    if (result == Win32Error::kGenFailure) {
        // The stack keeps an address that it did not add at run time until the connection starts anew.
        OfferRestartTo("remove the IP address '" + address + "'", adapter);
    } else if (Succeeded(result, "DeleteIPAddress")) {
        CurrentSeat().Refresh();
    }
}

bool AddGateway(std::size_t adapter, const EnteredQuad& gateway, std::uint32_t metric, bool persistent) {
    if (const std::uint32_t ifIndex = Nics.at(adapter).IfIndex; ifIndex != 0) {
        const Win32Error result =
            CurrentPlatform().ipHelper->CreateIpForwardEntry(DefaultRoute(ifIndex, gateway.octets, metric));
        if (!Succeeded(result, "CreateIpForwardEntry")) return false;
    }
    if (persistent) {
        AddRegistryGateway(WriterIndex(adapter), gateway.text, std::to_string(metric));
    } else {
        RemoveRegistryGateway(WriterIndex(adapter), gateway.text);
    }
    return true;
}

void RemoveGateway(std::size_t adapter, const std::string& gateway) {
    Win32Error result = Win32Error::kSuccess;
    if (const std::uint32_t ifIndex = Nics.at(adapter).IfIndex; ifIndex != 0) {
        result =
            CurrentPlatform().ipHelper->DeleteIpForwardEntry(DefaultRoute(ifIndex, OctetsOf(gateway), 0));
    }
    RemoveRegistryGateway(WriterIndex(adapter), gateway);
    if (Succeeded(result, "DeleteIpForwardEntry")) CurrentSeat().Refresh();
}

}  // namespace corvane
