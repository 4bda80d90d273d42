#include "tcpip/RegistryWriters.h"

#include <functional>

#include "inventory/NicInfo.h"
#include "platform/Registry.h"
#include "platform/RegistryErrorBox.h"
#include "platform/Seat.h"
#include "platform/Text.h"

namespace corvane {

namespace {

using TextList = std::vector<std::string>;

const std::string kNul(1, '\0');
const std::string kPlaceholder = "0.0.0.0";

/// A failed read or write, on its way to the routine's box.
struct RegistryFailure {
    std::string valueName;
    Win32Error code;
};

void Check(Win32Error code, const std::string& valueName) {
    if (!Ok(code)) throw RegistryFailure{valueName, code};
}

std::string MultiString(const TextList& entries) { return Join(entries, kNul) + kNul + kNul; }

/// One adapter's TCP/IP key.
class InterfaceKey {
 public:
    explicit InterfaceKey(std::int16_t adapter)
        : path_(TcpipKey(Nics.at(static_cast<std::size_t>(adapter)).Id)) {}

    [[nodiscard]] const std::string& Path() const { return path_; }

    void WriteDword(const std::string& name, std::uint32_t value) const {
        Check(RegSetBinary(kHkeyLocalMachine, path_, name, DwordBytes(value), kRegDword), name);
    }
    void WriteText(const std::string& name, const std::string& text, std::uint32_t type) const {
        Check(RegSetString(kHkeyLocalMachine, path_, name, text, type), name);
    }
    void WriteList(const std::string& name, const TextList& entries) const {
        WriteText(name, MultiString(entries), kRegMultiSz);
    }
    [[nodiscard]] std::string ReadText(const std::string& name) const {
        std::string text;
        Check(RegQueryString(kHkeyLocalMachine, path_, name, text), name);
        return text;
    }
    /// The entries of a list, as a rule followed by one empty entry; `placeholder` alone for an empty list.
    [[nodiscard]] TextList ReadList(const std::string& name, const std::string& placeholder) const {
        const std::string text = ReadText(name);
        return Split(text.empty() || text == kNul ? placeholder : text, '\0');
    }

