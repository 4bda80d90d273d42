#include "platform/windows/WindowsIpHelper.h"

#include <algorithm>
#include <cstring>

#include "platform/windows/SystemError.h"
#include "platform/windows/SystemMessage.h"
#include "platform/windows/SystemTables.h"
#include "platform/windows/WideText.h"
#include "platform/windows/Windows.h"

namespace corvane {

namespace {

DWORD Dword(const Ipv4Bytes& bytes) {
    DWORD address = 0;
    std::memcpy(&address, bytes.data(), sizeof address);
    return address;
}

MIB_IPFORWARDROW SystemRow(const IpForwardRow& row) {
    MIB_IPFORWARDROW system{};
    system.dwForwardDest = Dword(row.destination);
    system.dwForwardMask = Dword(row.mask);
    system.dwForwardNextHop = Dword(row.nextHop);
    system.dwForwardIfIndex = row.ifIndex;
    system.dwForwardType = row.type;
    system.dwForwardProto = row.proto;
    system.dwForwardMetric1 = row.metric1;
    return system;
}

/// The metric of an interface for IPv4; 0 when the system does not tell.
DWORD InterfaceMetric(DWORD index) {
    MIB_IPINTERFACE_TABLE* table = nullptr;
    if (GetIpInterfaceTable(AF_INET, &table) != NO_ERROR) return 0;
    const auto* const end = table->Table + table->NumEntries;
    const auto* const row =
        std::find_if(static_cast<const MIB_IPINTERFACE_ROW*>(table->Table), end,
                     [index](const MIB_IPINTERFACE_ROW& each) { return each.InterfaceIndex == index; });
    const DWORD metric = row == end ? 0 : row->Metric;
    FreeMibTable(table);
    return metric;
}

IP_ADAPTER_INDEX_MAP SystemEntry(const InterfaceEntry& entry) {
    IP_ADAPTER_INDEX_MAP system{};
    system.Index = entry.index;
    const std::wstring name = Wide(entry.name);
    std::copy_n(name.begin(), std::min<std::size_t>(name.size(), MAX_ADAPTER_NAME - 1), system.Name);
    return system;
}

}  // namespace

TableRead<InterfaceEntry> WindowsIpHelper::GetInterfaceInfo() { return InterfaceTable(); }

Win32Error WindowsIpHelper::GetIfEntry(std::uint32_t index, IfRow& row) { return InterfaceRow(index, row); }

TableRead<IpAddrRow> WindowsIpHelper::GetIpAddrTable() {
    TableRead<IpAddrRow> read = AddressTable();
    if (!read.rows.empty()) contexts_.Renew(AddressContextTable());
    for (IpAddrRow& row : read.rows) {
        row.nteContext = contexts_.WordFor({row.index, row.address}, row.nteContext);
    }
    return read;
}

TableRead<IpForwardRow> WindowsIpHelper::GetIpForwardTable() { return RouteTable(); }

Win32Error WindowsIpHelper::AddIPAddress(const Ipv4Bytes& address, const Ipv4Bytes& mask,
                                         std::uint32_t ifIndex, std::uint32_t& nteContext) {
    ULONG context = 0;
    ULONG instance = 0;
    const DWORD code = ::AddIPAddress(Dword(address), Dword(mask), ifIndex, &context, &instance);
    if (code != NO_ERROR) return FromSystem(code);
    contexts_.Made(context);
    nteContext = context;
    return Win32Error::kSuccess;
}

Win32Error WindowsIpHelper::DeleteIPAddress(std::uint32_t nteContext) {
    return FromSystem(::DeleteIPAddress(contexts_.ContextOf(nteContext)));
}

Win32Error WindowsIpHelper::CreateIpForwardEntry(const IpForwardRow& row) {
    MIB_IPFORWARDROW system = SystemRow(row);
    const DWORD code = ::CreateIpForwardEntry(&system);
    if (code != ERROR_BAD_ARGUMENTS) return FromSystem(code);
    // Since Windows Vista the metric of a route includes that of its interface, and a smaller one is refused
    // (CreateIpForwardEntry's description). The smallest there is comes nearest to what was asked for.
    const DWORD smallest = InterfaceMetric(system.dwForwardIfIndex);
    if (system.dwForwardMetric1 >= smallest) return FromSystem(code);
    system.dwForwardMetric1 = smallest;
    return FromSystem(::CreateIpForwardEntry(&system));
}

Win32Error WindowsIpHelper::DeleteIpForwardEntry(const IpForwardRow& row) {
    MIB_IPFORWARDROW system = SystemRow(row);
    return FromSystem(::DeleteIpForwardEntry(&system));
}

Win32Error WindowsIpHelper::IpReleaseAddress(const InterfaceEntry& entry) {
    IP_ADAPTER_INDEX_MAP system = SystemEntry(entry);
    return FromSystem(::IpReleaseAddress(&system));
}

Win32Error WindowsIpHelper::IpRenewAddress(const InterfaceEntry& entry) {
    IP_ADAPTER_INDEX_MAP system = SystemEntry(entry);
    return FromSystem(::IpRenewAddress(&system));
}

std::string WindowsIpHelper::SystemText(Win32Error code) { return SystemMessage(Number(code)); }

}  // namespace corvane
