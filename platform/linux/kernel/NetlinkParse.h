#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

#include <libmnl/libmnl.h>
#include <linux/rtnetlink.h>

#include "platform/linux/kernel/Netlink.h"

/// From the kernel's bytes to records. Every function takes the bytes as a span and reads nothing outside it,
/// whatever lengths the bytes claim; attributes of an unexpected length count as absent.
namespace corvane {

using ByteSpan = std::span<const std::uint8_t>;

/// Copies a record of plain data from the start of the bytes; false when there are too few.
template <class Record>
[[nodiscard]] bool ReadRecord(ByteSpan bytes, Record& record) {
    if (bytes.size() < sizeof(Record)) return false;
    std::memcpy(&record, bytes.data(), sizeof(Record));
    return true;
}

/// As ReadRecord, but the bytes must be exactly as many as the record's.
template <class Record>
[[nodiscard]] bool ReadExactly(ByteSpan bytes, Record& record) {
    return bytes.size() == sizeof(Record) && ReadRecord(bytes, record);
}

/// The bytes after the first `count`, rounded up to netlink's alignment; none when there are not that many.
[[nodiscard]] inline ByteSpan After(ByteSpan bytes, std::size_t count) {
    const std::size_t offset = MNL_ALIGN(count);
    return offset < bytes.size() ? bytes.subspan(offset) : ByteSpan();
}

/// Calls `take(type, value)` for each attribute (struct nlattr) in order; the type is without its flag bits.
/// Stops at the first one that does not fit into the bytes.
template <std::invocable<std::uint16_t, ByteSpan> Take>
void ForEachAttribute(ByteSpan bytes, Take&& take) {
    while (!bytes.empty()) {
        const auto* attribute = reinterpret_cast<const nlattr*>(bytes.data());
        if (!mnl_attr_ok(attribute, static_cast<int>(bytes.size()))) return;
        const std::size_t length = mnl_attr_get_len(attribute);
        take(mnl_attr_get_type(attribute), bytes.subspan(MNL_ATTR_HDRLEN, length - MNL_ATTR_HDRLEN));
        bytes = After(bytes, length);
    }
}

/// Calls `take(header, payload)` for each message of a datagram. False when the bytes end inside a message.
template <std::invocable<const nlmsghdr&, ByteSpan> Take>
[[nodiscard]] bool ForEachMessage(ByteSpan datagram, Take&& take) {
    while (!datagram.empty()) {
        nlmsghdr header{};
        // mnl_nlmsg_ok compares as int and would take a length of 2^31 or more for a fitting one.
        if (!ReadRecord(datagram, header)) return false;
        if (header.nlmsg_len < MNL_NLMSG_HDRLEN || header.nlmsg_len > datagram.size()) return false;
        take(header, datagram.subspan(MNL_NLMSG_HDRLEN, header.nlmsg_len - MNL_NLMSG_HDRLEN));
        datagram = After(datagram, header.nlmsg_len);
    }
    return true;
}

/// Calls `take(nextHop, attributes)` for each struct rtnexthop of an RTA_MULTIPATH value; stops as
/// ForEachAttribute.
template <std::invocable<const rtnexthop&, ByteSpan> Take>
void ForEachNextHop(ByteSpan bytes, Take&& take) {
    rtnexthop hop{};
    while (ReadRecord(bytes, hop) && hop.rtnh_len >= sizeof(rtnexthop) && hop.rtnh_len <= bytes.size()) {
        take(hop, bytes.subspan(sizeof(rtnexthop), hop.rtnh_len - sizeof(rtnexthop)));
        bytes = After(bytes, hop.rtnh_len);
    }
}

/// Payload of RTM_NEWLINK. False when it is too short or has no name.
[[nodiscard]] bool ParseLink(ByteSpan payload, KernelLink& link);

/// Payload of RTM_NEWADDR. False unless it is an IPv4 address.
[[nodiscard]] bool ParseAddress(ByteSpan payload, KernelAddress& address);

/// Payload of RTM_NEWROUTE: appends one record per next hop. Nothing unless it is an IPv4 route of the main
/// table.
void ParseRoute(ByteSpan payload, std::vector<KernelRoute>& routes);

/// NLMSG_ERROR, or NLMSG_DONE at the end of a dump: the error and the text of the extended acknowledgement.
/// EBADMSG when the payload is too short for the error.
[[nodiscard]] KernelAnswer ParseAnswer(const nlmsghdr& header, ByteSpan payload);

}  // namespace corvane
