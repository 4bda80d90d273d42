#include "platform/linux/IpHelper.h"

#include <algorithm>
#include <optional>
#include <tuple>

#include <linux/if.h>

#include "base/Address.h"
#include "platform/linux/dhcp/DhcpControl.h"
#include "platform/linux/links/TcpipKey.h"
#include "platform/linux/system/Errors.h"

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

/// Equal but for metric and maker.
bool SameWay(const KernelRoute& a, const KernelRoute& b) {
    return a.destination == b.destination && a.prefix == b.prefix && a.gateway == b.gateway &&
           a.index == b.index;
}

/// A table of which the kernel could not be asked.
template <class Row>
TableRead<Row> FailedTable(const KernelAnswer& answer) {
    return {TableRead<Row>::Outcome::kFailed, FromErrno(answer.errnoValue), {}};
}

/// A link's addresses and routes before one of its addresses is deleted. With a primary address the kernel
/// takes its secondary ones away, and with the last address, be it for a moment, every route of the link.
class BeforeDeletion {
 public:
    BeforeDeletion(Netlink& kernel, std::uint32_t index) : kernel_(kernel), index_(index) {}

    KernelAnswer Take() {
        KernelAnswer answer = kernel_.DumpAddresses(addresses_);
        if (answer.Ok()) answer = kernel_.DumpRoutes(plainRoutes_);
        if (answer.Ok()) answer = kernel_.SaveLinkState(index_, exactRoutes_);
        std::erase_if(addresses_, [&](const KernelAddress& address) { return address.index != index_; });
        std::erase_if(plainRoutes_, [&](const KernelRoute& route) {
            static constexpr std::uint8_t kMadeByDhcp = 16;
            const bool leftOut = route.prefix == 0 || route.protocol == kMadeByDhcp;
            return route.index != index_ || !leftOut;
        });
        std::erase_if(exactRoutes_, [](const HeldMessage& message) { return !IsIpv4Route(message); });
        return answer;
    }

    /// Gives the link back what went with the address that was meant to go.
    void RestoreBut(const KernelAddress& unwanted) {
        std::vector<KernelAddress> left;
        if (!kernel_.DumpAddresses(left).Ok()) return;
        bool lost = false;
        for (const KernelAddress& address : addresses_) {
            const auto same = [&](const KernelAddress& other) { return SamePlace(other, address); };
            if (same(unwanted) || std::any_of(left.begin(), left.end(), same)) continue;
            static_cast<void>(kernel_.AddAddress(address, false));
            lost = true;
        }
        if (lost) RestoreRoutes();
    }

 private:
    /// What leads through the network of the deleted address cannot come back, and need not.
    void RestoreRoutes() {
        for (const HeldMessage& message : exactRoutes_) static_cast<void>(kernel_.Restore(message));
        std::vector<KernelRoute> left;
        if (!kernel_.DumpRoutes(left).Ok()) return;
        for (const KernelRoute& route : plainRoutes_) {
            const bool there = std::find(left.begin(), left.end(), route) != left.end();
            if (!there) static_cast<void>(kernel_.AddRoute(route));
        }
    }

    Netlink& kernel_;
    std::uint32_t index_;
    std::vector<KernelAddress> addresses_;
    std::vector<HeldMessage> exactRoutes_;  ///< With all their attributes; default and DHCP routes left out.
    std::vector<KernelRoute> plainRoutes_;  ///< Those.
};

}  // namespace

TableRead<InterfaceEntry> IpHelper::GetInterfaceInfo() {
    std::vector<KernelLink> links;
    fresh_.clear();
    KernelAnswer answer = machine_->Update();
    if (answer.Ok()) answer = machine_->Kernel().DumpLinks(links);
    if (!answer.Ok()) return FailedTable<InterfaceEntry>(answer);
    TableRead<InterfaceEntry> table;
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
    const KernelAnswer answer = machine_->Update();
    if (!answer.Ok()) return FailedTable<IpAddrRow>(answer);
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
    const KernelAnswer answer = machine_->Update();
    if (!answer.Ok()) return FailedTable<IpForwardRow>(answer);
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
    if (!prefix || *prefix == 0 || HostAddressRefusal(address)) return Win32Error::kInvalidParameter;
    KernelAddress wanted;
    wanted.index = ifIndex;
    wanted.address = address;
    wanted.prefix = *prefix;
    const Win32Error code = AddForRunTime(wanted);
    if (Ok(code)) nteContext = ContextOf(wanted);
    return code;
}

