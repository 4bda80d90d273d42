#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "ui/logic/AddressList.h"

/// Adding and removing IP addresses: their entry panel and their list.
namespace corvane {

/// The entry panel for an address as the rules see it. The entry controls raise their own Change events.
class IpPanelView {
 public:
    virtual ~IpPanelView() = default;
    /// Shows the panel and hides those for gateways and DNS servers. Escape closes it.
    virtual void ShowPanel() = 0;
    /// Makes "Add IP" the button that Enter presses.
    virtual void MakeDefault() = 0;
    [[nodiscard]] virtual IPAddressEntry& IPAddress() = 0;
    [[nodiscard]] virtual IPAddressEntry& SubnetMask() = 0;
    virtual void FocusIPAddress() = 0;
    /// The box of the prefix length. When the text is another one than before, IpEditing::CidrChanged runs
    /// before SetCidr returns.
    [[nodiscard]] virtual std::string Cidr() const = 0;
    virtual void SetCidr(const std::string& text) = 0;
    /// "Persistant IP Address".
    [[nodiscard]] virtual bool PersistentTicked() const = 0;
    virtual void Beep() = 0;
};

class IpEditing {
 public:
    /// Both must outlive this.
    IpEditing(IpPanelView& panel, AddressListView& listIp) : panel_(panel), list_(listIp) {}

    /// The menu item and "+" button that add, a digit typed in the list: opens the panel empty.
    void Open();

    /// "Add IP". Live: adds the address to the running stack, and to the registry when it is to
    /// be kept; refreshes when it is done, and leaves the boxes as they are after a refusal. Else: adds a row
    /// or gives the address's row another mask. An empty address counts as 0.0.0.0.
    void Add(const EditingTarget& target);

    /// The menu item and "-" button that remove, Delete in the list: asks, and removes the selected row's
    /// address.
    void Remove(const EditingTarget& target);

    // Mask and prefix length follow each other; which one leads is told by where the focus was last.
    void MaskFocused() { cidrLocked_ = true; }
    void CidrFocused() { cidrLocked_ = false; }
    /// The mask changed: shows its prefix length.
    void MaskChanged();
    /// The prefix length changed: shows its mask. What is no number counts as 0; a number outside 0 to 32
    /// beeps and is emptied.
    void CidrChanged();

 private:
    void Clear();

    IpPanelView& panel_;
    AddressListView& list_;
    bool cidrLocked_ = false;  ///< The mask leads: the prefix length follows it.
    bool clearing_ = false;    ///< The boxes are emptied: neither follows the other.
};

/// The number of one bits at the start of a mask. Octets after the first one below 255 are not looked at:
/// 255.0.255.0 gives 8. Nothing when that octet is no start of a mask.
std::optional<int> PrefixOfMask(const std::array<std::uint8_t, kQuadBoxes>& mask);

}  // namespace corvane
