#pragma once

#include <string>

#include "platform/linux/kernel/Ethtool.h"
#include "platform/linux/kernel/Netlink.h"

namespace corvane {

/// What a link is, in words and as a hardware id.
struct DeviceName {
    std::string description;  ///< Such as "Intel Corporation 82574L Gigabit Network Connection" or "Virtual
                              ///< Ethernet".
    std::string componentId;  ///< Such as "pci\ven_8086&dev_10d3", "usb\vid_0bda&pid_8153", "veth";
                              ///< "ms_bridgemp" for a bridge.
};

/// Names a link. Virtual kinds have fixed words (veth, bridge, bond, vlan, macvlan, macvtap, tun/tap, ifb,
/// vxlan, ...; another kind is named by its kind). A real device is named from udev's hardware database by
/// its modalias, walking up to the bus parent when the device itself has no entry (virtio); without the
/// database, the driver and the ids. The modalias is read from sysfs only when the entry's ifindex is the
/// link's (sysfs belongs to the namespace of its mount). A loopback is "Loopback Interface" with the id
/// "loopback". Without a modalias the id is the driver's name, empty when that is unknown too.
DeviceName NameDevice(const KernelLink& link, Ethtool& ethtool);

}  // namespace corvane
