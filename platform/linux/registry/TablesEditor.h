#pragma once

#include <string>
#include <vector>

#include "platform/linux/registry/RegistryStore.h"
#include "platform/linux/registry/RegistryTables.h"

namespace corvane {

/// The reads and writes of one transaction on one database. The caller has begun it and ends it.
class TablesEditor : public RegistryStore::Editor {
 public:
    explicit TablesEditor(RegistryTables& tables) : tables_(tables) {}

    RegistryRead ReadValue(const std::string& subkey, const std::string& name) override {
        return tables_.ReadValue(subkey, name);
    }
    Win32Error EnumSubkeys(const std::string& subkey, std::vector<std::string>& names) override {
        return tables_.EnumSubkeys(subkey, names);
    }
    Win32Error EnumValues(const std::string& subkey, std::vector<NamedValue>& values) override {
        return tables_.EnumValues(subkey, values);
    }

    Win32Error LoadLinks(std::vector<LinkRow>& links) override { return tables_.LoadLinks(links); }
    Win32Error SaveLink(const LinkRow& link) override { return tables_.SaveLink(link); }
    Win32Error DeleteLink(const std::string& id) override { return tables_.DeleteLink(id); }
    Win32Error CreateKey(const std::string& subkey) override { return tables_.CreateKey(subkey); }

    Win32Error DeleteKey(const std::string& subkey) override { return Forgiving(tables_.DeleteKey(subkey)); }

    Win32Error SetFromKernel(const std::string& subkey, const std::string& name,
                             const RegistryValue& value) override {
        return Set(subkey, name, Terminated(value), RegistryTables::Origin::kKernel);
    }

    bool UserSet(const std::string& subkey, const std::string& name) override {
        return tables_.UserSet(subkey, name);
    }

    Win32Error SetFromUser(const std::string& subkey, const std::string& name,
                           const RegistryValue& value) override {
        return Set(subkey, name, Terminated(value), RegistryTables::Origin::kUser);
    }

    Win32Error DeleteValue(const std::string& subkey, const std::string& name) override {
        return Forgiving(tables_.DeleteValue(subkey, name));
    }

    Win32Error SaveHeld(const std::string& linkId, const std::vector<HeldMessage>& messages) override {
        return tables_.SaveHeld(linkId, messages);
    }

    /// Makes the key and puts the value as it is given.
    Win32Error Set(const std::string& subkey, const std::string& name, const RegistryValue& value,
                   RegistryTables::Origin origin) {
        if (const Win32Error code = tables_.CreateKey(subkey); !Ok(code)) return code;
        // The key is there now, so "not found" says that a value stays as it is.
        return Forgiving(tables_.PutValue(subkey, name, value, origin));
    }

    /// One of Apply's changes. Text is stored as it is given.
    Win32Error Make(const RegistryStore::Change& change) {
        using Kind = RegistryStore::Change::Kind;
        switch (change.kind) {
            case Kind::kCreateKey:
                return CreateKey(change.subkey);
            case Kind::kDeleteKey:
                return DeleteKey(change.subkey);
            case Kind::kSetValue:
                return Set(change.subkey, change.name, change.value, RegistryTables::Origin::kUser);
            case Kind::kDeleteValue:
                return DeleteValue(change.subkey, change.name);
        }
        return Win32Error::kInvalidParameter;
    }

 private:
    static Win32Error Forgiving(Win32Error code) {
        return code == Win32Error::kFileNotFound ? Win32Error::kSuccess : code;
    }

    RegistryTables& tables_;
};

}  // namespace corvane
