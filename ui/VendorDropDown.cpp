#include "ui/VendorDropDown.h"

#include <algorithm>

#include <wx/dc.h>
#include <wx/display.h>
#include <wx/settings.h>
#include <wx/sizer.h>

#include "ui/WxText.h"
#include "vendors/VendorList.h"

namespace corvane {

namespace {

constexpr int kRowsShown = 12;

}  // namespace

class VendorDropDown::List : public wxVListBox {
 public:
    List(wxWindow* parent, const VendorSearch& search)
        : wxVListBox(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize, wxBORDER_SIMPLE), search_(search) {}

    /// It shows and is clicked at, the keys stay with the text box.
    bool AcceptsFocus() const override { return false; }

 private:
    [[nodiscard]] wxString Text(std::size_t row) const {
        return Wx(VendorText(Vendors(), search_.EntryAt(row)));
    }
    void OnDrawItem(wxDC& dc, const wxRect& rect, std::size_t row) const override {
        dc.SetTextForeground(wxSystemSettings::GetColour(IsSelected(row) ? wxSYS_COLOUR_HIGHLIGHTTEXT
                                                                         : wxSYS_COLOUR_LISTBOXTEXT));
        dc.DrawText(Text(row), rect.x + 4, rect.y + 2);
    }
    wxCoord OnMeasureItem(std::size_t) const override { return GetCharHeight() + 4; }

    const VendorSearch& search_;
};

VendorDropDown::VendorDropDown(wxWindow* owner, VendorDropDownHost& host)
    : wxPopupWindow(owner, wxBORDER_NONE), host_(host), list_(new List(this, search_)) {
    auto* const sizer = new wxBoxSizer(wxVERTICAL);
    sizer->Add(list_, 1, wxEXPAND);
    SetSizer(sizer);
    list_->Bind(wxEVT_LEFT_UP, [this](wxMouseEvent& event) {
        event.Skip();
        const int row = list_->VirtualHitTest(event.GetY());
        if (row != wxNOT_FOUND) host_.RowClicked(static_cast<std::size_t>(row));
    });
}

void VendorDropDown::Open(const wxWindow& owner, const std::string& search,
                          std::optional<std::size_t> entry) {
    const int height = kRowsShown * (list_->GetCharHeight() + 4) + 4;
    const wxPoint below = owner.ClientToScreen(wxPoint(0, owner.GetClientSize().y));
    const int display = wxDisplay::GetFromWindow(&owner);
    const wxRect area =
        wxDisplay(display == wxNOT_FOUND ? 0U : static_cast<unsigned>(display)).GetClientArea();
    const int width =
        std::min(std::max(owner.GetClientSize().x, owner.GetCharWidth() * 70), area.GetRight() - below.x);
    const bool fitsBelow = below.y + height <= area.GetBottom();
    const int top = fitsBelow ? below.y : below.y - owner.GetClientSize().y - height;
    SetSize(below.x, top, std::max(width, owner.GetClientSize().x), height);
    Layout();
    search_.Find(search);
    list_->SetItemCount(search_.Size());
    Mark(entry ? search_.RowOf(*entry) : std::nullopt);
    Show();
}

void VendorDropDown::Search(const std::string& text) {
    search_.Find(text);
    list_->SetItemCount(search_.Size());
    Mark(std::nullopt);
    list_->Refresh();
}

void VendorDropDown::Mark(std::optional<std::size_t> row) {
    if (search_.Size() == 0) return;
    list_->SetSelection(static_cast<int>(row.value_or(0)));
    if (row) {
        list_->ScrollToRow(*row > 3 ? *row - 3 : 0);
    } else {
        list_->ScrollToRow(0);
    }
}

void VendorDropDown::Move(int rows) {
    if (search_.Size() == 0) return;
    const int last = static_cast<int>(search_.Size()) - 1;
    const int now = list_->GetSelection();
    list_->SetSelection(now == wxNOT_FOUND ? 0 : std::clamp(now + rows, 0, last));
}

std::optional<std::size_t> VendorDropDown::Marked() const {
    const int row = list_->GetSelection();
    if (search_.Size() == 0 || row == wxNOT_FOUND) return std::nullopt;
    return static_cast<std::size_t>(row);
}

int VendorDropDown::PageRows() const { return kRowsShown - 1; }

}  // namespace corvane
