#include "platform/linux/IpHelper.h"

#include <algorithm>
#include <optional>
#include <tuple>

#include <linux/if.h>

#include "platform/Address.h"
#include "platform/linux/DhcpControl.h"
#include "platform/linux/Errors.h"
#include "platform/linux/TcpipKey.h"

namespace corvane {

namespace {

/// IF_OPER_* (linux/if.h, RFC 2863) in the order of MIB_IFROW's states (ipifcons.h).
std::uint32_t OperStatus(const KernelLink& link) {
    enum : std::uint32_t {
        kNonOperational,
        kUnreachable,
        kDisconnected,
        kConnecting,
        kConnected,
        kOperational
    };
    switch (link.operState) {
        case IF_OPER_UP:
            return kOperational;
        case IF_OPER_DORMANT:
            return kConnecting;
        case IF_OPER_LOWERLAYERDOWN:
            return kUnreachable;
        case IF_OPER_DOWN:
            return kDisconnected;
        case IF_OPER_UNKNOWN:  // Drivers that never report: the running flag tells.
            return link.Running() ? kOperational : kDisconnected;
        default:
            return kNonOperational;
    }
}

/// The record of a route row; nothing when its mask has holes.
std::optional<KernelRoute> RouteOf(const IpForwardRow& row) {
    const std::optional<std::uint8_t> prefix = PrefixFromMask(row.mask);
    if (!prefix) return std::nullopt;
    static constexpr std::uint8_t kStatic = 4;
    static constexpr std::uint8_t kLinkScope = 253;
    KernelRoute route;
    route.destination = row.destination;
    route.prefix = *prefix;
    if (row.nextHop != Ipv4Bytes{}) {
        route.gateway = row.nextHop;
    } else {
        route.scope = kLinkScope;
    }
    route.index = row.ifIndex;
    route.metric = row.metric1;
    route.protocol = kStatic;
    return route;
}

}  // namespace

TableRead<InterfaceEntry> IpHelper::GetInterfaceInfo() {
    machine_->Update();
    std::vector<KernelLink> links;
    TableRead<InterfaceEntry> table;
    fresh_.clear();
    const KernelAnswer answer = machine_->Kernel().DumpLinks(links);
    if (!answer.Ok()) {
        table.outcome = TableRead<InterfaceEntry>::Outcome::kFailed;
        table.code = FromErrno(answer.errnoValue);
        return table;
    }
    std::unordered_map<std::uint32_t, const LinkRow*> rows;
    for (const LinkRow& row : machine_->Rows()) {
        if (row.present) rows.emplace(row.index, &row);
    }
    table.outcome = TableRead<InterfaceEntry>::Outcome::kRows;
    for (KernelLink& link : links) {
        const auto row = rows.find(link.index);
        if (!link.Up() || row == rows.end()) continue;
        table.rows.push_back({link.index, "\\DEVICE\\TCPIP_" + row->second->id});
        fresh_.emplace(link.index, std::move(link));
    }
    return table;
}

Win32Error IpHelper::GetIfEntry(std::uint32_t index, IfRow& row) {
    KernelLink link;
    auto dumped = fresh_.extract(index);
    if (!dumped.empty()) {
        link = std::move(dumped.mapped());
    } else {
        const KernelAnswer answer = machine_->Kernel().GetLink(index, link);
        if (!answer.Ok()) return FromErrno(answer.errnoValue);
    }
    row.index = link.index;
    row.physAddr = link.address;
    row.speed = machine_->Drivers().Speed(link.name);
    row.adminStatus = link.Up() ? 1 : 2;
    row.operStatus = OperStatus(link);
    row.inOctets = static_cast<std::uint32_t>(link.rxBytes & 0xFFFFFFFFU);
    row.outOctets = static_cast<std::uint32_t>(link.txBytes & 0xFFFFFFFFU);
    return Win32Error::kSuccess;
}

std::uint16_t IpHelper::ContextOf(const KernelAddress& address) {
    const AddressKey key{address.index, address.address, address.prefix};
    const auto known = contexts_.find(key);
    if (known != contexts_.end()) return known->second;
    // 65,535 contexts at most are told apart; 0 is none. The oldest numbers are given out again.
    if (++lastContext_ == 0) lastContext_ = 1;
    const auto former = addresses_.find(lastContext_);
    if (former != addresses_.end()) contexts_.erase(former->second);
    addresses_.insert_or_assign(lastContext_, key);
    contexts_[key] = lastContext_;
    return lastContext_;
}

TableRead<IpAddrRow> IpHelper::GetIpAddrTable() {
    machine_->Update();
    TableRead<IpAddrRow> table;
    table.outcome = TableRead<IpAddrRow>::Outcome::kRows;
    for (const KernelAddress& address : machine_->Picture().addresses) {
        table.rows.push_back(
            {address.address, MaskFromPrefix(address.prefix), address.index, ContextOf(address)});
    }
    std::stable_sort(table.rows.begin(), table.rows.end(),
                     [](const IpAddrRow& a, const IpAddrRow& b) { return a.address < b.address; });
    return table;
}

TableRead<IpForwardRow> IpHelper::GetIpForwardTable() {
    machine_->Update();
    TableRead<IpForwardRow> table;
    table.outcome = TableRead<IpForwardRow>::Outcome::kRows;
    for (const KernelRoute& route : machine_->Picture().routes) {
        static constexpr std::uint8_t kKernelMade = 2;
        table.rows.push_back({route.destination, MaskFromPrefix(route.prefix),
                              route.gateway.value_or(Ipv4Bytes{}), route.index, route.gateway ? 4U : 3U,
                              route.protocol == kKernelMade ? 2U : 3U, route.metric});
    }
    std::stable_sort(table.rows.begin(), table.rows.end(), [](const IpForwardRow& a, const IpForwardRow& b) {
        return std::tie(a.destination, a.mask, a.metric1, a.nextHop) <
               std::tie(b.destination, b.mask, b.metric1, b.nextHop);
    });
    return table;
}

Win32Error IpHelper::AddIPAddress(const Ipv4Bytes& address, const Ipv4Bytes& mask, std::uint32_t ifIndex,
                                  std::uint32_t& nteContext) {
    const std::optional<std::uint8_t> prefix = PrefixFromMask(mask);
    if (!prefix || *prefix == 0 || !HostAddressRefusal(address).empty()) return Win32Error::kInvalidParameter;
    KernelAddress wanted;
    wanted.index = ifIndex;
    wanted.address = address;
    wanted.prefix = *prefix;
    const KernelAnswer answer = machine_->Kernel().AddAddress(wanted, false);
    if (!answer.Ok()) return FromErrno(answer.errnoValue);
    nteContext = ContextOf(wanted);
    return Win32Error::kSuccess;
}

Win32Error IpHelper::DeleteIPAddress(std::uint32_t nteContext) {
    const auto known =
        nteContext > 0xFFFF ? addresses_.end() : addresses_.find(static_cast<std::uint16_t>(nteContext));
    if (known == addresses_.end()) return Win32Error::kInvalidParameter;
    const AddressKey key = known->second;
    Netlink& kernel = machine_->Kernel();
    std::vector<KernelAddress> before;
    const KernelAnswer listed = kernel.DumpAddresses(before);
    if (!listed.Ok()) return FromErrno(listed.errnoValue);
    KernelAddress unwanted;
    unwanted.index = key.index;
    unwanted.address = key.address;
    unwanted.prefix = key.prefix;
    const KernelAnswer answer = kernel.DeleteAddress(unwanted);
    if (!answer.Ok()) {
        const Win32Error code = FromErrno(answer.errnoValue);
        return code == Win32Error::kGenFailure ? Win32Error::kInvalidParameter : code;
    }
    // The kernel takes the secondary addresses of a primary one away with it: those are not meant to go.
    std::vector<KernelAddress> after;
    static_cast<void>(kernel.DumpAddresses(after));
    for (const KernelAddress& address : before) {
        const auto same = [&](const KernelAddress& other) {
            return other.index == address.index && other.address == address.address &&
                   other.prefix == address.prefix;
        };
        if (address.index != key.index || same(unwanted) || std::any_of(after.begin(), after.end(), same))
            continue;
        static_cast<void>(kernel.AddAddress(address, false));
    }
    contexts_.erase(key);
    addresses_.erase(static_cast<std::uint16_t>(nteContext));
    return Win32Error::kSuccess;
}

Win32Error IpHelper::CreateIpForwardEntry(const IpForwardRow& row) {
    const std::optional<KernelRoute> route = RouteOf(row);
    if (!route) return Win32Error::kInvalidParameter;
    return FromErrno(machine_->Kernel().AddRoute(*route).errnoValue);
}

Win32Error IpHelper::DeleteIpForwardEntry(const IpForwardRow& row) {
    std::optional<KernelRoute> route = RouteOf(row);
    if (!route) return Win32Error::kInvalidParameter;
    // Whoever made the route: the caller names it by where it leads.
    machine_->Update();
    for (const KernelRoute& present : machine_->Picture().routes) {
        if (present.destination == route->destination && present.prefix == route->prefix &&
            present.gateway == route->gateway && present.index == route->index &&
            present.metric == route->metric) {
            route = present;
            break;
        }
    }
    return FromErrno(machine_->Kernel().DeleteRoute(*route).errnoValue);
}

Win32Error IpHelper::IpReleaseAddress(const InterfaceEntry& entry) { return ReleaseDhcp(entry.index); }

Win32Error IpHelper::IpRenewAddress(const InterfaceEntry& entry) {
    machine_->Update();
    const LinkRow* const row = machine_->RowOfIndex(entry.index);
    if (row != nullptr && !DhcpRunning(entry.index) && UsesDhcp(machine_->Store(), row->id)) {
        std::string failure;
        const Win32Error code = StartDhcp(entry.index, row->name, row->id, failure);
        if (!Ok(code)) return code;
    }
    return RenewDhcp(entry.index);
}

std::string IpHelper::SystemText(Win32Error code) { return Win32Text(code); }

}  // namespace corvane
