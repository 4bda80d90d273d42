#include <atomic>
#include <ctime>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/RegistryKeys.h"
#include "platform/RegistryValues.h"
#include "platform/linux/dhcp/DhcpControl.h"
#include "platform/linux/dhcp/DhcpSocket.h"
#include "platform/linux/system/RuntimeFolder.h"
#include "tests/netns/DhcpTestSupport.h"

/// Leases of the usual client, from a real server.
namespace corvane::netns {
namespace {

class Dhcp : public DhcpFixture {
 protected:
    /// Lease bound, from a fresh server.
    void Bind() {
        network_.StartServer();
        Introduce(network_.Client(), kId);
        Start(network_);
        ASSERT_TRUE(WaitForAddress(kLink)) << network_.ServerLog();
    }
    static int ValidSeconds() { return Addresses(kLink).at(0).value("valid_life_time", 0); }

    static constexpr char kLink[] = "cl0";
    DhcpNetwork network_{kLink};
};

TEST_F(Dhcp, ABoundLeaseIsOnTheLinkWithItsLifetime) {
    Bind();
    const nlohmann::json address = Addresses(kLink).at(0);
    EXPECT_EQ(address.value("prefixlen", 0), 24);
    EXPECT_EQ(address.value("broadcast", ""), "10.77.0.255");
    EXPECT_TRUE(address.value("dynamic", false));
    EXPECT_GT(address.value("valid_life_time", 0), 60);
    EXPECT_LE(address.value("valid_life_time", 0), 120);
    EXPECT_LE(address.value("preferred_life_time", 0), 120);
    EXPECT_EQ(Routes(kLink), std::vector<std::string>{"default 10.77.0.1 0 dhcp"});
    EXPECT_NE(network_.LeaseTable().find(Address(kLink)), std::string::npos);
    Stop(network_);
}

TEST_F(Dhcp, ABoundLeaseIsInTheRegistry) {
    const auto before = static_cast<std::uint32_t>(std::time(nullptr));
    Bind();
    const auto after = static_cast<std::uint32_t>(std::time(nullptr));
    EXPECT_EQ(Value("DhcpSubnetMask"), "255.255.255.0");
    EXPECT_EQ(Value("DhcpServer"), "10.77.0.1");
    EXPECT_EQ(Value("DhcpNameServer"), "10.77.0.1 10.77.0.2");
    EXPECT_EQ(Value("DhcpDomain"), "example.test");
    EXPECT_EQ(Value("DhcpDefaultGateway"), "10.77.0.1|");
    EXPECT_EQ(Value("DhcpDefaultGatewayMetric"), "0|");
    EXPECT_EQ(Dword("Lease"), 120U);
    const std::uint32_t obtained = Dword("LeaseObtainedTime");
    EXPECT_GE(obtained, before);
    EXPECT_LE(obtained, after);
    EXPECT_EQ(Dword("T1"), obtained + 60);
    EXPECT_EQ(Dword("T2"), obtained + 105);
    EXPECT_EQ(Dword("LeaseTerminatesTime"), obtained + 120);
    Stop(network_);
}

TEST_F(Dhcp, ABoundLeaseSetsTheNameServers) {
    Bind();
    EXPECT_TRUE(WaitUntil([] {
        return File(kResolvConf).find("nameserver 10.77.0.1\nnameserver 10.77.0.2\n") != std::string::npos;
    })) << File(kResolvConf);
    EXPECT_TRUE(File(kResolvConf).ends_with(kOriginal)) << File(kResolvConf);
    Stop(network_);
    EXPECT_EQ(File(kResolvConf), kOriginal);
}

TEST_F(Dhcp, TheInterfaceMetricIsTheRoutesMetric) {
    Introduce(network_.Client(), kId);
    RegistryStore store(RegistryStore::DefaultPath());
    ASSERT_TRUE(Ok(
        store.WriteValue(kHkeyLocalMachine, TcpipKey(kId), "InterfaceMetric", {kRegDword, DwordBytes(25)})));
    Bind();
    EXPECT_EQ(Routes(kLink), std::vector<std::string>{"default 10.77.0.1 25 dhcp"});
    Stop(network_);
    EXPECT_TRUE(Routes(kLink).empty());
}

TEST_F(Dhcp, ClasslessRoutesReplaceTheRouter) {
    network_.StartServer(
        {"--dhcp-option=option:classless-static-route,192.168.9.0/24,10.77.0.5,0.0.0.0/0,10.77.0.6"});
    Introduce(network_.Client(), kId);
    Start(network_);
    ASSERT_TRUE(WaitForAddress(kLink));
    std::vector<std::string> routes = Routes(kLink);
    std::sort(routes.begin(), routes.end());
    EXPECT_EQ(routes,
              (std::vector<std::string>{"192.168.9.0/24 10.77.0.5 0 dhcp", "default 10.77.0.6 0 dhcp"}));
    EXPECT_EQ(Value("DhcpDefaultGateway"), "10.77.0.6|");
    Stop(network_);
    EXPECT_TRUE(Routes(kLink).empty());
}

TEST_F(Dhcp, RenewMakesTheLifetimeWholeAgain) {
    Bind();
    const std::string address = Address(kLink);
    ASSERT_TRUE(WaitUntil([] { return ValidSeconds() <= 118; }));
    const std::uint32_t obtained = Dword("LeaseObtainedTime");
    EXPECT_EQ(RenewDhcp(network_.Index()), Win32Error::kSuccess);
    EXPECT_GE(ValidSeconds(), 119);
    EXPECT_EQ(Address(kLink), address);
    EXPECT_GT(Dword("LeaseObtainedTime"), obtained);
    Stop(network_);
}

TEST_F(Dhcp, ReleaseGivesTheLeaseBackAndTheClientStays) {
    Bind();
    const std::vector<pid_t> clients = Processes("udhcpc");
    ASSERT_EQ(clients.size(), 1U);
    EXPECT_EQ(ReleaseDhcp(network_.Index()), Win32Error::kSuccess);
    EXPECT_TRUE(Addresses(kLink).empty());
    EXPECT_TRUE(Routes(kLink).empty());
    EXPECT_EQ(Value("DhcpIPAddress"), "0.0.0.0");
    EXPECT_EQ(Value("DhcpSubnetMask"), "0.0.0.0");
    EXPECT_EQ(Value("DhcpDefaultGateway"), "");
    EXPECT_EQ(Value("DhcpNameServer"), "");
    EXPECT_EQ(Dword("LeaseTerminatesTime"), 0U);
    EXPECT_EQ(File(kResolvConf), kOriginal);
    EXPECT_TRUE(WaitUntil([&] { return network_.LeaseTable().empty(); })) << network_.LeaseTable();
    EXPECT_EQ(Processes("udhcpc"), clients);
    EXPECT_TRUE(DhcpRunning(network_.Index()));
    EXPECT_EQ(ReleaseDhcp(network_.Index()), Win32Error::kSuccess) << "a second time";
    Stop(network_);
}

TEST_F(Dhcp, ALinkThatComesUpAgainAfterAReleaseStaysWithoutLease) {
    Bind();
    ASSERT_EQ(ReleaseDhcp(network_.Index()), Win32Error::kSuccess);
    Ip(std::string("link set ") + kLink + " down");
    Ip(std::string("link set ") + kLink + " up");
    ASSERT_TRUE(DhcpRunning(network_.Index()));
    EXPECT_FALSE(WaitUntil([] { return !Addresses(kLink).empty(); }, 1500));
    Stop(network_);
}

TEST_F(Dhcp, RenewAfterReleaseObtainsANewLease) {
    Bind();
    ASSERT_EQ(ReleaseDhcp(network_.Index()), Win32Error::kSuccess);
    EXPECT_EQ(RenewDhcp(network_.Index()), Win32Error::kSuccess);
    EXPECT_FALSE(Address(kLink).empty());
    EXPECT_EQ(Value("DhcpIPAddress"), Address(kLink));
    EXPECT_EQ(Routes(kLink), std::vector<std::string>{"default 10.77.0.1 0 dhcp"});
    Stop(network_);
}

TEST_F(Dhcp, StopLeavesNothing) {
    Bind();
    const std::vector<pid_t> supervisors = Supervisors();
    ASSERT_EQ(supervisors.size(), 1U);
    Stop(network_);
    EXPECT_TRUE(Processes("nicx-dhcp").empty());
    EXPECT_TRUE(Processes("udhcpc").empty());
    EXPECT_TRUE(Addresses(kLink).empty());
    EXPECT_TRUE(Routes(kLink).empty());
    EXPECT_TRUE(RuntimeFiles().empty());
    EXPECT_EQ(Value("DhcpIPAddress"), "0.0.0.0");
    EXPECT_TRUE(WaitUntil([&] { return network_.LeaseTable().empty(); })) << "the lease was not given back";
    EXPECT_FALSE(DhcpRunning(network_.Index()));
}

TEST_F(Dhcp, SigtermStopsAsWell) {
    Bind();
    const std::vector<pid_t> supervisors = Supervisors();
    ASSERT_EQ(supervisors.size(), 1U);
    ASSERT_EQ(kill(supervisors[0], SIGTERM), 0);
    EXPECT_TRUE(WaitUntil([] { return Processes("nicx-dhcp").empty(); }));
    EXPECT_TRUE(Processes("udhcpc").empty());
    EXPECT_TRUE(Addresses(kLink).empty());
    EXPECT_TRUE(RuntimeFiles().empty());
    EXPECT_TRUE(WaitUntil([&] { return network_.LeaseTable().empty(); })) << "the lease was not given back";
}

TEST_F(Dhcp, WithoutASupervisorStopSucceedsAndTheRestIsNotSupported) {
    const DhcpAnswer stopped = StopDhcp(network_.Index());
    EXPECT_EQ(stopped.code, Win32Error::kSuccess) << stopped.words;
    EXPECT_EQ(ReleaseDhcp(network_.Index()), Win32Error::kNotSupported);
    EXPECT_EQ(RenewDhcp(network_.Index()), Win32Error::kNotSupported);
    EXPECT_FALSE(DhcpRunning(network_.Index()));
}

TEST_F(Dhcp, WithoutAServerRenewTimesOutAndTheLeaseComesWhenOneDoes) {
    Introduce(network_.Client(), kId);
    Start(network_);
    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(RenewDhcp(network_.Index()), Win32Error::kSemTimeout);
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(15));
    EXPECT_TRUE(DhcpRunning(network_.Index()));
    network_.StartServer();
    EXPECT_TRUE(WaitForAddress(kLink, 20000));
    Stop(network_);
}

TEST_F(Dhcp, StopWhileItIsAskingIsQuick) {
    Introduce(network_.Client(), kId);
    Start(network_);
    ASSERT_TRUE(WaitUntil([] { return Processes("udhcpc").size() == 1; }));
    const auto before = std::chrono::steady_clock::now();
    Stop(network_);
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(2));
    EXPECT_TRUE(Processes("udhcpc").empty());
}

