#include "tcpip/RegistryWriters.h"

#include <exception>
#include <functional>

#include "base/Text.h"
#include "inventory/NicInfo.h"
#include "platform/Platform.h"
#include "platform/Registry.h"
#include "platform/RegistryValues.h"
#include "platform/Seat.h"
#include "tcpip/InterfaceKey.h"

namespace corvane {

namespace {

using TextList = std::vector<std::string>;

/// Runs a routine on the key of an adapter, if there is such a one: a registry failure ends it in `report`, a
/// fault of its own quietly. What `report` throws is the caller's.
void Guarded(std::size_t adapter, const std::function<void(const InterfaceKey&)>& routine,
             const FailureReport& report) {
    if (adapter >= Nics.size()) return;
    const auto guarded = [&](const InterfaceKey& key) {
        try {
            routine(key);
        } catch (const std::exception&) {
            return;
        }
    };
    RunOnKey(InterfaceKey(adapter), guarded, report);
}

/// A position as the writers are handed it; a negative one is beyond every list.
std::size_t Position(std::int16_t adapter) { return static_cast<std::size_t>(adapter); }

/// Writes the name servers and puts them in force. What keeps them from that is told; it stops nothing.
void WriteServers(const InterfaceKey& key, std::int16_t adapter, const std::string& text) {
    key.WriteText(kNameServerValue, text, kRegSz);
    const std::string& id = Nics.at(Position(adapter)).Id;
    const Refusal refusal = CurrentPlatform().nameServers->PutInForce(id);
    if (refusal) CurrentSeat().Warn(refusal.Words());
}

void ReportReadWrite(const InterfaceKey& key, const RegistryFailure& failure) {
    ShowRegistryError("Error! Cannot Read/Write Registry", "Error while reading/writing in windows registry.",
                      key.Path() + "\\" + failure.valueName, failure.code);
}

/// Two lists of a key that run in step: addresses and masks, or gateways and metrics.
struct ListPair {
    TextList first;
    TextList second;

