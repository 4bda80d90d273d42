#include "tests/unit/NetlinkMessages.h"

#include <linux/netlink.h>

namespace corvane::messages {
namespace {

void Append(Bytes& bytes, const Bytes& more) { bytes.insert(bytes.end(), more.begin(), more.end()); }

void Pad(Bytes& bytes) { bytes.resize((bytes.size() + 3) / 4 * 4); }

}  // namespace

Bytes RawBytes(const void* data, std::size_t size) {
    const auto* start = static_cast<const std::uint8_t*>(data);
    Bytes bytes(start, start + size);
    Pad(bytes);
    return bytes;
}

Bytes Attribute(unsigned type, const Bytes& value) {
    nlattr header{};
    header.nla_len = static_cast<std::uint16_t>(sizeof header + value.size());
    header.nla_type = static_cast<std::uint16_t>(type);
    Bytes bytes = Raw(header);
    Append(bytes, value);
    Pad(bytes);
    return bytes;
}

Bytes Number(std::uint32_t value) { return Raw(value); }

Bytes Text(std::string_view text) {
    Bytes bytes(text.begin(), text.end());
    bytes.push_back(0);
    return bytes;
}

Bytes Join(const std::vector<Bytes>& pieces) {
    Bytes bytes;
    for (const Bytes& piece : pieces) Append(bytes, piece);
    return bytes;
}

Bytes Message(unsigned type, unsigned flags, std::uint32_t sequence, const Bytes& payload) {
    nlmsghdr header{};
    header.nlmsg_len = static_cast<std::uint32_t>(sizeof header + payload.size());
    header.nlmsg_type = static_cast<std::uint16_t>(type);
    header.nlmsg_flags = static_cast<std::uint16_t>(flags);
    header.nlmsg_seq = sequence;
    Bytes bytes = Raw(header);
    Append(bytes, payload);
    Pad(bytes);
    return bytes;
}

}  // namespace corvane::messages
