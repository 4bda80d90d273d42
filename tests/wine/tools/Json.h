#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

/// What the tests' Windows programs answer with. Texts must be made UTF-8 and bytes hexadecimal before they
/// go into a value: a wide string or a vector of bytes would become an array of numbers.
namespace corvane::test {

/// Objects keep the order in which their members were added.
using Json = nlohmann::ordered_json;

/// UTF-16 as UTF-8. Halves of surrogate pairs that stand alone become U+FFFD.
std::string Utf8(std::wstring_view text);

/// Two hexadecimal digits for each byte.
std::string Hexadecimal(const std::vector<std::uint8_t>& bytes);

/// The answer to a question that cannot be answered: {"error": text}.
Json Error(std::string_view text);

/// A value as one line of UTF-8 without its end. Never throws for what texts hold: bytes that are no UTF-8
/// become U+FFFD.
std::string OneLine(const Json& value);

}  // namespace corvane::test
