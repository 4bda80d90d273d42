#include "tcpip/DhcpOperations.h"

#include <cstdint>

#include "inventory/NicInfo.h"
#include "platform/IphlpApi.h"
#include "platform/RegistryValues.h"
#include "platform/Seat.h"
#include "tcpip/InterfaceKey.h"
#include "tcpip/Metric.h"
#include "tcpip/OfferRestart.h"

namespace corvane {

namespace {

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

}  // namespace

void SwitchDhcp(std::size_t adapter, bool enable) {
    const auto write = [&](const InterfaceKey& key) { key.SwitchDhcpAndReset(enable); };
    if (!RunOnKey(InterfaceKey(adapter), write, ReportWrite)) return;
    OfferRestart(adapter, "Restart Network Connection ?",
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
    const std::string answer =
        CurrentSeat()
            .AskText("Enter Interface Metric",
                     "Enter New Interface Metric For Network Connection '" + Nics.at(adapter).Name +
                         "' Below:" + kCrLf + kCrLf + "NOTE: For Automatic Metric, Enter Value 0 (Zero)",
                     "")
            .value_or("");
    if (answer.empty()) return;
    const auto write = [&](const InterfaceKey& key) {
        if (answer == "0") {
            key.Delete(kInterfaceMetricValue);
        } else {
            key.WriteDword(kInterfaceMetricValue, MetricFrom(answer));
        }
    };
    if (!RunOnKey(InterfaceKey(adapter), write, ReportWrite)) return;
    OfferRestartTo("apply Interface Metric changes", adapter);
}

}  // namespace corvane
