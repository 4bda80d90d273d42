#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <wx/app.h>
#include <wx/init.h>
#include <wx/log.h>

#include "platform/Platform.h"
#include "platform/Text.h"
#include "startup/Startup.h"
#include "ui/Desktop.h"
#include "ui/WindowSeat.h"
#include "ui/WxText.h"
#include "ui/frmCLHelp.h"
#include "ui/frmMain.h"

namespace corvane {
namespace {

/// Runs the start-up routine and, when it has loaded the main window, the event loop.
class WindowApp : public wxApp {
 public:
    explicit WindowApp(std::string commandLine) : commandLine_(std::move(commandLine)) {}

    bool OnInit() override {
        // No window here waits for idle moments; asking each of them costs time at every event.
        wxIdleEvent::SetMode(wxIDLE_PROCESS_SPECIFIED);
        wxUpdateUIEvent::SetMode(wxUPDATE_UI_PROCESS_SPECIFIED);
        DropLayoutMessages();
        EndWhenDisplayIsLost(
            "nicx-window: the display has gone away; the program ends. What it had reported as done is done.",
            kExitRunTimeError);
        return true;
    }

    int OnRun() override {
        WindowSeat seat;
        const ScopedSeat installed(seat);
        bool windowLoaded = false;
        const int exitCode = RunStartup(
            commandLine_, {[](const std::string& text) { frmCLHelp(text).ShowModal(); },
                           [&] {
                               auto* const window = new frmMain({ProgramFolder, OsDescription.description});
                               seat.SetMainWindow(window);
                               window->Bind(wxEVT_DESTROY, [&seat, window](wxWindowDestroyEvent& event) {
                                   event.Skip();
                                   if (event.GetEventObject() == window) seat.SetMainWindow(nullptr);
                               });
                               window->Show();
                               windowLoaded = true;
                           }});
        seat.UnloadSplash();
        if (windowLoaded) wxApp::OnRun();
        return exitCode;
    }

 private:
    std::string commandLine_;
};

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

/// The toolkit, as long as it lives.
class Toolkit {
 public:
    explicit Toolkit(char** arguments) {
        const wxLogNull silent;
        // The arguments are the program's own: the toolkit sees none of them.
        started_ = wxEntryStart(count_, arguments);
    }
    ~Toolkit() {
        if (started_) wxEntryCleanup();
    }
    Toolkit(const Toolkit&) = delete;
    Toolkit& operator=(const Toolkit&) = delete;

    [[nodiscard]] bool Started() const { return started_; }

 private:
    int count_ = 1;
    bool started_ = false;
};

int Run(int count, char** arguments) {
    const std::string text = Join(std::vector<std::string>(arguments + 1, arguments + count), " ");
    ShareHeap();
    wxSetAssertHandler(OnToolkitAssert);
    wxApp::SetInstance(new WindowApp(text));
    const Toolkit toolkit(arguments);
    if (!toolkit.Started()) {
        SayNoDisplay();
        return kExitRunTimeError;
    }
    Platform platform = MakeSystemPlatform();
    platform.clock = std::make_shared<WindowClock>(platform.clock);
    InstallPlatform(std::move(platform));
    wxTheApp->CallOnInit();
    const int exitCode = wxTheApp->OnRun();
    wxTheApp->OnExit();
    return exitCode;
}

}  // namespace
}  // namespace corvane

int main(int count, char** arguments) { return corvane::Run(count, arguments); }
