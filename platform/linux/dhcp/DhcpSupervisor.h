#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/linux/dhcp/DhcpClientProcess.h"
#include "platform/linux/dhcp/DhcpClients.h"
#include "platform/linux/dhcp/DhcpControllers.h"
#include "platform/linux/dhcp/DhcpState.h"
#include "platform/linux/dhcp/HeldLease.h"
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
    /// How far the client's process is; it says something while one runs.
    enum class ClientStage {
        kStarting,    ///< No hook of it was heard yet: another signal than SIGTERM could kill it.
        kReady,       ///< It has a lease or asks for one.
        kIdle,        ///< It gave its lease back and waits for a renewal.
        kGivingBack,  ///< The plan's release command runs.
    };
    using Milliseconds = std::int64_t;

    /// True when `event` led to another state.
    bool Happen(DhcpEvent event);
    /// A lease is to be had.
    [[nodiscard]] bool WantsLease() const;
    [[nodiscard]] bool LinkRuns() const { return !linkGone_ && link_.Running(); }

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
    /// Signals the client, with SIGTERM when `number` could not be heard yet.
    void SignalWithLease(int number) const;

    void TakeReports();
    bool Heard(const HookReport& report);
    [[nodiscard]] DhcpAnswer Status() const;

    void DoTasks();
    void BeginRenewal();
    void FinishRenewal(const DhcpAnswer& answer);
    void BeginRelease();
    void FinishRelease();
    void BeginEnd();
    void CheckDeadlines();

    DhcpOptions options_;
    LinkWatch watch_;
    Netlink netlink_;
    DhcpControllers controllers_;
    HeldLease lease_;
    Descriptor signals_;

    DhcpState state_ = DhcpState::kKeeping;
    Milliseconds stateEnd_ = 0;  ///< When a renewal, a release or the end is waited for no longer.
    bool endAsked_ = false;      ///< By a controller, a signal or the link's end.

    KernelLink link_;  ///< As last seen.
    bool linkGone_ = false;

    DhcpClientProcess client_;
    DhcpClientPlan plan_;
    ClientStage stage_ = ClientStage::kStarting;
    KernelLink clientLink_;      ///< The link as it was when the client was started.
    Milliseconds startAt_ = 0;   ///< No client is started before.
    Milliseconds pause_ = 0;     ///< Before a client that ended is run anew.
    Milliseconds repeatAt_ = 0;  ///< When the release is asked for once more.
};

}  // namespace corvane
