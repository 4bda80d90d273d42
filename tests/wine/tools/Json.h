#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Just as much JSON as the tests' Windows programs answer with.
namespace corvane::test {

/// UTF-16 as UTF-8. Halves of surrogate pairs that stand alone become U+FFFD.
std::string Utf8(std::wstring_view text);

/// A JSON string with its quotes.
std::string JsonText(std::string_view utf8);
std::string JsonText(std::wstring_view text);

std::string JsonBool(bool value);

/// A JSON string of two hexadecimal digits for each byte.
std::string JsonBytes(const std::vector<std::uint8_t>& bytes);

/// The answer to a question that cannot be answered: {"error": text}.
std::string Error(std::string_view text);

/// "[a,b,c]" of JSON values.
std::string JsonArray(const std::vector<std::string>& values);

/// Collects "name":value pairs.
class JsonObject {
 public:
    /// `value` is a JSON value.
    JsonObject& Add(std::string_view name, const std::string& value);

    /// "{...}" of what was added, in that order.
    [[nodiscard]] std::string Text() const;

 private:
    std::string pairs_;
};

}  // namespace corvane::test
