#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "fakes/FakeRegistry.h"
#include "platform/Platform.h"
#include "platform/Seat.h"

/// Small models of the machine and the user, with a diary of what was asked of them.
namespace corvane {

/// For the messages of failed assertions.
void PrintTo(const Refusal& refusal, std::ostream* out);

/// Interfaces, addresses and routes in memory.
class FakeIpHelper : public IpHelperApi {
 public:
    std::vector<std::string> diary;  ///< "GetInterfaceInfo", "GetIfEntry 3", "IpReleaseAddress 3", ...

    std::vector<InterfaceEntry> interfaces;
    std::map<std::uint32_t, IfRow> rows;
    std::vector<IpAddrRow> addresses;
    std::vector<IpForwardRow> routes;
    std::map<Win32Error, std::string> texts;  ///< System messages.

    using Outcome = TableRead<InterfaceEntry>::Outcome;
    /// What each table read comes to; kFailed ends in tableFailure.
    Outcome interfacesOutcome = Outcome::kRows;
    Outcome addressesOutcome = Outcome::kRows;
    Outcome routesOutcome = Outcome::kRows;
    Win32Error tableFailure = Win32Error::kGenFailure;
    std::map<std::uint32_t, Win32Error> entryFailures;  ///< GetIfEntry, by index.
    Win32Error releaseResult = Win32Error::kSuccess;
    Win32Error renewResult = Win32Error::kSuccess;

    /// Adds a live interface for the adapter with this GUID text.
    void AddInterface(std::uint32_t index, const std::string& id, const IfRow& row = {});

    TableRead<InterfaceEntry> GetInterfaceInfo() override;
    Win32Error GetIfEntry(std::uint32_t index, IfRow& row) override;
    TableRead<IpAddrRow> GetIpAddrTable() override;
    TableRead<IpForwardRow> GetIpForwardTable() override;
    Win32Error AddIPAddress(const Ipv4Bytes& address, const Ipv4Bytes& mask, std::uint32_t ifIndex,
                            std::uint32_t& nteContext) override;
    Win32Error DeleteIPAddress(std::uint32_t nteContext) override;
    Win32Error CreateIpForwardEntry(const IpForwardRow& row) override;
    Win32Error DeleteIpForwardEntry(const IpForwardRow& row) override;
    Win32Error IpReleaseAddress(const InterfaceEntry& entry) override;
    Win32Error IpRenewAddress(const InterfaceEntry& entry) override;
    std::string SystemText(Win32Error code) override;

 private:
    std::uint16_t lastContext_ = 0;
};

/// A Control Panel with folders of connections.
class FakeShell : public ShellApi {
 public:
    struct Connection {
        std::string name;
        std::vector<std::string> verbs;
    };
    struct PanelItem {
        std::string name;
        bool isFolder = true;
        std::vector<Connection> connections;
    };

    std::vector<std::string> diary;  ///< "verb Disa&ble of eth0", "open http://..."
    std::vector<PanelItem> panel;
    /// When not empty, the call with this name ("ControlPanelItems", "FolderItems", "ItemVerbs", "DoVerb",
    /// "OpenDocument") fails with `failureText`.
    std::string failingCall;
    std::string failureText = "The shell did not answer.";
    /// Run before the verbs of a connection are listed, so that a test can change them from call to call.
    std::function<void(Connection&)> beforeVerbs;
    /// Run when a verb is done. Without it a verb turns "Disa&ble" into "En&able" and back.
    std::function<void(Connection&, const std::string& verb)> onVerb;

    Refusal ControlPanelItems(std::vector<ShellItem>& items) override;
    Refusal FolderItems(std::size_t panelItem, std::vector<std::string>& names) override;
    Refusal ItemVerbs(std::size_t panelItem, std::size_t item, std::vector<std::string>& verbs) override;
    Refusal DoVerb(std::size_t panelItem, std::size_t item, std::size_t verb) override;
    Refusal OpenDocument(const std::string& target) override;

 private:
    [[nodiscard]] Refusal Failing(const std::string& call) const;
};

class FakeClock : public ClockApi {
 public:
    std::vector<std::uint32_t> sleeps;
    DateTime now{2026, 11, 20, 5, 16, 30, 0};
    std::uint32_t seed = 1;
    std::function<void(std::uint32_t)> onSleep;

