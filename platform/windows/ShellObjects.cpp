#include "platform/windows/ShellObjects.h"

#include <cstdint>
#include <cstdio>
#include <utility>

#include "platform/windows/SystemMessage.h"
#include "platform/windows/WideText.h"

namespace corvane {

namespace {

using Microsoft::WRL::ComPtr;

/// A text that COM handed out, freed at the end of the scope.
class Bstr {
 public:
    Bstr() = default;
    ~Bstr() { SysFreeString(text_); }
    Bstr(const Bstr&) = delete;
    Bstr& operator=(const Bstr&) = delete;

    BSTR* Out() { return &text_; }
    [[nodiscard]] std::string Text() const {
        return text_ == nullptr ? std::string() : Narrow({text_, SysStringLen(text_)});
    }

 private:
    BSTR text_ = nullptr;
};

VARIANT Number(int number) {
    VARIANT variant;
    VariantInit(&variant);
    variant.vt = VT_I4;
    variant.lVal = number;
    return variant;
}

/// What the failed object says of it, else what the system says of the code.
std::string Description(HRESULT code) {
    ComPtr<IErrorInfo> info;
    Bstr said;
    if (GetErrorInfo(0, &info) == S_OK && SUCCEEDED(info->GetDescription(said.Out())) && !said.Text().empty())
        return said.Text();
    const std::string system = SystemMessageLine(static_cast<std::uint32_t>(code));
    if (!system.empty()) return system;
    char number[32];
    std::snprintf(number, sizeof number, "error 0x%08lX", static_cast<unsigned long>(code));
    return number;
}

void Check(HRESULT code) {
    if (FAILED(code)) throw ShellFailure(Description(code));
}

/// A call that succeeded must have given an object.
template <class T>
T& Given(const ComPtr<T>& object) {
    if (object == nullptr) throw ShellFailure(Description(E_POINTER));
    return *object.Get();
}

/// All members of a collection: its count, then each by its position.
template <class Value, class Member, class Collection>
std::vector<Value> Members(Collection& collection) {
    long count = 0;
    Check(collection.get_Count(&count));
    std::vector<Value> members;
    for (int i = 0; i < count; ++i) {
        ComPtr<Member> member;
        const HRESULT code = collection.Item(Number(i), &member);
        Check(code);
        // An item that has gone in the meantime.
        if (member != nullptr) members.push_back(Value(std::move(member)));
    }
    return members;
}

template <class Object>
std::string NameOf(Object& object) {
    Bstr name;
    Check(object.get_Name(name.Out()));
    return name.Text();
}

}  // namespace

Apartment::Apartment() : entered_(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {}

Apartment::~Apartment() {
    if (entered_) CoUninitialize();
}

std::string ShellVerb::Name() const { return NameOf(*verb_.Get()); }
void ShellVerb::Do() const { Check(verb_->DoIt()); }

std::string ShellFolderItem::Name() const { return NameOf(*item_.Get()); }

bool ShellFolderItem::IsFolder() const {
    VARIANT_BOOL isFolder = VARIANT_FALSE;
    Check(item_->get_IsFolder(&isFolder));
    return isFolder != VARIANT_FALSE;
}

ShellFolder ShellFolderItem::Open() const {
    ComPtr<IDispatch> object;
    Check(item_->get_GetFolder(&object));
    ComPtr<Folder> folder;
    Check(Given(object).QueryInterface(IID_PPV_ARGS(&folder)));
    return ShellFolder(std::move(folder));
}

std::vector<ShellVerb> ShellFolderItem::Verbs() const {
    ComPtr<FolderItemVerbs> verbs;
    Check(item_->Verbs(&verbs));
    return Members<ShellVerb, FolderItemVerb>(Given(verbs));
}

std::string ShellFolder::Title() const {
    Bstr title;
    Check(folder_->get_Title(title.Out()));
    return title.Text();
}

std::vector<ShellFolderItem> ShellFolder::Items() const {
    ComPtr<::FolderItems> items;
    Check(folder_->Items(&items));
    return Members<ShellFolderItem, FolderItem>(Given(items));
}

ShellFolder ShellNameSpace(int number) {
    ComPtr<IShellDispatch> shell;
    Check(CoCreateInstance(CLSID_Shell, nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER,
                           IID_PPV_ARGS(&shell)));
    ComPtr<Folder> folder;
    Check(Given(shell).NameSpace(Number(number), &folder));
    return ShellFolder(std::move(folder));
}

}  // namespace corvane
