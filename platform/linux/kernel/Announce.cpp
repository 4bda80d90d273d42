#include "platform/linux/kernel/Announce.h"

#include <algorithm>
#include <array>
#include <cstring>

#include <arpa/inet.h>
#include <linux/if_ether.h>
#include <linux/if_packet.h>
#include <sys/socket.h>
#include <unistd.h>

namespace corvane {

namespace {

/// An Ethernet ARP packet for IPv4 (RFC 826) without the frame header, which the packet socket adds.
std::array<std::uint8_t, 28> Announcement(const MacBytes& mac, const Ipv4Bytes& address) {
    std::array<std::uint8_t, 28> packet{0, 1, 0x08, 0x00, 6, 4, 0, 1};  // Ethernet, IPv4, lengths, request
    std::copy(mac.begin(), mac.end(), packet.begin() + 8);
    std::copy(address.begin(), address.end(), packet.begin() + 14);
    std::copy(address.begin(), address.end(), packet.begin() + 24);
    return packet;
}

}  // namespace

void AnnounceAddresses(std::uint32_t linkIndex, const MacBytes& mac,
                       const std::vector<Ipv4Bytes>& addresses) {
    if (addresses.empty()) return;
    const int descriptor = socket(AF_PACKET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (descriptor < 0) return;
    sockaddr_ll everybody{};
    everybody.sll_family = AF_PACKET;
    everybody.sll_protocol = htons(ETH_P_ARP);
    everybody.sll_ifindex = static_cast<int>(linkIndex);
    everybody.sll_halen = ETH_ALEN;
    std::memset(everybody.sll_addr, 0xFF, ETH_ALEN);
    for (const Ipv4Bytes& address : addresses) {
        const auto packet = Announcement(mac, address);
        sendto(descriptor, packet.data(), packet.size(), 0, reinterpret_cast<const sockaddr*>(&everybody),
               sizeof everybody);
    }
    close(descriptor);
}

}  // namespace corvane
