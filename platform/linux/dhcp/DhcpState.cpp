#include "platform/linux/dhcp/DhcpState.h"

#include <algorithm>
#include <array>

namespace corvane {

namespace {

struct Transition {
    DhcpState from;
    DhcpEvent event;
    DhcpState to;
};

constexpr std::array kTransitions = {
    Transition{DhcpState::kKeeping, DhcpEvent::kRenewAsked, DhcpState::kRenewing},
    Transition{DhcpState::kKeeping, DhcpEvent::kReleaseAsked, DhcpState::kReleasing},
    Transition{DhcpState::kKeeping, DhcpEvent::kEndAsked, DhcpState::kReleasing},
    Transition{DhcpState::kKeeping, DhcpEvent::kEndAskedBare, DhcpState::kEnding},
    Transition{DhcpState::kKeeping, DhcpEvent::kLinkGone, DhcpState::kEnding},

    Transition{DhcpState::kRenewing, DhcpEvent::kRenewalOver, DhcpState::kKeeping},
    Transition{DhcpState::kRenewing, DhcpEvent::kEndAsked, DhcpState::kReleasing},
    Transition{DhcpState::kRenewing, DhcpEvent::kEndAskedBare, DhcpState::kEnding},
    Transition{DhcpState::kRenewing, DhcpEvent::kLinkGone, DhcpState::kEnding},

    Transition{DhcpState::kReleasing, DhcpEvent::kReleaseOver, DhcpState::kReleased},
    Transition{DhcpState::kReleasing, DhcpEvent::kLinkGone, DhcpState::kEnding},

    Transition{DhcpState::kReleased, DhcpEvent::kRenewAsked, DhcpState::kRenewing},
    Transition{DhcpState::kReleased, DhcpEvent::kReleaseAsked, DhcpState::kReleasing},
    Transition{DhcpState::kReleased, DhcpEvent::kEndAsked, DhcpState::kReleasing},
    Transition{DhcpState::kReleased, DhcpEvent::kEndAskedBare, DhcpState::kEnding},
    Transition{DhcpState::kReleased, DhcpEvent::kLinkGone, DhcpState::kEnding},

    Transition{DhcpState::kEnding, DhcpEvent::kClientGone, DhcpState::kEnded},
};

}  // namespace

std::optional<DhcpState> DhcpStateAfter(DhcpState state, DhcpEvent event) {
    const auto found = std::find_if(kTransitions.begin(), kTransitions.end(), [&](const Transition& one) {
        return one.from == state && one.event == event;
    });
    if (found == kTransitions.end()) return std::nullopt;
    return found->to;
}

}  // namespace corvane
