#include <string>

#include <wx/init.h>
#include <wx/msw/wrapwin.h>

#include "base/Text.h"
#include "platform/windows/Process.h"
#include "programs/WindowApp.h"
#include "startup/Startup.h"
#include "ui/WxText.h"

/// The Windows program: the main window without arguments, the command-line mode, whose reports are message
/// boxes, with them.
namespace corvane {
namespace {

/// A broken expectation of the toolkit is no reason to stop the user: it is told to a debugger, if any.
void OnToolkitAssert(const wxString& file, int line, const wxString& function, const wxString& condition,
                     const wxString& message) {
    const std::string words = "nicx: toolkit: " + Utf8(file) + ':' + std::to_string(line) + ": " +
                              Utf8(function) + ": " + Utf8(condition) + ' ' + Utf8(message);
    TellDebugger(words);
}

int Run(HINSTANCE instance, int show) {
    wxSetAssertHandler(OnToolkitAssert);
    auto* const app = new WindowApp(Join(ProgramArguments(), " "));
    wxApp::SetInstance(app);
    const Toolkit toolkit([&] { return wxEntryStart(instance, nullptr, nullptr, show); });
    if (!toolkit.Started()) {
        MessageBoxW(nullptr, L"The window library could not be started.", L"Orvella Corvane", MB_ICONERROR);
        return kExitRunTimeError;
    }
    return RunOnSystemPlatform(*app);
}

}  // namespace
}  // namespace corvane

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, char*, int show) { return corvane::Run(instance, show); }