    void Sleep(std::uint32_t milliseconds) override;
    DateTime LocalTime() override { return now; }
    std::uint32_t Seed() override { return seed; }
};

class FakeHost : public HostApi {
 public:
    OsIdentity identity;
    std::string folder = "/opt/nicx";
    char separator = '/';

    OsIdentity Os() override { return identity; }
    std::string ProgramFolder() override { return folder; }
    char Separator() override { return separator; }
    /// "2026-11-20 16:30:00"
    std::string GeneralDate(const DateTime& date) override;
};

/// Changes from outside: as many as a test says.
class FakeChanges : public ChangesApi {
 public:
    bool pending = false;

    bool TakeChanges() override { return std::exchange(pending, false); }
};

/// A resolver that follows, or not.
class FakeNameServers : public NameServersApi {
 public:
    std::vector<std::string> diary;  ///< Ids of the adapters whose name servers were put in force.
    Refusal answer;
    std::function<void()> onCall;  ///< Run at each call.

    Refusal PutInForce(const std::string& adapterId) override;
};

/// The user: answers questions from a list, remembers what was shown.
class FakeSeat : public Seat {
 public:
    struct Box {
        std::string title;
        std::string text;
        BoxIcon icon;
        BoxButtons buttons;
        bool unsilenced = false;

        bool operator==(const Box&) const = default;
    };
    std::vector<Box> boxes;
    std::vector<std::string> warnings;
    std::vector<std::string> progress;
    /// Everything in the order it happened: "box TITLE", "row 3 TEXT", "events", "refresh", "splash",
    /// "system TEXT", "status TEXT", "splash-progress TEXT", "pick", "ask", "warn TEXT", "progress TEXT".
    std::vector<std::string> diary;

    std::vector<BoxAnswer> answers;  ///< For questions, used front first; then kNo.
    std::optional<std::size_t> folderChoice;
    std::optional<std::string> textAnswer;
    std::vector<std::string> offeredFolders;
    std::function<void()> onRefresh;

    BoxAnswer ShowBox(const std::string& title, const std::string& text, BoxIcon icon,
                      BoxButtons buttons) override;
    void ShowUnsilencedBox(const std::string& title, const std::string& text, BoxIcon icon) override;
    std::optional<std::string> AskText(const std::string& title, const std::string& prompt,
                                       const std::string& preset) override;
    std::optional<std::size_t> PickFolder(const std::string& title, const std::string& heading,
                                          const std::string& instruction,
                                          const std::vector<std::string>& names) override;
    void Warn(const std::string& text) override;
    void Progress(const std::string& text) override;
    void RowProgress(int subItem, const std::string& text) override;
    void ShowSplash() override;
    void SplashSystem(const std::string& text) override;
    void SplashStatus(const std::string& text) override;
    void SplashProgress(const std::string& text) override;
    void LetEventsRun() override;
    void Refresh() override;
};

/// A whole fake machine and user, installed for as long as it lives. Resets the process-wide state of the
/// portable core (adapters, switches, vendor list, presets, folder name) at both ends.
class FakeMachine {
 public:
    FakeMachine();
    ~FakeMachine();
    FakeMachine(const FakeMachine&) = delete;
    FakeMachine& operator=(const FakeMachine&) = delete;

    /// Registry keys of an adapter with the given driver key and connection name, bound to TCP/IP. `values`
    /// of the driver key are REG_SZ texts.
    void AddAdapter(const std::string& id, const std::string& name, const std::string& driverKey,
                    const std::vector<std::pair<std::string, std::string>>& values = {});

    std::shared_ptr<FakeRegistry> registry = std::make_shared<FakeRegistry>();
    std::shared_ptr<FakeIpHelper> ipHelper = std::make_shared<FakeIpHelper>();
    std::shared_ptr<FakeShell> shell = std::make_shared<FakeShell>();
    std::shared_ptr<FakeClock> clock = std::make_shared<FakeClock>();
    std::shared_ptr<FakeHost> host = std::make_shared<FakeHost>();
    std::shared_ptr<FakeChanges> changes = std::make_shared<FakeChanges>();
    std::shared_ptr<FakeNameServers> nameServers = std::make_shared<FakeNameServers>();
    FakeSeat seat;

 private:
    std::vector<std::string> bind_;
    ScopedPlatform platform_;
    ScopedSeat scopedSeat_;
};

}  // namespace corvane
