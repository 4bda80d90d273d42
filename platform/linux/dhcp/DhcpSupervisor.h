#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/dhcp/DhcpClientProcess.h"
#include "platform/linux/dhcp/DhcpClients.h"
#include "platform/linux/dhcp/DhcpInstall.h"
#include "platform/linux/dhcp/DhcpLease.h"
#include "platform/linux/dhcp/DhcpSocket.h"
#include "platform/linux/kernel/LinkWatch.h"
#include "platform/linux/kernel/Netlink.h"
#include "platform/linux/system/Descriptor.h"

namespace corvane {

struct DhcpOptions {
    std::uint32_t linkIndex = 0;
    std::string linkId;    ///< GUID text in braces: the link's TCP/IP key.
    std::string hookPath;  ///< This program.
    DhcpClient client;
    bool talk = false;  ///< The client may write to standard error.
    std::function<void(const std::string& words)>
        say;  ///< Takes what the administrator should know, line by line.
};

/// Runs a DHCP client for one link, puts on the link and records what it obtains, and carries out the
/// requests of controllers. The client runs while the link has carrier (it is started when carrier comes);
/// one that ends is run anew, after a pause that grows from one second to 30; one that was started with
/// another name or hardware address than the link's is replaced. A lease without renewal is dropped when its
/// lifetime is over.
class DhcpSupervisor {
 public:
    /// `listener` is listening. SIGTERM, SIGINT and SIGHUP are blocked; they end the supervisor as a stop
    /// request does.
    DhcpSupervisor(DhcpOptions options, DhcpListener& listener);

    /// Returns when a controller or a signal ended it, or the link vanished: the client is gone then, the
    /// lease is given back where the link allowed it and is taken away, and no file is left.
    void Run();

 private:
    enum class Task { kNone, kRenewing, kReleasing, kEnding };
    struct Connection {
        Descriptor socket;
        std::string question;  ///< Empty until it has asked.
    };
    using Milliseconds = std::int64_t;

    static Milliseconds Now();

    void Wait();
    [[nodiscard]] int WaitMilliseconds() const;

    /// `wasDown`: it was administratively down since the last look.
    void LookAtLink(bool wasDown);
    /// How the client is run for the link as it is; its files stand beside the socket.
    void MakePlan();
    void StartClient();
    void RunClient(const std::vector<std::string>& arguments);
    void ClientEnded(const std::string& words);
    void ReplaceClient();
    void AwaitLeaseFile() const;

    void TakeReports();
    bool Heard(const HookReport& report);
    void DropLease();

    void AcceptControllers();
    void Listen(Connection& connection);
    void AnswerAll(const std::string& question, const DhcpAnswer& answer);
    [[nodiscard]] bool Asked(const char* question) const;
    [[nodiscard]] DhcpAnswer Status() const;

    void DoTasks();
    void BeginRenewal();
    void FinishRenewal(const DhcpAnswer& answer);
    void BeginRelease();
    void FinishRelease();
    void BeginEnd();
    void CheckDeadlines();

    DhcpOptions options_;
    DhcpListener& listener_;
    LinkWatch watch_;
    Netlink netlink_;
    LeaseInstaller installer_;
    DhcpClientProcess client_;
    DhcpClientPlan plan_;
    Descriptor signals_;
    std::vector<Connection> connections_;

    KernelLink link_;           ///< As last seen.
    bool linkRunning_ = false;  ///< It has carrier.
    bool linkGone_ = false;

    KernelLink clientLink_;     ///< The link as it was when the client was started.
    bool clientReady_ = false;  ///< Its first hook was heard: signals do not kill it any more.
    bool clientIdle_ = false;   ///< It gave its lease back and waits for a renewal.
    bool wanted_ = true;        ///< A lease is to be had; false after a release.
    bool releaseRun_ = false;   ///< The program that runs is the plan's release command.
    Milliseconds startAt_ = 0;  ///< No client is started before.
    Milliseconds pause_ = 0;    ///< Before a client that ended is run anew.

    std::optional<Lease> lease_;
    Milliseconds leaseEnd_ = 0;  ///< 0: without end.
    bool noLeaseRecorded_ = false;

    Task task_ = Task::kNone;
    Milliseconds taskEnd_ = 0;   ///< When the task is given up.
    Milliseconds repeatAt_ = 0;  ///< When the release is asked for once more.
    bool endAsked_ = false;
    bool finished_ = false;
};

}  // namespace corvane
