#include "ui/FactText.h"

#include <algorithm>

#include <wx/textctrl.h>

#include "ui/Desktop.h"
#include "ui/WxText.h"

namespace corvane {

namespace {

/// What is left of a text where there is no room for all of it.
constexpr int kLeastCharacters = 12;

/// A text box without a frame on the ground of what it lies on, as the system's own property pages have them.
class BoxFactText : public wxTextCtrl, public FactText {
 public:
    BoxFactText(wxWindow* parent, const std::string& name)
        : wxTextCtrl(parent, wxID_ANY, "", wxDefaultPosition, wxDefaultSize, wxTE_READONLY | wxBORDER_NONE) {
        SetBackgroundColour(parent->GetBackgroundColour());
        SetAccessibleName(this, Wx(name));
        SetMinSize(wxSize(GetCharWidth() * kLeastCharacters, GetCharHeight() + 2));
        Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
            event.Skip();
            UpdateTip();
        });
    }

    [[nodiscard]] wxWindow* Window() override { return this; }

    void SetText(const std::string& text) override {
        const wxString value = Wx(text);
        // A text that stays the same keeps what the user has selected of it.
        if (GetValue() == value) return;
        ChangeValue(value);
        UpdateTip();
    }

    [[nodiscard]] bool AcceptsFocusFromKeyboard() const override { return true; }
    /// Its text is as wide as it comes: the layout decides.
    [[nodiscard]] wxSize DoGetBestSize() const override { return GetMinSize(); }

 private:
    /// The tip has what does not fit.
    void UpdateTip() {
        const wxString text = GetValue();
        const wxString tip = GetTextExtent(text).x > GetClientSize().x ? text : wxString();
        if (GetToolTipText() == tip) return;
        if (tip.empty()) {
            UnsetToolTip();
        } else {
            SetToolTip(tip);
        }
    }
};

}  // namespace

FactText* FactText::Make(wxWindow* parent, const std::string& name) { return new BoxFactText(parent, name); }

}  // namespace corvane
