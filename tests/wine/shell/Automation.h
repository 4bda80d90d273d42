#pragma once

#include <atomic>
#include <string>
#include <utility>

// In this order: the first says how the others are read.
// clang-format off
#include "platform/windows/Windows.h"
#include <oleauto.h>
#include <shldisp.h>
// clang-format on

/// What the objects of the tests' shell have in common.
namespace corvane::testshell {

/// Objects that are alive, and locks of the server: while there are any the DLL stays.
inline std::atomic<long> liveObjects = 0;

/// An object that is counted by reference and begins with one. It answers to Interface, to IDispatch and to
/// IUnknown; calls by name (IDispatch) are not offered.
template <class Interface>
class Automation : public Interface {
 public:
    Automation() { ++liveObjects; }
    virtual ~Automation() { --liveObjects; }
    Automation(const Automation&) = delete;
    Automation& operator=(const Automation&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (id != IID_IUnknown && id != IID_IDispatch && id != __uuidof(Interface)) return E_NOINTERFACE;
        AddRef();
        *object = static_cast<Interface*>(this);
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references_;
        if (left == 0) delete this;
        return left;
    }

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        return E_NOTIMPL;
    }

    // Every interface of the shell has these two, which nobody asks for.
    HRESULT STDMETHODCALLTYPE get_Application(IDispatch**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_Parent(IDispatch**) override { return E_NOTIMPL; }

 private:
    std::atomic<ULONG> references_ = 1;
};

/// Hands out a new object.
template <class Object, class Interface, class... Arguments>
HRESULT Give(Interface** out, Arguments&&... arguments) {
    if (out == nullptr) return E_POINTER;
    *out = new Object(std::forward<Arguments>(arguments)...);
    return S_OK;
}

inline HRESULT GiveText(const std::wstring& text, BSTR* out) {
    if (out == nullptr) return E_POINTER;
    *out = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    return *out == nullptr ? E_OUTOFMEMORY : S_OK;
}

template <class Number>
HRESULT GiveNumber(Number number, Number* out) {
    if (out == nullptr) return E_POINTER;
    *out = number;
    return S_OK;
}

/// The whole number in an argument, -1 when it holds none.
inline LONG NumberIn(VARIANT argument) {
    VARIANT number;
    VariantInit(&number);
    return SUCCEEDED(VariantChangeType(&number, &argument, 0, VT_I4)) ? number.lVal : -1;
}

}  // namespace corvane::testshell
