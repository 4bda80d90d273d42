#include "platform/windows/SystemTables.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "base/Text.h"
#include "platform/windows/SystemError.h"
#include "platform/windows/WideText.h"
#include "platform/windows/Windows.h"

namespace corvane {

namespace {

Ipv4Bytes Bytes(DWORD address) {
    Ipv4Bytes bytes;
    std::memcpy(bytes.data(), &address, sizeof address);
    return bytes;
}

/// A call's table, of any size. `buffer` is empty after any failure.
struct Fetched {
    bool nothingToRead = false;
    DWORD code = NO_ERROR;
    std::vector<ULONG_PTR> buffer;  ///< Aligned as the structures need it.
};

/// Asks for the size, then for the table, again when it has grown in between.
template <class Call>
Fetched Fetch(const Call& call) {
    Fetched fetched;
    ULONG size = 0;
    if (call(nullptr, &size) != ERROR_INSUFFICIENT_BUFFER) {
        fetched.nothingToRead = true;
        return fetched;
    }
    do {
        fetched.buffer.resize((size + sizeof(ULONG_PTR) - 1) / sizeof(ULONG_PTR));
        fetched.code = call(fetched.buffer.data(), &size);
    } while (fetched.code == ERROR_INSUFFICIENT_BUFFER && size > fetched.buffer.size() * sizeof(ULONG_PTR));
    if (fetched.code != NO_ERROR) fetched.buffer.clear();
    return fetched;
}

/// The rows of a table, each made by `make` from the structure's own.
template <class Row, class Table, class Call, class Make>
TableRead<Row> ReadTable(const Call& call, const Make& make) {
    using Outcome = typename TableRead<Row>::Outcome;
    const Fetched fetched = Fetch(call);
    if (fetched.nothingToRead) return {Outcome::kNothingToRead, Win32Error::kSuccess, {}};
    if (fetched.code != NO_ERROR) return {Outcome::kFailed, FromSystem(fetched.code), {}};
    TableRead<Row> read{Outcome::kRows, Win32Error::kSuccess, {}};
    make(*reinterpret_cast<const Table*>(fetched.buffer.data()), read.rows);
    return read;
}

Ipv4Bytes Quad(const char* text) { return Bytes(inet_addr(text)); }

}  // namespace

TableRead<InterfaceEntry> InterfaceTable() {
    return ReadTable<InterfaceEntry, IP_INTERFACE_INFO>(
        [](void* buffer, ULONG* size) {
            return ::GetInterfaceInfo(static_cast<IP_INTERFACE_INFO*>(buffer), size);
        },
        [](const IP_INTERFACE_INFO& table, std::vector<InterfaceEntry>& rows) {
            for (LONG i = 0; i < table.NumAdapters; ++i) {
                const IP_ADAPTER_INDEX_MAP& entry = table.Adapter[i];
                const std::wstring name(entry.Name, MAX_ADAPTER_NAME);
                rows.push_back({entry.Index, Without(Narrow(name), '\0')});
            }
        });
}

Win32Error InterfaceRow(std::uint32_t index, IfRow& row) {
    MIB_IFROW system{};
    system.dwIndex = index;
    const DWORD code = ::GetIfEntry(&system);
    if (code != NO_ERROR) return FromSystem(code);
    row.index = system.dwIndex;
    std::copy_n(system.bPhysAddr, row.physAddr.size(), row.physAddr.begin());
    row.speed = system.dwSpeed;
    row.adminStatus = system.dwAdminStatus;
    row.operStatus = static_cast<std::uint32_t>(system.dwOperStatus);
    row.inOctets = system.dwInOctets;
    row.outOctets = system.dwOutOctets;
    return Win32Error::kSuccess;
}

TableRead<IpAddrRow> AddressTable() {
    return ReadTable<IpAddrRow, MIB_IPADDRTABLE>(
        [](void* buffer, ULONG* size) {
            return ::GetIpAddrTable(static_cast<MIB_IPADDRTABLE*>(buffer), size, TRUE);
        },
        [](const MIB_IPADDRTABLE& table, std::vector<IpAddrRow>& rows) {
            for (DWORD i = 0; i < table.dwNumEntries; ++i) {
                const MIB_IPADDRROW& row = table.table[i];
                rows.push_back({Bytes(row.dwAddr), Bytes(row.dwMask), row.dwIndex, row.unused1});
            }
        });
}

TableRead<IpForwardRow> RouteTable() {
    return ReadTable<IpForwardRow, MIB_IPFORWARDTABLE>(
        [](void* buffer, ULONG* size) {
            return ::GetIpForwardTable(static_cast<MIB_IPFORWARDTABLE*>(buffer), size, TRUE);
        },
        [](const MIB_IPFORWARDTABLE& table, std::vector<IpForwardRow>& rows) {
            for (DWORD i = 0; i < table.dwNumEntries; ++i) {
                const MIB_IPFORWARDROW& row = table.table[i];
                rows.push_back({.destination = Bytes(row.dwForwardDest),
                                .mask = Bytes(row.dwForwardMask),
                                .nextHop = Bytes(row.dwForwardNextHop),
                                .ifIndex = row.dwForwardIfIndex,
                                .type = static_cast<std::uint32_t>(row.dwForwardType),
                                .proto = static_cast<std::uint32_t>(row.dwForwardProto),
                                .metric1 = row.dwForwardMetric1});
            }
        });
}

std::map<std::pair<std::uint32_t, Ipv4Bytes>, std::uint32_t> AddressContextTable() {
    std::map<std::pair<std::uint32_t, Ipv4Bytes>, std::uint32_t> contexts;
    const Fetched fetched = Fetch([](void* buffer, ULONG* size) {
        const DWORD code = GetAdaptersInfo(static_cast<IP_ADAPTER_INFO*>(buffer), size);
        return code == ERROR_BUFFER_OVERFLOW ? static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER) : code;
    });
    if (fetched.buffer.empty()) return contexts;
    const auto* adapter = reinterpret_cast<const IP_ADAPTER_INFO*>(fetched.buffer.data());
    for (; adapter != nullptr; adapter = adapter->Next) {
        for (const IP_ADDR_STRING* entry = &adapter->IpAddressList; entry != nullptr; entry = entry->Next) {
            contexts[{adapter->Index, Quad(entry->IpAddress.String)}] = entry->Context;
        }
    }
    return contexts;
}

}  // namespace corvane
