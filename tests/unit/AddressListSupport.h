#pragma once

#include <cstddef>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ui/logic/AddressList.h"

/// The lists of addresses in memory.
namespace corvane {

inline void PrintTo(const DetailsRow& row, std::ostream* out) {
    *out << '"' << row.text << "\" \"" << row.subItem << "\" tag " << row.tag;
}

namespace test {

/// One of the lists. New rows have no selection, as the least that a window gives.
class FakeAddressList : public AddressListView {
 public:
    std::vector<DetailsRow> rows;
    std::string header;
    std::optional<std::size_t> selected;

    [[nodiscard]] const std::vector<DetailsRow>& Rows() const override { return rows; }
    void SetRows(const std::vector<DetailsRow>& newRows) override {
        rows = newRows;
        selected.reset();
    }
    void SetHeader(const std::string& text) override { header = text; }
    [[nodiscard]] std::optional<std::size_t> SelectedRow() const override { return selected; }
    void SelectRow(std::size_t row) override {
        EXPECT_LT(row, rows.size());
        selected = row;
    }
};

}  // namespace test
}  // namespace corvane
