#include "ui/logic/TextReport.h"

#include <array>
#include <cstdio>

#include "platform/Platform.h"
#include "platform/Seat.h"
#include "ui/logic/Details.h"

namespace corvane {

namespace {

std::string Label(const std::string& label, std::size_t width, char fill) {
    return label + std::string(width - label.size(), fill);
}

std::string Line(const std::string& label, const std::string& value) {
    return Label(label, 25, '.') + value + kCrLf;
}

std::string LongDate(const DateTime& date) {
    static constexpr std::array kWeekdays = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                             "Thursday", "Friday", "Saturday"};
    static constexpr std::array kMonths = {"January",   "February", "March",    "April",
                                           "May",       "June",     "July",     "August",
                                           "September", "October",  "November", "December"};
    char numbers[64];
    std::snprintf(numbers, sizeof numbers, " %02d, %04d   %02d:%02d:%02d", date.day, date.year, date.hour,
                  date.minute, date.second);
    return std::string(kWeekdays.at(static_cast<std::size_t>(date.weekday))) + ", " +
           kMonths.at(static_cast<std::size_t>(date.month - 1)) + numbers;
}

/// Entries of two parallel lists as pairs of lines. The one empty entry of an unused list makes a pair too.
std::string PairLines(const char* firstLabel, const std::vector<std::string>& first, const char* secondLabel,
                      const std::vector<std::string>& second, const std::string& missingSecond) {
    std::string lines;
    for (std::size_t i = 0; i < first.size(); ++i) {
        const bool present = i < second.size() && !second[i].empty();
        lines += Line(firstLabel, first[i]) + Line(secondLabel, present ? second[i] : missingSecond);
    }
    return lines;
}

}  // namespace

std::string ReportMacText(const NicInfo& nic) {
    if (!nic.Mac.empty()) {
        if (nic.NetworkAddress.empty()) return nic.Mac;
        if (nic.NetworkAddress != nic.Mac) return nic.Mac + " (Inactive, " + nic.NetworkAddress + ")";
        return nic.Mac + " (Changed)";
    }
    if (!nic.NetworkAddress.empty()) return nic.NetworkAddress + " (Changed)";
    return nic.OriginalNetworkAddress.empty() ? kNotActive : nic.OriginalNetworkAddress;
}

std::string ReportManufacturer(const NicInfo& nic) {
    if (ReportMacText(nic) == kNotActive) return {};
    return ManufacturerText(nic);
}

std::string InterfaceSection(std::size_t adapter) {
    const NicInfo& nic = Nics.at(adapter);
    std::string text = Line("Connection Name", nic.Name) + Line("Device Name", nic.DriverDesc) +
                       Line("Hardware ID", nic.ComponentId) + Line("Configuration ID", nic.Id) +
                       Line("MAC Address", ReportMacText(nic)) +
                       Line("Manufacturer", ReportManufacturer(nic)) + Line("Speed", nic.Speed) +
                       Line("Link Status", nic.Status);
    if (!nic.TcpipBound) return text + Line("TCP/IP", "Disabled") + Line("DHCP", "Disabled");
    text += Line("TCP/IP", "Enabled") + Line("DHCP", nic.DhcpEnabled ? "Enabled" : "Disabled");
    if (nic.DhcpEnabled) {
        text += Line("Lease Obtained", nic.LeaseObtained) + Line("Lease Expires", nic.LeaseTerminates);
    }
    text += PairLines("IP Address", nic.IpAddresses, "Subnet Mask", nic.SubnetMasks, "0.0.0.0");
    text += PairLines("Gateway", nic.Gateways, "Metric", nic.GatewayMetrics, "");
    for (const std::string& server : nic.DnsServers) text += Line("DNS Server", server);
    return text;
}

std::string TextReport() {
    std::string text = std::string("Orvella Corvane v4.5 By Ollory") + kCrLf + std::string(49, '=') + kCrLf +
                       kCrLf + "Date: " + LongDate(CurrentPlatform().clock->LocalTime()) + kCrLf + kCrLf +
                       "Text Report-" + kCrLf + std::string(12, '=') + kCrLf + kCrLf;
    int number = 0;
    for (std::size_t i = 0; i < Nics.size(); ++i) {
        if (Nics[i].Name.empty()) continue;
        text += "Interface #" + std::to_string(++number) + kCrLf + std::string(13, '=') + kCrLf + kCrLf +
                InterfaceSection(i) + kCrLf + kCrLf;
    }
    return text + kCrLf + "EOF" + kCrLf;
}

}  // namespace corvane
