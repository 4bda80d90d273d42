#pragma once

#include <functional>
#include <string>
#include <utility>

#include <wx/app.h>

#include "startup/FaultReport.h"

/// What the window programs of all systems share: the toolkit and its application.
namespace corvane {

/// The toolkit, as long as it lives.
class Toolkit {
 public:
    /// `start` is the system's way to start it. The program's arguments are its own: the toolkit is to see
    /// none of them.
    explicit Toolkit(const std::function<bool()>& start);
    ~Toolkit();
    Toolkit(const Toolkit&) = delete;
    Toolkit& operator=(const Toolkit&) = delete;

    [[nodiscard]] bool Started() const { return started_; }

 private:
    bool started_;
};

/// Runs the start-up routine for an argument text and, when it has loaded the main window, the event loop. To
/// be run on the installed platform; brings the seat itself. An exception that reaches the event loop is told
/// to the user, and the loop goes on.
class WindowApp : public wxApp {
 public:
    explicit WindowApp(std::string commandLine) : commandLine_(std::move(commandLine)) {}

    bool OnInit() override;
    /// The exit code of the start-up routine.
    int OnRun() override;

    // The toolkit calls the first for an exception out of an event's handler, and the second for one that has
    // ended the loop. The other two it calls from within a C library, through which nothing may be thrown.
    bool OnExceptionInMainLoop() override;
    void OnUnhandledException() override;
    void ProcessPendingEvents() override;
    bool ProcessIdle() override;

 private:
    std::string commandLine_;
    FaultReport faults_;
};

/// Installs this system's platform, with a clock that lets windows paint, and runs `app` from its
/// initialisation to its end. The toolkit has been started with it. Returns the exit code.
int RunOnSystemPlatform(WindowApp& app);

}  // namespace corvane
