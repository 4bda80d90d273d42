#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

/// Netlink messages put together by hand, without the code under test.
namespace corvane::messages {

using Bytes = std::vector<std::uint8_t>;

/// Bytes of plain data, padded to four.
Bytes RawBytes(const void* data, std::size_t size);

/// The bytes of a record of plain data, padded to four.
template <class Record>
Bytes Raw(const Record& record) {
    return RawBytes(&record, sizeof record);
}

/// An attribute with this value, padded.
Bytes Attribute(unsigned type, const Bytes& value);

Bytes Number(std::uint32_t value);

/// Text with its NUL.
Bytes Text(std::string_view text);

/// Several pieces one after the other.
Bytes Join(const std::vector<Bytes>& pieces);

/// A whole message, padded.
Bytes Message(unsigned type, unsigned flags, std::uint32_t sequence, const Bytes& payload);

}  // namespace corvane::messages
