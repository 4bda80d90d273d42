#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "platform/Registry.h"

namespace corvane {
namespace {

TEST(RegErrorText, EveryCodeOfTheTableHasItsText) {
    const std::vector<std::pair<std::uint32_t, std::string>> table = {
        {0, "(0) No Error"},
        {2, "(2) Bad Key Name"},
        {4, "(4) Can't Read Key"},
        {5, "(5) Access to this key is denied"},
        {6, "(6) Invalid registry key handle"},
        {8, "(8) Out of memory"},
        {14, "(14) Out of memory"},
        {87, "(87) Invalid Parameter"},
        {234, "(234) There is more data than the buffer has been allocated to hold"},
        {1009, "(1009) The Registry Database is corrupt!"},
        {1010, "(1010) Bad Key Name"},
        {1011, "(1011) Can't Open Key"},
        {1012, "(1012) Can't Read Key"},
        {1013, "(1013) Can't Write Key"},
        {1015, "(1015) The Registry Database is corrupt!"},
    };
    for (const auto& [code, text] : table) EXPECT_EQ(RegErrorText(static_cast<Win32Error>(code)), text);
}

TEST(RegErrorText, EveryOtherCodeIsUndefined) {
    for (const std::uint32_t code : {1U, 3U, 7U, 13U, 122U, 1008U, 1014U, 1016U, 70000U}) {
        EXPECT_EQ(RegErrorText(static_cast<Win32Error>(code)),
                  "(" + std::to_string(code) + ") Undefined Error Code");
    }
}

}  // namespace
}  // namespace corvane
