#pragma once

#include <cstddef>

#include "ui/logic/VendorEntry.h"

/// Commands that change a connection's address or its state. Each works on a record of Nics, asks and reports
/// through the seat, and refreshes the window at its end where something changed.
namespace corvane {

/// The panel in which an address is changed, as its commands see it.
class ChangeMacView {
 public:
    virtual ~ChangeMacView() = default;
    /// State of "Automatically Restart Network Connection To Apply Changes".
    [[nodiscard]] virtual bool RestartTicked() const = 0;
    virtual void TickRestart(bool ticked) = 0;
    virtual void ShowPanel(bool show) = 0;
};

/// The button and menu item that change the address: opens the panel empty, with automatic restart ticked,
/// and puts the focus in box 0.
void OpenChangeMac(MacBoxesView& boxes, VendorBoxView& vendorList, ChangeMacView& panel);

/// "Change Now !": pads the boxes, refuses a network bridge, asks, writes, hides the panel,
/// restarts the connection when the panel says so, reports, refreshes. Six empty boxes mean the original
/// address.
void ChangeNow(std::size_t adapter, MacBoxesView& boxes, ChangeMacView& panel);

/// "Original MAC": empties the boxes and the vendor text and does as ChangeNow.
void OriginalMac(std::size_t adapter, MacBoxesView& boxes, VendorBoxView& vendorList, ChangeMacView& panel);

/// The button and menu item "Enable" or "Disable": enables or disables the connection.
void EnableOrDisable(std::size_t adapter, bool enable);

}  // namespace corvane
