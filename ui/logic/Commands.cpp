#include "ui/logic/Commands.h"

namespace corvane {

CommandStates StatesFor(const NicInfo* nic) {
    CommandStates states;
    if (nic == nullptr) return states;
    states.changeMac = true;
    states.enable = true;
    states.dhcp = nic->TcpipBound;
    states.metric = nic->TcpipBound;
    states.addresses = nic->TcpipBound;
    states.preset = true;
    states.release = nic->TcpipBound && nic->DhcpEnabled && nic->IfIndex != 0;
    states.renew = states.release;
    return states;
}

std::string StateIcon(const NicInfo& nic) {
    if (nic.IfIndex == 0) return "link_disabled";
    return nic.Status.ends_with(", Operational") || nic.Status.ends_with(", Connected") ? "link_up"
                                                                                        : "link_down";
}

}  // namespace corvane
