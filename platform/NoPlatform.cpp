#include <memory>

#include "platform/Platform.h"

/// The roles before a platform is installed.
namespace corvane {

namespace {

constexpr Win32Error kNone = Win32Error::kNotSupported;

Refusal NoPlatform() { return Refusal("No platform is installed."); }

template <class Row>
TableRead<Row> NoTable() {
    return {TableRead<Row>::Outcome::kFailed, kNone, {}};
}

class NoRegistry : public RegistryApi {
 public:
    RegistryRead ReadValue(RegistryRoot, const std::string&, const std::string&) override {
        return {Win32Error::kCantRead, false, {}};
    }
    Win32Error WriteValue(RegistryRoot, const std::string&, const std::string&,
                          const RegistryValue&) override {
        return Win32Error::kCantWrite;
    }
    Win32Error DeleteValue(RegistryRoot, const std::string&, const std::string&) override {
        return Win32Error::kCantWrite;
    }
    Win32Error CreateKey(RegistryRoot, const std::string&) override { return Win32Error::kCantWrite; }
    Win32Error EnumSubkeys(RegistryRoot, const std::string&, std::vector<std::string>&) override {
        return Win32Error::kCantRead;
    }
};

class NoIpHelper : public IpHelperApi {
 public:
    TableRead<InterfaceEntry> GetInterfaceInfo() override { return NoTable<InterfaceEntry>(); }
    Win32Error GetIfEntry(std::uint32_t, IfRow&) override { return kNone; }
    TableRead<IpAddrRow> GetIpAddrTable() override { return NoTable<IpAddrRow>(); }
    TableRead<IpForwardRow> GetIpForwardTable() override { return NoTable<IpForwardRow>(); }
    Win32Error AddIPAddress(const Ipv4Bytes&, const Ipv4Bytes&, std::uint32_t, std::uint32_t&) override {
        return kNone;
    }
    Win32Error DeleteIPAddress(std::uint32_t) override { return kNone; }
    Win32Error CreateIpForwardEntry(const IpForwardRow&) override { return kNone; }
    Win32Error DeleteIpForwardEntry(const IpForwardRow&) override { return kNone; }
    Win32Error IpReleaseAddress(const InterfaceEntry&) override { return kNone; }
    Win32Error IpRenewAddress(const InterfaceEntry&) override { return kNone; }
    std::string SystemText(Win32Error) override { return {}; }
};

class NoShell : public ShellApi {
 public:
    Refusal ControlPanelItems(std::vector<ShellItem>&) override { return NoPlatform(); }
    Refusal FolderItems(std::size_t, std::vector<std::string>&) override { return NoPlatform(); }
    Refusal ItemVerbs(std::size_t, std::size_t, std::vector<std::string>&) override { return NoPlatform(); }
    Refusal DoVerb(std::size_t, std::size_t, std::size_t) override { return NoPlatform(); }
    Refusal OpenDocument(const std::string&) override { return NoPlatform(); }
};

class NoClock : public ClockApi {
 public:
    void Sleep(std::uint32_t) override {}
    DateTime LocalTime() override { return {}; }
    std::uint32_t Seed() override { return 0; }
};

class NoHost : public HostApi {
 public:
    OsIdentity Os() override { return {}; }
    std::string ProgramFolder() override { return "."; }
    char Separator() override { return '/'; }
    std::string GeneralDate(const DateTime&) override { return {}; }
};

class NoChanges : public ChangesApi {
 public:
    bool TakeChanges() override { return false; }
};

class NoNameServers : public NameServersApi {
 public:
    Refusal PutInForce(const std::string&) override { return NoPlatform(); }
};

}  // namespace

Platform::Platform()
    : registry(std::make_shared<NoRegistry>()),
      ipHelper(std::make_shared<NoIpHelper>()),
      shell(std::make_shared<NoShell>()),
      clock(std::make_shared<NoClock>()),
      host(std::make_shared<NoHost>()),
      changes(std::make_shared<NoChanges>()),
      nameServers(std::make_shared<NoNameServers>()) {}

}  // namespace corvane
