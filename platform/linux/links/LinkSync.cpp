#include "platform/linux/links/LinkSync.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <optional>
#include <set>
#include <unordered_map>

#include <sys/socket.h>
#include <unistd.h>
#include <uuid/uuid.h>

#include "base/Address.h"
#include "base/Text.h"
#include "platform/Files.h"
#include "platform/RegistryKeys.h"
#include "platform/RegistryValues.h"
#include "platform/linux/links/OriginalNote.h"
#include "platform/linux/links/TcpipKey.h"

namespace corvane {

namespace {

constexpr std::uint16_t kArpHrdEther = 1;  // linux/if_arp.h
constexpr std::ptrdiff_t kNoRow = -1;

template <class Record>
using ByIndex = std::unordered_map<std::uint32_t, std::vector<const Record*>>;

template <class Record>
ByIndex<Record> GroupByIndex(const std::vector<Record>& records) {
    ByIndex<Record> groups;
    for (const Record& record : records) groups[record.index].push_back(&record);
    return groups;
}

template <class Record>
const std::vector<const Record*>& Group(const ByIndex<Record>& groups, std::uint32_t index) {
    static const std::vector<const Record*> kNone;
    const auto found = groups.find(index);
    return found == groups.end() ? kNone : found->second;
}

std::string Incarnation(const KernelPicture& picture, const KernelLink& link) {
    return picture.incarnationBase + ":" + std::to_string(link.index);
}

std::string PermanentDigits(const KernelLink& link) {
    return link.permanent ? MacDigits(*link.permanent) : std::string();
}

/// A name-based GUID (RFC 4122, version 5), so that a link has the same one even for a program that may not
/// store it.
std::string MakeId(const KernelLink& link, const std::set<std::string>& taken) {
    static constexpr unsigned char kNamespace[16] = {0x6f, 0x72, 0x76, 0x65, 0x6c, 0x6c, 0x51, 0x0c,
                                                     0xa6, 0x0c, 0x6c, 0x69, 0x6e, 0x6b, 0x69, 0x64};
    for (int attempt = 0;; ++attempt) {
        const std::string name = link.name + "|" + PermanentDigits(link) + "|" + std::to_string(attempt);
        uuid_t id;
        uuid_generate_sha1(id, kNamespace, name.data(), name.size());
        std::array<char, 37> text{};
        uuid_unparse_upper(id, text.data());
        std::string guid = "{" + std::string(text.data()) + "}";
        if (!taken.contains(guid)) return guid;
    }
}

/// A link's IPv4 set-up as the TCP/IP key holds it.
struct TcpipValues {
    bool dhcp = false;
    std::vector<std::string> addresses;
    std::vector<std::string> masks;
    std::vector<std::string> gateways;
    std::vector<std::string> metrics;
};

/// `runTime`: the addresses that are there until the next restart only.
TcpipValues ValuesOf(const std::vector<const KernelAddress*>& addresses,
                     const std::vector<const KernelRoute*>& routes, const std::vector<std::string>& runTime) {
    TcpipValues values;
    values.dhcp = std::any_of(addresses.begin(), addresses.end(),
                              [](const KernelAddress* address) { return address->validSeconds != kForever; });
    if (!values.dhcp) {
        for (const KernelAddress* address : addresses) {
            if (IsRunTimeAddress(runTime, *address)) continue;
            values.addresses.push_back(DottedQuad(address->address.data()));
            values.masks.push_back(DottedQuad(MaskFromPrefix(address->prefix).data()));
        }
        for (const KernelRoute* route : routes) {
            if (route->prefix != 0 || !route->gateway) continue;
            values.gateways.push_back(DottedQuad(route->gateway->data()));
            values.metrics.push_back(std::to_string(route->metric));
        }
    }
    if (values.addresses.empty()) {
        values.addresses = {"0.0.0.0"};
        values.masks = {"0.0.0.0"};
    }
    return values;
}

/// One pass of bringing the store in step, inside a transaction.
class Step {
 public:
    Step(RegistryStore::Editor& editor, const KernelPicture& picture, const TimeZone& zone, Ethtool& ethtool)
        : editor_(editor),
          picture_(picture),
          zone_(zone),
          ethtool_(ethtool),
          addresses_(GroupByIndex(picture.addresses)),
          routes_(GroupByIndex(picture.routes)) {}

