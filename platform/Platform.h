#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "base/Address.h"
#include "base/Refusal.h"
#include "base/Win32Error.h"

/// The seam to the machine. Each role is implemented once per operating system (platform/linux,
/// platform/windows) and once as a fake for tests. No call of an installed system platform throws: what flies
/// inside a back-end ends as an error number or a refusal (platform/GuardedPlatform.h). No call keeps a
/// handle open for the caller. All text is UTF-8.
///
/// Two headers beside this one declare free functions that each back-end defines: Files.h (file operations
/// that the standard library does not offer safely) and CodePage.h (the single-byte code page). They are no
/// roles, because nobody ever needs another body of them: they hold no state, show and ask nothing, work the
/// same before a platform is installed (the back-ends themselves use them), and tests give them real files
/// and real text. Whatever a test would want to fake is a role.
namespace corvane {

// ---- registry
// -----------------------------------------------------------------------------------------------

/// Predefined root handles (winreg.h). The program uses kHkeyLocalMachine only.
using RegistryRoot = std::uint32_t;
inline constexpr RegistryRoot kHkeyLocalMachine = 0x80000002U;

/// Registry value types (winnt.h).
inline constexpr std::uint32_t kRegSz = 1;
inline constexpr std::uint32_t kRegBinary = 3;
inline constexpr std::uint32_t kRegDword = 4;
inline constexpr std::uint32_t kRegMultiSz = 7;

struct RegistryValue {
    std::uint32_t type = 0;
    std::vector<std::uint8_t>
        data;  ///< Raw bytes; text is in the single-byte code page, terminators included.

    bool operator==(const RegistryValue&) const = default;
};

/// Outcome of reading one value. `keyOpened` tells apart "no such key" and "no such value", both of which are
/// kFileNotFound. `value` is meaningful only when `code` is kSuccess.
struct RegistryRead {
    Win32Error code = Win32Error::kSuccess;
    bool keyOpened = false;
    RegistryValue value;
};

/// The registry. Key and value names compare without regard to case and keep the case they were made with.
/// Key paths use "\" and have none at either end. Every call opens the key, does one thing and closes it.
/// Errors: kFileNotFound (no such key or value), kAccessDenied (no right), kInvalidHandle (unknown root),
/// kRegistryCorrupt (store damaged), kCantRead / kCantWrite (store busy or unreachable), or what the system
/// says.
class RegistryApi {
 public:
    virtual ~RegistryApi() = default;

    virtual RegistryRead ReadValue(RegistryRoot root, const std::string& subkey, const std::string& name) = 0;

    /// The key must exist. Replaces an existing value, its type included. As RegSetValueExA does, text
    /// (kRegSz, kRegMultiSz) that is not empty and does not end in NUL is stored with one NUL added.
    virtual Win32Error WriteValue(RegistryRoot root, const std::string& subkey, const std::string& name,
                                  const RegistryValue& value) = 0;

    virtual Win32Error DeleteValue(RegistryRoot root, const std::string& subkey, const std::string& name) = 0;

    /// Makes the key and any missing parents. Success when it exists already.
    virtual Win32Error CreateKey(RegistryRoot root, const std::string& subkey) = 0;

    /// Names of the direct subkeys, in the system's order (sorted by name, without regard to case). `names`
    /// is replaced only when there is at least one subkey; a failing enumeration leaves what it had got so
    /// far.
    virtual Win32Error EnumSubkeys(RegistryRoot root, const std::string& subkey,
                                   std::vector<std::string>& names) = 0;

    /// Around a run of reads with nothing else in between: lets a back-end do once what each of them would
    /// need. Must not be held while the user is asked or anything is waited for. Changes nothing of what the
    /// reads give.
    virtual void BeginReading() {}
    virtual void EndReading() {}
};

/// A run of reads of the installed registry (see RegistryApi::BeginReading).
class RegistryReading {
 public:
    RegistryReading();
    ~RegistryReading();
    RegistryReading(const RegistryReading&) = delete;
    RegistryReading& operator=(const RegistryReading&) = delete;

