#include "base/Utf8.h"

#include <cstdint>
#include <cstring>

namespace corvane {

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

bool IsUtf8(std::string_view bytes) {
    while (!bytes.empty()) {
        char32_t character = 0;
        const std::size_t length = DecodeUtf8(bytes, character);
        if (length == 0) return false;
        bytes.remove_prefix(length);
    }
    return true;
}

std::size_t AsciiRun(std::string_view text) {
    std::size_t length = 0;
    // Eight at a time.
    for (std::uint64_t word = 0; length + sizeof word <= text.size(); length += sizeof word) {
        std::memcpy(&word, text.data() + length, sizeof word);
        if ((word & 0x8080808080808080U) != 0) break;
    }
    while (length < text.size() && static_cast<unsigned char>(text[length]) < 0x80) ++length;
    return length;
}

}  // namespace corvane
