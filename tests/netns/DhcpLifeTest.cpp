#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/linux/dhcp/DhcpControl.h"
#include "platform/linux/dhcp/DhcpExit.h"
#include "tests/netns/DhcpTestSupport.h"

/// What happens to links, processes and namespaces around a lease.
namespace corvane::netns {
namespace {

class DhcpLife : public DhcpFixture {
 protected:
    void Bind() {
        network_.StartServer();
        Introduce(network_.Client(), kId);
        Start(network_);
        ASSERT_TRUE(WaitForAddress(kLink)) << network_.ServerLog();
    }

    static constexpr char kLink[] = "cl0";
    DhcpNetwork network_{kLink};
};

TEST_F(DhcpLife, ALinkThatWasDownGetsItsRoutesBack) {
    Bind();
    const std::string address = Address(kLink);
    Ip(std::string("link set ") + kLink + " down");
    ASSERT_TRUE(Routes(kLink).empty());
    Ip(std::string("link set ") + kLink + " up");
    EXPECT_TRUE(
        WaitUntil([] { return Routes(kLink) == std::vector<std::string>{"default 10.77.0.1 0 dhcp"}; }));
    EXPECT_EQ(RenewDhcp(network_.Index()), Win32Error::kSuccess);
    EXPECT_EQ(Address(kLink), address);
    Stop(network_);
}

TEST_F(DhcpLife, StopOnALinkThatIsDownTakesTheAddressAway) {
    Bind();
    Ip(std::string("link set ") + kLink + " down");
    Stop(network_);
    EXPECT_TRUE(Addresses(kLink).empty());
    EXPECT_TRUE(Processes("udhcpc").empty());
    EXPECT_TRUE(RuntimeFiles().empty());
}

TEST_F(DhcpLife, ALinkThatIsDownIsWaitedFor) {
    network_.StartServer();
    Introduce(network_.Client(), kId);
    Ip(std::string("link set ") + kLink + " down");
    Start(network_);
    EXPECT_TRUE(Processes("udhcpc").empty());
    EXPECT_EQ(RenewDhcp(network_.Index()), Win32Error::kSemTimeout);
    EXPECT_TRUE(Processes("udhcpc").empty()) << "the client would never notice";
    Ip(std::string("link set ") + kLink + " up");
    EXPECT_TRUE(WaitForAddress(kLink));
    Stop(network_);
}

TEST_F(DhcpLife, CarrierIsWaitedFor) {
    network_.ServerIp("link set " + network_.ServerEnd() + " down");
    Introduce(network_.Client(), kId);
    Start(network_);
    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(RenewDhcp(network_.Index()), Win32Error::kSemTimeout);
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(5))
        << "there is nothing to wait for";
    EXPECT_TRUE(Processes("udhcpc").empty());
    network_.ServerIp("link set " + network_.ServerEnd() + " up");
    network_.StartServer();
    EXPECT_TRUE(WaitForAddress(kLink, 20000));
    Stop(network_);
}

TEST_F(DhcpLife, CarrierLostWhileAskingEndsTheClientUntilItIsBack) {
    Introduce(network_.Client(), kId);
    Start(network_);
    ASSERT_TRUE(WaitUntil([] { return Processes("udhcpc").size() == 1; }));
    network_.ServerIp("link set " + network_.ServerEnd() + " down");
    EXPECT_TRUE(WaitUntil([] { return Processes("udhcpc").empty(); }));
    network_.ServerIp("link set " + network_.ServerEnd() + " up");
    network_.StartServer();
    EXPECT_TRUE(WaitForAddress(kLink, 20000));
    Stop(network_);
}

TEST_F(DhcpLife, TheSupervisorEndsWithItsLink) {
    Bind();
    Ip(std::string("link del ") + kLink);
    EXPECT_TRUE(WaitUntil([] { return Processes("nicx-dhcp").empty() && Processes("udhcpc").empty(); }));
    EXPECT_TRUE(RuntimeFiles().empty());
    EXPECT_EQ(Value("DhcpIPAddress"), "0.0.0.0");
    EXPECT_EQ(File("/etc/resolv.conf"), "nameserver 192.0.2.53\n");
}

TEST_F(DhcpLife, ATcpipKeyThatIsGoneIsNotMadeAnew) {
    Bind();
    RegistryStore store(RegistryStore::DefaultPath());
    const std::string key =
        "SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Parameters\\Interfaces\\" + std::string(kId);
    ASSERT_TRUE(Ok(store.DeleteKey(kHkeyLocalMachine, key)));
    Stop(network_);
    EXPECT_FALSE(store.ReadValue(kHkeyLocalMachine, key, "DhcpIPAddress").keyOpened);
}

TEST_F(DhcpLife, AKilledSupervisorTakesItsClientAlongAndIsReplaced) {
    Bind();
    const std::string address = Address(kLink);
    const std::vector<pid_t> supervisors = Supervisors();
    ASSERT_EQ(supervisors.size(), 1U);
    ASSERT_EQ(kill(supervisors[0], SIGKILL), 0);
    EXPECT_TRUE(WaitUntil([] { return Processes("nicx-dhcp").empty() && Processes("udhcpc").empty(); }));
    EXPECT_EQ(Address(kLink), address) << "the kernel lets it run out";
    EXPECT_EQ(RuntimeFiles().size(), 1U);
    EXPECT_FALSE(DhcpRunning(network_.Index()));
    EXPECT_EQ(RenewDhcp(network_.Index()), Win32Error::kNotSupported);

    Start(network_);
    EXPECT_EQ(RenewDhcp(network_.Index()), Win32Error::kSuccess);
    EXPECT_FALSE(Address(kLink).empty());
    EXPECT_EQ(Routes(kLink), std::vector<std::string>{"default 10.77.0.1 0 dhcp"});
    Stop(network_);
    EXPECT_TRUE(Addresses(kLink).empty());
    EXPECT_TRUE(Routes(kLink).empty());
    EXPECT_TRUE(RuntimeFiles().empty());
}

TEST_F(DhcpLife, WhatAKilledSupervisorLeftIsTakenAwayByTheNextWithoutAServer) {
    Bind();
    const std::vector<pid_t> supervisors = Supervisors();
    ASSERT_EQ(supervisors.size(), 1U);
    ASSERT_EQ(kill(supervisors[0], SIGKILL), 0);
    ASSERT_TRUE(WaitUntil([] { return Processes("nicx-dhcp").empty(); }));
    network_.StopServer();
    ASSERT_FALSE(Address(kLink).empty());
    Start(network_);
    EXPECT_TRUE(WaitForNoAddress(kLink));
    EXPECT_TRUE(Routes(kLink).empty());
    Stop(network_);
}

TEST_F(DhcpLife, AClientThatDiesIsRunAnew) {
    Bind();
    const std::vector<pid_t> clients = Processes("udhcpc");
    ASSERT_EQ(clients.size(), 1U);
    ASSERT_EQ(kill(clients[0], SIGKILL), 0);
    EXPECT_TRUE(WaitUntil([&] {
        const std::vector<pid_t> now = Processes("udhcpc");
        return now.size() == 1 && now != clients;
    }));
    EXPECT_TRUE(WaitForAddress(kLink));
    Stop(network_);
}

TEST_F(DhcpLife, AClientThatHangsIsKilledByStop) {
    Bind();
    const std::vector<pid_t> clients = Processes("udhcpc");
    ASSERT_EQ(clients.size(), 1U);
    ASSERT_EQ(kill(clients[0], SIGSTOP), 0);
    Stop(network_);
    EXPECT_TRUE(Processes("udhcpc").empty());
    EXPECT_TRUE(Addresses(kLink).empty());
}

TEST_F(DhcpLife, TheClientHasACleanEnvironmentAndTheHooksSocketAboveItsOwnDescriptors) {
    setenv("SECRET_OF_THE_CALLER", "1", 1);
    Bind();
    unsetenv("SECRET_OF_THE_CALLER");
    const std::vector<pid_t> clients = Processes("udhcpc");
    ASSERT_EQ(clients.size(), 1U);
    const std::string process = "/proc/" + std::to_string(clients[0]);
    std::string environment = File(process + "/environ");
    std::replace(environment.begin(), environment.end(), '\0', '\n');
    EXPECT_EQ(environment, "PATH=/usr/sbin:/usr/bin:/sbin:/bin\nNICX_DHCP_HOOK=64\n");
    const auto target = [&](int descriptor) {
        return std::filesystem::read_symlink(process + "/fd/" + std::to_string(descriptor)).string();
    };
    EXPECT_EQ(target(0), "/dev/null");
    EXPECT_EQ(target(64).rfind("socket:", 0), 0U);
    // udhcpc's signal pipe.
    EXPECT_EQ(target(3).substr(0, 5), target(4).substr(0, 5));
    EXPECT_NE(target(3), target(64));
    int open = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(process + "/fd")) ++open;
    EXPECT_LE(open, 8) << "descriptors of the supervisor leaked";
    Stop(network_);
}

