#pragma once

#include <cstdint>
#include <string>

#include "platform/Platform.h"

namespace corvane {

/// Releases (renews) the DHCP lease of the interface with this index through the entry that GetInterfaceInfo
/// lists for it. The call's result; success also when there is nothing to read, the table cannot be fetched
/// or no entry matches.
Win32Error ReleaseByIndex(std::uint32_t ifIndex);
Win32Error RenewByIndex(std::uint32_t ifIndex);

/// The one error box of every IP Helper failure: critical, OK, application title. Nothing for code 0.
void IphlpApiError(Win32Error code, const std::string& apiName);

}  // namespace corvane
