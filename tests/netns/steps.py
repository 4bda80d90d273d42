"""Runs a program under ptrace(2) and kills it at a chosen system call, so that no moment is left to luck."""

import ctypes
import os
import signal
import struct

LIBC = ctypes.CDLL(None, use_errno=True)
LIBC.ptrace.argtypes = [ctypes.c_long, ctypes.c_long, ctypes.c_void_p, ctypes.c_void_p]
LIBC.ptrace.restype = ctypes.c_long

# linux/ptrace.h
TRACEME, SYSCALL, SETOPTIONS, GET_SYSCALL_INFO = 0, 24, 0x4200, 0x420E
OPTION_SYSGOOD, OPTION_EXITKILL = 0x1, 0x100000
SYSCALL_STOP = signal.SIGTRAP | 0x80
INFO_SIZE, INFO_ENTRY = 88, 1

# System calls by number (asm/unistd.h): those that sleep, with the position of the argument that points to the duration,
# and those that change anything outside of the program: openat (when it may make a file), write, pwrite64, sendto,
# sendmsg, fsync, fdatasync, ftruncate, rename, renameat, renameat2, mkdir, mkdirat, unlink, unlinkat.
if os.uname().machine == "x86_64":
    SLEEPS, OPEN = {35: 0, 230: 2}, 257
    CHANGES = {1, 18, 44, 46, 74, 75, 77, 82, 264, 316, 83, 258, 87, 263}
else:
    SLEEPS, OPEN = {101: 0, 115: 2}, 56
    CHANGES = {64, 68, 206, 211, 82, 83, 46, 38, 276, 34, 35}


def trace(request, pid, address=None, data=None):
    result = LIBC.ptrace(request, pid, address, data)
    if result < 0:
        raise OSError(ctypes.get_errno(), f"ptrace request {request:#x}")
    return result


def entered_call(pid):
    """Number and arguments of the system call that the stopped program is about to make, or None at its return."""
    info = ctypes.create_string_buffer(INFO_SIZE)
    trace(GET_SYSCALL_INFO, pid, INFO_SIZE, ctypes.addressof(info))
    if info.raw[0] != INFO_ENTRY:
        return None
    number, *arguments = struct.unpack_from("<7Q", info.raw, 24)
    return number, arguments


def begins_long_wait(pid, call):
    """True for a sleep of a second or more."""
    number, arguments = call
    if number not in SLEEPS:
        return False
    with open(f"/proc/{pid}/mem", "rb", buffering=0) as memory:
        memory.seek(arguments[SLEEPS[number]])
        return struct.unpack("<q", memory.read(8))[0] >= 1


def changes_anything(call):
    number, arguments = call
    return number in CHANGES or (number == OPEN and arguments[2] & os.O_CREAT)


def run_until(arguments, moment=None):
    """Runs a program, silent, until it begins a wait of a second or more, or is about to make the call `moment`, and kills
    it there. A moment is a call that changes anything: its number and how many calls of that number there were, with it.
    Gives the moments that were reached."""
    pid = os.fork()
    if pid == 0:
        try:
            nothing = os.open("/dev/null", os.O_RDWR)
            for descriptor in range(3):
                os.dup2(nothing, descriptor)
            trace(TRACEME, 0)
            os.execv(arguments[0], [str(argument) for argument in arguments])
        finally:
            os._exit(127)
    os.waitpid(pid, 0)
    trace(SETOPTIONS, pid, None, OPTION_SYSGOOD | OPTION_EXITKILL)
    moments = []
    counts = {}
    passed_on = 0
    while True:
        trace(SYSCALL, pid, None, passed_on)
        _, status = os.waitpid(pid, 0)
        if not os.WIFSTOPPED(status):
            return moments
        passed_on = 0
        if os.WSTOPSIG(status) != SYSCALL_STOP:
            passed_on = os.WSTOPSIG(status) if os.WSTOPSIG(status) != signal.SIGTRAP else 0
            continue
        call = entered_call(pid)
        if call is None:
            continue
        if changes_anything(call):
            counts[call[0]] = counts.get(call[0], 0) + 1
            moments.append((call[0], counts[call[0]]))
        if begins_long_wait(pid, call) or (moment and moments[-1:] == [moment]):
            os.kill(pid, signal.SIGKILL)
            os.waitpid(pid, 0)
            return moments
