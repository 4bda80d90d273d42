#include "platform/Registry.h"

#include <utility>

#include "base/Text.h"
#include "platform/RegistryValues.h"
#include "platform/Seat.h"

namespace corvane {

Win32Error RegQueryString(RegistryRoot root, const std::string& subkey, const std::string& name,
                          std::string& text) {
    const RegistryRead read = CurrentPlatform().registry->ReadValue(root, subkey, name);
    if (!Ok(read.code)) return read.code;
    if (!read.value.data.empty()) text = TextBeforeLastByte(read.value.data);
    return read.code;
}

Win32Error RegQueryBinary(RegistryRoot root, const std::string& subkey, const std::string& name,
                          std::vector<std::uint8_t>& data, std::uint32_t& type) {
    RegistryRead read = CurrentPlatform().registry->ReadValue(root, subkey, name);
    if (!read.keyOpened) return read.code;
    if (Ok(read.code)) {
        data = std::move(read.value.data);
        type = read.value.type;
    } else {
        data.assign(1, 0);
    }
    return read.code;
}

Win32Error RegSetString(RegistryRoot root, const std::string& subkey, const std::string& name,
                        const std::string& text, std::uint32_t type) {
    return CurrentPlatform().registry->WriteValue(root, subkey, name, {type, TextBytes(text)});
}

Win32Error RegSetBinary(RegistryRoot root, const std::string& subkey, const std::string& name,
                        const std::vector<std::uint8_t>& data, std::uint32_t type) {
    return CurrentPlatform().registry->WriteValue(root, subkey, name, {type, data});
}

Win32Error RegDeleteValue(RegistryRoot root, const std::string& subkey, const std::string& name) {
    return CurrentPlatform().registry->DeleteValue(root, subkey, name);
}

Win32Error RegCreateKey(RegistryRoot root, const std::string& subkey) {
    return CurrentPlatform().registry->CreateKey(root, subkey);
}

Win32Error RegEnumSubkeys(RegistryRoot root, const std::string& subkey, std::vector<std::string>& names) {
    return CurrentPlatform().registry->EnumSubkeys(root, subkey, names);
}

std::string RegErrorText(Win32Error code) {
    const char* text = "Undefined Error Code";
    switch (Number(code)) {
        case 0:
            text = "No Error";
            break;
        case 2:
        case 1010:
            text = "Bad Key Name";
            break;
        case 4:
        case 1012:
            text = "Can't Read Key";
            break;
        case 5:
            text = "Access to this key is denied";
            break;
        case 6:
            text = "Invalid registry key handle";
            break;
        case 8:
        case 14:
            text = "Out of memory";
            break;
        case 87:
            text = "Invalid Parameter";
            break;
        case 234:
            text = "There is more data than the buffer has been allocated to hold";
            break;
        case 1009:
        case 1015:
            text = "The Registry Database is corrupt!";
            break;
        case 1011:
            text = "Can't Open Key";
            break;
        case 1013:
            text = "Can't Write Key";
            break;
        default:
            break;
    }
    return "(" + std::to_string(Number(code)) + ") " + text;
}

void ShowRegistryError(const std::string& title, const std::string& firstLine, const std::string& path,
                       Win32Error code) {
    CurrentSeat().ShowBox(title,
                          firstLine + kCrLf + kCrLf + "Registry Path: HKEY_LOCAL_MACHINE\\" + path + kCrLf +
                              kCrLf + "Error: " + RegErrorText(code) + kCrLf + kCrLf + "Click OK to continue",
                          BoxIcon::kCritical, BoxButtons::kOk);
}

}  // namespace corvane
