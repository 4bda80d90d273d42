#include "platform/CodePage.h"

#include <string>
#include <string_view>

#include "base/Text.h"
#include "base/Utf8.h"
#include "platform/windows/WideText.h"
#include "platform/windows/Windows.h"

namespace corvane {

namespace {

/// With UTF-8 as the system's code page there is nothing to replace by a substitute.
bool CodePageIsUtf8() { return GetACP() == CP_UTF8; }

/// One "?" for each pair of surrogates: the system would put one for either half, and no other code page that
/// a system can have holds the characters that need them.
std::wstring WithoutPairs(const std::wstring& wide) {
    std::wstring plain;
    for (const wchar_t unit : wide) {
        if (IS_LOW_SURROGATE(unit)) continue;
        plain += IS_HIGH_SURROGATE(unit) ? L'?' : unit;
    }
    return plain;
}

std::string FromWide(const std::wstring& wide) {
    const auto length = static_cast<int>(wide.size());
    const DWORD flags = CodePageIsUtf8() ? 0 : WC_NO_BEST_FIT_CHARS;
    const char* const substitute = CodePageIsUtf8() ? nullptr : "?";
    const int room = WideCharToMultiByte(CP_ACP, flags, wide.data(), length, nullptr, 0, substitute, nullptr);
    std::string bytes(static_cast<std::size_t>(room), '\0');
    WideCharToMultiByte(CP_ACP, flags, wide.data(), length, bytes.data(), room, substitute, nullptr);
    return bytes;
}

}  // namespace

std::string ToCodePage(std::string_view utf8) {
    if (AsciiRun(utf8) == utf8.size()) return std::string(utf8);
    const std::wstring wide = Wide(utf8);
    return FromWide(CodePageIsUtf8() ? wide : WithoutPairs(wide));
}

std::string FromCodePage(std::string_view bytes) {
    if (AsciiRun(bytes) == bytes.size()) return std::string(bytes);
    const auto length = static_cast<int>(bytes.size());
    const int room = MultiByteToWideChar(CP_ACP, 0, bytes.data(), length, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(room), L'\0');
    MultiByteToWideChar(CP_ACP, 0, bytes.data(), length, wide.data(), room);
    return Narrow(wide);
}

}  // namespace corvane
