#include "programs/report/ReportJson.h"

#include <cstdio>

#include <nlohmann/json.hpp>

#include "inventory/NicInfo.h"
#include "platform/Platform.h"
#include "startup/Version.h"
#include "ui/logic/TextReport.h"

namespace corvane {

namespace {

using Json = nlohmann::ordered_json;

std::string IsoDate(const DateTime& date) {
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d", date.year, date.month, date.day,
                  date.hour, date.minute, date.second);
    return text;
}

/// Two parallel lists as an array of objects; empty entries of the first are left out.
Json Pairs(const char* firstName, const std::vector<std::string>& first, const char* secondName,
           const std::vector<std::string>& second, const std::string& missingSecond) {
    Json array = Json::array();
    for (std::size_t i = 0; i < first.size(); ++i) {
        if (first[i].empty()) continue;
        const bool present = i < second.size() && !second[i].empty();
        array.push_back({{firstName, first[i]}, {secondName, present ? second[i] : missingSecond}});
    }
    return array;
}

Json Connection(const NicInfo& nic, int number) {
    Json object = {{"number", number},
                   {"name", nic.Name},
                   {"device", nic.DriverDesc},
                   {"hardwareId", nic.ComponentId},
                   {"configurationId", nic.Id},
                   {"interfaceIndex", nic.IfIndex},
                   {"mac", nic.Mac},
                   {"macText", ReportMacText(nic)},
                   {"originalMac", nic.OriginalNetworkAddress},
                   {"override", nic.NetworkAddress},
                   {"manufacturer", ReportManufacturer(nic)},
                   {"speed", nic.Speed},
                   {"status", nic.Status},
                   {"tcpip", nic.TcpipBound},
                   {"dhcp", nic.TcpipBound && nic.DhcpEnabled},
                   {"interfaceMetric", nic.InterfaceMetric}};
    if (!nic.TcpipBound) {
        object["addresses"] = object["gateways"] = object["dnsServers"] = Json::array();
        return object;
    }
    if (nic.DhcpEnabled) {
        object["leaseObtained"] = nic.LeaseObtained;
        object["leaseExpires"] = nic.LeaseTerminates;
    }
    object["addresses"] = Pairs("address", nic.IpAddresses, "mask", nic.SubnetMasks, "0.0.0.0");
    object["gateways"] = Pairs("gateway", nic.Gateways, "metric", nic.GatewayMetrics, "");
    Json servers = Json::array();
    for (const std::string& server : nic.DnsServers) {
        if (!server.empty()) servers.push_back(server);
    }
    object["dnsServers"] = std::move(servers);
    return object;
}

}  // namespace

std::string ReportJson() {
    Json connections = Json::array();
    for (const NicInfo& nic : Nics) {
        if (!nic.Name.empty())
            connections.push_back(Connection(nic, static_cast<int>(connections.size()) + 1));
    }
    const Json report = {{"program", "Orvella Corvane"},
                         {"version", kProgramVersion},
                         {"date", IsoDate(CurrentPlatform().clock->LocalTime())},
                         {"connections", std::move(connections)}};
    return report.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace corvane
