#include "ui/logic/Details.h"

namespace corvane {

namespace {

constexpr char kEnabled[] = "Enabled";
constexpr char kDisabled[] = "Disabled";
constexpr char kDhcpDisabled[] = "DHCP Disabled";

std::string Marked(const std::string& mac, const char* mark) { return mac + " (" + mark + ")"; }

void FillTcpip(Details& details, const NicInfo& nic) {
    const bool dhcp = nic.TcpipBound && nic.DhcpEnabled;
    details.labTCPIP = nic.TcpipBound ? kEnabled : kDisabled;
    details.labDHCP = dhcp ? kEnabled : kDisabled;
    details.labLeaseObtained = dhcp ? nic.LeaseObtained : kDhcpDisabled;
    details.labLeaseExpires = dhcp ? nic.LeaseTerminates : kDhcpDisabled;
    details.switchesDhcpOn = !dhcp;
    details.mnuEnableDHCP = dhcp ? "Disable DHC&P" : "Enable DHC&P";
}

}  // namespace

std::string ListHeader(const std::string& title, std::size_t rows) {
    return title + " (" + std::to_string(rows) + ")";
}

std::vector<DetailsRow> ListRows(const std::vector<std::string>& texts,
                                 const std::vector<std::string>& subItems) {
    std::vector<DetailsRow> rows;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        if (texts[i].empty()) continue;
        rows.push_back({texts[i], i < subItems.size() ? subItems[i] : std::string(), i});
    }
    return rows;
}

std::string DetailsMacText(const NicInfo& nic) {
    const std::string& changed = nic.NetworkAddress;
    const std::string& original = nic.OriginalNetworkAddress;
    if (!nic.Mac.empty()) {
        if (changed.empty()) return Marked(nic.Mac, nic.Mac == original ? "Original" : "Changed");
        if (nic.Mac == changed) return Marked(nic.Mac, "Changed");
        return nic.Mac + " (Inactive, " + changed + ")";
    }
    if (!changed.empty()) return Marked(changed, "Changed");
    return original.empty() ? kNotActive : Marked(original, "Original");
}

std::string ManufacturerText(const NicInfo& nic) {
    return IsNetworkBridge(nic) ? "MICROSOFT NETWORK BRIDGE" : nic.Vendor;
}

Details FillDetails(const NicInfo& nic) {
    Details details;
    const bool live = nic.IfIndex != 0;
    details.enables = !live;
    details.enableButton = live ? "&Disable" : "&Enable";
    details.mnuEnable = live ? "&Disable Network Connection" : "&Enable Network Connection";
    details.txtConnName = nic.Name;
    details.txtDevName = nic.DriverDesc;
    details.txtHardID = nic.ComponentId;
    details.txtConfigID = nic.Id;
    details.txtMAC = DetailsMacText(nic);
    details.txtManufac = ManufacturerText(nic);
    details.labSpeed = nic.Speed;
    details.labStatus = nic.Status;
    FillTcpip(details, nic);
    details.ListIP = ListRows(nic.IpAddresses, nic.SubnetMasks);
    details.headerIP = ListHeader(kIpTitle, details.ListIP.size());
    details.ListGateway = ListRows(nic.Gateways, nic.GatewayMetrics);
    details.headerGateway = ListHeader(kGatewayTitle, details.ListGateway.size());
    details.ListDNS = ListRows(nic.DnsServers);
    details.headerDNS = ListHeader(kDnsTitle, details.ListDNS.size());
    return details;
}

}  // namespace corvane
