#include "tcpip/InterfaceKey.h"

#include "base/Text.h"
#include "inventory/NicInfo.h"
#include "platform/Registry.h"

namespace corvane {

namespace {

void Check(Win32Error code, const std::string& valueName) {
    if (!Ok(code)) throw RegistryFailure{valueName, code};
}

}  // namespace

std::string MultiString(const std::vector<std::string>& entries) { return Join(entries, kNul) + kNul + kNul; }

InterfaceKey::InterfaceKey(std::size_t adapter) : path_(TcpipKey(Nics.at(adapter).Id)) {}

void InterfaceKey::WriteDword(const std::string& name, std::uint32_t value) const {
    Check(RegSetBinary(kHkeyLocalMachine, path_, name, DwordBytes(value), kRegDword), name);
}

void InterfaceKey::WriteText(const std::string& name, const std::string& text, std::uint32_t type) const {
    Check(RegSetString(kHkeyLocalMachine, path_, name, text, type), name);
}

void InterfaceKey::WriteList(const std::string& name, const std::vector<std::string>& entries) const {
    WriteText(name, MultiString(entries), kRegMultiSz);
}

std::string InterfaceKey::ReadText(const std::string& name) const {
    std::string text;
    Check(RegQueryString(kHkeyLocalMachine, path_, name, text), name);
    return text;
}

std::vector<std::string> InterfaceKey::ReadList(const std::string& name,
                                                const std::string& placeholder) const {
    const std::string text = ReadText(name);
    return Split(text.empty() || text == kNul ? placeholder : text, '\0');
}

void InterfaceKey::Delete(const std::string& name) const {
    Check(RegDeleteValue(kHkeyLocalMachine, path_, name), name);
}

void InterfaceKey::SwitchDhcpAndReset(bool enable) const {
    WriteDword("EnableDHCP", enable ? 1 : 0);
    WriteList("IPAddress", {kNoAddress});
    WriteList("SubnetMask", {kNoAddress});
    WriteText("DefaultGateway", kNul, kRegMultiSz);
    WriteText("DefaultGatewayMetric", kNul, kRegMultiSz);
}

bool RunOnKey(const InterfaceKey& key, const std::function<void(const InterfaceKey&)>& routine,
              const FailureReport& report) {
    try {
        routine(key);
        return true;
    } catch (const RegistryFailure& failure) {
        report(key, failure);
        return false;
    }
}

void ReportWrite(const InterfaceKey& key, const RegistryFailure& failure) {
    ShowRegistryError("Error! Cannot Write Registry", "Error while writing in windows registry.",
                      key.Path() + "\\" + failure.valueName, failure.code);
}

}  // namespace corvane
