#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "tcpip/AddressOperations.h"
#include "ui/logic/Details.h"
#include "ui/logic/IPAddressEntry.h"

/// The lists of IP addresses, gateways and DNS servers, and what their editing has in common.
namespace corvane {

/// What editing works on.
struct EditingTarget {
    /// The selected connection, a position in Nics; nothing when there is none.
    std::optional<std::size_t> adapter;
    /// True: the running connection and the registry are changed (the list of connections is enabled). False:
    /// a preset is edited, only rows change.
    bool live = true;
};

/// One of the lists. Setting rows or a selection tells nobody.
class AddressListView {
 public:
    virtual ~AddressListView() = default;
    [[nodiscard]] virtual const std::vector<DetailsRow>& Rows() const = 0;
    /// Replaces all rows. What was selected need not be any more.
    virtual void SetRows(const std::vector<DetailsRow>& rows) = 0;
    /// Title of the first column.
    virtual void SetHeader(const std::string& text) = 0;
    [[nodiscard]] virtual std::optional<std::size_t> SelectedRow() const = 0;
    virtual void SelectRow(std::size_t row) = 0;
};

/// Position of the first row with this text.
std::optional<std::size_t> FindRow(const AddressListView& list, const std::string& text);

/// Gives the row with this text another sub-item, or adds a row at the end. The header counts the rows.
void FindOrAddRow(AddressListView& list, const std::string& title, const std::string& text,
                  const std::string& subItem);

/// Removes a row and selects the one that took its place, else the last. The header counts the rows.
void RemoveRow(AddressListView& list, const std::string& title, std::size_t row);

/// Fills a list with rows and the header with their number.
void FillRows(AddressListView& list, const std::string& title, const std::vector<DetailsRow>& rows);

/// Tells the user all sentences at once, each with a capital letter; nothing when there are none.
void WarnOf(std::vector<std::string> sentences);

/// The value of an entry control.
EnteredQuad Entered(const IPAddressEntry& entry);

}  // namespace corvane
