#pragma once

#include "platform/windows/Windows.h"

// Windows' other headers want <windows.h> before them.
// clang-format off
#include <winsock2.h>
#include <commctrl.h>
#include <iphlpapi.h>
#include <oleacc.h>
// clang-format on
