#pragma once

#include <string>

#include "base/Win32Error.h"

/// The one table that turns the system's error numbers into the program's, and those into words.
namespace corvane {

/// errno values (errno.h) of system calls and netlink answers. 0 gives kSuccess; a value outside the table
/// kGenFailure.
Win32Error FromErrno(int errnoValue);

/// The words for a number, ending in a line break as system texts do; empty for a number outside the table.
std::string Win32Text(Win32Error code);

}  // namespace corvane
