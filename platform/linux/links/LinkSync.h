#pragma once

#include <string>
#include <vector>

#include "platform/linux/kernel/Ethtool.h"
#include "platform/linux/kernel/Netlink.h"
#include "platform/linux/links/DeviceNames.h"
#include "platform/linux/links/TimeZone.h"
#include "platform/linux/registry/RegistryStore.h"

/// Keeps the registry store in step with the kernel's links, as plug and play does on Windows: every
/// Ethernet-type link has its adapters, connection, driver and TCP/IP keys and is bound to TCP/IP.
namespace corvane {

/// The kernel's picture at one moment.
struct KernelPicture {
    std::vector<KernelLink> links;  ///< Ethernet-type links only.
    std::vector<KernelAddress> addresses;
    std::vector<KernelRoute> routes;
    std::string
        incarnationBase;  ///< Boot and network namespace; with a link's index it names one kernel object.
};

/// Boot id (random(4)) and the cookie of the process's network namespace (SO_NETNS_COOKIE, socket(7)).
std::string IncarnationBase();

/// True for the links that the program shows: ARPHRD_ETHER with a six-byte address, loopback left out.
bool IsAdapter(const KernelLink& link);

/// Matches rows to links: the same kernel object, else the same name and permanent address, else the same
/// permanent address. Element i is the position in `rows` of links[i]'s row, or -1 for a link never seen.
std::vector<std::ptrdiff_t> MatchRows(const std::vector<LinkRow>& rows, const KernelPicture& picture);

/// Digest of everything of a link that the registry shows: its IPv4 set-up counts only while it is `live`,
/// that is, up and not held. A change of it means that the registry is out of step.
std::string LinkSignature(const KernelLink& link, bool live,
                          const std::vector<const KernelAddress*>& addresses,
                          const std::vector<const KernelRoute*>& routes);

/// Brings the store in step. Writes nothing when it is already. `rows` receives the rows after it.
///
/// A link seen for the first time gets keys, a stable GUID and its original address (the permanent one, else
/// the present one). Its IPv4 set-up is recorded, and refreshed while it is up and not held, as values of the
/// kernel's, without the addresses that the program added at run time (see TcpipKey.h): what the user set
/// stays. A vanished link loses its adapters key and its binding; its settings stay for when it comes back,
/// unless there is nothing in them that the user set.
Win32Error SyncLinks(RegistryStore& store, const KernelPicture& picture, const TimeZone& zone,
                     Ethtool& ethtool, std::vector<LinkRow>& rows);

}  // namespace corvane
