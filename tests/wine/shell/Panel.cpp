#include "tests/wine/shell/Description.h"
#include "tests/wine/shell/Objects.h"

/// The Control Panel, its items and the folders in it.
namespace corvane::testshell {

namespace {

constexpr LONG kControlPanel = 3;
constexpr LONG kConnections = 0x31;

}  // namespace

HRESULT TestShell::NameSpace(VARIANT space, Folder** folder) {
    if (const HRESULT failure = OrderedFailure(L"Shell.NameSpace"); failure != S_OK) return failure;
    if (folder == nullptr) return E_POINTER;
    *folder = nullptr;
    const LONG number = NumberIn(space);
    if (number == kControlPanel) return Give<TestFolder>(folder, L"Control Panel", Entries(L"Panel"));
    if (number != kConnections || Number({}, L"HasSpace", 1) == 0) return S_FALSE;
    return Give<TestFolder>(folder, Text({}, L"Title", L"Network Connections"), Entries(L"Connections"));
}

HRESULT TestFolder::get_Title(BSTR* title) {
    if (const HRESULT failure = OrderedFailure(L"Folder.Title"); failure != S_OK) return failure;
    return GiveText(title_, title);
}

HRESULT TestFolder::Items(FolderItems** items) {
    if (const HRESULT failure = OrderedFailure(L"Folder.Items"); failure != S_OK) return failure;
    return Give<TestFolderItems>(items, entries_);
}

HRESULT TestFolderItems::get_Count(LONG* count) {
    if (const HRESULT failure = OrderedFailure(L"FolderItems.Count"); failure != S_OK) return failure;
    return GiveNumber(static_cast<LONG>(entries_.size()), count);
}

HRESULT TestFolderItems::Item(VARIANT position, FolderItem** item) {
    if (const HRESULT failure = OrderedFailure(L"FolderItems.Item"); failure != S_OK) return failure;
    if (item == nullptr) return E_POINTER;
    *item = nullptr;
    const auto place = static_cast<std::size_t>(NumberIn(position));
    return place < entries_.size() ? Give<TestFolderItem>(item, entries_[place]) : S_FALSE;
}

HRESULT TestFolderItem::get_Name(BSTR* name) {
    if (const HRESULT failure = OrderedFailure(L"FolderItem.Name"); failure != S_OK) return failure;
    return GiveText(Text(entry_, L"Name"), name);
}

HRESULT TestFolderItem::get_IsFolder(VARIANT_BOOL* isFolder) {
    if (const HRESULT failure = OrderedFailure(L"FolderItem.IsFolder"); failure != S_OK) return failure;
    return GiveNumber(Number(entry_, L"Folder") != 0 ? VARIANT_TRUE : VARIANT_FALSE, isFolder);
}

HRESULT TestFolderItem::get_GetFolder(IDispatch** folder) {
    if (const HRESULT failure = OrderedFailure(L"FolderItem.GetFolder"); failure != S_OK) return failure;
    if (folder == nullptr) return E_POINTER;
    *folder = nullptr;
    if (Number(entry_, L"Folder") == 0) return E_FAIL;
    const bool holdsConnections = Number(entry_, L"Connections") != 0;
    return Give<TestFolder>(folder, Text(entry_, L"Name"),
                            holdsConnections ? Entries(L"Connections") : std::vector<std::wstring>());
}

}  // namespace corvane::testshell
