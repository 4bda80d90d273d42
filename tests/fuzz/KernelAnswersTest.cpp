#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <linux/if_addr.h>
#include <linux/neighbour.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include "platform/linux/kernel/NetlinkSocket.h"
#include "tests/fuzz/Damage.h"
#include "tests/fuzz/Targets.h"
#include "tests/netns/NetnsSupport.h"
#include "tests/unit/FileSupport.h"

/// The check of the netlink fuzzer over what the kernel of this machine answers. Its seeds are answers of one
/// kernel; others may write more attributes.
namespace corvane::fuzz {
namespace {

using netns::Ip;

constexpr int kRounds = 1000;
constexpr std::uint8_t kFamilies[] = {AF_INET, AF_INET6};

/// Keeps every datagram that passes.
class RecordingTransport : public NetlinkTransport {
 public:
    RecordingTransport(std::unique_ptr<NetlinkTransport> inner, std::vector<std::string>& datagrams)
        : inner_(std::move(inner)), datagrams_(datagrams) {}
    int Send(ByteSpan message) override { return inner_->Send(message); }
    int Receive(std::span<std::uint8_t> buffer, std::size_t& size) override {
        const int error = inner_->Receive(buffer, size);
        if (error == 0)
            datagrams_.emplace_back(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(size));
        return error;
    }

 private:
    std::unique_ptr<NetlinkTransport> inner_;
    std::vector<std::string>& datagrams_;
};

template <class Header>
void DumpInto(NetlinkSocket& socket, std::uint16_t type, const Header& header) {
    NetlinkRequest request(type, NLM_F_DUMP, header);
    EXPECT_EQ(socket
                  .Dump(
                      request, [] {}, [](std::uint16_t, ByteSpan) {})
                  .Words(),
              "");
}

/// Links, addresses, routes and neighbours of both families, and an error with text, as a kernel sent them.
std::vector<std::string> RealDatagrams() {
    const netns::ScopedVeth veth;
    const netns::ScopedLink bridge(netns::NewLinkName("br"), "type bridge");
    veth.BringUp();
    Ip("addr add 10.80.0.1/24 dev " + veth.Name());
    Ip("addr add 10.80.0.2/24 valid_lft 900 preferred_lft 800 dev " + veth.Name());
    Ip("-6 addr add 2001:db8:80::1/64 nodad dev " + veth.Name());
    Ip("route add 10.81.0.0/16 via 10.80.0.9 metric 5 mtu 1400");
    Ip("route add 10.82.0.0/16 nexthop via 10.80.0.8 nexthop via 10.80.0.9 weight 3");
    Ip("-6 route add 2001:db8:81::/48 nexthop via 2001:db8:80::8 nexthop via 2001:db8:80::9");
    Ip("-6 route add 2001:db8:82::/48 dev " + veth.Name() + " expires 500");
    Ip("neigh add 10.80.0.9 lladdr 02:00:00:00:00:09 nud permanent dev " + veth.Name());
    Ip("-6 neigh add 2001:db8:80::9 lladdr 02:00:00:00:00:0a nud permanent dev " + veth.Name());

    std::vector<std::string> datagrams;
    int error = 0;
    std::unique_ptr<NetlinkTransport> transport = OpenNetlinkTransport(error);
    EXPECT_EQ(error, 0);
    NetlinkSocket socket(std::make_unique<RecordingTransport>(std::move(transport), datagrams));
    DumpInto(socket, RTM_GETLINK, ifinfomsg{});
    for (const std::uint8_t family : kFamilies) {
        ifaddrmsg address{};
        address.ifa_family = family;
        DumpInto(socket, RTM_GETADDR, address);
        rtmsg route{};
        route.rtm_family = family;
        DumpInto(socket, RTM_GETROUTE, route);
        ndmsg neighbour{};
        neighbour.ndm_family = family;
        DumpInto(socket, RTM_GETNEIGH, neighbour);
    }
    ifaddrmsg absent{};
    absent.ifa_family = AF_INET;
    absent.ifa_index = veth.Index();
    NetlinkRequest request(RTM_DELADDR, NLM_F_ACK, absent);
    request.Put(IFA_LOCAL, ByteSpan(Ipv4Bytes{192, 0, 2, 1}));
    EXPECT_EQ(socket.Execute(request).text, "ipv4: Address not found");
    return datagrams;
}

TEST(KernelAnswers, EachIsReadWholeCutAndDamaged) {
    GuardedBytes guarded;
    Damager damager(test::TestSeed(20250117), {});
    int read = 0;
    int readDamaged = 0;
    for (const std::string& datagram : RealDatagrams()) {
        read += CheckNetlinkAnswer(guarded.Place(datagram));
        for (std::size_t size = 0; size < datagram.size(); ++size)
            ASSERT_NO_THROW(CheckNetlinkAnswer(guarded.Place(datagram.substr(0, size)))) << size;
        for (int round = 0; round < kRounds; ++round) {
            const std::string damaged = damager.Damage(datagram);
            ASSERT_NO_THROW(readDamaged += CheckNetlinkAnswer(guarded.Place(damaged)))
                << testing::PrintToString(damaged);
        }
    }
    EXPECT_GE(read, 7)
        << "links, and of both families addresses, routes and neighbours; and a refusal in words";
    EXPECT_GT(readDamaged, kRounds);
}

}  // namespace
}  // namespace corvane::fuzz
