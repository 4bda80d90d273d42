#pragma once

#include <cstdint>
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

namespace corvane::contract {

/// Index of a link that the script `links` has made and named in this environment variable. A test failure,
/// and 0, when it has not.
inline std::uint32_t LinkIndex(const char* variable) {
    const char* const index = std::getenv(variable);
    EXPECT_NE(index, nullptr) << variable << " is not set: run the tests through tests/wine/contract/links";
    return index == nullptr ? 0 : static_cast<std::uint32_t>(std::strtoul(index, nullptr, 10));
}

}  // namespace corvane::contract
