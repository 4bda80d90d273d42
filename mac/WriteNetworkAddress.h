#pragma once

#include <cstddef>
#include <string>

namespace corvane {

/// Writes `text` (registry form: twelve hexadecimal digits, not checked here) as the override in the driver
/// key of Nics[adapter]; an empty text removes it. Takes effect when the connection restarts. True on
/// success, also when there was nothing to remove; false after the failure was shown. Nics must be current.
bool WriteNetworkAddress(std::size_t adapter, const std::string& text);

}  // namespace corvane
