#include "tests/wine/shell/Description.h"
#include "tests/wine/shell/Objects.h"

/// The connections' verbs.
namespace corvane::testshell {

namespace {

constexpr wchar_t kDisable[] = L"Disa&ble";
constexpr wchar_t kEnable[] = L"En&able";

}  // namespace

HRESULT TestFolderItem::Verbs(FolderItemVerbs** verbs) {
    if (const HRESULT failure = OrderedFailure(L"FolderItem.Verbs"); failure != S_OK) return failure;
    if (!entry_.starts_with(L"Connections\\"))
        return Give<TestVerbs>(verbs, entry_, std::vector<std::wstring>());
    std::vector<std::wstring> offered{L"&Status"};
    if (const DWORD settling = Number(entry_, L"Settling"); settling > 0) {
        SetNumber(entry_, L"Settling", settling - 1);
    } else {
        offered.emplace_back(Number(entry_, L"Enabled") != 0 ? kDisable : kEnable);
    }
    offered.insert(offered.end(), {L"&Rename", L"P&roperties"});
    return Give<TestVerbs>(verbs, entry_, offered);
}

HRESULT TestVerbs::get_Count(LONG* count) {
    if (const HRESULT failure = OrderedFailure(L"FolderItemVerbs.Count"); failure != S_OK) return failure;
    return GiveNumber(static_cast<LONG>(verbs_.size()), count);
}

HRESULT TestVerbs::Item(VARIANT position, FolderItemVerb** verb) {
    if (const HRESULT failure = OrderedFailure(L"FolderItemVerbs.Item"); failure != S_OK) return failure;
    if (verb == nullptr) return E_POINTER;
    *verb = nullptr;
    const auto place = static_cast<std::size_t>(NumberIn(position));
    return place < verbs_.size() ? Give<TestVerb>(verb, entry_, verbs_[place]) : S_FALSE;
}

HRESULT TestVerb::get_Name(BSTR* name) {
    if (const HRESULT failure = OrderedFailure(L"FolderItemVerb.Name"); failure != S_OK) return failure;
    return GiveText(name_, name);
}

HRESULT TestVerb::DoIt() {
    if (const HRESULT failure = OrderedFailure(L"FolderItemVerb.DoIt"); failure != S_OK) return failure;
    const bool enable = name_ == kEnable;
    if (!enable && name_ != kDisable) return S_OK;
    SetNumber(entry_, L"Enabled", enable ? 1 : 0);
    SetNumber(entry_, L"Settling", Number(entry_, L"Slow"));
    NoteInDiary((enable ? L"enable " : L"disable ") + Text(entry_, L"Name"));
    return S_OK;
}

}  // namespace corvane::testshell
