#pragma once

#include "base/Win32Error.h"
#include "platform/windows/Windows.h"

namespace corvane {

/// The system's own number as the program's: they are the same numbers (winerror.h).
inline Win32Error FromSystem(DWORD code) { return static_cast<Win32Error>(code); }
inline Win32Error FromSystem(LSTATUS status) { return static_cast<Win32Error>(status); }

}  // namespace corvane
