#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

#include "base/Text.h"
#include "platform/Platform.h"
#include "platform/Seat.h"
#include "startup/CommandLine.h"
#include "startup/ConsoleSeat.h"
#include "startup/Startup.h"

namespace corvane {
namespace {

void PrintLines(const std::string& text) { std::cout << Without(text, '\r') << '\n'; }

/// The window lies beside this program, wherever its data files do.
std::string WindowProgram() {
    std::error_code error;
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
    return (self.parent_path() / "nicx-window").string();
}

bool Exists(const std::string& program) {
    std::error_code error;
    return std::filesystem::exists(program, error);
}

bool IsSet(const char* variable) {
    const char* const value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

/// Whether nobody would read what is printed, as when a desktop's menu started the program: there is a
/// display and no terminal that controls the process.
bool HelpBelongsInAWindow() {
    if (!IsSet("DISPLAY") && !IsSet("WAYLAND_DISPLAY")) return false;
    const int terminal = open("/dev/tty", O_RDWR | O_CLOEXEC);
    if (terminal >= 0) close(terminal);
    return terminal < 0 && Exists(WindowProgram());
}

/// Runs the window program beside this one in its place. Returns only on failure.
int OpenWindow(char** arguments) {
    std::string program = WindowProgram();
    if (!Exists(program)) {
        std::cerr << "nicx: the main window is not installed: there is no '" << program
                  << "'. Use the command line (nicx -help) or nicx-report.\n";
        return kExitRunTimeError;
    }
    arguments[0] = program.data();
    execv(program.c_str(), arguments);
    std::cerr << "nicx: '" << program << "' could not be started: " << std::strerror(errno) << '\n';
    return kExitRunTimeError;
}

int Run(int count, char** arguments) {
    const std::string text = Join(std::vector<std::string>(arguments + 1, arguments + count), " ");
    InstallPlatform(MakeSystemPlatform());
    ConsoleSeat seat(std::cin, std::cout, std::cerr, isatty(STDIN_FILENO) == 1 && isatty(STDERR_FILENO) == 1);
    const ScopedSeat installed(seat);
    const CommandLine line = ParseCommandLine(text);
    const bool helpWindow = line.outcome == CommandLine::Outcome::kHelp && HelpBelongsInAWindow();
    if (line.WantsWindow() || helpWindow) return OpenWindow(arguments);
    return RunStartup(text, {PrintLines, [] {}});
}

}  // namespace
}  // namespace corvane

int main(int count, char** arguments) { return corvane::Run(count, arguments); }
