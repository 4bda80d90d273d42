#include "platform/linux/dhcp/DhcpInstall.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <ctime>
#include <optional>
#include <set>
#include <sstream>
#include <thread>
#include <utility>

#include "base/Address.h"
#include "base/Text.h"
#include "platform/Files.h"
#include "platform/RegistryKeys.h"
#include "platform/RegistryValues.h"
#include "platform/linux/kernel/Announce.h"
#include "platform/linux/registry/RegistryStore.h"
#include "platform/linux/resolver/Dns.h"
#include "platform/linux/system/Errors.h"

namespace corvane {

namespace {

constexpr std::uint8_t kProtocolDhcp = 16;  // RTPROT_DHCP, linux/rtnetlink.h
constexpr std::uint8_t kLinkScope = 253;    // RT_SCOPE_LINK

std::string Text(const KernelAddress& address) {
    return DottedQuad(address.address.data()) + "/" + std::to_string(address.prefix);
}

std::string Text(const KernelRoute& route) {
    return DottedQuad(route.destination.data()) + "/" + std::to_string(route.prefix) +
           (route.gateway ? " via " + DottedQuad(route.gateway->data()) : "");
}

bool InNetwork(const Ipv4Bytes& address, const Ipv4Bytes& network, std::uint8_t prefix) {
    const std::uint32_t mask = HostOrder(MaskFromPrefix(prefix));
    return (HostOrder(address) & mask) == (HostOrder(network) & mask);
}

std::string Words(Win32Error code) {
    std::string words = Win32Text(code);
    while (!words.empty() && (words.back() == '\n' || words.back() == '\r')) words.pop_back();
    return words + " (" + std::to_string(Number(code)) + ")";
}

/// True when the kernel has one of the addresses in its neighbour table without the hardware address
/// (proc(5), /proc/net/arp: flags 0).
bool IsAskedFor(const std::set<std::string>& addresses) {
    std::string table;
    if (ReadFileContents("/proc/self/net/arp", table)) return false;
    std::istringstream lines(table);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream fields(line);
        std::string address;
        std::string type;
        std::string flags;
        if (fields >> address >> type >> flags && flags == "0x0" && addresses.contains(address)) return true;
    }
    return false;
}

/// A text value without its terminator; empty when there is none.
std::string ReadText(RegistryStore& store, const std::string& key, const char* name) {
    const RegistryRead read = store.ReadValue(kHkeyLocalMachine, key, name);
    return Ok(read.code) ? TextBeforeNul(read.value.data) : std::string();
}

}  // namespace

LeaseInstaller::LeaseInstaller(std::uint32_t linkIndex, std::string linkId, Say say)
    : linkIndex_(linkIndex), linkId_(std::move(linkId)), say_(std::move(say)) {}

void LeaseInstaller::Adopt() {
    RegistryStore store(RegistryStore::DefaultPath());
    const std::optional<Ipv4Bytes> recorded =
        ParseIpv4(ReadText(store, TcpipKey(linkId_), kDhcpIpAddressValue));
    std::vector<KernelAddress> addresses;
    if (!recorded || !netlink_.DumpAddresses(addresses).Ok()) return;
    const auto found = std::find_if(addresses.begin(), addresses.end(), [&](const KernelAddress& address) {
        return address.index == linkIndex_ && address.address == *recorded &&
               address.validSeconds != kForever;
    });
    if (found == addresses.end()) return;
    address_ = *found;
    hasAddress_ = true;
    std::vector<KernelRoute> routes;
    if (!netlink_.DumpRoutes(routes).Ok()) return;
    std::copy_if(routes.begin(), routes.end(), std::back_inserter(routes_), [&](const KernelRoute& route) {
        return route.index == linkIndex_ && route.protocol == kProtocolDhcp;
    });
}

/// The link may have got another hardware address since its neighbours saw this one.
void LeaseInstaller::Announce() {
    KernelLink link;
    if (netlink_.GetLink(linkIndex_, link).Ok())
        AnnounceAddresses(linkIndex_, link.address, {address_.address});
}

bool LeaseInstaller::PutOnLink(const Lease& lease, std::uint32_t seconds) {
    KernelAddress address;
    address.index = linkIndex_;
    address.address = lease.address;
    address.prefix = lease.prefix;
    address.validSeconds = seconds == kInfiniteLease ? kForever : seconds;
    address.preferredSeconds = address.validSeconds;
    const bool isNew = !hasAddress_ || !SamePlace(address_, address);
    if (hasAddress_ && isNew) TakeFromLink();
    if (const KernelAnswer answer = netlink_.AddAddress(address, true); !answer.Ok()) {
        say_("address " + Text(address) + ": " + answer.Words());
        TakeFromLink();
        return false;
    }
    address_ = address;
    hasAddress_ = true;
    if (isNew) Announce();

    const std::vector<KernelRoute> wanted = RoutesOf(lease);
    for (const KernelRoute& route : routes_) {
        if (std::find(wanted.begin(), wanted.end(), route) != wanted.end()) continue;
        const KernelAnswer answer = netlink_.DeleteRoute(route);
        if (!answer.Ok() && answer.errnoValue != ESRCH) say_("route " + Text(route) + ": " + answer.Words());
    }
    routes_ = wanted;
    for (const KernelRoute& route : wanted) {
        const KernelAnswer answer = netlink_.AddRoute(route);
        if (!answer.Ok() && answer.errnoValue != EEXIST) say_("route " + Text(route) + ": " + answer.Words());
    }
    return true;
}

