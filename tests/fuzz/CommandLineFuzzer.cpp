#include <string>

#include "startup/CommandLine.h"
#include "tests/fuzz/Require.h"
#include "tests/fuzz/Targets.h"

namespace corvane::fuzz {

namespace {

constexpr std::uint8_t kAllFlags =
    kPresetDhcp | kPresetMac | kPresetRandomMac | kPresetIp | kPresetGateway | kPresetDns;

bool HasNone(const std::string& text, const char* letters) {
    return text.find_first_of(letters) == std::string::npos;
}

/// Two lists of which the second has an entry for each of the first.
void RequirePairs(const PresetList& first, const PresetList& second) {
    Require(first.Items.empty() || first.Items.size() == second.Items.size(),
            "the lists of a pair are as long");
}

}  // namespace

bool CheckCommandLine(std::string_view bytes) {
    const std::string text(bytes);
    const CommandLine line = ParseCommandLine(text);
    const PresetRecord& record = line.record;
    Require((line.outcome == CommandLine::Outcome::kNone) == text.empty(), "no text is no arguments");
    Require(line.outcome == CommandLine::Outcome::kInvalidParameter || line.invalidName.empty(),
            "only an invalid option is named");
    Require(HasNone(line.invalidName, "-/ "), "an option's name ends where the next part begins");
    Require(text.find(line.invalidName) != std::string::npos, "an option is named as typed");
    Require(HasNone(line.connectionName, "-/"), "a name cannot hold what begins an option");
    Require(text.find(line.connectionName) != std::string::npos, "a connection's name is as typed");
    Require(HasNone(line.presetName, "-/"), "a preset's name cannot hold what begins an option");
    Require(record.Name.empty(), "the record has no name");
    Require((record.Flags & ~kAllFlags) == 0, "no unknown flag is set");
    Require((record.Flags & kPresetRandomMac) == 0 || (record.Flags & kPresetMac) != 0,
            "a random address is an address");
    Require(HasNone(record.Mac, ":"), "an address is joined otherwise");
    RequirePairs(record.IpAddresses, record.SubnetMasks);
    RequirePairs(record.Gateways, record.GatewayMetrics);
    for (const std::string& address : record.IpAddresses.Items)
        Require(HasNone(address, " ,:"), "an address ends where the next part begins");
    return line.outcome == CommandLine::Outcome::kParsed;
}

}  // namespace corvane::fuzz
