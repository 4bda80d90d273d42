#include "platform/linux/registry/Utf16.h"

#include <cstddef>
#include <cstdint>

#include "base/Utf8.h"

namespace corvane {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

void AppendUnit(std::string& bytes, char32_t unit) {
    bytes += static_cast<char>(unit & 0xFFU);
    bytes += static_cast<char>(unit >> 8U & 0xFFU);
}

}  // namespace

std::string Utf16LeFromUtf8(std::string_view utf8) {
    std::string bytes;
    bytes.reserve(utf8.size() * 2);
    while (!utf8.empty()) {
        char32_t character = 0;
        std::size_t length = DecodeUtf8(utf8, character);
        if (length == 0) {
            character = kReplacement;
            length = 1;
        }
        if (character < 0x10000) {
            AppendUnit(bytes, character);
        } else {
            AppendUnit(bytes, 0xD800U + ((character - 0x10000U) >> 10U));
            AppendUnit(bytes, 0xDC00U + ((character - 0x10000U) & 0x3FFU));
        }
        utf8.remove_prefix(length);
    }
    return bytes;
}

std::string Utf8FromUtf16Le(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size() / 2);
    const std::size_t units = bytes.size() / 2;
    const auto unitAt = [&](std::size_t i) {
        const auto low = static_cast<unsigned char>(bytes[2 * i]);
        const auto high = static_cast<unsigned char>(bytes[2 * i + 1]);
        return static_cast<char32_t>(low | high << 8);
    };
    for (std::size_t i = 0; i < units; ++i) {
        char32_t character = unitAt(i);
        if (character >= 0xD800 && character <= 0xDFFF) {
            const char32_t next = i + 1 < units ? unitAt(i + 1) : 0;
            if (character < 0xDC00 && next >= 0xDC00 && next <= 0xDFFF) {
                character = 0x10000U + ((character - 0xD800U) << 10U) + (next - 0xDC00U);
                ++i;
            } else {
                character = kReplacement;
            }
        }
        AppendUtf8(text, character);
    }
    return text;
}

}  // namespace corvane