    Win32Error Run() {
        Note(editor_.LoadLinks(rows_));
        const std::vector<std::ptrdiff_t> matches = MatchRows(rows_, picture_);
        std::set<std::ptrdiff_t> matched(matches.begin(), matches.end());
        for (const LinkRow& row : rows_) {
            taken_.insert(row.id);
            nextDriverKey_ = std::max(nextDriverKey_, std::atoi(row.driverKey.c_str()) + 1);
        }
        Note(editor_.CreateKey(kAdaptersKey));
        Note(editor_.CreateKey(kClassKey));
        const std::ptrdiff_t known = static_cast<std::ptrdiff_t>(rows_.size());
        for (std::ptrdiff_t i = 0; i < known; ++i) {
            if (!matched.contains(i) && rows_[static_cast<std::size_t>(i)].present)
                Vanish(rows_[static_cast<std::size_t>(i)]);
        }
        for (std::size_t i = 0; i < picture_.links.size(); ++i) {
            if (matches[i] == kNoRow) {
                Appear(picture_.links[i]);
            } else {
                Meet(picture_.links[i], rows_[static_cast<std::size_t>(matches[i])]);
            }
        }
        Note(editor_.SetFromKernel(kLinkageKey, kBindValue, ListValue(bind_)));
        Note(editor_.SetFromKernel(kTimeZoneKey, kStandardNameValue, TextValue(zone_.standardName)));
        Note(editor_.SetFromKernel(kTimeZonesKey + ("\\" + zone_.standardName), kZoneDisplayValue,
                                   TextValue(zone_.display)));
        return code_;
    }

 private:
    void Note(Win32Error code) {
        if (Ok(code_)) code_ = code;
    }

    void Appear(const KernelLink& link) {
        LinkRow row;
        row.id = MakeId(link, taken_);
        taken_.insert(row.id);
        char number[16];
        std::snprintf(number, sizeof number, "%04d", nextDriverKey_++);
        row.driverKey = number;
        NewIncarnation(link, row);
        if (row.permanent.empty()) {
            const std::string noted = NotedOriginal(row.incarnation);
            if (!noted.empty()) row.original = noted;
        }
        Describe(link, row);
        SaveDifferingOriginal(link, row);
        Refresh(link, row, true);
        Note(editor_.SaveLink(row));
    }

    /// The program takes the address that it finds for the manufacturer's: here it is known better.
    void SaveDifferingOriginal(const KernelLink& link, const LinkRow& row) {
        const std::optional<MacBytes> original = ParseMacDigits(row.original);
        if (!original || *original == link.address) return;
        Note(editor_.SetFromKernel(DriverKeyPath(row.driverKey), kOriginalNetworkAddressValue,
                                   TextValue(MacText(*original))));
    }

    void Meet(const KernelLink& link, LinkRow& row) {
        const LinkRow before = row;
        const bool sameObject = row.incarnation == Incarnation(picture_, link);
        if (!sameObject) {
            if (row.permanent.empty() && !HasUserSettings(row)) Forget(row);
            NewIncarnation(link, row);
        }
        if (!sameObject || !row.present || row.name != link.name) Describe(link, row);
        const bool shows = link.Up() || !Group(addresses_, link.index).empty();
        Refresh(link, row, !sameObject && !row.held && shows);
        if (row != before) Note(editor_.SaveLink(row));
    }

    /// A new kernel object: what was true of the former one, its virtual address among it, is not true of
    /// this, nor has it the addresses that the former one got at run time. The messages kept of the former
    /// one name an index that is another link's by now.
    void NewIncarnation(const KernelLink& link, LinkRow& row) {
        row.permanent = PermanentDigits(link);
        const std::string current = link.address == MacBytes{} ? std::string() : MacDigits(link.address);
        const bool showsOverride = !row.applied.empty() && current == row.applied;
        if (!row.permanent.empty()) {
            row.original = row.permanent;
        } else if (!showsOverride || row.original.empty()) {
            row.original = current;
            row.applied.clear();
        }
        row.incarnation = Incarnation(picture_, link);
        Note(editor_.SaveHeld(row.id, {}));
        Note(editor_.DeleteValue(TcpipKey(row.id), kRunTimeAddresses));
        if (link.Up()) row.held = false;
    }

    void Describe(const KernelLink& link, LinkRow& row) {
        row.present = true;
        row.name = link.name;
        const DeviceName device = NameDevice(link, ethtool_);
        const std::string driver = DriverKeyPath(row.driverKey);
        Note(editor_.CreateKey(kAdaptersKey + ("\\" + row.id)));
        Note(editor_.SetFromKernel(ConnectionKey(row.id), kConnectionNameValue, TextValue(link.name)));
        Note(editor_.SetFromKernel(driver, kNetCfgInstanceIdValue, TextValue(row.id)));
        Note(editor_.SetFromKernel(driver, kDriverDescValue, TextValue(device.description)));
        Note(editor_.SetFromKernel(driver, kComponentIdValue, TextValue(device.componentId)));
    }

