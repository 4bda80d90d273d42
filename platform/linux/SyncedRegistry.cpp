#include "platform/linux/SyncedRegistry.h"

#include <algorithm>

#include "platform/RegistryKeys.h"
#include "platform/RegistryValues.h"
#include "platform/Seat.h"
#include "platform/linux/registry/RegistryTables.h"
#include "platform/linux/resolver/Dns.h"

namespace corvane {

RegistryStore& SyncedRegistry::Current() {
    machine_->Update();
    return machine_->Store();
}

RegistryRead SyncedRegistry::ReadValue(RegistryRoot root, const std::string& subkey,
                                       const std::string& name) {
    return Current().ReadValue(root, subkey, name);
}

Win32Error SyncedRegistry::WriteValue(RegistryRoot root, const std::string& subkey, const std::string& name,
                                      const RegistryValue& value) {
    return Followed(Current().WriteValue(root, subkey, name, value), subkey, name);
}

Win32Error SyncedRegistry::DeleteValue(RegistryRoot root, const std::string& subkey,
                                       const std::string& name) {
    return Followed(Current().DeleteValue(root, subkey, name), subkey, name);
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

bool SyncedRegistry::NamesServersInForce(const std::string& subkey, const std::string& name) {
    if (FoldName(name) != FoldName(kNameServerValue)) return false;
    const std::string key = FoldPath(subkey);
    const auto& rows = machine_->Rows();
    const auto row = std::find_if(rows.begin(), rows.end(), [&](const LinkRow& candidate) {
        return candidate.present && FoldPath(TcpipKey(candidate.id)) == key;
    });
    if (row == rows.end()) return false;
    const auto& links = machine_->Picture().links;
    return std::any_of(links.begin(), links.end(),
                       [&](const KernelLink& link) { return link.index == row->index && link.Up(); });
}

Win32Error SyncedRegistry::Followed(Win32Error written, const std::string& subkey, const std::string& name) {
    if (!Ok(written) || !NamesServersInForce(subkey, name)) return written;
    const Refusal refusal = ApplyDns(machine_->Store(), machine_->Kernel());
    if (refusal) CurrentSeat().Warn(refusal.Words());
    return written;
}

}  // namespace corvane
