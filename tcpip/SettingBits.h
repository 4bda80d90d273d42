#pragma once

#include <cstdint>

namespace corvane {

/// Bits that say which TCP/IP settings a flags byte speaks of: WriteTcpipSettings reads them, and presets
/// carry them among their own (presets/PresetRecord.h).
inline constexpr std::uint8_t kTcpipDhcp = 1;
inline constexpr std::uint8_t kTcpipAddresses = 8;
inline constexpr std::uint8_t kTcpipGateways = 16;
inline constexpr std::uint8_t kTcpipDns = 32;

}  // namespace corvane