TEST_F(Dhcp, AServerThatWantsAnotherAddressGetsIt) {
    Bind();
    const std::string former = Address(kLink);
    network_.StopServer();
    network_.StartServer({"--dhcp-authoritative"}, "10.77.0.150,10.77.0.199,120s");
    EXPECT_EQ(RenewDhcp(network_.Index()), Win32Error::kSuccess) << network_.ServerLog();
    const std::string address = Address(kLink);
    EXPECT_NE(address, former);
    EXPECT_EQ(address.rfind("10.77.0.1", 0), 0U) << address;
    EXPECT_NE(network_.ServerLog().find("DHCPNAK"), std::string::npos);
    EXPECT_EQ(Value("DhcpIPAddress"), address);
    Stop(network_);
}

TEST_F(Dhcp, AnAddressOfTheUsersOnTheSameNetworkOutlivesTheLease) {
    Bind();
    Ip(std::string("address add 10.77.0.222/24 dev ") + kLink);
    EXPECT_EQ(ReleaseDhcp(network_.Index()), Win32Error::kSuccess);
    EXPECT_EQ(Address(kLink), "10.77.0.222");
    Stop(network_);
    EXPECT_EQ(Address(kLink), "10.77.0.222");
}

TEST_F(Dhcp, SeveralControllersAtOnceAreAllAnswered) {
    Bind();
    std::atomic<int> failures{0};
    std::vector<std::thread> controllers;
    for (int number = 0; number < 12; ++number) {
        controllers.emplace_back([&, number] {
            for (int round = 0; round < 5; ++round) {
                const bool good =
                    number % 3 == 0 ? DhcpRunning(network_.Index()) : Ok(RenewDhcp(network_.Index()));
                if (!good) ++failures;
            }
        });
    }
    for (std::thread& controller : controllers) controller.join();
    EXPECT_EQ(failures, 0);
    EXPECT_FALSE(Address(kLink).empty());
    Stop(network_);
}

