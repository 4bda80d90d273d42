#include "startup/CommandLine.h"

#include <algorithm>
#include <array>
#include <vector>

#include "base/Text.h"
#include "platform/Seat.h"

namespace corvane {

namespace {

bool IsHelpForm(const std::string& text) {
    static const std::array<std::string, 7> kForms = {"-help", "help", "/help", "?", "/?", "/", "-"};
    return std::find(kForms.begin(), kForms.end(), text) != kForms.end();
}

/// The entries between commas; none for an empty text.
std::vector<std::string> ListEntries(const std::string& text) {
    return text.empty() ? std::vector<std::string>() : Split(text, ',');
}

/// The two lists of "a,b:c,d". The second gets the first's length, and `missing` for each entry it lacks,
/// unless the first has no entry.
void ParseListPair(const std::string& value, const std::string& missing, PresetList& first,
                   PresetList& second) {
    std::vector<std::string> parts = Split(Without(value, ' '), ':');
    parts.resize(2);
    first = PresetList(ListEntries(parts[0]));
    second = PresetList(ListEntries(parts[1]));
    if (first.Items.empty()) return;
    second.Items.resize(first.Items.size());
    std::replace(second.Items.begin(), second.Items.end(), std::string(), missing);
}

/// False when `name` is no option.
bool TakeOption(CommandLine& line, const std::string& name, const std::string& value) {
    PresetRecord& record = line.record;
    const auto add = [&](int bits) { record.Flags = static_cast<std::uint8_t>(record.Flags | bits); };
    if (name == "n") {
        line.connectionName = value;
    } else if (name == "m") {
        record.Mac = Without(value, ':');
        add(kPresetMac);
    } else if (name == "r") {
        record.Mac.clear();
        add(kPresetMac | kPresetRandomMac);
    } else if (name == "h") {
        add(kPresetDhcp);
    } else if (name == "i") {
        ParseListPair(value, "255.0.0.0", record.IpAddresses, record.SubnetMasks);
        add(kPresetIp);
    } else if (name == "g") {
        ParseListPair(value, "0", record.Gateways, record.GatewayMetrics);
        add(kPresetGateway);
    } else if (name == "d") {
        record.DnsServers = PresetList(ListEntries(Without(value, ' ')));
        add(kPresetDns);
    } else if (name == "p") {
        line.presetName = ToLower(value);
    } else if (name == "s") {
        line.silent = true;
    } else if (name == "re") {
        line.restart = true;
    } else if (name == "di") {
        line.disable = true;
    } else if (name == "rl") {
        line.release = true;
    } else if (name == "rn") {
        line.renew = true;
    } else if (name == "sv") {
        line.shortVendorList = true;
    } else if (name == "ro") {
        line.resetOriginalMac = true;
    } else {
        return false;
    }
    return true;
}

}  // namespace

CommandLine ParseCommandLine(const std::string& text) {
    CommandLine line;
    if (text.empty()) return line;
    if (IsHelpForm(text)) {
        line.outcome = CommandLine::Outcome::kHelp;
        return line;
    }
    line.outcome = CommandLine::Outcome::kParsed;
    std::string dashed = text;
    std::replace(dashed.begin(), dashed.end(), '/', '-');
    const std::vector<std::string> pieces = Split(dashed, '-');
    for (std::size_t i = 1; i < pieces.size(); ++i) {
        const std::size_t blank = pieces[i].find(' ');
        const std::string name = pieces[i].substr(0, blank);
        const std::string value = blank == std::string::npos ? std::string() : Trim(pieces[i].substr(blank));
        if (TakeOption(line, ToLower(name), value)) continue;
        line.outcome = CommandLine::Outcome::kInvalidParameter;
        line.invalidName = name;
        return line;
    }
    return line;
}

std::string CommandLineHelp() {
    static const std::vector<std::string> kLines = {
        "nicx -n network_connection_name   [-m mac_address / -r]   [-h]   [-i ip_address_1[,ip_address_2...] "
        ":subnet_mask_1[,subnet_mask_2...]]   [-g gateway_1[,gateway_2...] :metric_1[,metric_2...]]   [-d "
        "dns_server_1[,dns_server_2...]]   [-p preset_name]   [-s]   [-re]   [-di]   [-rn]   [-rl]   [-sv]   "
        "[-ro]",
        "",
        "-n    Specifies name of the network connection/adapter (NIC). Name may be complete or partial or "
        "just a part "
        "of it.",
        "-m    Specifies a MAC address. Blank MAC address implies original MAC address of the NIC.",
        "-r    Specifies to use a random MAC address from manufacturers list.",
        "-h    Enables DHCP and removes previous IP addresses and Gateways.",
        "-rl   Releases DHCP server assigned IP address.",
        "-Rn   Renews IP address lease from DHCP server.",
        "-i    Changes IP address. IP address list is comma separated, subnet masks list is comma separated. "
        "Both IP "
        "addresses and subnet masks lists are separated using a colon ':'",
        "-g    Changes Gateway address. Gateway addresses list is comma separated, metrics list is comma "
        "separated. "
        "Both Gateway addresses and metric lists separated using a colon ':'",
        "-d    Changes DNS server address. DNS server address list is comma separated.",
        "-s    Silent mode. Do not show any message window.",
        "-re   Restarts network connection/adapter.",
        "-di   Disable network connection/adapter.",
        "-p    Specifies name of a preset saved earlier to be used. Preset name may be complete or partial "
        "or just a "
        "part of it. This parameter over powers all other network settings.",
        "-sv   Loads short vendor list which makes NICX load faster. This parameter over powers all other "
        "parameters.",
        "-ro   Resets the original MAC address info saved in registry by NICX. Use this only if original MAC "
        "address "
        "saved is wrong. This parameter over powers all other parameters.",
        "-help Displays this help message.",
        "",
        "Click OK to Continue"};
    return Join(kLines, kCrLf);
}

}  // namespace corvane
