#include "base/Address.h"

#include <bit>
#include <charconv>
#include <vector>

#include "base/Text.h"

namespace corvane {

std::optional<MacBytes> ParseMacDigits(std::string_view text) {
    if (text.size() != 12) return std::nullopt;
    MacBytes mac{};
    for (std::size_t i = 0; i < mac.size(); ++i) {
        const char* const first = text.data() + 2 * i;
        const auto [end, error] = std::from_chars(first, first + 2, mac[i], 16);
        if (error != std::errc() || end != first + 2) return std::nullopt;
    }
    return mac;
}

std::string MacText(const MacBytes& mac) {
    std::string text;
    for (const std::uint8_t octet : mac) text += (text.empty() ? "" : "-") + ByteToHex2(octet);
    return text;
}

std::string MacDigits(const MacBytes& mac) { return Without(MacText(mac), '-'); }

Refusal MacRefusal(const MacBytes& mac) {
    if (mac == MacBytes{}) return Refusal("it is all zeros");
    if ((mac[0] & 1U) != 0) return Refusal("it is a multicast address (the first octet is odd)");
    return {};
}

std::optional<Ipv4Bytes> ParseIpv4(std::string_view text) {
    const std::vector<std::string> parts = Split(text, '.');
    if (parts.size() != 4) return std::nullopt;
    Ipv4Bytes address{};
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const char* const last = parts[i].data() + parts[i].size();
        const auto [end, error] = std::from_chars(parts[i].data(), last, address[i]);
        if (error != std::errc() || end != last) return std::nullopt;
    }
    return address;
}

std::uint32_t HostOrder(const Ipv4Bytes& address) {
    return static_cast<std::uint32_t>(address[0]) << 24 | static_cast<std::uint32_t>(address[1]) << 16 |
           static_cast<std::uint32_t>(address[2]) << 8 | static_cast<std::uint32_t>(address[3]);
}

Ipv4Bytes FromHostOrder(std::uint32_t value) {
    return {static_cast<std::uint8_t>(value >> 24), static_cast<std::uint8_t>(value >> 16 & 0xFFU),
            static_cast<std::uint8_t>(value >> 8 & 0xFFU), static_cast<std::uint8_t>(value & 0xFFU)};
}

std::optional<std::uint8_t> PrefixFromMask(const Ipv4Bytes& mask) {
    const std::uint32_t bits = HostOrder(mask);
    const int ones = std::countl_one(bits);
    if (std::popcount(bits) != ones) return std::nullopt;
    return static_cast<std::uint8_t>(ones);
}

Ipv4Bytes MaskFromPrefix(std::uint8_t prefix) {
    return FromHostOrder(prefix == 0 ? 0U : 0xFFFFFFFFU << (32U - (prefix > 32 ? 32U : prefix)));
}

Refusal HostAddressRefusal(const Ipv4Bytes& address) {
    if (address[0] == 0) return Refusal("addresses that begin with 0 mean 'this network'");
    if (address[0] == 127) return Refusal("addresses that begin with 127 are the host's loopback");
    if (address[0] >= 240) return Refusal("addresses from 240.0.0.0 up are reserved or broadcast");
    if (address[0] >= 224) return Refusal("addresses from 224.0.0.0 to 239.255.255.255 are multicast groups");
    return {};
}

}  // namespace corvane
