#pragma once

#include <cstdint>
#include <vector>

#include "base/Address.h"

namespace corvane {

/// Sends one ARP announcement (RFC 5227, section 2.3: sender and target address the same) for each address
/// out of the link, so that neighbours learn its hardware address. Does nothing without the right to
/// (CAP_NET_RAW): neighbours then learn it later.
void AnnounceAddresses(std::uint32_t linkIndex, const MacBytes& mac, const std::vector<Ipv4Bytes>& addresses);

}  // namespace corvane
