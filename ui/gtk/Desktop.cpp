#include "ui/Desktop.h"

#include <cstdio>
#include <string_view>

#include <atk/atk.h>
#include <gtk/gtk.h>
#ifdef GDK_WINDOWING_X11
#include <X11/Xlib.h>
#include <unistd.h>
#endif

#include <wx/dataview.h>

#include "ui/WxText.h"

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace corvane {

namespace {

#ifdef GDK_WINDOWING_X11
std::string lostWords;
int lostExitCode = 1;

/// Xlib's handler may not return and the connection is of no use any more, so nothing is tidied up.
int OnDisplayLost(Display*) {
    std::fprintf(stderr, "%s\n", lostWords.c_str());
    _exit(lostExitCode);
}
#endif

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

/// The toolkit lays windows out once before it knows their size, and GTK finds that there is no room. Nothing
/// comes of it, so nobody need read it.
bool IsLayoutMessage(std::string_view message) {
    return message.starts_with("gtk_distribute_natural_allocation: assertion 'extra_space >= 0'") ||
           message.starts_with("gtk_box_gadget_distribute: assertion 'size >= 0'");
}

GLogWriterOutput WriteMessage(GLogLevelFlags level, const GLogField* fields, gsize count, gpointer data) {
    for (gsize i = 0; i < count; ++i) {
        if (std::string_view(fields[i].key) != "MESSAGE") continue;
        if (IsLayoutMessage(static_cast<const char*>(fields[i].value))) return G_LOG_WRITER_HANDLED;
    }
    return g_log_writer_default(level, fields, count, data);
}

/// A text box would otherwise press the default button.
gboolean OnMnemonic(GtkWidget*, gboolean, gpointer control) {
    static_cast<wxWindow*>(control)->SetFocus();
    return TRUE;
}

}  // namespace

void ShareHeap() {
#ifdef __GLIBC__
    mallopt(M_ARENA_MAX, 1);
#endif
}

void EndWhenDisplayIsLost(const std::string& words, int exitCode) {
#ifdef GDK_WINDOWING_X11
    lostWords = words;
    lostExitCode = exitCode;
    XSetIOErrorHandler(OnDisplayLost);
#else
    (void)words;
    (void)exitCode;
#endif
}

void DropLayoutMessages() { g_log_set_writer_func(WriteMessage, nullptr, nullptr); }

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

void MoveCursor(wxDataViewCtrl* list, int row) {
    GtkTreePath* const path = gtk_tree_path_new_from_indices(row, -1);
    gtk_tree_view_set_cursor(GTK_TREE_VIEW(list->GtkGetTreeView()), path, nullptr, FALSE);
    gtk_tree_path_free(path);
}

int TypedCharacter(const wxKeyEvent& down) {
    return static_cast<int>(gdk_keyval_to_unicode(static_cast<guint>(down.GetRawKeyCode())));
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
