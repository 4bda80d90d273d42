#pragma once

/// Exit codes of nicx-dhcp.
namespace corvane {

enum DhcpExit : int {
    kDhcpExitDone = 0,      ///< A supervisor runs for the link; in the foreground: it was ended on request.
    kDhcpExitFailed = 1,    ///< The reason is on standard error.
    kDhcpExitUsage = 2,     ///< The arguments make no sense.
    kDhcpExitNoRight = 3,   ///< Not root.
    kDhcpExitNoClient = 4,  ///< No DHCP client is installed.
    kDhcpExitNoLink = 5,    ///< There is no such link.
};

}  // namespace corvane
