#include "tcpip/OfferRestart.h"

#include "inventory/NicInfo.h"
#include "mac/RestartConnection.h"
#include "platform/Seat.h"

namespace corvane {

void OfferRestart(std::size_t adapter, const std::string& title, const std::string& question) {
    // A copy: the restart may read the adapters anew.
    const std::string name = Nics.at(adapter).Name;
    if (UserSaysYes(title, question) && RestartConnection(name, false, false)) {
        ShowInformation("Network Connection Restarted", "Network connection restarted successfully.");
    }
    CurrentSeat().Refresh();
}

void OfferRestartTo(const std::string& purpose, std::size_t adapter) {
    OfferRestart(adapter, "Restart Network Connection Now ?",
                 "You must restart the selected network connection in order to " + purpose + kCrLf + kCrLf +
                     "Are you sure to restart network connection '" + Nics.at(adapter).Name + "' now ?" +
                     kCrLf + kCrLf +
                     "WARNING : There will be loss of network connectivity while the network connection "
                     "restarts.");
}

}  // namespace corvane
