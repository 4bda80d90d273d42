#include "platform/CodePage.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "base/Text.h"
#include "base/Utf8.h"

namespace corvane {

namespace {

/// Bytes 0x80 to 0x9F of code page 1252 (Unicode's published mapping CP1252.TXT). The five bytes that it
/// leaves open stand for the C1 control of the same number. All other bytes equal their code point.
constexpr std::array<char16_t, 32> kHighControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char ToByte(char32_t codePoint) {
    if (codePoint < 0x80 || (codePoint >= 0xA0 && codePoint <= 0xFF)) return static_cast<char>(codePoint);
    for (std::size_t i = 0; i < kHighControls.size(); ++i) {
        if (kHighControls[i] == codePoint) return static_cast<char>(0x80 + i);
    }
    return '?';
}

}  // namespace

std::string ToCodePage(std::string_view utf8) {
    std::size_t run = AsciiRun(utf8);
    std::string bytes(utf8.substr(0, run));
    while (run < utf8.size()) {
        utf8.remove_prefix(run);
        char32_t character = 0;
        const std::size_t length = DecodeUtf8(utf8, character);
        bytes += length == 0 ? '?' : ToByte(character);
        utf8.remove_prefix(length == 0 ? 1 : length);
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
        AppendUtf8(text, byte < 0xA0 ? char32_t{kHighControls[byte - 0x80U]} : char32_t{byte});
        bytes.remove_prefix(1);
        run = AsciiRun(bytes);
        text.append(bytes.substr(0, run));
    }
    return text;
}

}  // namespace corvane
