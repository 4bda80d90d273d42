#pragma once

#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

/// Process descriptors (pidfd_open(2)) by their system call numbers: <sys/pidfd.h> of glibc 2.36 declares its
/// functions without C linkage.
namespace corvane {

/// A descriptor that is readable when the process has ended; -1 with errno set. Close-on-exec.
inline int OpenProcess(pid_t process) { return static_cast<int>(syscall(SYS_pidfd_open, process, 0)); }

/// Sends a signal to exactly the process that the descriptor stands for; -1 with errno set.
inline int SignalProcess(int processDescriptor, int signal) {
    return static_cast<int>(syscall(SYS_pidfd_send_signal, processDescriptor, signal, nullptr, 0));
}

}  // namespace corvane
