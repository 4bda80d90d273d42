#include <cstdint>
#include <string>
#include <vector>

#include "tests/wine/tools/Observer.h"
#include "tests/wine/tools/System.h"

namespace corvane::test {

namespace {

constexpr DWORD kLongestName = 1024;

Json Code(LONG code) { return Error("code " + std::to_string(code)); }

std::vector<std::uint8_t> Bytes(const std::string& hexadecimal) {
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = 0; i + 1 < hexadecimal.size(); i += 2) {
        bytes.push_back(static_cast<std::uint8_t>(std::stoul(hexadecimal.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

/// An open key below HKEY_LOCAL_MACHINE; null when there is none.
class Key {
 public:
    explicit Key(const std::string& path) {
        code_ = RegOpenKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), 0, KEY_READ | KEY_WRITE, &key_);
    }
    ~Key() {
        if (key_ != nullptr) RegCloseKey(key_);
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

    [[nodiscard]] HKEY Get() const { return key_; }
    [[nodiscard]] LONG Code() const { return code_; }

 private:
    HKEY key_ = nullptr;
    LONG code_ = 0;
};

/// When a value of the key was written last.
std::uint64_t LastWrite(HKEY key) {
    FILETIME time{};
    RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                     nullptr, &time);
    return static_cast<std::uint64_t>(time.dwHighDateTime) << 32U | time.dwLowDateTime;
}

Json Values(HKEY key) {
    Json values = Json::object();
    for (DWORD i = 0;; ++i) {
        std::vector<wchar_t> name(kLongestName);
        std::vector<char> ansiName(kLongestName);
        DWORD length = kLongestName;
        DWORD ansiLength = kLongestName;
        DWORD type = 0;
        DWORD size = 0;
        const LONG code = RegEnumValueA(key, i, ansiName.data(), &ansiLength, nullptr, &type, nullptr, &size);
        if (code == ERROR_NO_MORE_ITEMS) return values;
        if (code != ERROR_SUCCESS) return Code(code);
        RegEnumValueW(key, i, name.data(), &length, nullptr, nullptr, nullptr, nullptr);
        std::vector<std::uint8_t> data(size);
        LONG read = ERROR_SUCCESS;
        // A value may grow while it is read.
        while ((read = RegQueryValueExA(key, ansiName.data(), nullptr, &type, data.data(), &size)) ==
               ERROR_MORE_DATA) {
            data.resize(size);
        }
        if (read != ERROR_SUCCESS) return Code(read);
        data.resize(size);
        values[Utf8({name.data(), length})] = Json::array({type, Hexadecimal(data)});
    }
}

}  // namespace

Json Interfaces(const Arguments& /*arguments*/) {
    ULONG size = 0;
    GetInterfaceInfo(nullptr, &size);
    std::vector<std::uint8_t> buffer(size + sizeof(IP_INTERFACE_INFO));
    size = static_cast<ULONG>(buffer.size());
    auto* const info = reinterpret_cast<IP_INTERFACE_INFO*>(buffer.data());
    const DWORD code = GetInterfaceInfo(info, &size);
    if (code == ERROR_NO_DATA) return Json::array();
    if (code != NO_ERROR) return Code(static_cast<LONG>(code));
    Json found = Json::array();
    for (LONG i = 0; i < info->NumAdapters; ++i) {
        const IP_ADAPTER_INDEX_MAP& entry = info->Adapter[i];
        found.push_back(Json::array({entry.Index, Utf8(entry.Name)}));
    }
    return found;
}

Json ReadKey(const Arguments& arguments) {
    if (arguments.size() != 1) return Error("usage: read KEY");
    const Key key(arguments[0]);
    if (key.Get() == nullptr) return nullptr;
    // Values have numbers, and those behind a new one get others: what is read is of one moment only when
    // nobody has written meanwhile.
    for (;;) {
        const std::uint64_t before = LastWrite(key.Get());
        Json values = Values(key.Get());
        if (LastWrite(key.Get()) == before) return values;
    }
}

Json Subkeys(const Arguments& arguments) {
    if (arguments.size() != 1) return Error("usage: keys KEY");
    const Key key(arguments[0]);
    if (key.Get() == nullptr) return nullptr;
    Json names = Json::array();
    for (DWORD i = 0;; ++i) {
        std::vector<wchar_t> name(kLongestName);
        DWORD length = kLongestName;
        const LONG code =
            RegEnumKeyExW(key.Get(), i, name.data(), &length, nullptr, nullptr, nullptr, nullptr);
        if (code == ERROR_NO_MORE_ITEMS) return names;
        if (code != ERROR_SUCCESS) return Code(code);
        names.push_back(Utf8({name.data(), length}));
    }
}

Json WriteValue(const Arguments& arguments) {
    if (arguments.size() != 4) return Error("usage: write KEY NAME TYPE HEXADECIMAL-BYTES");
    HKEY key = nullptr;
    LONG code = RegCreateKeyExA(HKEY_LOCAL_MACHINE, arguments[0].c_str(), 0, nullptr, 0, KEY_WRITE, nullptr,
                                &key, nullptr);
    if (code != ERROR_SUCCESS) return Code(code);
    const std::vector<std::uint8_t> data = Bytes(arguments[3]);
    code = RegSetValueExA(key, arguments[1].c_str(), 0, static_cast<DWORD>(std::stoul(arguments[2])),
                          data.data(), static_cast<DWORD>(data.size()));
    RegCloseKey(key);
    return code == ERROR_SUCCESS ? Json(nullptr) : Code(code);
}

Json Delete(const Arguments& arguments) {
    if (arguments.size() == 1) {
        const LONG code = RegDeleteTreeA(HKEY_LOCAL_MACHINE, arguments[0].c_str());
        return code == ERROR_SUCCESS ? Json(nullptr) : Code(code);
    }
    if (arguments.size() != 2) return Error("usage: delete KEY [NAME]");
    const Key key(arguments[0]);
    if (key.Get() == nullptr) return Code(key.Code());
    const LONG code = RegDeleteValueA(key.Get(), arguments[1].c_str());
    return code == ERROR_SUCCESS ? Json(nullptr) : Code(code);
}

}  // namespace corvane::test
