#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <random>
#include <span>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <linux/if_addr.h>
#include <linux/neighbour.h>
#include <linux/rtnetlink.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include "platform/linux/kernel/NetlinkParse.h"
#include "platform/linux/kernel/NetlinkRestore.h"
#include "platform/linux/kernel/NetlinkSocket.h"
#include "tests/netns/NetnsSupport.h"

namespace corvane {
namespace {

using Bytes = std::vector<std::uint8_t>;
using netns::Ip;

constexpr std::uint32_t kSeed = 20250117;
constexpr int kRounds = 1000;
constexpr std::uint8_t kFamilies[] = {AF_INET, AF_INET6};

/// Memory whose last byte lies before a page that must not be touched, so that reading past the end is a
/// crash even in code that no sanitizer watches.
class GuardedBytes {
 public:
    GuardedBytes() : page_(static_cast<std::size_t>(sysconf(_SC_PAGESIZE))) {
        void* memory =
            mmap(nullptr, kRoom + page_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED || mprotect(static_cast<char*>(memory) + kRoom, page_, PROT_NONE) != 0)
            std::abort();
        memory_ = static_cast<std::uint8_t*>(memory);
    }
    ~GuardedBytes() { munmap(memory_, kRoom + page_); }
    GuardedBytes(const GuardedBytes&) = delete;
    GuardedBytes& operator=(const GuardedBytes&) = delete;

    /// A copy of the bytes at the very end; valid until the next one.
    ByteSpan Place(const Bytes& bytes) {
        std::uint8_t* start = memory_ + kRoom - bytes.size();
        if (!bytes.empty()) std::memcpy(start, bytes.data(), bytes.size());
        return {start, bytes.size()};
    }

    static constexpr std::size_t kRoom = 65536;

