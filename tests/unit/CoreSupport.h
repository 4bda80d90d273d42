#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "inventory/NicInfo.h"
#include "presets/PresetRecord.h"
#include "tests/fakes/Fakes.h"

/// What the tests of the portable core share: values, boxes and data files as literals.
namespace corvane {

// Readable failures.
inline void PrintTo(const RegistryValue& value, std::ostream* out) {
    *out << "type " << value.type << ' '
         << testing::PrintToString(std::string(value.data.begin(), value.data.end()));
}
inline void PrintTo(const FakeSeat::Box& box, std::ostream* out) {
    *out << "icon " << static_cast<int>(box.icon) << " buttons " << static_cast<int>(box.buttons)
         << (box.unsilenced ? " unsilenced" : "") << "\n[" << box.title << "]\n[" << box.text << "]";
}

namespace test {

inline const std::string kNul(1, '\0');

inline RegistryValue ValueOf(std::uint32_t type, const std::string& bytes) {
    return {type, {bytes.begin(), bytes.end()}};
}
inline RegistryValue Sz(const std::string& bytes) { return ValueOf(kRegSz, bytes); }
inline RegistryValue MultiSz(const std::string& bytes) { return ValueOf(kRegMultiSz, bytes); }
inline RegistryValue Dword(char lowByte) {
    return ValueOf(kRegDword, std::string(1, lowByte) + kNul + kNul + kNul);
}

/// One write as the caller asked for it: name and exact value.
using NamedValue = std::pair<std::string, RegistryValue>;

/// The writes that were asked for under `key`, in order.
inline std::vector<NamedValue> WritesTo(const FakeRegistry& registry, const std::string& key) {
    std::vector<NamedValue> values;
    for (const FakeRegistry::Write& write : registry.writes) {
        if (write.subkey == key) values.emplace_back(write.name, write.value);
    }
    return values;
}

inline FakeSeat::Box OkBox(BoxIcon icon, const std::string& title, const std::string& text) {
    return {title, text, icon, BoxButtons::kOk, false};
}
inline FakeSeat::Box Information(const std::string& title, const std::string& text) {
    return OkBox(BoxIcon::kInformation, title, text);
}
inline FakeSeat::Box Critical(const std::string& title, const std::string& text) {
    return OkBox(BoxIcon::kCritical, title, text);
}

/// Two's complement little-endian bytes of a number.
inline std::string Little(std::uint32_t number, int size) {
    std::string bytes;
    for (int i = 0; i < size; ++i, number >>= 8) bytes += static_cast<char>(number & 0xFFU);
    return bytes;
}
inline std::string Sized(const std::string& text) {
    return Little(static_cast<std::uint32_t>(text.size()), 2) + text;
}

struct VendorLine {
    std::string prefix;
    std::string name;
    std::string address;
};

/// The bytes of a vendor file.
inline std::string VendorBytes(const std::vector<VendorLine>& lines) {
    std::string bytes = Little(static_cast<std::uint32_t>(lines.size()), 4);
    for (const VendorLine& line : lines) bytes += line.prefix + Sized(line.name) + Sized(line.address);
    return bytes;
}

/// The bytes of a presets file.
inline std::string PresetBytes(const std::vector<PresetRecord>& presets) {
    std::string bytes = Little(static_cast<std::uint32_t>(presets.size()), 4);
    for (const PresetRecord& preset : presets) {
        bytes += Sized(preset.Name) + static_cast<char>(preset.Flags) + Sized(preset.Mac);
        for (const PresetList* list : {&preset.IpAddresses, &preset.SubnetMasks, &preset.Gateways,
                                       &preset.GatewayMetrics, &preset.DnsServers}) {
            bytes += Little(list->Allocated ? 1 : 0, 2);
            if (!list->Allocated) continue;
            bytes += Little(static_cast<std::uint32_t>(list->Items.size()), 4) + Little(0, 4);
            for (const std::string& item : list->Items) bytes += Sized(item);
        }
    }
    return bytes;
}

inline constexpr char kFirstId[] = "{11111111-1111-1111-1111-111111111111}";
inline constexpr char kSecondId[] = "{22222222-2222-2222-2222-222222222222}";

/// An adapter's record with what the writers need of it.
inline NicInfo NicRecord(const std::string& id, const std::string& name, const std::string& driverKey) {
    NicInfo nic;
    nic.Id = id;
    nic.Name = name;
    nic.DriverKey = driverKey;
    return nic;
}

}  // namespace test
}  // namespace corvane
