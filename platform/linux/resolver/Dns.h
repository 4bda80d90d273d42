#pragma once

#include <string>
#include <vector>

#include "base/Refusal.h"
#include "platform/linux/kernel/Netlink.h"
#include "platform/linux/registry/RegistryStore.h"

/// DNS servers of the links in the resolver's configuration (resolv.conf(5)).
namespace corvane {

/// The servers of all links that are present and up: "NameServer" split at "," or, when that is empty,
/// "DhcpNameServer" split at blanks, of each link's TCP/IP key, in ascending order of link index, without
/// repetition and without texts that are no IPv4 or IPv6 address. Empty when the store or the kernel cannot
/// be read.
std::vector<std::string> MergedDnsServers(RegistryStore& store, Netlink& netlink);

/// Makes `path` say `servers` first: one marked block of the program's own lines at its start, everything
/// else as it was, byte for byte; no servers, no block. A block that is there is replaced. The file as it is
/// whenever a block comes into it anew is kept at `copyPath`. Written beside and renamed; in place where the
/// file is a mount point or its folder is read-only, which is not one step for those who read it or for a
/// crash. A symbolic link and a file that cannot be written are left alone: refused with the reason and
/// the remedy, except for a link when there are no servers: nothing of the program's is in it. A
/// missing file is made when there are servers. Nothing is written when nothing changes. Programs that do
/// this at once wait for each other (lock file `copyPath` + ".lock", at most five seconds).
Refusal UpdateResolvConf(const std::string& path, const std::string& copyPath,
                         const std::vector<std::string>& servers);

/// Both steps on /etc/resolv.conf as one; the copy is "resolv.conf.before" beside the store's file. A store
/// or kernel that cannot be read is refused, and the file is left alone.
Refusal ApplyDns(RegistryStore& store, Netlink& netlink);

}  // namespace corvane
