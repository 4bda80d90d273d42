#include <array>
#include <optional>
#include <string>
#include <vector>

#include "base/Address.h"
#include "base/Text.h"
#include "inventory/NicInfo.h"
#include "inventory/Stages.h"
#include "platform/CodePage.h"
#include "platform/Platform.h"
#include "platform/Registry.h"
#include "platform/RegistryValues.h"
#include "vendors/VendorList.h"

namespace corvane {

namespace {

void LookUpVendor(NicInfo& nic, const std::string& prefix) {
    if (const std::optional<std::size_t> record = FindVendor(prefix))
        nic.Vendor = VendorText(Vendors(), *record);
}

/// An adapter without a driver key has no place for the saved address; it is then known for this run only.
void WriteOriginal(const NicInfo& nic) {
    if (nic.DriverKey.empty()) return;
    static_cast<void>(RegSetString(kHkeyLocalMachine, DriverKeyPath(nic.DriverKey),
                                   kOriginalNetworkAddressValue, nic.OriginalNetworkAddress, kRegSz));
}

/// The reported address is the manufacturer's while no override is in force; with one, the saved value is the
/// only source of it.
void KeepOriginal(NicInfo& nic) {
    if (!nic.OriginalNetworkAddress.empty() && !ResetOriginalMac) return;
    if (!nic.NetworkAddress.empty()) {
        if (nic.OriginalNetworkAddress.empty()) return;
        nic.OriginalNetworkAddress.clear();
        WriteOriginal(nic);
    } else if (nic.Mac != nic.OriginalNetworkAddress) {
        nic.OriginalNetworkAddress = nic.Mac;
        WriteOriginal(nic);
    }
}

void SetStatus(NicInfo& nic, const IfRow& row) {
    static constexpr std::array<const char*, 4> kAdmin = {nullptr, "Up", "Down", "Testing"};
    static constexpr std::array<const char*, 6> kOper = {", Non Operational", ", Unreachable",
                                                         ", Disconnected",    ", Connecting",
                                                         ", Connected",       ", Operational"};
    if (row.adminStatus >= 1 && row.adminStatus < kAdmin.size()) nic.Status = kAdmin[row.adminStatus];
    if (row.operStatus < kOper.size()) nic.Status += kOper[row.operStatus];
}

/// A speed below 1000 bit/s is followed by what `unit` is on entry: the vendor prefix.
std::string SpeedText(std::uint64_t bitsPerSecond, std::string unit) {
    double value = static_cast<double>(bitsPerSecond);
    for (const char* next : {" Kbps", " Mbps", " Gbps"}) {
        if (value < 1000) break;
        value /= 1000;
        unit = next;
    }
    return ShortestDecimal(value, 2) + unit;
}

void ReadLive(NicInfo& nic, std::vector<FailedRead>& failures) {
    IfRow row;
    const Win32Error code = CurrentPlatform().ipHelper->GetIfEntry(nic.IfIndex, row);
    if (!Ok(code)) {
        failures.push_back({FailedRead::Source::kIpHelper, "GetIfEntry", code});
        return;
    }
    nic.Mac = MacText(row.physAddr);
    // The three octets of the manufacturer.
    const std::string prefix = MacDigits(row.physAddr).substr(0, 6);
    LookUpVendor(nic, prefix);
    KeepOriginal(nic);
    SetStatus(nic, row);
    nic.Speed = SpeedText(row.speed, prefix);
}

void ReadDisabled(NicInfo& nic) {
    nic.Status = "Disabled";
    if (ResetOriginalMac) {
        nic.OriginalNetworkAddress.clear();
        if (!nic.DriverKey.empty())
            static_cast<void>(RegDeleteValue(kHkeyLocalMachine, DriverKeyPath(nic.DriverKey),
                                             kOriginalNetworkAddressValue));
    }
    // In the code page, as the vendor list's prefixes are: one byte per character.
    const std::string stored =
        ToCodePage(nic.NetworkAddress.empty() ? nic.OriginalNetworkAddress : nic.NetworkAddress);
    if (stored.size() >= 8)
        LookUpVendor(nic, stored.substr(0, 2) + stored.substr(3, 2) + stored.substr(6, 2));
}

}  // namespace

void ReadAdapterStatus(Discovery& found) {
    for (NicInfo& nic : found.adapters) {
        if (nic.IfIndex != 0) {
            ReadLive(nic, found.failures);
        } else {
            ReadDisabled(nic);
        }
    }
}

}  // namespace corvane
