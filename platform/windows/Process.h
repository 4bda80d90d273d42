#pragma once

#include <string>
#include <vector>

/// The running program as the system sees it.
namespace corvane {

/// The arguments as the system's own rules take the command line apart (CommandLineToArgvW, shellapi.h),
/// without the program's name.
std::vector<std::string> ProgramArguments();

/// A line for a debugger, if any.
void TellDebugger(const std::string& words);

}  // namespace corvane