TEST_F(DhcpLife, TheSupervisorKeepsNothingOfItsStarter) {
    const int leak = open("/run/dhcp-test/leak", O_RDWR | O_CREAT, 0600);
    ASSERT_GE(leak, 0);
    Bind();
    close(leak);
    const std::vector<pid_t> supervisors = Supervisors();
    ASSERT_EQ(supervisors.size(), 1U);
    EXPECT_EQ(getsid(supervisors[0]), supervisors[0]);
    const std::string process = "/proc/" + std::to_string(supervisors[0]);
    EXPECT_EQ(std::filesystem::read_symlink(process + "/cwd").string(), "/");
    for (const auto& entry : std::filesystem::directory_iterator(process + "/fd")) {
        const std::string target = std::filesystem::read_symlink(entry.path()).string();
        const int number = std::stoi(entry.path().filename().string());
        EXPECT_EQ(target.find("leak"), std::string::npos);
        if (number < 3) {
            EXPECT_EQ(target, "/dev/null") << number;
        }
    }
    Stop(network_);
}

TEST_F(DhcpLife, AfterAChangeOfTheHardwareAddressTheLeaseIsForTheNewOne) {
    Bind();
    Stop(network_);
    Ip(std::string("link set ") + kLink + " down");
    Ip(std::string("link set ") + kLink + " address 02:00:00:aa:bb:01");
    Ip(std::string("link set ") + kLink + " up");
    Start(network_);
    ASSERT_TRUE(WaitForAddress(kLink));
    const std::vector<std::string> words = Words(network_.LeaseTable());
    ASSERT_EQ(words.size(), 5U) << network_.LeaseTable();
    EXPECT_EQ(words[1], "02:00:00:aa:bb:01");
    EXPECT_EQ(words[2], Address(kLink));
    EXPECT_EQ(words[4], "01:02:00:00:aa:bb:01") << "client id";
    Stop(network_);
}

