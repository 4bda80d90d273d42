#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/Refusal.h"

/// Address texts and what a host's network stack refuses. Portable: the back-ends refuse by these rules
/// before they ask the system, and the command line warns by them.
namespace corvane {

/// The six octets of a hardware address, in the order in which they are sent.
using MacBytes = std::array<std::uint8_t, 6>;
/// The four bytes of an IPv4 address in network order, as they lie in memory.
using Ipv4Bytes = std::array<std::uint8_t, 4>;

/// Twelve hexadecimal digits, in either case, to six bytes; nothing for any other text.
std::optional<MacBytes> ParseMacDigits(std::string_view text);

/// Six upper-case pairs joined by "-".
std::string MacText(const MacBytes& mac);

/// The twelve upper-case digits.
std::string MacDigits(const MacBytes& mac);

/// Refused when no adapter may have this address. A group address (bit 0 of the first
/// octet, IEEE 802) and all zeros are refused, as the kernel does (is_valid_ether_addr, linux/etherdevice.h).
Refusal MacRefusal(const MacBytes& mac);

/// Exactly four decimal numbers 0 to 255 joined by ".", without blanks.
std::optional<Ipv4Bytes> ParseIpv4(std::string_view text);

std::uint32_t HostOrder(const Ipv4Bytes& address);
Ipv4Bytes FromHostOrder(std::uint32_t value);

/// Number of leading one bits of a contiguous mask; nothing for a mask with holes.
std::optional<std::uint8_t> PrefixFromMask(const Ipv4Bytes& mask);
Ipv4Bytes MaskFromPrefix(std::uint8_t prefix);

/// Refused when no host may have this address: 0.0.0.0/8 and 127.0.0.0/8 (RFC
/// 1122, 3.2.1.3), 224.0.0.0/4 (RFC 5771), 240.0.0.0/4 with the limited broadcast (RFC 1112, RFC 919).
Refusal HostAddressRefusal(const Ipv4Bytes& address);

}  // namespace corvane
