#include "tests/wine/tools/ProbeWindows.h"

#include <array>
#include <string>
#include <utility>

#include "tests/wine/tools/ProbeControls.h"

namespace corvane::test {

namespace {

/// Asks a window that shows a pop-up menu for it.
constexpr UINT kGetMenuHandle = 0x01E1;

std::wstring ClassName(HWND window) {
    std::array<wchar_t, 256> name{};
    GetClassNameW(window, name.data(), static_cast<int>(name.size()));
    return name.data();
}

std::wstring Text(HWND window) {
    const auto length = static_cast<std::size_t>(SendMessageW(window, WM_GETTEXTLENGTH, 0, 0));
    std::wstring text(length + 1, L'\0');
    const auto copied = static_cast<std::size_t>(
        SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data())));
    text.resize(copied < length ? copied : length);
    return text;
}

std::wstring AccessibleName(HWND window) {
    IAccessible* accessible = nullptr;
    // MinGW's headers declare the identifier, its library lacks it.
    static const GUID kAccessible = {
        0x618736e0, 0x3c3d, 0x11cf, {0x81, 0x0c, 0x00, 0xaa, 0x00, 0x38, 0x9b, 0x71}};
    if (FAILED(AccessibleObjectFromWindow(window, static_cast<DWORD>(OBJID_CLIENT), kAccessible,
                                          reinterpret_cast<void**>(&accessible)))) {
        return {};
    }
    VARIANT self{};
    self.vt = VT_I4;
    self.lVal = CHILDID_SELF;
    BSTR name = nullptr;
    std::wstring result;
    if (SUCCEEDED(accessible->get_accName(self, &name)) && name != nullptr) {
        result = name;
        SysFreeString(name);
    }
    accessible->Release();
    return result;
}

Json ClientRect(HWND window) {
    RECT rect{};
    GetClientRect(window, &rect);
    MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&rect), 2);
    return JsonRect(rect);
}

void AddTopLevel(Json& object, HWND window, const std::wstring& name) {
    object["client"] = ClientRect(window);
    object["active"] = GetForegroundWindow() == window;
    const HWND owner = GetWindow(window, GW_OWNER);
    object["modal"] = owner != nullptr && IsWindowEnabled(owner) == FALSE;
    if (const HMENU bar = GetMenu(window); bar != nullptr) object["menu"] = MenuItems(bar, window);
    if (name == L"#32768") {
        const auto menu = reinterpret_cast<HMENU>(SendMessageW(window, kGetMenuHandle, 0, 0));
        if (menu != nullptr) object["popup"] = MenuItems(menu, window);
    }
}

Json Describe(HWND window, bool topLevel) {
    const std::wstring name = ClassName(window);
    RECT rect{};
    GetWindowRect(window, &rect);
    Json object;
    object["handle"] = reinterpret_cast<std::uintptr_t>(window);
    object["class"] = Utf8(name);
    object["text"] = Utf8(Text(window));
    object["rect"] = JsonRect(rect);
    object["visible"] = IsWindowVisible(window) != FALSE;
    object["enabled"] = IsWindowEnabled(window) != FALSE;
    object["focused"] = GetFocus() == window;
    object["id"] = GetDlgCtrlID(window);
    object["style"] = GetWindowLongPtrW(window, GWL_STYLE);
    object["name"] = Utf8(AccessibleName(window));
    if (topLevel) AddTopLevel(object, window, name);
    AddControl(object, window, name);
    Json children = Json::array();
    for (HWND child = GetWindow(window, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
        children.push_back(Describe(child, false));
    }
    object["children"] = std::move(children);
    return object;
}

BOOL CALLBACK AddVisible(HWND window, LPARAM found) {
    if (IsWindowVisible(window) != FALSE) {
        reinterpret_cast<Json*>(found)->push_back(Describe(window, true));
    }
    return TRUE;
}

}  // namespace

Json DescribeThread() {
    Json found = Json::array();
    EnumThreadWindows(GetCurrentThreadId(), AddVisible, reinterpret_cast<LPARAM>(&found));
    return found;
}

// Takes what the display has sent into account.
Json DescribeInput() { return GetInputState() != FALSE; }

}  // namespace corvane::test