 private:
    std::size_t page_;
    std::uint8_t* memory_ = nullptr;
};

/// Keeps every datagram that passes.
class RecordingTransport : public NetlinkTransport {
 public:
    RecordingTransport(std::unique_ptr<NetlinkTransport> inner, std::vector<Bytes>& datagrams)
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
    std::vector<Bytes>& datagrams_;
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
std::vector<Bytes> RealDatagrams() {
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

    std::vector<Bytes> datagrams;
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

/// What came out of the parse functions, so that none of them is idle.
struct Yield {
    std::size_t messages = 0;
    std::size_t links = 0;
    std::size_t addresses = 0;
    std::size_t routes = 0;
    std::size_t saved = 0;
    std::size_t texts = 0;
};

void ParseEverything(ByteSpan payload, const nlmsghdr& header, Yield& yield) {
    KernelLink link;
    KernelAddress address;
    std::vector<KernelRoute> routes;
    yield.links += ParseLink(payload, link);
    yield.addresses += ParseAddress(payload, address);
    ParseRoute(payload, routes);
    yield.routes += routes.size();
    yield.texts += !ParseAnswer(header, payload).text.empty();
    for (std::uint32_t index = 1; index <= 64; ++index) {
        for (const std::uint8_t family : kFamilies) {
            if (const auto route = SavedRoute(payload, family, index)) yield.saved += 1U + HasGateway(*route);
            yield.saved += SavedNeighbour(payload, family, index).has_value();
        }
        yield.saved += SavedAddress(payload, index).has_value();
    }
}

void ParseDatagram(ByteSpan datagram, Yield& yield) {
    (void)ForEachMessage(datagram, [&](const nlmsghdr& header, ByteSpan payload) {
        ++yield.messages;
        ParseEverything(payload, header, yield);
    });
}

class Mutator {
 public:
    explicit Mutator(std::uint32_t seed) : random_(seed) {}

    std::size_t Below(std::size_t limit) { return limit == 0 ? 0 : random_() % limit; }

    Bytes Mutate(Bytes bytes) {
        for (std::size_t count = 1 + Below(4); count > 0; --count) Once(bytes);
        return bytes;
    }

 private:
    void Once(Bytes& bytes) {
        if (bytes.empty()) return;
        const std::size_t at = Below(bytes.size());
        switch (Below(6)) {
            case 0:
                bytes.resize(at);
                break;
            case 1:
                bytes[at] = static_cast<std::uint8_t>(random_());
                break;
            case 2:
                bytes[at] = static_cast<std::uint8_t>(bytes[at] ^ (1U << Below(8)));
                break;
            case 3:
                // Where lengths lie.
                SetLength(bytes, at / 4 * 4);
                break;
            case 4:
                bytes.erase(bytes.begin() + static_cast<std::ptrdiff_t>(at));
                break;
            default:
                bytes.insert(bytes.begin() + static_cast<std::ptrdiff_t>(at),
                             static_cast<std::uint8_t>(random_()));
                break;
        }
    }

    void SetLength(Bytes& bytes, std::size_t at) {
        static constexpr std::uint16_t kLengths[] = {0, 1,  3,      4,      5,      7,     8,
                                                     9, 16, 0x7FFF, 0x8000, 0xFFFC, 0xFFFF};
        if (at + 2 > bytes.size()) return;
        const std::uint16_t length = kLengths[Below(std::size(kLengths))];
        std::memcpy(&bytes[at], &length, sizeof length);
    }

    std::mt19937 random_;
};

class NetlinkFuzz : public ::testing::Test {
 protected:
    void SetUp() override {
        std::printf("seed %u\n", kSeed);
        datagrams_ = RealDatagrams();
        Yield whole;
        for (const Bytes& datagram : datagrams_) ParseDatagram(guarded_.Place(datagram), whole);
        ASSERT_GE(whole.links, 4U);
        ASSERT_GE(whole.addresses, 2U);
        ASSERT_GE(whole.routes, 4U);
        ASSERT_GE(whole.saved, 8U);
        ASSERT_GE(whole.texts, 1U);
    }

    GuardedBytes guarded_;
    std::vector<Bytes> datagrams_;
    Mutator mutator_{kSeed};
};

TEST_F(NetlinkFuzz, DatagramsCutAtEveryByte) {
    for (const Bytes& datagram : datagrams_) {
        Yield yield;
        for (std::size_t size = 0; size <= datagram.size(); ++size) {
            ParseDatagram(
                guarded_.Place(Bytes(datagram.begin(), datagram.begin() + static_cast<std::ptrdiff_t>(size))),
                yield);
        }
        EXPECT_GT(yield.messages, 0U);
    }
}

TEST_F(NetlinkFuzz, MutatedDatagramsAreNeverReadPastTheirEnd) {
    Yield yield;
    for (int round = 0; round < kRounds; ++round) {
        for (const Bytes& datagram : datagrams_)
            ParseDatagram(guarded_.Place(mutator_.Mutate(datagram)), yield);
    }
    EXPECT_GT(yield.messages, 0U);
    EXPECT_GT(yield.saved, 0U);
}

TEST_F(NetlinkFuzz, MutatedPayloadsAreNeverReadPastTheirEndAndNothingGrows) {
    std::vector<std::pair<nlmsghdr, Bytes>> payloads;
    for (const Bytes& datagram : datagrams_) {
        ASSERT_TRUE(ForEachMessage(datagram, [&](const nlmsghdr& header, ByteSpan payload) {
            payloads.emplace_back(header, Bytes(payload.begin(), payload.end()));
        }));
    }
    Yield yield;
    for (int round = 0; round < kRounds; ++round) {
        for (const auto& [header, payload] : payloads) {
            const ByteSpan bytes = guarded_.Place(mutator_.Mutate(payload));
            ParseEverything(bytes, header, yield);
            std::vector<KernelRoute> routes;
            ParseRoute(bytes, routes);
            EXPECT_LE(routes.size(), 1 + bytes.size() / sizeof(rtnexthop));
            KernelLink link;
            if (ParseLink(bytes, link)) {
                EXPECT_LE(link.name.size(), bytes.size());
                EXPECT_LE(link.kind.size(), bytes.size());
            }
        }
    }
    EXPECT_GT(yield.routes, 0U);
    EXPECT_GT(yield.saved, 0U);
}

TEST_F(NetlinkFuzz, SavedMessagesHoldTogetherWhateverTheyWereMadeFrom) {
    std::size_t saved = 0;
    for (int round = 0; round < kRounds; ++round) {
        for (const Bytes& datagram : datagrams_) {
            (void)ForEachMessage(guarded_.Place(mutator_.Mutate(datagram)),
                                 [&](const nlmsghdr&, ByteSpan payload) {
                                     for (std::uint32_t index = 1; index <= 64; ++index) {
                                         const auto route = SavedRoute(payload, AF_INET, index);
                                         if (!route) continue;
                                         ++saved;
                                         // The walk over what was written must end exactly at its end.
                                         ByteSpan rest = After(route->payload, HeaderSize(RTM_NEWROUTE));
                                         std::size_t walked = 0;
                                         ForEachAttribute(rest, [&](std::uint16_t, ByteSpan value) {
                                             walked += MNL_ATTR_HDRLEN + MNL_ALIGN(value.size());
                                         });
                                         EXPECT_EQ(walked, rest.size());
                                         // And it is saved again as it is.
                                         const auto again = SavedRoute(route->payload, AF_INET, index);
                                         ASSERT_TRUE(again);
                                         EXPECT_EQ(again->payload, route->payload);
                                     }
                                 });
        }
    }
    EXPECT_GT(saved, 0U);
}

}  // namespace
}  // namespace corvane
