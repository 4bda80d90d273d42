#include "startup/Version.h"

namespace corvane {

namespace {

std::string Name9x(const OsIdentity& os) {
    const std::uint32_t build = os.buildNumber & 0xFFFFU;
    if (os.minorVersion == 0) return build == 1111 ? "95B" : "95";
    if (os.minorVersion == 10) return build == 2222 ? "98SE" : "98";
    if (os.minorVersion == 90 && build == 3000) return "ME";
    return "9x";
}

/// Every major version but 3, 4 and 5 is plain "NT". This is intended.
std::string NameNt(const OsIdentity& os) {
    switch (os.majorVersion) {
        case 3:
            return "NT 3";
        case 4:
            return "NT 4";
        case 5:
            if (os.minorVersion == 0) return "2000";
            if (os.minorVersion == 1) return "XP";
            if (os.minorVersion == 2) return "Server 2003";
            return {};
        default:
            return "NT";
    }
}

}  // namespace

OsVersion Version(const OsIdentity& os) {
    static constexpr std::uint32_t kPlatform9x = 1;
    static constexpr std::uint32_t kPlatformNt = 2;
    if (!os.readyDescription.empty()) return {os.readyDescription, false};

    const std::string servicePack = os.csdVersion.substr(0, os.csdVersion.find('\0'));
    std::string name = "Vista";
    if (os.platformId == kPlatform9x) name = Name9x(os);
    if (os.platformId == kPlatformNt) name = NameNt(os);
    return {"Windows " + name + " " + servicePack + "  (v" + std::to_string(os.majorVersion) + "." +
                std::to_string(os.minorVersion) + ", Build " + std::to_string(os.buildNumber) + ")",
            os.platformId == kPlatform9x};
}

}  // namespace corvane
