#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/types.h>

#include "platform/linux/registry/RegistryStore.h"
#include "support/Paths.h"
#include "tests/netns/NetnsSupport.h"

/// A real DHCP server in a network namespace of its own, and what tests of nicx-dhcp look at.
namespace corvane::netns {

inline constexpr char kResolvConf[] = "/etc/resolv.conf";
/// What the sandbox has in it.
inline constexpr char kOriginal[] = "nameserver 192.0.2.53\n";

/// A process that is killed at the end of the scope, and when the test process ends in any way.
class ScopedProcess {
 public:
    ScopedProcess() = default;
    ~ScopedProcess() { Kill(); }
    ScopedProcess(const ScopedProcess&) = delete;
    ScopedProcess& operator=(const ScopedProcess&) = delete;

    /// Runs a program, in the network namespace of process `namespaceOf` when that is not 0, its output into
    /// `log`.
    void Run(const std::vector<std::string>& arguments, pid_t namespaceOf, const std::string& log);
    /// Keeps a new network namespace alive; returns when there is one.
    void HoldNamespace();
    void Kill();
    [[nodiscard]] pid_t Id() const { return process_; }

 private:
    pid_t process_ = 0;
};

/// A veth pair: the client's end in this namespace, the server's in one of its own, with the
/// address 10.77.0.1/24.
class DhcpNetwork {
 public:
    /// `clientName` is the client's link, down and without carrier; its server's end is up.
    explicit DhcpNetwork(std::string clientName);
    ~DhcpNetwork();
    DhcpNetwork(const DhcpNetwork&) = delete;
    DhcpNetwork& operator=(const DhcpNetwork&) = delete;

    /// Starts dnsmasq: leases of 120 seconds from 10.77.0.50 to 10.77.0.99 (or `range`), router 10.77.0.1,
    /// name servers 10.77.0.1 and 10.77.0.2, domain example.test. Returns when it listens.
    void StartServer(const std::vector<std::string>& options = {},
                     const std::string& range = "10.77.0.50,10.77.0.99,120s");
    void StopServer() { server_.Kill(); }

    /// dnsmasq's table: "EXPIRY MAC ADDRESS NAME ID" a line. Empty when there are no leases.
    [[nodiscard]] std::string LeaseTable() const;
    [[nodiscard]] std::string ServerLog() const;

    [[nodiscard]] const std::string& Client() const { return client_; }
    [[nodiscard]] std::uint32_t Index() const { return LinkIndex(client_); }
    [[nodiscard]] const std::string& ServerEnd() const { return serverEnd_; }
    [[nodiscard]] pid_t Namespace() const { return namespace_.Id(); }
    /// `ip` in the server's namespace.
    void ServerIp(std::string_view arguments) const;

 private:
    std::string client_;
    std::string serverEnd_;
    std::string files_;
    ScopedProcess namespace_;
    ScopedProcess server_;
};

/// Private registry and run-time folder; the test process adopts every process that loses its parent, and a
/// case fails that leaves one behind.
class DhcpFixture : public ::testing::Test {
 protected:
    void SetUp() override;
    /// After the members of the case: its servers, and with their namespaces the links, are gone by then.
    ~DhcpFixture() override;

    /// Tells the registry of the link, as the back-end does, and takes it up.
    void Introduce(const std::string& name, const std::string& id) const;
    /// StartDhcp for the network's client, expected to succeed.
    static void Start(const DhcpNetwork& network);
    /// Same, by the program's command line.
    static void StartWith(const DhcpNetwork& network, const std::string& client);
    static void Stop(const DhcpNetwork& network);

    /// The IPv4 address records of `ip -j` of a link.
    static nlohmann::json Addresses(const std::string& link);
    /// Its only address without prefix; empty when it has none or several.
    static std::string Address(const std::string& link);
    static bool WaitForAddress(const std::string& link, int milliseconds = 10000);
    static bool WaitForNoAddress(const std::string& link, int milliseconds = 10000);
    /// "DESTINATION GATEWAY METRIC PROTOCOL" (`ip` leaves protocol "boot" out) of the link's routes that the
    /// kernel did not make itself.
    static std::vector<std::string> Routes(const std::string& link);

    /// A text value of the link's TCP/IP key, "|" for NUL.
    static std::string Value(const std::string& name, const std::string& id = kId);
    static std::uint32_t Dword(const std::string& name, const std::string& id = kId);

    static std::string File(const std::string& path);
    /// Files in the run-time folder, but for the lock file that stays there.
    static std::vector<std::string> RuntimeFiles();
    /// Processes whose program's name or first arguments hold `text`, in this network namespace.
    static std::vector<pid_t> Processes(const std::string& text);

    /// The supervisors among them: each leads a session, which the processes that it makes do not.
    static std::vector<pid_t> Supervisors();

    static constexpr char kId[] = "{00000000-0000-4000-8000-000000000001}";
    static constexpr char kOtherId[] = "{00000000-0000-4000-8000-000000000002}";
    static constexpr char kProgram[] = CORVANE_BIN_DIR "/nicx-dhcp";
};

}  // namespace corvane::netns
