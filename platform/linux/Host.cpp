#include "platform/linux/Host.h"

#include <chrono>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <string>
#include <system_error>
#include <thread>

#include <sys/utsname.h>

#include "base/Text.h"
#include "platform/Files.h"

namespace corvane {

namespace {

/// PRETTY_NAME of os-release(5): a shell assignment, as a rule in double quotes.
std::string PrettyName() {
    static const std::string kField = "PRETTY_NAME=";
    for (const char* path : {"/etc/os-release", "/usr/lib/os-release"}) {
        std::string contents;
        if (ReadFileContents(path, contents)) continue;
        for (const std::string& line : Split(contents, '\n')) {
            if (line.starts_with(kField)) return Without(line.substr(kField.size()), '"');
        }
    }
    return "Linux";
}

}  // namespace

void SystemClock::Sleep(std::uint32_t milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

DateTime SystemClock::LocalTime() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    return {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_wday,
            local.tm_hour,        local.tm_min,     local.tm_sec};
}

std::uint32_t SystemClock::Seed() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    const auto ticks =
        static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::microseconds>(now).count());
    return static_cast<std::uint32_t>(ticks ^ ticks >> 32);
}

OsIdentity SystemHost::Os() {
    OsIdentity identity;
    identity.readyDescription = PrettyName();
    utsname kernel{};
    if (uname(&kernel) == 0) {
        identity.readyDescription += std::string("  (") + kernel.sysname + " " + kernel.release + ")";
    }
    return identity;
}

std::string SystemHost::ProgramFolder() {
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error) return ".";
    const std::filesystem::path beside = program.parent_path();
    const std::filesystem::path installed = (beside / CORVANE_DATA_FOLDER).lexically_normal();
    // One of the files tells for all: they lie together.
    const char* const sign = "VendorNumbers.log";
    const bool isInstalled =
        !std::filesystem::exists(beside / sign, error) && std::filesystem::exists(installed / sign, error);
    return isInstalled ? installed.string() : beside.string();
}

std::string SystemHost::GeneralDate(const DateTime& date) {
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", date.year, date.month, date.day,
                  date.hour, date.minute, date.second);
    return text;
}

}  // namespace corvane
