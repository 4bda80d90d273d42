#include "platform/windows/WindowsHost.h"

#include <cstdint>
#include <iterator>
#include <sstream>
#include <utility>

#include "base/Text.h"
#include "platform/Guarded.h"
#include "platform/windows/SystemTables.h"
#include "platform/windows/WideText.h"
#include "platform/windows/Windows.h"

namespace corvane {

namespace {

SYSTEMTIME SystemTimeOf(const DateTime& date) {
    const auto word = [](int value) { return static_cast<WORD>(value); };
    return {word(date.year), word(date.month),  word(date.weekday), word(date.day),
            word(date.hour), word(date.minute), word(date.second),  0};
}

/// A date or time of day as the user's settings say.
template <class Format>
std::string Formatted(const Format& format) {
    wchar_t text[128];
    const int length = format(text, static_cast<int>(std::size(text)));
    return length == 0 ? std::string() : Narrow({text, static_cast<std::size_t>(length - 1)});
}

std::string Quad(const Ipv4Bytes& address) { return DottedQuad(address.data()); }

/// What a refresh would show of an interface's row, or the number that says why there is none.
std::string PictureOf(std::uint32_t index) {
    IfRow row;
    const Win32Error code = InterfaceRow(index, row);
    std::ostringstream picture;
    picture << Number(code) << ' ' << row.adminStatus << ' ' << row.operStatus << ' ' << row.speed;
    for (const std::uint8_t byte : row.physAddr) picture << ' ' << static_cast<unsigned>(byte);
    return picture.str();
}

/// Live interfaces, addresses and routes in a text that differs when any of them does.
std::string Picture() {
    std::ostringstream picture;
    for (const InterfaceEntry& entry : InterfaceTable().rows) {
        picture << entry.index << ' ' << entry.name << ' ' << PictureOf(entry.index) << '\n';
    }
    for (const IpAddrRow& row : AddressTable().rows) {
        picture << row.index << ' ' << Quad(row.address) << '/' << Quad(row.mask) << '\n';
    }
    for (const IpForwardRow& row : RouteTable().rows) {
        picture << row.ifIndex << ' ' << Quad(row.destination) << '/' << Quad(row.mask) << ' '
                << Quad(row.nextHop) << ' ' << row.metric1 << '\n';
    }
    return picture.str();
}

}  // namespace

void WindowsClock::Sleep(std::uint32_t milliseconds) { ::Sleep(milliseconds); }

DateTime WindowsClock::LocalTime() {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    return {now.wYear, now.wMonth, now.wDay, now.wDayOfWeek, now.wHour, now.wMinute, now.wSecond};
}

std::uint32_t WindowsClock::Seed() {
    FILETIME now{};
    GetSystemTimeAsFileTime(&now);
    return static_cast<std::uint32_t>(now.dwLowDateTime ^ now.dwHighDateTime);
}

OsIdentity WindowsHost::Os() {
    OSVERSIONINFOA version{};
    version.dwOSVersionInfoSize = sizeof version;
    if (GetVersionExA(&version) == 0) return {};
    OsIdentity identity;
    identity.platformId = version.dwPlatformId;
    identity.majorVersion = version.dwMajorVersion;
    identity.minorVersion = version.dwMinorVersion;
    identity.buildNumber = version.dwBuildNumber;
    identity.csdVersion.assign(version.szCSDVersion, sizeof version.szCSDVersion);
    return identity;
}

std::string WindowsHost::ProgramFolder() {
    std::wstring program(MAX_PATH, L'\0');
    DWORD length = 0;
    // A path that fills the buffer may have been cut.
    while ((length = GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size()))) ==
           program.size()) {
        program.resize(program.size() * 2);
    }
    program.resize(length);
    const std::size_t separator = program.find_last_of(L'\\');
    if (separator == std::wstring::npos) return ".";
    // The root of a drive keeps its separator: "C:" alone is the drive's current folder.
    return Narrow(program.substr(0, separator + (separator == 2 ? 1 : 0)));
}

std::string WindowsHost::GeneralDate(const DateTime& date) {
    const SYSTEMTIME time = SystemTimeOf(date);
    const std::string day = Formatted([&](wchar_t* text, int room) {
        return GetDateFormatW(LOCALE_USER_DEFAULT, DATE_SHORTDATE, &time, nullptr, text, room);
    });
    return day + " " + Formatted([&](wchar_t* text, int room) {
               return GetTimeFormatW(LOCALE_USER_DEFAULT, 0, &time, nullptr, text, room);
           });
}

bool WindowsChanges::TakeChanges() {
    return Guarded(
        [this] {
            std::string picture = Picture();
            const bool changed = asked_ && picture != picture_;
            picture_ = std::move(picture);
            asked_ = true;
            return changed;
        },
        [](Win32Error, const char*) { return true; });
}

}  // namespace corvane
