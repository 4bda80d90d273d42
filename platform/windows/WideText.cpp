#include "platform/windows/WideText.h"

#include "base/Utf8.h"
#include "platform/windows/Windows.h"

namespace corvane {

namespace {

constexpr wchar_t kVerbatim[] = L"\\\\?\\";
constexpr wchar_t kVerbatimShare[] = L"\\\\?\\UNC\\";

bool IsSurrogate(wchar_t unit) { return unit >= 0xD800 && unit <= 0xDFFF; }

void AppendUnits(std::wstring& wide, char32_t character) {
    if (character < 0x10000) {
        wide += static_cast<wchar_t>(character);
        return;
    }
    wide += static_cast<wchar_t>(0xD800U + ((character - 0x10000U) >> 10U));
    wide += static_cast<wchar_t>(0xDC00U + ((character - 0x10000U) & 0x3FFU));
}

}  // namespace

std::wstring Wide(std::string_view utf8) {
    std::wstring wide;
    wide.reserve(utf8.size());
    while (!utf8.empty()) {
        char32_t character = 0;
        const std::size_t length = DecodeUtf8(utf8, character);
        AppendUnits(wide, length == 0 ? U'?' : character);
        utf8.remove_prefix(length == 0 ? 1 : length);
    }
    return wide;
}

std::string Narrow(std::wstring_view wide) {
    static constexpr char32_t kReplacement = 0xFFFD;
    std::string text;
    text.reserve(wide.size());
    for (std::size_t i = 0; i < wide.size(); ++i) {
        char32_t character = wide[i];
        if (IsSurrogate(wide[i])) {
            const wchar_t next = i + 1 < wide.size() ? wide[i + 1] : L'\0';
            const bool pair = character < 0xDC00 && IsSurrogate(next) && next >= 0xDC00;
            character = pair ? 0x10000U + ((character - 0xD800U) << 10U) + (next - 0xDC00U) : kReplacement;
            if (pair) ++i;
        }
        AppendUtf8(text, character);
    }
    return text;
}

std::wstring SystemPath(std::string_view utf8) {
    const std::wstring path = Wide(utf8);
    if (path.starts_with(kVerbatim)) return path;
    const DWORD room = GetFullPathNameW(path.c_str(), 0, nullptr, nullptr);
    std::wstring full(room, L'\0');
    const DWORD length = room == 0 ? 0 : GetFullPathNameW(path.c_str(), room, full.data(), nullptr);
    if (length == 0 || length >= room) return path;
    full.resize(length);
    // Devices and what is verbatim already stay as they are.
    if (full.starts_with(L"\\\\.\\") || full.starts_with(kVerbatim)) return full;
    return full.starts_with(L"\\\\") ? kVerbatimShare + full.substr(2) : kVerbatim + full;
}

}  // namespace corvane
