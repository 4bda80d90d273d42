#pragma once

#include <string>

/// The hook side of nicx-dhcp: the client starts it for every event, and it hands its environment to the
/// supervisor.
namespace corvane {

/// Environment variable that makes nicx-dhcp a hook: the number of an inherited SOCK_SEQPACKET socket.
inline constexpr char kHookVariable[] = "NICX_DHCP_HOOK";

/// The number that the supervisor gives this socket in its clients. udhcpc uses descriptors 3 and 4 for its
/// signal pipe, whatever they were before (busybox, networking/udhcp/signalpipe.c), so it is well above.
inline constexpr int kHookDescriptor = 64;

/// Sends the report of this call and waits until the supervisor has dealt with it, at most 30 seconds: udhcpc
/// renews from, and gives back, an address that must be on the link by then. The process's exit code: 0 when
/// it was dealt with, 1 when a lease cannot be used, the descriptor is no such socket, or the supervisor is
/// gone.
int RunHook(const std::string& descriptorText, const std::string& event, const char* const* environment);

}  // namespace corvane
