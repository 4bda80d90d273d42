#pragma once

#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

#include "base/Refusal.h"
#include "platform/linux/dhcp/DhcpLease.h"
#include "platform/linux/system/Descriptor.h"

namespace corvane {

/// One run of a DHCP client: a child process, and the socket over which its hooks report. The client has a
/// process namespace of its own, whose first process ends when this process does, however it does; with it
/// the kernel ends every process in there. So nothing of a client outlives it or its supervisor, not even the
/// helpers that dhcpcd makes for its separation of privileges. Where no such namespace is to be had, the
/// client alone is tied to this process (PR_SET_PDEATHSIG). Not thread-safe, and to be used by the main
/// thread only.
class DhcpClientProcess {
 public:
    DhcpClientProcess() = default;
    /// Kills what still runs.
    ~DhcpClientProcess();
    DhcpClientProcess(const DhcpClientProcess&) = delete;
    DhcpClientProcess& operator=(const DhcpClientProcess&) = delete;

    /// Runs `arguments` (the first is the program's path) with an environment of PATH and the hook's socket
    /// alone, all signals at their defaults, in "/", with no standard input. Without `talk` its output goes
    /// nowhere. Refused when the program cannot be run. One may run at a time.
    Refusal Start(const std::vector<std::string>& arguments, bool talk);

    /// True from Start until Collect has told of the end.
    [[nodiscard]] bool Running() const { return processEnd_.IsOpen(); }
    /// Readable when the process has ended; -1 when none runs.
    [[nodiscard]] int EndDescriptor() const { return processEnd_.Get(); }
    /// Readable when a hook reports; -1 when none runs.
    [[nodiscard]] int HookDescriptor() const { return hookSocket_.Get(); }

    /// Sends a signal, if it runs.
    void Signal(int number) const;

    /// How the process ended, in words, once it has; it is no longer running then, and neither is anything
    /// that it left. Nothing while it runs.
    std::optional<std::string> Collect();

    /// Ends the process: SIGTERM, after `milliseconds` SIGKILL. Returns when it is gone. Reports of hooks are
    /// not heard any longer.
    void End(int milliseconds);

    /// Takes one pending report, if there is a whole one.
    bool TakeReport(HookReport& report);

    /// Lets the hook that sent `report` go on: with success or, when the lease cannot be used, with failure.
    void Answer(const HookReport& report, bool usable) const;

 private:
    void MakeKeeper();
    void LeaveNamespace() const;
    /// Ends everything in the namespace and takes leave of the client, which may have ended before. Its wait
    /// status.
    int Clear();

    Descriptor processEnd_;  ///< Process descriptor (pidfd_open(2)).
    Descriptor hookSocket_;
    Descriptor keeperPipe_;  ///< The keeper ends when this is closed.
    pid_t keeper_ = -1;      ///< First process of the client's namespace; -1 when there is none.
    pid_t process_ = -1;
};

}  // namespace corvane
