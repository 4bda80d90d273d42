#pragma once

#include <string>
#include <vector>

#include "platform/Platform.h"
#include "tests/contract/Worlds.h"

namespace corvane::contract {

/// A machine with one connection, which is enabled.
class ShellWorld {
 public:
    virtual ~ShellWorld() = default;
    virtual ShellApi& Api() = 0;
    [[nodiscard]] virtual std::string Name() const = 0;
    /// What the connection offers, given whether it is enabled.
    [[nodiscard]] virtual std::vector<std::string> Verbs(bool enabled) const {
        return {enabled ? "Disa&ble" : "En&able"};
    }
};

/// Defined for each system.
std::vector<NamedWorld<ShellWorld>> SystemShellWorlds();

}  // namespace corvane::contract
