#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include <wx/popupwin.h>
#include <wx/vlbox.h>

#include "ui/logic/VendorEntry.h"

/// The list that drops down from VendorBox. It never takes the focus.
namespace corvane {

/// Whoever a VendorDropDown belongs to.
class VendorDropDownHost {
 public:
    /// A row was clicked.
    virtual void RowClicked(std::size_t row) = 0;

 protected:
    ~VendorDropDownHost() = default;
};

class VendorDropDown : public wxPopupWindow {
 public:
    /// The host must outlive it.
    VendorDropDown(wxWindow* owner, VendorDropDownHost& host);

    /// Shows the matches of `search` below `owner`, with `entry` marked when it is among them, else the
    /// first.
    void Open(const wxWindow& owner, const std::string& search, std::optional<std::size_t> entry);
    /// Narrows the list while it is open.
    void Search(const std::string& text);
    /// Moves the mark by `rows`; stays inside the list.
    void Move(int rows);

    /// Row that is marked; nothing when nothing matches.
    [[nodiscard]] std::optional<std::size_t> Marked() const;
    [[nodiscard]] std::size_t EntryAt(std::size_t row) const { return search_.EntryAt(row); }
    [[nodiscard]] int PageRows() const;

 private:
    class List;

    void Mark(std::optional<std::size_t> row);

    VendorDropDownHost& host_;
    VendorSearch search_;
    List* list_;
};

}  // namespace corvane
