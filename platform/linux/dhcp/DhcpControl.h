#pragma once

#include <cstdint>
#include <string>

#include "base/Win32Error.h"

/// Control of the DHCP supervisors (program nicx-dhcp, one process per link) from the other programs, over a
/// socket per link in the run-time folder that only root may use.
namespace corvane {

/// How a request ended: a number, and words for people, which a success may have too.
struct [[nodiscard]] DhcpAnswer {
    Win32Error code = Win32Error::kSuccess;
    std::string words;
};

/// Path of the control socket of a link of this network namespace. The name holds the namespace's cookie
/// (SO_NETNS_COOKIE) and the link's index, so that equal indexes of two namespaces do not meet.
std::string DhcpSocketPath(std::uint32_t linkIndex);

/// True when a supervisor answers for the link. False without the right to ask.
bool DhcpRunning(std::uint32_t linkIndex);

/// Starts nicx-dhcp (beside this program) for the link, in a session of its own, and returns when it takes
/// requests (the lease may come later). kSuccess also when one is running. kFileNotFound: no supervisor
/// program or no DHCP client is installed; kAccessDenied; kInvalidParameter: there is no such link;
/// kSemTimeout; kGenFailure: it ended at once. Each failure has its words.
DhcpAnswer StartDhcp(std::uint32_t linkIndex, const std::string& linkName, const std::string& linkId);

/// Ends the supervisor and its client: the lease is given back if the link is up, address and routes are
/// taken away. Returns when both processes are gone. kSuccess also when none runs. kAccessDenied;
/// kSemTimeout: it did not end in 20 seconds and was killed.
DhcpAnswer StopDhcp(std::uint32_t linkIndex);

/// Gives the lease back, and no new one is asked for until RenewDhcp or a new start; the client stays, idle.
/// kNotSupported when no supervisor runs; kAccessDenied without the right; kSemTimeout.
Win32Error ReleaseDhcp(std::uint32_t linkIndex);

/// Renews the lease, or asks for a new one, and waits for the outcome, at most 15 seconds. kSemTimeout when
/// no server answered or the link has no carrier; kNotSupported when no supervisor runs; kAccessDenied
/// without the right.
Win32Error RenewDhcp(std::uint32_t linkIndex);

}  // namespace corvane
