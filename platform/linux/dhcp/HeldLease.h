#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/linux/dhcp/DhcpInstall.h"
#include "platform/linux/dhcp/DhcpLease.h"

namespace corvane {

/// Milliseconds of a time that goes on while the machine sleeps, as leases do.
std::int64_t BootMilliseconds();

/// The lease that a supervisor holds for its link, if any, on the link and in the registry, and its end.
class HeldLease {
 public:
    HeldLease(std::uint32_t linkIndex, std::string linkId, LeaseInstaller::Say say);

    /// See LeaseInstaller::Adopt; what it takes over is on the link, but no lease that is held.
    void Adopt() { installer_.Adopt(); }

    [[nodiscard]] const std::optional<Lease>& Get() const { return lease_; }

    /// Puts a lease that was obtained or renewed on the link, and records it. False when the link does not
    /// take it: then nothing is recorded, and the former lease is to be dropped.
    bool Take(const Lease& lease);

    /// Puts the lease, with what is left of its lifetime, on the link once more.
    void PutBack();

    /// Waits for the way to the lease's server, see LeaseInstaller::AwaitNextHops. Nothing without a lease.
    void AwaitNextHops() const;

    /// Takes everything from the link, and records that there is no lease.
    void Drop();

    /// When its lifetime is over (BootMilliseconds); nothing for none, and for a lease without end.
    [[nodiscard]] std::optional<std::int64_t> End() const;

 private:
    LeaseInstaller installer_;
    std::optional<Lease> lease_;
    std::int64_t obtained_ = 0;
    bool absenceRecorded_ = false;  ///< The registry says that there is none.
};

}  // namespace corvane