 private:
    std::shared_ptr<RegistryApi> registry_;
};

// ---- IP Helper
// ----------------------------------------------------------------------------------------------

/// One entry of GetInterfaceInfo's table (IP_ADAPTER_INDEX_MAP). Name is "\DEVICE\TCPIP_" + the adapter's
/// GUID.
struct InterfaceEntry {
    std::uint32_t index = 0;
    std::string name;
};

/// The part of MIB_IFROW that the program reads.
struct IfRow {
    std::uint32_t index = 0;
    MacBytes physAddr{};
    std::uint64_t speed = 0;        ///< bit/s; 0 when unknown.
    std::uint32_t adminStatus = 0;  ///< 1 up, 2 down, 3 testing.
    std::uint32_t operStatus = 0;   ///< 0 non operational ... 5 operational (ipifcons.h).
    std::uint32_t inOctets = 0;     ///< Low 32 bits of the counter.
    std::uint32_t outOctets = 0;
};

/// The part of MIB_IPADDRROW that the program reads.
struct IpAddrRow {
    Ipv4Bytes address{};
    Ipv4Bytes mask{};
    std::uint32_t index = 0;
    std::uint16_t nteContext = 0;  ///< The 16-bit word after the reassembly size; DeleteIPAddress accepts it.
};

/// The part of MIB_IPFORWARDROW that the program reads or sets.
struct IpForwardRow {
    Ipv4Bytes destination{};
    Ipv4Bytes mask{};
    Ipv4Bytes nextHop{};
    std::uint32_t ifIndex = 0;
    std::uint32_t type = 4;   ///< 3 direct, 4 indirect (ipmib.h).
    std::uint32_t proto = 3;  ///< 2 local, 3 set by management (ipmib.h).
    std::uint32_t metric1 = 0;
};

/// A table read is a size query and a fetch. kNothingToRead: the size query was not answered with 122, which
/// no caller reports. kFailed: the fetch failed with `code`. kRows: `rows` holds the table.
template <class Row>
struct TableRead {
    enum class Outcome { kNothingToRead, kFailed, kRows };
    Outcome outcome = Outcome::kNothingToRead;
    Win32Error code = Win32Error::kSuccess;
    std::vector<Row> rows;
};

/// The IP Helper calls that the program makes (iphlpapi.h), over portable rows.
class IpHelperApi {
 public:
    virtual ~IpHelperApi() = default;

    /// The live interfaces: those that are administratively up.
    virtual TableRead<InterfaceEntry> GetInterfaceInfo() = 0;

    /// Fills `row` for interface `index`. When there is no such interface, kInvalidParameter or, on Windows,
    /// what the system says; `row` is then as it was.
    virtual Win32Error GetIfEntry(std::uint32_t index, IfRow& row) = 0;

    // A system that cannot be asked is kFailed with the system's number, never an empty table.

    /// IPv4 addresses of every interface, in ascending order of address.
    virtual TableRead<IpAddrRow> GetIpAddrTable() = 0;

    /// IPv4 routes of the main table, in ascending order of destination, then metric, then next hop.
    virtual TableRead<IpForwardRow> GetIpForwardTable() = 0;

    /// Adds an address to the running stack: a restart of the link does not bring it back unless the registry
    /// says so. `nteContext` receives the word that DeleteIPAddress takes. kObjectAlreadyExists when it is
    /// there already, kInvalidParameter for an address or mask that no host may have or an unknown interface,
    /// kAccessDenied without the right; the link then has what it had.
    virtual Win32Error AddIPAddress(const Ipv4Bytes& address, const Ipv4Bytes& mask, std::uint32_t ifIndex,
                                    std::uint32_t& nteContext) = 0;

    /// Removes the address with this context; other addresses of the link stay, and so do the routes that do
    /// not depend on it. kInvalidParameter for an unknown one.
    virtual Win32Error DeleteIPAddress(std::uint32_t nteContext) = 0;

    /// Adds a route to the running stack. kObjectAlreadyExists when it is there already, with this metric;
    /// kInvalidParameter for a mask with holes; otherwise what the system says of a next hop that it cannot
    /// reach.
    virtual Win32Error CreateIpForwardEntry(const IpForwardRow& row) = 0;

    /// Removes the route with the row's destination, mask, next hop and interface, whoever made it. Metric 0
    /// is no part of the name: of several such routes the one with the lowest metric, the one in force, goes.
    /// Any other metric must be the route's. kNotFound when there is none.
    virtual Win32Error DeleteIpForwardEntry(const IpForwardRow& row) = 0;

    /// Gives the DHCP lease back, respectively asks for it anew; returns when that is done. kNotSupported
    /// when the link does not use DHCP; kSemTimeout when no server answered.
    virtual Win32Error IpReleaseAddress(const InterfaceEntry& entry) = 0;
    virtual Win32Error IpRenewAddress(const InterfaceEntry& entry) = 0;

    /// The system's message for an error number, with the line break that system texts end in; empty when it
    /// has none.
    virtual std::string SystemText(Win32Error code) = 0;
};

// ---- shell folders
// ------------------------------------------------------------------------------------------

struct ShellItem {
    std::string name;
    bool isFolder = false;
};

/// The shell's Control Panel and the folders in it. Items and verbs are named by their positions in the lists
/// that the latest call handed out. A refusal says what the system says; the list is then as it was.
class ShellApi {
 public:
    virtual ~ShellApi() = default;

    virtual Refusal ControlPanelItems(std::vector<ShellItem>& items) = 0;
    virtual Refusal FolderItems(std::size_t panelItem, std::vector<std::string>& names) = 0;
    virtual Refusal ItemVerbs(std::size_t panelItem, std::size_t item, std::vector<std::string>& verbs) = 0;

    /// Carries a verb out. On Linux it returns when the link is in the new state; a refusal then means that
    /// the link is not in the state asked for, or only in part (for example up, but with its original
    /// address).
    virtual Refusal DoVerb(std::size_t panelItem, std::size_t item, std::size_t verb) = 0;

    /// Opens a document or an address with the user's default program.
    virtual Refusal OpenDocument(const std::string& target) = 0;
};

// ---- name servers
// ----------------------------------------------------------------------------------------------

/// Who resolves names on this machine.
class NameServersApi {
 public:
    virtual ~NameServersApi() = default;

