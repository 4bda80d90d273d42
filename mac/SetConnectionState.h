#pragma once

#include <string>

namespace corvane {

/// Name of the Network Connections folder as the user picked it, in lower case; empty when never picked. Read
/// at start-up from the registry, written by the folder dialog only.
inline std::string NetworkFolderName;

enum class StateResult {
    kDone = 0,         ///< The connection was found and its verb invoked.
    kDialogShown = 1,  ///< The folder dialog was shown; it carries out the operation itself.
    kGivenUp = 2,      ///< The user declined to look for the folder, or the shell failed (shown).
    kNoVerb = 3,       ///< The connection offers no such verb: it is in that state, or still changing.
};

/// Enables or disables a connection through its item in the shell's Network Connections folder.
StateResult SetConnectionState(const std::string& name, bool enable, bool partOfRestart);

}  // namespace corvane
