#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/linux/dhcp/DhcpLease.h"
#include "platform/linux/kernel/Netlink.h"

namespace corvane {

/// Puts leases of one link into the kernel, the registry and the resolver's configuration, and takes them out
/// again. What it put into the kernel it knows, and takes out nothing else. Problems go to `say`, as one line
/// of words each; a step that fails does not keep the others from being done.
class LeaseInstaller {
 public:
    using Say = std::function<void(const std::string& words)>;

    LeaseInstaller(std::uint32_t linkIndex, std::string linkId, Say say);

    /// Takes over what a killed supervisor of the link left: the address that the registry calls the lease's,
    /// if it is on the link with a limited lifetime, and the link's routes of protocol 16 (DHCP). Without
    /// such an address nothing.
    void Adopt();

    /// The address with `seconds` as its lifetime, and the routes: default routes with the TCP/IP key's
    /// InterfaceMetric as metric. A former address that differs and former routes that the lease does not
    /// have are taken away. A gateway outside the address's network is reached by a route of its own (a lease
    /// with a /32 mask). False when the address is not on the link afterwards.
    bool PutOnLink(const Lease& lease, std::uint32_t seconds);

    /// Waits, half a second at most, until no hardware address of the lease's server or gateways is being
    /// asked for (ARP): a packet that waits for it, such as the one that gives the lease back, is dropped
    /// when the address goes.
    void AwaitNextHops(const Lease& lease) const;

    /// Takes address and routes away. Addresses that others added, and that the kernel drops with it, are put
    /// back.
    void TakeFromLink();

    /// Writes the lease's values in one transaction, then brings the resolver's configuration up to date.
    void Record(const Lease& lease);
    /// Same, for a link without lease. A TCP/IP key that is gone is not made anew.
    void RecordNoLease();

 private:
    /// Tells the neighbours (ARP) which hardware address the leased address has now.
    void Announce();

    void Write(const std::vector<NamedValue>& values, bool makeKey);
    void RemoveAddress(const KernelAddress& address);
    [[nodiscard]] std::vector<KernelRoute> RoutesOf(const Lease& lease) const;
    [[nodiscard]] std::uint32_t InterfaceMetric() const;

    std::uint32_t linkIndex_;
    std::string linkId_;
    Say say_;
    Netlink netlink_;
    bool hasAddress_ = false;
    KernelAddress address_;
    std::vector<KernelRoute> routes_;
};

}  // namespace corvane
