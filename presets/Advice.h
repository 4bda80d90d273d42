#pragma once

#include <string>
#include <vector>

#include "inventory/NicInfo.h"
#include "presets/PresetRecord.h"

namespace corvane {

/// What the user should know before settings are written: texts that are stored as typed although the system
/// will refuse them at the restart, and DHCP that the record turns off. One sentence each; empty when all is
/// well.
///
/// `dhcpReason` ends the sentence about DHCP: why it is turned off, and the remedy.
std::vector<std::string> Advice(const NicInfo& nic, const PresetRecord& record,
                                const std::string& dhcpReason);

/// Adds a sentence when a text that is stored as an address of this kind ("DNS server" and the like), or as a
/// subnet mask, cannot take effect.
void AdviseAddress(const char* what, const std::string& text, std::vector<std::string>& advice);
/// Same for a DNS server, which may be on the machine itself (127.0.0.0/8).
void AdviseServer(const std::string& text, std::vector<std::string>& advice);
void AdviseMask(const std::string& text, std::vector<std::string>& advice);

}  // namespace corvane
