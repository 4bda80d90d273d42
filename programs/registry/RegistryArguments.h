#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/Refusal.h"

namespace corvane {

/// The arguments of nicx-registry, as reg.exe takes them: options are led by "/" or "-", in any case; what
/// follows "/v", "/t", "/d" or (with "add") "/s" is taken as it stands.
struct RegistryArguments {
    enum class Command { kHelp, kVersion, kQuery, kAdd, kDelete, kExport, kImport };
    Command command = Command::kHelp;
    std::string key;                  ///< As it was typed, root included.
    std::string file;                 ///< export, import.
    std::optional<std::string> name;  ///< /v NAME; empty text for /ve.
    std::optional<std::string> type;  ///< /t
    std::optional<std::string> data;  ///< /d
    std::string separator = "\\0";    ///< /s SEP of "add".
    bool below = false;               ///< /s of "query".
    bool allValues = false;           ///< /va
    bool force = false;               ///< /f, /y
};

/// Refused when `arguments` are not understood; `result` is then meaningless.
Refusal ParseRegistryArguments(const std::vector<std::string>& arguments, RegistryArguments& result);

}  // namespace corvane
