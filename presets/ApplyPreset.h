#pragma once

#include <cstddef>

#include "presets/PresetRecord.h"

namespace corvane {

/// Writes a preset's settings for Nics[adapter]: the MAC address (given, original or random) and the TCP/IP
/// settings that its flags name. Takes effect when the connection restarts. A random address needs the vendor
/// list loaded. Failures of single writes are shown by the writers; the other settings are still written.
void ApplyPreset(std::size_t adapter, const PresetRecord& preset);

}  // namespace corvane