TEST_F(DhcpLife, AChangeOfTheHardwareAddressUnderARunningClientIsNoticed) {
    Bind();
    Ip(std::string("link set ") + kLink + " address 02:00:00:aa:bb:02");
    EXPECT_TRUE(WaitUntil(
        [&] {
            return network_.LeaseTable().find(" 02:00:00:aa:bb:02 ") != std::string::npos &&
                   !Address(kLink).empty();
        },
        10000))
        << network_.LeaseTable();
    EXPECT_TRUE(WaitForAddress(kLink));
    EXPECT_EQ(Processes("udhcpc").size(), 1U);
    Stop(network_);
}

TEST_F(DhcpLife, ALeaseThatIsNotRenewedRunsOut) {
    // busybox's server gives leases as short as wanted. The client reckons with two minutes at least.
    std::ofstream("/run/dhcp-test/udhcpd.conf")
        << "start 10.77.0.60\nend 10.77.0.70\ninterface " << network_.ServerEnd()
        << "\nlease_file /run/dhcp-test/udhcpd.leases\npidfile /run/dhcp-test/udhcpd.pid\nmin_lease 4\n"
        << "opt subnet 255.255.255.0\nopt router 10.77.0.1\nopt lease 4\n";
    ScopedProcess server;
    server.Run({"busybox", "udhcpd", "-f", "/run/dhcp-test/udhcpd.conf"}, network_.Namespace(),
               "/run/dhcp-test/udhcpd.log");
    Introduce(network_.Client(), kId);
    Start(network_);
    ASSERT_TRUE(WaitForAddress(kLink, 20000)) << File("/run/dhcp-test/udhcpd.log");
    EXPECT_LE(Addresses(kLink).at(0).value("valid_life_time", 99), 4);
    server.Kill();
    EXPECT_TRUE(WaitForNoAddress(kLink));
    EXPECT_TRUE(WaitUntil([] { return Routes(kLink).empty() && Value("DhcpIPAddress") == "0.0.0.0"; }));
    Stop(network_);
}

