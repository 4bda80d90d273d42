#include "ui/logic/DnsEditing.h"

#include <cstdint>
#include <utility>
#include <vector>

#include "inventory/NicInfo.h"
#include "platform/Seat.h"
#include "presets/Advice.h"
#include "tcpip/RegistryWriters.h"

namespace corvane {

void DnsEditing::Open() {
    panel_.ShowPanel();
    panel_.MakeDefault();
    panel_.DNSAddress().SetText("");
    panel_.FocusDNSAddress();
}

void DnsEditing::Write(std::size_t adapter) {
    std::vector<std::string> servers;
    for (const DetailsRow& row : list_.Rows()) servers.push_back(row.text);
    WriteDNSServers(WriterIndex(adapter), servers);
    // What the list shows is what the record says, until the adapters are read anew.
    if (servers.empty()) servers.emplace_back();
    Nics.at(adapter).DnsServers = std::move(servers);
}

void DnsEditing::Add(const EditingTarget& target) {
    if (!panel_.DNSAddress().Text().empty()) AddServer(target);
    panel_.FocusDNSAddress();
}

void DnsEditing::AddServer(const EditingTarget& target) {
    if (target.live && !target.adapter) return;
    const std::string server = panel_.DNSAddress().Text();
    const bool known = FindRow(list_, server).has_value();
    if (target.live && known) {
        CurrentSeat().ShowBox("DNS Server IP Already Exists",
                              "DNS Server IP '" + server + "' already exists in the list for selected NIC.",
                              BoxIcon::kExclamation, BoxButtons::kOk);
        return;
    }
    if (!known) FindOrAddRow(list_, kDnsTitle, server, "");
    panel_.DNSAddress().SetText("");
    if (!target.live) return;
    std::vector<std::string> sentences;
    AdviseServer(server, sentences);
    WarnOf(sentences);
    Write(*target.adapter);
    CurrentSeat().Refresh();
}

void DnsEditing::Remove(const EditingTarget& target) {
    const std::optional<std::size_t> selected = list_.SelectedRow();
    if (!selected || (target.live && !target.adapter)) return;
    const std::string server = list_.Rows().at(*selected).text;
    if (!UserSaysYes("Remove Selected DNS Server?",
                     "Are you sure to remove '" + server + "' DNS server address ?")) {
        return;
    }
    RemoveRow(list_, kDnsTitle, *selected);
    if (!target.live) return;
    Write(*target.adapter);
    CurrentSeat().Refresh();
}

void DnsEditing::MoveUp(const EditingTarget& target) {
    const std::optional<std::size_t> row = list_.SelectedRow();
    if (row && *row > 0) Swap(*row, *row - 1, target);
}

void DnsEditing::MoveDown(const EditingTarget& target) {
    const std::optional<std::size_t> row = list_.SelectedRow();
    if (row && *row + 1 < list_.Rows().size()) Swap(*row, *row + 1, target);
}

void DnsEditing::Swap(std::size_t row, std::size_t other, const EditingTarget& target) {
    std::vector<DetailsRow> rows = list_.Rows();
    std::swap(rows[row].text, rows[other].text);
    list_.SetRows(rows);
    list_.SelectRow(other);
    if (target.live && target.adapter) Write(*target.adapter);
}

}  // namespace corvane
