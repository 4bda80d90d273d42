#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include <wx/popupwin.h>
#include <wx/vlbox.h>

#include "ui/logic/VendorEntry.h"

/// The list that drops down from VendorBox. It never takes the focus.
namespace corvane {

class VendorDropDown : public wxPopupWindow {
 public:
    explicit VendorDropDown(wxWindow* owner);

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

    /// A row was clicked.
    std::function<void(std::size_t row)> OnClick;

 private:
    class List;

    void Mark(std::optional<std::size_t> row);

    VendorSearch search_;
    List* list_;
};

}  // namespace corvane