TEST_F(DhcpLife, LinksOfTwoNamespacesHaveSupervisorsOfTheirOwn) {
    Bind();
    // A second client's namespace whose link has the same index, with the same registry and run-time folder.
    ScopedProcess other;
    other.HoldNamespace();
    ScopedProcess otherServer;
    otherServer.HoldNamespace();
    const auto in = [](pid_t space, const std::string& arguments) {
        std::vector<std::string> command = {"nsenter", "-n", "-t", std::to_string(space), "ip"};
        for (const std::string& word : Words(arguments)) command.push_back(word);
        const CommandResult result = RunCommand(command);
        EXPECT_EQ(result.exitCode, 0) << arguments << "\n" << result.errors;
    };
    const std::string index = std::to_string(network_.Index());
    in(other.Id(),
       "link add cl0 index " + index + " type veth peer name os netns " + std::to_string(otherServer.Id()));
    in(otherServer.Id(), "address add 10.78.0.1/24 dev os");
    in(otherServer.Id(), "link set os up");
    in(other.Id(), "link set cl0 up");
    ScopedProcess server;
    server.Run({"dnsmasq", "--keep-in-foreground", "--conf-file=/dev/null", "--port=0", "--no-ping",
                "--user=", "--group=", "--interface=os", "--dhcp-leasefile=/run/dhcp-test/other",
                "--pid-file=/run/dhcp-test/other.pid", "--dhcp-range=10.78.0.50,10.78.0.99,120s"},
               otherServer.Id(), "/run/dhcp-test/other.log");

    DhcpAnswer started{Win32Error::kGenFailure, {}};
    Win32Error renewed = Win32Error::kGenFailure;
    Win32Error stopped = Win32Error::kGenFailure;
    bool distinct = false;
    std::string own = DhcpSocketPath(network_.Index());
    // A thread has a network namespace of its own.
    std::thread([&] {
        const int space =
            open(("/proc/" + std::to_string(other.Id()) + "/ns/net").c_str(), O_RDONLY | O_CLOEXEC);
        if (setns(space, CLONE_NEWNET) == 0) {
            distinct = DhcpSocketPath(network_.Index()) != own && !DhcpRunning(network_.Index());
            started = StartDhcp(network_.Index(), "cl0", kOtherId);
            renewed = RenewDhcp(network_.Index());
            stopped = StopDhcp(network_.Index()).code;
        }
        close(space);
    }).join();
    EXPECT_TRUE(distinct);
    EXPECT_EQ(started.code, Win32Error::kSuccess) << started.words;
    EXPECT_EQ(renewed, Win32Error::kSuccess) << File("/run/dhcp-test/other.log");
    EXPECT_EQ(stopped, Win32Error::kSuccess);
    EXPECT_EQ(Value("DhcpServer", kOtherId), "10.78.0.1");
    EXPECT_EQ(Value("DhcpServer", kId), "10.77.0.1");
    EXPECT_TRUE(DhcpRunning(network_.Index()));
    EXPECT_FALSE(Address(kLink).empty());
    Stop(network_);
}

