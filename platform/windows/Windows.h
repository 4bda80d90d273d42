#pragma once

/// The one way to the system's headers: without their rarely used parts, without min and max, and without the
/// macros that bear the names of the program's own registry operations.
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
// In this order: windows.h alone would bring an older form of the socket declarations, iphlpapi.h needs the
// later ones for all that it declares.
// clang-format off
#include <winsock2.h>
#include <windows.h>
#include <ws2ipdef.h>
#include <iphlpapi.h>
#include <objbase.h>
#include <oleauto.h>
#include <shellapi.h>
#include <shldisp.h>
#include <wrl/client.h>
// clang-format on

#undef RegCreateKey
#undef RegDeleteValue
