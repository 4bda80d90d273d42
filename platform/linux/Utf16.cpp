#include "platform/linux/Utf16.h"

#include <cstddef>
#include <cstdint>

namespace corvane {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

/// The character at the start of `text` (not empty) and its length in bytes; length 0 when it is not valid.
std::size_t DecodeUtf8(std::string_view text, char32_t& character) {
    const auto lead = static_cast<unsigned char>(text[0]);
    character = lead;
    if (lead < 0x80) return 1;
    if (lead < 0xC2 || lead > 0xF4) return 0;
    const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    if (text.size() < length) return 0;
    character = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if ((byte & 0xC0U) != 0x80) return 0;
        character = (character << 6U) | (byte & 0x3FU);
    }
    const bool overlong = (length == 3 && character < 0x800) || (length == 4 && character < 0x10000);
    const bool surrogate = character >= 0xD800 && character <= 0xDFFF;
    return overlong || surrogate || character > 0x10FFFF ? 0 : length;
}

void AppendUnit(std::string& bytes, char32_t unit) {
    bytes += static_cast<char>(unit & 0xFFU);
    bytes += static_cast<char>(unit >> 8U & 0xFFU);
}

void AppendUtf8(std::string& text, char32_t character) {
    const auto continuation = [&](unsigned shift) {
        return static_cast<char>(0x80U | (character >> shift & 0x3FU));
    };
    if (character < 0x80) {
        text += static_cast<char>(character);
    } else if (character < 0x800) {
        text += static_cast<char>(0xC0U | character >> 6U);
        text += continuation(0);
    } else if (character < 0x10000) {
        text += static_cast<char>(0xE0U | character >> 12U);
        text += continuation(6);
        text += continuation(0);
    } else {
        text += static_cast<char>(0xF0U | character >> 18U);
        text += continuation(12);
        text += continuation(6);
        text += continuation(0);
    }
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

bool IsUtf8(std::string_view bytes) {
    while (!bytes.empty()) {
        char32_t character = 0;
        const std::size_t length = DecodeUtf8(bytes, character);
        if (length == 0) return false;
        bytes.remove_prefix(length);
    }
    return true;
}

}  // namespace corvane
