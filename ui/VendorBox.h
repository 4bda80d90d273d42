#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "ui/VendorDropDown.h"
#include "ui/logic/VendorEntry.h"

class wxBitmapButton;
class wxKeyEvent;
class wxSizer;
class wxTextCtrl;
class wxWindow;

/// `VendorList`: a text box with a list of all vendors that drops down. The list reads its texts from the
/// vendor table when it draws them. Typing in the box narrows the list; arrow keys and Page keys move in it,
/// Enter or a click chooses, Escape closes it.
namespace corvane {

/// Whoever a VendorBox belongs to.
class VendorBoxHost {
 public:
    /// The user chose an entry; the edit part has still the text that was searched for.
    virtual void VendorChosen(std::size_t entry) = 0;
    /// The box got the focus.
    virtual void VendorBoxFocused() = 0;

 protected:
    ~VendorBoxHost() = default;
};

class VendorBox : public VendorBoxView, private VendorDropDownHost {
 public:
    /// Makes the controls on `parent`, which must outlive the box, as the host must; MakeSizer lays them out.
    VendorBox(wxWindow* parent, VendorBoxHost& host);

    wxSizer* MakeSizer();

    [[nodiscard]] std::string VendorText() const override;
    void SetVendorText(const std::string& text) override;
    void MarkChosen(std::size_t entry) override;

    [[nodiscard]] wxTextCtrl* Edit() const { return edit_; }

    /// False when the list was not open.
    bool CloseList();

 private:
    void RowClicked(std::size_t row) override { Choose(row); }

    void OnKey(wxKeyEvent& event);
    void OpenList();
    void Choose(std::size_t row);
    [[nodiscard]] bool ListShown() const;

    VendorBoxHost& host_;
    wxTextCtrl* edit_;
    wxBitmapButton* button_;
    VendorDropDown* list_ = nullptr;  ///< Made when it is opened for the first time.
    std::optional<std::size_t> chosen_;
    bool closes_ = false;  ///< The button is being pressed while the list is open.
};

}  // namespace corvane