TEST_F(Dhcp, ReleasesAndRenewalsAtOnceAllComeToAnEnd) {
    Bind();
    std::atomic<int> failures{0};
    std::vector<std::thread> controllers;
    for (int number = 0; number < 6; ++number) {
        controllers.emplace_back([&, number] {
            const Win32Error code =
                number % 2 == 0 ? RenewDhcp(network_.Index()) : ReleaseDhcp(network_.Index());
            if (!Ok(code)) ++failures;
        });
    }
    for (std::thread& controller : controllers) controller.join();
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(RenewDhcp(network_.Index()), Win32Error::kSuccess);
    EXPECT_FALSE(Address(kLink).empty());
    Stop(network_);
}

TEST_F(Dhcp, StartsAtTheSameTimeLeaveOneSupervisor) {
    network_.StartServer();
    Introduce(network_.Client(), kId);
    std::atomic<int> failures{0};
    std::vector<std::thread> starters;
    for (int number = 0; number < 8; ++number) {
        starters.emplace_back([&] {
            if (!Ok(StartDhcp(network_.Index(), network_.Client(), kId).code)) ++failures;
        });
    }
    for (std::thread& starter : starters) starter.join();
    EXPECT_EQ(failures, 0);
    EXPECT_TRUE(WaitUntil([] { return Supervisors().size() == 1; }));
    EXPECT_TRUE(WaitForAddress(kLink));
    EXPECT_EQ(Processes("udhcpc").size(), 1U);
    EXPECT_EQ(RuntimeFiles().size(), 1U);
    Stop(network_);
}

