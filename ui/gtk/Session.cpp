#include "ui/gtk/Session.h"

#include <cstdio>
#include <string_view>

#include <gtk/gtk.h>
#ifdef GDK_WINDOWING_X11
#include <X11/Xlib.h>
#include <unistd.h>
#endif

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

}  // namespace corvane