TEST_F(DhcpLife, WithoutRootItIsRefused) {
    const CommandResult result = RunCommand({"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups",
                                             kProgram, "--interface", kLink, "--id", kId});
    EXPECT_EQ(result.exitCode, kDhcpExitNoRight);
    EXPECT_NE(result.errors.find("root"), std::string::npos) << result.errors;
    const std::uint32_t index = network_.Index();
    const pid_t child = fork();
    if (child == 0) {
        if (setgid(65534) != 0 || setuid(65534) != 0) _exit(9);
        const DhcpAnswer started = StartDhcp(index, kLink, kId);
        const bool told = started.words.find("root") != std::string::npos;
        _exit(started.code == Win32Error::kAccessDenied && told ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_FALSE(DhcpRunning(index));
}

TEST_F(DhcpLife, AnUnknownLinkIsRefusedInWords) {
    const DhcpAnswer byName = StartDhcp(9999, "nolink0", kId);
    EXPECT_EQ(byName.code, Win32Error::kInvalidParameter);
    EXPECT_NE(byName.words.find("nolink0"), std::string::npos) << byName.words;
    const DhcpAnswer byIndex = StartDhcp(9999, kLink, kId);
    EXPECT_EQ(byIndex.code, Win32Error::kInvalidParameter);
    EXPECT_NE(byIndex.words.find("9999"), std::string::npos) << byIndex.words;
    EXPECT_TRUE(RuntimeFiles().empty());
}

TEST_F(DhcpLife, ARunTimeFolderThatCannotBeIsRefusedInWords) {
    std::ofstream("/run/dhcp-test/file") << "x";
    setenv("NICX_RUNTIME", "/run/dhcp-test/file/below", 1);
    const DhcpAnswer below = StartDhcp(network_.Index(), kLink, kId);
    EXPECT_EQ(below.code, Win32Error::kGenFailure);
    EXPECT_NE(below.words.find("/run/dhcp-test/file/below"), std::string::npos) << below.words;
    setenv("NICX_RUNTIME", ("/run/dhcp-test/" + std::string(100, 'd')).c_str(), 1);
    const DhcpAnswer tooLong = StartDhcp(network_.Index(), kLink, kId);
    EXPECT_EQ(tooLong.code, Win32Error::kGenFailure);
    EXPECT_NE(tooLong.words.find("too long"), std::string::npos) << tooLong.words;
}

TEST_F(DhcpLife, TheCommandLineIsChecked) {
    const auto run = [](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), kProgram);
        return RunCommand(arguments);
    };
    EXPECT_EQ(run({"--help"}).exitCode, kDhcpExitDone);
    EXPECT_NE(run({"--help"}).output.find("--interface"), std::string::npos);
    EXPECT_EQ(run({"--version"}).output.rfind("nicx-dhcp ", 0), 0U);
    const struct {
        std::vector<std::string> arguments;
        std::string reason;
    } wrong[] = {
        {{}, "--interface is missing"},
        {{"--interface", kLink}, "--id is missing"},
        {{"--id", kId}, "--interface is missing"},
        {{"--interface"}, "--interface needs a value"},
        {{"--interface", kLink, "--id"}, "--id needs a value"},
        {{"--help", "--index"}, "--index needs a value"},
        {{"--client"}, "--client needs a value"},
        {{"--interface", "--id", kId}, "unknown argument " + std::string(kId)},
        {{"--interface", kLink, "--id", kId, "--index", "x"}, "--index needs a number from 1"},
        {{"--interface", kLink, "--id", kId, "--index", "0"}, "--index needs a number from 1"},
        {{"--interface", kLink, "--id", kId, "--index", "1x"}, "--index needs a number from 1"},
        {{"--interface", kLink, "--id", kId, "--index", "4294967296"}, "--index needs a number from 1"},
        {{"--interface", kLink, "--id", kId, "--client", "pump"},
         "--client is udhcpc, dhcpcd or dhclient, not pump"},
        {{"--interface", kLink, "--id", "..\\Other"}, "--id is no configuration id: ..\\Other"},
        {{"eth9"}, "unknown argument eth9"},
        {{"--all"}, "unknown argument --all"},
        {{"-f", "--help"}, "unknown argument -f"},
        {{"-h"}, "unknown argument -h"},
        {{"--foreground=yes"}, "unknown argument --foreground=yes"},
        {{"--help", "eth9"}, "unknown argument eth9"},
        {{"--help", "--", "--index"}, "unknown argument --index"},
    };
    for (const auto& [arguments, reason] : wrong) {
        const CommandResult result = run(arguments);
        EXPECT_EQ(result.exitCode, kDhcpExitUsage) << ::testing::PrintToString(arguments);
        EXPECT_EQ(result.errors, "nicx-dhcp: " + reason + "; see nicx-dhcp --help\n");
        EXPECT_EQ(result.output, "");
    }
    EXPECT_EQ(run({"--help", "--"}).exitCode, kDhcpExitDone);
}

}  // namespace
}  // namespace corvane::netns
