#pragma once

#include <cstddef>
#include <string>

#include "ui/logic/AddressList.h"

/// Adding, removing and ordering DNS servers: their entry panel and their list, whose order, first
/// row first, is the order of preference.
namespace corvane {

/// The entry panel for a DNS server as the rules see it.
class DnsPanelView {
 public:
    virtual ~DnsPanelView() = default;
    /// Shows the panel and hides those for IP addresses and gateways. Escape closes it.
    virtual void ShowPanel() = 0;
    /// Makes "Add DNS" the button that Enter presses.
    virtual void MakeDefault() = 0;
    [[nodiscard]] virtual IPAddressEntry& DNSAddress() = 0;
    virtual void FocusDNSAddress() = 0;
};

/// Live, every change is written into the registry at once, as the value "NameServer".
class DnsEditing {
 public:
    /// Both must outlive this.
    DnsEditing(DnsPanelView& panel, AddressListView& listDns) : panel_(panel), list_(listDns) {}

    /// The menu item and "+" button that add, a digit typed in the list: opens the panel empty.
    void Open();

    /// "Add DNS": adds the server as the last one. One that is there already is refused in a box
    /// when live, else silently. An empty box adds nothing.
    void Add(const EditingTarget& target);

    /// The menu item and "-" button that remove, Delete in the list: asks, and removes the selected row's
    /// server.
    void Remove(const EditingTarget& target);

    /// The button that moves up, Alt+Up in the list: the selected server changes places with the one above it
    /// and stays selected. Nothing for the first one.
    void MoveUp(const EditingTarget& target);
    /// The button that moves down, Alt+Down in the list: the same with the one below.
    void MoveDown(const EditingTarget& target);

 private:
    void AddServer(const EditingTarget& target);
    void Swap(std::size_t row, std::size_t other, const EditingTarget& target);
    /// Writes the rows in their order. The list keeps its state when that fails, which has then been shown.
    void Write(std::size_t adapter);

    DnsPanelView& panel_;
    AddressListView& list_;
};

}  // namespace corvane
