#pragma once

#include "platform/Platform.h"

namespace corvane {

/// The system clock.
class SystemClock : public ClockApi {
 public:
    void Sleep(std::uint32_t milliseconds) override;
    DateTime LocalTime() override;
    std::uint32_t Seed() override;
};

/// os-release(5), uname(2) and /proc/self/exe.
class SystemHost : public HostApi {
 public:
    /// The pretty name, two blanks, and the kernel in parentheses.
    OsIdentity Os() override;
    std::string ProgramFolder() override;
    char Separator() override { return '/'; }
    /// "2026-11-20 16:30:00"
    std::string GeneralDate(const DateTime& date) override;
};

}  // namespace corvane
