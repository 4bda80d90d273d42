#pragma once

#include <string>

#include "platform/Win32Error.h"

namespace corvane {

/// The critical box (OK) of a registry failure: the first line, the path below HKEY_LOCAL_MACHINE, and
/// RegErrorText of the code.
void ShowRegistryError(const std::string& title, const std::string& firstLine, const std::string& path,
                       Win32Error code);

}  // namespace corvane
