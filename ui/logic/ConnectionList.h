#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "inventory/NicInfo.h"
#include "ui/logic/Details.h"

/// The list of connections: its rows, its refresh and its selection.
namespace corvane {

/// Titles of the list's columns.
inline constexpr std::array<const char*, 5> kConnectionColumns = {"Network Connections", "Changed",
                                                                  "MAC Address", "Link Status", "Speed"};

/// The only row when there is no connection.
inline constexpr char kNoConnections[] = "NIC Not Found";

/// One row of the list: the text and four sub-items (counted from 1 in progress texts). `tag` is the position
/// of its record in Nics; a row that stands for no connection has none.
struct ConnectionRow {
    std::array<std::string, 5> texts;
    std::optional<std::size_t> tag;

    bool operator==(const ConnectionRow&) const = default;
};

/// "Yes" or "No": whether the connection presents another address than its original one. Without a known
/// original one, whether an override is in force.
std::string ChangedText(const NicInfo& nic);

/// The address that the list shows: the current one, else the override, else the original one.
std::string ListMacText(const NicInfo& nic);

/// Gives each record of Nics that has a name but no speed the speed "Disabled", for all that show it.
void NameMissingSpeeds();

/// The rows of Nics: one for each record with a name, or kNoConnections when there is none.
std::vector<ConnectionRow> ConnectionRows();

/// The window's side of the list.
class ConnectionListView {
 public:
    virtual ~ConnectionListView() = default;
    /// Adds one row at the end of what is shown, and paints.
    virtual void ShowPlaceholder(const ConnectionRow& row) = 0;
    /// Replaces all rows.
    virtual void ShowRows(const std::vector<ConnectionRow>& rows) = 0;
    /// Selects a row and makes it visible. Not reported back as the user's choice.
    virtual void SelectRow(std::size_t row) = 0;
    virtual void ShowDetails(const Details& details) = 0;
};

class ConnectionList {
 public:
    /// `view` must outlive the list.
    explicit ConnectionList(ConnectionListView& view) : view_(view) {}

    /// Reads the adapters anew and shows them. The selected connection stays selected (known by its Id, since
    /// another link may have come or gone in front of it); when it is gone, the row that has its record
    /// number is selected, else the first. The list remembers what was selected while there are no
    /// connections.
    void Refresh();

    /// The user selected row `row`: shows its details. kNoConnections has none: the panel is cleared. A row
    /// beyond those last shown, such as the placeholder, changes nothing.
    void Select(std::size_t row);

    /// Shows the selected connection's details anew, from Nics as last read; the cleared panel when there is
    /// none.
    void ShowSelected();

    /// Record of the selected connection in Nics; nothing when there is none, and while the adapters are read
    /// (an error box lets timers run then, and the record's number is not known yet).
    [[nodiscard]] std::optional<std::size_t> Selected() const { return selected_; }

    /// Row of the selected connection among the rows last shown; nothing when there is none.
    [[nodiscard]] std::optional<std::size_t> SelectedRow() const;

 private:
    /// A selected connection, kept over a refresh.
    struct Choice {
        std::string id;
        std::size_t record;
    };

    [[nodiscard]] std::size_t RowToSelect() const;

    ConnectionListView& view_;
    std::vector<ConnectionRow> rows_;
    std::optional<std::size_t> selected_;
    std::optional<Choice> lastChoice_;
};

}  // namespace corvane
