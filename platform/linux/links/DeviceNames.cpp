#include "platform/linux/links/DeviceNames.h"

#include <linux/if_arp.h>

#include "platform/linux/links/HardwareDatabase.h"

namespace corvane {

DeviceName NameDevice(const KernelLink& link, Ethtool& ethtool) {
    if (!link.kind.empty()) return NameKind(link.kind);
    if (link.arpType == ARPHRD_LOOPBACK) return {"Loopback Interface", "loopback"};
    return NameHardware(ReadModaliases("/sys", link.name, link.index), ethtool.Driver(link.name).driver,
                        LookUpHardware);
}

}  // namespace corvane
