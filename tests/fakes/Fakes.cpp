#include "fakes/Fakes.h"

#include <algorithm>
#include <cstdio>

#include "inventory/NicInfo.h"
#include "mac/SetConnectionState.h"
#include "presets/PresetsFile.h"
#include "vendors/VendorList.h"

namespace corvane {

namespace {

template <class Row>
TableRead<Row> Table(FakeIpHelper::Outcome outcome, Win32Error failure, const std::vector<Row>& rows) {
    TableRead<Row> table;
    table.outcome = static_cast<typename TableRead<Row>::Outcome>(outcome);
    if (outcome == FakeIpHelper::Outcome::kFailed) table.code = failure;
    if (outcome == FakeIpHelper::Outcome::kRows) table.rows = rows;
    return table;
}

void ResetProcessState() {
    Nics.assign(1, NicInfo());
    ResetOriginalMac = false;
    ShortVendorList = false;
    NetworkFolderName.clear();
    Vendors() = VendorTable::Empty();
    Presets().assign(1, PresetRecord());
}

}  // namespace

void FakeIpHelper::AddInterface(std::uint32_t index, const std::string& id, const IfRow& row) {
    interfaces.push_back({index, "\\DEVICE\\TCPIP_" + id});
    rows[index] = row;
    rows[index].index = index;
}

TableRead<InterfaceEntry> FakeIpHelper::GetInterfaceInfo() {
    diary.emplace_back("GetInterfaceInfo");
    return Table(interfacesOutcome, tableFailure, interfaces);
}

Win32Error FakeIpHelper::GetIfEntry(std::uint32_t index, IfRow& row) {
    diary.push_back("GetIfEntry " + std::to_string(index));
    const auto failure = entryFailures.find(index);
    if (failure != entryFailures.end()) return failure->second;
    const auto found = rows.find(index);
    if (found == rows.end()) return Win32Error::kInvalidParameter;
    row = found->second;
    return Win32Error::kSuccess;
}

TableRead<IpAddrRow> FakeIpHelper::GetIpAddrTable() {
    diary.emplace_back("GetIpAddrTable");
    return Table(addressesOutcome, tableFailure, addresses);
}

TableRead<IpForwardRow> FakeIpHelper::GetIpForwardTable() {
    diary.emplace_back("GetIpForwardTable");
    return Table(routesOutcome, tableFailure, routes);
}

Win32Error FakeIpHelper::AddIPAddress(const Ipv4Bytes& address, const Ipv4Bytes& mask, std::uint32_t ifIndex,
                                      std::uint32_t& nteContext) {
    diary.push_back("AddIPAddress " + std::to_string(ifIndex));
    if (!rows.contains(ifIndex) || address == Ipv4Bytes{}) return Win32Error::kInvalidParameter;
    const bool present = std::any_of(addresses.begin(), addresses.end(), [&](const IpAddrRow& row) {
        return row.address == address && row.mask == mask && row.index == ifIndex;
    });
    if (present) return Win32Error::kObjectAlreadyExists;
    addresses.push_back({address, mask, ifIndex, ++lastContext_});
    nteContext = lastContext_;
    return Win32Error::kSuccess;
}

Win32Error FakeIpHelper::DeleteIPAddress(std::uint32_t nteContext) {
    diary.push_back("DeleteIPAddress " + std::to_string(nteContext));
    const std::size_t removed =
        std::erase_if(addresses, [&](const IpAddrRow& row) { return row.nteContext == nteContext; });
    return removed == 0 ? Win32Error::kInvalidParameter : Win32Error::kSuccess;
}

namespace {

bool SameWay(const IpForwardRow& a, const IpForwardRow& b) {
    return a.destination == b.destination && a.mask == b.mask && a.nextHop == b.nextHop &&
           a.ifIndex == b.ifIndex;
}

}  // namespace

Win32Error FakeIpHelper::CreateIpForwardEntry(const IpForwardRow& row) {
    diary.push_back("CreateIpForwardEntry " + std::to_string(row.ifIndex));
    if (!rows.contains(row.ifIndex)) return Win32Error::kInvalidParameter;
    const bool present = std::any_of(routes.begin(), routes.end(), [&](const IpForwardRow& other) {
        return SameWay(row, other) && other.metric1 == row.metric1;
    });
    if (present) return Win32Error::kObjectAlreadyExists;
    routes.push_back(row);
    return Win32Error::kSuccess;
}

Win32Error FakeIpHelper::DeleteIpForwardEntry(const IpForwardRow& row) {
    diary.push_back("DeleteIpForwardEntry " + std::to_string(row.ifIndex));
    auto wanted = routes.end();
    for (auto route = routes.begin(); route != routes.end(); ++route) {
        if (!SameWay(row, *route) || (row.metric1 != 0 && route->metric1 != row.metric1)) continue;
        if (wanted == routes.end() || route->metric1 < wanted->metric1) wanted = route;
    }
    if (wanted == routes.end()) return Win32Error::kNotFound;
    routes.erase(wanted);
    return Win32Error::kSuccess;
}

Win32Error FakeIpHelper::IpReleaseAddress(const InterfaceEntry& entry) {
    diary.push_back("IpReleaseAddress " + std::to_string(entry.index) + " " + entry.name);
    return releaseResult;
}

Win32Error FakeIpHelper::IpRenewAddress(const InterfaceEntry& entry) {
    diary.push_back("IpRenewAddress " + std::to_string(entry.index) + " " + entry.name);
    return renewResult;
}

std::string FakeIpHelper::SystemText(Win32Error code) {
    const auto text = texts.find(code);
    return text == texts.end() ? std::string() : text->second;
}

void PrintTo(const Refusal& refusal, std::ostream* out) {
    *out << (refusal ? "refused: " + refusal.Words() : "not refused");
}

Refusal FakeShell::Failing(const std::string& call) const {
    return call == failingCall ? Refusal(failureText) : Refusal();
}

Refusal FakeShell::ControlPanelItems(std::vector<ShellItem>& items) {
    if (Refusal refusal = Failing("ControlPanelItems")) return refusal;
    items.clear();
    for (const PanelItem& item : panel) items.push_back({item.name, item.isFolder});
    return {};
}

Refusal FakeShell::FolderItems(std::size_t panelItem, std::vector<std::string>& names) {
    if (Refusal refusal = Failing("FolderItems")) return refusal;
    names.clear();
    for (const Connection& connection : panel.at(panelItem).connections) names.push_back(connection.name);
    return {};
}

Refusal FakeShell::ItemVerbs(std::size_t panelItem, std::size_t item, std::vector<std::string>& verbs) {
    if (Refusal refusal = Failing("ItemVerbs")) return refusal;
    Connection& connection = panel.at(panelItem).connections.at(item);
    if (beforeVerbs) beforeVerbs(connection);
    verbs = connection.verbs;
    return {};
}

Refusal FakeShell::DoVerb(std::size_t panelItem, std::size_t item, std::size_t verb) {
    Connection& connection = panel.at(panelItem).connections.at(item);
    const std::string name = connection.verbs.at(verb);
    diary.push_back("verb " + name + " of " + connection.name);
    if (Refusal refusal = Failing("DoVerb")) return refusal;
    if (onVerb) {
        onVerb(connection, name);
    } else if (name == "Disa&ble") {
        connection.verbs[verb] = "En&able";
    } else if (name == "En&able") {
        connection.verbs[verb] = "Disa&ble";
    }
    return {};
}

Refusal FakeShell::OpenDocument(const std::string& target) {
    diary.push_back("open " + target);
    return Failing("OpenDocument");
}

Refusal FakeNameServers::PutInForce(const std::string& adapterId) {
    diary.push_back(adapterId);
    if (onCall) onCall();
    return answer;
}

void FakeClock::Sleep(std::uint32_t milliseconds) {
    sleeps.push_back(milliseconds);
    if (onSleep) onSleep(milliseconds);
}

std::string FakeHost::GeneralDate(const DateTime& date) {
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", date.year, date.month, date.day,
                  date.hour, date.minute, date.second);
    return text;
}

