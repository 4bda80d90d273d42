#pragma once

#include <functional>
#include <string>

#include "startup/Version.h"

/// The start-up routine: one way in for the command line and for the window.
namespace corvane {

/// Exit codes of the programs.
inline constexpr int kExitDone = 0;
inline constexpr int kExitActionFailed = 1;
inline constexpr int kExitUsage = 2;  ///< Invalid parameter, or nothing to do.
inline constexpr int kExitNotFound = 3;
inline constexpr int kExitRunTimeError = 4;

/// Set by the start-up routine, unchanged after it.
inline std::string ProgramFolder;  ///< Ends in the system's separator.
inline OsVersion OsDescription;

/// What differs between the programs that start up.
struct StartupHooks {
    std::function<void(const std::string& text)> showHelp;
    /// Opens the main window; called when both data files are loaded.
    std::function<void()> loadMainWindow;
};

/// Runs the start-up sequence for an argument text (arguments joined by single blanks) on the installed
/// platform and seat. Returns the exit code when the command line is done, or when the main window has been
/// loaded.
int RunStartup(const std::string& commandLine, const StartupHooks& hooks);

}  // namespace corvane
