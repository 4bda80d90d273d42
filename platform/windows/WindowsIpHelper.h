#pragma once

#include "platform/Platform.h"
#include "platform/windows/AddressContexts.h"

namespace corvane {

/// The IP Helper library (iphlpapi.h), with its structures as published.
class WindowsIpHelper : public IpHelperApi {
 public:
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
    AddressContexts contexts_;
};

}  // namespace corvane