    void Refresh(const KernelLink& link, LinkRow& row, bool firstSight) {
        bind_.push_back("\\Device\\" + row.id);
        const auto& addresses = Group(addresses_, link.index);
        const auto& routes = Group(routes_, link.index);
        const bool live = link.Up() && !row.held;
        const std::string signature = LinkSignature(link, live, addresses, routes);
        if (firstSight || (live && row.signature != signature))
            WriteTcpip(row.id, ValuesOf(addresses, routes, ReadRunTimeAddresses(editor_, row.id)));
        row.index = link.index;
        row.signature = signature;
    }

    void WriteTcpip(const std::string& id, const TcpipValues& values) {
        const std::string key = TcpipKey(id);
        Note(editor_.SetFromKernel(key, kEnableDhcpValue, DwordValue(values.dhcp ? 1 : 0)));
        Note(editor_.SetFromKernel(key, kIpAddressValue, ListValue(values.addresses)));
        Note(editor_.SetFromKernel(key, kSubnetMaskValue, ListValue(values.masks)));
        Note(editor_.SetFromKernel(key, kDefaultGatewayValue, ListValue(values.gateways)));
        Note(editor_.SetFromKernel(key, kDefaultGatewayMetricValue, ListValue(values.metrics)));
    }

    bool HasUserSettings(const LinkRow& row) {
        static constexpr std::array kTcpipNames = {
            kEnableDhcpValue,           kIpAddressValue,  kSubnetMaskValue,     kDefaultGatewayValue,
            kDefaultGatewayMetricValue, kNameServerValue, kInterfaceMetricValue};
        return row.held || !row.applied.empty() ||
               editor_.UserSet(DriverKeyPath(row.driverKey), kNetworkAddressValue) ||
               std::any_of(kTcpipNames.begin(), kTcpipNames.end(),
                           [&](const char* name) { return editor_.UserSet(TcpipKey(row.id), name); });
    }

    /// Drops what was recorded of a link that holds nothing of the user's.
    void Forget(const LinkRow& row) {
        Note(editor_.DeleteKey(kConnectionsKey + ("\\" + row.id)));
        Note(editor_.DeleteKey(DriverKeyPath(row.driverKey)));
        Note(editor_.DeleteKey(TcpipKey(row.id)));
    }

    void Vanish(LinkRow& row) {
        Note(editor_.DeleteKey(kAdaptersKey + ("\\" + row.id)));
        if (row.permanent.empty() && !HasUserSettings(row)) {
            Forget(row);
            Note(editor_.DeleteLink(row.id));
            return;
        }
        row.present = false;
        Note(editor_.SaveLink(row));
    }

