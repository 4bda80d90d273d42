#pragma once

#include "platform/Platform.h"

namespace corvane {

class WindowsClock : public ClockApi {
 public:
    void Sleep(std::uint32_t milliseconds) override;
    DateTime LocalTime() override;
    std::uint32_t Seed() override;
};

class WindowsHost : public HostApi {
 public:
    /// GetVersionExA's record. From Windows 8.1 on it tells the versions that the program's manifest names.
    OsIdentity Os() override;
    std::string ProgramFolder() override;
    char Separator() override { return '\\'; }
    /// The user's short date and time of day, joined by a blank.
    std::string GeneralDate(const DateTime& date) override;
};

/// The system watches its registry.
class WindowsNameServers : public NameServersApi {
 public:
    Refusal PutInForce(const std::string&) override { return {}; }
};

/// Tells changes by comparing the live interfaces with their rows (but for the counters), the addresses and
/// the routes with those of the call before, which works on every version and costs three table reads and a
/// row for each live interface.
class WindowsChanges : public ChangesApi {
 public:
    bool TakeChanges() override;

 private:
    std::string picture_;
    bool asked_ = false;
};

}  // namespace corvane
