#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

#include "platform/linux/Descriptor.h"
#include "platform/linux/DhcpLease.h"

namespace corvane {

/// One run of a DHCP client: a child process that cannot outlive this process, and the socket over which its
/// hooks report. Not thread-safe, and to be used by the main thread only: the child's tie is to the thread
/// that made it.
class DhcpClientProcess {
 public:
    DhcpClientProcess() = default;
    /// Kills what still runs.
    ~DhcpClientProcess();
    DhcpClientProcess(const DhcpClientProcess&) = delete;
    DhcpClientProcess& operator=(const DhcpClientProcess&) = delete;

    /// Runs `arguments` (the first is the program's path) with an environment of PATH and the hook's socket
    /// alone, all signals at their defaults, in "/", with no standard input. Without `talk` its output goes
    /// nowhere. It gets SIGTERM when this process ends, however it ends. False with the reason in `failure`
    /// when the program cannot be run. One may run at a time.
    bool Start(const std::vector<std::string>& arguments, bool talk, std::string& failure);

    /// True from Start until Collect has told of the end.
    [[nodiscard]] bool Running() const { return processEnd_.IsOpen(); }
    [[nodiscard]] pid_t Id() const { return process_; }

    /// Readable when the process has ended; -1 when none runs.
    [[nodiscard]] int EndDescriptor() const { return processEnd_.Get(); }
    /// Readable when a hook reports; -1 when none runs.
    [[nodiscard]] int HookDescriptor() const { return hookSocket_.Get(); }

    /// Sends a signal, if it runs.
    void Signal(int number) const;

    /// True when the process has ended; it is no longer running then. `words` says how it ended.
    bool Collect(std::string& words);

    /// Ends the process: SIGTERM, after `milliseconds` SIGKILL. Returns when it is gone. Reports of hooks are
    /// not heard any longer.
    void End(int milliseconds);

    /// Takes one pending report, if there is a whole one.
    bool TakeReport(HookReport& report);

    /// Lets the hook that sent `report` go on: with success or, when the lease cannot be used, with failure.
    void Answer(const HookReport& report, bool usable) const;

 private:
    Descriptor processEnd_;  ///< Process descriptor (pidfd_open(2)).
    Descriptor hookSocket_;
    pid_t process_ = -1;
};

}  // namespace corvane
