#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

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

class VendorDropDown;

class VendorBox : public VendorBoxView {
 public:
    /// Makes the controls on `parent`, which must outlive the box; MakeSizer lays them out.
    explicit VendorBox(wxWindow* parent);

    wxSizer* MakeSizer();

    [[nodiscard]] std::string VendorText() const override;
    void SetVendorText(const std::string& text) override;
    void MarkChosen(std::size_t entry) override;

    [[nodiscard]] wxTextCtrl* Edit() const { return edit_; }

    /// False when the list was not open.
    bool CloseList();

    /// The user chose an entry; the edit part has still the text that was searched for.
    std::function<void(std::size_t entry)> OnChoice;
    /// The box got the focus.
    std::function<void()> OnFocus;

 private:
    void OnKey(wxKeyEvent& event);
    void OpenList();
    void Choose(std::size_t row);
    [[nodiscard]] bool ListShown() const;

    wxTextCtrl* edit_;
    wxBitmapButton* button_;
    VendorDropDown* list_ = nullptr;  ///< Made when it is opened for the first time.
    std::optional<std::size_t> chosen_;
    bool closes_ = false;  ///< The button is being pressed while the list is open.
};

}  // namespace corvane
