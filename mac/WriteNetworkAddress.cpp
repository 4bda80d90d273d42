#include "mac/WriteNetworkAddress.h"

#include "inventory/NicInfo.h"
#include "platform/Registry.h"
#include "platform/RegistryValues.h"

namespace corvane {

bool WriteNetworkAddress(std::size_t adapter, const std::string& text) {
    const std::string key = DriverKeyPath(Nics.at(adapter).DriverKey);
    Win32Error code = Win32Error::kSuccess;
    if (!text.empty()) {
        code = RegSetString(kHkeyLocalMachine, key, kNetworkAddressValue, text, kRegSz);
    } else {
        std::string present;
        if (!Ok(RegQueryString(kHkeyLocalMachine, key, kNetworkAddressValue, present))) return true;
        code = RegDeleteValue(kHkeyLocalMachine, key, kNetworkAddressValue);
    }
    if (Ok(code)) return true;
    ShowRegistryError("Error! Cannot Write Registry", "Error while writing in windows registry.",
                      key + "\\" + kNetworkAddressValue, code);
    return false;
}

}  // namespace corvane
