#include "ui/FactText.h"

#include <gtk/gtk.h>
#include <wx/stattext.h>

#include "ui/Desktop.h"
#include "ui/WxText.h"

namespace corvane {

namespace {

/// What is left of a text where there is no room for all of it.
constexpr int kLeastCharacters = 12;

/// A selectable label.
class LabelFactText : public wxStaticText, public FactText {
 public:
    LabelFactText(wxWindow* parent, const std::string& name)
        : wxStaticText(parent, wxID_ANY, "", wxDefaultPosition, wxDefaultSize,
                       wxST_NO_AUTORESIZE | wxST_ELLIPSIZE_END) {
        gtk_label_set_selectable(GTK_LABEL(m_widget), TRUE);
        SetAccessibleName(this, Wx(name));
        SetMinSize(wxSize(GetCharWidth() * kLeastCharacters, GetCharHeight() + 2));
    }

    [[nodiscard]] wxWindow* Window() override { return this; }

    void SetText(const std::string& text) override {
        const wxString value = Wx(text);
        // A text that stays the same keeps what the user has selected of it.
        if (GetLabelText() == value) return;
        SetLabelText(value);
        SetToolTip(value);
    }

    [[nodiscard]] bool AcceptsFocus() const override { return true; }
};

}  // namespace

FactText* FactText::Make(wxWindow* parent, const std::string& name) {
    return new LabelFactText(parent, name);
}

}  // namespace corvane
