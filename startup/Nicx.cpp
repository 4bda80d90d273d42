#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include <unistd.h>

#include "platform/Platform.h"
#include "platform/Seat.h"
#include "platform/Text.h"
#include "startup/CommandLine.h"
#include "startup/ConsoleSeat.h"
#include "startup/Startup.h"

namespace corvane {
namespace {

void PrintLines(const std::string& text) { std::cout << Without(text, '\r') << '\n'; }

/// Runs the window program beside this one in its place. Returns only on failure.
int OpenWindow(char** arguments) {
    std::string program = CurrentPlatform().host->ProgramFolder() + "/nicx-window";
    std::error_code error;
    if (!std::filesystem::exists(program, error)) {
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
    if (ParseCommandLine(text).WantsWindow()) return OpenWindow(arguments);
    return RunStartup(text, {PrintLines, [] {}});
}

}  // namespace
}  // namespace corvane

int main(int count, char** arguments) { return corvane::Run(count, arguments); }