Win32Error IpHelper::AddForRunTime(const KernelAddress& address) {
    Netlink& kernel = machine_->Kernel();
    // An address that comes unseen could be taken for the link's own.
    if (const KernelAnswer answer = machine_->Update(); !answer.Ok()) return FromErrno(answer.errnoValue);
    const LinkRow* const row = machine_->RowOfIndex(address.index);
    if (row == nullptr) return FromErrno(kernel.AddAddress(address, false).errnoValue);
    const std::string id = row->id;
    bool added = false;
    // Both or none, and nobody takes the address for the link's own in between.
    const Win32Error code = machine_->Store().Transact([&](RegistryStore::Editor& editor) {
        const KernelAnswer answer = kernel.AddAddress(address, false);
        added = answer.Ok();
        return added ? NoteRunTimeAddress(editor, id, address) : FromErrno(answer.errnoValue);
    });
    if (!Ok(code) && added) static_cast<void>(kernel.DeleteAddress(address));
    return code;
}

Win32Error IpHelper::DeleteIPAddress(std::uint32_t nteContext) {
    const auto known =
        nteContext > 0xFFFF ? addresses_.end() : addresses_.find(static_cast<std::uint16_t>(nteContext));
    if (known == addresses_.end()) return Win32Error::kInvalidParameter;
    const AddressKey key = known->second;
    KernelAddress unwanted;
    unwanted.index = key.index;
    unwanted.address = key.address;
    unwanted.prefix = key.prefix;
    BeforeDeletion before(machine_->Kernel(), key.index);
    const KernelAnswer taken = before.Take();
    if (!taken.Ok()) return FromErrno(taken.errnoValue);
    const KernelAnswer answer = machine_->Kernel().DeleteAddress(unwanted);
    if (!answer.Ok()) {
        const Win32Error code = FromErrno(answer.errnoValue);
        return code == Win32Error::kGenFailure ? Win32Error::kInvalidParameter : code;
    }
    before.RestoreBut(unwanted);
    ForgetRunTime(unwanted);
    contexts_.erase(key);
    addresses_.erase(static_cast<std::uint16_t>(nteContext));
    return Win32Error::kSuccess;
}

void IpHelper::ForgetRunTime(const KernelAddress& address) {
    static_cast<void>(machine_->Update());
    const LinkRow* const row = machine_->RowOfIndex(address.index);
    if (row == nullptr || !IsRunTimeAddress(ReadRunTimeAddresses(machine_->Store(), row->id), address))
        return;
    const std::string id = row->id;
    // A note that stays makes no address come back.
    static_cast<void>(machine_->Store().Transact(
        [&](RegistryStore::Editor& editor) { return ForgetRunTimeAddress(editor, id, address); }));
}

Win32Error IpHelper::CreateIpForwardEntry(const IpForwardRow& row) {
    const std::optional<KernelRoute> route = RouteOf(row);
    static constexpr std::uint32_t kIndirect = 4;
    if (!route || (row.type == kIndirect && !route->gateway)) return Win32Error::kInvalidParameter;
    return FromErrno(machine_->Kernel().AddRoute(*route).errnoValue);
}

Win32Error IpHelper::DeleteIpForwardEntry(const IpForwardRow& row) {
    const std::optional<KernelRoute> wanted = RouteOf(row);
    if (!wanted) return Win32Error::kInvalidParameter;
    // Whoever made the route: the caller names it by where it leads.
    if (const KernelAnswer answer = machine_->Update(); !answer.Ok()) return FromErrno(answer.errnoValue);
    const KernelRoute* found = nullptr;
    for (const KernelRoute& present : machine_->Picture().routes) {
        const bool named = SameWay(present, *wanted) && (row.metric1 == 0 || present.metric == row.metric1);
        if (named && (found == nullptr || present.metric < found->metric)) found = &present;
    }
    const KernelRoute route = found != nullptr ? *found : *wanted;
    return FromErrno(machine_->Kernel().DeleteRoute(route).errnoValue);
}

Win32Error IpHelper::IpReleaseAddress(const InterfaceEntry& entry) { return ReleaseDhcp(entry.index); }

Win32Error IpHelper::IpRenewAddress(const InterfaceEntry& entry) {
    if (const KernelAnswer answer = machine_->Update(); !answer.Ok()) return FromErrno(answer.errnoValue);
    const LinkRow* const row = machine_->RowOfIndex(entry.index);
    if (row != nullptr && !DhcpRunning(entry.index) && UsesDhcp(machine_->Store(), row->id)) {
        const DhcpAnswer started = StartDhcp(entry.index, row->name, row->id);
        if (!Ok(started.code)) return started.code;
    }
    return RenewDhcp(entry.index);
}

std::string IpHelper::SystemText(Win32Error code) { return Win32Text(code); }

}  // namespace corvane
