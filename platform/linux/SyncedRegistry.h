#pragma once

#include <memory>
#include <string>

#include "platform/Platform.h"
#include "platform/linux/links/Machine.h"

namespace corvane {

/// The registry role: the store, brought in step with the kernel before each operation.
class SyncedRegistry : public RegistryApi {
 public:
    explicit SyncedRegistry(std::shared_ptr<Machine> machine) : machine_(std::move(machine)) {}

    RegistryRead ReadValue(RegistryRoot root, const std::string& subkey, const std::string& name) override;
    Win32Error WriteValue(RegistryRoot root, const std::string& subkey, const std::string& name,
                          const RegistryValue& value) override;
    Win32Error DeleteValue(RegistryRoot root, const std::string& subkey, const std::string& name) override;
    Win32Error CreateKey(RegistryRoot root, const std::string& subkey) override;
    Win32Error EnumSubkeys(RegistryRoot root, const std::string& subkey,
                           std::vector<std::string>& names) override;
    void BeginReading() override { Current().BeginReading(); }
    void EndReading() override { machine_->Store().EndReading(); }

 private:
    RegistryStore& Current();

    std::shared_ptr<Machine> machine_;
};

}  // namespace corvane
