#pragma once

#include <string>

#include "platform/Platform.h"

namespace corvane {

inline constexpr char kProgramVersion[] = "4.5";

struct OsVersion {
    std::string description;   ///< Such as "Windows XP Service Pack 2  (v5.1, Build 2600)".
    bool unsupported = false;  ///< The Windows 9x family.
};

/// Describes the operating system. A ready description is taken as it is; otherwise the version record is
/// worded.
OsVersion Version(const OsIdentity& os);

}  // namespace corvane
