#include "tcpip/DhcpOperations.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "inventory/NicInfo.h"
#include "mac/RestartConnection.h"
#include "platform/IphlpApi.h"
#include "platform/Seat.h"
#include "platform/Text.h"
#include "tcpip/InterfaceKey.h"

namespace corvane {

namespace {

/// What was written takes effect when the connection starts anew. Shows the new settings whatever the answer.
void OfferRestart(const std::string& name, const std::string& title, const std::string& question) {
    if (UserSaysYes(title, question) && RestartConnection(name, false, false)) {
        ShowInformation("Network Connection Restarted", "Network connection restarted successfully.");
    }
    CurrentSeat().Refresh();
}

/// The words and the call that differ between giving back and renewing.
struct LeaseCommand {
    std::string title;
    std::string verb;
    Win32Error (*carryOut)(std::uint32_t ifIndex);
    std::string apiName;
    std::string operation;
    std::string doneTitle;
};

void Run(const LeaseCommand& command, std::size_t adapter) {
    const std::uint32_t ifIndex = Nics.at(adapter).IfIndex;
    if (!UserSaysYes(command.title,
                     "Are you sure to " + command.verb + " IP address obtained from DHCP server ?" + kCrLf +
                         kCrLf +
                         "NOTE: Orvella Corvane will not respond till the operation is complete or a time "
                         "out has occured during this operation.")) {
        return;
    }
    if (const Win32Error code = command.carryOut(ifIndex); !Ok(code)) {
        IphlpApiError(code, command.apiName);
        return;
    }
    ShowInformation(command.doneTitle,
                    "DHCP IP " + command.operation + " operation was successfully performed.");
    CurrentSeat().Refresh();
}

std::uint32_t MetricFrom(const std::string& text) {
    static constexpr double kLargest = std::numeric_limits<std::uint32_t>::max();
    return static_cast<std::uint32_t>(std::clamp(std::nearbyint(NumericValue(text)), 0.0, kLargest));
}

}  // namespace

void SwitchDhcp(std::size_t adapter, bool enable) {
    // A copy: the restart may read the adapters anew.
    const std::string name = Nics.at(adapter).Name;
    const auto write = [&](const InterfaceKey& key) { key.SwitchDhcpAndReset(enable); };
    if (!RunOnKey(InterfaceKey(adapter), write, ReportWrite)) return;
    OfferRestart(name, "Restart Network Connection ?",
                 "You must restart network connection to apply changes. Do you want to enable and disable "
                 "network connection now ?");
}

void ReleaseLease(std::size_t adapter) {
    Run({"Release IP ?", "RELEASE", ReleaseByIndex, "IPReleaseAddress", "Release",
         "IP Released Successfully"},
        adapter);
}

void RenewLease(std::size_t adapter) {
    Run({"Renew IP ?", "RENEW", RenewByIndex, "IPRenewAddress", "Renew", "IP Renewed Successfully"}, adapter);
}

void SetInterfaceMetric(std::size_t adapter) {
    static constexpr char kValue[] = "InterfaceMetric";
    // A copy: the restart may read the adapters anew.
    const std::string name = Nics.at(adapter).Name;
    const std::string answer =
        CurrentSeat()
            .AskText("Enter Interface Metric",
                     "Enter New Interface Metric For Network Connection '" + name + "' Below:" + kCrLf +
                         kCrLf + "NOTE: For Automatic Metric, Enter Value 0 (Zero)",
                     "")
            .value_or("");
    if (answer.empty()) return;
    const auto write = [&](const InterfaceKey& key) {
        if (answer == "0") {
            key.Delete(kValue);
        } else {
            key.WriteDword(kValue, MetricFrom(answer));
        }
    };
    if (!RunOnKey(InterfaceKey(adapter), write, ReportWrite)) return;
    OfferRestart(name, "Restart Network Connection Now ?",
                 std::string("You must restart the selected network connection in order to apply Interface "
                             "Metric changes") +
                     kCrLf + kCrLf + "Are you sure to restart network connection '" + name + "' now ?" +
                     kCrLf + kCrLf +
                     "WARNING : There will be loss of network connectivity while the network connection "
                     "restarts.");
}

}  // namespace corvane
