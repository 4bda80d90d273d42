#include "mac/WriteNetworkAddress.h"

#include "inventory/NicInfo.h"
#include "platform/Registry.h"

namespace corvane {

bool WriteNetworkAddress(std::size_t adapter, const std::string& text) {
    static constexpr char kValue[] = "NetworkAddress";
    const std::string key = DriverKeyPath(Nics.at(adapter).DriverKey);
    Win32Error code = Win32Error::kSuccess;
    if (!text.empty()) {
        code = RegSetString(kHkeyLocalMachine, key, kValue, text, kRegSz);
    } else {
        std::string present;
        if (!Ok(RegQueryString(kHkeyLocalMachine, key, kValue, present))) return true;
        code = RegDeleteValue(kHkeyLocalMachine, key, kValue);
    }
    if (Ok(code)) return true;
    ShowRegistryError("Error! Cannot Write Registry", "Error while writing in windows registry.",
                      key + "\\" + kValue, code);
    return false;
}

}  // namespace corvane
