#include "inventory/GetNicInfo.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/Text.h"
#include "inventory/NicInfo.h"
#include "inventory/ReadText.h"
#include "inventory/Stages.h"
#include "platform/CodePage.h"
#include "platform/IphlpApi.h"
#include "platform/Registry.h"
#include "platform/RegistryValues.h"
#include "platform/Seat.h"

namespace corvane {

namespace {

void Show(const FailedRead& failure) {
    switch (failure.source) {
        case FailedRead::Source::kRegistry:
            ShowRegistryError("Error! Cannot Read Registry", "Error while reading windows registry.",
                              failure.name, failure.code);
            break;
        case FailedRead::Source::kIpHelper:
            IphlpApiError(failure.code, failure.name);
            break;
    }
}

/// Notes a failure, and returns false then.
bool ReadSubkeys(const char* key, std::vector<std::string>& names, Discovery& found) {
    const Win32Error code = RegEnumSubkeys(kHkeyLocalMachine, key, names);
    if (!Ok(code)) found.failures.push_back({FailedRead::Source::kRegistry, key, code});
    return Ok(code);
}

/// Position of the first record of each Id.
using IdIndex = std::unordered_map<std::string, std::size_t>;

IdIndex IndexOfIds(const std::vector<NicInfo>& adapters) {
    IdIndex index;
    for (std::size_t i = 0; i < adapters.size(); ++i) index.emplace(adapters[i].Id, i);
    return index;
}

/// Characters of a registry text: each is one byte of the code page, whatever its length in UTF-8.
std::size_t CharacterCount(const std::string& text) { return ToCodePage(text).size(); }

std::string PairsOfFirstTwelve(const std::string& text) {
    const std::string characters = ToCodePage(text);
    std::string pairs;
    for (std::size_t i = 0; i < 12; i += 2) {
        if (i > 0) pairs += '-';
        pairs += characters.substr(i, 2);
    }
    return FromCodePage(pairs);
}

void ReadDriverKey(NicInfo& nic, const std::string& subkey) {
    const std::string key = DriverKeyPath(subkey);
    nic.DriverKey = subkey;
    nic.DriverDesc = ReadText(key, kDriverDescValue);
    nic.ComponentId = ReadText(key, kComponentIdValue);
    const std::string address = ToUpper(ReadText(key, kNetworkAddressValue));
    nic.NetworkAddress = CharacterCount(address) > 11 ? PairsOfFirstTwelve(address) : std::string();
    const std::string original = ToUpper(ReadText(key, kOriginalNetworkAddressValue));
    nic.OriginalNetworkAddress = CharacterCount(original) > 11 ? original : std::string();
}

}  // namespace

void RefreshNicInfo() {
    Discovery found;
    ReadAdapterRegistry(found);
    MatchInterfaceIndexes(found);
    ReadAdapterStatus(found);
    ReadTcpipConfig(found);
    Publish(std::move(found));
}

void Publish(Discovery found) {
    Nics = std::move(found.adapters);
    for (const FailedRead& failure : found.failures) Show(failure);
}

void ReadAdapterRegistry(Discovery& found) {
    std::vector<NicInfo>& adapters = found.adapters;
    std::vector<std::string> names;
    if (!ReadSubkeys(kAdaptersKey, names, found) || names.empty()) return;

    std::size_t count = 0;
    for (const std::string& name : names) {
        if (name.empty() || name.front() != '{') continue;
        if (count == adapters.size()) adapters.emplace_back();
        adapters[count++].Id = name;
    }
    {
        const RegistryReading reading;
        for (NicInfo& nic : adapters) nic.Name = ReadText(ConnectionKey(nic.Id), kConnectionNameValue);
    }

    names.clear();
    static_cast<void>(ReadSubkeys(kClassKey, names, found));
    const RegistryReading reading;
    const IdIndex records = IndexOfIds(adapters);
    for (const std::string& subkey : names) {
        if (subkey.empty()) continue;
        const std::string id = ReadText(DriverKeyPath(subkey), kNetCfgInstanceIdValue);
        if (id.empty()) continue;
        const auto record = records.find(id);
        if (record != records.end()) ReadDriverKey(adapters[record->second], subkey);
    }

    static constexpr std::string_view kDevice = "\\Device\\";
    for (const std::string& piece : ListPieces(ReadText(kLinkageKey, kBindValue))) {
        if (!piece.starts_with(kDevice)) continue;
        const auto record = records.find(piece.substr(kDevice.size()));
        if (record != records.end()) adapters[record->second].TcpipBound = true;
    }
}

void MatchInterfaceIndexes(Discovery& found) {
    const TableRead<InterfaceEntry> table = CurrentPlatform().ipHelper->GetInterfaceInfo();
    if (table.outcome == TableRead<InterfaceEntry>::Outcome::kFailed)
        found.failures.push_back({FailedRead::Source::kIpHelper, "GetInterfaceInfo", table.code});
    if (table.outcome != TableRead<InterfaceEntry>::Outcome::kRows) return;

    // An entry belongs to the first record whose Id its name goes on with. Ids have very few lengths (one, as
    // a rule), so one look-up per length finds it.
    std::vector<NicInfo>& adapters = found.adapters;
    const IdIndex records = IndexOfIds(adapters);
    std::set<std::size_t> lengths;
    for (const auto& [id, position] : records)
        if (!id.empty()) lengths.insert(id.size());
    static constexpr std::string_view kDevice = "\\DEVICE\\TCPIP_";
    for (const InterfaceEntry& entry : table.rows) {
        const std::string name = Without(entry.name, '\0');
        if (!name.starts_with(kDevice)) continue;
        std::size_t first = adapters.size();
        for (const std::size_t length : lengths) {
            const auto record = records.find(name.substr(kDevice.size(), length));
            if (record != records.end()) first = std::min(first, record->second);
        }
        if (first < adapters.size()) adapters[first].IfIndex = entry.index;
    }
}

}  // namespace corvane
