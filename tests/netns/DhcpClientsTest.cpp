#include <fstream>
#include <string>

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mount.h>

#include "platform/linux/dhcp/DhcpClients.h"
#include "platform/linux/dhcp/DhcpControl.h"
#include "platform/linux/dhcp/DhcpExit.h"
#include "tests/netns/DhcpTestSupport.h"

/// Every client that can be supervised, with a real server.
namespace corvane::netns {
namespace {

constexpr char kLink[] = "cl0";

class DhcpClients : public DhcpFixture, public ::testing::WithParamInterface<const char*> {
 protected:
    void Bind() {
        Introduce(network_.Client(), kId);
        StartWith(network_, GetParam());
        ASSERT_TRUE(WaitForAddress(kLink, 20000)) << network_.ServerLog();
    }

    DhcpNetwork network_{kLink};
};

TEST_P(DhcpClients, ObtainsARealLease) {
    network_.StartServer();
    Bind();
    EXPECT_FALSE(Processes(GetParam()).empty());
    const nlohmann::json address = Addresses(kLink).at(0);
    EXPECT_EQ(address.value("prefixlen", 0), 24);
    EXPECT_LE(address.value("valid_life_time", 0), 120);
    EXPECT_EQ(Routes(kLink), std::vector<std::string>{"default 10.77.0.1 0 dhcp"});
    EXPECT_EQ(Value("DhcpServer"), "10.77.0.1");
    EXPECT_EQ(Value("DhcpNameServer"), "10.77.0.1 10.77.0.2");
    EXPECT_EQ(Value("DhcpDomain"), "example.test");
    EXPECT_EQ(Dword("Lease"), 120U);
    Stop(network_);
}

TEST_P(DhcpClients, StopsCleanly) {
    network_.StartServer();
    Bind();
    Stop(network_);
    EXPECT_TRUE(WaitUntil([] { return Processes(GetParam()).empty(); }));
    EXPECT_TRUE(Addresses(kLink).empty());
    EXPECT_TRUE(Routes(kLink).empty());
    EXPECT_TRUE(RuntimeFiles().empty());
    EXPECT_EQ(Value("DhcpIPAddress"), "0.0.0.0");
    EXPECT_EQ(File("/etc/resolv.conf"), "nameserver 192.0.2.53\n");
    EXPECT_TRUE(WaitUntil([&] { return network_.LeaseTable().empty(); })) << "the lease was not given back";
}

TEST_P(DhcpClients, RenewsOnRequest) {
    network_.StartServer();
    Bind();
    const std::string address = Address(kLink);
    ASSERT_TRUE(WaitUntil([] { return Addresses(kLink).at(0).value("valid_life_time", 0) <= 118; }));
    EXPECT_EQ(RenewDhcp(network_.Index()), Win32Error::kSuccess) << network_.ServerLog();
    EXPECT_GE(Addresses(kLink).at(0).value("valid_life_time", 0), 118);
    EXPECT_EQ(Address(kLink), address);
    Stop(network_);
}

TEST_P(DhcpClients, ReleasesAndObtainsALeaseAgain) {
    network_.StartServer();
    Bind();
    EXPECT_EQ(ReleaseDhcp(network_.Index()), Win32Error::kSuccess);
    EXPECT_TRUE(Addresses(kLink).empty());
    EXPECT_TRUE(Routes(kLink).empty());
    EXPECT_TRUE(WaitUntil([&] { return network_.LeaseTable().empty(); })) << "the lease was not given back";
    EXPECT_EQ(RenewDhcp(network_.Index()), Win32Error::kSuccess) << network_.ServerLog();
    EXPECT_FALSE(Address(kLink).empty());
    Stop(network_);
    EXPECT_TRUE(WaitUntil([] { return Processes(GetParam()).empty(); }));
}

TEST_P(DhcpClients, GoesOnAskingUntilThereIsAServer) {
    Introduce(network_.Client(), kId);
    StartWith(network_, GetParam());
    EXPECT_EQ(RenewDhcp(network_.Index()), Win32Error::kSemTimeout);
    network_.StartServer();
    EXPECT_TRUE(WaitForAddress(kLink, 80000)) << network_.ServerLog();
    Stop(network_);
}

TEST_P(DhcpClients, TakesClasslessRoutes) {
    network_.StartServer(
        {"--dhcp-option=option:classless-static-route,192.168.9.0/24,10.77.0.5,0.0.0.0/0,10.77.0.6"});
    Bind();
    std::vector<std::string> routes = Routes(kLink);
    std::sort(routes.begin(), routes.end());
    EXPECT_EQ(routes,
              (std::vector<std::string>{"192.168.9.0/24 10.77.0.5 0 dhcp", "default 10.77.0.6 0 dhcp"}));
    Stop(network_);
}

TEST_P(DhcpClients, DiesWithAKilledSupervisor) {
    network_.StartServer();
    Bind();
    const std::vector<pid_t> supervisors = Supervisors();
    ASSERT_EQ(supervisors.size(), 1U);
    ASSERT_EQ(kill(supervisors[0], SIGKILL), 0);
    EXPECT_TRUE(WaitUntil([] { return Processes(GetParam()).empty(); }, 10000));
    StartWith(network_, GetParam());
    EXPECT_EQ(RenewDhcp(network_.Index()), Win32Error::kSuccess);
    Stop(network_);
}

INSTANTIATE_TEST_SUITE_P(All, DhcpClients, ::testing::Values("udhcpc", "dhcpcd", "dhclient"),
                         [](const auto& parameter) { return std::string(parameter.param); });

class DhcpClientChoice : public DhcpFixture {
 protected:
    /// Puts something that is no program in the place of one, in this private mount namespace.
    static void Hide(const char* program) {
        const CommandResult found =
            RunCommand({"sh", "-c", std::string("readlink -f \"$(command -v ") + program + ")\""});
        ASSERT_EQ(found.exitCode, 0) << program;
        const std::string path = found.output.substr(0, found.output.find('\n'));
        ASSERT_EQ(mount("/dev/null", path.c_str(), nullptr, MS_BIND, nullptr), 0) << path;
    }
};

TEST_F(DhcpClientChoice, TakesTheFirstThatIsInstalled) {
    const auto kind = [] {
        const std::optional<DhcpClient> client = FindDhcpClient(std::nullopt, "");
        return client ? std::string(NameOf(client->kind)) : std::string("none");
    };
    EXPECT_EQ(kind(), "udhcpc");
    Hide("busybox");
    EXPECT_EQ(kind(), "dhcpcd");
    Hide("dhcpcd");
    EXPECT_EQ(kind(), "dhclient");
    Hide("dhclient");
    EXPECT_EQ(kind(), "none");
}

TEST_F(DhcpClientChoice, WithoutAnyClientTheStartSaysSo) {
    const DhcpNetwork network(kLink);
    for (const char* program : {"busybox", "dhcpcd", "dhclient"}) Hide(program);
    const DhcpAnswer started = StartDhcp(network.Index(), kLink, kId);
    EXPECT_EQ(started.code, Win32Error::kFileNotFound);
    EXPECT_NE(started.words.find("no DHCP client is installed"), std::string::npos) << started.words;
    EXPECT_FALSE(DhcpRunning(network.Index()));
    EXPECT_TRUE(RuntimeFiles().empty());
}

TEST_F(DhcpClientChoice, ABusyboxWithoutUdhcpcIsNoClient) {
    std::ofstream("/run/dhcp-test/busybox") << "#!/bin/sh\necho ash\necho udhcpd\n";
    ASSERT_EQ(RunCommand({"chmod", "755", "/run/dhcp-test/busybox"}).exitCode, 0);
    Hide("busybox");
    EXPECT_FALSE(FindDhcpClient(DhcpClientKind::kUdhcpc, "/run/dhcp-test"));
    std::ofstream("/run/dhcp-test/busybox") << "#!/bin/sh\necho ash\necho udhcpc\n";
    const std::optional<DhcpClient> client =
        FindDhcpClient(DhcpClientKind::kUdhcpc, "relative:/run/dhcp-test");
    ASSERT_TRUE(client);
    EXPECT_EQ(client->command, (std::vector<std::string>{"/run/dhcp-test/busybox", "udhcpc"}));
}

TEST_F(DhcpClientChoice, AClientThatEndsAtOnceIsTriedAgainWithPauses) {
    DhcpNetwork network(kLink);
    std::ofstream("/run/dhcp-test/udhcpc") << "#!/bin/sh\necho run >> /run/dhcp-test/runs\nexit 1\n";
    ASSERT_EQ(RunCommand({"chmod", "755", "/run/dhcp-test/udhcpc"}).exitCode, 0);
    Introduce(kLink, kId);
    const std::string former = std::getenv("PATH");
    setenv("PATH", ("/run/dhcp-test:" + former).c_str(), 1);
    Start(network);
    setenv("PATH", former.c_str(), 1);
    const auto runs = [] {
        const std::string text = File("/run/dhcp-test/runs");
        return std::count(text.begin(), text.end(), '\n');
    };
    EXPECT_TRUE(WaitUntil([&] { return runs() >= 2; }));
    EXPECT_LE(runs(), 3);
    EXPECT_TRUE(DhcpRunning(network.Index()));
    Stop(network);
}

}  // namespace
}  // namespace corvane::netns
