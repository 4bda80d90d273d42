#include "ui/FactText.h"

#include <gtk/gtk.h>

#include "ui/Desktop.h"
#include "ui/WxText.h"

namespace corvane {

FactText::FactText(wxWindow* parent, const std::string& name)
    : wxStaticText(parent, wxID_ANY, "", wxDefaultPosition, wxDefaultSize,
                   wxST_NO_AUTORESIZE | wxST_ELLIPSIZE_END) {
    gtk_label_set_selectable(GTK_LABEL(m_widget), TRUE);
    SetAccessibleName(this, Wx(name));
    SetMinSize(wxSize(-1, GetCharHeight() + 2));
}

void FactText::SetText(const std::string& text) {
    const wxString value = Wx(text);
    // A text that stays the same keeps what the user has selected of it.
    if (GetLabelText() == value) return;
    SetLabelText(value);
    SetToolTip(value);
}

}  // namespace corvane
