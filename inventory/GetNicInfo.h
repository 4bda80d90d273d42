#pragma once

#include <string>

namespace corvane {

/// Rebuilds Nics from the registry and the running system, in four stages. Nics is replaced whole when all
/// are done; an exception leaves it as it was. Failures of the two key enumerations and of IP Helper calls
/// are shown through the seat after that, in the order in which they happened; everything else that cannot be
/// read is left empty. May be called again while its boxes are open.
void RefreshNicInfo();

/// Offset of the current time zone's display name, such as "+05:30"; empty when there is none or it cannot be
/// read.
std::string GetTimeZoneOffsetText();

}  // namespace corvane
