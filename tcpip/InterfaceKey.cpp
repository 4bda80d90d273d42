#include "tcpip/InterfaceKey.h"

#include "inventory/NicInfo.h"
#include "platform/Registry.h"
#include "platform/RegistryValues.h"

namespace corvane {

namespace {

void Check(Win32Error code, const std::string& valueName) {
    if (!Ok(code)) throw RegistryFailure{valueName, code};
}

}  // namespace

InterfaceKey::InterfaceKey(std::size_t adapter) : path_(TcpipKey(Nics.at(adapter).Id)) {}

void InterfaceKey::WriteDword(const std::string& name, std::uint32_t value) const {
    Check(RegSetBinary(kHkeyLocalMachine, path_, name, DwordBytes(value), kRegDword), name);
}

void InterfaceKey::WriteText(const std::string& name, const std::string& text, std::uint32_t type) const {
    Check(RegSetString(kHkeyLocalMachine, path_, name, text, type), name);
}

void InterfaceKey::WriteList(const std::string& name, const std::vector<std::string>& entries) const {
    WriteText(name, ListText(entries), kRegMultiSz);
}

std::string InterfaceKey::ReadText(const std::string& name) const {
    std::string text;
    Check(RegQueryString(kHkeyLocalMachine, path_, name, text), name);
    return text;
}

std::vector<std::string> InterfaceKey::ReadList(const std::string& name,
                                                const std::string& placeholder) const {
    const std::string text = ReadText(name);
    return ListPieces(text.empty() || text == kEmptyListText ? placeholder : text);
}

void InterfaceKey::Delete(const std::string& name) const {
    Check(RegDeleteValue(kHkeyLocalMachine, path_, name), name);
}

void InterfaceKey::SwitchDhcpAndReset(bool enable) const {
    WriteDword(kEnableDhcpValue, enable ? 1 : 0);
    WriteList(kIpAddressValue, {kNoAddress});
    WriteList(kSubnetMaskValue, {kNoAddress});
    WriteText(kDefaultGatewayValue, kEmptyListText, kRegMultiSz);
    WriteText(kDefaultGatewayMetricValue, kEmptyListText, kRegMultiSz);
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
