#pragma once

#include <cstddef>
#include <string>

#include "inventory/NicInfo.h"

/// The plain-text report of every connection, from Nics as last read; nothing is queried anew.
namespace corvane {

/// The whole report: UTF-8, lines ending in CR LF, dated by the platform's clock. Adapters without a
/// connection name are left out. Convert with ToCodePage before writing it to a file.
std::string TextReport();

/// The block of Nics[adapter]: padded labels and values.
std::string InterfaceSection(std::size_t adapter);

/// The address with its mark, such as "00-0C-29-4F-8E-35 (Changed)".
std::string ReportMacText(const NicInfo& nic);

/// The manufacturer as the report gives it: empty when no address is known, fixed words for the network
/// bridge.
std::string ReportManufacturer(const NicInfo& nic);

}  // namespace corvane
