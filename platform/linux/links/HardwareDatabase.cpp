#include "platform/linux/links/HardwareDatabase.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string_view>
#include <system_error>

#include <libudev.h>

namespace corvane {
namespace {

struct UdevRelease {
    void operator()(udev* context) const { udev_unref(context); }
    void operator()(udev_hwdb* database) const { udev_hwdb_unref(database); }
};

/// First line of a sysfs attribute; empty when it cannot be read.
std::string ReadLine(const std::filesystem::path& path) {
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    return line;
}

std::string Lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return text;
}

/// Vendor and device number of a bus device, four lower-case hex digits each.
struct BusIds {
    std::string bus;
    std::string vendor;
    std::string device;
};

/// `count` hex digits at `position`, in lower case; nullopt when there are others.
std::optional<std::string> HexDigits(const std::string& text, std::size_t position, std::size_t count) {
    if (position + count > text.size()) return std::nullopt;
    const std::string digits = Lower(text.substr(position, count));
    if (digits.find_first_not_of("0123456789abcdef") != std::string::npos) return std::nullopt;
    return digits;
}

/// The ids in "pci:vVVVVVVVVdDDDDDDDDsv..." (eight digits, of which PCI uses four) and "usb:vVVVVpPPPPd..."
/// (see file2alias.c in the kernel's scripts/mod).
std::optional<BusIds> ReadBusIds(const std::string& modalias) {
    std::optional<std::string> vendor;
    std::optional<std::string> device;
    if (modalias.starts_with("pci:v") && modalias.size() > 13 && modalias[13] == 'd') {
        vendor = HexDigits(modalias, 9, 4);
        device = HexDigits(modalias, 18, 4);
        if (vendor && device) return BusIds{"pci", *vendor, *device};
    }
    if (modalias.starts_with("usb:v") && modalias.size() > 9 && modalias[9] == 'p') {
        vendor = HexDigits(modalias, 5, 4);
        device = HexDigits(modalias, 10, 4);
        if (vendor && device) return BusIds{"usb", *vendor, *device};
    }
    return std::nullopt;
}

std::string ComponentId(const std::string& modalias, const std::optional<BusIds>& ids) {
    if (ids && ids->bus == "pci") return "pci\\ven_" + ids->vendor + "&dev_" + ids->device;
    if (ids) return "usb\\vid_" + ids->vendor + "&pid_" + ids->device;
    std::string id = Lower(modalias);
    if (const std::size_t colon = id.find(':'); colon != std::string::npos) id[colon] = '\\';
    return id;
}

std::string Joined(const HardwareEntry& entry) {
    if (entry.vendor.empty()) return entry.model;
    return entry.vendor + " " + (entry.model.empty() ? "Network Adapter" : entry.model);
}

struct KindName {
    std::string_view kind;
    std::string_view words;
};

constexpr std::array<KindName, 26> kKindNames{{
    {"bareudp", "UDP Tunnel"},      {"bond", "Bonded Adapters"},
    {"bridge", "Network Bridge"},   {"dummy", "Dummy Adapter"},
    {"erspan", "ERSPAN Tunnel"},    {"geneve", "GENEVE Tunnel"},
    {"gre", "GRE Tunnel"},          {"gretap", "GRE Ethernet Tunnel"},
    {"hsr", "HSR Redundant Ring"},  {"ifb", "Intermediate Functional Block"},
    {"ip6tnl", "IPv6 Tunnel"},      {"ipip", "IP in IP Tunnel"},
    {"ipvlan", "IP VLAN"},          {"ipvtap", "IP VLAN Tap"},
    {"macsec", "MACsec Link"},      {"macvlan", "MAC VLAN"},
    {"macvtap", "MAC VLAN Tap"},    {"ppp", "Point-to-Point Link"},
    {"sit", "IPv6 in IPv4 Tunnel"}, {"team", "Teamed Adapters"},
    {"tun", "TUN/TAP Adapter"},     {"veth", "Virtual Ethernet"},
    {"vlan", "802.1Q Virtual LAN"}, {"vrf", "Virtual Routing and Forwarding"},
    {"vxlan", "VXLAN Tunnel"},      {"wireguard", "WireGuard Tunnel"},
}};

}  // namespace

HardwareEntry LookUpHardware(const std::string& modalias) {
    const std::unique_ptr<udev, UdevRelease> context(udev_new());
    if (!context) return {};
    const std::unique_ptr<udev_hwdb, UdevRelease> database(udev_hwdb_new(context.get()));
    if (!database) return {};
    HardwareEntry entry;
    // The list belongs to the database.
    for (udev_list_entry* item = udev_hwdb_get_properties_list_entry(database.get(), modalias.c_str(), 0);
         item != nullptr; item = udev_list_entry_get_next(item)) {
        const char* name = udev_list_entry_get_name(item);
        const char* value = udev_list_entry_get_value(item);
        if (name == nullptr || value == nullptr) continue;
        if (std::string_view(name) == "ID_VENDOR_FROM_DATABASE") entry.vendor = value;
        if (std::string_view(name) == "ID_MODEL_FROM_DATABASE") entry.model = value;
    }
    return entry;
}

std::vector<std::string> ReadModaliases(const std::string& sysRoot, const std::string& linkName,
                                        std::uint32_t index) {
    std::error_code failure;
    const std::filesystem::path link = std::filesystem::path(sysRoot) / "class/net" / linkName;
    if (ReadLine(link / "ifindex") != std::to_string(index)) return {};
    const std::filesystem::path top = std::filesystem::canonical(std::filesystem::path(sysRoot), failure);
    if (failure) return {};
    std::filesystem::path device = std::filesystem::canonical(link / "device", failure);
    if (failure) return {};

    std::vector<std::string> modaliases;
    while (device != top && device.has_relative_path()) {
        if (std::string modalias = ReadLine(device / "modalias"); !modalias.empty()) {
            modaliases.push_back(std::move(modalias));
            if (modaliases.back().starts_with("pci:") || modaliases.back().starts_with("usb:")) break;
        }
        device = device.parent_path();
    }
    return modaliases;
}

DeviceName NameHardware(const std::vector<std::string>& modaliases, const std::string& driver,
                        const HardwareLookup& lookUp) {
    DeviceName name;
    std::string vendorOnly;
    for (const std::string& modalias : modaliases) {
        const HardwareEntry entry = lookUp(modalias);
        if (!entry.model.empty()) {
            name.description = Joined(entry);
            break;
        }
        if (vendorOnly.empty() && !entry.vendor.empty()) vendorOnly = Joined(entry);
    }
    if (name.description.empty()) name.description = vendorOnly;

    std::optional<BusIds> ids;
    if (!modaliases.empty()) {
        ids = ReadBusIds(modaliases.back());
        name.componentId = ComponentId(modaliases.back(), ids);
    } else {
        name.componentId = Lower(driver);
    }
    if (name.description.empty()) {
        name.description = driver.empty() ? "Network Adapter" : driver;
        if (ids) name.description += " (" + ids->vendor + ":" + ids->device + ")";
    }
    return name;
}

DeviceName NameKind(const std::string& kind) {
    const auto* const known = std::find_if(kKindNames.begin(), kKindNames.end(),
                                           [&kind](const KindName& entry) { return entry.kind == kind; });
    DeviceName name;
    name.description = known != kKindNames.end() ? std::string(known->words) : kind;
    name.componentId = kind == "bridge" ? "ms_bridgemp" : kind;
    return name;
}

}  // namespace corvane
