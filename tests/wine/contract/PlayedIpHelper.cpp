#include "tests/wine/contract/PlayedIpHelper.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <new>

#include <gtest/gtest.h>

#include "base/Text.h"

namespace corvane::contract {

namespace {

// What Windows has, whatever the compiler's headers say.
static_assert(sizeof(IP_ADAPTER_INDEX_MAP) == 260 && sizeof(MIB_IPFORWARDROW) == 56);

/// A 32-bit count, then the rows.
template <class Row>
std::vector<std::uint8_t> TableOf(const std::vector<Row>& rows) {
    const auto count = static_cast<std::uint32_t>(rows.size());
    std::vector<std::uint8_t> table(sizeof count + rows.size() * sizeof(Row));
    std::memcpy(table.data(), &count, sizeof count);
    if (count > 0) std::memcpy(table.data() + sizeof count, rows.data(), rows.size() * sizeof(Row));
    return table;
}

}  // namespace

DWORD PlayedIpHelper::Answer(const std::string& function) {
    std::deque<DWORD>& ordered = answers[function];
    if (ordered.empty()) return NO_ERROR;
    const DWORD answer = ordered.front();
    ordered.pop_front();
    return answer;
}

DWORD PlayedIpHelper::Serve(const std::string& function, bool sorted, void* buffer, ULONG* size,
                            const Bytes& table) {
    reads.push_back(function + (sorted ? " sorted: " : ": ") +
                    (buffer == nullptr ? "size" : std::to_string(*size) + " bytes"));
    EXPECT_TRUE(buffer != nullptr || *size == 0);
    if (const DWORD answer = Answer(function); answer != NO_ERROR) return answer;
    if (buffer != nullptr && *size >= table.size()) {
        std::memcpy(buffer, table.data(), table.size());
        return NO_ERROR;
    }
    *size = static_cast<ULONG>(table.size());
    if (buffer == nullptr && afterSize) afterSize();
    // One of the calls has a number of its own for this.
    return function == "GetAdaptersInfo" ? ERROR_BUFFER_OVERFLOW : ERROR_INSUFFICIENT_BUFFER;
}

PlayedIpHelper::Bytes PlayedIpHelper::InterfaceTable() const { return TableOf(interfaces); }
PlayedIpHelper::Bytes PlayedIpHelper::RouteTable() const { return TableOf(routes); }

PlayedIpHelper::Bytes PlayedIpHelper::AddressTable() const {
    struct Row {
        Ipv4Bytes address;
        std::uint32_t index;
        Ipv4Bytes mask;
        std::uint32_t broadcast;
        std::uint32_t longestPacket;
        std::uint16_t word;
        std::uint16_t type;
    };
    static_assert(sizeof(Row) == 24);
    std::vector<Row> table;
    for (const Address& each : addresses)
        table.push_back({each.address, each.index, {255, 255, 255, 0}, 1, 65535, each.word, 1});
    return TableOf(table);
}

PlayedIpHelper::Bytes PlayedIpHelper::AdaptersTable(ULONG_PTR place) const {
    std::vector<ULONG> adapters;
    for (const Address& each : addresses)
        if (std::count(adapters.begin(), adapters.end(), each.index) == 0) adapters.push_back(each.index);
    // First the adapters, each with room for one address, then the others, linked by where they will lie.
    std::vector<IP_ADAPTER_INFO> table(adapters.size());
    std::vector<IP_ADDR_STRING> more;
    more.reserve(addresses.size());
    const ULONG_PTR moreAt = place + table.size() * sizeof(IP_ADAPTER_INFO);
    for (std::size_t i = 0; i < table.size(); ++i) {
        table[i].Index = adapters[i];
        if (i + 1 < table.size())
            table[i].Next = reinterpret_cast<IP_ADAPTER_INFO*>(place + (i + 1) * sizeof(IP_ADAPTER_INFO));
        std::strcpy(table[i].IpAddressList.IpAddress.String, "0.0.0.0");
        IP_ADDR_STRING* entry = nullptr;
        for (const Address& each : addresses) {
            if (each.index != adapters[i] || each.context == 0) continue;
            if (entry == nullptr) {
                entry = &table[i].IpAddressList;
            } else {
                entry->Next = reinterpret_cast<IP_ADDR_STRING*>(moreAt + more.size() * sizeof *entry);
                entry = &more.emplace_back();
            }
            std::strcpy(entry->IpAddress.String, DottedQuad(each.address.data()).c_str());
            entry->Context = each.context;
        }
    }
    Bytes bytes(table.size() * sizeof(IP_ADAPTER_INFO) + more.size() * sizeof(IP_ADDR_STRING));
    if (!table.empty()) std::memcpy(bytes.data(), table.data(), table.size() * sizeof(IP_ADAPTER_INFO));
    if (!more.empty())
        std::memcpy(bytes.data() + (moreAt - place), more.data(), more.size() * sizeof(IP_ADDR_STRING));
    return bytes;
}

DWORD PlayedIpHelper::MetricsTable(ADDRESS_FAMILY family, MIB_IPINTERFACE_TABLE** table) {
    EXPECT_EQ(family, AF_INET);
    if (const DWORD answer = Answer("GetIpInterfaceTable"); answer != NO_ERROR) return answer;
    ++metricTables;
    const std::size_t size = sizeof **table + metrics.size() * sizeof(*table)->Table[0];
    *table = static_cast<MIB_IPINTERFACE_TABLE*>(operator new(size));
    std::memset(static_cast<void*>(*table), 0, size);
    for (const auto& [index, metric] : metrics) {
        MIB_IPINTERFACE_ROW& row = (*table)->Table[(*table)->NumEntries++];
        row.Family = family;
        row.InterfaceIndex = index;
        row.Metric = metric;
    }
    return NO_ERROR;
}

}  // namespace corvane::contract
