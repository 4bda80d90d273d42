#include "ui/logic/ConnectionList.h"

#include <algorithm>

#include "inventory/GetNicInfo.h"

namespace corvane {

namespace {

/// A row of text that stands for no connection.
ConnectionRow TextRow(const char* text) { return {{text, "", "", " ", " "}, std::nullopt}; }

template <class Predicate>
std::optional<std::size_t> FindRow(const std::vector<ConnectionRow>& rows, Predicate predicate) {
    const auto row = std::find_if(rows.begin(), rows.end(), predicate);
    if (row == rows.end()) return std::nullopt;
    return static_cast<std::size_t>(row - rows.begin());
}

std::optional<std::size_t> RowOfRecord(const std::vector<ConnectionRow>& rows, std::size_t record) {
    return FindRow(rows, [&](const ConnectionRow& row) { return row.tag == record; });
}

}  // namespace

std::string ChangedText(const NicInfo& nic) {
    if (!nic.OriginalNetworkAddress.empty()) {
        const bool known = !nic.NetworkAddress.empty() || !nic.Mac.empty();
        return known && nic.Mac != nic.OriginalNetworkAddress ? "Yes" : "No";
    }
    if (nic.NetworkAddress.empty()) return "No";
    return !nic.Mac.empty() && nic.Mac != nic.NetworkAddress ? "No" : "Yes";
}

std::string ListMacText(const NicInfo& nic) {
    if (!nic.Mac.empty()) return nic.Mac;
    return nic.NetworkAddress.empty() ? nic.OriginalNetworkAddress : nic.NetworkAddress;
}

void NameMissingSpeeds() {
    for (NicInfo& nic : Nics) {
        if (!nic.Name.empty() && nic.Speed.empty()) nic.Speed = "Disabled";
    }
}

std::vector<ConnectionRow> ConnectionRows() {
    std::vector<ConnectionRow> rows;
    for (std::size_t i = 0; i < Nics.size(); ++i) {
        const NicInfo& nic = Nics[i];
        if (nic.Name.empty()) continue;
        rows.push_back({{nic.Name, ChangedText(nic), ListMacText(nic), nic.Status, nic.Speed}, i});
    }
    if (rows.empty()) rows.push_back(TextRow(kNoConnections));
    return rows;
}

void ConnectionList::Refresh() {
    view_.ShowPlaceholder(TextRow("Refreshing ..."));
    rows_.clear();
    selected_.reset();
    RefreshNicInfo();
    NameMissingSpeeds();
    rows_ = ConnectionRows();
    view_.ShowRows(rows_);
    view_.ShowDetails(Details());
    const std::size_t row = RowToSelect();
    view_.SelectRow(row);
    Select(row);
}

std::size_t ConnectionList::RowToSelect() const {
    if (!lastChoice_) return 0;
    const auto sameId = FindRow(
        rows_, [&](const ConnectionRow& row) { return row.tag && Nics.at(*row.tag).Id == lastChoice_->id; });
    return sameId ? *sameId : RowOfRecord(rows_, lastChoice_->record).value_or(0);
}

void ConnectionList::Select(std::size_t row) {
    if (row >= rows_.size()) return;
    selected_ = rows_[row].tag;
    if (selected_) lastChoice_ = Choice{Nics.at(*selected_).Id, *selected_};
    ShowSelected();
}

void ConnectionList::ShowSelected() {
    view_.ShowDetails(selected_ ? FillDetails(Nics.at(*selected_)) : Details());
}

std::optional<std::size_t> ConnectionList::SelectedRow() const {
    if (!selected_) return std::nullopt;
    return RowOfRecord(rows_, *selected_);
}

}  // namespace corvane
