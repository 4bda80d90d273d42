#pragma once

#include <cstdint>
#include <string>

/// Questions to a link's driver through the SIOCETHTOOL ioctl (linux/ethtool.h).
namespace corvane {

class Ethtool {
 public:
    Ethtool();
    ~Ethtool();
    Ethtool(const Ethtool&) = delete;
    Ethtool& operator=(const Ethtool&) = delete;

    /// Link speed in bit/s; 0 when the driver does not know it or has no such question
    /// (ETHTOOL_GLINKSETTINGS).
    std::uint64_t Speed(const std::string& linkName);

    /// Driver name and bus address, such as "e1000e" and "0000:00:1f.6" (ETHTOOL_GDRVINFO); both empty when
    /// unknown.
    struct DriverInfo {
        std::string driver;
        std::string bus;
    };
    DriverInfo Driver(const std::string& linkName);

 private:
    int socket_ = -1;
};

}  // namespace corvane
