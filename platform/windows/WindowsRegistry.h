#pragma once

#include "platform/Platform.h"

namespace corvane {

/// The registry of this machine, through its single-byte functions (winreg.h). Reads open with KEY_READ
/// (0x20019), writes and deletes with KEY_WRITE (0x20006); no other right is asked for. The result is the
/// first failure: the main call's, or else RegCloseKey's.
class WindowsRegistry : public RegistryApi {
 public:
    RegistryRead ReadValue(RegistryRoot root, const std::string& subkey, const std::string& name) override;
    Win32Error WriteValue(RegistryRoot root, const std::string& subkey, const std::string& name,
                          const RegistryValue& value) override;
    Win32Error DeleteValue(RegistryRoot root, const std::string& subkey, const std::string& name) override;
    Win32Error CreateKey(RegistryRoot root, const std::string& subkey) override;
    /// Buffers hold 32 characters at first, are doubled when a name is longer, and stay so for the rest of
    /// the enumeration; from 102400 characters on it ends with kMoreData.
    Win32Error EnumSubkeys(RegistryRoot root, const std::string& subkey,
                           std::vector<std::string>& names) override;
};

}  // namespace corvane
