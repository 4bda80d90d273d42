#pragma once

#include <string>

namespace corvane {

/// The system's time zone as the registry shows it.
struct TimeZone {
    std::string standardName;  ///< Such as "Europe/Berlin" (TZ, or else the target of /etc/localtime).
    std::string
        display;  ///< "(GMT+01:00) Europe/Berlin" with the offset in force now; "(GMT) Etc/UTC" for none.
};

TimeZone CurrentTimeZone();

/// Pure part: the display text for an offset in seconds east of Greenwich.
std::string TimeZoneDisplay(const std::string& name, long offsetSeconds);

}  // namespace corvane
