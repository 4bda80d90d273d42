#include "platform/linux/kernel/Ethtool.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <string_view>

#include <linux/ethtool.h>
#include <linux/sockios.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace corvane {
namespace {

/// `command` starts with its number; the kernel writes the answer over it.
bool Ask(int socket, const std::string& linkName, void* command) {
    ifreq request{};
    if (socket < 0 || linkName.empty() || linkName.size() >= sizeof request.ifr_name) return false;
    std::memcpy(request.ifr_name, linkName.c_str(), linkName.size());
    request.ifr_data = static_cast<char*>(command);
    return ioctl(socket, SIOCETHTOOL, &request) == 0;
}

template <std::size_t Size>
std::string Text(const char (&field)[Size]) {
    return {field, strnlen(field, Size)};
}

}  // namespace

Ethtool::Ethtool() : socket_(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {}

Ethtool::~Ethtool() {
    if (socket_ >= 0) close(socket_);
}

std::uint64_t Ethtool::Speed(const std::string& linkName) {
    // The record ends in three bit maps of as many words as the kernel says, 127 at most (its count is a
    // signed byte).
    constexpr std::size_t kMapBytes = std::size_t{3} * 127 * sizeof(std::uint32_t);
    alignas(ethtool_link_settings) std::array<std::byte, sizeof(ethtool_link_settings) + kMapBytes> buffer{};
    ethtool_link_settings settings{};
    settings.cmd = ETHTOOL_GLINKSETTINGS;
    std::memcpy(buffer.data(), &settings, offsetof(ethtool_link_settings, link_mode_masks));
    if (!Ask(socket_, linkName, buffer.data())) return 0;

    // The first answer is the number of words, negated; the same question with that number gets the settings.
    std::memcpy(&settings, buffer.data(), offsetof(ethtool_link_settings, link_mode_masks));
    if (settings.link_mode_masks_nwords >= 0 || settings.link_mode_masks_nwords < -127) return 0;
    settings.link_mode_masks_nwords = static_cast<std::int8_t>(-settings.link_mode_masks_nwords);
    settings.cmd = ETHTOOL_GLINKSETTINGS;
    std::memcpy(buffer.data(), &settings, offsetof(ethtool_link_settings, link_mode_masks));
    if (!Ask(socket_, linkName, buffer.data())) return 0;

    std::memcpy(&settings, buffer.data(), offsetof(ethtool_link_settings, link_mode_masks));
    if (settings.speed == static_cast<std::uint32_t>(SPEED_UNKNOWN)) return 0;
    return std::uint64_t{settings.speed} * 1'000'000;
}

Ethtool::DriverInfo Ethtool::Driver(const std::string& linkName) {
    ethtool_drvinfo info{};
    info.cmd = ETHTOOL_GDRVINFO;
    if (!Ask(socket_, linkName, &info)) return {};
    return {Text(info.driver), Text(info.bus_info)};
}

}  // namespace corvane
