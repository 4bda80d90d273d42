#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

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
    int renewSignal = 0;             ///< 0: it is ended and run anew, and then asks for its former address.
    int releaseSignal = 0;           ///< 0: it is ended, then `release` is run to its end.
    bool staysAfterRelease = false;  ///< It runs on, idle; `renewSignal` makes it ask anew.
    std::vector<std::string> release;
    std::string configurationPath;  ///< Empty, or a file to be made with the next text before `run`.
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

}  // namespace corvane
