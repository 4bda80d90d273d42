#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/Platform.h"
#include "tests/wine/contract/ImportedFunction.h"

namespace corvane::contract {

/// Plays the system behind the IP Helper functions of this program, with the tables that a test describes,
/// laid out as published. What the calls that change something are handed is kept; nothing is changed.
class PlayedIpHelper {
 public:
    // ---- the system's tables
    struct Address {
        ULONG index = 0;
        Ipv4Bytes address{};
        USHORT word = 0;    ///< The 16-bit word in the row of the address table.
        ULONG context = 0;  ///< What the adapters' table tells; 0 leaves the address out of it.
    };
    std::vector<IP_ADAPTER_INDEX_MAP> interfaces;
    std::vector<Address> addresses;
    std::vector<MIB_IPFORWARDROW> routes;
    std::map<ULONG, MIB_IFROW> rows;  ///< By index; a zero row for one that is not here.
    std::map<ULONG, ULONG> metrics;   ///< IPv4 metrics by interface index.

    // ---- answers
    /// Numbers that a function answers instead of doing its work, by its name, the first one first; after
    /// them it does its work.
    std::map<std::string, std::deque<DWORD>> answers;
    std::function<void()> afterSize;  ///< Run once the size of a table has been told.
    ULONG contextOfAdded = 0;         ///< What AddIPAddress tells.

    // ---- what was handed over
    struct Added {
        IPAddr address;
        IPMask mask;
        DWORD index;

        bool operator==(const Added&) const = default;
    };
    std::vector<Added> added;
    std::vector<ULONG> deleted;  ///< Contexts.
    std::vector<MIB_IPFORWARDROW> routesMade;
    std::vector<MIB_IPFORWARDROW> routesDeleted;
    std::vector<IP_ADAPTER_INDEX_MAP> released;
    std::vector<IP_ADAPTER_INDEX_MAP> renewed;

    /// Calls for tables in order: "GetIpAddrTable sorted: size", "GetIpAddrTable sorted: 28 bytes", ...
    std::vector<std::string> reads;
    int metricTables = 0;  ///< Handed out and not yet freed.

 private:
    using Bytes = std::vector<std::uint8_t>;

    /// What was ordered for a function, or else success.
    DWORD Answer(const std::string& function);
    /// Notes what a function was handed, and answers.
    template <class Handed>
    DWORD Note(std::vector<Handed>& notes, const Handed& handed, const std::string& function) {
        notes.push_back(handed);
        return Answer(function);
    }
    /// A call for a table, with or without a buffer.
    DWORD Serve(const std::string& function, bool sorted, void* buffer, ULONG* size, const Bytes& table);
    [[nodiscard]] Bytes InterfaceTable() const;
    [[nodiscard]] Bytes AddressTable() const;
    [[nodiscard]] Bytes RouteTable() const;
    /// The adapters' table for a buffer at that place.
    [[nodiscard]] Bytes AdaptersTable(ULONG_PTR place) const;
    DWORD MetricsTable(ADDRESS_FAMILY family, MIB_IPINTERFACE_TABLE** table);

    ImportedFunction<"GetInterfaceInfo", decltype(::GetInterfaceInfo)> getInterfaceInfo_{
        [this](IP_INTERFACE_INFO* table, ULONG* size) {
            return Serve("GetInterfaceInfo", false, table, size, InterfaceTable());
        }};
    ImportedFunction<"GetIpAddrTable", decltype(::GetIpAddrTable)> getIpAddrTable_{
        [this](MIB_IPADDRTABLE* table, ULONG* size, BOOL sorted) {
            return Serve("GetIpAddrTable", sorted != 0, table, size, AddressTable());
        }};
    ImportedFunction<"GetAdaptersInfo", decltype(::GetAdaptersInfo)> getAdaptersInfo_{
        [this](IP_ADAPTER_INFO* table, ULONG* size) {
            const ULONG_PTR place = reinterpret_cast<ULONG_PTR>(table);
            return Serve("GetAdaptersInfo", false, table, size, AdaptersTable(place));
        }};
    ImportedFunction<"GetIpForwardTable", decltype(::GetIpForwardTable)> getIpForwardTable_{
        [this](MIB_IPFORWARDTABLE* table, ULONG* size, BOOL sorted) {
            return Serve("GetIpForwardTable", sorted != 0, table, size, RouteTable());
        }};
    ImportedFunction<"GetIfEntry", decltype(::GetIfEntry)> getIfEntry_{[this](MIB_IFROW* row) {
        if (const auto known = rows.find(row->dwIndex); known != rows.end()) *row = known->second;
        return Answer("GetIfEntry");
    }};
    ImportedFunction<"AddIPAddress", decltype(::AddIPAddress)> addIPAddress_{
        [this](IPAddr address, IPMask mask, DWORD index, ULONG* context, ULONG* instance) {
            *context = contextOfAdded;
            *instance = contextOfAdded + 1;
            return Note(added, {address, mask, index}, "AddIPAddress");
        }};
    ImportedFunction<"DeleteIPAddress", decltype(::DeleteIPAddress)> deleteIPAddress_{
        [this](ULONG context) { return Note(deleted, context, "DeleteIPAddress"); }};
    ImportedFunction<"CreateIpForwardEntry", decltype(::CreateIpForwardEntry)> createIpForwardEntry_{
        [this](MIB_IPFORWARDROW* row) { return Note(routesMade, *row, "CreateIpForwardEntry"); }};
    ImportedFunction<"DeleteIpForwardEntry", decltype(::DeleteIpForwardEntry)> deleteIpForwardEntry_{
        [this](MIB_IPFORWARDROW* row) { return Note(routesDeleted, *row, "DeleteIpForwardEntry"); }};
    ImportedFunction<"IpReleaseAddress", decltype(::IpReleaseAddress)> ipReleaseAddress_{
        [this](IP_ADAPTER_INDEX_MAP* entry) { return Note(released, *entry, "IpReleaseAddress"); }};
    ImportedFunction<"IpRenewAddress", decltype(::IpRenewAddress)> ipRenewAddress_{
        [this](IP_ADAPTER_INDEX_MAP* entry) { return Note(renewed, *entry, "IpRenewAddress"); }};
    ImportedFunction<"GetIpInterfaceTable", decltype(::GetIpInterfaceTable)> getIpInterfaceTable_{
        [this](ADDRESS_FAMILY family, MIB_IPINTERFACE_TABLE** table) { return MetricsTable(family, table); }};
    ImportedFunction<"FreeMibTable", decltype(::FreeMibTable)> freeMibTable_{[this](void* table) {
        --metricTables;
        operator delete(table);
    }};
};

}  // namespace corvane::contract
