#include "platform/linux/dhcp/HeldLease.h"

#include <algorithm>
#include <ctime>
#include <utility>

namespace corvane {

std::int64_t BootMilliseconds() {
    timespec time{};
    clock_gettime(CLOCK_BOOTTIME, &time);
    return std::int64_t{time.tv_sec} * 1000 + time.tv_nsec / 1000000;
}

HeldLease::HeldLease(std::uint32_t linkIndex, std::string linkId, LeaseInstaller::Say say)
    : installer_(linkIndex, std::move(linkId), std::move(say)) {}

bool HeldLease::Take(const Lease& lease) {
    if (!installer_.PutOnLink(lease, lease.seconds)) return false;
    obtained_ = BootMilliseconds();
    lease_ = lease;
    installer_.Record(lease);
    absenceRecorded_ = false;
    return true;
}

void HeldLease::PutBack() {
    if (!lease_) return;
    std::uint32_t seconds = kInfiniteLease;
    if (const std::optional<std::int64_t> end = End()) {
        seconds = static_cast<std::uint32_t>(std::max<std::int64_t>((*end - BootMilliseconds()) / 1000, 1));
    }
    installer_.PutOnLink(*lease_, seconds);
}

void HeldLease::AwaitNextHops() const {
    if (lease_) installer_.AwaitNextHops(*lease_);
}

void HeldLease::Drop() {
    installer_.TakeFromLink();
    lease_.reset();
    // A client without a server reports its failure every few seconds.
    if (!absenceRecorded_) installer_.RecordNoLease();
    absenceRecorded_ = true;
}

std::optional<std::int64_t> HeldLease::End() const {
    if (!lease_ || lease_->seconds == kInfiniteLease) return std::nullopt;
    return obtained_ + std::int64_t{lease_->seconds} * 1000;
}

}  // namespace corvane
