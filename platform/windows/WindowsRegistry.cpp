#include "platform/windows/WindowsRegistry.h"

#include <functional>
#include <utility>

#include "base/Text.h"
#include "platform/CodePage.h"
#include "platform/windows/SystemError.h"
#include "platform/windows/Windows.h"

namespace corvane {

namespace {

constexpr DWORD kFirstNameLength = 32;
constexpr DWORD kLongestName = 102400;

HKEY Root(RegistryRoot root) {
    // The predefined handles are sign-extended numbers (winreg.h).
    return reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(static_cast<LONG>(root)));
}

Win32Error FirstFailure(Win32Error first, Win32Error second) { return Ok(first) ? second : first; }

/// Opens a key, has `use` do one thing with it, and closes it.
Win32Error WithKey(RegistryRoot root, const std::string& subkey, REGSAM access,
                   const std::function<LSTATUS(HKEY)>& use) {
    HKEY key = nullptr;
    const LSTATUS opened = RegOpenKeyExA(Root(root), ToCodePage(subkey).c_str(), 0, access, &key);
    if (opened != ERROR_SUCCESS) return FromSystem(opened);
    const Win32Error result = FromSystem(use(key));
    return FirstFailure(result, FromSystem(RegCloseKey(key)));
}

/// Asks for the size of a value, then for its data, until both agree: the value may change in between.
LSTATUS Query(HKEY key, const char* name, RegistryValue& value) {
    DWORD type = 0;
    DWORD size = 0;
    LSTATUS status = RegQueryValueExA(key, name, nullptr, &type, nullptr, &size);
    value.data.clear();
    while ((status == ERROR_SUCCESS || status == ERROR_MORE_DATA) && size > 0) {
        value.data.resize(size);
        status = RegQueryValueExA(key, name, nullptr, &type, value.data.data(), &size);
        if (status == ERROR_MORE_DATA && size > value.data.size()) continue;
        break;
    }
    if (status == ERROR_SUCCESS) value.data.resize(size);
    value.type = type;
    return status;
}

LSTATUS Enumerate(HKEY key, std::vector<std::string>& names) {
    DWORD count = 0;
    const LSTATUS asked = RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, &count, nullptr, nullptr, nullptr,
                                           nullptr, nullptr, nullptr, nullptr);
    if (asked != ERROR_SUCCESS || count == 0) return asked;
    names.clear();
    std::vector<char> name(kFirstNameLength);
    std::vector<char> className(kFirstNameLength);
    while (names.size() < count) {
        auto nameLength = static_cast<DWORD>(name.size());
        auto classLength = static_cast<DWORD>(className.size());
        const LSTATUS status = RegEnumKeyExA(key, static_cast<DWORD>(names.size()), name.data(), &nameLength,
                                             nullptr, className.data(), &classLength, nullptr);
        if (status == ERROR_SUCCESS) {
            names.push_back(FromCodePage({name.data(), nameLength}));
            continue;
        }
        if (status != ERROR_MORE_DATA) return status;
        if (name.size() * 2 >= kLongestName) return status;
        name.resize(name.size() * 2);
        className.resize(name.size());
    }
    return ERROR_SUCCESS;
}

}  // namespace

RegistryRead WindowsRegistry::ReadValue(RegistryRoot root, const std::string& subkey,
                                        const std::string& name) {
    RegistryRead read;
    read.code = WithKey(root, subkey, KEY_READ, [&](HKEY key) {
        read.keyOpened = true;
        return Query(key, ToCodePage(name).c_str(), read.value);
    });
    return read;
}

Win32Error WindowsRegistry::WriteValue(RegistryRoot root, const std::string& subkey, const std::string& name,
                                       const RegistryValue& value) {
    // The system stores a text that lacks its terminator with one when a NUL follows it in memory.
    std::vector<std::uint8_t> data = value.data;
    data.push_back(0);
    return WithKey(root, subkey, KEY_WRITE, [&](HKEY key) {
        return RegSetValueExA(key, ToCodePage(name).c_str(), 0, value.type, data.data(),
                              static_cast<DWORD>(value.data.size()));
    });
}

Win32Error WindowsRegistry::DeleteValue(RegistryRoot root, const std::string& subkey,
                                        const std::string& name) {
    return WithKey(root, subkey, KEY_WRITE,
                   [&](HKEY key) { return RegDeleteValueA(key, ToCodePage(name).c_str()); });
}

Win32Error WindowsRegistry::CreateKey(RegistryRoot root, const std::string& subkey) {
    HKEY key = nullptr;
    const LSTATUS made = RegCreateKeyA(Root(root), ToCodePage(subkey).c_str(), &key);
    return made == ERROR_SUCCESS ? FromSystem(RegCloseKey(key)) : FromSystem(made);
}

Win32Error WindowsRegistry::EnumSubkeys(RegistryRoot root, const std::string& subkey,
                                        std::vector<std::string>& names) {
    return WithKey(root, subkey, KEY_READ, [&](HKEY key) { return Enumerate(key, names); });
}

}  // namespace corvane
