#pragma once

#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/linux/registry/RegistryStore.h"
#include "programs/registry/RegistryTool.h"
#include "tests/unit/FileSupport.h"

/// Runs nicx-registry's commands in the test's own process.
namespace corvane::test {

using Bytes = std::vector<std::uint8_t>;
using Kind = RegistryStore::Change::Kind;

inline constexpr RegistryRoot kRoot = kHkeyLocalMachine;

struct Outcome {
    int code = -1;
    std::string out;
    std::string err;
    bool opened = false;
};

inline Outcome RunOn(RegistryStore& store, const std::vector<std::string>& arguments,
                     bool interactive = false, const std::string& typed = {}) {
    Outcome outcome;
    std::istringstream in(typed);
    std::ostringstream out;
    std::ostringstream err;
    RegistryConsole console{in, out, err, interactive};
    const auto open = [&]() -> RegistryStore& {
        outcome.opened = true;
        return store;
    };
    outcome.code = RunRegistryTool(arguments, open, console);
    outcome.out = out.str();
    outcome.err = err.str();
    return outcome;
}

class RegistryToolTest : public testing::Test {
 protected:
    RegistryToolTest() {
        EXPECT_EQ(store_.Apply(kRoot, {{Kind::kSetValue, "K", "Text", {kRegSz, {'a', 0x80, 0}}},
                                       {Kind::kSetValue, "K", "", {kRegSz, {'d', 0}}},
                                       {Kind::kSetValue, "K", "Multi", {kRegMultiSz, {'a', 0, 'b', 0, 0}}},
                                       {Kind::kSetValue, "K", "Number", {kRegDword, {0x2A, 1, 0, 0}}},
                                       {Kind::kSetValue, "K", "Raw", {kRegBinary, {0, 0xAB, 0x0C}}},
                                       {Kind::kSetValue, "K\\One", "Text", {kRegSz, {'1', 0}}},
                                       {Kind::kCreateKey, "K\\Two\\Deep", "", {}}}),
                  Win32Error::kSuccess);
    }

    Outcome Run(const std::vector<std::string>& arguments) { return RunOn(store_, arguments); }
    Outcome Ask(const std::vector<std::string>& arguments, const std::string& typed) {
        return RunOn(store_, arguments, true, typed);
    }
    RegistryRead Read(const std::string& key, const std::string& name) {
        return store_.ReadValue(kRoot, key, name);
    }

    TempFolder folder_;
    RegistryStore store_{folder_ / "registry.db"};
};

}  // namespace corvane::test
