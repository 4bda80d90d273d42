#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/linux/links/DeviceNames.h"

/// The parts that naming a link is made of; none of them needs the link.
namespace corvane {

/// What udev's hardware database says of a device (ID_VENDOR_FROM_DATABASE, ID_MODEL_FROM_DATABASE); empty =
/// no entry.
struct HardwareEntry {
    std::string vendor;
    std::string model;

    bool operator==(const HardwareEntry&) const = default;
};

/// A look-up by modalias.
using HardwareLookup = std::function<HardwareEntry(const std::string& modalias)>;

/// Looks a modalias up in the machine's hwdb.bin (package udev). An empty entry when there is no database.
HardwareEntry LookUpHardware(const std::string& modalias);

/// The modaliases of a link's device and of those above it, nearest first, up to and including the first one
/// on the PCI or USB bus: a device above that is a bridge or a host controller. `sysRoot` is "/sys". Empty
/// when the entry for this name has another ifindex or no device.
std::vector<std::string> ReadModaliases(const std::string& sysRoot, const std::string& linkName,
                                        std::uint32_t index);

/// Words and id of a device with these modaliases and this driver (empty when unknown). The words come from
/// the first entry with a model, else from the first with a vendor, else they are the driver and the ids. The
/// id comes from the last modalias, the bus device's.
DeviceName NameHardware(const std::vector<std::string>& modaliases, const std::string& driver,
                        const HardwareLookup& lookUp);

/// Words and id of a virtual link of this kind (IFLA_INFO_KIND), which is not empty.
DeviceName NameKind(const std::string& kind);

}  // namespace corvane
