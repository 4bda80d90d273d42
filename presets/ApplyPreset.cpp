#include "presets/ApplyPreset.h"

#include <string>

#include "base/Text.h"
#include "inventory/NicInfo.h"
#include "mac/WriteNetworkAddress.h"
#include "platform/Platform.h"
#include "tcpip/RegistryWriters.h"
#include "vendors/RandomMac.h"
#include "vendors/VendorList.h"

namespace corvane {

namespace {

void ApplyMac(std::size_t adapter, const PresetRecord& preset) {
    if ((preset.Flags & kPresetRandomMac) != 0) {
        UniformRandom random(CurrentPlatform().clock->Seed());
        WriteNetworkAddress(adapter, RandomPresetMac(random, Vendors()));
        return;
    }
    const NicInfo& nic = Nics.at(adapter);
    if (preset.Mac == nic.NetworkAddress) return;
    const bool original = preset.Mac == nic.OriginalNetworkAddress;
    WriteNetworkAddress(adapter, original ? std::string() : Without(preset.Mac, '-'));
}

}  // namespace

void ApplyPreset(std::size_t adapter, const PresetRecord& preset) {
    if ((preset.Flags & kPresetMac) != 0) ApplyMac(adapter, preset);
    WriteTcpipSettings(WriterIndex(adapter), preset.Flags, preset.IpAddresses.Items, preset.SubnetMasks.Items,
                       preset.Gateways.Items, preset.GatewayMetrics.Items, preset.DnsServers.Items);
}

}  // namespace corvane
