#include "programs/WindowApp.h"

#include <memory>
#include <utility>

#include <wx/init.h>
#include <wx/log.h>

#include "platform/Platform.h"
#include "startup/Startup.h"
#include "ui/WindowSeat.h"
#include "ui/frmCLHelp.h"
#include "ui/frmMain.h"

namespace corvane {

namespace {

/// Starts the toolkit without its complaints: the program tells of a failure in its own words.
bool StartSilently(const std::function<bool()>& start) {
    const wxLogNull silent;
    return start();
}

}  // namespace

Toolkit::Toolkit(const std::function<bool()>& start) : started_(StartSilently(start)) {}

Toolkit::~Toolkit() {
    if (started_) wxEntryCleanup();
}

bool WindowApp::OnInit() {
    // No window here waits for idle moments; asking each of them costs time at every event.
    wxIdleEvent::SetMode(wxIDLE_PROCESS_SPECIFIED);
    wxUpdateUIEvent::SetMode(wxUPDATE_UI_PROCESS_SPECIFIED);
    return true;
}

int WindowApp::OnRun() {
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
    if (!windowLoaded) return exitCode;
    try {
        wxApp::OnRun();
    } catch (...) {
        OnUnhandledException();
        return kExitRunTimeError;
    }
    return exitCode;
}

bool WindowApp::OnExceptionInMainLoop() {
    faults_.Show();
    return true;
}

void WindowApp::OnUnhandledException() { faults_.Show(); }

void WindowApp::ProcessPendingEvents() {
    try {
        wxApp::ProcessPendingEvents();
    } catch (...) {
        faults_.Show();
        // The rest of them.
        WakeUpIdle();
    }
}

bool WindowApp::ProcessIdle() {
    try {
        return wxApp::ProcessIdle();
    } catch (...) {
        faults_.Show();
        return false;
    }
}

int RunOnSystemPlatform(WindowApp& app) {
    Platform platform = MakeSystemPlatform();
    platform.clock = std::make_shared<WindowClock>(platform.clock);
    InstallPlatform(std::move(platform));
    app.CallOnInit();
    const int exitCode = app.OnRun();
    app.OnExit();
    return exitCode;
}

}  // namespace corvane