 private:
    std::string path_;
};

void ShowFailure(const std::string& title, const std::string& firstLine, const InterfaceKey& key,
                 const RegistryFailure& failure) {
    ShowRegistryError(title, firstLine, key.Path() + "\\" + failure.valueName, failure.code);
}

/// Runs a routine on the adapter's key: a registry failure ends in `report`, any other fault ends it quietly.
void Guarded(std::int16_t adapter, const std::function<void(const InterfaceKey&)>& routine,
             const std::function<void(const InterfaceKey&, const RegistryFailure&)>& report) noexcept {
    try {
        const InterfaceKey key(adapter);
        try {
            routine(key);
        } catch (const RegistryFailure& failure) {
            report(key, failure);
        }
    } catch (...) {
        return;
    }
}

void ReportReadWrite(const InterfaceKey& key, const RegistryFailure& failure) {
    ShowFailure("Error! Cannot Read/Write Registry", "Error while reading/writing in windows registry.", key,
                failure);
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
    const TextList first = Split(key.ReadText(firstName), '\0');
    TextList second = Split(key.ReadText(secondName), '\0');
    second.resize(first.size());
    std::string firstText;
    std::string secondText;
    for (std::size_t i = 0; i < first.size(); ++i) {
        if (first[i] == entry) continue;
        firstText += first[i] + kNul;
        secondText += second[i] + kNul;
    }
    if (firstText == kNul) firstText = whenEmptied;
    if (secondText == kNul) secondText = whenEmptied;
    key.WriteText(firstName, firstText, kRegMultiSz);
    key.WriteText(secondName, secondText, kRegMultiSz);
}

void ResetToDhcp(const InterfaceKey& key) {
    key.WriteDword("EnableDHCP", 1);
    key.WriteList("IPAddress", {kPlaceholder});
    key.WriteList("SubnetMask", {kPlaceholder});
    key.WriteText("DefaultGateway", kNul, kRegMultiSz);
    key.WriteText("DefaultGatewayMetric", kNul, kRegMultiSz);
}

}  // namespace

void WriteTcpipSettings(std::int16_t adapter, std::uint8_t flags, const TextList& addresses,
                        const TextList& masks, const TextList& gateways, const TextList& metrics,
                        const TextList& dnsServers) {
    const auto write = [&](const InterfaceKey& key) {
        if ((flags & kTcpipDhcp) != 0) {
            ResetToDhcp(key);
        } else {
            key.WriteDword("EnableDHCP", 0);
            if ((flags & kTcpipAddresses) != 0) {
                key.WriteList("IPAddress", addresses);
                key.WriteList("SubnetMask", masks);
            }
            if ((flags & kTcpipGateways) != 0) {
                key.WriteList("DefaultGateway", gateways);
                key.WriteList("DefaultGatewayMetric", metrics);
            }
        }
        if ((flags & kTcpipDns) != 0) {
            key.WriteText("NameServer", Join(dnsServers, ",") + kNul, kRegSz);
        } else if ((flags & kTcpipDhcp) != 0) {
            key.WriteText("NameServer", kNul, kRegSz);
        }
    };
    Guarded(adapter, write, [](const InterfaceKey& key, const RegistryFailure& failure) {
        ShowFailure("Error! Cannot Write Registry", "Error while writing in windows registry.", key, failure);
    });
}

void AddRegistryIPAddress(std::int16_t adapter, const std::string& address, const std::string& mask) {
    const auto add = [&](const InterfaceKey& key) {
        ListPair lists = ReadPair(key, "IPAddress", "SubnetMask", kPlaceholder);
        bool found = false;
        for (std::size_t i = 0; i < lists.first.size(); ++i) {
            if (lists.first[i] == address) {
                found = true;
                lists.second[i] = mask;
            } else if (lists.first[i] == kPlaceholder) {
                found = true;
                lists.first[i] = address;
                lists.second[i] = mask;
                lists.first.resize(1);
                lists.second.resize(1);
                break;
            }
        }
        if (!found) PutIntoFreeSlot(lists, kPlaceholder, address, mask);
        for (std::size_t i = 0; i < lists.first.size(); ++i) {
            if (!lists.first[i].empty()) continue;
            if (i + 1 == lists.first.size()) {
                lists.Shrink();
                break;
            }
            lists.PullUp(i);
        }
        key.WriteList("IPAddress", lists.first);
        key.WriteList("SubnetMask", lists.second);
    };
    Guarded(adapter, add, ReportReadWrite);
}

void RemoveRegistryIPAddress(std::int16_t adapter, const std::string& address) {
    const auto remove = [&](const InterfaceKey& key) {
        RemoveFromPair(key, "IPAddress", "SubnetMask", address, MultiString({kPlaceholder}));
    };
    Guarded(adapter, remove, ReportReadWrite);
}

void AddRegistryGateway(std::int16_t adapter, const std::string& gateway, const std::string& metric) {
    const auto add = [&](const InterfaceKey& key) {
        static const std::string kBlank = " ";
        ListPair lists = ReadPair(key, "DefaultGateway", "DefaultGatewayMetric", kBlank);
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
        key.WriteList("DefaultGateway", lists.first);
        key.WriteList("DefaultGatewayMetric", lists.second);
    };
    Guarded(adapter, add, ReportReadWrite);
}

void RemoveRegistryGateway(std::int16_t adapter, const std::string& gateway) {
    const auto remove = [&](const InterfaceKey& key) {
        RemoveFromPair(key, "DefaultGateway", "DefaultGatewayMetric", gateway, kNul);
    };
    Guarded(adapter, remove, ReportReadWrite);
}

int WriteDNSServers(std::int16_t adapter, const TextList& servers) {
    const auto write = [&](const InterfaceKey& key) {
        key.WriteText("NameServer", Join(servers, ","), kRegSz);
    };
    Guarded(adapter, write, [](const InterfaceKey& key, const RegistryFailure& failure) {
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
