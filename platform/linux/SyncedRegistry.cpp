#include "platform/linux/SyncedRegistry.h"

namespace corvane {

RegistryStore& SyncedRegistry::Current() {
    // A kernel that cannot be read leaves what the store says of the links as it was.
    static_cast<void>(machine_->Update());
    return machine_->Store();
}

RegistryRead SyncedRegistry::ReadValue(RegistryRoot root, const std::string& subkey,
                                       const std::string& name) {
    return Current().ReadValue(root, subkey, name);
}

Win32Error SyncedRegistry::WriteValue(RegistryRoot root, const std::string& subkey, const std::string& name,
                                      const RegistryValue& value) {
    return Current().WriteValue(root, subkey, name, value);
}

Win32Error SyncedRegistry::DeleteValue(RegistryRoot root, const std::string& subkey,
                                       const std::string& name) {
    return Current().DeleteValue(root, subkey, name);
}

Win32Error SyncedRegistry::CreateKey(RegistryRoot root, const std::string& subkey) {
    return Current().CreateKey(root, subkey);
}

Win32Error SyncedRegistry::EnumSubkeys(RegistryRoot root, const std::string& subkey,
                                       std::vector<std::string>& names) {
    // A program without rights reads a private image: what others wrote since is taken over with each
    // enumeration, that is, at the start of a refresh.
    if (machine_->Store().ReadOnly()) machine_->Forget();
    return Current().EnumSubkeys(root, subkey, names);
}

}  // namespace corvane
