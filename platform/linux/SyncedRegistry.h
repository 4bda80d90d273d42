#pragma once

#include <memory>

#include "platform/Platform.h"
#include "platform/linux/Machine.h"

namespace corvane {

/// The registry role: the store, brought in step with the kernel before each operation.
class SyncedRegistry : public RegistryApi {
 public:
    explicit SyncedRegistry(std::shared_ptr<Machine> machine) : machine_(std::move(machine)) {}

    RegistryRead ReadValue(RegistryRoot root, const std::string& subkey, const std::string& name) override {
        return Current().ReadValue(root, subkey, name);
    }
    Win32Error WriteValue(RegistryRoot root, const std::string& subkey, const std::string& name,
                          const RegistryValue& value) override {
        return Current().WriteValue(root, subkey, name, value);
    }
    Win32Error DeleteValue(RegistryRoot root, const std::string& subkey, const std::string& name) override {
        return Current().DeleteValue(root, subkey, name);
    }
    Win32Error CreateKey(RegistryRoot root, const std::string& subkey) override {
        return Current().CreateKey(root, subkey);
    }
    Win32Error EnumSubkeys(RegistryRoot root, const std::string& subkey,
                           std::vector<std::string>& names) override {
        // A program without rights reads a private image: what others wrote since is taken over with each
        // enumeration, that is, at the start of a refresh.
        if (machine_->Store().ReadOnly()) machine_->Forget();
        return Current().EnumSubkeys(root, subkey, names);
    }
    void BeginReading() override { Current().BeginReading(); }
    void EndReading() override { machine_->Store().EndReading(); }

 private:
    RegistryStore& Current() {
        machine_->Update();
        return machine_->Store();
    }

    std::shared_ptr<Machine> machine_;
};

}  // namespace corvane
