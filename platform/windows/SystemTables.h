#pragma once

#include <cstdint>
#include <map>
#include <utility>

#include "platform/Platform.h"

/// The tables of the IP Helper library as they are, in the portable rows.
namespace corvane {

TableRead<InterfaceEntry> InterfaceTable();

/// The row of one interface; `row` is as it was when there is none.
Win32Error InterfaceRow(std::uint32_t index, IfRow& row);

/// `nteContext` is the row's own 16-bit word.
TableRead<IpAddrRow> AddressTable();

TableRead<IpForwardRow> RouteTable();

/// What DeleteIPAddress knows each address by: interface index and address to context. Empty when the system
/// does not tell.
std::map<std::pair<std::uint32_t, Ipv4Bytes>, std::uint32_t> AddressContextTable();

}  // namespace corvane