    /// To be called by whoever has written or deleted the value "NameServer" of an adapter's TCP/IP key: on
    /// return the name servers that the registry holds are in force, if the adapter is present and up;
    /// otherwise nothing is done, they wait for its next start. A refusal names what keeps the resolver from
    /// following and the remedy, in one sentence; what is stored stays. Nothing to do, and never refused,
    /// where the system watches its registry (Windows).
    virtual Refusal PutInForce(const std::string& adapterId) = 0;
};

// ---- changes from outside
// -------------------------------------------------------------------------------------

/// Tells when something changes that a refresh would show, whoever changes it: links that come, go, go up or
/// down or get another MAC address, state or (where the system tells of it) speed; addresses; routes.
///
/// On Linux the kernel tells of all these as they happen; the speed of a link that stays as it is otherwise
/// is not told. On Windows two pictures are compared: the live interfaces with MAC address, administrative
/// and operational state and speed, the addresses and the routes; what came and went between two calls is not
/// noticed. On neither system do counters of bytes count, nor what is only in the registry.
class ChangesApi {
 public:
    virtual ~ChangesApi() = default;

    /// Takes all changes up to now, without waiting. True when there were any since the last call, or when it
    /// cannot be known. The first call begins the watch.
    virtual bool TakeChanges() = 0;
};

// ---- clock and host
// -----------------------------------------------------------------------------------------

/// A date and time of day without zone. Month and day from 1, weekday 0 = Sunday.
struct DateTime {
    int year = 1970;
    int month = 1;
    int day = 1;
    int weekday = 4;
    int hour = 0;
    int minute = 0;
    int second = 0;
};

/// The time that commands wait for and show: no other code above the back-ends sleeps or asks for it. A
/// back-end does so on its own only to wait for the kernel, a lock or another process, and to note when a
/// lease began or which offset of the time zone is in force; the window, to see how long its pictures take
/// to be painted. The test of the tree's shape lists these files.
class ClockApi {
 public:
    virtual ~ClockApi() = default;
    virtual void Sleep(std::uint32_t milliseconds) = 0;
    virtual DateTime LocalTime() = 0;
    /// A seed for random numbers, drawn from the time of day.
    virtual std::uint32_t Seed() = 0;
};

/// What the system says it is: on Windows the version record (GetVersionExA), elsewhere a ready description.
struct OsIdentity {
    std::string readyDescription;  ///< Not empty: take this; the record below is then unused.
    std::uint32_t platformId = 2;
    std::uint32_t majorVersion = 0;
    std::uint32_t minorVersion = 0;
    std::uint32_t buildNumber = 0;
    std::string csdVersion;  ///< The 128-character service-pack field, NULs included.
};

class HostApi {
 public:
    virtual ~HostApi() = default;
    virtual OsIdentity Os() = 0;
    /// The folder that holds the program's data files, with or without a separator at its end: that of the
    /// program, unless an installation has them apart.
    virtual std::string ProgramFolder() = 0;
    /// The path separator of the system, '\' or '/'.
    virtual char Separator() = 0;
    /// The system's general date-and-time form.
    virtual std::string GeneralDate(const DateTime& date) = 0;
};

// ---- the whole
// ----------------------------------------------------------------------------------------------

/// The roles. Each is there from the beginning: until another is put in its place, one that answers without
/// a system (platform/NoPlatform.cpp). Error numbers are kCantRead and kCantWrite for the registry and
/// kNotSupported elsewhere, refusals say that no platform is installed, nothing sleeps, it is 1970-01-01.
struct Platform {
    Platform();
    Platform(std::shared_ptr<RegistryApi> registry, std::shared_ptr<IpHelperApi> ipHelper,
             std::shared_ptr<ShellApi> shell, std::shared_ptr<ClockApi> clock, std::shared_ptr<HostApi> host,
             std::shared_ptr<ChangesApi> changes, std::shared_ptr<NameServersApi> nameServers);

    std::shared_ptr<RegistryApi> registry;
    std::shared_ptr<IpHelperApi> ipHelper;
    std::shared_ptr<ShellApi> shell;
    std::shared_ptr<ClockApi> clock;
    std::shared_ptr<HostApi> host;
    std::shared_ptr<ChangesApi> changes;
    std::shared_ptr<NameServersApi> nameServers;
};

/// The installed platform; a plain Platform() until a program installs its own, once at start.
Platform& CurrentPlatform();
/// A platform that lacks a role ends the program at once, with the role's name on standard error.
void InstallPlatform(Platform platform);

/// Makes this system's platform; defined by the back-end that the build picked.
Platform MakeSystemPlatform();

/// Installs a platform for a scope, as InstallPlatform does, and puts the former one back; for tests.
class ScopedPlatform {
 public:
    explicit ScopedPlatform(Platform platform);
    ~ScopedPlatform();
    ScopedPlatform(const ScopedPlatform&) = delete;
    ScopedPlatform& operator=(const ScopedPlatform&) = delete;

 private:
    Platform former_;
};

}  // namespace corvane
