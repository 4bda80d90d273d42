#include "tests/wine/tools/ProbeControls.h"

#include <algorithm>
#include <array>
#include <cwctype>
#include <string>
#include <utility>

namespace corvane::test {

namespace {

constexpr int kLongestText = 1024;

std::wstring Lower(std::wstring text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](wchar_t c) { return static_cast<wchar_t>(std::towlower(c)); });
    return text;
}

int Ask(HWND window, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
    return static_cast<int>(SendMessageW(window, message, wParam, lParam));
}

LPARAM Pointer(void* data) { return reinterpret_cast<LPARAM>(data); }

WPARAM Position(int position) { return static_cast<WPARAM>(position); }

RECT OnScreen(HWND window, RECT rect) {
    MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&rect), 2);
    return rect;
}

Json MenuItem(HMENU menu, int position, HWND owner) {
    std::array<wchar_t, kLongestText> text{};
    MENUITEMINFOW info{};
    info.cbSize = sizeof info;
    info.fMask = MIIM_STRING | MIIM_STATE | MIIM_ID | MIIM_SUBMENU | MIIM_FTYPE;
    info.dwTypeData = text.data();
    info.cch = kLongestText;
    GetMenuItemInfoW(menu, static_cast<UINT>(position), TRUE, &info);
    Json item;
    item["text"] = Utf8(text.data());
    item["id"] = info.wID;
    item["enabled"] = (info.fState & (MFS_DISABLED | MFS_GRAYED)) == 0;
    item["checked"] = (info.fState & MFS_CHECKED) != 0;
    item["separator"] = (info.fType & MFT_SEPARATOR) != 0;
    RECT rect{};
    if (owner != nullptr && GetMenuItemRect(owner, menu, static_cast<UINT>(position), &rect) != FALSE) {
        item["rect"] = JsonRect(rect);
    }
    if (info.hSubMenu != nullptr) item["items"] = MenuItems(info.hSubMenu, nullptr);
    return item;
}

std::string ListViewText(HWND list, int row, int column) {
    std::array<wchar_t, kLongestText> text{};
    LVITEMW item{};
    item.iSubItem = column;
    item.pszText = text.data();
    item.cchTextMax = kLongestText;
    Ask(list, LVM_GETITEMTEXTW, Position(row), Pointer(&item));
    return Utf8(item.pszText);
}

void AddListView(Json& object, HWND list) {
    Json columns = Json::array();
    const HWND header = reinterpret_cast<HWND>(SendMessageW(list, LVM_GETHEADER, 0, 0));
    const int columnCount = std::max(0, Ask(header, HDM_GETITEMCOUNT));
    for (int column = 0; column < columnCount; ++column) {
        std::array<wchar_t, kLongestText> text{};
        HDITEMW item{};
        item.mask = HDI_TEXT;
        item.pszText = text.data();
        item.cchTextMax = kLongestText;
        Ask(header, HDM_GETITEMW, Position(column), Pointer(&item));
        columns.push_back(Utf8(text.data()));
    }
    Json rows = Json::array();
    Json rects = Json::array();
    Json selected = Json::array();
    const int rowCount = Ask(list, LVM_GETITEMCOUNT);
    for (int row = 0; row < rowCount; ++row) {
        Json texts = Json::array();
        for (int column = 0; column < std::max(1, columnCount); ++column) {
            texts.push_back(ListViewText(list, row, column));
        }
        rows.push_back(std::move(texts));
        RECT rect{};
        rect.left = LVIR_BOUNDS;
        Ask(list, LVM_GETITEMRECT, Position(row), Pointer(&rect));
        rects.push_back(JsonRect(OnScreen(list, rect)));
        if ((Ask(list, LVM_GETITEMSTATE, Position(row), LVIS_SELECTED) & LVIS_SELECTED) != 0) {
            selected.push_back(row);
        }
    }
    object["columns"] = std::move(columns);
    object["rows"] = std::move(rows);
    object["rowRects"] = std::move(rects);
    object["selected"] = std::move(selected);
    object["focusedRow"] = Ask(list, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED);
}

/// A combo box or a list box: the same questions by other names.
void AddChoices(Json& object, HWND window, UINT count, UINT length, UINT text, UINT current) {
    Json choices = Json::array();
    const int number = std::max(0, Ask(window, count));
    for (int i = 0; i < number; ++i) {
        std::wstring choice(static_cast<std::size_t>(std::max(0, Ask(window, length, Position(i)))) + 1,
                            L'\0');
        Ask(window, text, Position(i), Pointer(choice.data()));
        choice.resize(choice.find(L'\0'));
        choices.push_back(Utf8(choice));
    }
    object["choices"] = std::move(choices);
    object["choice"] = Ask(window, current);
}

