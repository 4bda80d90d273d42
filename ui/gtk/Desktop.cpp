#include "ui/Desktop.h"

#include <algorithm>
#include <string>

#include <atk/atk.h>
#include <gtk/gtk.h>
#include <wx/evtloop.h>
#include <wx/msgdlg.h>

#include "ui/WxText.h"

namespace corvane {

namespace {

/// The widget that has the keyboard focus when a window has it: a scrolled list, for example, is not itself
/// the widget that GTK knows by that name.
GtkWidget* FocusWidget(wxWindow* window) {
    GtkWidget* const inner = window->m_wxwindow == nullptr ? window->m_widget : window->m_wxwindow;
    GtkWidget* widget = inner;
    while (GTK_IS_BIN(widget) && !GTK_IS_BUTTON(widget) && !GTK_IS_COMBO_BOX(widget)) {
        GtkWidget* const child = gtk_bin_get_child(GTK_BIN(widget));
        if (child == nullptr) break;
        widget = child;
    }
    return widget;
}

/// A text box would otherwise press the default button.
gboolean OnMnemonic(GtkWidget*, gboolean, gpointer control) {
    static_cast<wxWindow*>(control)->SetFocus();
    return TRUE;
}

long BoxStyle(BoxIcon icon, BoxButtons buttons) {
    long style = buttons == BoxButtons::kOk ? wxOK : wxYES_NO | wxCANCEL | wxYES_DEFAULT;
    switch (icon) {
        case BoxIcon::kCritical:
            style |= wxICON_ERROR;
            break;
        case BoxIcon::kExclamation:
            style |= wxICON_EXCLAMATION;
            break;
        case BoxIcon::kInformation:
            style |= wxICON_INFORMATION;
            break;
        case BoxIcon::kQuestion:
            style |= wxICON_QUESTION;
            break;
    }
    return style;
}

BoxAnswer Answer(int id) {
    switch (id) {
        case wxID_OK:
            return BoxAnswer::kOk;
        case wxID_YES:
            return BoxAnswer::kYes;
        case wxID_NO:
            return BoxAnswer::kNo;
        default:
            return BoxAnswer::kCancel;
    }
}

}  // namespace

wxWindow* MakeGround(wxFrame* frame) { return frame; }

void FocusByMnemonic(wxWindow* control) {
    // The toolkit ties a label's mnemonic to the control that follows it in the tab order.
    g_signal_connect(FocusWidget(control), "mnemonic-activate", G_CALLBACK(OnMnemonic), control);
}

void LabelFor(const wxStaticText* label, wxWindow* control) {
    FocusByMnemonic(control);
    SetAccessibleName(control, label->GetLabelText());
}

void SetAccessibleName(wxWindow* control, const wxString& name) {
    const std::string text = Utf8(name);
    atk_object_set_name(gtk_widget_get_accessible(FocusWidget(control)), text.c_str());
}

int TextBoxHeight(const wxWindow& box, int best) {
    // The toolkit makes it too low for large fonts.
    static constexpr int kMargins = 10;
    return std::max(best, box.GetCharHeight() + box.FromDIP(kMargins));
}

void DropFrame(wxWindow* box) {
    GtkCssProvider* const style = gtk_css_provider_new();
    gtk_css_provider_load_from_data(style,
                                    "entry, entry:focus { border: none; box-shadow: none; outline: none;"
                                    " background: none; padding: 0 1px; min-height: 0; }",
                                    -1, nullptr);
    gtk_style_context_add_provider(gtk_widget_get_style_context(box->m_widget), GTK_STYLE_PROVIDER(style),
                                   GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
    g_object_unref(style);
}

void UsePlainScrollBars(wxWindow* control) {
    if (GTK_IS_SCROLLED_WINDOW(control->m_widget)) {
        gtk_scrolled_window_set_overlay_scrolling(GTK_SCROLLED_WINDOW(control->m_widget), FALSE);
    }
}

bool GivesCommand(const wxKeyEvent& key) { return key.ControlDown() || key.AltDown(); }

int TypedCharacter(const wxKeyEvent& down) {
    return static_cast<int>(gdk_keyval_to_unicode(static_cast<guint>(down.GetRawKeyCode())));
}

BoxAnswer ShowMessageBox(wxWindow* parent, const wxString& title, const wxString& text, BoxIcon icon,
                         BoxButtons buttons) {
    wxMessageDialog box(parent, text, title, BoxStyle(icon, buttons));
    if (buttons == BoxButtons::kYesNoCancel) box.SetYesNoCancelLabels("&Yes", "&No", "&Cancel");
    return Answer(box.ShowModal());
}

void LetWindowsPaint() {
    static constexpr long kPainting = wxEVT_CATEGORY_UI | wxEVT_CATEGORY_TIMER;
    if (wxEventLoopBase* const active = wxEventLoopBase::GetActive()) {
        active->YieldFor(kPainting);
        return;
    }
    // Before the main loop runs.
    wxGUIEventLoop loop;
    const wxEventLoopActivator activate(&loop);
    loop.YieldFor(kPainting);
}

InputHold::InputHold() {
    // Keys, clicks and scrolling go to the widget that has the grab, which does nothing with them.
    GtkWidget* const widget = gtk_invisible_new();
    gtk_widget_show(widget);
    gtk_grab_add(widget);
    grab_ = widget;
}

InputHold::~InputHold() {
    auto* const widget = static_cast<GtkWidget*>(grab_);
    gtk_grab_remove(widget);
    gtk_widget_destroy(widget);
}

}  // namespace corvane
