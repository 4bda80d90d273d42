#include <new>
#include <string>

#include "tests/wine/shell/Objects.h"

/// The way in and out of the DLL. `regsvr32 testshell.dll` puts it in the place of the shell's own automation
/// object (CLSID_Shell), `regsvr32 /u` puts that back.
namespace corvane::testshell {

namespace {

constexpr wchar_t kServerKey[] =
    L"SOFTWARE\\Classes\\CLSID\\{13709620-C279-11CE-A49E-444553540000}\\InprocServer32";
constexpr wchar_t kShellsOwn[] = L"C:\\windows\\system32\\shell32.dll";

class Factory : public IClassFactory {
 public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        if (object == nullptr) return E_POINTER;
        const bool known = id == IID_IUnknown || id == IID_IClassFactory;
        *object = known ? static_cast<IClassFactory*>(this) : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    // There is one, for as long as the DLL is loaded.
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID id, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (outer != nullptr) return CLASS_E_NOAGGREGATION;
        auto* const shell = new (std::nothrow) TestShell;
        if (shell == nullptr) return E_OUTOFMEMORY;
        const HRESULT result = shell->QueryInterface(id, object);
        shell->Release();
        return result;
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
        liveObjects += lock != FALSE ? 1 : -1;
        return S_OK;
    }
};

HRESULT SetServer(const std::wstring& path, const std::wstring& threads) {
    LSTATUS status = RegSetKeyValueW(HKEY_LOCAL_MACHINE, kServerKey, nullptr, REG_SZ, path.c_str(),
                                     static_cast<DWORD>((path.size() + 1) * sizeof(wchar_t)));
    if (status == ERROR_SUCCESS)
        status = RegSetKeyValueW(HKEY_LOCAL_MACHINE, kServerKey, L"ThreadingModel", REG_SZ, threads.c_str(),
                                 static_cast<DWORD>((threads.size() + 1) * sizeof(wchar_t)));
    return HRESULT_FROM_WIN32(status);
}

/// Where this DLL lies; empty when the system does not say.
std::wstring OwnPath() {
    HMODULE module = nullptr;
    wchar_t path[MAX_PATH];
    const DWORD flags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    if (GetModuleHandleExW(flags, reinterpret_cast<LPCWSTR>(&OwnPath), &module) == FALSE) return {};
    const DWORD length = GetModuleFileNameW(module, path, MAX_PATH);
    return length < MAX_PATH ? std::wstring(path, length) : std::wstring();
}

}  // namespace
}  // namespace corvane::testshell

using namespace corvane::testshell;

STDAPI DllGetClassObject(REFCLSID id, REFIID interfaceId, void** object) {
    static Factory factory;
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    return id == CLSID_Shell ? factory.QueryInterface(interfaceId, object) : CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() { return liveObjects == 0 ? S_OK : S_FALSE; }

STDAPI DllRegisterServer() {
    const std::wstring path = OwnPath();
    return path.empty() ? E_UNEXPECTED : SetServer(path, L"Both");
}

STDAPI DllUnregisterServer() { return SetServer(kShellsOwn, L"Apartment"); }
