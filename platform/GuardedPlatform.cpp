#include "platform/GuardedPlatform.h"

#include <utility>

#include "platform/Guarded.h"

namespace corvane {

namespace {

Win32Error CodeOf(Win32Error code, const char*) { return code; }

template <class Row>
TableRead<Row> TableOf(Win32Error code, const char*) {
    return {TableRead<Row>::Outcome::kFailed, code, {}};
}

/// An answer without contents.
template <class Answer>
Answer NothingOf(Win32Error, const char*) {
    return Answer();
}

class GuardedRegistry : public RegistryApi {
 public:
    explicit GuardedRegistry(std::shared_ptr<RegistryApi> role) : role_(std::move(role)) {}

    RegistryRead ReadValue(RegistryRoot root, const std::string& subkey, const std::string& name) override {
        return Guarded([&] { return role_->ReadValue(root, subkey, name); },
                       [](Win32Error code, const char*) {
                           return RegistryRead{code, false, {}};
                       });
    }
    Win32Error WriteValue(RegistryRoot root, const std::string& subkey, const std::string& name,
                          const RegistryValue& value) override {
        return Guarded([&] { return role_->WriteValue(root, subkey, name, value); }, CodeOf);
    }
    Win32Error DeleteValue(RegistryRoot root, const std::string& subkey, const std::string& name) override {
        return Guarded([&] { return role_->DeleteValue(root, subkey, name); }, CodeOf);
    }
    Win32Error CreateKey(RegistryRoot root, const std::string& subkey) override {
        return Guarded([&] { return role_->CreateKey(root, subkey); }, CodeOf);
    }
    Win32Error EnumSubkeys(RegistryRoot root, const std::string& subkey,
                           std::vector<std::string>& names) override {
        return Guarded([&] { return role_->EnumSubkeys(root, subkey, names); }, CodeOf);
    }
    void BeginReading() override {
        Guarded([&] { role_->BeginReading(); }, NothingOf<void>);
    }
    void EndReading() override {
        Guarded([&] { role_->EndReading(); }, NothingOf<void>);
    }

 private:
    std::shared_ptr<RegistryApi> role_;
};

class GuardedIpHelper : public IpHelperApi {
 public:
    explicit GuardedIpHelper(std::shared_ptr<IpHelperApi> role) : role_(std::move(role)) {}

    TableRead<InterfaceEntry> GetInterfaceInfo() override {
        return Guarded([&] { return role_->GetInterfaceInfo(); }, TableOf<InterfaceEntry>);
    }
    Win32Error GetIfEntry(std::uint32_t index, IfRow& row) override {
        return Guarded([&] { return role_->GetIfEntry(index, row); }, CodeOf);
    }
    TableRead<IpAddrRow> GetIpAddrTable() override {
        return Guarded([&] { return role_->GetIpAddrTable(); }, TableOf<IpAddrRow>);
    }
    TableRead<IpForwardRow> GetIpForwardTable() override {
        return Guarded([&] { return role_->GetIpForwardTable(); }, TableOf<IpForwardRow>);
    }
    Win32Error AddIPAddress(const Ipv4Bytes& address, const Ipv4Bytes& mask, std::uint32_t ifIndex,
                            std::uint32_t& nteContext) override {
        return Guarded([&] { return role_->AddIPAddress(address, mask, ifIndex, nteContext); }, CodeOf);
    }
    Win32Error DeleteIPAddress(std::uint32_t nteContext) override {
        return Guarded([&] { return role_->DeleteIPAddress(nteContext); }, CodeOf);
    }
    Win32Error CreateIpForwardEntry(const IpForwardRow& row) override {
        return Guarded([&] { return role_->CreateIpForwardEntry(row); }, CodeOf);
    }
    Win32Error DeleteIpForwardEntry(const IpForwardRow& row) override {
        return Guarded([&] { return role_->DeleteIpForwardEntry(row); }, CodeOf);
    }
    Win32Error IpReleaseAddress(const InterfaceEntry& entry) override {
        return Guarded([&] { return role_->IpReleaseAddress(entry); }, CodeOf);
    }
    Win32Error IpRenewAddress(const InterfaceEntry& entry) override {
        return Guarded([&] { return role_->IpRenewAddress(entry); }, CodeOf);
    }
    std::string SystemText(Win32Error code) override {
        return Guarded([&] { return role_->SystemText(code); }, NothingOf<std::string>);
    }

