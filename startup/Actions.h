#pragma once

#include "startup/CommandLine.h"

namespace corvane {

/// The command-line mode: carries out what the line asks for on the connection that it names, reports each
/// outcome through the seat and returns the exit code. Throws RunTimeError when a data file that it needs
/// cannot be read.
int RunActions(const CommandLine& line);

}  // namespace corvane
