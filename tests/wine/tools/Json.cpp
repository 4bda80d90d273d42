#include "tests/wine/tools/Json.h"

#include <cstdio>

#include "tests/wine/tools/System.h"

namespace corvane::test {

std::string Utf8(std::wstring_view text) {
    if (text.empty()) return {};
    const int length = static_cast<int>(text.size());
    const int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, bytes.data(), size, nullptr, nullptr);
    return bytes;
}

std::string JsonText(std::string_view utf8) {
    std::string result = "\"";
    for (const char c : utf8) {
        const auto code = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            result += '\\';
            result += c;
        } else if (code < 0x20) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", code);
            result += escape;
        } else {
            result += c;
        }
    }
    return result + '"';
}

std::string JsonText(std::wstring_view text) { return JsonText(Utf8(text)); }

std::string JsonBool(bool value) { return value ? "true" : "false"; }

std::string JsonBytes(const std::vector<std::uint8_t>& bytes) {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string digits;
    for (const std::uint8_t byte : bytes) {
        digits += kDigits[byte >> 4U];
        digits += kDigits[byte & 15U];
    }
    return JsonText(digits);
}

std::string Error(std::string_view text) { return JsonObject().Add("error", JsonText(text)).Text(); }

std::string JsonArray(const std::vector<std::string>& values) {
    std::string result = "[";
    for (const std::string& value : values) {
        if (result.size() > 1) result += ',';
        result += value;
    }
    return result + ']';
}

JsonObject& JsonObject::Add(std::string_view name, const std::string& value) {
    if (!pairs_.empty()) pairs_ += ',';
    pairs_ += JsonText(name) + ':' + value;
    return *this;
}

std::string JsonObject::Text() const { return '{' + pairs_ + '}'; }

}  // namespace corvane::test
