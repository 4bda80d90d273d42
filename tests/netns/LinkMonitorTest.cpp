#include <array>
#include <cerrno>
#include <fstream>
#include <sstream>
#include <string>

#include <gtest/gtest.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/linux/kernel/LinkMonitor.h"
#include "platform/linux/kernel/Netlink.h"
#include "platform/linux/kernel/NetlinkParse.h"
#include "tests/netns/NetnsSupport.h"

namespace corvane {
namespace {

using netns::Ip;
using netns::ScopedVeth;

bool Readable(const LinkMonitor& monitor) {
    pollfd descriptor{monitor.Descriptor(), POLLIN, 0};
    return poll(&descriptor, 1, 0) == 1;
}

/// How many messages the kernel could not deliver to this socket (/proc/net/netlink); -1 when it is not
/// listed.
long Drops(int descriptor) {
    struct stat status {};
    EXPECT_EQ(fstat(descriptor, &status), 0);
    std::ifstream table("/proc/self/net/netlink");
    std::string line;
    std::getline(table, line);
    while (std::getline(table, line)) {
        const std::vector<std::string> words = netns::Words(line);
        // sk Eth Pid Groups Rmem Wmem Dump Locks Drops Inode
        if (words.size() >= 10 && words[9] == std::to_string(status.st_ino)) return std::stol(words[8]);
    }
    return -1;
}

/// SO_RCVBUF of a socket; 0 when it cannot be had.
int BufferSize(int descriptor) {
    int size = 0;
    socklen_t length = sizeof size;
    return getsockopt(descriptor, SOL_SOCKET, SO_RCVBUF, &size, &length) == 0 ? size : 0;
}

/// Changes a link's address so many times.
void MakeEvents(const ScopedVeth& veth, int count) {
    Netlink netlink;
    MacBytes mac{0x02, 0, 0, 0, 0, 0};
    for (int i = 0; i < count; ++i) {
        mac[4] = static_cast<std::uint8_t>(i >> 8);
        mac[5] = static_cast<std::uint8_t>(i);
        ASSERT_EQ(netlink.SetLinkAddress(veth.Index(), mac).Words(), "");
    }
}

TEST(LinkMonitor, QuietUntilSomethingHappensAndQuietAfterwards) {
    const ScopedVeth veth;
    LinkMonitor monitor;
    ASSERT_GE(monitor.Descriptor(), 0);
    EXPECT_FALSE(Readable(monitor));
    EXPECT_FALSE(monitor.TakeChanges());
    MakeEvents(veth, 1);
    EXPECT_TRUE(Readable(monitor));
    EXPECT_TRUE(monitor.TakeChanges());
    EXPECT_FALSE(Readable(monitor));
    EXPECT_FALSE(monitor.TakeChanges());
}

TEST(LinkMonitor, SeesNewAndRemovedLinksAddressesAndRoutes) {
    LinkMonitor monitor;
    {
        const ScopedVeth veth;
        EXPECT_TRUE(monitor.TakeChanges());
        veth.BringUp();
        ASSERT_TRUE(netns::WaitUntil([&] { return !monitor.TakeChanges(); }));
        Ip("addr add 10.70.0.1/24 dev " + veth.Name());
        EXPECT_TRUE(monitor.TakeChanges());
        Ip("route add 10.71.0.0/16 via 10.70.0.2");
        EXPECT_TRUE(monitor.TakeChanges());
        Ip("route del 10.71.0.0/16");
        EXPECT_TRUE(monitor.TakeChanges());
        Ip("addr del 10.70.0.1/24 dev " + veth.Name());
        EXPECT_TRUE(monitor.TakeChanges());
    }
    EXPECT_TRUE(monitor.TakeChanges());
}

TEST(LinkMonitor, Ipv6IsNotWatched) {
    const ScopedVeth veth;
    LinkMonitor monitor;
    Ip("-6 addr add 2001:db8:70::1/64 dev " + veth.Name());
    EXPECT_FALSE(monitor.TakeChanges());
}

TEST(LinkMonitor, RoutesLostOnDownShowOnlyAsALinkEvent) {
    const ScopedVeth veth;
    veth.BringUp();
    Ip("addr add 10.72.0.1/24 dev " + veth.Name());
    Ip("route add 10.73.0.0/16 via 10.72.0.2");
    // Carrier is settled: the peer's end, too.
    Netlink netlink;
    std::vector<KernelRoute> routes;
    ASSERT_EQ(netlink.DumpRoutes(routes).Words(), "");
    ASSERT_EQ(routes.size(), 2U);

    LinkMonitor monitor;
    const int events = socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE);
    ASSERT_GE(events, 0);
    sockaddr_nl address{};
    address.nl_family = AF_NETLINK;
    address.nl_groups = RTMGRP_LINK | RTMGRP_IPV4_ROUTE;
    ASSERT_EQ(bind(events, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(netlink.SetLinkUp(veth.Index(), false).Words(), "");

    ASSERT_EQ(netlink.DumpRoutes(routes).Words(), "");
    EXPECT_EQ(routes.size(), 0U);
    EXPECT_TRUE(monitor.TakeChanges());
    int linkEvents = 0;
    int lostRoutes = 0;
    std::vector<std::uint8_t> buffer(65536);
    for (ssize_t count = 0; (count = recv(events, buffer.data(), buffer.size(), 0)) > 0;) {
        EXPECT_TRUE(ForEachMessage(ByteSpan(buffer).first(static_cast<std::size_t>(count)),
                                   [&](const nlmsghdr& header, ByteSpan) {
                                       linkEvents += header.nlmsg_type == RTM_NEWLINK;
                                       lostRoutes += header.nlmsg_type == RTM_DELROUTE;
                                   }));
    }
    close(events);
    EXPECT_GT(linkEvents, 0);
    EXPECT_EQ(lostRoutes, 0);
}

TEST(LinkMonitor, OverflowIsAChangeAndTheMonitorWorksOn) {
    const ScopedVeth veth;
    LinkMonitor monitor;
    const int smallest = 1;
    ASSERT_EQ(setsockopt(monitor.Descriptor(), SOL_SOCKET, SO_RCVBUF, &smallest, sizeof smallest), 0);
    MakeEvents(veth, 50);
    ASSERT_GT(Drops(monitor.Descriptor()), 0) << "no overflow, so nothing is tested";
    EXPECT_TRUE(monitor.TakeChanges());
    EXPECT_FALSE(monitor.TakeChanges());
    MakeEvents(veth, 1);
    EXPECT_TRUE(monitor.TakeChanges());
}

TEST(LinkMonitor, WithoutRightsTheBufferIsAsLargeAsTheSystemAllows) {
    const pid_t child = fork();
    if (child == 0) {
        if (setgid(65534) != 0 || setuid(65534) != 0) _exit(1);
        const LinkMonitor monitor;
        const int plain = socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE);
        const int wanted = 1 << 20;
        if (setsockopt(plain, SOL_SOCKET, SO_RCVBUF, &wanted, sizeof wanted) != 0) _exit(2);
        const int allowed = BufferSize(plain);
        if (BufferSize(monitor.Descriptor()) != allowed) _exit(3);
        _exit(allowed > 0 ? 0 : 4);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST(LinkMonitor, EightHundredEventsFitIntoItsBuffer) {
    const ScopedVeth veth;
    LinkMonitor monitor;
    // The kernel doubles what is asked for (socket(7)).
    EXPECT_EQ(BufferSize(monitor.Descriptor()), 2 * (1 << 20));
    MakeEvents(veth, 800);
    EXPECT_EQ(Drops(monitor.Descriptor()), 0);
    EXPECT_TRUE(monitor.TakeChanges());
}

}  // namespace
}  // namespace corvane
