/// sample.exe: a program of which everything is known, for the tests of the harness. "box": a message box,
/// exit code 7. Otherwise a window with a menu, a list view, an edit control and a check box; its File menu
/// ends it with exit code 5.

#include <string>

#include "tests/wine/tools/System.h"

namespace corvane::test {

namespace {

constexpr int kExit = 100;

HWND Child(HWND parent, const wchar_t* kind, const wchar_t* text, DWORD style, int y, int height) {
    return CreateWindowExW(0, kind, text, WS_CHILD | WS_VISIBLE | WS_TABSTOP | style, 10, y, 360, height,
                           parent, nullptr, nullptr, nullptr);
}

void AddColumn(HWND list, int column, const wchar_t* title) {
    LVCOLUMNW info{};
    info.mask = LVCF_TEXT | LVCF_WIDTH;
    info.cx = 150;
    info.pszText = const_cast<wchar_t*>(title);
    SendMessageW(list, LVM_INSERTCOLUMNW, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&info));
}

void AddRow(HWND list, int row, const wchar_t* first, const wchar_t* second) {
    LVITEMW item{};
    item.mask = LVIF_TEXT;
    item.iItem = row;
    item.pszText = const_cast<wchar_t*>(first);
    SendMessageW(list, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
    item.iSubItem = 1;
    item.pszText = const_cast<wchar_t*>(second);
    SendMessageW(list, LVM_SETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
}

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_COMMAND && LOWORD(wParam) == kExit) PostQuitMessage(5);
    if (message == WM_DESTROY) PostQuitMessage(0);
    return DefWindowProcW(window, message, wParam, lParam);
}

int ShowWindowOfKnownContent() {
    InitCommonControls();
    WNDCLASSW info{};
    info.lpfnWndProc = Procedure;
    info.lpszClassName = L"Sample";
    info.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
    RegisterClassW(&info);
    const HMENU file = CreatePopupMenu();
    AppendMenuW(file, MF_STRING | MF_GRAYED, kExit + 1, L"&Print");
    AppendMenuW(file, MF_SEPARATOR, 0, nullptr);
    AppendMenuW(file, MF_STRING, kExit, L"E&xit");
    const HMENU bar = CreateMenu();
    AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(file), L"&File");
    const HWND window = CreateWindowExW(0, L"Sample", L"Sample \u00e9 \u2014", WS_OVERLAPPEDWINDOW, 0, 0, 400,
                                        400, nullptr, bar, nullptr, nullptr);
    const HWND list = Child(window, L"SysListView32", L"", LVS_REPORT | LVS_SHOWSELALWAYS, 10, 150);
    SendMessageW(list, LVM_SETEXTENDEDLISTVIEWSTYLE, 0, LVS_EX_FULLROWSELECT);
    AddColumn(list, 0, L"Name");
    AddColumn(list, 1, L"Address");
    AddRow(list, 0, L"eth0", L"10.1.0.2");
    AddRow(list, 1, L"caf\u00e9", L"10.1.0.3");
    const HWND edit = Child(window, L"Edit", L"", WS_BORDER, 180, 24);
    Child(window, L"Button", L"&Tick", BS_AUTOCHECKBOX, 220, 24);
    ShowWindow(window, SW_SHOW);
    SetFocus(edit);
    MSG message{};
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (IsDialogMessageW(window, &message) != FALSE) continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return static_cast<int>(message.wParam);
}

}  // namespace

}  // namespace corvane::test

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR arguments, int) {
    if (std::wstring(arguments) == L"box") {
        MessageBoxW(nullptr, L"First line\r\n\r\nThird \u00e9 \"line\"", L"A title", MB_OK | MB_ICONERROR);
        return 7;
    }
    return corvane::test::ShowWindowOfKnownContent();
}
