#include "presets/Advice.h"

#include <optional>

#include "base/Address.h"
#include "base/Text.h"

namespace corvane {

namespace {

using Sentences = std::vector<std::string>;

void AdviseMac(const std::string& text, Sentences& advice) {
    const std::string digits = Without(text, '-');
    if (digits.empty()) return;
    const std::optional<MacBytes> mac = ParseMacDigits(digits);
    const Refusal refusal = mac ? MacRefusal(*mac) : Refusal("it is not made of twelve hexadecimal digits");
    if (!refusal) return;
    advice.push_back("MAC address '" + text + "' is stored as typed but cannot take effect: " +
                     refusal.Words() + "; give another one");
}

void AdviseMetric(const std::string& text, Sentences& advice) {
    if (text == kAutomaticMetric) return;
    const bool digitsOnly = !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
    if (digitsOnly && NumericValue(text) <= 4294967295.0) return;
    advice.push_back("metric '" + text +
                     "' is stored as typed but is no number 0 to 4294967295: it will count as 0");
}

/// True when one of the addresses shares its network with `gateway`.
bool Reachable(const std::string& gateway, const PresetRecord& record) {
    const std::optional<Ipv4Bytes> target = ParseIpv4(gateway);
    if (!target) return true;
    for (std::size_t i = 0; i < record.IpAddresses.Items.size() && i < record.SubnetMasks.Items.size(); ++i) {
        const std::optional<Ipv4Bytes> address = ParseIpv4(record.IpAddresses.Items[i]);
        const std::optional<Ipv4Bytes> mask = ParseIpv4(record.SubnetMasks.Items[i]);
        if (address && mask && ((HostOrder(*address) ^ HostOrder(*target)) & HostOrder(*mask)) == 0)
            return true;
    }
    return false;
}

void AdviseGateways(const PresetRecord& record, Sentences& advice) {
    // A preset without any has one empty text.
    for (const std::string& gateway : record.Gateways.Items) {
        if (!gateway.empty()) AdviseAddress("gateway", gateway, advice);
    }
    for (std::size_t i = 0; i < record.GatewayMetrics.Items.size(); ++i) {
        const bool unused = i < record.Gateways.Items.size() && record.Gateways.Items[i].empty();
        if (!unused) AdviseMetric(record.GatewayMetrics.Items[i], advice);
    }
    if ((record.Flags & kPresetIp) == 0) return;
    for (const std::string& gateway : record.Gateways.Items) {
        if (gateway.empty() || Reachable(gateway, record)) continue;
        advice.push_back("gateway '" + gateway +
                         "' is in the network of none of the given addresses: it cannot take effect");
    }
}

}  // namespace

void AdviseAddress(const char* what, const std::string& text, Sentences& advice) {
    const std::optional<Ipv4Bytes> address = ParseIpv4(text);
    const Refusal refusal =
        address ? HostAddressRefusal(*address) : Refusal("it is not four numbers 0 to 255 joined by '.'");
    if (!refusal) return;
    advice.push_back(std::string(what) + " '" + text +
                     "' is stored as typed but cannot take effect: " + refusal.Words());
}

void AdviseServer(const std::string& text, Sentences& advice) {
    static constexpr std::uint8_t kLoopback = 127;
    const std::optional<Ipv4Bytes> address = ParseIpv4(text);
    if (!address || address->front() != kLoopback) AdviseAddress("DNS server", text, advice);
}

void AdviseMask(const std::string& text, Sentences& advice) {
    const std::optional<Ipv4Bytes> mask = ParseIpv4(text);
    if (mask && PrefixFromMask(*mask).value_or(0) != 0) return;
    advice.push_back(
        "subnet mask '" + text +
        "' is stored as typed but cannot take effect: a mask is one bits followed by zero bits, such as "
        "255.255.255.0");
}

Sentences Advice(const NicInfo& nic, const PresetRecord& record, const std::string& dhcpReason) {
    Sentences advice;
    if ((record.Flags & kPresetMac) != 0 && (record.Flags & kPresetRandomMac) == 0)
        AdviseMac(record.Mac, advice);
    if ((record.Flags & kPresetDhcp) == 0) {
        if (nic.DhcpEnabled && record.Flags != 0) {
            advice.push_back("DHCP is turned off on '" + nic.Name + "' because " + dhcpReason);
        }
        if ((record.Flags & kPresetIp) != 0) {
            for (const std::string& address : record.IpAddresses.Items)
                AdviseAddress("IP address", address, advice);
            for (const std::string& mask : record.SubnetMasks.Items) AdviseMask(mask, advice);
        }
        if ((record.Flags & kPresetGateway) != 0) AdviseGateways(record, advice);
    }
    if ((record.Flags & kPresetDns) != 0) {
        for (const std::string& server : record.DnsServers.Items) {
            if (!server.empty()) AdviseServer(server, advice);
        }
    }
    return advice;
}

}  // namespace corvane