 private:
    std::shared_ptr<IpHelperApi> role_;
};

class GuardedShell : public ShellApi {
 public:
    explicit GuardedShell(std::shared_ptr<ShellApi> role) : role_(std::move(role)) {}

    Refusal ControlPanelItems(std::vector<ShellItem>& items) override {
        return Guarded([&] { return role_->ControlPanelItems(items); }, RefusalOf);
    }
    Refusal FolderItems(std::size_t panelItem, std::vector<std::string>& names) override {
        return Guarded([&] { return role_->FolderItems(panelItem, names); }, RefusalOf);
    }
    Refusal ItemVerbs(std::size_t panelItem, std::size_t item, std::vector<std::string>& verbs) override {
        return Guarded([&] { return role_->ItemVerbs(panelItem, item, verbs); }, RefusalOf);
    }
    Refusal DoVerb(std::size_t panelItem, std::size_t item, std::size_t verb) override {
        return Guarded([&] { return role_->DoVerb(panelItem, item, verb); }, RefusalOf);
    }
    Refusal OpenDocument(const std::string& target) override {
        return Guarded([&] { return role_->OpenDocument(target); }, RefusalOf);
    }

 private:
    std::shared_ptr<ShellApi> role_;
};

class GuardedClock : public ClockApi {
 public:
    explicit GuardedClock(std::shared_ptr<ClockApi> role) : role_(std::move(role)) {}

    void Sleep(std::uint32_t milliseconds) override {
        Guarded([&] { role_->Sleep(milliseconds); }, NothingOf<void>);
    }
    DateTime LocalTime() override {
        return Guarded([&] { return role_->LocalTime(); }, NothingOf<DateTime>);
    }
    std::uint32_t Seed() override {
        return Guarded([&] { return role_->Seed(); }, NothingOf<std::uint32_t>);
    }

 private:
    std::shared_ptr<ClockApi> role_;
};

class GuardedHost : public HostApi {
 public:
    explicit GuardedHost(std::shared_ptr<HostApi> role) : role_(std::move(role)) {}

    OsIdentity Os() override {
        return Guarded([&] { return role_->Os(); }, NothingOf<OsIdentity>);
    }
    std::string ProgramFolder() override {
        return Guarded([&] { return role_->ProgramFolder(); },
                       [](Win32Error, const char*) { return std::string("."); });
    }
    char Separator() override {
        return Guarded([&] { return role_->Separator(); }, [](Win32Error, const char*) { return '/'; });
    }
    std::string GeneralDate(const DateTime& date) override {
        return Guarded([&] { return role_->GeneralDate(date); }, NothingOf<std::string>);
    }

 private:
    std::shared_ptr<HostApi> role_;
};

class GuardedNameServers : public NameServersApi {
 public:
    explicit GuardedNameServers(std::shared_ptr<NameServersApi> role) : role_(std::move(role)) {}

    Refusal PutInForce(const std::string& adapterId) override {
        return Guarded([&] { return role_->PutInForce(adapterId); }, RefusalOf);
    }

 private:
    std::shared_ptr<NameServersApi> role_;
};

}  // namespace

Platform GuardedPlatform(Platform platform) {
    return {std::make_shared<GuardedRegistry>(std::move(platform.registry)),
            std::make_shared<GuardedIpHelper>(std::move(platform.ipHelper)),
            std::make_shared<GuardedShell>(std::move(platform.shell)),
            std::make_shared<GuardedClock>(std::move(platform.clock)),
            std::make_shared<GuardedHost>(std::move(platform.host)),
            std::move(platform.changes),
            std::make_shared<GuardedNameServers>(std::move(platform.nameServers))};
}

}  // namespace corvane
