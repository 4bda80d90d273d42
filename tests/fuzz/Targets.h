#pragma once

#include <string_view>

/// What reads bytes that come from outside. Each of these functions gives any bytes to the product's code,
/// sees whether what comes out obeys the rules of its contract, and throws BrokenRule when it does not. True
/// when the bytes were understood, false when they were refused as the contract says.
namespace corvane::fuzz {

bool CheckVendorFile(std::string_view bytes);
bool CheckPresetsFile(std::string_view bytes);
bool CheckRegFile(std::string_view bytes);
bool CheckCommandLine(std::string_view bytes);
/// One datagram from the kernel.
bool CheckNetlinkAnswer(std::string_view bytes);
/// What a DHCP client's hook reports to the supervisor.
bool CheckDhcpHook(std::string_view bytes);
/// What a controller sends to the supervisor: one message over a connection of its own.
bool CheckDhcpRequest(std::string_view bytes);

}  // namespace corvane::fuzz
