#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "tcpip/SettingBits.h"

namespace corvane {

/// Bits of PresetRecord::Flags: what a preset carries, TCP/IP settings and the address. No other bit is ever
/// set.
inline constexpr std::uint8_t kPresetDhcp = kTcpipDhcp;
inline constexpr std::uint8_t kPresetMac = 2;
inline constexpr std::uint8_t kPresetRandomMac = 4;  ///< Only together with kPresetMac.
inline constexpr std::uint8_t kPresetIp = kTcpipAddresses;
inline constexpr std::uint8_t kPresetGateway = kTcpipGateways;
inline constexpr std::uint8_t kPresetDns = kTcpipDns;

/// Metric text of a gateway that gets its metric from the connection; it counts as 0, which means automatic.
inline constexpr char kAutomaticMetric[] = "Automatic";

/// A list of texts that tells "never sized" (no dimension in the file) from "sized to nothing". A list that
/// is not allocated has no items. Made with items it is allocated; `Items` may be used freely once
/// `Allocated` is true.
struct PresetList {
    bool Allocated = false;
    std::vector<std::string> Items;

    PresetList() = default;
    PresetList(std::vector<std::string> texts) : Allocated(true), Items(std::move(texts)) {}
    PresetList(std::initializer_list<std::string> texts) : Allocated(true), Items(texts) {}

    bool operator==(const PresetList&) const = default;
};

/// A named set of connection settings, also the record of what a command line asks for. A list whose bit is
/// clear in `Flags` is not applied, whatever it holds.
struct PresetRecord {
    std::string Name;        ///< As the user typed it; empty for an unused slot.
    std::uint8_t Flags = 0;  ///< kPreset... bits.
    std::string Mac;  ///< Six groups of two digits joined by "-", or digits; empty for the original address.
    PresetList IpAddresses;     ///< Dotted quads.
    PresetList SubnetMasks;     ///< One per IP address, in the same order.
    PresetList Gateways;        ///< Dotted quads.
    PresetList GatewayMetrics;  ///< Decimal numbers, one per gateway, in the same order.
    PresetList DnsServers;      ///< Dotted quads in order of preference.

    bool operator==(const PresetRecord&) const = default;
};

}  // namespace corvane
