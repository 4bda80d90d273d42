#include <iterator>
#include <optional>
#include <set>

#include <gtest/gtest.h>

#include "platform/linux/dhcp/DhcpState.h"

namespace corvane {
namespace {

constexpr DhcpState kStates[] = {DhcpState::kKeeping,  DhcpState::kRenewing, DhcpState::kReleasing,
                                 DhcpState::kReleased, DhcpState::kEnding,   DhcpState::kEnded};
constexpr DhcpEvent kEvents[] = {DhcpEvent::kRenewAsked,  DhcpEvent::kRenewalOver, DhcpEvent::kReleaseAsked,
                                 DhcpEvent::kReleaseOver, DhcpEvent::kEndAsked,    DhcpEvent::kEndAskedBare,
                                 DhcpEvent::kLinkGone,    DhcpEvent::kClientGone};

/// The states from which `event` leads on, and all of them to `to`.
void ExpectFrom(DhcpEvent event, DhcpState to, const std::set<DhcpState>& froms) {
    for (const DhcpState state : kStates) {
        EXPECT_EQ(DhcpStateAfter(state, event), froms.contains(state) ? std::optional(to) : std::nullopt)
            << static_cast<int>(state) << ' ' << static_cast<int>(event);
    }
}

TEST(DhcpState, ARenewalIsBegunFromRestOnly) {
    ExpectFrom(DhcpEvent::kRenewAsked, DhcpState::kRenewing, {DhcpState::kKeeping, DhcpState::kReleased});
}

TEST(DhcpState, ARenewalLeadsBackToKeeping) {
    ExpectFrom(DhcpEvent::kRenewalOver, DhcpState::kKeeping, {DhcpState::kRenewing});
}

TEST(DhcpState, AReleaseWaitsForTheRenewalBeforeIt) {
    ExpectFrom(DhcpEvent::kReleaseAsked, DhcpState::kReleasing, {DhcpState::kKeeping, DhcpState::kReleased});
}

TEST(DhcpState, AfterAReleaseNoLeaseIsWanted) {
    ExpectFrom(DhcpEvent::kReleaseOver, DhcpState::kReleased, {DhcpState::kReleasing});
}

TEST(DhcpState, AnEndGivesTheLeaseBackFirstAndWaitsForNoRenewal) {
    ExpectFrom(DhcpEvent::kEndAsked, DhcpState::kReleasing,
               {DhcpState::kKeeping, DhcpState::kRenewing, DhcpState::kReleased});
}

TEST(DhcpState, AnEndWithoutLeaseEndsTheClientButLetsAReleaseFinish) {
    ExpectFrom(DhcpEvent::kEndAskedBare, DhcpState::kEnding,
               {DhcpState::kKeeping, DhcpState::kRenewing, DhcpState::kReleased});
}

TEST(DhcpState, ALinkThatIsGoneEndsEverything) {
    ExpectFrom(DhcpEvent::kLinkGone, DhcpState::kEnding,
               {DhcpState::kKeeping, DhcpState::kRenewing, DhcpState::kReleasing, DhcpState::kReleased});
}

TEST(DhcpState, TheEndIsReachedWhenTheClientIsGone) {
    ExpectFrom(DhcpEvent::kClientGone, DhcpState::kEnded, {DhcpState::kEnding});
}

TEST(DhcpState, EveryStateIsReachedAndEveryOneButTheLastIsLeft) {
    std::set<DhcpState> reached = {DhcpState::kKeeping};
    for (const DhcpState state : kStates) {
        bool left = false;
        for (const DhcpEvent event : kEvents) {
            const std::optional<DhcpState> next = DhcpStateAfter(state, event);
            if (next) reached.insert(*next);
            left = left || next;
        }
        EXPECT_EQ(left, state != DhcpState::kEnded) << static_cast<int>(state);
    }
    EXPECT_EQ(reached, std::set<DhcpState>(std::begin(kStates), std::end(kStates)));
}

}  // namespace
}  // namespace corvane
