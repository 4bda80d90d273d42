#pragma once

#include <csignal>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Address.h"

/// The DHCP clients that can be supervised, and how each is told what to do. No process is made here but
/// `busybox --list`.
namespace corvane {

enum class DhcpClientKind { kUdhcpc, kDhcpcd, kDhclient };

/// "udhcpc", "dhcpcd", "dhclient".
const char* NameOf(DhcpClientKind kind);
std::optional<DhcpClientKind> DhcpClientKindFrom(std::string_view name);

/// An installed client: its program, and an applet name where the program is busybox.
struct DhcpClient {
    DhcpClientKind kind = DhcpClientKind::kUdhcpc;
    std::vector<std::string> command;
};

/// The first of udhcpc (by itself or in a busybox that has it), dhcpcd and dhclient that is installed, or
/// `wanted` if it is. Looks in the absolute folders of `searchPath` (separated by ":"), then in /usr/sbin,
/// /sbin, /usr/bin and /bin.
std::optional<DhcpClient> FindDhcpClient(std::optional<DhcpClientKind> wanted, std::string_view searchPath);

/// How one client is run for one link. Every client stays in the foreground, goes on trying while no server
/// answers, and leaves addresses, routes and resolv.conf to its hook.
struct DhcpClientPlan {
    std::vector<std::string> run;
    int renewSignal = SIGTERM;         ///< Makes it renew its lease, or ask for a lease when it is idle.
    bool endsToRenew = false;          ///< `renewSignal` ends it; run anew it asks for its former address.
    int releaseSignal = SIGTERM;       ///< Makes it give its lease back; it ends then, or before.
    bool repeatsRelease = false;       ///< It may miss `releaseSignal`, and may be given it again.
    bool staysAfterRelease = false;    ///< It does not end then, but runs on, idle.
    std::vector<std::string> release;  ///< Empty, or to be run to its end for a lease that is left then.
    std::string configurationPath;     ///< Empty, or a file to be made with the next text before `run`.
    std::string configurationText;
    /// Empty, or the file that must hold the lease before the client may be ended: it is what `run` and
    /// `release` go by.
    std::string leaseFile;
    std::vector<std::string> files;  ///< What there may be to remove at the end.
};

/// `hookPath` is run by the client for every event; `fileStem` begins the paths of files that the client
/// needs.
DhcpClientPlan PlanDhcpClient(const DhcpClient& client, const std::string& linkName,
                              const std::string& hookPath, const std::string& fileStem);

/// True when the client has written its lease of `address` down, as far as it has to before it may be ended.
bool HasWrittenLease(const DhcpClientPlan& plan, const Ipv4Bytes& address);

}  // namespace corvane