TEST_F(Dhcp, AStartDuringAStopLeavesARunningSupervisor) {
    Bind();
    for (int round = 0; round < 5; ++round) {
        std::thread stopper([&] { Stop(network_); });
        const DhcpAnswer started = StartDhcp(network_.Index(), network_.Client(), kId);
        EXPECT_EQ(started.code, Win32Error::kSuccess) << started.words;
        stopper.join();
        // The stop may have met the new supervisor; then another start makes one.
        Start(network_);
        EXPECT_TRUE(DhcpRunning(network_.Index()));
        EXPECT_TRUE(WaitForAddress(kLink));
        EXPECT_EQ(Supervisors().size(), 1U);
    }
    Stop(network_);
}

TEST_F(Dhcp, TheSocketIsTheOwnersAlone) {
    Bind();
    struct stat status {};
    ASSERT_EQ(stat(DhcpSocketPath(network_.Index()).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0600U);
    ASSERT_EQ(stat(RuntimeFolder().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0755U);
    const std::uint32_t index = network_.Index();
    const pid_t child = fork();
    if (child == 0) {
        if (setgid(65534) != 0 || setuid(65534) != 0) _exit(9);
        const DhcpAnswer stopped = StopDhcp(index);
        const bool refused = RenewDhcp(index) == Win32Error::kAccessDenied &&
                             ReleaseDhcp(index) == Win32Error::kAccessDenied && !DhcpRunning(index) &&
                             stopped.code == Win32Error::kAccessDenied && !stopped.words.empty();
        _exit(refused ? 0 : 1);
    }
    int result = 0;
    ASSERT_EQ(waitpid(child, &result, 0), child);
    EXPECT_EQ(result, 0);
    EXPECT_FALSE(Address(kLink).empty());
    Stop(network_);
}

TEST_F(Dhcp, AnswersStatusInWordsAndRefusesUnknownQuestions) {
    Bind();
    DhcpCaller caller;
    DhcpAnswer answer;
    ASSERT_EQ(caller.Connect(network_.Index()), DhcpCaller::Outcome::kAnswered);
    ASSERT_EQ(caller.Ask(kAskStatus, 5000, answer), DhcpCaller::Outcome::kAnswered);
    EXPECT_EQ(answer.code, Win32Error::kSuccess);
    EXPECT_EQ(answer.words, "bound " + Address(kLink) + "/24");
    for (const std::string& question : {std::string("sing"), std::string(60, 'x'), std::string(1, '\0')}) {
        ASSERT_EQ(caller.Connect(network_.Index()), DhcpCaller::Outcome::kAnswered);
        ASSERT_EQ(caller.Ask(question, 5000, answer), DhcpCaller::Outcome::kAnswered);
        EXPECT_EQ(answer.code, Win32Error::kInvalidParameter);
    }
    Stop(network_);
}

TEST_F(Dhcp, ControllersThatGoAwayDoNoHarm) {
    Bind();
    for (int round = 0; round < 50; ++round) {
        DhcpCaller silent;
        ASSERT_EQ(silent.Connect(network_.Index()), DhcpCaller::Outcome::kAnswered);
        DhcpCaller hasty;
        DhcpAnswer answer;
        ASSERT_EQ(hasty.Connect(network_.Index()), DhcpCaller::Outcome::kAnswered);
        EXPECT_NE(hasty.Ask(kAskRenew, 0, answer), DhcpCaller::Outcome::kNobody);
    }
    EXPECT_EQ(RenewDhcp(network_.Index()), Win32Error::kSuccess);
    Stop(network_);
}

}  // namespace
}  // namespace corvane::netns
