#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "platform/Text.h"

namespace corvane {

namespace {

/// Bytes 0x80 to 0x9F of code page 1252 (Unicode's published mapping CP1252.TXT). The five bytes that it
/// leaves open stand for the C1 control of the same number. All other bytes equal their code point.
constexpr std::array<char16_t, 32> kHighControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

/// Number of bytes at the start of `text` that are ASCII; eight at a time, since nearly all text is.
std::size_t AsciiRun(std::string_view text) {
    std::size_t length = 0;
    for (std::uint64_t word = 0; length + sizeof word <= text.size(); length += sizeof word) {
        std::memcpy(&word, text.data() + length, sizeof word);
        if ((word & 0x8080808080808080U) != 0) break;
    }
    while (length < text.size() && static_cast<unsigned char>(text[length]) < 0x80) ++length;
    return length;
}

struct Decoded {
    char32_t codePoint = 0;
    std::size_t length = 0;  ///< Bytes taken; 0 when the first byte begins no valid sequence.
};

/// The character at the start of `text`, which must not be empty. Overlong forms, surrogates and values above
/// U+10FFFF are invalid (RFC 3629, section 3).
Decoded DecodeOne(std::string_view text) {
    const auto byteAt = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byteAt(0);
    std::size_t length = 0;
    char32_t codePoint = 0;
    char32_t smallest = 0;
    if (lead < 0x80) return {lead, 1};
    if ((lead & 0xE0U) == 0xC0) {
        length = 2, codePoint = lead & 0x1FU, smallest = 0x80;
    } else if ((lead & 0xF0U) == 0xE0) {
        length = 3, codePoint = lead & 0x0FU, smallest = 0x800;
    } else if ((lead & 0xF8U) == 0xF0) {
        length = 4, codePoint = lead & 0x07U, smallest = 0x10000;
    } else {
        return {};
    }
    if (text.size() < length) return {};
    for (std::size_t i = 1; i < length; ++i) {
        if ((byteAt(i) & 0xC0U) != 0x80) return {};
        codePoint = (codePoint << 6U) | (byteAt(i) & 0x3FU);
    }
    const bool surrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
    if (codePoint < smallest || codePoint > 0x10FFFF || surrogate) return {};
    return {codePoint, length};
}

char ToByte(char32_t codePoint) {
    if (codePoint < 0x80 || (codePoint >= 0xA0 && codePoint <= 0xFF)) return static_cast<char>(codePoint);
    for (std::size_t i = 0; i < kHighControls.size(); ++i) {
        if (kHighControls[i] == codePoint) return static_cast<char>(0x80 + i);
    }
    return '?';
}

void AppendUtf8(std::string& text, char16_t codePoint) {
    const unsigned value = codePoint;
    if (value < 0x80) {
        text += static_cast<char>(value);
    } else if (value < 0x800) {
        text += static_cast<char>(0xC0U | (value >> 6U));
        text += static_cast<char>(0x80U | (value & 0x3FU));
    } else {
        text += static_cast<char>(0xE0U | (value >> 12U));
        text += static_cast<char>(0x80U | ((value >> 6U) & 0x3FU));
        text += static_cast<char>(0x80U | (value & 0x3FU));
    }
}

}  // namespace

std::string ToCodePage(std::string_view utf8) {
    std::size_t run = AsciiRun(utf8);
    std::string bytes(utf8.substr(0, run));
    while (run < utf8.size()) {
        utf8.remove_prefix(run);
        const Decoded decoded = DecodeOne(utf8);
        bytes += decoded.length == 0 ? '?' : ToByte(decoded.codePoint);
        utf8.remove_prefix(decoded.length == 0 ? 1 : decoded.length);
        run = AsciiRun(utf8);
        bytes.append(utf8.substr(0, run));
    }
    return bytes;
}

std::string FromCodePage(std::string_view bytes) {
    std::size_t run = AsciiRun(bytes);
    std::string text(bytes.substr(0, run));
    while (run < bytes.size()) {
        bytes.remove_prefix(run);
        const auto byte = static_cast<unsigned char>(bytes.front());
        AppendUtf8(text, byte < 0xA0 ? kHighControls[byte - 0x80U] : char16_t{byte});
        bytes.remove_prefix(1);
        run = AsciiRun(bytes);
        text.append(bytes.substr(0, run));
    }
    return text;
}

}  // namespace corvane
