#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "platform/Platform.h"
#include "tests/contract/Worlds.h"

namespace corvane::contract {

/// A machine whose registry has no key SOFTWARE\Test and no key SOFTWARE\Missing. What the registry holds
/// below SOFTWARE\Test is gone with the world. The defaults are those of a registry without limits.
class RegistryWorld {
 public:
    virtual ~RegistryWorld() = default;
    virtual std::shared_ptr<RegistryApi> Registry() = 0;

    /// The direct subkeys of the local machine, once SOFTWARE\Test is there.
    virtual std::vector<std::string> RootKeys() { return {"SOFTWARE"}; }
    /// A number that is no root.
    [[nodiscard]] virtual RegistryRoot UnknownRoot() const { return 0x80000001U; }
    /// Types other than kRegSz and kRegMultiSz whose bytes come back as they were written.
    [[nodiscard]] virtual std::vector<std::uint32_t> TypesOfBytes() const {
        return {0, 2, 3, 4, 11, 0xFFFFFFFFU};
    }
    [[nodiscard]] virtual bool NamesMayHoldNul() const { return true; }
    /// Characters that the path of a key may have.
    [[nodiscard]] virtual std::size_t LongestPath() const { return 4000; }
    /// Characters that one name in it may have.
    [[nodiscard]] virtual std::size_t LongestKeyName() const { return 1100; }
    [[nodiscard]] virtual const Limit* LimitOf(const std::string&) const { return nullptr; }
};

/// Defined for each system.
std::vector<NamedWorld<RegistryWorld>> SystemRegistryWorlds();

}  // namespace corvane::contract
