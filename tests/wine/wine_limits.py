"""What Wine 8 does not do as Windows does, and what it does instead. Tests assert these answers, so that a Wine that
has learnt more shows up as a failing case. Those of the calls alone are in contract/WineLimits.h."""

# Calls of the IP Helper that Wine has no code for: their error number and the system's words for it. So no test can see
# an address added or removed, or a lease released or renewed; what is told of the failure can be seen.
_NOT_SUPPORTED = (50, "Request not supported.")
NOT_SUPPORTED = {name: _NOT_SUPPORTED for name in ("AddIPAddress", "DeleteIPAddress", "IpReleaseAddress",
                                                   "IpRenewAddress")}

# Interfaces that are down, or gone, stay in the table of interfaces for as long as Wine runs, and count as enabled. A
# disabled connection is one whose adapter never had an interface (WineTest.describe).
DEAD_INTERFACES_STAY = True

# The speed of every interface of a test, in bit/s: Wine does not ask the kernel for it.
SPEED = 0

# Wine goes on telling the address that an interface had first, so that a new one looks as if it were not in effect. The
# kernel's word on the link is asserted beside it.
MAC_IN_EFFECT = "{old} (Inactive, {new})"