BoxAnswer FakeSeat::ShowBox(const std::string& title, const std::string& text, BoxIcon icon,
                            BoxButtons buttons) {
    boxes.push_back({title, text, icon, buttons});
    diary.push_back("box " + title);
    if (buttons == BoxButtons::kOk) return BoxAnswer::kOk;
    if (answers.empty()) return BoxAnswer::kNo;
    const BoxAnswer answer = answers.front();
    answers.erase(answers.begin());
    return answer;
}

void FakeSeat::ShowUnsilencedBox(const std::string& title, const std::string& text, BoxIcon icon) {
    boxes.push_back({title, text, icon, BoxButtons::kOk, true});
    diary.push_back("box " + title);
}

std::optional<std::string> FakeSeat::AskText(const std::string&, const std::string&, const std::string&) {
    diary.emplace_back("ask");
    return textAnswer;
}

std::optional<std::size_t> FakeSeat::PickFolder(const std::string& title, const std::string&,
                                                const std::string&, const std::vector<std::string>& names) {
    diary.push_back("pick " + title);
    offeredFolders = names;
    return folderChoice;
}

void FakeSeat::Warn(const std::string& text) {
    warnings.push_back(text);
    diary.push_back("warn " + text);
}

void FakeSeat::Progress(const std::string& text) {
    progress.push_back(text);
    diary.push_back("progress " + text);
}

void FakeSeat::RowProgress(int subItem, const std::string& text) {
    diary.push_back("row " + std::to_string(subItem) + " " + text);
}

void FakeSeat::ShowSplash() { diary.emplace_back("splash"); }
void FakeSeat::SplashSystem(const std::string& text) { diary.push_back("system " + text); }
void FakeSeat::SplashStatus(const std::string& text) { diary.push_back("status " + text); }
void FakeSeat::SplashProgress(const std::string& text) { diary.push_back("splash-progress " + text); }
void FakeSeat::LetEventsRun() { diary.emplace_back("events"); }

void FakeSeat::Refresh() {
    diary.emplace_back("refresh");
    if (onRefresh) onRefresh();
}

FakeMachine::FakeMachine()
    : platform_({registry, ipHelper, shell, clock, host, changes, nameServers}), scopedSeat_(seat) {
    ResetProcessState();
    registry->MakeKey(kAdaptersKey);
    registry->MakeKey(kClassKey);
    shell->panel = {{"Network Connections", true, {}}};
}

FakeMachine::~FakeMachine() { ResetProcessState(); }

void FakeMachine::AddAdapter(const std::string& id, const std::string& name, const std::string& driverKey,
                             const std::vector<std::pair<std::string, std::string>>& values) {
    registry->MakeKey(kAdaptersKey + ("\\" + id));
    registry->SetText(ConnectionKey(id), "Name", name);
    registry->SetText(DriverKeyPath(driverKey), "NetCfgInstanceId", id);
    for (const auto& [valueName, text] : values) registry->SetText(DriverKeyPath(driverKey), valueName, text);
    registry->MakeKey(TcpipKey(id));
    bind_.push_back("\\Device\\" + id);
    registry->SetMulti(kLinkageKey, "Bind", bind_);
}

}  // namespace corvane
