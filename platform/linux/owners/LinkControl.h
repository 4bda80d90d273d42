#pragma once

#include <memory>
#include <string>
#include <vector>

#include "base/Refusal.h"
#include "platform/linux/links/Machine.h"

namespace corvane {

/// Enables and disables links: what the verbs of the Network Connections folder do. Programs that do so to
/// one link at once wait for each other. One that is ended in the midst loses nothing: the next disabling and
/// enabling go on from what it kept.
class LinkControl {
 public:
    explicit LinkControl(std::shared_ptr<Machine> machine) : machine_(std::move(machine)) {}

    /// Stops the link's DHCP client, takes the link down and its IPv4 addresses away. What the kernel forgets
    /// of a link that is down is kept for Enable first; a link of which it cannot be kept stays as it is.
    /// Refused with all that did not come out as asked for; the link may then still be up.
    Refusal Disable(const std::string& linkName);

    /// Sets the stored override, or else the original address; takes the link up; gives it what its TCP/IP
    /// key says (DHCP, or the static addresses and default routes), what Disable kept, and its DNS servers;
    /// reads everything back and announces the addresses to the neighbours. An override that cannot be had is
    /// replaced by the original. Refused with all that did not come out as asked for; the link is then up as
    /// far as the kernel let it.
    Refusal Enable(const std::string& linkName);

 private:
    std::shared_ptr<Machine> machine_;
};

}  // namespace corvane
