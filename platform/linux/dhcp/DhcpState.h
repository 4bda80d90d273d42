#pragma once

#include <optional>

/// What a supervisor is at, and what brings it from one thing to the next. No system call is made here.
namespace corvane {

enum class DhcpState {
    kKeeping,    ///< A lease is to be had: a client keeps it or asks for one.
    kRenewing,   ///< As kKeeping, and controllers wait for the outcome of a renewal.
    kReleasing,  ///< The lease is being given back.
    kReleased,   ///< No lease is to be had before a renewal is asked for.
    kEnding,     ///< The client is being ended, for good.
    kEnded,      ///< Nothing runs any more.
};

enum class DhcpEvent {
    kRenewAsked,
    kRenewalOver,  ///< With a lease or without.
    kReleaseAsked,
    kReleaseOver,   ///< The lease is given back, or nobody is left who could give it back.
    kEndAsked,      ///< While there is a lease that can be given back first.
    kEndAskedBare,  ///< While there is none.
    kLinkGone,
    kClientGone,
};

/// The state that `event` leads to from `state`. Nothing where the event changes nothing: what was asked for
/// then waits until it does.
std::optional<DhcpState> DhcpStateAfter(DhcpState state, DhcpEvent event);

}  // namespace corvane
