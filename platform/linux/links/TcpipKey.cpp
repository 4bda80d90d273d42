#include "platform/linux/links/TcpipKey.h"

#include <algorithm>

#include "base/Address.h"
#include "base/Text.h"
#include "platform/RegistryKeys.h"
#include "platform/RegistryValues.h"

namespace corvane {

namespace {

std::vector<std::uint8_t> BytesOf(const RegistryRead& read) {
    return Ok(read.code) ? read.value.data : std::vector<std::uint8_t>();
}

std::vector<std::uint8_t> ReadBytes(RegistryStore& store, const std::string& key, const std::string& name) {
    return BytesOf(store.ReadValue(kHkeyLocalMachine, key, name));
}

std::vector<std::string> ReadList(RegistryStore& store, const std::string& key, const std::string& name) {
    return ListFrom(ReadBytes(store, key, name));
}

std::uint32_t MetricOf(const std::string& text, std::uint32_t interfaceMetric) {
    const double value = NumericValue(text);
    return value >= 1 && value <= 4294967295.0 ? static_cast<std::uint32_t>(value) : interfaceMetric;
}

void TakeAddress(const std::string& text, const std::string& maskText, std::uint32_t index,
                 StaticSetup& setup) {
    const std::optional<Ipv4Bytes> address = ParseIpv4(text);
    const std::optional<Ipv4Bytes> mask = ParseIpv4(maskText);
    const std::uint8_t prefix = mask ? PrefixFromMask(*mask).value_or(0) : 0;
    Refusal refusal = address ? HostAddressRefusal(*address) : Refusal("it is no IPv4 address");
    if (!refusal && prefix == 0) refusal = Refusal("its mask '" + maskText + "' is no subnet mask");
    if (refusal) {
        setup.refused.push_back("IP address '" + text + "' was not set: " + refusal.Words());
        return;
    }
    KernelAddress wanted;
    wanted.index = index;
    wanted.address = *address;
    wanted.prefix = prefix;
    const bool repeated =
        std::any_of(setup.addresses.begin(), setup.addresses.end(),
                    [&](const KernelAddress& other) { return other.address == wanted.address; });
    if (!repeated) setup.addresses.push_back(wanted);
}

std::string NoteOf(const KernelAddress& address) {
    return DottedQuad(address.address.data()) + "/" + std::to_string(address.prefix);
}

}  // namespace

bool UsesDhcp(RegistryStore& store, const std::string& linkId) {
    return FlagFrom(ReadBytes(store, TcpipKey(linkId), kEnableDhcpValue));
}

StaticSetup ReadStaticSetup(RegistryStore& store, const std::string& linkId, std::uint32_t linkIndex) {
    static constexpr std::uint8_t kStatic = 4;
    const std::string key = TcpipKey(linkId);
    StaticSetup setup;
    const std::vector<std::string> addresses = ReadList(store, key, kIpAddressValue);
    const std::vector<std::string> masks = ReadList(store, key, kSubnetMaskValue);
    for (std::size_t i = 0; i < addresses.size(); ++i) {
        if (addresses[i].empty() || addresses[i] == "0.0.0.0") continue;
        const bool hasMask = i < masks.size() && !masks[i].empty();
        TakeAddress(addresses[i], hasMask ? masks[i] : "255.0.0.0", linkIndex, setup);
    }
    const std::uint32_t interfaceMetric = DwordFrom(ReadBytes(store, key, kInterfaceMetricValue));
    const std::vector<std::string> gateways = ReadList(store, key, kDefaultGatewayValue);
    std::vector<std::string> metrics = ReadList(store, key, kDefaultGatewayMetricValue);
    metrics.resize(gateways.size());
    for (std::size_t i = 0; i < gateways.size(); ++i) {
        if (Trim(gateways[i]).empty()) continue;
        const std::optional<Ipv4Bytes> gateway = ParseIpv4(gateways[i]);
        if (const Refusal refusal =
                gateway ? HostAddressRefusal(*gateway) : Refusal("it is no IPv4 address")) {
            setup.refused.push_back("gateway '" + gateways[i] + "' was not set: " + refusal.Words());
            continue;
        }
        KernelRoute route;
        route.gateway = gateway;
        route.index = linkIndex;
        route.metric = MetricOf(metrics[i], interfaceMetric);
        route.protocol = kStatic;
        setup.defaultRoutes.push_back(route);
    }
    return setup;
}

std::vector<std::string> ReadRunTimeAddresses(RegistryStore& store, const std::string& linkId) {
    return ReadList(store, TcpipKey(linkId), kRunTimeAddresses);
}

std::vector<std::string> ReadRunTimeAddresses(RegistryStore::Editor& editor, const std::string& linkId) {
    return ListFrom(BytesOf(editor.ReadValue(TcpipKey(linkId), kRunTimeAddresses)));
}

bool IsRunTimeAddress(const std::vector<std::string>& notes, const KernelAddress& address) {
    return std::find(notes.begin(), notes.end(), NoteOf(address)) != notes.end();
}

Win32Error NoteRunTimeAddress(RegistryStore::Editor& editor, const std::string& linkId,
                              const KernelAddress& address) {
    std::vector<std::string> notes = ReadRunTimeAddresses(editor, linkId);
    if (IsRunTimeAddress(notes, address)) return Win32Error::kSuccess;
    notes.push_back(NoteOf(address));
    return editor.SetFromKernel(TcpipKey(linkId), kRunTimeAddresses, ListValue(notes));
}

Win32Error ForgetRunTimeAddress(RegistryStore::Editor& editor, const std::string& linkId,
                                const KernelAddress& address) {
    std::vector<std::string> notes = ReadRunTimeAddresses(editor, linkId);
    std::erase(notes, NoteOf(address));
    const std::string key = TcpipKey(linkId);
    return notes.empty() ? editor.DeleteValue(key, kRunTimeAddresses)
                         : editor.SetFromKernel(key, kRunTimeAddresses, ListValue(notes));
}

std::optional<std::string> ReadOverride(RegistryStore& store, const std::string& driverKey) {
    const RegistryRead read =
        store.ReadValue(kHkeyLocalMachine, DriverKeyPath(driverKey), kNetworkAddressValue);
    if (!Ok(read.code)) return std::nullopt;
    return TextWithoutNuls(read.value.data);
}

}  // namespace corvane
