#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <unordered_map>

#include "platform/Platform.h"
#include "platform/linux/links/Machine.h"

namespace corvane {

/// The IP Helper role over rtnetlink, ethtool and the DHCP supervisors.
class IpHelper : public IpHelperApi {
 public:
    explicit IpHelper(std::shared_ptr<Machine> machine) : machine_(std::move(machine)) {}

    /// One dump; each of its rows also answers the next GetIfEntry of its link.
    TableRead<InterfaceEntry> GetInterfaceInfo() override;
    Win32Error GetIfEntry(std::uint32_t index, IfRow& row) override;
    TableRead<IpAddrRow> GetIpAddrTable() override;
    TableRead<IpForwardRow> GetIpForwardTable() override;
    Win32Error AddIPAddress(const Ipv4Bytes& address, const Ipv4Bytes& mask, std::uint32_t ifIndex,
                            std::uint32_t& nteContext) override;
    Win32Error DeleteIPAddress(std::uint32_t nteContext) override;
    Win32Error CreateIpForwardEntry(const IpForwardRow& row) override;
    Win32Error DeleteIpForwardEntry(const IpForwardRow& row) override;
    Win32Error IpReleaseAddress(const InterfaceEntry& entry) override;
    Win32Error IpRenewAddress(const InterfaceEntry& entry) override;
    std::string SystemText(Win32Error code) override;

 private:
    struct AddressKey {
        std::uint32_t index;
        Ipv4Bytes address;
        std::uint8_t prefix;
        auto operator<=>(const AddressKey&) const = default;
    };
    std::uint16_t ContextOf(const KernelAddress& address);

    /// Adds an address and notes in the store that it came at run time, both or none. What cannot be noted is
    /// refused with the store's code; a store that is read-only notes it for this program only.
    Win32Error AddForRunTime(const KernelAddress& address);
    void ForgetRunTime(const KernelAddress& address);

    std::shared_ptr<Machine> machine_;
    std::unordered_map<std::uint32_t, KernelLink> fresh_;  ///< Of the last dump, not yet handed out.
    std::map<AddressKey, std::uint16_t> contexts_;         ///< Handed out by this program.
    std::map<std::uint16_t, AddressKey> addresses_;
    std::uint16_t lastContext_ = 0;
};

}  // namespace corvane
