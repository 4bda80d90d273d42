#pragma once

#include <string>

#include "tests/contract/Worlds.h"

/// What Wine 8 does not do as Windows does, and what it does instead. Each row is asserted by the cases that
/// ask for it, so that a Wine that can do more shows up as a failing case.
namespace corvane::contract {

inline constexpr Limit kWineLimits[] = {
    {"AddIPAddress", Win32Error::kNotSupported, "Wine does not change the host's addresses"},
    {"DeleteIPAddress", Win32Error::kNotSupported, "Wine does not change the host's addresses"},
    {"CreateIpForwardEntry", Win32Error::kSuccess, "Wine accepts routes and does nothing with them"},
    {"DeleteIpForwardEntry", Win32Error::kSuccess, "Wine accepts routes and does nothing with them"},
    {"IpReleaseAddress", Win32Error::kNotSupported, "Wine leaves DHCP to the host"},
    {"IpRenewAddress", Win32Error::kNotSupported, "Wine leaves DHCP to the host"},
    {"GetIfEntry of an unknown index", Win32Error::kFileNotFound, "Wine says that there is no such thing"},
    {"GetInterfaceInfo leaves out what is down", Win32Error::kSuccess,
     "Wine lists every link of the host and calls each administratively up"},
    {"GetIpForwardTable gives metrics as they are", Win32Error::kSuccess,
     "Wine reads the host's decimal metrics as hexadecimal ones: 20 becomes 32"},
    {"EnumSubkeys puts \"_\" after the letters", Win32Error::kSuccess,
     "Wine sorts by the lower-case form, Windows by the upper-case one"},
};

/// The limit of that name; nullptr when there is none, and on Windows itself.
const Limit* WineLimit(const std::string& what);

}  // namespace corvane::contract
