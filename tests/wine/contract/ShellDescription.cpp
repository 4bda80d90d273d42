#include "tests/wine/contract/ShellDescription.h"

#include <gtest/gtest.h>

namespace corvane::contract {

namespace {

constexpr wchar_t kTestsKey[] = L"SOFTWARE\\CorvaneTest";
const std::wstring kShellKey = L"SOFTWARE\\CorvaneTest\\Shell";

void SetValue(const std::wstring& key, const std::wstring& name, DWORD type, const void* data,
              std::size_t size) {
    EXPECT_EQ(
        RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), name.c_str(), type, data, static_cast<DWORD>(size)),
        ERROR_SUCCESS);
}

void SetText(const std::wstring& key, const std::wstring& name, const std::wstring& text) {
    SetValue(key, name, REG_SZ, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
}

void SetNumber(const std::wstring& key, const std::wstring& name, DWORD number) {
    SetValue(key, name, REG_DWORD, &number, sizeof number);
}

/// The key of the item with this number: "0003".
std::wstring ItemKey(const std::wstring& part, int number) {
    const std::wstring digits = std::to_wstring(number);
    return kShellKey + L"\\" + part + L"\\" + std::wstring(4 - digits.size(), L'0') + digits;
}

void RemoveAll() { RegDeleteTreeW(HKEY_LOCAL_MACHINE, kTestsKey); }

}  // namespace

ShellDescription::ShellDescription() { RemoveAll(); }
ShellDescription::~ShellDescription() { RemoveAll(); }

void ShellDescription::AddPanelItem(const std::wstring& name, Kind kind) {
    const std::wstring key = ItemKey(L"Panel", panelItems_++);
    SetText(key, L"Name", name);
    SetNumber(key, L"Folder", kind == Kind::kNoFolder ? 0 : 1);
    SetNumber(key, L"Connections", kind == Kind::kConnections ? 1 : 0);
}

void ShellDescription::AddConnection(const std::wstring& name, bool enabled, DWORD slow) {
    const std::wstring key = ItemKey(L"Connections", connections_++);
    SetText(key, L"Name", name);
    SetNumber(key, L"Enabled", enabled ? 1 : 0);
    SetNumber(key, L"Slow", slow);
}

void ShellDescription::SetTitle(const std::wstring& title) { SetText(kShellKey, L"Title", title); }
void ShellDescription::RemoveSpace() { SetNumber(kShellKey, L"HasSpace", 0); }

void ShellDescription::Fail(const std::wstring& method, HRESULT code) {
    SetNumber(kShellKey + L"\\Failures", method, static_cast<DWORD>(code));
}

std::vector<std::wstring> ShellDescription::Diary() {
    wchar_t text[4096];
    DWORD size = sizeof text;
    std::vector<std::wstring> lines;
    if (RegGetValueW(HKEY_LOCAL_MACHINE, kShellKey.c_str(), L"Diary", RRF_RT_REG_MULTI_SZ, nullptr, text,
                     &size) != ERROR_SUCCESS)
        return lines;
    for (const wchar_t* line = text; *line != L'\0'; line += lines.back().size() + 1)
        lines.emplace_back(line);
    return lines;
}

}  // namespace corvane::contract
