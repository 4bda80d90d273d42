#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include <wx/init.h>

#include "base/Text.h"
#include "programs/WindowApp.h"
#include "startup/Startup.h"
#include "ui/WxText.h"
#include "ui/gtk/Session.h"

namespace corvane {
namespace {

std::string Variable(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? std::string() : value;
}

void SayNoDisplay() {
    const std::string display = Variable("DISPLAY");
    const std::string wayland = Variable("WAYLAND_DISPLAY");
    std::cerr << "nicx-window: ";
    if (display.empty() && wayland.empty()) {
        std::cerr << "there is no display to open a window on (DISPLAY and WAYLAND_DISPLAY are not set).";
    } else {
        std::cerr << "the display '" << (wayland.empty() ? display : wayland) << "' cannot be opened.";
    }
    std::cerr << " Start it from a desktop session, or use the command line: nicx -help, nicx-report.\n";
}

/// A broken expectation of the toolkit is no reason to stop the user: it is told on standard error.
void OnToolkitAssert(const wxString& file, int line, const wxString& function, const wxString& condition,
                     const wxString& message) {
    std::cerr << "nicx-window: toolkit: " << Utf8(file) << ':' << line << ": " << Utf8(function) << ": "
              << Utf8(condition) << ' ' << Utf8(message) << '\n';
}

int Run(int count, char** arguments) {
    const std::string text = Join(std::vector<std::string>(arguments + 1, arguments + count), " ");
    ShareHeap();
    wxSetAssertHandler(OnToolkitAssert);
    auto* const app = new WindowApp(text);
    wxApp::SetInstance(app);
    int nameAlone = 1;
    const Toolkit toolkit([&] { return wxEntryStart(nameAlone, arguments); });
    if (!toolkit.Started()) {
        SayNoDisplay();
        return kExitRunTimeError;
    }
    DropLayoutMessages();
    EndWhenDisplayIsLost(
        "nicx-window: the display has gone away; the program ends. What it had reported as done is done.",
        kExitRunTimeError);
    return RunOnSystemPlatform(*app);
}

}  // namespace
}  // namespace corvane

int main(int count, char** arguments) { return corvane::Run(count, arguments); }
