#pragma once

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "base/Win32Error.h"

/// The contract suites run the same cases in several worlds: one on the fake of the role, one on each
/// back-end of the system that the suite is built for (linux/ and windows/, picked by the build).
namespace corvane::contract {

/// Something that a world's system cannot do as the contract asks. The cases then assert what it does
/// instead.
struct Limit {
    const char* what;   ///< A call of the role, or what it fails to do; the cases ask by this text.
    Win32Error answer;  ///< What the system says, which the back-end must hand on.
    const char* reason;
};

template <class World>
struct NamedWorld {
    std::string name;
    std::function<std::unique_ptr<World>()> make;
};

template <class World>
void PrintTo(const NamedWorld<World>& world, std::ostream* out) {
    *out << world.name;
}

/// The world of the fake, then those of the system.
template <class Fake, class World>
std::vector<NamedWorld<World>> WithFake(std::vector<NamedWorld<World>> worlds) {
    worlds.insert(worlds.begin(), {"Fake", [] { return std::make_unique<Fake>(); }});
    return worlds;
}

}  // namespace corvane::contract
