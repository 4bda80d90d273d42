#pragma once

#include <string>
#include <vector>

#include "inventory/NicInfo.h"
#include "presets/PresetRecord.h"

namespace corvane {

/// What the user should know before settings are written: texts that are stored as typed although the system
/// will refuse them at the restart, and DHCP that the record turns off. One sentence each; empty when all is
/// well.
std::vector<std::string> Advice(const NicInfo& nic, const PresetRecord& record);

}  // namespace corvane
