#include <cstdio>
#include <fstream>
#include <memory>
#include <string>

#include <gtest/gtest.h>
#include <linux/rtnetlink.h>
#include <unistd.h>

#include "platform/linux/kernel/Netlink.h"
#include "platform/linux/kernel/NetlinkSocket.h"
#include "tests/netns/NetnsSupport.h"

namespace corvane {
namespace {

/// Passes on and counts.
class CountingTransport : public NetlinkTransport {
 public:
    CountingTransport(std::unique_ptr<NetlinkTransport> inner, std::size_t& sent, std::size_t& received)
        : inner_(std::move(inner)), sent_(sent), received_(received) {}
    int Send(ByteSpan message) override {
        ++sent_;
        return inner_->Send(message);
    }
    int Receive(std::span<std::uint8_t> buffer, std::size_t& size) override {
        ++received_;
        return inner_->Receive(buffer, size);
    }

 private:
    std::unique_ptr<NetlinkTransport> inner_;
    std::size_t& sent_;
    std::size_t& received_;
};

struct DumpCost {
    std::size_t requests = 0;
    std::size_t datagrams = 0;
    std::size_t messages = 0;
};

DumpCost LinkDumpCost() {
    DumpCost cost;
    int error = 0;
    std::unique_ptr<NetlinkTransport> transport = OpenNetlinkTransport(error);
    EXPECT_EQ(error, 0);
    NetlinkSocket socket(
        std::make_unique<CountingTransport>(std::move(transport), cost.requests, cost.datagrams));
    NetlinkRequest request(RTM_GETLINK, NLM_F_DUMP, ifinfomsg{});
    const KernelAnswer answer = socket.Dump(
        request, [&] { cost.messages = 0; }, [&](std::uint16_t, ByteSpan) { ++cost.messages; });
    EXPECT_EQ(answer.Words(), "");
    return cost;
}

/// Links of group 77, removed together.
class ManyLinks {
 public:
    ~ManyLinks() { netns::RunCommand({"ip", "link", "del", "group", "77"}); }

    /// Adds `pairs` veth pairs.
    void Add(int pairs) {
        const std::string path = "/run/many-links." + std::to_string(getpid());
        std::ofstream file(path);
        for (int i = 0; i < pairs; ++i) {
            const std::string number = std::to_string(++made_);
            file << "link add many" << number << "a group 77 type veth peer name many" << number << "b\n";
        }
        file.close();
        netns::Ip("-batch " + path);
        std::remove(path.c_str());
    }

 private:
    int made_ = 0;
};

TEST(NetlinkScale, LinkDumpGrowsInStepWithTheLinks) {
    ManyLinks many;
    many.Add(500);
    const std::size_t present = netns::IpJson("link show").size();
    ASSERT_GE(present, 1001U);
    const DumpCost thousand = LinkDumpCost();
    many.Add(500);
    const DumpCost twoThousand = LinkDumpCost();

    EXPECT_EQ(thousand.messages, present);
    EXPECT_EQ(twoThousand.messages, present + 1000);
    EXPECT_EQ(thousand.requests, 1U);
    EXPECT_EQ(twoThousand.requests, 1U);
    // Many links per datagram, and no more datagrams per link when there are more links.
    EXPECT_LT(thousand.datagrams, thousand.messages / 8);
    EXPECT_LE(twoThousand.datagrams, 2 * thousand.datagrams + 1);

    std::vector<KernelLink> links;
    ASSERT_EQ(Netlink().DumpLinks(links).Words(), "");
    EXPECT_EQ(links.size(), present + 1000);
}

}  // namespace
}  // namespace corvane
