#include "ui/logic/IpEditing.h"

#include <bit>
#include <cmath>

#include "base/Address.h"
#include "base/Text.h"
#include "inventory/NicInfo.h"
#include "platform/Seat.h"
#include "presets/Advice.h"

namespace corvane {

namespace {

/// What goes into the registry as it was typed need not be what the running stack took.
void AdviseStored(const EnteredQuad& address, const EnteredQuad& mask) {
    std::vector<std::string> sentences;
    AdviseAddress("IP address", address.text, sentences);
    AdviseMask(mask.text, sentences);
    WarnOf(sentences);
}

/// The system's text for a refused parameter does not say which one it is.
void ExplainRefusal(const EnteredQuad& address, const EnteredQuad& mask) {
    if (const Refusal refusal = HostAddressRefusal(address.octets)) {
        CurrentSeat().Warn("IP address '" + address.text + "' cannot be used: " + refusal.Words());
    } else if (PrefixFromMask(mask.octets).value_or(0) == 0) {
        CurrentSeat().Warn("Subnet mask '" + mask.text +
                           "' cannot be used: a mask is one bits followed by zero bits, such as "
                           "255.255.255.0");
    }
}

}  // namespace

std::optional<int> PrefixOfMask(const std::array<std::uint8_t, kQuadBoxes>& mask) {
    static constexpr int kOctetBits = 8;
    int prefix = 0;
    for (const std::uint8_t octet : mask) {
        if (octet == 255) {
            prefix += kOctetBits;
            continue;
        }
        const int ones = std::countl_one(octet);
        const bool onesThenZeros = std::popcount(octet) == ones;
        return onesThenZeros ? std::optional(prefix + ones) : std::nullopt;
    }
    return prefix;
}

void IpEditing::Clear() {
    clearing_ = true;
    panel_.IPAddress().SetText("");
    panel_.SetCidr("");
    panel_.SubnetMask().SetText("");
    clearing_ = false;
}

void IpEditing::Open() {
    Clear();
    panel_.ShowPanel();
    panel_.MakeDefault();
    panel_.FocusIPAddress();
}

void IpEditing::Add(const EditingTarget& target) {
    IPAddressEntry& box = panel_.IPAddress();
    if (box.Text().empty()) box.SetText("0.0.0.0");
    const EnteredQuad address = Entered(box);
    const EnteredQuad mask = Entered(panel_.SubnetMask());
    if (!target.live) {
        FindOrAddRow(list_, kIpTitle, address.text, mask.text);
        Clear();
    } else if (target.adapter) {
        if (AddIPAddress(*target.adapter, address, mask, panel_.PersistentTicked())) {
            if (panel_.PersistentTicked()) AdviseStored(address, mask);
            Clear();
            CurrentSeat().Refresh();
        } else {
            ExplainRefusal(address, mask);
        }
    }
    panel_.FocusIPAddress();
    panel_.MakeDefault();
}

void IpEditing::Remove(const EditingTarget& target) {
    const std::optional<std::size_t> selected = list_.SelectedRow();
    if (!selected) return;
    // A copy: the refresh at the end replaces the rows.
    const DetailsRow row = list_.Rows().at(*selected);
    if (!UserSaysYes("Remove Selected IP Address ?",
                     "Are you sure to remove '" + row.text + "' IP address ?")) {
        return;
    }
    if (!target.live) {
        RemoveRow(list_, kIpTitle, *selected);
    } else if (target.adapter) {
        RemoveIPAddress(*target.adapter, row.text, Nics.at(*target.adapter).IpRowFlags.at(row.tag));
    }
}

void IpEditing::MaskChanged() {
    if (clearing_ || !cidrLocked_) return;
    if (const std::optional<int> prefix = PrefixOfMask(panel_.SubnetMask().Octets()))
        panel_.SetCidr(std::to_string(*prefix));
}

void IpEditing::CidrChanged() {
    static constexpr double kAboveLongest = 33;
    if (clearing_ || cidrLocked_) return;
    const double value = NumericValue(panel_.Cidr());
    if (!(value > -1 && value < kAboveLongest)) {
        panel_.Beep();
        panel_.SetCidr("");
        return;
    }
    const Ipv4Bytes mask = MaskFromPrefix(static_cast<std::uint8_t>(std::trunc(value < 0 ? 0 : value)));
    IPAddressEntry& box = panel_.SubnetMask();
    box.SetText("");
    for (int octet = 0; octet < kQuadBoxes; ++octet)
        box.SetNumber(octet, mask[static_cast<std::size_t>(octet)]);
}

}  // namespace corvane
