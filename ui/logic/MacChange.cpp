#include "ui/logic/MacChange.h"

#include <cstdint>
#include <string>

#include "inventory/NicInfo.h"
#include "mac/RestartConnection.h"
#include "mac/SetConnectionState.h"
#include "mac/WriteNetworkAddress.h"
#include "platform/Platform.h"
#include "platform/Seat.h"
#include "ui/logic/MacEntry.h"

namespace corvane {

namespace {

constexpr int kLastOctet = 5;

void EmptyBoxes(MacBoxesView& boxes, VendorBoxView& vendorList) {
    for (int box = 0; box <= kLastOctet; ++box) boxes.SetText(box, "");
    vendorList.SetVendorText("");
}

/// Pads the boxes unless all of them are empty. The address as the question names it.
std::string PadAndShow(MacBoxesView& boxes) {
    if (JoinMacText(boxes, "").empty()) return "ORIGINAL MAC ADDRESS ASSIGNED BY MANUFACTURER";
    NormaliseOctets(boxes, 0, kLastOctet);
    return JoinMacText(boxes, "-");
}

void RefuseBridge() {
    CurrentSeat().ShowBox(
        "Cannot Change MAC Address Of Network Bridge",
        "MAC Address of windows Network Bridge cannot be changed. Network Bridge will use original MAC "
        "address (assigned by the manufacturer) of the first network adapter added in the bridge, with the "
        "first octet of MAC address as value 0x02",
        BoxIcon::kExclamation, BoxButtons::kOk);
}

bool UserWantsChange(const std::string& name, const std::string& address, bool restart) {
    const std::string note =
        restart ? "NOTE: You have SELECTED option to automatically restart network connection to apply "
                  "changes. In the process of enabling and disabling network connection, you will lose "
                  "connectivity for few seconds. If network connection is disabled, it will be enabled "
                  "automatically."
                : "NOTE: You have NOT SELECTED option to automatically restart network connection to apply "
                  "changes. You will have to manually apply changes by enabling and disabling the network "
                  "connection once, or by restarting your computer.";
    return UserSaysYes("Change MAC Address ?", "Are you sure to change MAC address of network connection '" +
                                                   name + "' to '" + address + "' ?" + kCrLf + kCrLf + note);
}

/// The new address is stored: makes the connection take it, or tells what is left to do.
void ApplyChange(const std::string& name, bool restart) {
    const std::string manual = "You must manually disable and enable the network adapter '" + name +
                               "', or reboot your system to apply the changes.";
    if (!restart) {
        ShowInformation("MAC Address Changes Saved Successfully",
                        "MAC Address changes were saved successfully. " + manual);
    } else if (RestartConnection(name, false, false)) {
        ShowInformation("MAC Address Changed Successfully", "MAC Address was changed successfully.");
    } else {
        CurrentSeat().ShowBox("Could Not Restart Network Connection",
                              "Network Connection '" + name +
                                  "' you selected is taking too much time to restart and probably the "
                                  "restart operation has failed. But the MAC Address changes were saved "
                                  "successfully." +
                                  kCrLf + kCrLf + manual,
                              BoxIcon::kExclamation, BoxButtons::kOk);
    }
}

}  // namespace

void OpenChangeMac(MacBoxesView& boxes, VendorBoxView& vendorList, ChangeMacView& panel) {
    EmptyBoxes(boxes, vendorList);
    panel.TickRestart(true);
    boxes.EnableChangeNow(false);
    panel.ShowPanel(true);
    boxes.Focus(0);
}

void ChangeNow(std::size_t adapter, MacBoxesView& boxes, ChangeMacView& panel) {
    const std::string address = PadAndShow(boxes);
    if (IsNetworkBridge(Nics.at(adapter))) {
        RefuseBridge();
        return;
    }
    // A copy: the restart may read the adapters anew.
    const std::string name = Nics.at(adapter).Name;
    const bool restart = panel.RestartTicked();
    if (!UserWantsChange(name, address, restart)) return;
    if (!WriteNetworkAddress(adapter, JoinMacText(boxes, ""))) return;
    panel.ShowPanel(false);
    ApplyChange(name, restart);
    CurrentSeat().Refresh();
}

void OriginalMac(std::size_t adapter, MacBoxesView& boxes, VendorBoxView& vendorList, ChangeMacView& panel) {
    EmptyBoxes(boxes, vendorList);
    ChangeNow(adapter, boxes, panel);
}

void EnableOrDisable(std::size_t adapter, bool enable) {
    static constexpr std::uint32_t kWaitMilliseconds = 5000;
    // A copy: the folder dialog may read the adapters anew.
    const std::string name = Nics.at(adapter).Name;
    Seat& seat = CurrentSeat();
    BeginRowProgress(enable ? "Enabling ..." : "Disabling ...");
    if (SetConnectionState(name, enable, false) != StateResult::kDone) {
        seat.RowProgress(3, enable ? "Enabling Attempt Failed" : "Disabling Attempt Failed");
        const std::string state = enable ? "enabled" : "disabled";
        seat.ShowBox(enable ? "Connection Cound Not Be Enabled" : "Connection Cound Not Be Disabled",
                     "Network connection could not be " + state +
                         " or probably is taking some time. Please try again.",
                     BoxIcon::kCritical, BoxButtons::kOk);
        return;
    }
    CurrentPlatform().clock->Sleep(kWaitMilliseconds);
    if (enable) {
        ShowInformation("Connection Enabled", "Network connection enabled successfully.");
    } else {
        ShowInformation("Connection Disabled", "Network connection disabled successfully.");
    }
    seat.Refresh();
}

}  // namespace corvane
