#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/Platform.h"
#include "tests/contract/Worlds.h"

namespace corvane::contract {

/// A machine with one live interface, whose address is kLiveMac, that has no IPv4 address and no DHCP, and
/// one interface that is down.
class IpHelperWorld {
 public:
    virtual ~IpHelperWorld() = default;
    virtual IpHelperApi& Api() = 0;
    [[nodiscard]] virtual std::uint32_t Live() const = 0;
    [[nodiscard]] virtual std::uint32_t Down() const = 0;
    [[nodiscard]] virtual const Limit* LimitOf(const std::string&) const { return nullptr; }
};

inline constexpr MacBytes kLiveMac{0x02, 0x00, 0x5e, 0x00, 0x53, 0x01};

/// Defined for each system.
std::vector<NamedWorld<IpHelperWorld>> SystemIpHelperWorlds();

}  // namespace corvane::contract
