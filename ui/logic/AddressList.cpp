#include "ui/logic/AddressList.h"

#include <algorithm>

#include "base/Text.h"
#include "platform/Seat.h"

namespace corvane {

std::optional<std::size_t> FindRow(const AddressListView& list, const std::string& text) {
    const std::vector<DetailsRow>& rows = list.Rows();
    const auto found =
        std::find_if(rows.begin(), rows.end(), [&](const DetailsRow& row) { return row.text == text; });
    if (found == rows.end()) return std::nullopt;
    return static_cast<std::size_t>(found - rows.begin());
}

void FindOrAddRow(AddressListView& list, const std::string& title, const std::string& text,
                  const std::string& subItem) {
    std::vector<DetailsRow> rows = list.Rows();
    const std::size_t row = FindRow(list, text).value_or(rows.size());
    if (row == rows.size()) rows.push_back({text, "", row});
    rows[row].subItem = subItem;
    FillRows(list, title, rows);
    list.SelectRow(row);
}

void RemoveRow(AddressListView& list, const std::string& title, std::size_t row) {
    std::vector<DetailsRow> rows = list.Rows();
    rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(row));
    FillRows(list, title, rows);
    if (!rows.empty()) list.SelectRow(std::min(row, rows.size() - 1));
}

void FillRows(AddressListView& list, const std::string& title, const std::vector<DetailsRow>& rows) {
    list.SetRows(rows);
    list.SetHeader(ListHeader(title, rows.size()));
}

void WarnOf(std::vector<std::string> sentences) {
    for (std::string& sentence : sentences) sentence.replace(0, 1, ToUpper(sentence.substr(0, 1)));
    if (!sentences.empty()) CurrentSeat().Warn(Join(sentences, ". "));
}

EnteredQuad Entered(const IPAddressEntry& entry) { return {entry.Text(), entry.Octets()}; }

}  // namespace corvane