void LeaseInstaller::AwaitNextHops(const Lease& lease) const {
    std::set<std::string> hops;
    if (lease.server) hops.insert(DottedQuad(lease.server->data()));
    for (const LeaseRoute& route : lease.routes) {
        if (route.gateway) hops.insert(DottedQuad(route.gateway->data()));
    }
    for (int turn = 0; turn < 250 && IsAskedFor(hops); ++turn) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

void LeaseInstaller::TakeFromLink() {
    // The last first: a gateway's own route is needed by those after it.
    for (auto route = routes_.rbegin(); route != routes_.rend(); ++route) {
        const KernelAnswer answer = netlink_.DeleteRoute(*route);
        const bool gone = answer.errnoValue == ESRCH || answer.errnoValue == ENODEV;
        if (!answer.Ok() && !gone) say_("route " + Text(*route) + ": " + answer.Words());
    }
    routes_.clear();
    if (hasAddress_) RemoveAddress(address_);
    hasAddress_ = false;
}

void LeaseInstaller::RemoveAddress(const KernelAddress& address) {
    std::vector<KernelAddress> before;
    std::vector<KernelAddress> after;
    const bool known = netlink_.DumpAddresses(before).Ok();
    const KernelAnswer answer = netlink_.DeleteAddress(address);
    if (!answer.Ok()) {
        // An address whose lifetime is over, and one of a link that is gone, are not there any more.
        const bool gone = answer.errnoValue == EADDRNOTAVAIL || answer.errnoValue == ENODEV;
        if (!gone) say_("address " + Text(address) + ": " + answer.Words());
        return;
    }
    if (!known || !netlink_.DumpAddresses(after).Ok()) return;
    for (const KernelAddress& other : before) {
        if (other.index != linkIndex_ || SamePlace(other, address)) continue;
        const bool there = std::any_of(after.begin(), after.end(),
                                       [&](const KernelAddress& left) { return SamePlace(left, other); });
        if (there) continue;
        const KernelAnswer added = netlink_.AddAddress(other, true);
        if (!added.Ok()) say_("address " + Text(other) + ": " + added.Words());
    }
}

std::vector<KernelRoute> LeaseInstaller::RoutesOf(const Lease& lease) const {
    const std::uint32_t metric = InterfaceMetric();
    std::vector<KernelRoute> routes;
    const auto add = [&](const KernelRoute& route) {
        if (std::find(routes.begin(), routes.end(), route) == routes.end()) routes.push_back(route);
    };
    for (const LeaseRoute& wanted : lease.routes) {
        KernelRoute route;
        route.destination = wanted.destination;
        route.prefix = wanted.prefix;
        route.gateway = wanted.gateway;
        route.index = linkIndex_;
        route.metric = wanted.prefix == 0 ? metric : 0;
        route.protocol = kProtocolDhcp;
        route.scope = wanted.gateway ? 0 : kLinkScope;
        if (wanted.gateway && !InNetwork(*wanted.gateway, lease.address, lease.prefix)) {
            KernelRoute toGateway = route;
            toGateway.destination = *wanted.gateway;
            toGateway.prefix = 32;
            toGateway.gateway.reset();
            toGateway.metric = 0;
            toGateway.scope = kLinkScope;
            add(toGateway);
        }
        add(route);
    }
    return routes;
}

std::uint32_t LeaseInstaller::InterfaceMetric() const {
    RegistryStore store(RegistryStore::DefaultPath());
    const RegistryRead read = store.ReadValue(kHkeyLocalMachine, TcpipKey(linkId_), kInterfaceMetricValue);
    return Ok(read.code) ? DwordFrom(read.value.data) : 0;
}

void LeaseInstaller::Record(const Lease& lease) {
    Write(LeaseValues(lease, static_cast<std::uint32_t>(std::time(nullptr))), true);
}

void LeaseInstaller::RecordNoLease() { Write(NoLeaseValues(), false); }

void LeaseInstaller::Write(const std::vector<NamedValue>& values, bool makeKey) {
    RegistryStore store(RegistryStore::DefaultPath());
    const std::string key = TcpipKey(linkId_);
    if (makeKey || store.ReadValue(kHkeyLocalMachine, key, kDhcpIpAddressValue).keyOpened) {
        std::vector<RegistryStore::Change> changes;
        for (const NamedValue& value : values) {
            changes.push_back({RegistryStore::Change::Kind::kSetValue, key, value.name, value.value});
        }
        const Win32Error code = store.Apply(kHkeyLocalMachine, changes);
        if (!Ok(code))
            say_("the lease cannot be recorded in " + RegistryStore::DefaultPath() + ": " + Words(code));
    }
    if (const Refusal refusal = ApplyDns(store, netlink_)) say_(refusal.Words());
}

}  // namespace corvane
