#pragma once

#include <string>

#include "ui/logic/AddressList.h"

/// Adding and removing gateways: their entry panel and their list.
namespace corvane {

/// The entry panel for a gateway as the rules see it.
class GatewayPanelView {
 public:
    virtual ~GatewayPanelView() = default;
    /// Shows the panel and hides those for IP addresses and DNS servers. Escape closes it.
    virtual void ShowPanel() = 0;
    /// Makes "Add Gateway" the button that Enter presses.
    virtual void MakeDefault() = 0;
    [[nodiscard]] virtual IPAddressEntry& Gateway() = 0;
    virtual void FocusGateway() = 0;
    /// The metric's box; not enabled it has the colour of a button's face.
    [[nodiscard]] virtual std::string Metric() const = 0;
    virtual void SetMetric(const std::string& text) = 0;
    virtual void EnableMetric(bool enable) = 0;
    virtual void FocusMetric() = 0;
    /// "Auto Metric".
    [[nodiscard]] virtual bool AutoMetricTicked() const = 0;
    virtual void TickAutoMetric(bool ticked) = 0;
    /// "Persistant Gateway".
    [[nodiscard]] virtual bool PersistentTicked() const = 0;
};

class GatewayEditing {
 public:
    /// Both must outlive this.
    GatewayEditing(GatewayPanelView& panel, AddressListView& listGateway)
        : panel_(panel), list_(listGateway) {}

    /// The menu item and "+" button that add, a digit typed in the list: opens the panel empty.
    void Open();

    /// "Auto Metric" was clicked. Ticked: the metric is the selected connection's interface metric and cannot
    /// be typed; not ticked: it is empty and has the focus.
    void AutoMetricClicked(const EditingTarget& target);

    /// "Add Gateway". Live: adds the default route to the running stack, and to the registry
    /// when it is to be kept; refreshes when it is done, and leaves the boxes as they are after a refusal.
    /// Else: adds a row or gives the gateway's row another metric. An empty gateway counts as 0.0.0.0.
    void Add(const EditingTarget& target);

    /// The menu item and "-" button that remove, Delete in the list: asks, and removes the selected row's
    /// gateway.
    void Remove(const EditingTarget& target);

 private:
    void Done(const EditingTarget& target);

    GatewayPanelView& panel_;
    AddressListView& list_;
};

}  // namespace corvane
