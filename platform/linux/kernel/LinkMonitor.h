#pragma once

namespace corvane {

/// Watches links, IPv4 addresses and IPv4 routes of the namespace that the process is in (RTMGRP_LINK,
/// RTMGRP_IPV4_IFADDR, RTMGRP_IPV4_ROUTE) on a socket of its own with a receive buffer of 1 MB.
class LinkMonitor {
 public:
    LinkMonitor();
    ~LinkMonitor();
    LinkMonitor(const LinkMonitor&) = delete;
    LinkMonitor& operator=(const LinkMonitor&) = delete;

    /// Reads all pending events without waiting. True when there were any, or when the socket overflowed, or
    /// when the monitor cannot watch: what was dumped before may be out of date.
    bool TakeChanges();

    /// The socket, to wait on for readability; -1 when the monitor cannot watch.
    [[nodiscard]] int Descriptor() const { return descriptor_; }

 private:
    int descriptor_ = -1;
};

}  // namespace corvane