    void Shrink() {
        first.pop_back();
        second.pop_back();
    }
    /// Copies entry i + 1 over entry i.
    void PullUp(std::size_t i) {
        first[i] = first[i + 1];
        second[i] = second[i + 1];
    }
};

/// The last entry, which the read leaves empty for a new one; a list stored without its terminators gets one
/// added.
void PutIntoFreeSlot(ListPair& lists, const std::string& placeholder, const std::string& first,
                     const std::string& second) {
    if (!lists.first.back().empty() && lists.first.back() != placeholder) {
        lists.first.emplace_back();
        lists.second.emplace_back();
    }
    lists.first.back() = first;
    lists.second.back() = second;
}

ListPair ReadPair(const InterfaceKey& key, const char* firstName, const char* secondName,
                  const std::string& placeholder) {
    ListPair lists{key.ReadList(firstName, placeholder), key.ReadList(secondName, placeholder)};
    lists.second.resize(lists.first.size());
    return lists;
}

/// Rewrites both lists without the entries equal to `entry`. A missing partner counts as empty.
void RemoveFromPair(const InterfaceKey& key, const char* firstName, const char* secondName,
                    const std::string& entry, const std::string& whenEmptied) {
    const TextList first = ListPieces(key.ReadText(firstName));
    TextList second = ListPieces(key.ReadText(secondName));
    second.resize(first.size());
    std::string firstText;
    std::string secondText;
    for (std::size_t i = 0; i < first.size(); ++i) {
        if (first[i] == entry) continue;
        firstText += first[i] + '\0';
        secondText += second[i] + '\0';
    }
    if (firstText == kEmptyListText) firstText = whenEmptied;
    if (secondText == kEmptyListText) secondText = whenEmptied;
    key.WriteText(firstName, firstText, kRegMultiSz);
    key.WriteText(secondName, secondText, kRegMultiSz);
}

}  // namespace

void WriteTcpipSettings(std::int16_t adapter, std::uint8_t flags, const TextList& addresses,
                        const TextList& masks, const TextList& gateways, const TextList& metrics,
                        const TextList& dnsServers) {
    const auto write = [&](const InterfaceKey& key) {
        if ((flags & kTcpipDhcp) != 0) {
            key.SwitchDhcpAndReset(true);
        } else {
            key.WriteDword(kEnableDhcpValue, 0);
            if ((flags & kTcpipAddresses) != 0) {
                key.WriteList(kIpAddressValue, addresses);
                key.WriteList(kSubnetMaskValue, masks);
            }
            if ((flags & kTcpipGateways) != 0) {
                key.WriteList(kDefaultGatewayValue, gateways);
                key.WriteList(kDefaultGatewayMetricValue, metrics);
            }
        }
        if ((flags & kTcpipDns) != 0) {
            WriteServers(key, adapter, Join(dnsServers, ",") + '\0');
        } else if ((flags & kTcpipDhcp) != 0) {
            WriteServers(key, adapter, std::string(1, '\0'));
        }
    };
    Guarded(Position(adapter), write, ReportWrite);
}

void AddRegistryIPAddress(std::int16_t adapter, const std::string& address, const std::string& mask) {
    const auto add = [&](const InterfaceKey& key) {
        ListPair lists = ReadPair(key, kIpAddressValue, kSubnetMaskValue, kNoAddress);
        bool found = false;
        for (std::size_t i = 0; i < lists.first.size(); ++i) {
            if (lists.first[i] == address) {
                found = true;
                lists.second[i] = mask;
            } else if (lists.first[i] == kNoAddress) {
                found = true;
                lists.first[i] = address;
                lists.second[i] = mask;
                lists.first.resize(1);
                lists.second.resize(1);
                break;
            }
        }
        if (!found) PutIntoFreeSlot(lists, kNoAddress, address, mask);
        for (std::size_t i = 0; i < lists.first.size(); ++i) {
            if (!lists.first[i].empty()) continue;
            if (i + 1 == lists.first.size()) {
                lists.Shrink();
                break;
            }
            lists.PullUp(i);
        }
        key.WriteList(kIpAddressValue, lists.first);
        key.WriteList(kSubnetMaskValue, lists.second);
    };
    Guarded(Position(adapter), add, ReportReadWrite);
}

void RemoveRegistryIPAddress(std::int16_t adapter, const std::string& address) {
    const auto remove = [&](const InterfaceKey& key) {
        RemoveFromPair(key, kIpAddressValue, kSubnetMaskValue, address, ListText({kNoAddress}));
    };
    Guarded(Position(adapter), remove, ReportReadWrite);
}

void AddRegistryGateway(std::int16_t adapter, const std::string& gateway, const std::string& metric) {
    const auto add = [&](const InterfaceKey& key) {
        static const std::string kBlank = " ";
        ListPair lists = ReadPair(key, kDefaultGatewayValue, kDefaultGatewayMetricValue, kBlank);
        bool found = false;
        for (std::size_t i = 0; i < lists.first.size(); ++i) {
            if (lists.first[i] != gateway) continue;
            found = true;
            lists.second[i] = metric;
        }
        if (!found) PutIntoFreeSlot(lists, kBlank, gateway, metric);
        for (std::size_t i = 0; i < lists.first.size(); ++i) {
            if (!lists.first[i].empty()) continue;
            const bool last = i + 1 == lists.first.size();
            if (!last) lists.PullUp(i);
            lists.Shrink();
            if (last || i + 1 == lists.first.size()) break;
        }
        key.WriteList(kDefaultGatewayValue, lists.first);
        key.WriteList(kDefaultGatewayMetricValue, lists.second);
    };
    Guarded(Position(adapter), add, ReportReadWrite);
}

void RemoveRegistryGateway(std::int16_t adapter, const std::string& gateway) {
    const auto remove = [&](const InterfaceKey& key) {
        RemoveFromPair(key, kDefaultGatewayValue, kDefaultGatewayMetricValue, gateway, kEmptyListText);
    };
    Guarded(Position(adapter), remove, ReportReadWrite);
}

int WriteDNSServers(std::int16_t adapter, const TextList& servers) {
    const auto write = [&](const InterfaceKey& key) { WriteServers(key, adapter, Join(servers, ",")); };
    Guarded(Position(adapter), write, [](const InterfaceKey& key, const RegistryFailure& failure) {
        CurrentSeat().ShowBox("Error! Cannot Write Into Registry",
                              std::string("Error while writing into windows registry.") + kCrLf + kCrLf +
                                  "Key: HKEY_LOCAL_MACHINE\\" + key.Path() + kCrLf +
                                  "Value: " + failure.valueName + kCrLf + kCrLf +
                                  "Error: " + RegErrorText(failure.code) + kCrLf + "Click OK to continue",
                              BoxIcon::kCritical, BoxButtons::kOk);
    });
    return 0;
}

}  // namespace corvane