    RegistryStore::Editor& editor_;
    const KernelPicture& picture_;
    const TimeZone& zone_;
    Ethtool& ethtool_;
    ByIndex<KernelAddress> addresses_;
    ByIndex<KernelRoute> routes_;
    std::vector<LinkRow> rows_;
    std::set<std::string> taken_;
    std::vector<std::string> bind_;
    int nextDriverKey_ = 0;
    Win32Error code_ = Win32Error::kSuccess;
};

/// True when the rows already say what the kernel says.
bool InStep(const std::vector<LinkRow>& rows, const KernelPicture& picture) {
    const std::vector<std::ptrdiff_t> matches = MatchRows(rows, picture);
    const ByIndex<KernelAddress> addresses = GroupByIndex(picture.addresses);
    const ByIndex<KernelRoute> routes = GroupByIndex(picture.routes);
    std::size_t present = 0;
    for (const LinkRow& row : rows) present += row.present ? 1 : 0;
    if (present != picture.links.size()) return false;
    for (std::size_t i = 0; i < matches.size(); ++i) {
        if (matches[i] == kNoRow) return false;
        const LinkRow& row = rows[static_cast<std::size_t>(matches[i])];
        const KernelLink& link = picture.links[i];
        const bool live = link.Up() && !row.held;
        if (!row.present || row.name != link.name || row.index != link.index ||
            row.incarnation != Incarnation(picture, link) ||
            row.signature !=
                LinkSignature(link, live, Group(addresses, link.index), Group(routes, link.index))) {
            return false;
        }
    }
    return true;
}

bool ShowsZone(RegistryStore& store, const TimeZone& zone) {
    const RegistryRead name = store.ReadValue(kHkeyLocalMachine, kTimeZoneKey, kStandardNameValue);
    const RegistryRead display =
        store.ReadValue(kHkeyLocalMachine, kTimeZonesKey + ("\\" + zone.standardName), kZoneDisplayValue);
    return Ok(name.code) && Ok(display.code) && name.value == TextValue(zone.standardName) &&
           display.value == TextValue(zone.display);
}

}  // namespace

std::string IncarnationBase() {
    std::string boot;
    static_cast<void>(ReadFileContents("/proc/sys/kernel/random/boot_id", boot));
    std::uint64_t cookie = 0;
    const int descriptor = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (descriptor >= 0) {
        socklen_t size = sizeof cookie;
        getsockopt(descriptor, SOL_SOCKET, SO_NETNS_COOKIE, &cookie, &size);
        close(descriptor);
    }
    return boot.substr(0, boot.find('\n')) + ":" + std::to_string(cookie);
}

bool IsAdapter(const KernelLink& link) { return link.arpType == kArpHrdEther && link.hasAddress; }

std::vector<std::ptrdiff_t> MatchRows(const std::vector<LinkRow>& rows, const KernelPicture& picture) {
    std::unordered_map<std::string, std::ptrdiff_t> byIncarnation;
    std::map<std::pair<std::string, std::string>, std::ptrdiff_t> byName;
    std::unordered_map<std::string, std::ptrdiff_t> byPermanent;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const auto position = static_cast<std::ptrdiff_t>(i);
        byIncarnation.emplace(rows[i].incarnation, position);
        byName.emplace(std::pair(rows[i].name, rows[i].permanent), position);
        if (!rows[i].permanent.empty()) byPermanent.emplace(rows[i].permanent, position);
    }
    std::vector<std::ptrdiff_t> matches(picture.links.size(), kNoRow);
    std::vector<bool> used(rows.size(), false);
    const auto pass = [&](const auto& index, const auto& keyOf) {
        for (std::size_t i = 0; i < matches.size(); ++i) {
            if (matches[i] != kNoRow) continue;
            const auto found = index.find(keyOf(picture.links[i]));
            if (found == index.end() || used[static_cast<std::size_t>(found->second)]) continue;
            matches[i] = found->second;
            used[static_cast<std::size_t>(found->second)] = true;
        }
    };
    pass(byIncarnation, [&](const KernelLink& link) { return Incarnation(picture, link); });
    pass(byName, [](const KernelLink& link) { return std::pair(link.name, PermanentDigits(link)); });
    pass(byPermanent, [](const KernelLink& link) { return PermanentDigits(link); });
    return matches;
}

std::string LinkSignature(const KernelLink& link, bool live,
                          const std::vector<const KernelAddress*>& addresses,
                          const std::vector<const KernelRoute*>& routes) {
    std::string text = link.kind + (live ? "|live" : "|idle");
    for (const KernelAddress* address : addresses) {
        if (!live) break;
        text += "|a" + DottedQuad(address->address.data()) + "/" + std::to_string(address->prefix) +
                (address->validSeconds == kForever ? "" : "d");
    }
    for (const KernelRoute* route : routes) {
        if (!live || route->prefix != 0 || !route->gateway) continue;
        text += "|g" + DottedQuad(route->gateway->data()) + "/" + std::to_string(route->metric);
    }
    // FNV-1a, 64 bits (http://www.isthe.com/chongo/tech/comp/fnv/): a digest, not a secret.
    std::uint64_t digest = 14695981039346656037ULL;
    for (const char c : text) digest = (digest ^ static_cast<unsigned char>(c)) * 1099511628211ULL;
    char hex[17];
    std::snprintf(hex, sizeof hex, "%016llx", static_cast<unsigned long long>(digest));
    return hex;
}

Win32Error SyncLinks(RegistryStore& store, const KernelPicture& picture, const TimeZone& zone,
                     Ethtool& ethtool, std::vector<LinkRow>& rows) {
    Win32Error code = store.LoadLinks(rows);
    if (!Ok(code)) return code;
    const bool hasKeys = store.ReadValue(kHkeyLocalMachine, kAdaptersKey, "").keyOpened;
    if (hasKeys && InStep(rows, picture) && ShowsZone(store, zone)) return code;
    code = store.Transact(
        [&](RegistryStore::Editor& editor) { return Step(editor, picture, zone, ethtool).Run(); });
    if (!Ok(code)) return code;
    return store.LoadLinks(rows);
}

}  // namespace corvane
