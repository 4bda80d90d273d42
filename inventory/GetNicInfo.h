#pragma once

#include <string>

namespace corvane {

/// Rebuilds Nics from the registry and the running system, in four stages. Failures of the two key
/// enumerations and of IP Helper calls are shown through the seat; everything else that cannot be read is
/// left empty.
void RefreshNicInfo();

/// Offset of the current time zone's display name, such as "+05:30"; empty when there is none or it cannot be
/// read.
std::string GetTimeZoneOffsetText();

}  // namespace corvane
