#include "platform/linux/links/TimeZone.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <system_error>

namespace corvane {

namespace {

std::string ZoneName() {
    const char* const fromEnvironment = std::getenv("TZ");
    if (fromEnvironment != nullptr && *fromEnvironment != '\0') {
        const std::string name = fromEnvironment;
        return name.front() == ':' ? name.substr(1) : name;
    }
    std::error_code error;
    const std::string target = std::filesystem::canonical("/etc/localtime", error).string();
    static const std::string kFolder = "/zoneinfo/";
    const std::size_t at = target.find(kFolder);
    return error || at == std::string::npos ? "Local" : target.substr(at + kFolder.size());
}

}  // namespace

std::string TimeZoneDisplay(const std::string& name, long offsetSeconds) {
    if (offsetSeconds == 0) return "(GMT) " + name;
    const long minutes = std::labs(offsetSeconds) / 60;
    char offset[16];
    std::snprintf(offset, sizeof offset, "%c%02ld:%02ld", offsetSeconds < 0 ? '-' : '+', minutes / 60 % 100,
                  minutes % 60);
    return std::string("(GMT") + offset + ") " + name;
}

TimeZone CurrentTimeZone() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    const std::string name = ZoneName();
    const bool known = localtime_r(&now, &local) != nullptr;
    return {name, TimeZoneDisplay(name, known ? local.tm_gmtoff : 0)};
}

}  // namespace corvane
