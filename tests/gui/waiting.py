"""Waiting for what may take a while, and children that do not outlive the test."""

import ctypes
import signal
import time

from gi.repository import GLib
from Xlib import error

SECONDS = 20

# Between two looks. What does not come at once takes its time, and a look keeps the program from its work.
SHORTEST_PAUSE, LONGEST_PAUSE, PAUSE_GROWTH = 0.01, 0.03, 1.2


class NotNow(Exception):
    """What was asked for is not there, or not yet."""


# A program that is busy does not answer in time, and objects and windows go away while they are looked at.
PASSING = (NotNow, GLib.Error, error.XError)


def patiently(read, what, seconds=SECONDS):
    """What `read` gives; it is asked again as long as it fails in a way that may pass."""
    end = time.monotonic() + seconds
    pause = SHORTEST_PAUSE
    while True:
        try:
            return read()
        except PASSING as problem:
            if time.monotonic() > end:
                raise AssertionError(f"{what}: not within {seconds} seconds: {problem}") from None
        time.sleep(pause)
        pause = min(pause * PAUSE_GROWTH, LONGEST_PAUSE)


def end_with_parent():
    """For a child before its exec: it is killed when the test ends (PR_SET_PDEATHSIG, linux/prctl.h)."""
    ctypes.CDLL(None).prctl(1, signal.SIGKILL)
