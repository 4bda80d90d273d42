#pragma once

#include <cstdint>

namespace corvane {

/// Error numbers as the Windows headers define them (winerror.h). They are the program's one error currency
/// on every system: each back-end turns its native errors into them at its door. Values outside this list are
/// legal; the enumerators only name those that the portable code or a back-end mentions.
enum class [[nodiscard]] Win32Error : std::uint32_t{
    kSuccess = 0,
    kFileNotFound = 2,
    kAccessDenied = 5,
    kInvalidHandle = 6,
    kNotEnoughMemory = 8,
    kGenFailure = 31,
    kNotSupported = 50,
    kInvalidParameter = 87,
    kSemTimeout = 121,
    kInsufficientBuffer = 122,
    kBusy = 170,
    kMoreData = 234,
    kNoData = 232,
    kNoMoreItems = 259,
    kBadDatabase = 1009,
    kBadKey = 1010,
    kCantOpen = 1011,
    kCantRead = 1012,
    kCantWrite = 1013,
    kRegistryCorrupt = 1015,
    kNotFound = 1168,
    kNetworkUnreachable = 1231,
    kHostUnreachable = 1232,
    kObjectAlreadyExists = 5010,
};

[[nodiscard]] constexpr bool Ok(Win32Error code) { return code == Win32Error::kSuccess; }

[[nodiscard]] constexpr std::uint32_t Number(Win32Error code) { return static_cast<std::uint32_t>(code); }

}  // namespace corvane