void AddToolBar(Json& object, HWND bar) {
    Json buttons = Json::array();
    const int count = Ask(bar, TB_BUTTONCOUNT);
    for (int i = 0; i < count; ++i) {
        TBBUTTON button{};
        Ask(bar, TB_GETBUTTON, Position(i), Pointer(&button));
        if ((button.fsStyle & BTNS_SEP) != 0) continue;
        std::array<wchar_t, kLongestText> text{};
        const auto id = static_cast<WPARAM>(button.idCommand);
        if (Ask(bar, TB_GETBUTTONTEXTW, id, 0) > 0) Ask(bar, TB_GETBUTTONTEXTW, id, Pointer(text.data()));
        RECT rect{};
        Ask(bar, TB_GETITEMRECT, Position(i), Pointer(&rect));
        Json item;
        item["text"] = Utf8(text.data());
        item["id"] = button.idCommand;
        item["enabled"] = (button.fsState & TBSTATE_ENABLED) != 0;
        item["rect"] = JsonRect(OnScreen(bar, rect));
        buttons.push_back(std::move(item));
    }
    object["buttons"] = std::move(buttons);
}

void AddButton(Json& object, HWND button) {
    const auto kind = GetWindowLongPtrW(button, GWL_STYLE) & BS_TYPEMASK;
    object["checked"] = Ask(button, BM_GETCHECK) == BST_CHECKED;
    object["pushButton"] = kind == BS_PUSHBUTTON || kind == BS_DEFPUSHBUTTON || kind == BS_OWNERDRAW;
    object["default"] = kind == BS_DEFPUSHBUTTON;
}

void AddEdit(Json& object, HWND edit) {
    DWORD from = 0;
    DWORD to = 0;
    SendMessageW(edit, EM_GETSEL, reinterpret_cast<WPARAM>(&from), Pointer(&to));
    object["readOnly"] = (GetWindowLongPtrW(edit, GWL_STYLE) & ES_READONLY) != 0;
    object["selection"] = Json::array({from, to});
}

void AddStatic(Json& object, HWND window) {
    static const std::pair<const char*, LPWSTR> icons[] = {
        {"error", reinterpret_cast<LPWSTR>(IDI_ERROR)},
        {"warning", reinterpret_cast<LPWSTR>(IDI_WARNING)},
        {"information", reinterpret_cast<LPWSTR>(IDI_INFORMATION)},
        {"question", reinterpret_cast<LPWSTR>(IDI_QUESTION)}};
    if ((GetWindowLongPtrW(window, GWL_STYLE) & SS_TYPEMASK) != SS_ICON) return;
    const auto shown = reinterpret_cast<HICON>(SendMessageW(window, STM_GETICON, 0, 0));
    std::string name = "other";
    for (const auto& [icon, resource] : icons) {
        // The system's own icons are shared: every load gives the same handle.
        if (LoadIconW(nullptr, resource) == shown) name = icon;
    }
    object["icon"] = name;
}

}  // namespace

Json JsonRect(const RECT& rect) {
    return Json::array({rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top});
}

Json MenuItems(HMENU menu, HWND owner) {
    Json items = Json::array();
    const int count = GetMenuItemCount(menu);
    for (int i = 0; i < count; ++i) items.push_back(MenuItem(menu, i, owner));
    return items;
}

void AddControl(Json& object, HWND window, const std::wstring& name) {
    const std::wstring kind = Lower(name);
    if (kind == L"syslistview32") AddListView(object, window);
    if (kind == L"combobox") {
        AddChoices(object, window, CB_GETCOUNT, CB_GETLBTEXTLEN, CB_GETLBTEXT, CB_GETCURSEL);
    }
    if (kind == L"listbox") AddChoices(object, window, LB_GETCOUNT, LB_GETTEXTLEN, LB_GETTEXT, LB_GETCURSEL);
    if (kind == L"toolbarwindow32") AddToolBar(object, window);
    if (kind == L"button") AddButton(object, window);
    if (kind == L"edit" || kind.starts_with(L"richedit")) AddEdit(object, window);
    if (kind == L"static") AddStatic(object, window);
}

}  // namespace corvane::test
