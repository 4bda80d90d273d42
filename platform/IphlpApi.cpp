#include "platform/IphlpApi.h"

#include <algorithm>

#include "platform/Seat.h"

namespace corvane {

namespace {

Win32Error ActOnEntry(std::uint32_t ifIndex, Win32Error (IpHelperApi::*action)(const InterfaceEntry&)) {
    IpHelperApi& ipHelper = *CurrentPlatform().ipHelper;
    const TableRead<InterfaceEntry> table = ipHelper.GetInterfaceInfo();
    const auto entry = std::find_if(table.rows.begin(), table.rows.end(),
                                    [&](const InterfaceEntry& row) { return row.index == ifIndex; });
    if (entry == table.rows.end()) return Win32Error::kSuccess;
    return (ipHelper.*action)(InterfaceEntry(*entry));
}

}  // namespace

Win32Error ReleaseByIndex(std::uint32_t ifIndex) {
    return ActOnEntry(ifIndex, &IpHelperApi::IpReleaseAddress);
}

Win32Error RenewByIndex(std::uint32_t ifIndex) { return ActOnEntry(ifIndex, &IpHelperApi::IpRenewAddress); }

void IphlpApiError(Win32Error code, const std::string& apiName) {
    if (Ok(code)) return;
    std::string description = CurrentPlatform().ipHelper->SystemText(code);
    if (description.empty()) description = "unknown";
    const std::string text = std::string("DLL : IphlpApi.dll") + kCrLf + kCrLf +
                             "Error Code : " + std::to_string(Number(code)) + kCrLf + "API: " + apiName +
                             kCrLf + "Error Description : " + description + kCrLf + kCrLf +
                             "Click OK To Continue";
    CurrentSeat().ShowBox(kApplicationTitle, text, BoxIcon::kCritical, BoxButtons::kOk);
}

}  // namespace corvane
