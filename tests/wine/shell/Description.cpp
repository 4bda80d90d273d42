#include "tests/wine/shell/Description.h"

namespace corvane::testshell {

namespace {

constexpr wchar_t kDescription[] = L"SOFTWARE\\CorvaneTest\\Shell";
constexpr wchar_t kDiary[] = L"Diary";

std::wstring PathOf(const std::wstring& entry) {
    return entry.empty() ? kDescription : std::wstring(kDescription) + L"\\" + entry;
}

/// A text or list of texts with its last NUL left out; empty when there is none.
std::wstring Characters(const std::wstring& entry, const wchar_t* name, DWORD kind) {
    const std::wstring path = PathOf(entry);
    DWORD bytes = 0;
    if (RegGetValueW(HKEY_LOCAL_MACHINE, path.c_str(), name, kind, nullptr, nullptr, &bytes) != ERROR_SUCCESS)
        return {};
    std::wstring characters(bytes / sizeof(wchar_t), L'\0');
    if (RegGetValueW(HKEY_LOCAL_MACHINE, path.c_str(), name, kind, nullptr, characters.data(), &bytes) !=
        ERROR_SUCCESS)
        return {};
    characters.resize(bytes / sizeof(wchar_t));
    if (!characters.empty()) characters.pop_back();
    return characters;
}

}  // namespace

std::vector<std::wstring> Entries(const std::wstring& part) {
    std::vector<std::wstring> entries;
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, PathOf(part).c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS)
        return entries;
    wchar_t name[256];
    DWORD length = 256;
    for (DWORD i = 0;
         RegEnumKeyExW(key, i, name, &length, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS; ++i) {
        entries.push_back(part + L"\\" + std::wstring(name, length));
        length = 256;
    }
    RegCloseKey(key);
    return entries;
}

std::wstring Text(const std::wstring& entry, const wchar_t* name, const wchar_t* whenMissing) {
    const std::wstring text = Characters(entry, name, RRF_RT_REG_SZ);
    return text.empty() ? whenMissing : text;
}

DWORD Number(const std::wstring& entry, const wchar_t* name, DWORD whenMissing) {
    DWORD number = 0;
    DWORD bytes = sizeof number;
    const LSTATUS status = RegGetValueW(HKEY_LOCAL_MACHINE, PathOf(entry).c_str(), name, RRF_RT_REG_DWORD,
                                        nullptr, &number, &bytes);
    return status == ERROR_SUCCESS ? number : whenMissing;
}

void SetNumber(const std::wstring& entry, const wchar_t* name, DWORD number) {
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, PathOf(entry).c_str(), name, REG_DWORD, &number, sizeof number);
}

void NoteInDiary(const std::wstring& line) {
    std::wstring lines = Characters({}, kDiary, RRF_RT_REG_MULTI_SZ);
    lines += line;
    lines += L'\0';
    lines += L'\0';
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, kDescription, kDiary, REG_MULTI_SZ, lines.data(),
                    static_cast<DWORD>(lines.size() * sizeof(wchar_t)));
}

HRESULT OrderedFailure(const wchar_t* method) { return static_cast<HRESULT>(Number(L"Failures", method)); }

}  // namespace corvane::testshell
